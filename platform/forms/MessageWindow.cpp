#include "platform/forms/MessageWindow.h"

#include "platform/forms/Application.h"
#include "platform/forms/Asking.h"
#include "platform/forms/Texts.h"

#include <QShowEvent>

namespace forms {

namespace {

constexpr qsizetype MostInBox = 2048; ///< characters; more would not fit on a screen

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

} // namespace

MessageWindow::MessageWindow(QWidget* owner, const QString& text, forms::Icon icon, forms::Buttons buttons,
                             Answer preselected)
    : QMessageBox(owner)
    , m_buttons(buttons) {
    setObjectName(QStringLiteral("MsgBox"));
    setWindowTitle(Application::Running().title);
    setTextFormat(Qt::PlainText);
    setText(Shown(text, MostInBox));
    setIcon(BoxIcon(icon));
    if (!IsQuestion()) {
        setStandardButtons(QMessageBox::Ok);
        setDefaultButton(QMessageBox::Ok);
        return;
    }
    setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    setDefaultButton(preselected == Answer::No ? QMessageBox::No : QMessageBox::Yes);
    setEscapeButton(QMessageBox::No);
}

void MessageWindow::showEvent(QShowEvent* event) {
    QMessageBox::showEvent(event);
    if (!event->spontaneous())
        Asking::Centre(*this, parentWidget());
}

Answer MessageWindow::Chosen() const {
    if (!IsQuestion())
        return Answer::Ok;
    return result() == QMessageBox::Yes ? Answer::Yes : Answer::No;
}

} // namespace forms
