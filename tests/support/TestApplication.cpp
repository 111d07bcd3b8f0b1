// The entry of every program of window tests: the application object without a display, and a settings store
// that is not the user's.

#include "platform/forms/Form.h"
#include "platform/runtime/Settings.h"
#include "shared/Declaration.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace {

/// No test finds the windows of the one before.
class CleanScreen : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& /*test*/) override {
        for (const auto& form : forms::Form::Loaded())
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir folder;
    runtime::UseSettingsFile(folder.filePath(QStringLiteral("settings")));
    forms::Application application(argc, argv, ThisProgram());
    testing::UnitTest::GetInstance()->listeners().Append(new CleanScreen);
    return RUN_ALL_TESTS();
}
