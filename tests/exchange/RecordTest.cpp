#include "exchange/clsRecord.h"
#include "tests/exchange/ExchangeTest.h"

namespace {

using Cells = QList<QPair<QString, QString>>;

class RecordTest : public test::ExchangeTest {
protected:
    /// Merges one row as the master does.
    bool Put(const Cells& cells) {
        record.Clear();
        for (const auto& [name, value] : cells)
            record.SetParameter(name, value);
        return record.PutRecord();
    }
    void ExpectCounters(int updated, int inserted) {
        EXPECT_EQ(record.GetUpdateNumber(), updated);
        EXPECT_EQ(record.GetInsertNumber(), inserted);
    }

    clsRecord record;
};

TEST_F(RecordTest, ARowWithoutAnyNameTouchesNothing) {
    EXPECT_FALSE(Put({}));
    EXPECT_FALSE(Put({{"Last Name", " "}, {"First Name", "  "}, {"Middle Name", " "}, {"Home Phone", "1"}}));
    ExpectCounters(0, 0);
    EXPECT_TRUE(Cards().isEmpty());
    EXPECT_TRUE(Phones().isEmpty());
    // A tab is no blank.
    EXPECT_TRUE(Put({{"Last Name", "\t"}}));
}

TEST_F(RecordTest, NewCards) {
    EXPECT_TRUE(Put({{"last name", " Иванов "}, {"FIRST NAME", "Иван"}, {"mObIlE PhOnE", "8 (9)"}}));
    EXPECT_TRUE(Put({{"Name", "Иванова Анна Сергеевна"}, {"Notes", "заметка"}, {"Unknown", "?"}}));
    EXPECT_TRUE(Put({{"First Name", "первое"}, {"Name", "второе"}}));
    ExpectCounters(0, 3);
    EXPECT_EQ(Cards(), (QStringList{"1| Иванов |Иван||Импортирован из файла|NULL",
                                    "2||Иванова Анна Сергеевна||Импортирован из файла|NULL",
                                    "3||второе||Импортирован из файла|NULL"}));
    EXPECT_EQ(Phones(), QStringList{"1|2|8 (9)"});
    // The row before leaves nothing behind.
    EXPECT_TRUE(Put({{"Last Name", "Иной"}}));
    EXPECT_EQ(Cards().last(), QStringLiteral("4|Иной|||Импортирован из файла|NULL"));
    EXPECT_EQ(Phones().size(), 1);
}

TEST_F(RecordTest, ReplacesTheNumbersOfTheCodesThatTheRowCarries) {
    AddCard(5, "Иванов", "Иван", "Иванович", "друг");
    for (int code = 1; code <= 4; ++code) {
        AddPhone(5, code, QStringLiteral("a%1").arg(code));
        AddPhone(5, code, QStringLiteral("b%1").arg(code));
    }
    const Cells names{{"Last Name", "Иванов"}, {"First Name", "Иван"}, {"Middle Name", "Иванович"}};
    EXPECT_TRUE(Put(names)) << "no phone column: nothing changes, it counts all the same";
    EXPECT_EQ(Phones().size(), 8);
    EXPECT_TRUE(Put(names + Cells{{"Mobile Phone", "новый"}}));
    ExpectCounters(2, 0);
    EXPECT_EQ(Phones(),
              (QStringList{"5|1|a1", "5|1|b1", "5|2|новый", "5|3|a3", "5|3|b3", "5|4|a4", "5|4|b4"}));
    EXPECT_EQ(Cards(), QStringList{"5|Иванов|Иван|Иванович|друг|NULL"});
}

/// Which of the cards a row finds; 0: a new one is made.
TEST_F(RecordTest, TheKeyIsTheThreeNamesUnderLike) {
    AddCard(1, "Иванов", "Иван", "");
    AddCard(2, "Иванов");
    AddCard(3, "Петров", "Пётр", "Петрович");
    AddCard(4, "ПЕТРОВ", "ПЁТР", "ПЕТРОВИЧ");
    Execute("INSERT INTO a01 (a01clid, a01last) VALUES (5, 'Пустой')");
    AddCard(6, "a%b_c");
    const struct {
        Cells row;
        int found;
    } cases[] = {
        {{{"Last Name", "Иванов"}}, 2},
        {{{"Last Name", "иВАНОВ"}, {"First Name", "иван"}}, 1},
        {{{"Last Name", "петров"}, {"First Name", "пётр"}, {"Middle Name", "петрович"}}, 3},
        {{{"Last Name", "Петров"}, {"First Name", "Петр"}, {"Middle Name", "Петрович"}}, 0},
        {{{"Last Name", "Пустой"}}, 0}, // NULL is like nothing
        {{{"Last Name", "П*"}, {"First Name", "?ё*"}, {"Middle Name", "*"}}, 3},
        {{{"Last Name", "a%b_c"}}, 6},
        {{{"Last Name", "a%"}}, 0},
        {{{"Last Name", "Иванов "}}, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.row.front().second.toStdString());
        const int updates = record.GetUpdateNumber();
        const auto before = Cards().size();
        EXPECT_TRUE(Put(c.row + Cells{{"Home Phone", "найден"}}));
        EXPECT_EQ(record.GetUpdateNumber() - updates, c.found != 0 ? 1 : 0);
        EXPECT_EQ(Cards().size() - before, c.found != 0 ? 0 : 1);
        const QStringList phones = Phones();
        ASSERT_EQ(phones.size(), 1);
        EXPECT_EQ(phones.front().section(u'|', 0, 0).toInt(), c.found != 0 ? c.found : before + 1);
        Execute("DELETE FROM a02");
    }
}

/// What stays behind when a row fails.
TEST_F(RecordTest, ErrorRowsKeepWhatWasDone) {
    AddCard(7, "Старый");
    for (int code = 1; code <= 3; ++code)
        AddPhone(7, code, "прежний");
    // An empty cell: the numbers of its code are gone, the later codes are not reached.
    EXPECT_FALSE(
        Put({{"Last Name", "Старый"}, {"Home Phone", "1"}, {"Mobile Phone", ""}, {"Business Phone", "3"}}));
    EXPECT_EQ(Phones(), (QStringList{"7|1|1", "7|3|прежний"}));
    ExpectCounters(1, 0);
    // An apostrophe in a name stops at the look-up, one in a number behind the new card.
    EXPECT_FALSE(Put({{"Last Name", "О'Нил"}, {"Home Phone", "1"}}));
    EXPECT_EQ(Cards().size(), 1);
    ExpectCounters(1, 0);
    EXPECT_FALSE(Put({{"Last Name", "Новый"}, {"Home Phone", "1'2"}}));
    EXPECT_EQ(Cards().last(), QStringLiteral("8|Новый|||Импортирован из файла|NULL"));
    ExpectCounters(1, 1);
    // No pattern, whichever other cells match.
    EXPECT_FALSE(Put({{"Last Name", "Старый["}, {"First Name", "нет"}}));
    EXPECT_FALSE(Put({{"Last Name", "нет"}, {"First Name", "[я-а]"}}));
    // Longer than the column.
    EXPECT_TRUE(Put({{"Last Name", QString(50, u'ы')}, {"Home Phone", QString(50, u'1')}}));
    EXPECT_FALSE(Put({{"Last Name", QString(51, u'ы')}}));
    EXPECT_FALSE(Put({{"Last Name", "Длинный"}, {"Home Phone", QString(51, u'1')}}));
    EXPECT_EQ(Cards().size(), 4);
    ExpectCounters(1, 3);
    // The object works on behind all that.
    EXPECT_TRUE(Put({{"Last Name", "Старый"}}));
}

TEST_F(RecordTest, NumbersBeyondSixteenBits) {
    AddCard(32766, "Почти");
    EXPECT_TRUE(Put({{"Last Name", "Последний"}}));
    EXPECT_EQ(Cards().last().section(u'|', 0, 0), QStringLiteral("32767"));
    EXPECT_FALSE(Put({{"Last Name", "Новый"}}));
    EXPECT_FALSE(Put({{"Last Name", "Почти"}})) << "also a row that would find its card";
    EXPECT_EQ(Cards().size(), 2);
    ExpectCounters(0, 1);
    Execute("DELETE FROM a01");
    AddCard(-3, "Ниже нуля");
    EXPECT_TRUE(Put({{"Last Name", "Новый"}}));
    EXPECT_EQ(Cards().last().section(u'|', 0, 0), QStringLiteral("-2"));
}

} // namespace
