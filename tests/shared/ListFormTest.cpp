// What both pairs of list and filter do alike, each in its own windows: fill, refresh, freeze, count, the
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

struct Pair {
    const char* command;
    const char* filter;
    const char* list;
    const char* grid;
    const char* filterCommand;
    int name;                       ///< column of the name
    std::vector<const char*> texts; ///< the text criteria, without their first letters, the name first
    const char* nameField;
    const char* choice; ///< the list criterion
    const char* choiceField;
    QString tables; ///< the statement without criteria, up to its order
    QString joined; ///< the same with the choice among the criteria, open for more
    QString where;  ///< how the first criterion begins without it
    QString order;
    QString captions; ///< of filter, list, columns
    QString widths;
    QString choices; ///< table
    QString broken;  ///< what is said when that is empty
    QString add;     ///< a statement with number and name
};

const Pair Records{
    "mnuBookRecords",
    "frmRecordsFilter",
    "frmRecords",
    "gridRecords",
    "mnuRecordsFilter",
    1,
    {"LastName", "FirstName", "MiddleName", "Remark", "Bith", "TelefonNumber"},
    "a01last",
    "TelefonType",
    "t01cval",
    QStringLiteral("SELECT * FROM a01"),
    QStringLiteral(
        "SELECT * FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code AND "),
    QStringLiteral(" WHERE "),
    QStringLiteral(" ORDER BY a01last, a01frst, a01midl"),
    QStringLiteral("Фильтр: список записей|Записи|ИД|Фамилия|Имя|Отчество"),
    QStringLiteral("960 3000 3000"),
    QStringLiteral("t01"),
    QStringLiteral("Нарушена целостность базы данных: в таблице t01 типы телефонных номеров."),
    QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, '%2')"),
};
const Pair Codes{
    "mnuBookTelKod",
    "frmTelKodFilter",
    "frmTelKod",
    "gridTelKod",
    "mnuTelKodFilter",
    1,
    {"City", "CityKod"},
    "t03cval",
    "Region",
    "t02cval",
    QStringLiteral("SELECT * FROM t02, t03 WHERE t02rcid = t03code"),
    QStringLiteral("SELECT * FROM t02, t03 WHERE t02rcid = t03code AND "),
    QStringLiteral(" AND "),
    QStringLiteral(" ORDER BY t02cval, t03cval"),
    QStringLiteral("Фильтр: коды городов|Коды городов|Регион|Город|Код"),
    QStringLiteral("5000 5000"),
    QStringLiteral("t02"),
    QStringLiteral("Нарушена целостность базы данных: в таблице t02 отсутствуют записи."),
    QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, '%2', %1)"),
};

class ListFormTest : public test::WindowTest, public testing::WithParamInterface<const Pair*> {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        Run(QStringLiteral("DELETE FROM t03"));
        for (const char* name : {"Абакан", "Москва", "Мосальск", "О^Нил"})
            Add(QString::fromUtf8(name));
    }
    void TearDown() override {
        filter.reset();
        list.reset();
        WindowTest::TearDown();
    }

    const Pair& P() const { return *GetParam(); }
    void Add(const QString& name) { Run(P().add.arg(QString::number(++m_added), name)); }
    void Open() {
        Choose(P().command);
        filter = Last(P().filter);
        list = std::static_pointer_cast<ListForm>(Last(P().list));
    }
    void ShowFilter() {
        ChooseInMenu(list, P().filterCommand);
        filter = Last(P().filter);
    }
    void Find() { ClickButton(filter, "cmdFind"); }

    /// A control of the filter, its page in front.
    template <class Widget = QWidget>
    Widget& Of(const char* kind, const char* name) {
        auto& widget = Control<Widget>(filter, QByteArray(kind).append(name).constData());
        auto* tabs = filter->Surface()->findChild<QTabWidget*>();
        for (int page = 0; tabs && page < tabs->count(); ++page)
            if (tabs->widget(page)->isAncestorOf(&widget))
                tabs->setCurrentIndex(page);
        return widget;
    }
    QLineEdit& Name() { return Of<QLineEdit>("txt", P().texts[0]); }
    void FillName(const char* text) { Fill(Name(), QString::fromUtf8(text)); }
    forms::ListBox& Choices() { return Of<forms::ListBox>("lst", P().choice); }
    void Pick(int row) {
        Click(*Choices().viewport(), Choices().visualItemRect(Choices().item(row)).center());
    }
    bool IsTicked(const char* name) { return Of<QCheckBox>("chk", name).isChecked(); }
    void Tick(const char* name) {
        auto& box = Of<QCheckBox>("chk", name);
        Click(box, QPoint(5, box.height() / 2));
    }
    static bool IsWhite(const QWidget& field) {
        return field.palette().color(QPalette::Base) == QColor(Qt::white);
    }

    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(list, P().grid); }
    /// The number of rows by tag and count box, and the names.
    QString Shown() {
        return Grid().Tag() + u'/' + Control<QLineEdit>(list, "txtRecordsNumber").text() + u':' +
               Listed(Grid(), {P().name}).join(u' ');
    }
    /// The statement without what every one has.
    QString Criteria() {
        QString text = list->CurrentSQL();
        EXPECT_TRUE(text.endsWith(P().order)) << text.toStdString();
        text.chop(P().order.size());
        return text.startsWith(P().joined) ? text.mid(P().joined.size())
                                           : text.mid((P().tables + P().where).size());
    }

    std::shared_ptr<forms::Form> filter;
    std::shared_ptr<ListForm> list;

