#include "platform/engine/jet4/Image.h"

#include "platform/engine/EngineError.h"

#include <algorithm>
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
constexpr qint64 largestFile = qint64{1} << 31;

/// How many pages are kept, 4 MiB.
constexpr std::uint32_t mostKept = 1024;

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
bool HoldsPassword(const Bytes& header) {
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

Image::Image(std::unique_ptr<QIODevice> device, QString path)
    : m_device(std::move(device))
    , m_path(std::move(path)) {
    Guarded([this] { ReadHeader(); });
}

void Image::ReadHeader() {
    if (!HasHeader(m_device->peek(headerSize)))
        RaiseEngine(UnrecognisedFormat, m_path);
    const qint64 size = m_device->size();
    if (size < pageSize || size > largestFile || size % pageSize != 0)
        throw Damage();
    m_pageCount = static_cast<std::uint32_t>(size / pageSize);
    m_kept.resize(std::min(m_pageCount, mostKept));
    QByteArray header = Read(0);
    Rc4(header.data() + codedPlace, codedLength, headerKey);
    m_codeKey = Bytes(header).U32(codeKeyPlace);
    if (HoldsPassword(header))
        throw runtime::Failure(PasswordNeeded, QStringLiteral("Файл '%1' защищён паролем. Снимите пароль в "
                                                              "программе, которой он был создан, и повторите "
                                                              "попытку.")
                                                   .arg(m_path));
}

void Image::RaiseDamaged() const {
    RaiseEngine(CannotOpenDatabase, m_path);
}

QByteArray Image::Read(std::uint32_t page) const {
    QByteArray bytes(pageSize, Qt::Uninitialized);
    const bool found = m_device->seek(qint64{page} * pageSize);
    const qint64 got = found ? m_device->read(bytes.data(), pageSize) : -1;
    if (got < 0)
        RaiseEngine(DiskOrNetworkFailure);
    if (got < pageSize)
        throw Damage();
    if (page != 0 && m_codeKey != 0)
        Rc4(bytes.data(), pageSize, KeyBytes(m_codeKey ^ page));
    return bytes;
}

Bytes Image::Page(std::uint32_t page) const {
    if (page >= m_pageCount)
        throw Damage();
    Kept& kept = m_kept[page % m_kept.size()];
    if (kept.number != page || kept.page.Size() == 0)
        kept = {page, Read(page)};
    return kept.page;
}

Bytes Image::Page(std::uint32_t page, PageType type) const {
    Bytes bytes = Page(page);
    if (bytes.U8(0) != static_cast<std::uint8_t>(type))
        throw Damage();
    return bytes;
}

Row Image::RowAt(RowPlace place) const {
    constexpr std::uint32_t offsetsPlace = 14;
    constexpr std::uint32_t offsetMask = 0x1FFF;
    constexpr std::uint32_t deletedFlag = 0x8000;
    constexpr std::uint32_t pointerFlag = 0x4000;
    const Bytes page = Page(place.page, PageType::Data);
    const std::uint32_t count = page.U16(rowsPlace);
    if (place.row >= count)
        throw Damage();
    const std::uint32_t entry = page.U16(offsetsPlace + 2 * place.row);
    const std::uint32_t start = entry & offsetMask;
    const std::uint32_t end =
        place.row == 0 ? pageSize : page.U16(offsetsPlace + 2 * (place.row - 1)) & offsetMask;
    if (start < offsetsPlace + 2 * count || start > end)
        throw Damage();
    return {page.Part(start, end - start), (entry & deletedFlag) != 0, (entry & pointerFlag) != 0};
}

} // namespace engine::jet4
