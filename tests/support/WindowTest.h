#pragma once

#include "platform/forms/MdiForm.h"
#include "tests/support/Answers.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QTest>

#include <stdexcept>

class QAbstractScrollArea;
class QMdiSubWindow;

namespace test {

/// The program on a new book in a folder of its own: the main window is on the screen, its commands are used
/// as the user uses them, and what is saved is read back by a second connection.
class WindowTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    QString Path() const { return m_folder.Path(QStringLiteral("book.mdb")); }
    static void Run(const QString& sql);
    QStringList Rows(const QString& sql) const;

    /// Chooses an entry of the menu bar by its object name.
    void Choose(const char* entry);
    forms::MdiForm& Frame() { return *m_frame; }

    /// The loaded windows of that name, in the order of their load; the latest of them.
    static std::vector<std::shared_ptr<forms::Form>> Windows(const char* name);
    static std::shared_ptr<forms::Form> Last(const char* name);

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
    /// Right mouse button on a grid, whose menu the test answers.
    void OpenMenu(QAbstractScrollArea& grid);

    static QMdiSubWindow& FrameOf(const std::shared_ptr<forms::Form>& window);
    static void Activate(const std::shared_ptr<forms::Form>& window);

    /// Makes the window in front the active one, as a window manager would; the following do it themselves.
    static void TakeKeyboard();
    static void Type(const QString& text);
    static void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    static void Click(QWidget& widget, QPoint position = {});
    /// Clicks into the field and types in place of what it holds.
    static void Fill(QWidget& field, const QString& text);

private:
    TestFolder m_folder;
    std::shared_ptr<forms::MdiForm> m_frame;
};

} // namespace test
