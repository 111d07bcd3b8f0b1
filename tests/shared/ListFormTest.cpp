// The pair of list and filter: fill, refresh, freeze, count, the 16-bit limit, and who holds whom.

#include "shared/ListForm.h"

#include "platform/forms/Twips.h"
#include "shared/Declaration.h"
#include "shared/FilterForm.h"
#include "tests/forms/SampleForms.h"
#include "tests/support/Answers.h"
#include "tests/support/Keys.h"
#include "tests/support/TestBook.h"
#include "tests/support/WindowWalk.h"

#include <gtest/gtest.h>

#include <QGridLayout>
#include <QLabel>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QTest>

namespace {

forms::Design DesignOf(const QString& name, forms::Border border) {
    forms::Design design;
    design.name = name;
    design.caption = QStringLiteral("Города");
    design.border = border;
    design.tag = QStringLiteral("0");
    design.size = border == forms::Border::Sizable ? QSize(700, 400) : QSize();
    return design;
}

class TownFilter;

class TownList final : public ListForm {
public:
    TownList()
        : ListForm(DesignOf(QStringLiteral("frmTowns"), forms::Border::Sizable),
                   {QStringLiteral("gridTowns"),
                    QStringLiteral("mnuContext"),
                    QStringLiteral("SELECT * FROM towns ORDER BY id"),
                    {{QStringLiteral("ИД"), QStringLiteral("id"), 0, true},
                     {QStringLiteral("Город"), QStringLiteral("town"), 3000},
                     {QStringLiteral("Код"), QStringLiteral("code")}}}) {}

protected:
    std::shared_ptr<FilterForm> MakeFilter() override;
};

class TownFilter final : public FilterForm {
public:
    TownFilter()
        : FilterForm(
              DesignOf(QStringLiteral("frmTownsFilter"), forms::Border::Fixed),
              {QStringLiteral("SELECT name FROM regions ORDER BY name"), QStringLiteral("Нет регионов.")}) {}

protected:
    void CreateControls(QWidget* surface) override {
        auto* layout = new QGridLayout(surface);
        Place(*layout, AddTextCriterion(surface, QStringLiteral("chkTown"), QStringLiteral("Город:"),
                                        QStringLiteral("txtTown"), 50, QStringLiteral("town")));
        Place(*layout, AddListCriterion(surface, QStringLiteral("chkRegion"), QStringLiteral("Регион:"),
                                        QStringLiteral("lstRegion"), QStringLiteral("region")));
        layout->addWidget(MakeButtonRow(surface), 2, 0, 1, 2);
    }
    std::shared_ptr<ListForm> MakeList() override { return Create<TownList>(); }
    QString Statement() const override {
        return QStringLiteral("SELECT * FROM towns") + Clauses(false) + QStringLiteral(" ORDER BY id");
    }
};

std::shared_ptr<FilterForm> TownList::MakeFilter() {
    return Create<TownFilter>();
}

std::shared_ptr<forms::Form> Loaded(const char* name) {
    std::shared_ptr<forms::Form> found;
    for (const auto& form : forms::Form::Loaded())
        if (form->Name() == QLatin1String(name))
            found = form;
    return found;
}

class ListFormTest : public testing::Test {
protected:
    void SetUp() override {
        gDatabase = engine::DBEngine::Workspaces(0)->CreateDatabase(
            folder.Path(QStringLiteral("book.mdb")), QString::fromUtf16(engine::dbLangGeneral));
        Run("CREATE TABLE regions (name TEXT(50))");
        Run("CREATE TABLE towns (id INTEGER, town TEXT(50), region TEXT(50), code TEXT(10))");
        for (const char* row : {"(1, 'Абакан', 'Хакасия', '3902')", "(2, 'Москва', 'Москва', '495')",
                                "(3, NULL, 'Москва', NULL)", "(4, 'О^Нил', 'Хакасия', '39')"})
            Run("INSERT INTO towns (id, town, region, code) VALUES " + QByteArray(row));
        for (const char* name : {"'Хакасия'", "'Москва'"})
            Run("INSERT INTO regions (name) VALUES (" + QByteArray(name) + ")");
        frame = forms::Form::Create<SampleFrame>();
        frame->Show();
        QTest::qWait(0);
    }

