#include "tests/engine/functions/Scratch.h"

#include <gtest/gtest.h>

#include <QCollator>
#include <QLocale>
#include <QRandomGenerator>

#include <algorithm>

using engine::functions::CompareFolded;
using engine::functions::CompareSorted;
using engine::functions::Fold;

namespace {

int Sign(int value) {
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

QString RandomText(QRandomGenerator& random, const QString& alphabet, int longest) {
    QString text;
    const int length = random.bounded(longest + 1);
    for (int i = 0; i < length; ++i)
        text += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
    return text;
}

} // namespace

// The result of folding is kept by the indexes of users' files: any change here makes old files wrong.
TEST(Collation, FoldingIsFrozen) {
    const struct {
        const char16_t* capitals;
        const char16_t* small;
    } pairs[] = {
        {u"ABCDEFGHIJKLMNOPQRSTUVWXYZ", u"abcdefghijklmnopqrstuvwxyz"},
        {u"АБВГДЕЁЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ", u"абвгдеёжзийклмнопрстуфхцчшщъыьэюя"},
        {u"ІЇЄҐЎЂЈЉЊЋЏѢѲѴҖҚӀӁӘӨԤ", u"іїєґўђјљњћџѣѳѵҗқӏӂәөԥ"},
        {u"ÀÅÆÇÉÑÖØÜÞ", u"àåæçéñöøüþ"},
        {u"ĀĲĹŁŊŒŠŸŹŽ", u"āĳĺłŋœšÿźž"},
        {u"ΑΣΩΆΈΌΎΏΪ", u"ασωάέόύώϊ"},
        {u"ς", u"σ"},
    };
    for (const auto& pair : pairs)
        EXPECT_EQ(Fold(test::Text(pair.capitals)), test::Text(pair.small));

    // These have no small letter of one code unit, or would change their meaning.
    for (const char16_t* same :
         {u"×÷ß", u"İı", u"ſµĸŉ", u"ё", u"й", u" \t\u00A0", u"№1…", u"\U0001F600", u"Ա"})
        EXPECT_EQ(Fold(test::Text(same)), test::Text(same));
}

// A second, independent wording of the rule over the whole table.
TEST(Collation, EveryFoldIsTheSmallLetterOfItsCapital) {
    int folds = 0;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const QChar character(static_cast<char16_t>(unit));
        const QChar folded = Fold(QString(character)).at(0);
        EXPECT_EQ(Fold(QString(folded)), QString(folded)) << unit;
        if (folded == character)
            continue;
        ++folds;
        EXPECT_LT(unit, 0x530U);
        EXPECT_TRUE(folded == character.toLower() || unit == 0x3C2) << unit;
    }
    EXPECT_EQ(folds, 26 + 30 + 62 + 34 + 48 + 100);
}

