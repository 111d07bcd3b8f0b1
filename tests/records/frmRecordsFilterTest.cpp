#include "tests/records/RecordsTest.h"

#include <QTabWidget>

class frmRecordsFilterTest : public RecordsTest {};

TEST_F(frmRecordsFilterTest, CriteriaAndWhatTheyFind) {
    AddCard(1, "Иванов", "Иван", "Ильич", "сосед", "12.05.1971");
    AddCard(2, "Иванова", "Анна", "", "", "5 мая 1980");
    AddCard(3, "Петров", "Иван", {}, "сосед по даче");
    AddCard(4, "Иванов", "Иван", "Ааронович");
    AddPhone(1, 1, "111");
    AddPhone(1, 1, "112");
    AddPhone(1, 2, "113");
    AddPhone(3, 1, "113");
    const struct {
        const char* name;
        std::vector<std::pair<const char*, const char*>> fields;
        int type; ///< place of the phone type picked, -1: none
        const char* found;
    } cases[] = {
        {"nothing", {}, -1, "4 1 2 3"},
        {"whole last name", {{"txtLastName", "иванов"}}, -1, "4 1"},
        {"two names", {{"txtLastName", "Иван*"}, {"txtFirstName", "А??а"}}, -1, "2"},
        {"middle name", {{"txtMiddleName", "*"}}, -1, "4 1 2"},
        {"remark and birthday", {{"txtRemark", "сосед*"}, {"txtBith", "*.05.*"}}, -1, "1"},
        {"phone type: one row for each phone", {}, 0, "1 1 3"},
        {"number pattern", {{"txtTelefonNumber", "11#"}}, -1, "1 1 1 3"},
        {"type and number on the same row", {{"txtTelefonNumber", "113"}}, 0, "3"},
        {"name within the join", {{"txtFirstName", "Иван"}}, 1, "1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto list = OpenPair();
        const auto filter = Last("frmRecordsFilter");
        auto& pages = Control<QTabWidget>(filter, "SSTab1");
        for (const auto& [field, text] : c.fields) {
            pages.setCurrentIndex(QByteArrayView(field) == "txtTelefonNumber" ? 1 : 0);
            Fill(filter, field, text);
        }
        if (c.type >= 0) {
            pages.setCurrentIndex(1);
            PickType(filter, c.type);
        }
        Find();
        EXPECT_EQ(Column(list).join(u' '), c.found);
        list->Unload();
    }
}