    void TearDown() override {
        filter.reset();
        list.reset();
        if (frame && frame->IsLoaded())
            frame->Unload();
        gDatabase->Close();
        gDatabase.reset();
    }

    static void Run(const QByteArray& sql) {
        gDatabase->Execute(QString::fromUtf8(sql), engine::dbFailOnError);
    }
    static void RunMany(int rows) {
        Run("CREATE TABLE many (id INTEGER, town TEXT(50), code TEXT(10))");
        for (int id = 1; id <= rows; ++id)
            Run("INSERT INTO many (id, town) VALUES (" + QByteArray::number(id) + ", 'x')");
    }

    /// A new pair, as the menu makes it.
    void Open() {
        filter = forms::Form::Create<TownFilter>();
        filter->Show();
        list = std::dynamic_pointer_cast<TownList>(Loaded("frmTowns"));
    }

    template <class T>
    T* On(const std::shared_ptr<forms::Form>& form, const char* name) {
        return form->Surface()->findChild<T*>(QLatin1String(name));
    }
    forms::FlexGrid& Grid() { return *On<forms::FlexGrid>(list, "gridTowns"); }
    QLineEdit* Town() { return On<QLineEdit>(filter, "txtTown"); }
    QCheckBox* Box(const char* name) { return On<QCheckBox>(filter, name); }
    void Press(const char* button) { QTest::mouseClick(On<QPushButton>(filter, button), Qt::LeftButton); }

    /// The number of rows by tag and count box, and the column of ids.
    QString Shown() {
        QStringList ids;
        for (int row = 1; row < Grid().Rows(); ++row)
            ids.append(Grid().TextMatrix(row, 0));
        return QStringLiteral("%1/%2:%3")
            .arg(Grid().Tag(), On<QLineEdit>(list, "txtRecordsNumber")->text(), ids.join(u' '));
    }

    test::TestFolder folder;
    std::shared_ptr<SampleFrame> frame;
    std::shared_ptr<TownFilter> filter;
    std::shared_ptr<TownList> list;
};

} // namespace

TEST_F(ListFormTest, StatesOfTheList) {
    Open();
    EXPECT_EQ(frame->ActiveForm(), filter) << "the filter stands in front of its list";
    EXPECT_EQ(filter->Tag(), QStringLiteral("1"));
    EXPECT_EQ(Shown(), QStringLiteral("0/:")) << "new: a blank row, no count";
    list->FillGrid(QStringLiteral("SELECT * FROM towns"));
    EXPECT_EQ(list->CurrentSQL(), QString()) << "a suppressed statement is dropped";

    list->DoNotFillGrid(true);
    list->FillGrid(QString());
    EXPECT_EQ(Shown(), QStringLiteral("4/4:1 2 3 4")) << "refresh of a new list";
    EXPECT_EQ(list->CurrentSQL(), QStringLiteral("SELECT * FROM towns ORDER BY id"));
    EXPECT_EQ(Grid().TextMatrix(3, 1), QString()) << "NULL is a blank cell";
    EXPECT_EQ(Grid().TextMatrix(0, 1), QStringLiteral("Город"));

    test::Type(Town(), QStringLiteral("Мос*"));
    EXPECT_TRUE(Box("chkTown")->isChecked());
    QTest::keyClick(Town(), Qt::Key_Return);
    EXPECT_EQ(Shown(), QStringLiteral("1/1:2"));
    EXPECT_FALSE(filter->Visible());
    EXPECT_EQ(frame->ActiveForm(), list);
    Run("INSERT INTO towns (id, town) VALUES (5, 'Мосальск')");
    list->FillGrid(QString());
    EXPECT_EQ(Shown(), QStringLiteral("2/2:2 5")) << "refresh keeps the filter";

    list->ShowFilter();
    EXPECT_EQ(frame->ActiveForm(), filter);
    EXPECT_EQ(Town()->text(), QStringLiteral("Мос*")) << "as the user left it";
    Press("cmdCancel");
    Run("DELETE FROM towns WHERE id = 5");
    list->FillGrid(QString());
    EXPECT_EQ(Shown(), QStringLiteral("2/2:2 5")) << "frozen";

    list->ShowFilter();
    Town()->setText(QStringLiteral("нет"));
    Press("cmdFind");
    EXPECT_EQ(Shown(), QStringLiteral("0/0:")) << "nothing found";
}

