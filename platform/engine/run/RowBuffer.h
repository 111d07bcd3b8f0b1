#pragma once

#include "platform/engine/store/Statement.h"

#include <memory>
#include <vector>

namespace engine {

/// The rows of a result set, read to the end when it is opened, so that no lock stays. Near to the size of
/// the texts: cells stand one behind the other in blocks of 16-bit units, each with a unit in front that
/// tells its kind.
class RowBuffer {
public:
    using Cell = engine::Cell;

    /// Copies the row on which the statement stands. Failure 3035 above the limit.
    void Add(const Statement& row);
    /// Puts a row that was read again in the place of the old one; `rowNumber` becomes its last cell. What
    /// was taken from the buffer before is not to be used any more.
    void Replace(std::size_t place, const Statement& row, std::int64_t rowNumber);
    /// The row is gone, its last cells are kept; Replace brings it back.
    void Remove(std::size_t place);

    std::size_t Rows() const { return m_rows.size(); }
    bool IsRemoved(std::size_t place) const { return place < m_removed.size() && m_removed[place]; }
    Cell At(std::size_t place, int column) const;
    void Clear() noexcept;

private:
    /// Asks the statement for its columns; the units that they take.
    std::size_t Collect(const Statement& row);
    char16_t* PutCollected(char16_t* to) const;
    char16_t* Reserve(std::size_t units);
    /// Copies the rows to blocks without what replaced rows have left behind.
    void Compact(int cells);

    std::vector<Cell> m_sources; ///< of the row being copied: each column is asked once
    std::vector<char16_t*> m_rows;
    std::vector<bool> m_removed; ///< as far as the last row that was removed
    std::vector<std::unique_ptr<char16_t[]>> m_blocks;
    std::size_t m_left = 0; ///< units left in the last block
    char16_t* m_free = nullptr;
    std::size_t m_units = 0;  ///< taken in all
    std::size_t m_wasted = 0; ///< of them by rows that have been replaced
};

} // namespace engine
