#include "tests/support/WindowTest.h"

#include "database/General.h"
#include "database/Schema.h"
#include "shell/General.h"
#include "shell/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>

#include <numeric>

namespace test {

void Program::MakeBook() const {
    const auto book = Create(Path());
    book->Execute(QStringLiteral("CREATE TABLE v00 (v00vrid BYTE NOT NULL PRIMARY KEY)"));
    book->Execute(QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (3)"));
    book->Close();
}

void Program::Start() const {
    MakeBook();
    Store(Path());
    General::Main();
    ASSERT_NE(forms::MdiForm::Current(), nullptr);
}

void Program::Choose(const char* entry) {
    ControlOf<QAction>(Window(), entry).trigger();
}

void Program::ChooseInMenu(const std::shared_ptr<forms::Form>& window, const char* entry,
                           const std::function<void(Answers&)>& expect) {
    Activate(window);
    Answers answers;
    answers.Menu(ControlOf<QAction>(Window(), entry).parent()->objectName(), QString::fromLatin1(entry));
    if (expect)
        expect(answers);
    QTest::mouseClick(window->Surface()->findChild<forms::FlexGrid*>()->viewport(), Qt::RightButton,
                      Qt::NoModifier, QPoint(50, 5));
}

std::vector<std::shared_ptr<forms::Form>> Program::Windows(const char* name) {
    auto windows = forms::Form::Loaded();
    std::erase_if(windows, [name](const auto& form) { return form->Name() != QLatin1String(name); });
    return windows;
}

std::shared_ptr<forms::Form> Program::Last(const char* name) {
    const auto windows = Windows(name);
    if (windows.empty())
        throw std::runtime_error(std::string("no window ") + name);
    return windows.back();
}

QStringList Program::Children() {
    QStringList names;
    for (const auto& form : forms::Form::Loaded()) {
        if (form.get() != forms::MdiForm::Current() && form->Surface()->isVisible())
            names += form->Name();
    }
    return names;
}

QStringList Program::Listed(const forms::FlexGrid& grid, QList<int> columns) {
    if (columns.isEmpty()) {
        columns.resize(grid.Cols());
        std::iota(columns.begin(), columns.end(), 0);
    }
    QStringList rows;
    for (int row = 1; row < grid.Rows(); ++row) {
        QStringList cells;
        for (const int column : columns)
            cells += grid.TextMatrix(row, column);
        rows += cells.join(u'|');
    }
    return rows;
}

QMdiSubWindow& Program::FrameOf(const std::shared_ptr<forms::Form>& window) {
    for (QWidget* widget = window->Surface(); widget; widget = widget->parentWidget()) {
        if (auto* frame = qobject_cast<QMdiSubWindow*>(widget))
            return *frame;
    }
    throw std::runtime_error("no child window");
}

void Program::Activate(const std::shared_ptr<forms::Form>& window) {
    QMdiSubWindow& frame = FrameOf(window);
    frame.mdiArea()->setActiveSubWindow(&frame);
}

/// A display without a window manager leaves no window active when a box or a menu goes.
void Program::TakeKeyboard() {
    QWidget* window = QApplication::activeModalWidget();
    if (!window)
        window = &Window();
    if (QApplication::activeWindow() != window)
        window->activateWindow();
    ASSERT_TRUE(QTest::qWaitFor([window] { return QApplication::activeWindow() == window; }));
    QApplication::processEvents();
}

QString Program::FocusName() {
    TakeKeyboard();
    const QWidget* focus = QApplication::focusWidget();
    return focus ? focus->objectName() : QString();
}

void Program::Type(const QString& text) {
    TakeKeyboard();
    for (const QChar character : text)
        QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key_unknown, QString(character),
                            Qt::NoModifier);
}

void Program::Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    TakeKeyboard();
    QTest::keyClick(QApplication::focusWidget(), key, modifiers);
}

void Program::Click(QWidget& widget, QPoint position) {
    TakeKeyboard();
    QTest::mouseClick(&widget, Qt::LeftButton, Qt::NoModifier, position);
}

void Program::Fill(QWidget& field, const QString& text) {
    Click(field);
    Press(Qt::Key_A, Qt::ControlModifier);
    Press(Qt::Key_Delete);
    Type(text);
}

void WindowTest::SetUp() {
    schema::KeepLookUps();
    gWorkspace = engine::DBEngine::Workspaces(0);
    gDatabase = Create(Path());
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));
    forms::Form::Default<frmMain>()->Show();
    Window().resize(1200, 900);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window()));
}

void WindowTest::TearDown() {
    forms::Form::Default<frmMain>()->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    gDatabase->Close();
    EXPECT_EQ(Integrity(Path()), QStringLiteral("ok"));
}

void WindowTest::AddCard(int id, const QString& last, const QString& first, const QString& middle,
                         const QString& remark, const QString& bith) {
    QStringList values{QString::number(id)};
    for (const QString& text : {last, first, middle, remark, bith})
        values += text.isNull() ? QStringLiteral("NULL") : u'\'' + text + u'\'';
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) VALUES (") +
        values.join(u',') + u')');
}

void WindowTest::AddPhone(int card, int code, const QString& number) {
    Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, %2, '%3')")
            .arg(QString::number(card), QString::number(code), number));
}

void WindowTest::AddEvent(const QString& name, const QString& date, int period) {
    Run(QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('%1', '%2', %3)")
            .arg(name, date, QString::number(period)));
}

} // namespace test
