#pragma once

#include "platform/engine/Value.h"

#include <QByteArrayView>
#include <QStringView>

#include <cstdint>

struct sqlite3_context;
struct sqlite3_stmt;
struct sqlite3_value;

namespace engine {

/// A value as SQLite keeps it. A view: texts and bytes stay where they are, in SQLite's memory until the next
/// step or in the Value that the cell was made from.
struct Cell {
    enum Kind : std::uint8_t { Null, Integer, Real, Text, Bytes } kind = Null;
    std::int64_t integer = 0;
    double real = 0;
    QStringView text;
    QByteArrayView bytes;

    Cell() = default;
    explicit Cell(std::int64_t number)
        : kind(Integer)
        , integer(number) {}
    explicit Cell(double number)
        : kind(Real)
        , real(number) {}
    explicit Cell(QStringView given)
        : kind(Text)
        , text(given) {}
    explicit Cell(QByteArrayView given)
        : kind(Bytes)
        , bytes(given) {}

    /// Whether kind and content are the same; texts are compared unit by unit.
    friend bool operator==(const Cell&, const Cell&) = default;
};

/// std::bad_alloc if there is no memory for a text.
Cell CellOf(sqlite3_value* value);

/// The form that a value has in SQLite: dates are date numbers, truths 0 and 1, amounts of money
/// ten-thousandths.
Cell CellOf(const Value& value);

/// Gives a cell to a parameter (places count from 1); SQLite's result code. Texts and bytes are not copied:
/// they have to live until the statement is reset.
int BindCell(sqlite3_stmt* statement, int place, const Cell& cell);
/// Gives a cell as the result of a function; texts and bytes are copied.
void ResultCell(sqlite3_context* context, const Cell& cell);

} // namespace engine
