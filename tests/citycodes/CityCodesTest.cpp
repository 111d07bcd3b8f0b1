#include "shared/ListForm.h"
#include "tests/support/WindowTest.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>

namespace {

class CityCodes : public test::WindowTest {
protected:
    void Open() {
        Choose("mnuBookTelKod");
        filter = Last("frmTelKodFilter");
        list = Last("frmTelKod");
    }
    void Find() { ClickButton(filter, "cmdFind"); }
    void PickRegion(const QString& name) {
        auto& regions = Control<QListWidget>(filter, "lstRegion");
        QListWidgetItem* item = regions.findItems(name, Qt::MatchExactly).value(0);
        ASSERT_NE(item, nullptr);
        regions.scrollToItem(item);
        Click(*regions.viewport(), regions.visualItemRect(item).center());
    }
    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(list, "gridTelKod"); }
    QString Count() { return Control<QLineEdit>(list, "txtRecordsNumber").text(); }

    std::shared_ptr<forms::Form> filter;
    std::shared_ptr<forms::Form> list;
};

TEST_F(CityCodes, WithoutCriteriaAllTownsStandInTheRussianAlphabet) {
    Run("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'Майкоп малый', 1)");
    Run("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (999, 'НИГДЕ', 2)");
    Open();
    Find();
    EXPECT_EQ(Count(), "1914") << "a town without its region is in no result";
    EXPECT_EQ(Listed(Grid()).mid(0, 7),
              QStringList({"АДЫГЕЯ|АДЫГЕЙСК|87772", "АДЫГЕЯ|ГИАГИНСКАЯ|87779", "АДЫГЕЯ|КОШЕХАБЛЬ|87770",
                           "АДЫГЕЯ|МАЙКОП|8772", "АДЫГЕЯ|МАЙКОП|87722", "АДЫГЕЯ|Майкоп малый|1",
                           "АДЫГЕЯ|ТАХТАМУКАЙ|87771"}));
    // A refill keeps the town by all of its row: the second of two of one name.
    Grid().SetRow(5);
    Run("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'Абадзехская', 1)");
    filter->SetVisible(true);
    Find();
    EXPECT_EQ(Grid().Row(), 6);
    EXPECT_EQ(Listed(Grid()).at(5), "АДЫГЕЯ|МАЙКОП|87722");
    // Letters look in the towns, not in the regions.
    Grid().setFocus();
    Type("м");
    EXPECT_EQ(Listed(Grid()).at(Grid().Row() - 1), "АДЫГЕЯ|Майкоп малый|1");
}

TEST_F(CityCodes, EveryCriterionCountsAloneAndTogether) {
    const struct {
        const char* city;
        const char* code;
        const char* region;
        int count;
        const char* first;
    } cases[] = {
        {"", "49*", "", 95, "ВЛАДИМИРСКАЯ ОБЛАСТЬ|АЛЕКСАНДРОВ|49244"},
        {"красное", "", "", 2, "БЕЛГОРОДСКАЯ ОБЛАСТЬ|КРАСНОЕ|47262"},
        {"", "", "ИНГУШЕТИЯ", 1, "ИНГУШЕТИЯ|НАЗРАНЬ|8732"},
        {"КРАСН*", "495", "", 0, "||"},
        {"КРАСН*", "84*", "САМАРСКАЯ ОБЛАСТЬ", 2, "САМАРСКАЯ ОБЛАСТЬ|КРАСНОАРМЕЙСКОЕ|84675"},
    };
    Open();
    EXPECT_EQ(Control<QLineEdit>(filter, "txtCity").maxLength(), 50);
    EXPECT_EQ(Control<QLineEdit>(filter, "txtCityKod").maxLength(), 10);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.city << '/' << c.code << '/' << c.region);
        filter->SetVisible(true);
        Activate(filter);
        Fill(filter, "txtCity", c.city);
        Fill(filter, "txtCityKod", c.code);
        if (*c.region)
            PickRegion(c.region);
        auto& box = Control<QCheckBox>(filter, "chkRegion");
        if (box.isChecked() && !*c.region)
            Click(box, QPoint(5, box.height() / 2));
        Find();
        EXPECT_EQ(Count(), QString::number(c.count));
        EXPECT_EQ(Listed(Grid()).value(0), c.first);
    }
}

} // namespace
