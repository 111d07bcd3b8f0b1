#include "platform/runtime/Codec1251.h"

#include <algorithm>
#include <array>

namespace runtime {

namespace {

// The toolkit knows this code page only where it was built with a conversion library, so the table is ours.
// Bytes 80 to BF; below them stands ASCII, above them U+0410 to U+044F in a row.
constexpr std::array<char16_t, 64> Middle = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A,
    0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6,
    0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456,
    0x0491, 0x00B5, 0x00B6, 0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457,
};

constexpr int FirstMiddle = 0x80;
constexpr int FirstLetter = 0xC0;
constexpr char16_t CapitalA = 0x0410;
constexpr char16_t SmallYa = 0x044F;

char ToByte(char16_t character) {
    if (character < FirstMiddle)
        return static_cast<char>(character);
    if (character >= CapitalA && character <= SmallYa)
        return static_cast<char>(character - CapitalA + FirstLetter);
    const auto* const found = std::find(Middle.begin(), Middle.end(), character);
    return found == Middle.end() ? '?' : static_cast<char>(FirstMiddle + (found - Middle.begin()));
}

char16_t ToCharacter(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    if (code < FirstMiddle)
        return code;
    if (code >= FirstLetter)
        return static_cast<char16_t>(CapitalA + (code - FirstLetter));
    return Middle[static_cast<std::size_t>(code - FirstMiddle)];
}

} // namespace

QByteArray To1251(QStringView text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        bytes.append(ToByte(text[i].unicode()));
        const bool pair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (pair)
            ++i;
    }
    return bytes;
}

QString From1251(QByteArrayView bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [](char byte) { return QChar(ToCharacter(byte)); });
    return text;
}

} // namespace runtime
