#include "exchange/ExtractToAnotherDB.h"
#include "tests/exchange/ExchangeTest.h"
#include "tests/support/System.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

namespace {

const QString AllCards = QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl");

QString Head(int number) {
    return QStringLiteral("frmRecords функция ExtractToAnotherDB:\r\nпроизошла ошибка №%1 ").arg(number);
}

class ExtractionTest : public test::ExchangeTest {
protected:
    void Extract(const QString& sql = AllCards) {
        test::Answers answers;
        answers.File(target);
        exchange::ExtractToAnotherDB(*list, sql);
        EXPECT_TRUE(answers.Done());
    }
    /// An extraction that ends in a box and leaves no file.
    void ExpectFailure(const QString& sql, int number) {
        test::Answers answers;
        answers.File(target).BoxStarting(Head(number), forms::Icon::Critical);
        exchange::ExtractToAnotherDB(*list, sql);
        EXPECT_TRUE(answers.Done());
        EXPECT_FALSE(QFileInfo::exists(target));
        EXPECT_TRUE(list->Surface()->cursor().shape() == Qt::ArrowCursor);
    }
    QStringList TargetRows(const QString& sql) const { return test::ReadRows(target, sql); }

    QString target = Beside(QStringLiteral("target.mdb"));
};

TEST_F(ExtractionTest, ACompleteBookOfTheListedCards) {
    AddCard(3, "Иванов", "Иван", "Ив^анович", "«№»");
    Execute("UPDATE a01 SET a01bith = '05.12.1980' WHERE a01clid = 3");
    Execute("INSERT INTO a01 (a01clid, a01last) VALUES (700, 'Петров')");
    AddCard(40000, "Яковлев");
    for (int code : {1, 2, 4, 10})
        AddPhone(3, code, QStringLiteral("8-%1").arg(code));
    AddPhone(700, 1, "чужой");
    AddPhone(40000, 3, "яя");
    Execute("UPDATE t01 SET t01cval = 'Дача' WHERE t01code = 2");
    Execute("DELETE FROM t01 WHERE t01code = 3");
    Execute("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 10, 'Факс')");
    Execute("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('Праздник', '31.12.2005', 1)");
    Execute("DELETE FROM a03");
    Execute("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('Встреча', '01.02.2006', 0)");

    Extract("SELECT * FROM a01 WHERE a01clid <> 700 ORDER BY a01last");

    EXPECT_EQ(TargetRows("SELECT * FROM a01 ORDER BY a01clid"),
              (QStringList{"3|Иванов|Иван|Ив^анович|«№»|05.12.1980", "40000|Яковлев||||"}));
    EXPECT_EQ(TargetRows("SELECT a02clid, a02code, a02cval FROM a02 ORDER BY a02rcid"),
              (QStringList{"3|1|8-1", "3|2|8-2", "3|4|8-4", "3|10|8-10", "40000|3|яя"}));
    EXPECT_EQ(TargetRows("SELECT t01type, t01code, t01cval FROM t01 ORDER BY t01ctid"),
              (QStringList{"0|1|Домашний телефон", "0|2|Дача", "0|4|Основной телефон", "0|10|Факс"}));
    EXPECT_EQ(TargetRows("SELECT * FROM a03"), QStringList{"1|Встреча|01.02.2006|0"});
    EXPECT_EQ(TargetRows("SELECT v00vrid FROM v00"), QStringList{"3"});
    EXPECT_EQ(TargetRows("SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03)"),
              QStringList{"79|1913"});
    EXPECT_EQ(test::Integrity(target), QStringLiteral("ok"));
    EXPECT_EQ(Cards().size(), 3) << "the working database is only read";

    // It opens as a working database and takes new cards.
    gDatabase->Close();
    gDatabase = gWorkspace->OpenDatabase(target);
    General::UpdateBaseIfNeed();
    AddCard(40001, "Новый", "");
}

TEST_F(ExtractionTest, AnEmptyListAndNoPhoneTypes) {
    Execute("DELETE FROM t01");
    Execute("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('Встреча', '01.02.2006', 0)");
    AddPhone(5, 1, "ничей");
    Extract();
    EXPECT_EQ(
        TargetRows("SELECT (SELECT count(*) FROM a01), (SELECT count(*) FROM a02), (SELECT count(*) FROM "
                   "t01), (SELECT count(*) FROM a03)"),
        QStringList{"0|0|4|1"});
}

TEST_F(ExtractionTest, TheFileQuestions) {
    AddCard(1, "Ааа");
    const QString question = QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(target);
    {
        test::Answers answers;
        answers.File({}, [](QFileDialog& dialog) {
            EXPECT_EQ(dialog.nameFilters(), QStringList{"База данных Access (*.mdb)"});
        });
        exchange::ExtractToAnotherDB(*list, AllCards);
    }
    {
        test::Answers answers;
        answers.File(bookPath).Box("База не может быть экспортированна сама в себя.",
                                   forms::Icon::Exclamation);
        exchange::ExtractToAnotherDB(*list, AllCards);
    }
    test::WriteBytes(target, "чужое");
    {
        test::Answers answers;
        answers.File(target).Question(question, false, false);
        exchange::ExtractToAnotherDB(*list, AllCards);
    }
    EXPECT_EQ(test::ReadBytes(target), QByteArray("чужое"));
    {
        test::Answers answers;
        answers.File(target).Question(question, true, false);
        exchange::ExtractToAnotherDB(*list, AllCards);
    }
    EXPECT_EQ(TargetRows("SELECT a01last FROM a01"), QStringList{"Ааа"});
    EXPECT_EQ(Cards().size(), 1);
}

TEST_F(ExtractionTest, TheWorkingDatabaseByAnotherNameIsNotDeleted) {
    AddCard(1, "Ааа");
    const QString link = Beside("link.mdb");
    ASSERT_TRUE(test::LinkByName(bookPath, link) || test::LinkFile(bookPath, link));
    const QStringList cards = Cards();
    const QByteArray bytes = test::ReadBytes(bookPath);
    const QString hidden = Beside(".hidden.mdb");
    ASSERT_TRUE(test::LinkByName(bookPath, hidden) || test::LinkFile(bookPath, hidden));
    for (const QString& path : {test::SpelledOtherwise(bookPath), link, hidden}) {
        test::Answers answers;
        answers.File(path)
            .Question(QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(path), true, false)
            .BoxStarting(Head(70), forms::Icon::Critical);
        exchange::ExtractToAnotherDB(*list, AllCards);
        EXPECT_TRUE(answers.Done());
    }
    EXPECT_TRUE(QFile::exists(link));
    EXPECT_EQ(test::ReadBytes(bookPath), bytes);
    AddCard(2, "Ббб");
    EXPECT_EQ(Cards().size(), 2);
}

/// What stands at the target is replaced when the new file is complete; a failure leaves neither.
TEST_F(ExtractionTest, AFailureOverAnotherFile) {
    AddCard(1, "Два");
    AddPhone(1, 1, "1");
    AddPhone(1, 1, "2");
    struct Row {
        std::function<void()> meanwhile; ///< while the error box is up
        QByteArray left;
    };
    const Row rows[] = {
        {[&] { EXPECT_EQ(test::ReadBytes(target), QByteArray("old")); }, "no file"},
        {[&] { QFile::remove(target); }, "no file"},
        {[&] {
             QFile::remove(target);
             test::WriteBytes(target, "somebody's");
         },
         "somebody's"},
        {[&] {
             QFile::remove(target);
             QDir().mkdir(target);
         },
         "no file"},
    };
    for (const Row& row : rows) {
        test::WriteBytes(target, "old");
        test::Answers answers;
        answers.File(target)
            .Question(QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(target), true, false)
            .BoxStarting(Head(3022), forms::Icon::Critical, [&](const QString&) { row.meanwhile(); });
        exchange::ExtractToAnotherDB(*list, "SELECT * FROM a01, a02 WHERE a01clid = a02clid");
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(test::ReadBytes(target), row.left);
        QFile::remove(target);
    }
    EXPECT_TRUE(QFileInfo(target).isDir());
}

/// What another program has made at the target, or has open there, stays.
TEST_F(ExtractionTest, ATargetOfAnotherProgram) {
    AddCard(1, "Ааа");
    test::WriteBytes(target, "book");
    {
        runtime::FileMark held;
        ASSERT_EQ(held.TakeShared(target), runtime::FileMark::Result::Taken);
        test::Answers answers;
        answers.File(target)
            .Question(QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(target), true, false)
            .BoxStarting(Head(70), forms::Icon::Critical);
        exchange::ExtractToAnotherDB(*list, AllCards);
        EXPECT_EQ(test::ReadBytes(target), "book");
    }
    QFile::remove(target);
    class Intruder final : public runtime::Disk {
    public:
        explicit Intruder(QString target)
            : m_target(std::move(target)) {
            Use(this);
        }
        ~Intruder() override { Use(nullptr); }
        std::error_code Write(const QString& path, const QByteArray& bytes) override {
            test::WriteBytes(m_target, "finished");
            return Disk::Write(path, bytes);
        }

    private:
        QString m_target;
    } const intruder(target);
    test::Answers answers;
    answers.File(target).BoxStarting(Head(3204), forms::Icon::Critical);
    exchange::ExtractToAnotherDB(*list, AllCards);
    EXPECT_EQ(test::ReadBytes(target), "finished");
}

TEST_F(ExtractionTest, FailuresLeaveNoTarget) {
    AddCard(1, "Два");
    AddPhone(1, 1, "1");
    AddPhone(1, 1, "2");
    ExpectFailure("SELECT * FROM a01, a02 WHERE a01clid = a02clid", 3022);
    ExpectFailure("", 3078);
    ExpectFailure("SELECT a01last FROM a01", 3265);
    // Another program's data can hold what the joined text does not bear.
    Execute("UPDATE a01 SET a01last = \"О'Нил\"");
    ExpectFailure(AllCards, 3075);
    EXPECT_EQ(Cards().size(), 1);
}

TEST_F(ExtractionTest, Limits) {
    AddManyCards(32767);
    ExpectFailure(AllCards, 6);
    Execute("DELETE FROM a01 WHERE a01clid = 32767");
    Extract();
    EXPECT_EQ(TargetRows("SELECT count(*), max(a01clid) FROM a01"), QStringList{"32766|32766"});
}

} // namespace
