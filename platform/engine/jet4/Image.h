#pragma once

#include "platform/engine/jet4/Bytes.h"

#include <QIODevice>
#include <QString>

#include <memory>
#include <vector>

namespace engine::jet4 {

/// Where a row stands: the page and its place there.
struct RowPlace {
    std::uint32_t page = 0;
    std::uint32_t row = 0;

    // NOLINTNEXTLINE(modernize-use-nullptr): the check misreads the comparison.
    friend auto operator<=>(const RowPlace&, const RowPlace&) = default;
};

/// The place that a pointer in the file names.
inline RowPlace PlaceIn(const Bytes& pointer) {
    return {pointer.U24(1), pointer.U8(0)};
}

struct Row {
    Bytes bytes;
    bool deleted = false; ///< or the target of a pointer
    bool pointer = false; ///< moved; the bytes name its place
};

enum class PageType : std::uint8_t { Data = 1, Definition = 2, Map = 5 };

// A page of rows.
inline constexpr std::uint32_t ownerPlace = 4; ///< the definition page of the rows' table
inline constexpr std::uint32_t rowsPlace = 12;

/// The pages of the file, decoded; read when they are asked for, few of them kept. Contradictions are Damage.
class Image {
public:
    static constexpr std::uint32_t pageSize = 4096;

    /// The device is open and random-access; `path` names it in failures: 3343 another format, 3031 a
    /// password, 3049 damaged, 3043 it cannot be read.
    Image(std::unique_ptr<QIODevice> device, QString path);

    /// Whether the first bytes are the header of this format, and of no older or newer one.
    static bool HasHeader(QByteArrayView start);
    static constexpr qsizetype headerSize = 21;

    const QString& Path() const { return m_path; }
    std::uint32_t PageCount() const { return m_pageCount; }
    /// Size of the file: what the memory for anything read from it is bounded by.
    std::uint64_t Size() const { return std::uint64_t{m_pageCount} * pageSize; }

    Bytes Page(std::uint32_t page) const;
    Bytes Page(std::uint32_t page, PageType type) const;
    Row RowAt(RowPlace place) const;

    /// Runs the action; Damage in it is failure 3049.
    template <class Action>
    auto Guarded(Action action) const {
        try {
            return action();
        } catch (const Damage&) {
            RaiseDamaged();
        }
    }

private:
    struct Kept {
        std::uint32_t number = 0;
        Bytes page;
    };

    void ReadHeader();
    QByteArray Read(std::uint32_t page) const;
    [[noreturn]] void RaiseDamaged() const;

    std::unique_ptr<QIODevice> m_device;
    QString m_path;
    std::uint32_t m_pageCount = 0;
    std::uint32_t m_codeKey = 0;
    mutable std::vector<Kept> m_kept; ///< by number, modulo their count
};

} // namespace engine::jet4
