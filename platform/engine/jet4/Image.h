#pragma once

#include "platform/engine/jet4/Bytes.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace engine::jet4 {

/// The whole file in memory, its pages decoded. It does not change with the file on the disk.
class Image {
public:
    static constexpr std::uint32_t pageSize = 4096;

    /// Takes over the bytes of a file that HasHeader knows. Raises Damage; NeedsPassword() tells a file that
    /// is not to be read at all.
    explicit Image(QByteArray bytes);

    /// Whether the first bytes are the header of this format, and of no older or newer one.
    static bool HasHeader(QByteArrayView start);
    static constexpr qsizetype headerSize = 21;

    bool NeedsPassword() const { return m_needsPassword; }
    std::uint32_t PageCount() const { return m_pageCount; }
    /// Size of the file: what the memory for anything read from it is bounded by.
    std::uint64_t Size() const { return std::uint64_t{m_pageCount} * pageSize; }
    Bytes Page(std::uint32_t page) const;

private:
    QByteArray m_bytes;
    std::uint32_t m_pageCount = 0;
    bool m_needsPassword = false;
};

} // namespace engine::jet4
