#pragma once

#include <QLineEdit>

namespace forms {

/// A one-line text box. However a text comes in, it is one line without half a surrogate pair. What the file
/// holds is shown as it is until the user edits it; of a text that is longer than the box takes, the
/// beginning is shown, and the box knows that it is not all.
class TextBox final : public QLineEdit {
    Q_OBJECT

public:
    explicit TextBox(QWidget* parent = nullptr);

    /// The box is for a path: a file that is chosen may have line ends in its name, a text that the user
    /// brings in may not.
    void HoldPath();

    void ShowStored(const QString& text);
    /// The stored text, not all of which can be seen, stands there unedited.
    bool ShowsPart() const { return !m_stored.isNull(); }
    /// The text; of a part that stands there unedited, all of it.
    QString Value() const { return ShowsPart() ? m_stored : text(); }

Q_SIGNALS:
    /// The text has changed in any other way than by ShowStored.
    void Edited();

protected:
    void dropEvent(QDropEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class OneLineRule;

    /// The text as it goes in at the cursor: on one line before it is cut to what the box takes.
    QString Incoming(const QString& text) const;

    QString m_stored; ///< null unless only a part of it is shown
    bool m_showing = false;
    bool m_holdsPath = false;
};

} // namespace forms
