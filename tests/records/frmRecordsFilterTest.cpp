#include "records/frmRecordsFilter.h"

#include "tests/records/RecordsTest.h"

#include <QLineEdit>
#include <QListWidget>
#include <QTabWidget>

#include <utility>
#include <vector>

namespace {

constexpr auto Filter = "frmRecordsFilter";

class frmRecordsFilterTest : public RecordsTest {
protected:
    static void ShowPage(const std::shared_ptr<forms::Form>& filter, int page) {
        Control<QTabWidget>(filter, "SSTab1").setCurrentIndex(page);
    }
    static void PickType(const std::shared_ptr<forms::Form>& filter, int row) {
        ShowPage(filter, 1);
        auto& list = Control<QListWidget>(filter, "lstTelefonType");
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(row)).center());
    }
};

} // namespace

TEST_F(frmRecordsFilterTest, CriteriaAndWhatTheyFind) {
    AddCard(1, QStringLiteral("Иванов"), QStringLiteral("Иван"), QStringLiteral("Ильич"),
            QStringLiteral("сосед"), QStringLiteral("12.05.1971"));
    AddCard(2, QStringLiteral("Иванова"), QStringLiteral("Анна"), QStringLiteral(""), QStringLiteral(""),
            QStringLiteral("5 мая 1980"));
    AddCard(3, QStringLiteral("Петров"), QStringLiteral("Иван"), QString(), QStringLiteral("сосед по даче"));
    AddPhone(1, 1, QStringLiteral("111"));
    AddPhone(1, 1, QStringLiteral("112"));
    AddPhone(1, 2, QStringLiteral("113"));
    AddPhone(3, 1, QStringLiteral("113"));

    const QString order = QStringLiteral(" ORDER BY a01last, a01frst, a01midl");
    const QString join = QStringLiteral(
        "SELECT * FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code");
    struct Case {
        const char* name;
        std::vector<std::pair<const char*, QString>> fields;
        int type; ///< place of the phone type picked, -1: none
        QString statement;
        QStringList found;
    };
    const Case cases[] = {
        {"nothing", {}, -1, QStringLiteral("SELECT * FROM a01"), {"1", "2", "3"}},
        {"whole last name",
         {{"txtLastName", "иванов"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01last LIKE 'иванов'"),
         {"1"}},
        {"two names",
         {{"txtLastName", "Иван*"}, {"txtFirstName", "А??а"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01last LIKE 'Иван*' AND a01frst LIKE 'А??а'"),
         {"2"}},
        {"middle name",
         {{"txtMiddleName", "*"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01midl LIKE '*'"),
         {"1", "2"}},
        {"remark and birthday",
         {{"txtRemark", "сосед*"}, {"txtBith", "*.05.*"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01memo LIKE 'сосед*' AND a01bith LIKE '*.05.*'"),
         {"1"}},
        {"phone type: one row for each phone",
         {},
         0,
         join + QStringLiteral(" AND t01cval = 'Домашний телефон'"),
         {"1", "1", "3"}},
        {"number pattern",
         {{"txtTelefonNumber", "11#"}},
         -1,
         join + QStringLiteral(" AND a02cval LIKE '11#'"),
         {"1", "1", "1", "3"}},
        {"type and number on the same row",
         {{"txtTelefonNumber", "113"}},
         0,
         join + QStringLiteral(" AND t01cval = 'Домашний телефон' AND a02cval LIKE '113'"),
         {"3"}},
        {"name within the join",
         {{"txtFirstName", "Иван"}, {"txtLastName", "Ив*"}},
         1,
         join + QStringLiteral(
                    " AND a01last LIKE 'Ив*' AND a01frst LIKE 'Иван' AND t01cval = 'Мобильный телефон'"),
         {"1"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto list = OpenPair();
        const auto filter = Last(Filter);
        for (const auto& [field, text] : c.fields) {
            ShowPage(filter, QByteArrayView(field) == "txtTelefonNumber" ? 1 : 0);
            Fill(filter, field, text);
        }
        if (c.type >= 0)
            PickType(filter, c.type);
        Find(filter);
        EXPECT_EQ(list->CurrentSQL(), c.statement + order);
        EXPECT_EQ(Column(list), c.found);
        list->Unload();
    }
}