TEST(Collation, EqualityIgnoresCaseAndNothingElse) {
    const struct {
        const char16_t* a;
        const char16_t* b;
        int order;
    } rows[] = {
        {u"Иванов", u"ИВАНОВ", 0}, {u"Смит John", u"смит jOHN", 0},
        {u"е", u"ё", -1},          {u"Ё", u"ё", 0},
        {u"и", u"й", -1},          {u"Иванов", u"Иванов ", -1},
        {u"", u" ", -1},           {u"", u"", 0},
        {u"a", u"а", -1},          {u"Яб", u"яа", 1},
        {u"ß", u"ss", 1},          {u"Z", u"a", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(test::Text(row.a).toStdString() + "|" + test::Text(row.b).toStdString());
        EXPECT_EQ(CompareFolded(row.a, row.b), row.order);
        EXPECT_EQ(CompareFolded(row.b, row.a), -row.order);
        EXPECT_EQ(Fold(test::Text(row.a)) == Fold(test::Text(row.b)), row.order == 0);
    }
}

TEST(Collation, SortingFollowsTheRussianAlphabet) {
    QStringList sorted{QStringLiteral(""),      QStringLiteral(" "),      QStringLiteral("-"),
                       QStringLiteral("1"),     QStringLiteral("10"),     QStringLiteral("2"),
                       QStringLiteral("аб"),    QStringLiteral("Ёж"),     QStringLiteral("еж"),
                       QStringLiteral("ежа"),   QStringLiteral("Ель"),    QStringLiteral("ёлка"),
                       QStringLiteral("жук"),   QStringLiteral("ИЯ"),     QStringLiteral("йа"),
                       QStringLiteral("Smith"), QStringLiteral("smith "), QStringLiteral("яблоко")};
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const QString& a, const QString& b) { return CompareSorted(a, b) < 0; });
    EXPECT_EQ(
        sorted,
        (QStringList{QStringLiteral(""), QStringLiteral(" "), QStringLiteral("-"), QStringLiteral("1"),
                     QStringLiteral("10"), QStringLiteral("2"), QStringLiteral("аб"), QStringLiteral("еж"),
                     QStringLiteral("Ёж"), QStringLiteral("ежа"), QStringLiteral("ёлка"),
                     QStringLiteral("Ель"), QStringLiteral("жук"), QStringLiteral("ИЯ"), QStringLiteral("йа"),
                     QStringLiteral("яблоко"), QStringLiteral("Smith"), QStringLiteral("smith ")}));
    EXPECT_EQ(CompareSorted(u"ИВАНОВ", u"иванов"), 0);
}

// The short way through ranks has to be the collator's order, in every mixture of characters.
TEST(Collation, RanksAgreeWithTheCollator) {
    QCollator collator(QLocale(QLocale::Russian, QLocale::Russia));
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    QString plain;
    for (char16_t unit = u' '; unit <= u'~'; ++unit)
        plain += QChar(unit);
    QString russian = QStringLiteral(" -ё Ё");
    for (char16_t unit = u'А'; unit <= u'я'; ++unit)
        russian += QChar(unit);
    const QStringList alphabets{
        plain,
        russian,
        QStringLiteral("еёЕЁ"),
        QStringLiteral("еёиa ж"),
        plain + russian,
        // What changes the weight of its neighbours, or has none.
        QStringLiteral("еёийуa1 -") + QString::fromUtf16(u"\u0301\u0306\u0308\u00AD\u0000№«»ßſǅ", 12),
        QStringLiteral("aа") + QString::fromUtf16(u"\xD800\xDC00\xD83D\xDE00", 4),
    };
    QRandomGenerator random(20061205);
    for (const QString& alphabet : alphabets) {
        for (int i = 0; i < 40000; ++i) {
            const QString a = RandomText(random, alphabet, 8);
            // Texts that share a beginning get far enough to differ behind it.
            const QString b = i % 2 ? RandomText(random, alphabet, 8)
                                    : a.first(random.bounded(static_cast<int>(a.size()) + 1)) +
                                          RandomText(random, alphabet, 3);
            ASSERT_EQ(CompareSorted(a, b), Sign(collator.compare(a, b)))
                << a.toUtf8().toPercentEncoding().constData() << " "
                << b.toUtf8().toPercentEncoding().constData();
        }
    }
}

TEST(Collation, SQLiteUsesBoth) {
    test::Scratch scratch;
    EXPECT_EQ(scratch.Ask("SELECT 'ИВАН' = 'иван' COLLATE ZV_FOLD"), "1");
    EXPECT_EQ(scratch.Ask("SELECT 'ё' = 'е' COLLATE ZV_FOLD"), "0");
    EXPECT_EQ(
        scratch.Ask("SELECT group_concat(t, ' ') FROM (SELECT column1 AS t FROM (VALUES ('жук'), ('ёж'), "
                    "('ель'), ('Еж')) ORDER BY 1 COLLATE ZV_SORT)"),
        "Еж ёж ель жук");
}
