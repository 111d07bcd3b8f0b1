#include "platform/forms/MsgBox.h"

#include "platform/forms/Application.h"
#include "platform/forms/Asking.h"
#include "platform/forms/Texts.h"

#include <QMessageBox>
#include <QPointer>
#include <QShowEvent>

#include <optional>

namespace forms {

namespace {

QMessageBox::Icon BoxIcon(Icon icon) {
    switch (icon) {
    case Icon::Critical:
        return QMessageBox::Critical;
    case Icon::Question:
        return QMessageBox::Question;
    case Icon::Exclamation:
        return QMessageBox::Warning;
    case Icon::Information:
        return QMessageBox::Information;
    }
    return QMessageBox::NoIcon;
}

class Box final : public QMessageBox {
public:
    using QMessageBox::QMessageBox;

protected:
    void showEvent(QShowEvent* event) override {
        QMessageBox::showEvent(event);
        if (!event->spontaneous())
            Asking::Centre(*this, parentWidget());
    }
};

/// The text is shown as it is: no markup, no letters underlined.
Answer ShowBox(const QString& text, Icon icon, Buttons buttons, Answer preselected) {
    constexpr qsizetype MostInBox = 2048; // more characters would not fit on a screen
    const bool asks = buttons == Buttons::YesNo;
    if (Application::SessionEnds())
        return asks ? Answer::No : Answer::Ok;
    // The owner may go while the box is up and takes it along: so it is no local object.
    const QPointer<Box> box = new Box(Asking::Owner());
    box->setObjectName(QStringLiteral("MsgBox"));
    box->setWindowTitle(Application::Running().title);
    box->setTextFormat(Qt::PlainText);
    box->setText(Shown(text, MostInBox));
    box->setIcon(BoxIcon(icon));
    box->setStandardButtons(asks ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    if (asks) {
        box->setDefaultButton(preselected == Answer::No ? QMessageBox::No : QMessageBox::Yes);
        box->setEscapeButton(QMessageBox::No);
    }
    const int pressed = box->exec();
    delete box.data();
    if (!asks)
        return Answer::Ok;
    return pressed == QMessageBox::Yes ? Answer::Yes : Answer::No;
}

bool IsSame(const runtime::Failure& one, const runtime::Failure& other) {
    return one.number() == other.number() && one.description() == other.description();
}

/// Whether what was reported as finished is on the disk.
std::optional<runtime::Failure> WriteFailure() {
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
    const std::optional<runtime::Failure> lost = WriteFailure();
    ShowBox(ErrorText(head, failure), icon, Buttons::Ok, Answer::Ok);
    if (lost && !IsSame(*lost, failure)) // a statement that fails may take the others of its group along
        ShowBox(ErrorText(head, *lost), icon, Buttons::Ok, Answer::Ok);
}

} // namespace forms
