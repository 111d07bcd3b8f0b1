#include "tests/support/WindowTest.h"

#include "database/General.h"
#include "database/Schema.h"
#include "shared/Declaration.h"
#include "shell/frmMain.h"

#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace test {

void WindowTest::SetUp() {
    schema::KeepLookUps();
    gWorkspace = engine::DBEngine::Workspaces(0);
    gDatabase = gWorkspace->CreateDatabase(Path(), QString::fromUtf16(engine::dbLangGeneral));
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));
    m_frame = forms::Form::Default<frmMain>();
    m_frame->Show();
    m_frame->Window()->resize(1200, 900);
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_frame->Window()));
}

void WindowTest::TearDown() {
    m_frame->Unload();
    m_frame.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    gDatabase->Close();
    gDatabase.reset();
    EXPECT_EQ(Integrity(Path()), QStringLiteral("ok"));
}

void WindowTest::Run(const QString& sql) {
    gDatabase->Execute(sql, engine::dbFailOnError);
}

QStringList WindowTest::Rows(const QString& sql) const {
    engine::DBEngine::Commit();
    return ReadRows(Path(), sql);
}

void WindowTest::Choose(const char* entry) {
    auto* action = m_frame->Window()->findChild<QAction*>(QString::fromLatin1(entry));
    if (!action)
        throw std::runtime_error(std::string("no menu entry ") + entry);
    action->trigger();
}

void WindowTest::OpenMenu(QAbstractScrollArea& grid) {
    QTest::mouseClick(grid.viewport(), Qt::RightButton, Qt::NoModifier, QPoint(50, 5));
}

std::vector<std::shared_ptr<forms::Form>> WindowTest::Windows(const char* name) {
    std::vector<std::shared_ptr<forms::Form>> windows;
    for (const auto& form : forms::Form::Loaded()) {
        if (form->Name() == QLatin1String(name))
            windows.push_back(form);
    }
    return windows;
}

std::shared_ptr<forms::Form> WindowTest::Last(const char* name) {
    const auto windows = Windows(name);
    if (windows.empty())
        throw std::runtime_error(std::string("no window ") + name);
    return windows.back();
}

QMdiSubWindow& WindowTest::FrameOf(const std::shared_ptr<forms::Form>& window) {
    for (QWidget* widget = window->Surface(); widget; widget = widget->parentWidget()) {
        if (auto* frame = qobject_cast<QMdiSubWindow*>(widget))
            return *frame;
    }
    throw std::runtime_error("no child window");
}

void WindowTest::Activate(const std::shared_ptr<forms::Form>& window) {
    QMdiSubWindow& frame = FrameOf(window);
    frame.mdiArea()->setActiveSubWindow(&frame);
}

/// A display without a window manager leaves no window active when a box or a menu goes.
void WindowTest::TakeKeyboard() {
    QWidget* window = QApplication::activeModalWidget();
    if (!window)
        window = forms::MdiForm::Current()->Window();
    if (QApplication::activeWindow() != window)
        window->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([window] { return QApplication::activeWindow() == window; }));
    QApplication::processEvents();
}

void WindowTest::Type(const QString& text) {
    TakeKeyboard();
    for (const QChar character : text)
        QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key_unknown, QString(character),
                            Qt::NoModifier);
}

void WindowTest::Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    TakeKeyboard();
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

void WindowTest::Click(QWidget& widget, QPoint position) {
    TakeKeyboard();
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, position);
}

void WindowTest::Fill(QWidget& field, const QString& text) {
    Click(field);
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_Delete);
    Type(text);
}

} // namespace test
