#include "platform/engine/run/RowBuffer.h"

#include "platform/engine/EngineError.h"

#include <algorithm>
#include <cstring>

namespace engine {

namespace {

// The three low bits of a cell's first unit tell the form, the others hold a small number or a short length.
enum Form : char16_t { FormNull, FormSmall, FormInteger, FormReal, FormShortText, FormLongText, FormBytes };

constexpr std::size_t blockUnits = std::size_t{1} << 18; // half a megabyte
constexpr std::size_t maxUnits = std::size_t{1} << 29;   // one gigabyte
constexpr std::size_t numberUnits = sizeof(std::int64_t) / sizeof(char16_t);
constexpr std::size_t lengthUnits = 2;
constexpr std::int64_t smallLimit = 4096;
constexpr std::size_t shortLimit = 8192;

/// Units of a text, or bytes.
std::size_t Size(const auto& view) {
    return static_cast<std::size_t>(view.size());
}

bool IsSmall(std::int64_t number) {
    return number >= -smallLimit && number < smallLimit;
}

std::size_t UnitsOf(std::int64_t number) {
    return IsSmall(number) ? 1 : 1 + numberUnits;
}

char16_t* PutLength(char16_t* to, std::size_t length) {
    to[0] = static_cast<char16_t>(length & 0xffff);
    to[1] = static_cast<char16_t>(length >> 16);
    return to + lengthUnits;
}

std::size_t GetLength(const char16_t* from) {
    return from[0] | (static_cast<std::size_t>(from[1]) << 16);
}

char16_t* Put(char16_t* to, std::int64_t number) {
    if (IsSmall(number)) {
        *to = static_cast<char16_t>((static_cast<std::uint16_t>(number + smallLimit) << 3) | FormSmall);
        return to + 1;
    }
    *to++ = FormInteger;
    std::memcpy(to, &number, sizeof number);
    return to + numberUnits;
}

const char16_t* Skip(const char16_t* cell) {
    switch (*cell & 7) {
    case FormInteger:
    case FormReal:
        return cell + 1 + numberUnits;
    case FormShortText:
        return cell + 1 + (*cell >> 3);
    case FormLongText:
        return cell + 1 + lengthUnits + GetLength(cell + 1);
    case FormBytes:
        return cell + 1 + lengthUnits + (GetLength(cell + 1) + 1) / 2;
    default:
        return cell + 1;
    }
}

std::size_t UnitsOf(const char16_t* row, int cells) {
    const char16_t* end = row;
    for (int cell = 0; cell < cells; ++cell)
        end = Skip(end);
    return static_cast<std::size_t>(end - row);
}

std::size_t UnitsOf(const Cell& cell) {
    switch (cell.kind) {
    case Cell::Integer:
        return UnitsOf(cell.integer);
    case Cell::Real:
        return 1 + numberUnits;
    case Cell::Text:
        return 1 + Size(cell.text) + (Size(cell.text) < shortLimit ? 0 : lengthUnits);
    case Cell::Bytes:
        return 1 + lengthUnits + (Size(cell.bytes) + 1) / 2;
    case Cell::Null:
        break;
    }
    return 1;
}

char16_t* Put(char16_t* to, const Cell& cell) {
    switch (cell.kind) {
    case Cell::Integer:
        return Put(to, cell.integer);
    case Cell::Real:
        *to++ = FormReal;
        std::memcpy(to, &cell.real, sizeof cell.real);
        return to + numberUnits;
    case Cell::Text:
        if (Size(cell.text) < shortLimit) {
            *to++ = static_cast<char16_t>((Size(cell.text) << 3) | FormShortText);
        } else {
            *to++ = FormLongText;
            to = PutLength(to, Size(cell.text));
        }
        return std::copy_n(cell.text.utf16(), cell.text.size(), to);
    case Cell::Bytes:
        *to++ = FormBytes;
        to = PutLength(to, Size(cell.bytes));
        if (!cell.bytes.isEmpty())
            std::memcpy(to, cell.bytes.data(), Size(cell.bytes));
        return to + (Size(cell.bytes) + 1) / 2;
    case Cell::Null:
        break;
    }
    *to++ = FormNull;
    return to;
}

Cell Read(const char16_t* cell) {
    Cell read;
    switch (*cell & 7) {
    case FormSmall:
        read.kind = Cell::Integer;
        read.integer = (*cell >> 3) - smallLimit;
        break;
    case FormInteger:
        read.kind = Cell::Integer;
        std::memcpy(&read.integer, cell + 1, sizeof read.integer);
        break;
    case FormReal:
        read.kind = Cell::Real;
        std::memcpy(&read.real, cell + 1, sizeof read.real);
        break;
    case FormShortText:
        read.kind = Cell::Text;
        read.text = QStringView(cell + 1, *cell >> 3);
        break;
    case FormLongText:
        read.kind = Cell::Text;
        read.text = QStringView(cell + 1 + lengthUnits, static_cast<qsizetype>(GetLength(cell + 1)));
        break;
    case FormBytes:
        read.kind = Cell::Bytes;
        read.bytes = QByteArrayView(reinterpret_cast<const char*>(cell + 1 + lengthUnits),
                                    static_cast<qsizetype>(GetLength(cell + 1)));
        break;
    default:
        break;
    }
    return read;
}

} // namespace

std::size_t RowBuffer::Collect(const Statement& row) {
    const int columns = row.ColumnCount();
    m_sources.clear();
    std::size_t units = 0;
    for (int column = 0; column < columns; ++column)
        units += UnitsOf(m_sources.emplace_back(row.Column(column)));
    return units;
}

char16_t* RowBuffer::PutCollected(char16_t* to) const {
    for (const Cell& cell : m_sources)
        to = Put(to, cell);
    return to;
}

void RowBuffer::Add(const Statement& row) {
    m_rows.push_back(nullptr);
    m_rows.back() = Reserve(Collect(row));
    PutCollected(m_rows.back());
}

void RowBuffer::Replace(std::size_t place, const Statement& row, std::int64_t rowNumber) {
    const std::size_t units = Collect(row) + engine::UnitsOf(rowNumber);
    const int cells = static_cast<int>(m_sources.size()) + 1;
    const std::size_t room = engine::UnitsOf(m_rows[place], cells);
    if (units > room) {
        if (m_wasted > blockUnits && (m_wasted > m_units / 2 || m_units + units > maxUnits))
            Compact(cells);
        m_rows[place] = Reserve(units);
    }
    m_wasted += units > room ? room : room - units;
    engine::Put(PutCollected(m_rows[place]), rowNumber);
    if (place < m_removed.size())
        m_removed[place] = false;
}

void RowBuffer::Remove(std::size_t place) {
    if (m_removed.size() <= place)
        m_removed.resize(place + 1);
    m_removed[place] = true;
}

void RowBuffer::Compact(int cells) {
    RowBuffer compact;
    for (const char16_t* row : m_rows) {
        const std::size_t units = engine::UnitsOf(row, cells);
        compact.m_rows.push_back(std::copy_n(row, units, compact.Reserve(units)) - units);
    }
    compact.m_sources.swap(m_sources);
    compact.m_removed.swap(m_removed);
    *this = std::move(compact);
}

char16_t* RowBuffer::Reserve(std::size_t units) {
    if (m_units + units > maxUnits)
        RaiseEngine(ResourcesExceeded);
    if (units > m_left) {
        // Small results take small blocks: most sets hold a few rows.
        const std::size_t size = std::max(units, std::min(blockUnits, std::max<std::size_t>(m_units, 256)));
        m_blocks.push_back(std::make_unique_for_overwrite<char16_t[]>(size));
        m_free = m_blocks.back().get();
        m_left = size;
    }
    char16_t* start = m_free;
    m_free += units;
    m_left -= units;
    m_units += units;
    return start;
}

Cell RowBuffer::At(std::size_t place, int column) const {
    const char16_t* cell = m_rows[place];
    for (int skipped = 0; skipped < column; ++skipped)
        cell = Skip(cell);
    return Read(cell);
}

void RowBuffer::Clear() noexcept {
    *this = RowBuffer();
}

} // namespace engine