private:
    int m_added = 0;
};

} // namespace

TEST_P(ListFormTest, StatesOfTheList) {
    Open();
    EXPECT_EQ(Frame().ActiveForm(), filter) << "the filter stands in front of its list";
    EXPECT_EQ(filter->Tag(), QStringLiteral("1"));
    QStringList captions{filter->Caption(), list->Caption()};
    QStringList widths;
    for (int column = 0; column < Grid().Cols(); ++column) {
        captions += Grid().TextMatrix(0, column);
        widths += QString::number(Grid().ColWidth(column));
    }
    EXPECT_EQ(captions.join(u'|'), P().captions);
    EXPECT_EQ(widths.mid(0, widths.size() - 1).join(u' '), P().widths);
    EXPECT_EQ(Shown(), QStringLiteral("0/:")) << "new: a blank row, no count";
    list->FillGrid(P().tables);
    EXPECT_EQ(list->CurrentSQL(), QString()) << "a suppressed statement is dropped";

    list->DoNotFillGrid(true);
    list->FillGrid(QString());
    EXPECT_EQ(Shown(), QStringLiteral("4/4:Абакан Мосальск Москва О^Нил")) << "refresh of a new list";
    EXPECT_EQ(Criteria(), QString());

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

TEST_P(ListFormTest, CriteriaTickColourAndClause) {
    Open();
    EXPECT_FALSE(IsWhite(Name()));
    FillName("x");
    EXPECT_TRUE(IsTicked(P().texts[0]));
    EXPECT_TRUE(IsWhite(Name()));
    FillName("");
    EXPECT_FALSE(IsTicked(P().texts[0])) << "emptying the field unticks";
    EXPECT_FALSE(IsWhite(Name()));

    Choices().setFocus(Qt::TabFocusReason);
    EXPECT_FALSE(IsTicked(P().choice)) << "reaching the list picks nothing";
    Pick(1);
    EXPECT_TRUE(IsTicked(P().choice));
    EXPECT_TRUE(IsWhite(Choices()));
    Tick(P().choice);
    EXPECT_FALSE(IsWhite(Choices()));
    EXPECT_EQ(Choices().ListIndex(), 1) << "unticking leaves the selection";
    Find();
    EXPECT_EQ(Criteria(), QString());

    const QString isChoice = QString::fromLatin1(P().choiceField) + QStringLiteral(" = '");
    const QString isName = QString::fromLatin1(P().nameField);
    ShowFilter();
    Pick(0);
    Find();
    EXPECT_EQ(Criteria(), isChoice + Choices().List(0) + u'\'');

    ShowFilter();
    Choices().SetListIndex(-1);
    if (!IsTicked(P().choice))
        Tick(P().choice);
    Find();
    EXPECT_EQ(Criteria(), isChoice + u'\'') << "a ticked box counts over nothing too";
    EXPECT_EQ(Shown(), QStringLiteral("0/0:"));
    ShowFilter();
    Tick(P().choice);
    Tick(P().texts[0]);
    Find();
    EXPECT_EQ(Criteria(), isName + QStringLiteral(" LIKE ''"));

    for (const char* text : P().texts) { // the apostrophe rule runs before Enter searches
        ShowFilter();
        auto& field = Of<QLineEdit>("txt", text);
        Fill(field, QStringLiteral("О'*"));
        Press(Qt::Key_Return);
        EXPECT_TRUE(Criteria().contains(QStringLiteral("LIKE 'О^*'"))) << text;
        EXPECT_EQ(field.text(), QStringLiteral("О^*"));
        if (text == P().texts[0]) {
            EXPECT_EQ(Shown(), QStringLiteral("1/1:О^Нил"));
        }
        ShowFilter();
        Fill(field, {});
        Find();
    }

    ShowFilter();
    Name().setText(QStringLiteral("д'*"));
    Tick(P().texts[0]);
    Find();
    EXPECT_EQ(Criteria(), QString()) << "the rule ticks no box that was unticked by hand";
    EXPECT_EQ(Name().text(), QStringLiteral("д^*"));
}

TEST_P(ListFormTest, FailingStatementsLeaveTheGrid) {
    Open();
    Find();
    const QString before = Shown();
    const QString head = QString::fromLatin1(P().list) + QStringLiteral(" функция FillGrid:");
    ShowFilter();
    FillName("[М");
    for (const bool again : {false, true}) {
        test::Answers answers;
        answers.Failure(head, 93);
        if (again)
            list->FillGrid(QString()); // the statement stays
        else
            Find();
        EXPECT_EQ(Shown(), before);
        EXPECT_FALSE(filter->Surface()->isVisible());
    }
    test::Answers answers;
    answers.Failure(head, 3265);
    list->FillGrid(QStringLiteral("SELECT %1 AS one FROM t01").arg(7));
    EXPECT_EQ(Grid().Tag(), QStringLiteral("4")) << "columns are missing: as far as the fill had come";
    list->FillGrid(P().tables + P().order);
    EXPECT_EQ(Shown(), before);
}

TEST_P(ListFormTest, ClosingTheListEndsTheFilterAndClosingTheFilterDoesNot) {
    Open();
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
    EXPECT_GT(Choices().count(), 0);
    EXPECT_EQ(Windows(P().list).size(), 1U) << "with the same list";

    Find();
    filter.reset();
    FrameOf(list).close();
    EXPECT_TRUE(weakFilter.expired()) << "a hidden filter goes with its list";
    list.reset();
    EXPECT_TRUE(weakList.expired());
}

TEST_P(ListFormTest, FilterWithoutItsEntries) {
    const std::pair<QString, std::function<void(test::Answers&)>> rows[] = {
        {QStringLiteral("DELETE FROM "),
         [this](test::Answers& answers) { answers.Box(P().broken, forms::Icon::Critical); }},
        {QStringLiteral("DROP TABLE "),
         [this](test::Answers& answers) {
             answers.Failure(QString::fromLatin1(P().filter) + QStringLiteral(" функция Form_Load:"), 3078);
         }},
    };
    for (const auto& [statement, expect] : rows) {
        Run(statement + P().choices);
        {
            test::Answers answers;
            expect(answers);
            Choose(P().command);
        }
        filter = Last(P().filter);
        EXPECT_TRUE(filter->Surface()->isVisible());
        EXPECT_EQ(filter->Tag(), QStringLiteral("0"));
        if (statement.startsWith(u"DELETE"))
            Find();
        else
            Press(Qt::Key_Escape);
        EXPECT_FALSE(filter->IsLoaded()) << "without a list there is nothing to come back for";
        EXPECT_FALSE(IsOpen(P().list));
    }
}

TEST_P(ListFormTest, ResizeRule) {
    Open();
    QMdiSubWindow& window = FrameOf(list);
    const auto& label = Control<QLabel>(list, "lblRecordsNumber");
    const auto& count = Control<QLineEdit>(list, "txtRecordsNumber");
    const int last = Grid().Cols() - 1;
    int others = 0;
    for (int column = 0; column < last; ++column)
        others += Grid().ColWidth(column);
    const int least =
        (others + 390 + 400 + 1500) / forms::TwipsPerPixel; // up to here the last column keeps its width
    struct Case {
        QSize asked;
        int height; ///< of the window, logical pixels
    };
    for (const Case& c : {Case{{least + 1, 400}, 400}, Case{{least + 200, 500}, 500}, Case{{least, 300}, 300},
                          Case{{least - 200, 60}, 133}}) {
        const int before = Grid().ColWidth(last);
        window.resize(c.asked);
        EXPECT_EQ(window.height(), c.height) << "the least height is 2000";
        EXPECT_EQ(Grid().geometry().topLeft(), QPoint(8, 8));
        EXPECT_EQ(Grid().width(), window.width() - 26);
        EXPECT_EQ(Grid().ColWidth(last), c.asked.width() > least ? list->Width() - 790 - others : before);
        EXPECT_EQ(count.geometry().right(), Grid().geometry().right());
        EXPECT_EQ(label.geometry().right() + 8, count.geometry().left());
        EXPECT_EQ(count.y(), label.y());
    }
    for (const int times : {1, 2}) {
        QFont font = list->Surface()->font();
        font.setPointSize(font.pointSize() * times);
        list->Surface()->setFont(font);
        window.resize(700, 400);
        window.resize(700, 401);
        EXPECT_LT(count.geometry().bottom(), list->Surface()->height()) << "wholly on the window";
        EXPECT_GT(count.y(), Grid().geometry().bottom());
        EXPECT_GE(label.width(), label.sizeHint().width());
    }
}

INSTANTIATE_TEST_SUITE_P(Pairs, ListFormTest, testing::Values(&Records, &Codes),
                         [](const auto& row) { return std::string(row.param->list); });

namespace {

class FilledListTest : public ListFormTest {
protected:
    void SetUp() override {
        ListFormTest::SetUp();
        Open();
        list->DoNotFillGrid(true);
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Pairs, FilledListTest, testing::Values(&Records),
                         [](const auto& row) { return std::string(row.param->list); });

TEST_P(FilledListTest, SixteenBitCounterEndsTheFill) {
    Run(QStringLiteral("DELETE FROM a01 WHERE a01clid > 1"));
    for (int code = 1; code <= 182; ++code)
        Run(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (1, 'x', %1)").arg(code));
    const auto fill = [this](int rows) {
        list->FillGrid(
            QStringLiteral("SELECT TOP %1 a01.* FROM a01, t03 AS x, t03 AS y ORDER BY x.t03rcid, y.t03rcid")
                .arg(rows));
        return QStringLiteral("%1 %2 %3 %4")
            .arg(Grid().Tag())
            .arg(Grid().Rows())
            .arg(Grid().TextMatrix(1, 1), Grid().TextMatrix(rows, 1));
    };
    test::Answers answers;
    EXPECT_EQ(fill(32767), QStringLiteral("32767 32768 Абакан Абакан"));
    answers.Box(QStringLiteral("frmRecords функция FillGrid:\r\nпроизошла ошибка №6 Переполнение"),
                forms::Icon::Critical);
    EXPECT_EQ(fill(32768), QStringLiteral("32768 32769  ")) << "no data row";
    EXPECT_EQ(Control<QLineEdit>(list, "txtRecordsNumber").text(), QStringLiteral("32768"));
    list->FillGrid(P().tables + P().order);
    EXPECT_EQ(Shown(), QStringLiteral("1/1:Абакан")) << "the list goes on";
}

TEST_P(FilledListTest, ARefillKeepsTheCurrentEntryInSight) {
    for (int i = 5; i <= 200; ++i)
        Add(QStringLiteral("x"));
    const QString rising = QStringLiteral("SELECT * FROM a01 ORDER BY a01clid");
    const QString joined =
        QStringLiteral("SELECT * FROM a01, t01 WHERE a01clid <= 5 AND t01code <= 2 ORDER BY a01clid");
    const QString falling = QStringLiteral(" DESC");
    const struct {
        const char* what;
        QString before;
        int row;
        QString after;
        int kept;
    } cases[] = {
        {"far below", rising, 3, rising + falling, 198},
        {"far above", rising, 198, rising + falling, 3},
        {"the same row of its entry", joined, 6, joined + falling, 6},
        {"the last of what is left of its entry", joined, 6, rising, 3},
        {"gone: the row stays", rising, 3,
         QStringLiteral("SELECT * FROM a01 WHERE a01clid > 5 ORDER BY a01clid"), 3},
        {"gone: the last row", rising, 7,
         QStringLiteral("SELECT * FROM a01 WHERE a01clid < 5 ORDER BY a01clid"), 4},
        {"a blank row is no entry", QStringLiteral("SELECT * FROM a01 WHERE a01clid = 0"), 1, rising, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        list->FillGrid(c.before);
        Grid().SetRow(c.row);
        list->FillGrid(c.after);
        EXPECT_EQ(Grid().Row(), c.kept);
        EXPECT_EQ(Grid().currentIndex().row(), c.kept - 1);
        EXPECT_TRUE(Grid().viewport()->rect().contains(Grid().visualRect(Grid().currentIndex()).topLeft()));
    }
}