TEST_F(ListFormTest, CriteriaTickColourAndClause) {
    Open();
    auto* regions = On<forms::ListBox>(filter, "lstRegion");
    const auto white = [](const QWidget* field) {
        return field->palette().color(QPalette::Base) == QColor(Qt::white);
    };
    EXPECT_FALSE(white(Town()));
    test::Type(Town(), QStringLiteral("x"));
    EXPECT_TRUE(white(Town()));
    QTest::keyClick(Town(), Qt::Key_Backspace);
    EXPECT_FALSE(Box("chkTown")->isChecked()) << "emptying the field unticks";
    EXPECT_FALSE(white(Town()));

    QTest::mouseClick(regions->viewport(), Qt::LeftButton, {},
                      regions->visualItemRect(regions->item(1)).center());
    EXPECT_TRUE(Box("chkRegion")->isChecked());
    EXPECT_TRUE(white(regions));
    Box("chkRegion")->click();
    EXPECT_FALSE(white(regions));
    EXPECT_EQ(regions->ListIndex(), 1) << "unticking leaves the selection";
    Press("cmdFind");
    EXPECT_EQ(list->CurrentSQL(), QStringLiteral("SELECT * FROM towns ORDER BY id"));

    list->ShowFilter();
    regions->SetListIndex(0);
    Press("cmdFind");
    EXPECT_EQ(list->CurrentSQL(), QStringLiteral("SELECT * FROM towns WHERE region = 'Москва' ORDER BY id"));

    list->ShowFilter();
    regions->SetListIndex(-1);
    Box("chkRegion")->click();
    Town()->setText(QStringLiteral("О'Н*"));
    Town()->setFocus();
    QTest::keyClick(Town(), Qt::Key_Return);
    EXPECT_EQ(list->CurrentSQL(),
              QStringLiteral("SELECT * FROM towns WHERE town LIKE 'О^Н*' AND region = '' ORDER BY id"))
        << "the apostrophe rule runs before Enter searches";

    list->ShowFilter();
    Box("chkRegion")->click();
    regions->setFocus();
    Town()->setText(QStringLiteral("д'*"));
    Box("chkTown")->click();
    Press("cmdFind");
    EXPECT_EQ(list->CurrentSQL(), QStringLiteral("SELECT * FROM towns ORDER BY id"))
        << "which ticks no box that was unticked by hand";
    EXPECT_EQ(Town()->text(), QStringLiteral("д^*"));
}

TEST_F(ListFormTest, FailingStatementsLeaveTheGrid) {
    Open();
    list->DoNotFillGrid(true);
    list->FillGrid(QString());
    const QString before = Shown();
    const QString head = QStringLiteral("frmTowns функция FillGrid:\r\nпроизошла ошибка №");
    test::Answers answers;
    answers.BoxStarting(head + QStringLiteral("3078 "), forms::Icon::Critical);
    list->FillGrid(QStringLiteral("SELECT * FROM none"));
    EXPECT_EQ(Shown(), before);
    EXPECT_EQ(list->CurrentSQL(), QStringLiteral("SELECT * FROM none")) << "the statement stays";
    answers.BoxStarting(head + QStringLiteral("3078 "), forms::Icon::Critical);
    list->FillGrid(QString());

    answers.BoxStarting(head + QStringLiteral("3265 "), forms::Icon::Critical);
    list->FillGrid(QStringLiteral("SELECT id FROM towns"));
    EXPECT_EQ(Grid().Tag(), QStringLiteral("4")) << "a column is missing: as far as the fill had come";
    list->FillGrid(QStringLiteral("SELECT * FROM towns WHERE id = 2"));
    EXPECT_EQ(Shown(), QStringLiteral("1/1:2"));
}

