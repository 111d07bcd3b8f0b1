#include "platform/forms/Form.h"
#include "platform/forms/MsgBox.h"
#include "shared/Declaration.h"
#include "shell/General.h"

#include <QIcon>

namespace {

QIcon ProgramIcon() {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addFile(QStringLiteral(":/icons/zavelik-%1.png").arg(size));
    return icon;
}

/// Main in the place of a handler: what escapes it is shown, and the process goes on to its end.
void Start() {
    try {
        General::Main();
    } catch (const runtime::Failure& failure) {
        forms::ShowErrorBox({}, failure);
    }
}

} // namespace

int main(int argc, char** argv) {
    forms::Application application(argc, argv, ThisProgram());
    QApplication::setWindowIcon(ProgramIcon());
    Start();
    const int status = forms::Form::Loaded().empty() ? 0 : QApplication::exec();
    gDatabase.reset(); // while everything that an open file leans on still lives
    gWorkspace.reset();
    return status;
}
