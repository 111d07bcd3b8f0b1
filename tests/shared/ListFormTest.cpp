// What both pairs of list and filter do alike, by the pair of the cards: fill, refresh, freeze, count, the
// 16-bit limit, criteria, and who holds whom.

#include "shared/ListForm.h"

#include "platform/forms/ListBox.h"
#include "platform/forms/Twips.h"
#include "tests/support/WindowTest.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QTabWidget>

namespace {

const QString All = QStringLiteral("SELECT * FROM a01");
const QString Order = QStringLiteral(" ORDER BY a01last, a01frst, a01midl");

class ListFormTest : public test::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        for (const char* name : {"Абакан", "Москва", "Мосальск", "О^Нил"})
            Add(QString::fromUtf8(name));
        Choose("mnuBookRecords");
        filter = Last("frmRecordsFilter");
        list = std::static_pointer_cast<ListForm>(Last("frmRecords"));
    }
    void TearDown() override {
        filter.reset();
        list.reset();
        WindowTest::TearDown();
    }

    void Add(const QString& name) { AddCard(++m_added, name); }
    void ShowFilter() {
        ChooseInMenu(list, "mnuRecordsFilter");
        filter = Last("frmRecordsFilter");
    }
    void Find() { ClickButton(filter, "cmdFind"); }

    /// A control of the filter, its page in front.
    template <class Widget>
    Widget& Of(const char* name) {
        auto& widget = Control<Widget>(filter, name);
        auto* tabs = filter->Surface()->findChild<QTabWidget*>();
        tabs->setCurrentIndex(tabs->widget(1)->isAncestorOf(&widget) ? 1 : 0);
        return widget;
    }
    QLineEdit& Name() { return Of<QLineEdit>("txtLastName"); }
    void FillName(const char* text) { Fill(Name(), QString::fromUtf8(text)); }
    forms::ListBox& Types() { return Of<forms::ListBox>("lstTelefonType"); }
    void Pick(int row) { Click(*Types().viewport(), Types().visualItemRect(Types().item(row)).center()); }
    bool IsTicked(const char* box) { return Of<QCheckBox>(box).isChecked(); }
    void Tick(const char* name) {
        auto& box = Of<QCheckBox>(name);
        Click(box, QPoint(5, box.height() / 2));
    }
    static bool IsWhite(const QWidget& field) {
        return field.palette().color(QPalette::Base) == QColor(Qt::white);
    }

    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(list, "gridRecords"); }
    /// The number of rows by tag and count box, and the names.
    QString Shown() {
        return Grid().Tag() + u'/' + Control<QLineEdit>(list, "txtRecordsNumber").text() + u':' +
               Listed(Grid(), {1}).join(u' ');
    }
    /// What stands in the statement between its tables and its order.
    QString Criteria() {
        const QString text = list->CurrentSQL();
        EXPECT_TRUE(text.endsWith(Order)) << text.toStdString();
        return text
            .mid(text.startsWith(All + QStringLiteral(", ")) ? text.lastIndexOf(QStringLiteral("AND"))
                                                             : All.size())
            .chopped(Order.size());
    }

    std::shared_ptr<forms::Form> filter;
    std::shared_ptr<ListForm> list;

private:
    int m_added = 0;
};

} // namespace

TEST_F(ListFormTest, StatesOfTheList) {
    EXPECT_EQ(Frame().ActiveForm(), filter) << "the filter stands in front of its list";
    EXPECT_EQ(Shown(), QStringLiteral("0/:")) << "new: a blank row, no count";
    list->FillGrid(All);
    EXPECT_EQ(list->CurrentSQL(), QString()) << "a suppressed statement is dropped";

    ChooseInMenu(list, "mnuRecordsRefresh");
    EXPECT_EQ(Shown(), QStringLiteral("4/4:Абакан Мосальск Москва О^Нил")) << "refresh of a new list";
    EXPECT_EQ(Criteria(), QString());

    ShowFilter();
    FillName("Моск*");
    Press(Qt::Key_Return);
    EXPECT_EQ(Shown(), QStringLiteral("1/1:Москва"));
    EXPECT_FALSE(filter->Surface()->isVisible());
    EXPECT_EQ(Frame().ActiveForm(), list);
    Add(QStringLiteral("Москва-2"));
    list->FillGrid(QString());
    EXPECT_EQ(Shown(), QStringLiteral("2/2:Москва Москва-2")) << "refresh keeps the filter";

    ShowFilter();
    EXPECT_EQ(Frame().ActiveForm(), filter);
    EXPECT_EQ(Name().text(), QStringLiteral("Моск*")) << "as the user left it";
    EXPECT_EQ(FocusName(), Name().objectName());
    Press(Qt::Key_Escape);
    EXPECT_FALSE(filter->Surface()->isVisible());
    Add(QStringLiteral("Москва-3"));
    list->FillGrid(QString());
    EXPECT_EQ(Shown(), QStringLiteral("2/2:Москва Москва-2")) << "frozen";

    ShowFilter();
    FillName("нет");
    Find();
    EXPECT_EQ(Shown(), QStringLiteral("0/0:")) << "nothing found";
}

