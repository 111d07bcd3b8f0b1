#include "platform/forms/FlexGrid.h"
#include "shared/ListForm.h"
#include "tests/support/WindowTest.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

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

    std::shared_ptr<forms::Form> filter;
    std::shared_ptr<ListForm> list;
};

TEST_F(CityCodes, WithoutCriteriaAllTownsStandInTheRussianAlphabet) {
    Run(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'Майкоп малый', 1)"));
    Run(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (999, 'НИГДЕ', 2)"));
    Open();
    Find();
    EXPECT_EQ(Count(), QStringLiteral("1914")) << "a town without its region is in no result";
    ASSERT_EQ(Grid().Rows(), 1915);
    EXPECT_EQ(Listed(Grid()).mid(0, 7),
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
    // A refill keeps the town by all of its row: the second of two of one name.
    Grid().SetRow(5);
    Run(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'Абадзехская', 1)"));
    filter->SetVisible(true);
    Find();
    EXPECT_EQ(Grid().Row(), 6);
    EXPECT_EQ(Listed(Grid()).at(5), QStringLiteral("АДЫГЕЯ|МАЙКОП|87722"));
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
    EXPECT_EQ(Text("txtCity").maxLength(), 50);
    EXPECT_EQ(Text("txtCityKod").maxLength(), 10);
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
        EXPECT_EQ(Listed(Grid()).value(0), c.first);
    }
}

} // namespace
