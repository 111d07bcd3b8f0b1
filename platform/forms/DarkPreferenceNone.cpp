// Where there is no settings portal to ask.

#include "platform/forms/DarkPreference.h"

namespace forms {

void WatchDarkPreference(QObject* /*owner*/, const std::function<void(bool dark)>& /*tell*/) {
}

} // namespace forms
