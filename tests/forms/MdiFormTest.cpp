// The frame: commands on the active child, menus, window list, arrangements, the end.

#include "SampleForms.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Failure.h"
#include "tests/support/Answers.h"

#include <gtest/gtest.h>

#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

using forms::Form;
using forms::MdiForm;

class MdiFormTest : public testing::Test {
protected:
    void SetUp() override {
        frame = Form::Create<SampleFrame>();
        frame->Show();
        QTest::qWait(0);
    }

    std::shared_ptr<SampleForm> Open(const QString& name, forms::Border border = forms::Border::Sizable) {
        auto form = Form::Create<SampleForm>(name, forms::Kind::Child, border);
        form->Show();
        TakeTold();
        return form;
    }

    static QMdiSubWindow* FrameOf(const std::shared_ptr<SampleForm>& form) {
        return qobject_cast<QMdiSubWindow*>(form->Surface()->parentWidget());
    }

    QStringList WindowList() const {
        Q_EMIT frame->windows->aboutToShow();
        QStringList entries;
        for (const QAction* entry : frame->windows->actions())
            if (entry->isCheckable())
                entries.append(
                    (entry->isChecked() && entry->actionGroup() ? u'*' + entry->text() : entry->text()));
        return entries;
    }

    std::shared_ptr<SampleFrame> frame;
};

TEST_F(MdiFormTest, CommandsReachTheActiveChild) {
    struct Other {
        void Act() {}
        virtual ~Other() = default;
    };
    frame->CallActive(&SampleForm::Nothing); // no child: nothing
    const auto first = Open(QStringLiteral("a"));
    const auto second = Open(QStringLiteral("b"));
    frame->CallActive(&SampleForm::Nothing);
    EXPECT_EQ(TakeTold(), QStringLiteral("b.left b.nothing")) << "behind the rules of its fields";
    EXPECT_EQ(test::FailureOf([&] { frame->CallActive(&Other::Act); }), 438) << "a child of another kind";
}

TEST_F(MdiFormTest, BarShowsItsMenusAndHidesTheContextMenus) {
    QStringList names;
    for (const QAction* entry : frame->Window()->menuBar()->actions())
        if (entry->isVisible())
            names.append(entry->menu()->objectName());
    EXPECT_EQ(names, QStringList({QStringLiteral("mnuBook"), QStringLiteral("mnuWindows")}));
    ASSERT_TRUE(frame->Window()->findChild<QMenu*>(QStringLiteral("mnuContext")));
    const auto* separator = frame->Window()->findChild<QAction*>(QStringLiteral("mnuContextSeparator"));
    ASSERT_TRUE(separator);
    EXPECT_TRUE(separator->isSeparator());
}

TEST_F(MdiFormTest, PopupMenuReturnsBehindItsCommand) {
    const auto first = Open(QStringLiteral("a"));
    const auto second = Open(QStringLiteral("b"));
    test::Answers answers;
    answers.Menu(QStringLiteral("mnuContext"), QStringLiteral("mnuContextRefill"));
    forms::PopupMenu(QStringLiteral("mnuContext"), QPoint(50, 50));
    EXPECT_EQ(TakeTold(), QStringLiteral("b.left b.refill(7)"));
    answers.Menu(QStringLiteral("mnuContext"), QString());
    forms::PopupMenu(QStringLiteral("mnuContext"), QPoint(50, 50));
    EXPECT_EQ(TakeTold(), QString());
    answers.Menu(QStringLiteral("mnuContext"), QStringLiteral("mnuContextClose"));
    forms::PopupMenu(QStringLiteral("mnuContext"), QPoint(50, 50));
    EXPECT_FALSE(second->IsLoaded());
    EXPECT_EQ(frame->ActiveForm(), first);
}

