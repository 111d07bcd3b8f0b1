#pragma once

#include "platform/engine/store/Statement.h"

#include <vector>

namespace engine {

/// The rows of a result set, read to the end when it is opened, so that no lock stays: cells of one size, and
/// behind them all texts, bytes and long numbers in one piece.
class RowBuffer {
public:
    /// Copies the row on which the statement stands. Failure 3035 above one gigabyte.
    void Add(const Statement& row);
    /// Puts the columns of a row that was read again in the place of the old ones. Texts that were taken from
    /// the buffer before are not to be used any more.
    void Replace(std::size_t place, const Statement& row);
    /// The row is gone, its last cells are kept; Replace brings it back.
    void Remove(std::size_t place);

    std::size_t Rows() const { return m_columns == 0 ? 0 : m_slots.size() / m_columns; }
    bool IsRemoved(std::size_t place) const { return place < m_removed.size() && m_removed[place]; }
    /// A view of a cell, good until a row is added or replaced.
    Cell At(std::size_t place, int column) const;

private:
    struct Slot {
        std::uint32_t kind : 3;   ///< Cell::Kind, or Small
        std::uint32_t bytes : 29; ///< of what stands in the store
        std::uint32_t at;         ///< where it begins there, in units; a small number itself
    };
    Slot Put(const Cell& cell);
    Slot Keep(Cell::Kind kind, const void* start, qsizetype bytes);

    std::size_t m_columns = 0;
    std::vector<Slot> m_slots;
    QString m_store;
    std::vector<bool> m_removed; ///< as far as the last row that was removed
};

} // namespace engine