TEST_F(ListFormTest, SixteenBitCounterEndsTheFill) {
    Open();
    RunMany(32768);
    list->DoNotFillGrid(true);
    const auto fill = [this](int rows) {
        list->FillGrid(QStringLiteral("SELECT * FROM many WHERE id <= %1").arg(rows));
        return QStringLiteral("%1 %2 %3 %4")
            .arg(Grid().Tag())
            .arg(Grid().Rows())
            .arg(Grid().TextMatrix(1, 0), Grid().TextMatrix(rows, 0));
    };
    test::Answers answers;
    EXPECT_EQ(fill(32767), QStringLiteral("32767 32768 1 32767"));
    answers.Box(QStringLiteral("frmTowns функция FillGrid:\r\nпроизошла ошибка №6 Переполнение"),
                forms::Icon::Critical);
    EXPECT_EQ(fill(32768), QStringLiteral("32768 32769  ")) << "no data row";
    EXPECT_EQ(On<QLineEdit>(list, "txtRecordsNumber")->text(), QStringLiteral("32768"));
}

TEST_F(ListFormTest, ARefillKeepsTheCurrentEntryInSight) {
    Open();
    RunMany(1000);
    Run("CREATE TABLE twice (place INTEGER)");
    for (const char* place : {"1", "2"})
        Run("INSERT INTO twice (place) VALUES (" + QByteArray(place) + ")");
    const QString rising = QStringLiteral("SELECT * FROM many ORDER BY id");
    const QString joined = QStringLiteral("SELECT * FROM many, twice WHERE id <= 5 ORDER BY id");
    const struct {
        const char* what;
        QString before;
        int row;
        QString after;
        int kept;
    } cases[] = {
        {"far below", rising, 3, rising + QStringLiteral(" DESC"), 998},
        {"far above", rising, 998, rising + QStringLiteral(" DESC"), 3},
        {"the same row of its entry", joined, 6, joined + QStringLiteral(" DESC"), 6},
        {"the last of what is left of its entry", joined, 6, rising, 3},
        {"gone: the row stays", rising, 3, QStringLiteral("SELECT * FROM many WHERE id > 5 ORDER BY id"), 3},
        {"gone: the last row", rising, 7, QStringLiteral("SELECT * FROM many WHERE id < 5 ORDER BY id"), 4},
        {"a blank row is no entry", QStringLiteral("SELECT * FROM many WHERE id = 0"), 1, rising, 1},
    };
    list->DoNotFillGrid(true);
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

TEST_F(ListFormTest, ClosingTheListEndsTheFilterAndClosingTheFilterDoesNot) {
    Open();
    Town()->setText(QStringLiteral("x"));
    const std::weak_ptr<forms::Form> weakFilter = filter;
    const std::weak_ptr<forms::Form> weakList = list;

    filter->Surface()->parentWidget()->close();
    EXPECT_FALSE(filter->IsLoaded());
    filter.reset();
    ASSERT_FALSE(weakFilter.expired()) << "the list holds it";
    list->ShowFilter();
    filter = std::dynamic_pointer_cast<TownFilter>(Loaded("frmTownsFilter"));
    EXPECT_EQ(filter, weakFilter.lock());
    EXPECT_EQ(Town()->text(), QString()) << "blank again";
    EXPECT_EQ(On<forms::ListBox>(filter, "lstRegion")->ListCount(), 2);
    EXPECT_EQ(Loaded("frmTowns"), list) << "with the same list";

    Press("cmdFind");
    filter.reset();
    list->Surface()->parentWidget()->close();
    EXPECT_TRUE(weakFilter.expired()) << "a hidden filter goes with its list";
    list.reset();
    EXPECT_TRUE(weakList.expired());
    EXPECT_EQ(forms::Form::Loaded().size(), 1U);
}

TEST_F(ListFormTest, FilterWithoutItsEntries) {
    Run("DELETE FROM regions");
    test::Answers answers;
    answers.Box(QStringLiteral("Нет регионов."), forms::Icon::Critical);
    Open();
    EXPECT_TRUE(filter->Visible());
    EXPECT_EQ(filter->Tag(), QStringLiteral("0"));
    EXPECT_FALSE(list);
    Press("cmdFind");
    EXPECT_FALSE(filter->IsLoaded()) << "without a list there is nothing to come back for";

    Run("DROP TABLE regions");
    answers.BoxStarting(QStringLiteral("frmTownsFilter функция Form_Load:\r\nпроизошла ошибка №3078 "),
                        forms::Icon::Critical);
    Open();
    EXPECT_EQ(filter->Tag(), QStringLiteral("0"));
    QTest::keyClick(Town(), Qt::Key_Escape);
    EXPECT_FALSE(filter->IsLoaded());
    EXPECT_FALSE(Loaded("frmTowns")) << "neither shows the list that did not come";
}

TEST_F(ListFormTest, ResizeRule) {
    Open();
    const auto* window = qobject_cast<QMdiSubWindow*>(list->Surface()->parentWidget());
    const auto* label = On<QLabel>(list, "lblRecordsNumber");
    const auto* count = On<QLineEdit>(list, "txtRecordsNumber");
    struct Case {
        QSize asked;
        int height;  ///< of the window, logical pixels
        int lastCol; ///< twips; 0: unchanged
    };
    for (const Case& c :
         {Case{{700, 400}, 400, 700 * 15 - 390 - 960 - 3000 - 400}, Case{{900, 500}, 500, 900 * 15 - 4750},
          Case{{300, 300}, 300, 0}, Case{{300, 60}, 133, 0}}) {
        const int before = Grid().ColWidth(2);
        list->Surface()->parentWidget()->resize(c.asked);
        EXPECT_EQ(window->height(), c.height) << "the least height is 2000";
        EXPECT_EQ(Grid().geometry().topLeft(), QPoint(8, 8));
        EXPECT_EQ(Grid().width(), window->width() - 26);
        EXPECT_EQ(Grid().height(), window->height() - 72);
        EXPECT_EQ(Grid().ColWidth(2), c.lastCol ? c.lastCol : before);
        EXPECT_EQ(count->geometry().right(), Grid().geometry().right());
        EXPECT_EQ(label->geometry().right() + 8, count->geometry().left());
        EXPECT_EQ(count->y(), label->y());
        EXPECT_GE(count->width(), 33);
        EXPECT_LE(count->geometry().bottom(), list->Surface()->height() - 1) << "wholly on the window";
    }
    QFont large = list->Surface()->font();
    large.setPointSize(large.pointSize() * 2);
    list->Surface()->setFont(large);
    list->Surface()->parentWidget()->resize(700, 400);
    EXPECT_LE(count->geometry().bottom(), list->Surface()->height() - 1) << "also in a large font";
    EXPECT_GT(count->y(), Grid().geometry().bottom());
    EXPECT_GE(label->width(), label->sizeHint().width());
    EXPECT_EQ(test::WindowFaults(*list->Surface()), QStringList());
    EXPECT_EQ(test::WindowFaults(*filter->Surface()), QStringList());
}

TEST_F(ListFormTest, ContextMenuOfTheListReachesTheList) {
    Open();
    Press("cmdFind");
    Grid().SetRow(2);
    test::Answers answers;
    answers.Menu(QStringLiteral("mnuContext"), QString());
    QTest::mousePress(Grid().viewport(), Qt::RightButton, {}, QPoint(30, 5));
    EXPECT_TRUE(answers.Done());
    answers.Menu(QStringLiteral("mnuContext"), QString());
    QTest::keyClick(&Grid(), Qt::Key_Menu);
    answers.Menu(QStringLiteral("mnuContext"), QString());
    QTest::keyClick(&Grid(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(answers.Done());
    EXPECT_EQ(Grid().Row(), 2);
    EXPECT_EQ(frame->ActiveForm(), list);
}