TEST_F(MdiFormTest, WindowListFollowsTheChildren) {
    EXPECT_EQ(WindowList(), QStringList());
    const qsizetype own = frame->windows->actions().size();
    const auto first = Open(QStringLiteral("a"));
    const auto second = Open(QStringLiteral("b"));
    const auto hidden = Open(QStringLiteral("c"));
    hidden->SetVisible(false);
    first->SetCaption(QStringLiteral("Окно A&B"));
    TakeTold();
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("Окно A&&B"), QStringLiteral("*Окно b")}));
    EXPECT_TRUE(frame->windows->actions().at(own)->isSeparator());

    frame->windows->actions().at(own + 1)->trigger();
    EXPECT_EQ(frame->ActiveForm(), first);
    EXPECT_EQ(TakeTold(), QStringLiteral("b.left a.activate"));
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("*Окно A&&B"), QStringLiteral("Окно b")}));

    FrameOf(second)->showMinimized();
    WindowList();
    frame->windows->actions().at(own + 2)->trigger();
    EXPECT_FALSE(second->IsMinimised()) << "choosing a minimised child restores it";
    EXPECT_EQ(frame->ActiveForm(), second);

    FrameOf(second)->showMinimized();
    first->Show();
    frame->Area()->setActiveSubWindow(FrameOf(second)); // as a click does
    EXPECT_EQ(frame->ActiveForm(), second);
    hidden->Show();
    hidden->SetVisible(false);
    EXPECT_EQ(frame->ActiveForm(), first) << "a minimised child comes last";

    first->SetCaption(second->Caption());
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("*Окно b (1)"), QStringLiteral("Окно b (2)")}));

    for (const auto& form : {first, second, hidden})
        form->Unload();
    EXPECT_EQ(WindowList(), QStringList());
    EXPECT_EQ(frame->windows->actions().size(), own) << "no separator without entries";
}

TEST_F(MdiFormTest, Arrangements) {
    frame->Window()->resize(900, 1000);
    QTest::qWait(0);
    for (const auto arrangement : {MdiForm::Cascade, MdiForm::TileHorizontally, MdiForm::TileVertically})
        frame->Arrange(arrangement); // without a child: nothing
    const auto a = Open(QStringLiteral("a"));
    const auto fixed = Open(QStringLiteral("b"), forms::Border::Fixed);
    const auto c = Open(QStringLiteral("c"));
    const QSize fixedSize = FrameOf(fixed)->size();
    const QRect ground = frame->Area()->viewport()->rect();
    const auto place = [](const auto& form) { return FrameOf(form)->geometry(); };

    frame->Arrange(MdiForm::TileHorizontally);
    for (const auto& form : {a, c}) {
        EXPECT_EQ(place(form).left(), ground.left());
        EXPECT_EQ(place(form).right(), ground.right()) << "wide windows one under the other";
    }
    EXPECT_EQ(place(fixed), QRect(ground.topLeft(), fixedSize));
    EXPECT_EQ(place(c).top(), place(fixed).bottom() + 1) << "of the others the active child first";
    EXPECT_EQ(place(a).top(), place(c).bottom() + 1);
    EXPECT_EQ(place(a).bottom(), ground.bottom());

    frame->Arrange(MdiForm::TileVertically);
    for (const auto& form : {a, c}) {
        EXPECT_EQ(place(form).top(), ground.top());
        EXPECT_EQ(place(form).bottom(), ground.bottom()) << "side by side";
    }
    EXPECT_EQ(place(c).left(), place(fixed).right() + 1);
    EXPECT_EQ(place(a).right(), ground.right());

    FrameOf(a)->showMinimized();
    frame->Arrange(MdiForm::TileVertically);
    EXPECT_TRUE(a->IsMinimised());
    EXPECT_EQ(place(c).bottomRight(), QPoint(ground.right(), place(a).top() - 1)) << "above it";

    FrameOf(a)->showMaximized();
    c->Show();
    TakeTold();
    frame->Arrange(MdiForm::Cascade);
    EXPECT_FALSE(FrameOf(a)->isMaximized());
    EXPECT_GT(place(c).top(), place(fixed).top());
    EXPECT_GT(place(c).left(), place(fixed).left());
    EXPECT_EQ(place(fixed).size(), fixedSize);
    EXPECT_EQ(frame->ActiveForm(), c);
    EXPECT_FALSE(TakeTold().contains(QStringLiteral("activate"))) << "arranging activates nobody";
    EXPECT_EQ(c->Surface()->focusWidget(), c->txtFirst);

    std::vector<std::shared_ptr<SampleForm>> more{fixed};
    for (const char* name : {"d", "e", "f", "g"})
        more.push_back(Open(QString::fromLatin1(name), forms::Border::Fixed));
    for (const auto arrangement : {MdiForm::TileHorizontally, MdiForm::TileVertically}) {
        FrameOf(a)->move(2000, 2000); // scroll bars come, which tiling takes away
        ASSERT_TRUE(QTest::qWaitFor([&] { return frame->Area()->viewport()->rect() != ground; }));
        frame->Arrange(arrangement);
        EXPECT_TRUE(QTest::qWaitFor([&] { return frame->Area()->viewport()->rect() == ground; }));
        for (const auto& form : more)
            EXPECT_TRUE(ground.contains(place(form))) << "with its close box";
        EXPECT_TRUE(ground.contains(place(c)));
        EXPECT_EQ(place(a).bottomRight(), ground.bottomRight());
    }

    const auto big = Open(QStringLiteral("h"), forms::Border::Fixed);
    const QSize edges = FrameOf(big)->size() - big->Surface()->size();
    const QSize size = ground.size() + QSize(-1, 1); // too wide beside the bar that it brings
    big->Surface()->setMinimumSize(size - edges);
    ASSERT_TRUE(QTest::qWaitFor([&] { return FrameOf(big)->size() == size; }));
    frame->Arrange(MdiForm::TileHorizontally);
    const auto room = [this] { return frame->Area()->viewport()->rect(); };
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return room().width() < ground.width() && room().height() < ground.height(); }));
    EXPECT_EQ(place(a).bottomRight(), room().bottomRight()) << "beside both scroll bars";
}

