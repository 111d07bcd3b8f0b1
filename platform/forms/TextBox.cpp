#include "platform/forms/TextBox.h"

#include "platform/forms/Texts.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QValidator>

namespace forms {

/// Sees each text before anybody else does, also one that an assistive tool or the program sets.
class TextBox::OneLineRule final : public QValidator {
public:
    explicit OneLineRule(TextBox* box)
        : QValidator(box)
        , m_box(*box) {}

    State validate(QString& text, int& cursor) const override {
        qsizetype place = cursor;
        text = m_box.m_showing || m_box.m_holdsPath ? WithoutHalves(text) : OneLine(text, place);
        cursor = static_cast<int>(std::min(place, text.size()));
        return Acceptable;
    }

private:
    const TextBox& m_box;
};

TextBox::TextBox(QWidget* parent)
    : QLineEdit(parent) {
    setValidator(new OneLineRule(this));
    connect(this, &QLineEdit::textChanged, this, [this] {
        if (m_showing)
            return;
        m_stored = QString();
        Q_EMIT Edited();
    });
}

void TextBox::HoldPath() {
    m_holdsPath = true;
    connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        qsizetype cursor = cursorPosition();
        if (const QString line = OneLine(text, cursor); line != text) {
            setText(line);
            setCursorPosition(static_cast<int>(cursor));
        }
    });
}

void TextBox::ShowStored(const QString& stored) {
    const QScopedValueRollback showing(m_showing, true);
    setText(stored);
    m_stored = text() == stored ? QString() : stored;
}

QString TextBox::Incoming(const QString& text) const {
    qsizetype cursor = 0;
    const qsizetype room = maxLength() - this->text().size() + selectedText().size();
    return Beginning(OneLine(text, cursor), room).toString();
}

void TextBox::keyPressEvent(QKeyEvent* event) {
    if (!event->matches(QKeySequence::Paste) || isReadOnly()) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    insert(Incoming(QGuiApplication::clipboard()->text()));
    event->accept();
}

void TextBox::dropEvent(QDropEvent* event) {
    QMimeData text;
    text.setText(Incoming(event->mimeData()->text()));
    QDropEvent drop(event->position(), event->possibleActions(), &text, event->buttons(), event->modifiers());
    drop.setDropAction(event->dropAction());
    QLineEdit::dropEvent(&drop);
    event->setDropAction(drop.dropAction());
    event->setAccepted(drop.isAccepted());
}

void TextBox::inputMethodEvent(QInputMethodEvent* event) {
    QInputMethodEvent input(event->preeditString(), event->attributes());
    input.setCommitString(Incoming(event->commitString()), event->replacementStart(),
                          event->replacementLength());
    QLineEdit::inputMethodEvent(&input);
    event->setAccepted(input.isAccepted());
}

} // namespace forms
