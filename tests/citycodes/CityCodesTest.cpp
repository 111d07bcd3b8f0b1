#include "platform/forms/FlexGrid.h"
#include "platform/forms/Twips.h"
#include "shared/ListForm.h"
#include "tests/support/WindowTest.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QPushButton>

#include <optional>

namespace {

/// The Russian alphabet as numbers, without regard to case; signs and digits before the letters.
QList<int> SortKey(const QString& text) {
    static const QString order = QStringLiteral(" -.()0123456789абвгдежзийклмнопрстуфхцчшщъыьэюя");
    QList<int> key;
    for (const QChar c : text.toLower())
        key += static_cast<int>(order.indexOf(c == u'ё' ? QChar(u'е') : c));
    return key;
}

class CityCodes : public test::WindowTest {
protected:
    void Open() {
        Choose("mnuBookTelKod");
        filter = Last("frmTelKodFilter");
        list = std::static_pointer_cast<ListForm>(Last("frmTelKod"));
    }
    void Find() { Click(Control<QPushButton>(filter, "cmdFind")); }
    void ShowFilter() {
        Activate(list);
        test::Answers answers;
        answers.Menu(QStringLiteral("mnuTelKod"), QStringLiteral("mnuTelKodFilter"));
        OpenMenu(Grid());
    }
    void PickRegion(const QString& name) {
        auto& regions = Control<QListWidget>(filter, "lstRegion");
        QListWidgetItem* item = regions.findItems(name, Qt::MatchExactly).value(0);
        ASSERT_NE(item, nullptr);
        regions.scrollToItem(item);
        Click(*regions.viewport(), regions.visualItemRect(item).center());
    }
    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(list, "gridTelKod"); }
    QString Count() { return Control<QLineEdit>(list, "txtRecordsNumber").text(); }
    QCheckBox& Box(const char* name) { return Control<QCheckBox>(filter, name); }
    QLineEdit& Text(const char* name) { return Control<QLineEdit>(filter, name); }
    QStringList Found() {
        QStringList rows;
        for (int row = 0; row < Grid().Rows(); ++row)
            rows += Grid().TextMatrix(row, 0) + u'|' + Grid().TextMatrix(row, 1) + u'|' +
                    Grid().TextMatrix(row, 2);
        return rows.mid(1);
    }

    std::shared_ptr<forms::Form> filter;
    std::shared_ptr<ListForm> list;
};

TEST_F(CityCodes, APairOpensEmptyWithTheFilterInFront) {
    Open();
    EXPECT_EQ(filter->Caption(), QStringLiteral("Фильтр: коды городов"));
    EXPECT_EQ(list->Caption(), QStringLiteral("Коды городов"));
    EXPECT_EQ(filter->Tag(), QStringLiteral("1"));
    EXPECT_EQ(Frame().ActiveForm(), filter);
    EXPECT_EQ(Found(), QStringList(QStringLiteral("||")));
    EXPECT_EQ(Grid().TextMatrix(0, 0), QStringLiteral("Регион"));
    EXPECT_EQ(Grid().TextMatrix(0, 1), QStringLiteral("Город"));
    EXPECT_EQ(Grid().TextMatrix(0, 2), QStringLiteral("Код"));
    EXPECT_EQ(Grid().ColWidth(0), 5000);
    EXPECT_EQ(Grid().ColWidth(1), 5000);
    EXPECT_EQ(Count(), QString());
    EXPECT_EQ(Text("txtCity").maxLength(), 50);
    EXPECT_EQ(Text("txtCityKod").maxLength(), 10);
    EXPECT_EQ(Control<QListWidget>(filter, "lstRegion").count(), 79);
}

