#include "platform/runtime/windows/RegistryStore.h"

namespace runtime {

std::unique_ptr<SettingsStore> UserSettings(const QString& app) {
    return std::make_unique<RegistryStore>(app);
}

} // namespace runtime
