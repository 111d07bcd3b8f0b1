// The main window: its menus, commands on the active child, window list, arrangements, the end.

#include "platform/forms/MsgBox.h"
#include "shared/Commands.h"
#include "tests/support/WindowTest.h"

#include <QApplication>
#include <QLineEdit>
#include <QMenuBar>
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
    std::function<void()> inUnload;

    void DoNotFillGrid(bool bNeedFill) override { Tell(QStringLiteral("DoNotFillGrid(%1)").arg(bNeedFill)); }
    void FillGrid(const QString& strSQL) override { Tell(QStringLiteral("FillGrid(%1)").arg(strSQL)); }
    void ShowFilter() override { Tell(QStringLiteral("ShowFilter")); }
    void EditRecord(int nAction) override { Tell(QStringLiteral("EditRecord(%1)").arg(nAction)); }
    void ExtractToAnotherDB() override { Tell(QStringLiteral("ExtractToAnotherDB")); }
    void ExtractToCSV() override { Tell(QStringLiteral("ExtractToCSV")); }
    void EditEvent(int nType) override { Tell(QStringLiteral("EditEvent(%1)").arg(nType)); }
    void DeleteEvent() override {
        Tell(QStringLiteral("DeleteEvent"));
        if (inDelete)
            inDelete();
    }

protected:
    void CreateControls(QWidget* surface) override {
        auto* field = new QLineEdit;
        field->setFixedSize(180, 80);
        (new QVBoxLayout(surface))->addWidget(field);
    }
    void Form_Activate() override { Tell(QStringLiteral("activate")); }
    void Form_Unload() override {
        Tell(QStringLiteral("unload"));
        if (inUnload)
            inUnload();
    }
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

    static QMenu& WindowMenu() { return ControlOf<QMenu>(Window(), "mnuWindows"); }
    static QStringList WindowList() {
        Q_EMIT WindowMenu().aboutToShow();
        QStringList entries;
        for (const QAction* entry : WindowMenu().actions())
            if (entry->isCheckable())
                entries.append(entry->isChecked() ? u'*' + entry->text() : entry->text());
        return entries;
    }
    static QAction& Entry(qsizetype number) {
        const qsizetype listed = WindowList().size();
        const QList<QAction*> entries = WindowMenu().actions();
        return *entries.at(entries.size() - listed + number);
    }
};

} // namespace

TEST_F(FrameTest, MenusSayWhatTheyDo) {
    const std::pair<const char*, const char*> menus[] = {
        {"mnuBook", "Книга: Записи...; Органайзер...; Коды городов...; ; Выбрать другую базу...; ; "
                    "Импорт книги из CSV файла...; ; Выход"},
        {"mnuSettings", "Настройки: Типы телефонных номеров...; SQL наблюдатель..."},
        {"mnuRecords", "Меню записей: Обновить; ; Фильтр; ; Добавить запись; Изменить запись; "
                       "Посмотреть запись; ; Извлечь в другую базу; ; Импортировать из CSV файла; "
                       "Извлечь в CSV файл"},
        {"mnuCalendar", "Меню органайзера: Добавить...; Редактировать; Удалить"},
        {"mnuTelKod", "Меню кодов городов: Фильтр"},
        {"mnuWindows", "Окна: Каскад; По горизонтали; По вертикали"},
        {"mnuHelp", "Помощь: О программе..."},
    };
    for (const auto& [name, said] : menus) {
        const auto& menu = ControlOf<QMenu>(Window(), name);
        QStringList captions;
        for (const QAction* action : menu.actions())
            captions += action->isSeparator() ? QString() : action->text();
        EXPECT_EQ(menu.title() + QStringLiteral(": ") + captions.join(QStringLiteral("; ")),
                  QString::fromUtf8(said));
    }
    QStringList bar;
    for (const QAction* action : Window().menuBar()->actions())
        bar += action->menu()->objectName();
    EXPECT_EQ(bar.join(u' '), QStringLiteral("mnuBook mnuSettings mnuWindows mnuHelp"));
}

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
    const std::pair<const char*, const char*> rows[] = {
        {"mnuRecordsRefresh", "b.DoNotFillGrid(1) b.FillGrid()"},
        {"mnuRecordsFilter", "b.ShowFilter"},
        {"mnuRecordsAdd", "b.EditRecord(1)"},
        {"mnuRecordsEdit", "b.EditRecord(0)"},
        {"mnuRecordsView", "b.EditRecord(2)"},
        {"mnuRecordsExtractToEnotherDB", "b.ExtractToAnotherDB"},
        {"mnuRecordsExtractToCSV", "b.ExtractToCSV"},
        {"mnuCalendarAddEvent", "b.EditEvent(1)"},
        {"mnuCalendarEditEvent", "b.EditEvent(0)"},
        {"mnuCalendarRemoveEvent", "b.DeleteEvent"},
        {"mnuTelKodFilter", "b.ShowFilter"},
    };
    for (const auto& [command, calls] : rows) {
        Choose(command);
        EXPECT_EQ(Take(), QString::fromLatin1(calls)) << command;
    }
    Choose("mnuHelpAbout");
    test::Answers answers;
    answers.BoxStarting(QStringLiteral("произошла ошибка №438 "), forms::Icon::Critical);
    Choose("mnuRecordsFilter"); // a child of another kind
}

