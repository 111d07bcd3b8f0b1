#include "platform/engine/run/RowBuffer.h"

#include "platform/engine/EngineError.h"

#include <cstring>

namespace engine {

namespace {

constexpr std::uint32_t Small = Cell::Bytes + 1;   ///< a whole number that needs no place in the store
constexpr qsizetype maxUnits = qsizetype{1} << 29; // one gigabyte

} // namespace

void RowBuffer::Add(const Statement& row) {
    const int columns = row.ColumnCount();
    m_columns = static_cast<std::size_t>(columns);
    for (int column = 0; column < columns; ++column)
        m_slots.push_back(Put(row.Column(column)));
}

void RowBuffer::Replace(std::size_t place, const Statement& row) {
    const int columns = row.ColumnCount();
    for (int column = 0; column < columns; ++column)
        if (const Cell cell = row.Column(column); At(place, column) != cell)
            m_slots[place * m_columns + static_cast<std::size_t>(column)] = Put(cell);
    if (place < m_removed.size())
        m_removed[place] = false;
}

void RowBuffer::Remove(std::size_t place) {
    if (m_removed.size() <= place)
        m_removed.resize(place + 1);
    m_removed[place] = true;
}

RowBuffer::Slot RowBuffer::Put(const Cell& cell) {
    switch (cell.kind) {
    case Cell::Integer:
        if (const auto small = static_cast<std::int32_t>(cell.integer); small == cell.integer)
            return {Small, 0, static_cast<std::uint32_t>(small)};
        return Keep(cell.kind, &cell.integer, sizeof cell.integer);
    case Cell::Real:
        return Keep(cell.kind, &cell.real, sizeof cell.real);
    case Cell::Text:
        return Keep(cell.kind, cell.text.utf16(), cell.text.size() * 2);
    case Cell::Bytes:
        return Keep(cell.kind, cell.bytes.data(), cell.bytes.size());
    case Cell::Null:
        break;
    }
    return {Cell::Null, 0, 0};
}

RowBuffer::Slot RowBuffer::Keep(Cell::Kind kind, const void* start, qsizetype bytes) {
    const qsizetype at = m_store.size();
    const qsizetype units = (bytes + 1) / 2;
    if (at + units > maxUnits)
        RaiseEngine(ResourcesExceeded);
    m_store.resize(at + units);
    if (bytes > 0)
        std::memcpy(m_store.data() + at, start, static_cast<std::size_t>(bytes));
    return {kind, static_cast<std::uint32_t>(bytes), static_cast<std::uint32_t>(at)};
}

Cell RowBuffer::At(std::size_t place, int column) const {
    const Slot& slot = m_slots[place * m_columns + static_cast<std::size_t>(column)];
    const QChar* const start = m_store.constData() + slot.at;
    std::int64_t number = 0;
    double real = 0;
    switch (slot.kind) {
    case Small:
        return Cell(std::int64_t{static_cast<std::int32_t>(slot.at)});
    case Cell::Integer:
        std::memcpy(&number, start, sizeof number);
        return Cell(number);
    case Cell::Real:
        std::memcpy(&real, start, sizeof real);
        return Cell(real);
    case Cell::Text:
        return Cell(QStringView(start, slot.bytes / 2));
    case Cell::Bytes:
        return Cell(QByteArrayView(reinterpret_cast<const char*>(start), slot.bytes));
    default:
        return {};
    }
}

} // namespace engine
