#pragma once

#include "platform/forms/FlexGrid.h"
#include "platform/forms/MdiForm.h"
#include "tests/support/BoundBook.h"

#include <QMainWindow>
#include <QTest>

#include <stdexcept>

class QMdiSubWindow;

namespace test {

/// The program, which has not run yet, and its windows as the user uses them.
class Program : public Unbound {
protected:
    /// A file of the current version without reference data.
    void MakeBook() const;
    /// Starts the program on such a book.
    void Start() const;

    static forms::MdiForm& Frame() { return *forms::MdiForm::Current(); }
    static QMainWindow& Window() { return *Frame().Window(); }
    /// Chooses an entry of the menu bar by its object name.
    static void Choose(const char* entry);
    /// Chooses an entry of the menu that the right mouse button opens on the window's grid; `expect` adds the
    /// boxes that the command shows, all of which have to come.
    static void ChooseInMenu(const std::shared_ptr<forms::Form>& window, const char* entry,
                             const std::function<void(Answers&)>& expect = {});

    /// The loaded windows of that name, in the order of their load; the latest of them.
    static std::vector<std::shared_ptr<forms::Form>> Windows(const char* name);
    static std::shared_ptr<forms::Form> Last(const char* name);
    static bool IsOpen(const char* name) { return !Windows(name).empty(); }
    /// Names of the visible child windows.
    static QStringList Children();

    template <class Widget = QWidget>
    static Widget& Control(const std::shared_ptr<forms::Form>& window, const char* name) {
        return ControlOf<Widget>(*window->Surface(), name);
    }
    template <class Widget = QWidget>
    static Widget& ControlOf(const QWidget& surface, const char* name) {
        auto* widget = surface.findChild<Widget*>(QString::fromLatin1(name));
        if (!widget)
            throw std::runtime_error(std::string("no control ") + name);
        return *widget;
    }
    /// The rows of a grid below its header, the cells of some columns or of all joined by '|'.
    static QStringList Listed(const forms::FlexGrid& grid, QList<int> columns = {});

    static QMdiSubWindow& FrameOf(const std::shared_ptr<forms::Form>& window);
    static void Activate(const std::shared_ptr<forms::Form>& window);

    /// Makes the window in front the active one, as a window manager would; the following do it themselves.
    static void TakeKeyboard();
    static QString FocusName();
    static void Type(const QString& text);
    static void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static void Click(QWidget& widget, QPoint position = {});
    /// Clicks into the field and types in place of what it holds.
    static void Fill(QWidget& field, const QString& text);
    static void ClickButton(const std::shared_ptr<forms::Form>& window, const char* name) {
        Click(Control(window, name));
    }
    static void Fill(const std::shared_ptr<forms::Form>& window, const char* field, const QString& text) {
        Fill(Control(window, field), text);
    }
};

/// The program on a new book: the main window is on the screen, and what is saved is read back by a second
/// connection.
class WindowTest : public Program {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Texts without a value are NULL.
    static void AddCard(int id, const QString& last = {}, const QString& first = {},
                        const QString& middle = {}, const QString& remark = {}, const QString& bith = {});
    static void AddPhone(int card, int code, const QString& number);
    static void AddEvent(const QString& name, const QString& date, int period);
};

} // namespace test
