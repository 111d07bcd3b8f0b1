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

/// The text is shown as it is: no markup, no letters underlined. With a button preselected it is a question;
/// true on Yes.
bool ShowBox(const QString& text, Icon icon,
             QMessageBox::StandardButton preselected = QMessageBox::NoButton) {
    constexpr qsizetype MostInBox = 2048; // more characters would not fit on a screen
    if (Application::SessionEnds())
        return false;
    // The owner may go while the box is up and takes it along: so it is no local object.
    const QPointer<Box> box = new Box(Asking::Owner());
    box->setObjectName(QStringLiteral("MsgBox"));
    box->setWindowTitle(Application::Running().title);
    box->setTextFormat(Qt::PlainText);
    box->setText(Shown(text, MostInBox));
    box->setIcon(BoxIcon(icon));
    box->setStandardButtons(QMessageBox::Ok);
    if (preselected != QMessageBox::NoButton) {
        box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box->setDefaultButton(preselected);
        box->setEscapeButton(QMessageBox::No);
    }
    const int pressed = box->exec();
    delete box.data();
    return pressed == QMessageBox::Yes;
}

bool Ask(const QString& text, Icon icon, QMessageBox::StandardButton preselected) {
    Application::Running().writeToDisk();
    return ShowBox(text, icon, preselected);
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

void MsgBox(const QString& text, Icon icon) {
    Ask(text, icon, QMessageBox::NoButton);
}

bool AskYes(const QString& text) {
    return Ask(text, Icon::Question, QMessageBox::Yes);
}

bool AskNo(const QString& text, Icon icon) {
    return Ask(text, icon, QMessageBox::No);
}

QString ErrorText(const QString& head, const runtime::Failure& failure) {
    const QString body =
        QStringLiteral("произошла ошибка №%1 ").arg(failure.number()) + failure.description();
    return head.isEmpty() ? body : head + QStringLiteral("\r\n") + body;
}

void ShowErrorBox(const QString& head, const runtime::Failure& failure, Icon icon) {
    const std::optional<runtime::Failure> lost = WriteFailure();
    ShowBox(ErrorText(head, failure), icon);
    if (lost && !IsSame(*lost, failure)) // a statement that fails may take the others of its group along
        ShowBox(ErrorText(head, *lost), icon);
}

} // namespace forms
