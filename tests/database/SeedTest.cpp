#include "database/Schema.h"
#include "database/SeedData.h"
#include "platform/engine/EngineError.h"
#include "tests/database/BoundBase.h"

#include <QCryptographicHash>

using test::ErrorStart;

namespace {

/// Only the two reference tables, empty.
class Seed : public test::BoundBase {
protected:
    Seed() {
        Execute(schema::CreateT02());
        Execute(schema::CreateT03());
    }

    static QString AbsentRegion(const QString& name) {
        return QStringLiteral("Ошибка целостности базы данных: отсутствует регион '") + name +
               QStringLiteral("'.");
    }
    QString Count(const QString& table) const { return Row(QStringLiteral("SELECT count(*) FROM ") + table); }
};

QByteArray Checksum(const QStringList& rows) {
    return QCryptographicHash::hash(rows.join(u'\n').toUtf8(), QCryptographicHash::Sha256).toHex();
}

int TownsOf(std::span<const seed::Region> regions) {
    std::size_t count = 0;
    for (const seed::Region& region : regions)
        count += region.towns.size();
    return static_cast<int>(count);
}

} // namespace

TEST_F(Seed, RegionsAndTownsAreWrittenInTheirOrderToTheCharacter) {
    const test::Answers answers;
    EXPECT_EQ(TownsOf(seed::FirstRegions()), 887);
    EXPECT_EQ(TownsOf(seed::LastRegions()), 1026);
    ASSERT_TRUE(General::FillRegions(*gDatabase));
    ASSERT_TRUE(General::FillCity(*gDatabase));

    const QStringList regions = Rows(QStringLiteral("SELECT t02cval FROM t02 ORDER BY t02rcid"));
    EXPECT_EQ(regions.size(), 79);
    EXPECT_EQ(Checksum(regions), "aa1a0d7abd3a4914580cbc41f426091aea8fa3da3452126334cf64d93a28c97d");
    const QStringList towns = Rows(QStringLiteral("SELECT t02cval, t03cval, t03numb FROM t03 JOIN t02 "
                                                  "ON t02rcid = t03code ORDER BY t03rcid"));
    EXPECT_EQ(towns.size(), 1913);
    EXPECT_EQ(Checksum(towns), "e07b1c64bc64493b647eabda960601d3647a6fe3d6725339e35b46a71fff07be");
    EXPECT_EQ(Row(QStringLiteral("SELECT min(t02rcid), max(t02rcid) FROM t02")), QStringLiteral("1|79"));
    EXPECT_EQ(
        Row(QStringLiteral("SELECT count(*) FROM t03 WHERE t03cval || '' = 'ХАБАРОВСК' AND t03numb = 4212")),
        QStringLiteral("2"));
    // Blanks that look superfluous are part of the names.
    for (const QString& name :
         {QStringLiteral("ЛУХ "), QStringLiteral("НИЖНЯЯ  ОМКА"), QStringLiteral("ЕССЕНТУКСКАЯ ")})
        EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM t03 WHERE t03cval || '' = '") + name + u'\''),
                  QStringLiteral("1"));
}

TEST_F(Seed, EveryNameAndCodeIsFoundAgain) {
    const test::Answers answers;
    ASSERT_TRUE(General::FillRegions(*gDatabase) && General::FillCity(*gDatabase));
    engine::Recordset rows =
        gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM t02, t03 WHERE t03code = t02rcid"));
    int missing = 0;
    for (const seed::Region& region : seed::AllRegions()) {
        for (const seed::Town& town : region.towns) {
            rows.FindFirst(QStringLiteral("t02cval = '%1' AND t03cval = '%2' AND t03numb = %3")
                               .arg(QString::fromUtf16(region.name), QString::fromUtf16(town.name))
                               .arg(town.code));
            missing += rows.NoMatch() ? 1 : 0;
        }
    }
    EXPECT_EQ(missing, 0);
}

TEST_F(Seed, RegionsAreNotWrittenTwice) {
    test::Answers answers;
    ASSERT_TRUE(General::FillRegions(*gDatabase));
    answers.BoxStarting(ErrorStart(QStringLiteral("General функция FillRegions:"), engine::DuplicateKey),
                        forms::Icon::Critical);
    EXPECT_FALSE(General::FillRegions(*gDatabase));
    EXPECT_EQ(Count(QStringLiteral("t02")), QStringLiteral("79"));
}

TEST_F(Seed, AnAbsentRegionIsTold) {
    const struct {
        QString region;
        QString townsBefore;
    } rows[] = {
        {QStringLiteral("МОСКОВСКАЯ ОБЛАСТЬ"), QStringLiteral("0")},
        {QStringLiteral("АДЫГЕЯ"), QStringLiteral("70")},
        {QStringLiteral("МОРДОВИЯ"), QStringLiteral("887")},
    };
    for (const auto& row : rows) {
        Execute(QStringLiteral("DELETE FROM t02"));
        Execute(QStringLiteral("DELETE FROM t03"));
        test::Answers answers;
        ASSERT_TRUE(General::FillRegions(*gDatabase));
        Execute(QStringLiteral("DELETE FROM t02 WHERE t02cval = '") + row.region + u'\'');
        answers.Box(AbsentRegion(row.region), forms::Icon::Critical);
        EXPECT_FALSE(General::FillCity(*gDatabase));
        EXPECT_EQ(Count(QStringLiteral("t03")), row.townsBefore) << row.region.toStdString();
    }
}

TEST_F(Seed, ARefusedStatementIsToldUnderTheHeadOfItsRoutine) {
    const struct {
        const char* change;
        bool (*routine)(engine::Database&);
        QString head;
        int number;
    } rows[] = {
        {"DROP TABLE t03", General::FillCity, QStringLiteral("General функция FillCity:"),
         engine::UnknownTargetTable},
        {"DROP TABLE t03", General::FillCity1, QStringLiteral("General функция FillCity1:"),
         engine::UnknownTargetTable},
        {"DROP TABLE t02", General::FillCity, QStringLiteral("General функция FillCity:"),
         engine::UnknownTable},
        {"DROP TABLE t02", General::FillCity1, QStringLiteral("General функция FillCity1:"),
         engine::UnknownTable},
        {"DROP TABLE t02", General::FillRegions, QStringLiteral("General функция FillRegions:"),
         engine::UnknownTargetTable},
    };
    ASSERT_TRUE(General::FillRegions(*gDatabase));
    for (const auto& row : rows) {
        const QString change = QString::fromLatin1(row.change);
        const QString table = change.right(3);
        if (gDatabase->TableNames().contains(table))
            Execute(change);
        test::Answers answers;
        answers.BoxStarting(ErrorStart(row.head, row.number), forms::Icon::Critical);
        EXPECT_FALSE(row.routine(*gDatabase)) << row.head.toStdString();
    }
}
