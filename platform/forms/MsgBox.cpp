#include "platform/forms/MsgBox.h"

#include "platform/forms/Application.h"
#include "platform/forms/MdiForm.h"
#include "platform/forms/MessageWindow.h"
#include "platform/forms/NestedLoop.h"

#include <QApplication>
#include <QMainWindow>
#include <QPointer>

#include <optional>

namespace forms {

namespace {

QWidget* Owner() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    // A dialog that has just been unloaded may still count as active; it would take the box along.
    QWidget* active = QApplication::activeWindow();
    if (active && active->isVisible())
        return active->window();
    const MdiForm* frame = MdiForm::Current();
    return frame && frame->Window()->isVisible() ? frame->Window() : nullptr;
}

Answer ShowBox(const QString& text, Icon icon, Buttons buttons, Answer preselected) {
    // The owner may go while the box is up and takes it along: so it is no local object.
    const QPointer<MessageWindow> box = new MessageWindow(Owner(), text, icon, buttons, preselected);
    NestedLoop nested([box] {
        if (box)
            box->done(0);
    });
    box->exec();
    const Answer answer = box ? box->Chosen() : (buttons == Buttons::Ok ? Answer::Ok : Answer::No);
    delete box.data();
    nested.Rethrow();
    return answer;
}

bool IsSame(const runtime::Failure& one, const runtime::Failure& other) {
    return one.number() == other.number() && one.description() == other.description();
}

/// Whether what was reported as finished is on the disk.
std::optional<runtime::Failure> CommitFailure() {
    try {
        Application::Running().writeToDisk();
    } catch (const runtime::Failure& failure) {
        return failure;
    }
    return std::nullopt;
}

} // namespace

Answer MsgBox(const QString& text, Icon icon, Buttons buttons, Answer preselected) {
    Application::Running().writeToDisk();
    return ShowBox(text, icon, buttons, preselected);
}

bool AskYes(const QString& text) {
    return MsgBox(text, Icon::Question, Buttons::YesNo, Answer::Yes) == Answer::Yes;
}

bool AskNo(const QString& text, Icon icon) {
    return MsgBox(text, icon, Buttons::YesNo, Answer::No) == Answer::Yes;
}

QString ErrorText(const QString& head, const runtime::Failure& failure) {
    const QString body =
        QStringLiteral("произошла ошибка №%1 ").arg(failure.number()) + failure.description();
    return head.isEmpty() ? body : head + QStringLiteral("\r\n") + body;
}

void ShowErrorBox(const QString& head, const runtime::Failure& failure, Icon icon) {
    const std::optional<runtime::Failure> lost = CommitFailure();
    ShowBox(ErrorText(head, failure), icon, Buttons::Ok, Answer::Ok);
    if (lost && !IsSame(*lost, failure)) // a statement that fails may take the others of its group along
        ShowBox(ErrorText(head, *lost), icon, Buttons::Ok, Answer::Ok);
}

void ShowEscapedFailure(const runtime::Failure& failure) {
    ShowErrorBox(QString(), failure);
}

} // namespace forms
