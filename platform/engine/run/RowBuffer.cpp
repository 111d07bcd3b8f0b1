#include "platform/engine/run/RowBuffer.h"

#include "platform/engine/EngineError.h"

#include <sqlite3.h>

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

RowBuffer::Cell Read(const char16_t* cell) {
    RowBuffer::Cell read;
    switch (*cell & 7) {
    case FormSmall:
        read.kind = RowBuffer::Cell::Integer;
        read.integer = (*cell >> 3) - smallLimit;
        break;
    case FormInteger:
        read.kind = RowBuffer::Cell::Integer;
        std::memcpy(&read.integer, cell + 1, sizeof read.integer);
        break;
    case FormReal:
        read.kind = RowBuffer::Cell::Real;
        std::memcpy(&read.real, cell + 1, sizeof read.real);
        break;
    case FormShortText:
        read.kind = RowBuffer::Cell::Text;
        read.text = QStringView(cell + 1, *cell >> 3);
        break;
    case FormLongText:
        read.kind = RowBuffer::Cell::Text;
        read.text = QStringView(cell + 1 + lengthUnits, static_cast<qsizetype>(GetLength(cell + 1)));
        break;
    case FormBytes:
        read.kind = RowBuffer::Cell::Bytes;
        read.bytes = QByteArrayView(reinterpret_cast<const char*>(cell + 1 + lengthUnits),
                                    static_cast<qsizetype>(GetLength(cell + 1)));
        break;
    default:
        break;
    }
    return read;
}

} // namespace

RowBuffer::Source RowBuffer::SourceOf(sqlite3_stmt* row, int column) {
    Source source;
    source.type = sqlite3_column_type(row, column);
    switch (source.type) {
    case SQLITE_INTEGER:
        source.integer = sqlite3_column_int64(row, column);
        break;
    case SQLITE_FLOAT:
        source.real = sqlite3_column_double(row, column);
        break;
    case SQLITE_TEXT:
        source.data = sqlite3_column_text16(row, column);
        if (source.data == nullptr)
            throw std::bad_alloc();
        source.size = static_cast<std::size_t>(sqlite3_column_bytes16(row, column)) / 2;
        break;
    case SQLITE_BLOB:
        source.data = sqlite3_column_blob(row, column);
        source.size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
        break;
    default:
        break;
    }
    return source;
}

std::size_t RowBuffer::UnitsOf(const Source& source) {
    switch (source.type) {
    case SQLITE_INTEGER:
        return engine::UnitsOf(source.integer);
    case SQLITE_FLOAT:
        return 1 + numberUnits;
    case SQLITE_TEXT:
        return 1 + source.size + (source.size < shortLimit ? 0 : lengthUnits);
    case SQLITE_BLOB:
        return 1 + lengthUnits + (source.size + 1) / 2;
    default:
        return 1;
    }
}

char16_t* RowBuffer::Put(char16_t* to, const Source& source) {
    switch (source.type) {
    case SQLITE_INTEGER:
        return engine::Put(to, source.integer);
    case SQLITE_FLOAT:
        *to++ = FormReal;
        std::memcpy(to, &source.real, sizeof source.real);
        return to + numberUnits;
    case SQLITE_TEXT:
        if (source.size < shortLimit) {
            *to++ = static_cast<char16_t>((source.size << 3) | FormShortText);
        } else {
            *to++ = FormLongText;
            to = PutLength(to, source.size);
        }
        std::memcpy(to, source.data, source.size * 2);
        return to + source.size;
    case SQLITE_BLOB:
        *to++ = FormBytes;
        to = PutLength(to, source.size);
        if (source.size > 0)
            std::memcpy(to, source.data, source.size);
        return to + (source.size + 1) / 2;
    default:
        *to++ = FormNull;
        return to;
    }
}

std::size_t RowBuffer::Collect(const Statement& row) {
    const int columns = row.ColumnCount();
    m_sources.clear();
    std::size_t units = 0;
    for (int column = 0; column < columns; ++column)
        units += UnitsOf(m_sources.emplace_back(SourceOf(row.Handle(), column)));
    return units;
}

char16_t* RowBuffer::PutCollected(char16_t* to) const {
    for (const Source& source : m_sources)
        to = Put(to, source);
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

RowBuffer::Cell RowBuffer::At(std::size_t place, int column) const {
    const char16_t* cell = m_rows[place];
    for (int skipped = 0; skipped < column; ++skipped)
        cell = Skip(cell);
    return Read(cell);
}

void RowBuffer::Clear() noexcept {
    *this = RowBuffer();
}

} // namespace engine
