#include "platform/engine/functions/Functions.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QRandomGenerator>

#include <algorithm>

using engine::functions::CompareFolded;
using engine::functions::CompareSorted;
using engine::functions::Fold;

// The result of folding is kept by the indexes of users' files: any change here makes old files wrong.
TEST(Collation, FoldingIsFrozen) {
    EXPECT_EQ(Fold(QStringLiteral("QАЁЇÀŁΣς×ßİ\U0001F600")), QStringLiteral("qаёїàłσσ×ßİ\U0001F600"));
    QString all;
    for (unsigned unit = 0; unit < 0x10000; ++unit)
        all += Fold(QString(QChar(static_cast<char16_t>(unit))));
    const QByteArrayView bytes(reinterpret_cast<const char*>(all.utf16()), all.size() * 2);
    EXPECT_EQ(QCryptographicHash::hash(bytes.toByteArray(), QCryptographicHash::Sha1).toHex().toStdString(),
              "f6d17ed2c8b4b98fe7072be1cc6d8036953f054d");
}

// Each line is one order, from the first text to the last; all of them in one.
TEST(Collation, SortingFollowsTheRussianAlphabet) {
    for (const char16_t* order : {
             u"|\t| |_|-|,|;|:|!|?|.|'|\"|(|)|[|]|{|}|@|*|/|\\|&|#|%|`|^|+|<|=|>|~|$|0|1|10|2|9|а|я|a|z",
             u"а|аб|б|Г|ґ|д|е|Ё|еж|Ёж|ежа|ёжа|ёлка|Ель|жук|И|ИЯ|й|йа|о|ъ|ы|ь|э|ю|я|яблоко|Smith|smith |zoo",
             u"её|ёе|ёё|её1|ёе1",
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

// Of two texts exactly one of <, = and > holds, and the three never lead in a circle.
TEST(Collation, SortingAgreesWithEquality) {
    QRandomGenerator random(20061205);
    for (const QString& alphabet :
         {QStringLiteral("еёЕЁ -^aя"),
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
