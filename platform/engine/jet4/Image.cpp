#include "platform/engine/jet4/Image.h"

#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace engine::jet4 {

namespace {

constexpr auto signature = QByteArrayView("Standard Jet DB\0", 16);
constexpr qsizetype signaturePlace = 4;
constexpr qsizetype versionPlace = 0x14;
constexpr char knownVersion = 1;

// The part of the header that is coded in every file, with one key for all of them.
constexpr std::uint32_t codedPlace = 0x18;
constexpr std::uint32_t codedLength = 0x80;
constexpr std::array<std::uint8_t, 4> headerKey{0xC7, 0xDA, 0x39, 0x6B};

constexpr std::uint32_t codeKeyPlace = 0x3E;
constexpr std::uint32_t passwordPlace = 0x42;
constexpr std::uint32_t passwordLength = 40;
constexpr std::uint32_t creationPlace = 0x72;

/// The stream cipher RC4, which takes its own code back when run twice.
void Rc4(char* bytes, std::uint32_t length, const std::array<std::uint8_t, 4>& key) {
    std::array<std::uint8_t, 256> state{};
    std::iota(state.begin(), state.end(), std::uint8_t{0});
    for (unsigned i = 0, j = 0; i < state.size(); ++i) {
        j = (j + state[i] + key[i % key.size()]) & 0xFFU;
        std::swap(state[i], state[j]);
    }
    unsigned i = 0;
    unsigned j = 0;
    for (std::uint32_t place = 0; place < length; ++place) {
        i = (i + 1) & 0xFFU;
        j = (j + state[i]) & 0xFFU;
        std::swap(state[i], state[j]);
        bytes[place] =
            static_cast<char>(static_cast<std::uint8_t>(bytes[place]) ^ state[(state[i] + state[j]) & 0xFFU]);
    }
}

std::array<std::uint8_t, 4> KeyBytes(std::uint32_t key) {
    std::array<std::uint8_t, 4> bytes{};
    qToLittleEndian(key, bytes.data());
    return bytes;
}

/// Whether the header holds a password; it is masked with the day of the file's creation.
bool HoldsPassword(Bytes header) {
    const double creation = header.F64(creationPlace);
    if (!(std::abs(creation) < 1e9))
        throw Damage();
    const auto mask = KeyBytes(static_cast<std::uint32_t>(static_cast<std::int32_t>(creation)));
    for (std::uint32_t i = 0; i < passwordLength; ++i) {
        if (header.U8(passwordPlace + i) != mask[i % mask.size()])
            return true;
    }
    return false;
}

} // namespace

bool Image::HasHeader(QByteArrayView start) {
    return start.size() >= headerSize && start.sliced(signaturePlace, signature.size()) == signature &&
           start[versionPlace] == knownVersion;
}

Image::Image(QByteArray bytes)
    : m_bytes(std::move(bytes))
    , m_pageCount(static_cast<std::uint32_t>(m_bytes.size() / pageSize)) {
    if (m_pageCount == 0 || m_bytes.size() % pageSize != 0)
        throw Damage();
    char* data = m_bytes.data();
    Rc4(data + codedPlace, codedLength, headerKey);
    m_needsPassword = HoldsPassword(Page(0));
    const std::uint32_t codeKey = Page(0).U32(codeKeyPlace);
    for (std::uint32_t page = 1; codeKey != 0 && page < m_pageCount; ++page)
        Rc4(data + std::uint64_t{page} * pageSize, pageSize, KeyBytes(codeKey ^ page));
}

Bytes Image::Page(std::uint32_t page) const {
    return Bytes(m_bytes).Part(std::uint64_t{page} * pageSize, pageSize);
}

} // namespace engine::jet4
