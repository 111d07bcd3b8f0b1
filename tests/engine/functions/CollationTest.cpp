#include "tests/engine/functions/Scratch.h"

#include <gtest/gtest.h>

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

// Each line is one order, from the first text to the last; all of them in one.
TEST(Collation, SortingFollowsTheRussianAlphabet) {
    const char16_t* const orders[] = {
        u"|\t| |_|-|,|;|:|!|?|.|'|\"|(|)|[|]|{|}|@|*|/|\\|&|#|%|`|^|+|<|=|>|~|$|0|1|10|2|9|а|я|a|z",
        u"а|аб|б|Г|ґ|д|е|Ё|еж|Ёж|ежа|ёжа|ёлка|Ель|жук|И|ИЯ|й|йа|о|ъ|ы|ь|э|ю|я|яблоко|Smith|smith |zoo",
        u"Римская|Римский Иван|Римский-Корсаков|РИМСКИЙ^Корсаков|Римскийа",
        u"O Neil|O'Neil|O^Neil|ONeil",
        u"её|ёе|ёё|её1|ёе1",
        u"cote|coté|côte|côté|Müller|Mullers|n|ñ|na|Ost|Øst|z|Žuk",
        u"Їжак|їжачок|й|к|ќ|ка",
        u"а\u00ADб|аб|а\u00ADбв|абв", // a soft hyphen counts where all else is equal
        u"и\u0306|й|и\u0306а|йа|йб",  // a mark joins its letter
        u"a|a\u0323|ạa|ấa|ab|b|z|α|ω|Ա",
    };
    for (const char16_t* order : orders) {
        const QStringList texts = test::Text(order).split(u'|');
        for (int i = 0; i < texts.size(); ++i)
            for (int j = 0; j < texts.size(); ++j)
                EXPECT_EQ(CompareSorted(texts[i], texts[j]), Sign(i - j))
                    << texts[i].toStdString() << " | " << texts[j].toStdString();
    }
    EXPECT_EQ(CompareSorted(u"ИВАНОВ", u"иванов"), 0);
    EXPECT_EQ(CompareSorted(u"ÀŽ Ё", u"àž ё"), 0);
}

// Of two texts exactly one of <, = and > holds, and the three never lead in a circle, whichever way the texts
// were compared by.
TEST(Collation, SortingAgreesWithEquality) {
    QString plain;
    for (char16_t unit = u' '; unit <= u'~'; ++unit)
        plain += QChar(unit);
    QString russian = QStringLiteral(" -ё Ё");
    for (char16_t unit = u'А'; unit <= u'я'; ++unit)
        russian += QChar(unit);
    const QStringList alphabets{
        plain + russian,
        QStringLiteral("еёЕЁ"),
        QStringLiteral("еёийЙуa1 -") +
            QString::fromUtf16(u"\u0301\u0306\u0308\u00AD\u0000№«»ßſǅạ\u2000\u200B\uFEFF", 15),
        QStringLiteral("aа") + QString::fromUtf16(u"\xD800\xDC00\xD83D\xDE00", 4),
    };
    QRandomGenerator random(20061205);
    for (const QString& alphabet : alphabets) {
        QStringList texts;
        for (int i = 0; i < 300; ++i)
            texts += RandomText(random, alphabet, 5);
        std::stable_sort(texts.begin(), texts.end(),
                         [](const QString& a, const QString& b) { return CompareSorted(a, b) < 0; });
        for (int i = 0; i < texts.size(); ++i)
            for (int j = i; j < texts.size(); ++j) {
                const int order = CompareFolded(texts[i], texts[j]) == 0 ? 0 : -1;
                ASSERT_EQ(CompareSorted(texts[i], texts[j]), order)
                    << texts[i].toUtf8().toPercentEncoding().constData() << " "
                    << texts[j].toUtf8().toPercentEncoding().constData();
                ASSERT_EQ(CompareSorted(texts[j], texts[i]), -order);
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
