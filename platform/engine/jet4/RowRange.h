#pragma once

#include "platform/engine/jet4/Image.h"

#include <iterator>

namespace engine::jet4 {

struct Table;

/// The rows of a table, every one exactly once, page by page; a moved row comes where its pointer stands. To
/// be gone through once. Failure 3049 where the rows are not as many as the table says.
class RowRange {
public:
    RowRange(const Image& image, const Table& table);

    class Iterator {
    public:
        explicit Iterator(RowRange* rows)
            : m_rows(rows) {}
        RowPlace operator*() const { return m_rows->m_place; }
        Iterator& operator++() {
            m_rows->Advance();
            return *this;
        }
        bool operator==(std::default_sentinel_t) const { return m_rows->m_ended; }

    private:
        RowRange* m_rows;
    };
    Iterator begin() {
        Advance();
        return Iterator(this);
    }
    static std::default_sentinel_t end() { return {}; }

private:
    void ReadMap();
    void AddPages(const Bytes& bits, std::uint64_t first);
    void Advance();
    bool FindNext();
    std::uint32_t RowsOn(std::uint32_t page) const;
    RowPlace Follow(const Bytes& pointer) const;
    void CheckEnd();

    const Image& m_image;
    const Table& m_table;
    std::vector<std::uint32_t> m_pages; ///< that the table's map names, ascending
    std::size_t m_page = 0;             ///< of these
    std::uint32_t m_row = 0;            ///< the next on that page
    RowPlace m_place;
    std::uint32_t m_count = 0;
    std::vector<RowPlace> m_moved; ///< places that pointers have led to
    bool m_ended = false;
};

} // namespace engine::jet4