TEST_F(CityCodes, WithoutCriteriaAllTownsStandInTheRussianAlphabet) {
    Run(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'Майкоп малый', 1)"));
    Run(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (999, 'НИГДЕ', 2)"));
    Open();
    Find();
    EXPECT_EQ(Count(), QStringLiteral("1914")) << "a town without its region is in no result";
    ASSERT_EQ(Grid().Rows(), 1915);
    EXPECT_EQ(Found().mid(0, 7),
              QStringList({QStringLiteral("АДЫГЕЯ|АДЫГЕЙСК|87772"), QStringLiteral("АДЫГЕЯ|ГИАГИНСКАЯ|87779"),
                           QStringLiteral("АДЫГЕЯ|КОШЕХАБЛЬ|87770"), QStringLiteral("АДЫГЕЯ|МАЙКОП|8772"),
                           QStringLiteral("АДЫГЕЯ|МАЙКОП|87722"), QStringLiteral("АДЫГЕЯ|Майкоп малый|1"),
                           QStringLiteral("АДЫГЕЯ|ТАХТАМУКАЙ|87771")}));
    for (int row = 2; row < Grid().Rows(); ++row) {
        const auto key = [&](int r) {
            return std::pair(SortKey(Grid().TextMatrix(r, 0)), SortKey(Grid().TextMatrix(r, 1)));
        };
        ASSERT_LE(key(row - 1), key(row)) << Grid().TextMatrix(row, 1).toStdString();
    }
}

TEST_F(CityCodes, ARefillKeepsTheTownByAllOfItsRow) {
    Open();
    Find();
    Grid().SetRow(5); // the second of two rows of one town
    const QString town = QStringLiteral("АДЫГЕЯ|МАЙКОП|87722");
    ASSERT_EQ(Found().at(4), town);
    Run(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'Абадзехская', 1)"));
    filter->SetVisible(true);
    Find();
    EXPECT_EQ(Grid().Row(), 6);
    EXPECT_EQ(Found().at(5), town);
}

TEST_F(CityCodes, EveryCriterionCountsAloneAndTogether) {
    struct Case {
        QString city, code, region;
        int count;
        QString first;
    };
    const std::vector<Case> cases = {
        {{}, QStringLiteral("495"), {}, 1, QStringLiteral("МОСКОВСКАЯ ОБЛАСТЬ|МОСКВА|495")},
        {{}, QStringLiteral("49*"), {}, 95, QStringLiteral("ВЛАДИМИРСКАЯ ОБЛАСТЬ|АЛЕКСАНДРОВ|49244")},
        {QStringLiteral("КРАСН*"), {}, {}, 38, QStringLiteral("АЛТАЙСКИЙ КРАЙ|КРАСНОГОРСКОЕ|38535")},
        {QStringLiteral("красное"), {}, {}, 2, QStringLiteral("БЕЛГОРОДСКАЯ ОБЛАСТЬ|КРАСНОЕ|47262")},
        {QStringLiteral("КРАСН"), {}, {}, 0, QStringLiteral("||")},
        {{}, {}, QStringLiteral("ИНГУШЕТИЯ"), 1, QStringLiteral("ИНГУШЕТИЯ|НАЗРАНЬ|8732")},
        {QStringLiteral("М*"), {}, QStringLiteral("АДЫГЕЯ"), 2, QStringLiteral("АДЫГЕЯ|МАЙКОП|8772")},
        {{}, QStringLiteral("????"), QStringLiteral("АДЫГЕЯ"), 1, QStringLiteral("АДЫГЕЯ|МАЙКОП|8772")},
        {QStringLiteral("КРАСН*"), QStringLiteral("495"), {}, 0, QStringLiteral("||")},
        {QStringLiteral("КРАСН*"), QStringLiteral("84*"), QStringLiteral("САМАРСКАЯ ОБЛАСТЬ"), 2,
         QStringLiteral("САМАРСКАЯ ОБЛАСТЬ|КРАСНОАРМЕЙСКОЕ|84675")},
    };
    Open();
    for (const Case& c : cases) {
        SCOPED_TRACE((c.city + u'/' + c.code + u'/' + c.region).toStdString());
        filter->SetVisible(true);
        Activate(filter);
        Fill(Text("txtCity"), c.city);
        Fill(Text("txtCityKod"), c.code);
        EXPECT_EQ(Box("chkCity").isChecked(), !c.city.isEmpty());
        EXPECT_EQ(Box("chkCityKod").isChecked(), !c.code.isEmpty());
        if (!c.region.isEmpty())
            PickRegion(c.region);
        if (Box("chkRegion").isChecked() == c.region.isEmpty())
            Click(Box("chkRegion"), QPoint(5, Box("chkRegion").height() / 2));
        Find();
        EXPECT_FALSE(IsShown(filter));
        EXPECT_EQ(Count(), QString::number(c.count));
        EXPECT_EQ(Grid().Rows(), std::max(c.count, 1) + 1);
        EXPECT_EQ(Found().value(0), c.first);
    }
}

TEST_F(CityCodes, ATickedBoxCountsEvenOverAnEmptyField) {
    Open();
    for (const char* box : {"chkCity", "chkCityKod", "chkRegion"}) {
        filter->SetVisible(true);
        Activate(filter);
        Click(Box(box), QPoint(5, Box(box).height() / 2));
        ASSERT_TRUE(Box(box).isChecked());
        Find();
        EXPECT_EQ(Count(), QStringLiteral("0")) << box;
        Box(box).click();
    }
    EXPECT_EQ(
        list->CurrentSQL(),
        QStringLiteral(
            "SELECT * FROM t02, t03 WHERE t02rcid = t03code AND t02cval = '' ORDER BY t02cval, t03cval"));
}

TEST_F(CityCodes, EnterSearchesForWhatTheUserSees) {
    Open();
    Fill(Text("txtCity"), QStringLiteral("О'*"));
    Press(Qt::Key_Return);
    EXPECT_FALSE(IsShown(filter));
    EXPECT_EQ(list->CurrentSQL(),
              QStringLiteral("SELECT * FROM t02, t03 WHERE t02rcid = t03code AND t03cval LIKE "
                             "'О^*' ORDER BY t02cval, t03cval"));
    ShowFilter();
    EXPECT_TRUE(IsShown(filter));
    EXPECT_EQ(Text("txtCity").text(), QStringLiteral("О^*"));
}

TEST_F(CityCodes, TheFilterComesBackAsItWasAndGoesWithItsList) {
    Open();
    Fill(Text("txtCityKod"), QStringLiteral("495"));
    PickRegion(QStringLiteral("МОСКОВСКАЯ ОБЛАСТЬ"));
    Find();
    ShowFilter();
    EXPECT_EQ(Text("txtCityKod").text(), QStringLiteral("495"));
    EXPECT_TRUE(Box("chkRegion").isChecked());
    EXPECT_EQ(filter->Surface()->focusWidget(), &Control(filter, "cmdFind")) << "Enter finds again";

    EXPECT_EQ(Frame().ActiveForm(), filter);
    Press(Qt::Key_Escape);
    ASSERT_FALSE(IsShown(filter));
    list->FillGrid(QStringLiteral("SELECT * FROM t02, t03"));
    EXPECT_EQ(Count(), QStringLiteral("1")) << "a frozen list takes no fill";

    ShowFilter();
    FrameOf(filter).close();
    EXPECT_TRUE(Windows("frmTelKodFilter").empty());
    ShowFilter();
    EXPECT_EQ(Text("txtCityKod").text(), QString()) << "a filter that was closed starts blank";
    EXPECT_EQ(Control<QListWidget>(filter, "lstRegion").count(), 79);
    EXPECT_EQ(Windows("frmTelKod").size(), 1U) << "with the same list";

    Find();
    ASSERT_FALSE(IsShown(filter));
    FrameOf(list).close();
    EXPECT_TRUE(Windows("frmTelKodFilter").empty());
    EXPECT_TRUE(Windows("frmTelKod").empty());
}

TEST_F(CityCodes, ABookWithoutRegionsIsTold) {
    Run(QStringLiteral("DELETE FROM t02"));
    {
        test::Answers answers;
        answers.Box(QStringLiteral("Нарушена целостность базы данных: в таблице t02 отсутствуют записи."),
                    forms::Icon::Critical);
        Choose("mnuBookTelKod");
    }
    const auto failed = Last("frmTelKodFilter");
    EXPECT_EQ(failed->Tag(), QStringLiteral("0"));
    EXPECT_TRUE(IsShown(failed));
    EXPECT_TRUE(Windows("frmTelKod").empty());
}

TEST_F(CityCodes, AStatementThatFailsIsToldByTheList) {
    Open();
    Fill(Text("txtCity"), QStringLiteral("М"));
    Run(QStringLiteral("DROP TABLE t03"));
    test::Answers answers;
    answers.BoxStarting(QStringLiteral("frmTelKod функция FillGrid:\r\nпроизошла ошибка №3078 "),
                        forms::Icon::Critical);
    Find();
    EXPECT_FALSE(IsShown(filter));
    EXPECT_EQ(Found(), QStringList(QStringLiteral("||")));
}

TEST_F(CityCodes, TheLastColumnTakesWhatIsLeft) {
    Open();
    QMdiSubWindow& frame = FrameOf(list);
    frame.resize(forms::ToPixels(10000 + 400 + 390 + 3000), 400);
    EXPECT_EQ(Grid().ColWidth(2), list->Width() - 390 - 10000 - 400);
    const int width = Grid().ColWidth(2);
    frame.resize(500, 100);
    EXPECT_EQ(Grid().ColWidth(2), width);
    EXPECT_NEAR(list->Height(), 2000, forms::TwipsPerPixel);
}

} // namespace
