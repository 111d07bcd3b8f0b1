#include "platform/runtime/Codec1251.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

TEST(Codec1251, EveryByteIsACharacterAndComesBack) {
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(static_cast<char>(byte));
    const QString text = runtime::From1251(all);
    ASSERT_EQ(text.size(), 256);
    EXPECT_EQ(runtime::To1251(text), all);
    EXPECT_EQ(text.sliced(128),
              QStringLiteral("ЂЃ‚ѓ„…†‡€‰Љ‹ЊЌЋЏђ‘’“”•–—\u0098™љ›њќћџ\u00A0ЎўЈ¤Ґ¦§Ё©Є«¬\u00AD®Ї°±Ііґµ¶·ё№є»јЅѕї"
                             "АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯабвгдежзийклмнопрстуфхцчшщъыьэюя"));
}

TEST(Codec1251, WritesRealBytesAndOneMarkForWhatIsMissing) {
    const struct {
        const char16_t* text;
        QByteArray bytes;
    } rows[] = {
        {u"Ёё№—«»€", QByteArrayLiteral("\xA8\xB8\xB9\x97\xAB\xBB\x88")},
        {u"aéb", QByteArrayLiteral("a?b")},
        {u"a\U0001F600b", QByteArrayLiteral("a?b")},
        {u"\x0085", QByteArrayLiteral("?")},
    };
    for (const auto& row : rows)
        EXPECT_EQ(runtime::To1251(row.text), row.bytes) << row.bytes.toStdString();
    const char16_t loneHalf[] = {0xD83D, u'x'};
    EXPECT_EQ(runtime::To1251(QStringView(loneHalf, 2)), QByteArrayLiteral("?x"));
}
