#include "exchange/ExtractToAnotherDB.h"
#include "tests/exchange/ExchangeTest.h"

#include <QFileDialog>

using forms::Icon;

namespace {

const QString AllCards = "SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl";
const QString Head = "frmRecords функция ExtractToAnotherDB:";

class ExtractionTest : public test::ExchangeTest {
protected:
    /// Extracts to the path; these boxes come behind the dialog.
    void Extract(const QString& path, const std::function<void(test::Answers&)>& boxes = {},
                 const QString& sql = AllCards) {
        test::Answers answers;
        answers.File(path, [](QFileDialog& dialog) {
            EXPECT_EQ(dialog.nameFilters(), QStringList{"База данных Access (*.mdb)"});
        });
        if (boxes)
            boxes(answers);
        exchange::ExtractToAnotherDB(*list, sql);
        EXPECT_TRUE(answers.Done());
        EXPECT_TRUE(list->Surface()->cursor().shape() == Qt::ArrowCursor);
    }
    static test::Answers& Ask(test::Answers& boxes, const QString& path, bool yes) {
        return boxes.Question(QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(path), yes,
                              false);
    }
    QStringList TargetRows(const QString& sql) const { return test::ReadRows(target, sql); }

    QString target = Path("target.mdb");
};

TEST_F(ExtractionTest, ACompleteBookOfTheListedCards) {
    AddCard(3, "Иванов", "Иван", "Ив^анович", "«№»");
    Execute("UPDATE a01 SET a01bith = '05.12.1980' WHERE a01clid = 3");
    Execute("INSERT INTO a01 (a01clid, a01last) VALUES (700, 'Петров')");
    Execute("INSERT INTO a01 (a01clid, a01last) VALUES (40000, 'Яковлев')");
    for (int code : {1, 4, 10})
        AddPhone(3, code, QStringLiteral("8-%1").arg(code));
    AddPhone(700, 1, "чужой");
    AddPhone(40000, 3, "яя");
    Execute("UPDATE t01 SET t01cval = 'Дача' WHERE t01code = 2");
    Execute("DELETE FROM t01 WHERE t01code = 3");
    Execute("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 10, 'Факс')");
    AddEvent("Праздник", "31.12.2005", 1);
    Execute("DELETE FROM a03");
    AddEvent("Встреча", "01.02.2006", 0);

    Extract(target, {}, "SELECT * FROM a01 WHERE a01clid <> 700 ORDER BY a01last");
    EXPECT_EQ(TargetRows("SELECT * FROM a01 ORDER BY a01clid"),
              (QStringList{"3|Иванов|Иван|Ив^анович|«№»|05.12.1980", "40000|Яковлев||||"}));
    EXPECT_EQ(TargetRows("SELECT a02clid, a02code, a02cval FROM a02 ORDER BY a02rcid"),
              (QStringList{"3|1|8-1", "3|4|8-4", "3|10|8-10", "40000|3|яя"}));
    EXPECT_EQ(TargetRows("SELECT t01type, t01code, t01cval FROM t01 ORDER BY t01ctid"),
              (QStringList{"0|1|Домашний телефон", "0|2|Дача", "0|4|Основной телефон", "0|10|Факс"}));
    EXPECT_EQ(TargetRows("SELECT * FROM a03"), QStringList{"1|Встреча|01.02.2006|0"});
}

TEST_F(ExtractionTest, AnEmptyListAndNoPhoneTypes) {
    Execute("DELETE FROM t01");
    AddPhone(5, 1, "ничей");
    Extract(target);
    EXPECT_EQ(TargetRows("SELECT (SELECT count(*) FROM a01), (SELECT count(*) FROM a02), count(*) FROM t01"),
              QStringList{"0|0|4"});
}

/// What the user agreed to lose goes; the working database and what another program has open does not.
TEST_F(ExtractionTest, TheFileQuestions) {
    AddCard(1, "Ааа");
    Extract({});
    Extract(bookPath, [](test::Answers& boxes) {
        boxes.Box("База не может быть экспортированна сама в себя.", Icon::Exclamation);
    });
    const QString hidden = Path(".hidden.mdb");
    ASSERT_TRUE(test::LinkByName(bookPath, hidden) || test::LinkFile(bookPath, hidden));
    test::WriteBytes(target, "book");
    {
        runtime::FileMark held;
        ASSERT_EQ(held.TakeShared(target), runtime::FileMark::Result::Taken);
        for (const QString& path : {hidden, target})
            Extract(path, [&](test::Answers& boxes) { Ask(boxes, path, true).Failure(Head, 70); });
    }
    EXPECT_TRUE(QFile::exists(hidden));
    Extract(target, [&](test::Answers& boxes) { Ask(boxes, target, false); });
    EXPECT_EQ(test::ReadBytes(target), "book");
    Extract(target, [&](test::Answers& boxes) { Ask(boxes, target, true); });
    EXPECT_EQ(TargetRows("SELECT a01last FROM a01"), QStringList{"Ааа"});
    EXPECT_EQ(Cards().size(), 1);
}

} // namespace