TEST_F(FrameTest, EachLaunchOpensAWindowOfItsOwnAndOneAboutBox) {
    QStringList expected;
    for (const auto& [command, window] : {std::pair("mnuBookImport", "frmImportMasterStep1"),
                                          {"mnuRecordsImportFromCSV", "frmImportMasterStep1"},
                                          {"mnuSettingsSQLVIEW", "frmUserEditor"},
                                          {"mnuSettingsSQLVIEW", "frmUserEditor"},
                                          {"mnuHelpAbout", "frmAbout"}}) {
        Choose(command);
        expected += QString::fromLatin1(window);
        EXPECT_EQ(Children(), expected);
    }
    Choose("mnuHelpAbout");
    EXPECT_EQ(Children(), expected);
}

TEST_F(FrameTest, WindowListFollowsTheChildren) {
    const qsizetype own = WindowMenu().actions().size();
    const auto first = Open("a");
    const auto second = Open("b");
    const auto hidden = Open("c");
    hidden->SetVisible(false);
    first->SetCaption(QStringLiteral("Окно A&B"));
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("Окно A&&B"), QStringLiteral("*Окно b")}));
    EXPECT_TRUE(WindowMenu().actions().at(own)->isSeparator());
    Take();
    Entry(0).trigger();
    EXPECT_EQ(Take(), QStringLiteral("a.activate"));
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("*Окно A&&B"), QStringLiteral("Окно b")}));

    FrameOf(second).showMinimized();
    Entry(1).trigger();
    EXPECT_FALSE(second->IsMinimised()) << "choosing a minimised child restores it";
    FrameOf(second).showMinimized();
    first->Show();
    Activate(second); // as a click does
    EXPECT_EQ(Frame().ActiveForm(), second);
    hidden->Show();
    hidden->SetVisible(false);
    EXPECT_EQ(Frame().ActiveForm(), first) << "a minimised child comes last";

    first->SetCaption(second->Caption());
    EXPECT_EQ(WindowList(), QStringList({QStringLiteral("*Окно b (1)"), QStringLiteral("Окно b (2)")}));
    for (const auto& form : {first, second, hidden})
        form->Unload();
    EXPECT_EQ(WindowList(), QStringList());
    EXPECT_EQ(WindowMenu().actions().size(), own) << "no separator without entries";
}

TEST_F(FrameTest, Arrangements) {
    constexpr auto Cascade = "mnuWindowCascade";
    constexpr auto UnderEachOther = "mnuWindowHorizontal";
    constexpr auto SideBySide = "mnuWindowVertical";
    Window().resize(900, 1000);
    QTest::qWait(0);
    for (const char* command : {Cascade, UnderEachOther, SideBySide})
        Choose(command); // without a child: nothing
    const auto a = Open("a");
    const auto fixed = Open("b", Border::Fixed);
    const auto c = Open("c");
    const QSize fixedSize = FrameOf(fixed).size();
    const QRect ground = Area().viewport()->rect();
    const auto place = [](const auto& form) { return FrameOf(form).geometry(); };

    Choose(UnderEachOther);
    EXPECT_EQ(place(fixed), QRect(ground.topLeft(), fixedSize));
    EXPECT_EQ(place(c).topLeft(), QPoint(ground.left(), place(fixed).bottom() + 1)) << "the active one first";
    EXPECT_EQ(place(c).right(), ground.right());
    EXPECT_EQ(place(a), QRect(QPoint(ground.left(), place(c).bottom() + 1), ground.bottomRight()));

    Choose(SideBySide);
    EXPECT_EQ(place(c).topLeft(), QPoint(place(fixed).right() + 1, ground.top()));
    EXPECT_EQ(place(c).bottom(), ground.bottom());
    EXPECT_EQ(place(a), QRect(QPoint(place(c).right() + 1, ground.top()), ground.bottomRight()));

    FrameOf(a).showMinimized();
    Choose(SideBySide);
    EXPECT_TRUE(a->IsMinimised());
    EXPECT_EQ(place(c).bottomRight(), QPoint(ground.right(), place(a).top() - 1)) << "above it";

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

    const auto big = Open("h", Border::Fixed);
    const QSize edges = FrameOf(big).size() - big->Surface()->size();
    const QSize size = ground.size() + QSize(-1, 1); // too wide beside the bar that it brings
    big->Surface()->setMinimumSize(size - edges);
    ASSERT_TRUE(QTest::qWaitFor([&] { return FrameOf(big).size() == size; }));
    Choose(UnderEachOther);
    const auto room = [] { return Area().viewport()->rect(); };
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return room().width() < ground.width() && room().height() < ground.height(); }));
    EXPECT_EQ(place(a).bottomRight(), room().bottomRight()) << "beside both scroll bars";
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
    const auto b = Open("b");
    b->SetVisible(false);
    Open("c");
    Take();
    Window().close();
    EXPECT_EQ(Take(), QStringLiteral("a.unload a.terminate b.unload c.unload c.terminate"))
        << "hidden ones too, and none is activated on the way";
    EXPECT_TRUE(forms::Form::Loaded().empty());
}

TEST_F(FrameTest, ItMayBeClosedWhileAChildGoes) {
    const auto a = Open("a");
    Open("b");
    a->inUnload = [] { Window().close(); };
    a->Unload();
    EXPECT_EQ(Take(), QStringLiteral("a.unload b.unload b.terminate"));
    EXPECT_TRUE(forms::Form::Loaded().empty());
}