TEST_F(ListFormTest, CriteriaTickColourAndClause) {
    EXPECT_FALSE(IsWhite(Name()));
    FillName("x");
    EXPECT_TRUE(IsTicked("chkLastName"));
    EXPECT_TRUE(IsWhite(Name()));
    FillName("");
    EXPECT_FALSE(IsTicked("chkLastName")) << "emptying the field unticks";
    EXPECT_FALSE(IsWhite(Name()));

    Types().setFocus(Qt::TabFocusReason);
    EXPECT_FALSE(IsTicked("chkTelefonType")) << "reaching the list picks nothing";
    Pick(1);
    EXPECT_TRUE(IsWhite(Types()));
    Tick("chkTelefonType");
    EXPECT_FALSE(IsWhite(Types()));
    Find();
    EXPECT_EQ(Criteria(), QString());

    ShowFilter();
    Pick(0);
    Find();
    EXPECT_EQ(Criteria(), QStringLiteral("AND t01cval = '%1'").arg(Types().List(0)));
    ShowFilter();
    Tick("chkTelefonType");
    Tick("chkLastName");
    Find();
    EXPECT_EQ(Criteria(), QStringLiteral(" WHERE a01last LIKE ''")) << "a ticked box counts over nothing too";

    ShowFilter();
    FillName("О'*");
    Press(Qt::Key_Return);
    EXPECT_EQ(Criteria(), QStringLiteral(" WHERE a01last LIKE 'О^*'"))
        << "the rule runs before Enter searches";
    EXPECT_EQ(Shown(), QStringLiteral("1/1:О^Нил"));
    ShowFilter();
    Control(filter, "cmdCancel").setFocus();
    Name().setText(QStringLiteral("д'*"));
    Tick("chkLastName");
    Find();
    EXPECT_EQ(Criteria(), QString()) << "the rule ticks no box that was unticked by hand";
    EXPECT_EQ(Name().text(), QStringLiteral("д^*"));
}

TEST_F(ListFormTest, FailingStatementsLeaveTheGrid) {
    Find();
    const QString before = Shown();
    const QString head = QStringLiteral("frmRecords функция FillGrid:");
    ShowFilter();
    FillName("[М");
    test::Answers answers;
    answers.Failure(head, 93).Failure(head, 93).Failure(head, 3265);
    Find();
    EXPECT_FALSE(filter->Surface()->isVisible());
    list->FillGrid(QString()); // the statement stays
    EXPECT_EQ(Shown(), before);
    list->FillGrid(QStringLiteral("SELECT 7 AS one FROM t01"));
    EXPECT_EQ(Grid().Tag(), QStringLiteral("4")) << "columns are missing: as far as the fill had come";
    list->FillGrid(All + Order);
    EXPECT_EQ(Shown(), before);
}

TEST_F(ListFormTest, ClosingTheListEndsTheFilterAndClosingTheFilterDoesNot) {
    FillName("x");
    const std::weak_ptr<forms::Form> weakFilter = filter;
    const std::weak_ptr<forms::Form> weakList = list;
    FrameOf(filter).close();
    EXPECT_FALSE(filter->IsLoaded());
    filter.reset();
    ASSERT_FALSE(weakFilter.expired()) << "the list holds it";
    ShowFilter();
    EXPECT_EQ(filter, weakFilter.lock());
    EXPECT_EQ(Name().text(), QString()) << "blank again";
    EXPECT_EQ(Windows("frmRecords").size(), 1U) << "with the same list";

    Find();
    filter.reset();
    FrameOf(list).close();
    EXPECT_TRUE(weakFilter.expired()) << "a hidden filter goes with its list";
    list.reset();
    EXPECT_TRUE(weakList.expired());
}

TEST_F(ListFormTest, FilterWithoutItsEntries) {
    list->Unload();
    const std::tuple<const char*, const char*, const char*, QString> rows[] = {
        {"DELETE FROM t01", "mnuBookRecords", "frmRecordsFilter",
         QStringLiteral("Нарушена целостность базы данных: в таблице t01 типы телефонных номеров.")},
        {"DELETE FROM t02", "mnuBookTelKod", "frmTelKodFilter",
         QStringLiteral("Нарушена целостность базы данных: в таблице t02 отсутствуют записи.")},
        {"DROP TABLE t02", "mnuBookTelKod", "frmTelKodFilter",
         test::ErrorStart(QStringLiteral("frmTelKodFilter функция Form_Load:"), 3078)},
    };
    for (const auto& [statement, command, name, told] : rows) {
        SCOPED_TRACE(statement);
        Run(QString::fromLatin1(statement));
        test::Answers answers;
        answers.BoxStarting(told, forms::Icon::Critical);
        Choose(command);
        filter = Last(name);
        EXPECT_TRUE(filter->Surface()->isVisible());
        Find();
        EXPECT_FALSE(filter->IsLoaded()) << "without a list there is nothing to come back for";
        EXPECT_EQ(Children(), QStringList());
    }
}

