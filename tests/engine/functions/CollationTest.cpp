#include "platform/engine/functions/Functions.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

#include <algorithm>

using engine::functions::CompareFolded;
using engine::functions::CompareSorted;
using engine::functions::Fold;

// The result of folding is kept by the indexes of users' files: any change here makes old files wrong.
TEST(Collation, FoldingIsFrozen) {
    const auto text = [](const char* utf8) { return QString::fromUtf8(utf8); };
    const std::pair<const char*, const char*> pairs[] = {
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZ", "abcdefghijklmnopqrstuvwxyz"},
        {"АБВГДЕЁЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ", "абвгдеёжзийклмнопрстуфхцчшщъыьэюя"},
        {"ІЇЄҐЎЂЈЉЊЋЏѢѲѴҖҚӀӁӘӨԤ", "іїєґўђјљњћџѣѳѵҗқӏӂәөԥ"},
        {"ÀÅÆÇÉÑÖØÜÞĀĲĹŁŊŒŠŸŹŽ", "àåæçéñöøüþāĳĺłŋœšÿźž"},
        {"ΑΣΩΆΈΌΎΏΪς", "ασωάέόύώϊσ"},
        // These have no small letter of one code unit, or would change their meaning.
        {"×÷ßİıſµĸŉёй \t\u00A0№1…\U0001F600Ա", "×÷ßİıſµĸŉёй \t\u00A0№1…\U0001F600Ա"},
    };
    for (const auto& [capitals, small] : pairs)
        EXPECT_EQ(Fold(text(capitals)), text(small));
    // A second, independent wording of the rule over the whole table.
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

// Each line is one order, from the first text to the last; all of them in one.
TEST(Collation, SortingFollowsTheRussianAlphabet) {
    for (const char16_t* order : {
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
         }) {
        const QStringList texts = QString::fromUtf16(order).split(u'|');
        for (int i = 0; i < texts.size(); ++i)
            for (int j = 0; j < texts.size(); ++j)
                EXPECT_EQ(CompareSorted(texts[i], texts[j]), (i > j) - (i < j))
                    << texts[i].toStdString() << " | " << texts[j].toStdString();
    }
    EXPECT_EQ(CompareSorted(u"ИВАНОВ ÀŽ Ё", u"иванов àž ё"), 0);
}

// Of two texts exactly one of <, = and > holds, and the three never lead in a circle, whichever way the texts
// were compared by.
TEST(Collation, SortingAgreesWithEquality) {
    QString usual = QStringLiteral(" -ё Ё");
    for (char16_t unit = u' '; unit <= u'~'; ++unit)
        usual += QChar(unit);
    for (char16_t unit = u'А'; unit <= u'я'; ++unit)
        usual += QChar(unit);
    QRandomGenerator random(20061205);
    for (const QString& alphabet :
         {usual, QStringLiteral("еёЕЁ"),
          QStringLiteral("еёийЙуa1 -") +
              QString::fromUtf16(u"\u0301\u0306\u0308\u00AD\u0000№«»ßſǅạ\u2000\u200B\uFEFF", 15),
          QStringLiteral("aа") + QString::fromUtf16(u"\xD800\xDC00\xD83D\xDE00", 4)}) {
        QStringList texts;
        for (int i = 0; i < 300; ++i) {
            QString text;
            for (int length = random.bounded(6); length > 0; --length)
                text += alphabet[random.bounded(static_cast<int>(alphabet.size()))];
            texts += text;
        }
        std::ranges::stable_sort(texts,
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
