#pragma once

#include "platform/forms/MsgBox.h"
#include "tests/support/Expect.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <deque>
#include <functional>
#include <vector>

class QFileDialog;
class QWidget;

namespace test {

/// How the error box of a routine begins for a failure of that number.
QString ErrorStart(const QString& head, int number);

/// Types the path into the dialog and accepts; an empty path cancels.
void TypeIntoFileDialog(QFileDialog& dialog, const QString& path);

/// Answers the real message boxes and dialogs that the program shows, in the order in which they are
/// expected. Each box is checked: title, whole text, icon, buttons, default button. A box that nobody
/// expected fails the test and is closed; so does an expected one that never came, when the object ends.
class Answers : public QObject {
public:
    Answers();
    ~Answers() override;

    /// A box with an OK button.
    Answers& Box(const QString& text, forms::Icon icon);
    /// A box with an OK button whose text begins so; the whole text is given to `look`.
    Answers& BoxStarting(const QString& start, forms::Icon icon,
                         std::function<void(const QString&)> look = {});
    /// The error box of a routine.
    Answers& Failure(const QString& head, int number, forms::Icon icon = forms::Icon::Critical) {
        return BoxStarting(ErrorStart(head, number), icon);
    }
    /// A yes-or-no question, answered by a click.
    Answers& Question(const QString& text, bool yes, bool yesPreselected,
                      forms::Icon icon = forms::Icon::Question);
    /// A file dialog: types the path and accepts; an empty path cancels. `look` sees the dialog before.
    Answers& File(const QString& path, std::function<void(QFileDialog&)> look = {});
    /// Any other modal window, found by object name; `act` has to end it.
    Answers& Modal(const QString& objectName, std::function<void(QWidget&)> act);
    /// A context menu: chooses the entry of that object name; an empty name closes the menu.
    Answers& Menu(const QString& menuName, const QString& entryName);

    /// Whether every expected box has come.
    bool Done() const { return m_expected.empty(); }

protected:
    /// A window that nobody expected.
    virtual void Surprise(QWidget& window);

private:
    struct Expectation {
        std::string what;
        std::function<void(QWidget&)> act;
    };

    Answers& Expect(std::string what, std::function<void(QWidget&)> act);
    void PollAgain();
    void Poll();
    void Deal(QWidget& window);

    std::deque<Expectation> m_expected;
    std::vector<QPointer<QWidget>> m_acting; ///< whose answer is running
};

/// Reads and closes whatever boxes come, for tests that cannot know which: Yes or OK is pressed. Any other
/// modal window is given to the handler.
class Boxes final : public Answers {
public:
    explicit Boxes(std::function<void(QWidget&)> handler = {})
        : m_handler(std::move(handler)) {}

    /// The texts so far, in order; they are forgotten.
    QStringList Take() { return std::exchange(m_texts, {}); }
    /// Those of them that tell a failure.
    static QStringList Failures(const QStringList& texts);

private:
    void Surprise(QWidget& window) override;

    std::function<void(QWidget&)> m_handler;
    QStringList m_texts;
};

} // namespace test