TEST_F(MdiFormTest, BoxesStandOverTheChildThatAsks) {
    const auto first = Open(QStringLiteral("a"), forms::Border::Fixed);
    const auto second = Open(QStringLiteral("b"), forms::Border::Fixed);
    FrameOf(second)->move(frame->Area()->viewport()->rect().bottomRight() -
                          FrameOf(second)->rect().bottomRight());
    for (const auto& form : {first, second}) {
        form->Show();
        form->inFind = [] { forms::MsgBox(QStringLiteral("?"), forms::Icon::Information); };
        QPoint centre;
        test::Answers answers;
        answers.Modal(QStringLiteral("MsgBox"), [&centre](QWidget& box) {
            centre = box.geometry().center();
            box.close();
        });
        form->cmdFind->click();
        const QWidget& child = *FrameOf(form);
        EXPECT_LE((centre - child.mapToGlobal(child.rect().center())).manhattanLength(), 4);
    }
}

TEST_F(MdiFormTest, ClosingTheFrameUnloadsEveryChildFirst) {
    Open(QStringLiteral("a"));
    const auto b = Open(QStringLiteral("b"));
    b->SetVisible(false);
    Open(QStringLiteral("c"));
    TakeTold();
    frame->Window()->close();
    EXPECT_EQ(TakeTold(), QStringLiteral("a.unload a.terminate b.unload c.unload c.terminate frmMain.unload"))
        << "hidden ones too, and none is activated on the way";
    EXPECT_EQ(MdiForm::Current(), nullptr);
    EXPECT_TRUE(Form::Loaded().empty());
}

TEST_F(MdiFormTest, TheFrameMayBeClosedWhileAChildGoes) {
    const auto a = Open(QStringLiteral("a"));
    Open(QStringLiteral("b"));
    a->inUnload = [this] { frame->Window()->close(); };
    a->Unload();
    EXPECT_EQ(TakeTold(), QStringLiteral("a.unload b.unload b.terminate frmMain.unload"));
    EXPECT_TRUE(Form::Loaded().empty());
}
