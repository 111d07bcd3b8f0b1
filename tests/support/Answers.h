#pragma once

#include "platform/forms/MsgBox.h"
#include "tests/support/Expect.h"

#include <functional>
#include <memory>

class QFileDialog;
class QWidget;

namespace test {

/// Types the path into the dialog and accepts; an empty path cancels.
void TypeIntoFileDialog(QFileDialog& dialog, const QString& path);

/// Answers the real message boxes and dialogs that the program shows, in the order in which they are
/// expected. Each box is checked: title, whole text, icon, buttons, default button. A box that nobody
/// expected fails the test and is closed; so does an expected one that never came, when the object ends.
class Answers {
public:
    Answers();
    ~Answers();
    Answers(const Answers&) = delete;
    Answers& operator=(const Answers&) = delete;

    /// A box with an OK button.
    Answers& Box(const QString& text, forms::Icon icon);
    /// A box with an OK button whose text begins so; the whole text is given to `look`.
    Answers& BoxStarting(const QString& start, forms::Icon icon,
                         std::function<void(const QString&)> look = {});
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
    bool Done() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m;
};

} // namespace test
