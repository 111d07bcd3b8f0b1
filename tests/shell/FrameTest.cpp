// The main window: its menus, commands on the active child, window list, arrangements, the end.

#include "platform/forms/MsgBox.h"
#include "shared/Commands.h"
#include "tests/support/WindowTest.h"

#include <QApplication>
#include <QLineEdit>
#include <QScreen>
#include <QVBoxLayout>

using forms::Border;

namespace {

/// What the children tell of their life and of the operations that the menus call on them, in order.
QStringList told;

QString Take() {
    return std::exchange(told, {}).join(u' ');
}

/// A child with a field, whose size no font tells.
class Listener : public forms::Form, public Commands {
public:
    explicit Listener(const char* name, Border border = Border::Sizable)
        : Form({.name = QString::fromLatin1(name),
                .caption = QStringLiteral("Окно ") + QString::fromLatin1(name),
                .border = border,
                .tag = {},
                .size = QSize(400, 300)}) {}
    std::function<void()> inDelete;

    void DoNotFillGrid(bool bNeedFill) override { Tell(QStringLiteral("DoNotFillGrid(%1)").arg(bNeedFill)); }
    void FillGrid(const QString& strSQL) override { Tell(QStringLiteral("FillGrid(%1)").arg(strSQL)); }
    void DeleteEvent() override { inDelete(); }

protected:
    void CreateControls(QWidget* surface) override {
        auto* field = new QLineEdit;
        field->setFixedSize(180, 80);
        (new QVBoxLayout(surface))->addWidget(field);
    }
    void Form_Activate() override { Tell(QStringLiteral("activate")); }
    void Form_Terminate() override { Tell(QStringLiteral("terminate")); }

private:
    void Tell(const QString& what) const { told += Name() + u'.' + what; }
};

class FrameTest : public test::Program {
protected:
    void SetUp() override {
        Start();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&Window()));
        Take();
    }

    static std::shared_ptr<Listener> Open(const char* name, Border border = Border::Sizable) {
        auto form = forms::Form::Create<Listener>(name, border);
        form->Show();
        Take();
        return form;
    }
    static QMdiArea& Area() { return *Window().findChild<QMdiArea*>(); }

    static QStringList WindowList() {
        auto& menu = ControlOf<QMenu>(Window(), "mnuWindows");
        Q_EMIT menu.aboutToShow();
        QStringList entries;
        for (const QAction* entry : menu.actions())
            if (entry->isCheckable())
                entries.append(entry->isChecked() ? u'*' + entry->text() : entry->text());
        return entries;
    }
};

} // namespace

TEST_F(FrameTest, ItFitsTheScreenAndNamesTheFile) {
    const int screen = QGuiApplication::primaryScreen()->availableSize().width();
    EXPECT_GE(screen, Window().width());
    EXPECT_EQ(Window().isMaximized(), screen < 1000) << "else the list of town codes would be cut";
    Store(QStringLiteral("/elsewhere.mdb"));
    Choose("mnuHelpAbout");
    EXPECT_EQ(Window().windowTitle(), QStringLiteral("Завелик - ") + Path());
}

TEST_F(FrameTest, CommandsReachTheActiveChildAndNoOther) {
    Choose("mnuRecordsRefresh"); // no child: nothing
    Open("a");
    Open("b");
    Choose("mnuRecordsRefresh");
    EXPECT_EQ(Take(), QStringLiteral("b.DoNotFillGrid(1) b.FillGrid()"));
    Choose("mnuHelpAbout");
    test::Answers answers;
    answers.BoxStarting(QStringLiteral("произошла ошибка №438 "), forms::Icon::Critical);
    Choose("mnuRecordsFilter"); // a child of another kind
}

TEST_F(FrameTest, EachLaunchOpensAWindowOfItsOwnAndOneAboutBox) {
    for (const char* command : {"mnuSettingsSQLVIEW", "mnuHelpAbout", "mnuSettingsSQLVIEW", "mnuHelpAbout"})
        Choose(command);
    EXPECT_EQ(Children(), QStringList({"frmUserEditor", "frmAbout", "frmUserEditor"}));
}

