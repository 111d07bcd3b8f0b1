#include "platform/forms/MessageWindow.h"

#include <QCloseEvent>
#include <QKeyEvent>

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

} // namespace

MessageWindow::MessageWindow(QWidget* owner, const QString& text, forms::Icon icon, forms::Buttons buttons,
                             Answer preselected)
    : QMessageBox(owner)
    , m_buttons(buttons) {
    setObjectName(QStringLiteral("MsgBox"));
    setWindowTitle(QStringView(AppTitle).toString());
    setTextFormat(Qt::PlainText);
    setText(text);
    setIcon(BoxIcon(icon));
    if (!IsQuestion()) {
        setStandardButtons(QMessageBox::Ok);
        setDefaultButton(QMessageBox::Ok);
        return;
    }
    setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    setDefaultButton(preselected == Answer::No ? QMessageBox::No : QMessageBox::Yes);
    setWindowFlags((windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint) &
                   ~(Qt::WindowCloseButtonHint | Qt::WindowSystemMenuHint));
}

Answer MessageWindow::Chosen() const {
    if (!IsQuestion())
        return Answer::Ok;
    return result() == QMessageBox::Yes ? Answer::Yes : Answer::No;
}

void MessageWindow::reject() {
    if (!IsQuestion())
        QMessageBox::reject();
}

void MessageWindow::closeEvent(QCloseEvent* event) {
    if (IsQuestion())
        event->ignore();
    else
        QMessageBox::closeEvent(event);
}

void MessageWindow::keyPressEvent(QKeyEvent* event) {
    if (IsQuestion() && event->matches(QKeySequence::Cancel))
        event->accept();
    else
        QMessageBox::keyPressEvent(event);
}

} // namespace forms
