#include "exchange/ExtractToAnotherDB.h"
#include "tests/exchange/ExchangeTest.h"

#include <QFileDialog>

using forms::Icon;

namespace {

const QString AllCards = QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl");
const QString Head = QStringLiteral("frmRecords функция ExtractToAnotherDB:");

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
    static QString Question(const QString& path) {
        return QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(path);
    }
    /// An extraction of such cards that ends in a box and leaves no file.
    void ExpectFailure(const QString& sql, int number) {
        SCOPED_TRACE(sql.toStdString());
        Extract(
            target, [number](test::Answers& boxes) { boxes.Failure(Head, number); }, sql);
        EXPECT_FALSE(QFileInfo::exists(target));
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
    AddEvent("Праздник", "31.12.2005", 1);
    Execute("DELETE FROM a03");
    AddEvent("Встреча", "01.02.2006", 0);

    Extract(target, {}, "SELECT * FROM a01 WHERE a01clid <> 700 ORDER BY a01last");

    EXPECT_EQ(TargetRows("SELECT * FROM a01 ORDER BY a01clid"),
              (QStringList{"3|Иванов|Иван|Ив^анович|«№»|05.12.1980", "40000|Яковлев||||"}));
    EXPECT_EQ(TargetRows("SELECT a02clid, a02code, a02cval FROM a02 ORDER BY a02rcid"),
              (QStringList{"3|1|8-1", "3|2|8-2", "3|4|8-4", "3|10|8-10", "40000|3|яя"}));
    EXPECT_EQ(TargetRows("SELECT t01type, t01code, t01cval FROM t01 ORDER BY t01ctid"),
              (QStringList{"0|1|Домашний телефон", "0|2|Дача", "0|4|Основной телефон", "0|10|Факс"}));
    EXPECT_EQ(TargetRows("SELECT * FROM a03"), QStringList{"1|Встреча|01.02.2006|0"});
    EXPECT_EQ(TargetRows("SELECT v00vrid, (SELECT count(*) FROM t02), (SELECT count(*) FROM t03) FROM v00"),
              QStringList{"3|79|1913"});
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
    AddEvent("Встреча", "01.02.2006", 0);
    AddPhone(5, 1, "ничей");
    Extract(target);
    EXPECT_EQ(
        TargetRows("SELECT (SELECT count(*) FROM a01), (SELECT count(*) FROM a02), (SELECT count(*) FROM "
                   "t01), (SELECT count(*) FROM a03)"),
        QStringList{"0|0|4|1"});
}

TEST_F(ExtractionTest, TheFileQuestions) {
    AddCard(1, "Ааа");
    Extract({});
    Extract(bookPath, [](test::Answers& boxes) {
        boxes.Box("База не может быть экспортированна сама в себя.", Icon::Exclamation);
    });
    test::WriteBytes(target, "чужое");
    Extract(target, [&](test::Answers& boxes) { boxes.Question(Question(target), false, false); });
    EXPECT_EQ(test::ReadBytes(target), QByteArray("чужое"));
    Extract(target, [&](test::Answers& boxes) { boxes.Question(Question(target), true, false); });
    EXPECT_EQ(TargetRows("SELECT a01last FROM a01"), QStringList{"Ааа"});
    EXPECT_EQ(Cards().size(), 1);
}

/// The working database by another name, and what another program has open or makes meanwhile.
TEST_F(ExtractionTest, WhatIsInUseStays) {
    AddCard(1, "Ааа");
    const QString link = Beside("link.mdb");
    const QString hidden = Beside(".hidden.mdb");
    for (const QString& name : {link, hidden})
        ASSERT_TRUE(test::LinkByName(bookPath, name) || test::LinkFile(bookPath, name));
    EXPECT_EQ(Cards().size(), 1);
    const QByteArray bytes = test::ReadBytes(bookPath);
    test::WriteBytes(target, "book");
    runtime::FileMark held;
    ASSERT_EQ(held.TakeShared(target), runtime::FileMark::Result::Taken);
    for (const QString& path : {test::SpelledOtherwise(bookPath), link, hidden, target})
        Extract(path,
                [&](test::Answers& boxes) { boxes.Question(Question(path), true, false).Failure(Head, 70); });
    EXPECT_TRUE(QFile::exists(link));
    EXPECT_TRUE(test::ReadBytes(bookPath) == bytes);
    EXPECT_EQ(test::ReadBytes(target), "book");
    AddCard(2, "Ббб");
    EXPECT_EQ(Cards().size(), 2);

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
    };
    const QString made = Beside("made.mdb");
    const Intruder intruder(made);
    Extract(made, [](test::Answers& boxes) { boxes.Failure(Head, 3204); });
    EXPECT_EQ(test::ReadBytes(made), "finished");
}

/// What stands at the target is replaced when the new file is complete; a failure leaves neither.
TEST_F(ExtractionTest, AFailureOverAnotherFile) {
    AddCard(1, "Два");
    AddPhone(1, 1, "1");
    AddPhone(1, 1, "2");
    const auto replace = [&](const std::function<void()>& by) {
        return [this, by] {
            QFile::remove(target);
            by();
        };
    };
    const struct {
        std::function<void()> meanwhile; ///< while the error box is up
        QByteArray left;
    } rows[] = {
        {[&] { EXPECT_EQ(test::ReadBytes(target), QByteArray("old")); }, "no file"},
        {replace([] {}), "no file"},
        {replace([&] { test::WriteBytes(target, "somebody's"); }), "somebody's"},
        {replace([&] { QDir().mkdir(target); }), "no file"},
    };
    for (const auto& row : rows) {
        test::WriteBytes(target, "old");
        Extract(
            target,
            [&](test::Answers& boxes) {
                boxes.Question(Question(target), true, false)
                    .BoxStarting(test::ErrorStart(Head, 3022), Icon::Critical,
                                 [&](const QString&) { row.meanwhile(); });
            },
            "SELECT * FROM a01, a02 WHERE a01clid = a02clid");
        EXPECT_EQ(test::ReadBytes(target), row.left);
        QFile::remove(target);
    }
    EXPECT_TRUE(QFileInfo(target).isDir());
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
    Execute("DELETE FROM a01");
    AddManyCards(32767);
    ExpectFailure(AllCards, 6);
}

} // namespace