TEST_F(ListFormTest, ResizeRule) {
    QMdiSubWindow& window = FrameOf(list);
    const auto& label = Control<QLabel>(list, "lblRecordsNumber");
    const auto& count = Control<QLineEdit>(list, "txtRecordsNumber");
    const int others = Grid().ColWidth(0) + Grid().ColWidth(1) + Grid().ColWidth(2);
    // Up to here the last column keeps its width.
    const int least = (others + 390 + 400 + 1500) / forms::TwipsPerPixel;
    for (const auto& [asked, height] : {std::pair(QSize(least + 200, 500), 500), {{least, 60}, 133}}) {
        const int before = Grid().ColWidth(3);
        window.resize(asked);
        EXPECT_EQ(window.height(), height) << "the least height is 2000";
        EXPECT_EQ(Grid().geometry().topLeft(), QPoint(8, 8));
        EXPECT_EQ(Grid().width(), window.width() - 26);
        EXPECT_EQ(Grid().ColWidth(3), asked.width() > least ? list->Width() - 790 - others : before);
        EXPECT_EQ(count.geometry().right(), Grid().geometry().right());
        EXPECT_EQ(label.geometry().right() + 8, count.geometry().left());
    }
    QFont font = list->Surface()->font();
    font.setPointSize(font.pointSize() * 2);
    list->Surface()->setFont(font);
    window.resize(700, 400);
    EXPECT_LT(count.geometry().bottom(), list->Surface()->height()) << "wholly on the window";
    EXPECT_GT(count.y(), Grid().geometry().bottom());
    EXPECT_GE(label.width(), label.sizeHint().width());
}

TEST_F(ListFormTest, SixteenBitCounterEndsTheFill) {
    const auto fill = [this](int rows) {
        list->FillGrid(
            QStringLiteral("SELECT TOP %1 a01.* FROM a01, t03 AS x, t03 AS y WHERE a01clid = 1 "
                           "AND x.t03rcid <= 182 AND y.t03rcid <= 182 ORDER BY x.t03rcid, y.t03rcid")
                .arg(rows));
        return QStringLiteral("%1 %2 %3")
            .arg(Grid().Tag())
            .arg(Grid().Rows())
            .arg(Grid().TextMatrix(rows, 1));
    };
    list->DoNotFillGrid(true);
    test::Answers answers;
    EXPECT_EQ(fill(32767), QStringLiteral("32767 32768 Абакан"));
    answers.Box(QStringLiteral("frmRecords функция FillGrid:\r\nпроизошла ошибка №6 Переполнение"),
                forms::Icon::Critical);
    EXPECT_EQ(fill(32768), QStringLiteral("32768 32769 ")) << "no data row";
    EXPECT_EQ(Grid().TextMatrix(1, 1), QString());
}

TEST_F(ListFormTest, ARefillKeepsTheCurrentEntryInSight) {
    list->DoNotFillGrid(true);
    for (int i = 5; i <= 200; ++i)
        Add(QStringLiteral("x"));
    const QString rising = QStringLiteral("SELECT * FROM a01 ORDER BY a01clid");
    const QString joined =
        QStringLiteral("SELECT * FROM a01, t01 WHERE a01clid <= 5 AND t01code <= 2 ORDER BY a01clid");
    const QString falling = QStringLiteral(" DESC");
    const std::tuple<const char*, QString, int, QString, int> cases[] = {
        {"far below", rising, 3, rising + falling, 198},
        {"the same row of its entry", joined, 6, joined + falling, 6},
        {"the last of what is left of its entry", joined, 6, rising, 3},
        {"gone: the row stays", rising, 3,
         QStringLiteral("SELECT * FROM a01 WHERE a01clid > 5 ORDER BY a01clid"), 3},
        {"gone: the last row", rising, 7,
         QStringLiteral("SELECT * FROM a01 WHERE a01clid < 5 ORDER BY a01clid"), 4},
    };
    for (const auto& [what, before, row, after, kept] : cases) {
        SCOPED_TRACE(what);
        list->FillGrid(before);
        Grid().SetRow(row);
        list->FillGrid(after);
        EXPECT_EQ(Grid().Row(), kept);
        EXPECT_EQ(Grid().currentIndex().row(), kept - 1);
        EXPECT_TRUE(Grid().viewport()->rect().contains(Grid().visualRect(Grid().currentIndex()).topLeft()));
    }
}