TEST_F(FrameTest, WindowListFollowsTheChildren) {
    const auto first = Open("a");
    const auto second = Open("b");
    const auto hidden = Open("c");
    hidden->SetVisible(false);
    first->SetCaption(QStringLiteral("Окно A&B"));
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("Окно A&&B"), QStringLiteral("*Окно b")}));
    Take();
    Choose("mnuWindowsList_0");
    EXPECT_EQ(Take(), QStringLiteral("a.activate"));
    FrameOf(second).showMinimized();
    WindowList();
    Choose("mnuWindowsList_1");
    EXPECT_FALSE(second->IsMinimised()) << "choosing a minimised child restores it";
    first->Show();
    first->SetCaption(second->Caption());
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("*Окно b (1)"), QStringLiteral("Окно b (2)")}));
}

TEST_F(FrameTest, Arrangements) {
    constexpr auto Cascade = "mnuWindowCascade";
    constexpr auto UnderEachOther = "mnuWindowHorizontal";
    constexpr auto SideBySide = "mnuWindowVertical";
    Window().resize(900, 1000);
    QTest::qWait(0);
    Choose(Cascade); // without a child: nothing
    const auto a = Open("a");
    const auto fixed = Open("b", Border::Fixed);
    const auto c = Open("c");
    const QSize fixedSize = FrameOf(fixed).size();
    const QRect ground = Area().viewport()->rect();
    const auto place = [](const auto& form) { return FrameOf(form).geometry(); };

    Choose(UnderEachOther);
    EXPECT_EQ(place(fixed), QRect(ground.topLeft(), fixedSize));
    EXPECT_EQ(place(c).topLeft(), QPoint(ground.left(), place(fixed).bottom() + 1)) << "the active one first";
    EXPECT_EQ(place(a), QRect(QPoint(ground.left(), place(c).bottom() + 1), ground.bottomRight()));

    Choose(SideBySide);
    EXPECT_EQ(place(c).topLeft(), QPoint(place(fixed).right() + 1, ground.top()));
    EXPECT_EQ(place(c).bottom(), ground.bottom());
    EXPECT_EQ(place(a), QRect(QPoint(place(c).right() + 1, ground.top()), ground.bottomRight()));

    FrameOf(a).showMaximized();
    c->Show();
    Take();
    Choose(Cascade);
    EXPECT_FALSE(FrameOf(a).isMaximized());
    EXPECT_GT(place(c).top(), place(fixed).top());
    EXPECT_GT(place(c).left(), place(fixed).left());
    EXPECT_EQ(place(fixed).size(), fixedSize);
    EXPECT_EQ(Frame().ActiveForm(), c);
    EXPECT_EQ(Take(), QString()) << "arranging activates nobody";

    std::vector<std::shared_ptr<Listener>> more{fixed, c};
    for (const char* name : {"d", "e", "f", "g"})
        more.push_back(Open(name, Border::Fixed));
    for (const auto* arrangement : {UnderEachOther, SideBySide}) {
        FrameOf(a).move(2000, 2000); // scroll bars come, which tiling takes away
        ASSERT_TRUE(QTest::qWaitFor([&] { return Area().viewport()->rect() != ground; }));
        Choose(arrangement);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Area().viewport()->rect() == ground; }));
        for (const auto& form : more)
            EXPECT_TRUE(ground.contains(place(form))) << "with its close box";
        EXPECT_EQ(place(a).bottomRight(), ground.bottomRight());
    }
}

TEST_F(FrameTest, BoxesStandOverTheChildThatAsks) {
    const auto first = Open("a", Border::Fixed);
    const auto second = Open("b", Border::Fixed);
    FrameOf(second).move(Area().viewport()->rect().bottomRight() - FrameOf(second).rect().bottomRight());
    for (const auto& form : {first, second}) {
        form->Show();
        QPoint centre;
        test::Answers answers;
        answers.Modal(QStringLiteral("MsgBox"), [&centre](QWidget& box) {
            centre = box.geometry().center();
            box.close();
        });
        form->inDelete = [] { forms::MsgBox(QStringLiteral("?"), forms::Icon::Information); };
        Choose("mnuCalendarRemoveEvent");
        const QWidget& child = FrameOf(form);
        EXPECT_LE((centre - child.mapToGlobal(child.rect().center())).manhattanLength(), 4);
    }
}

TEST_F(FrameTest, ClosingItUnloadsEveryChildFirst) {
    Open("a");
    Open("b")->SetVisible(false);
    Open("c");
    Windows("a").front()->Show();
    Take();
    Window().close();
    EXPECT_EQ(Take(), QStringLiteral("a.terminate b.terminate c.terminate"))
        << "hidden ones too, and none is activated on the way";
}
