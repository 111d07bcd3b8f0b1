#include "platform/runtime/Codec1251.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QStringDecoder>

TEST(Codec1251, EveryByteIsACharacterAndComesBack) {
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(static_cast<char>(byte));
    const QString text = runtime::From1251(all);
    ASSERT_EQ(text.size(), 256);
    EXPECT_EQ(runtime::To1251(text), all);
    EXPECT_EQ(text[0x98].unicode(), 0x98);

    QStringDecoder reference("windows-1251");
    if (!reference.isValid())
        GTEST_SKIP() << "the toolkit was built without this code page";
    const QString expected = reference.decode(all);
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != 0x98) {
            EXPECT_EQ(text[byte], expected[byte]) << byte;
        }
    }
}

TEST(Codec1251, WritesRealBytesAndOneMarkForWhatIsMissing) {
    const struct {
        const char16_t* text;
        QByteArray bytes;
    } rows[] = {
        {u"Ёё№—«»€", QByteArrayLiteral("\xA8\xB8\xB9\x97\xAB\xBB\x88")},
        {u"АЯая", QByteArrayLiteral("\xC0\xDF\xE0\xFF")},
        {u"aéb", QByteArrayLiteral("a?b")},
        {u"a\U0001F600b", QByteArrayLiteral("a?b")},
        {u"日本", QByteArrayLiteral("??")},
        {u"\x0085", QByteArrayLiteral("?")},
        {u"\r\n\t", QByteArrayLiteral("\r\n\t")},
    };
    for (const auto& row : rows)
        EXPECT_EQ(runtime::To1251(row.text), row.bytes) << row.bytes.toStdString();
    const char16_t loneHalf[] = {0xD83D, u'x'};
    EXPECT_EQ(runtime::To1251(QStringView(loneHalf, 2)), QByteArrayLiteral("?x"));
}
