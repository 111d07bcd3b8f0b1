#pragma once

#include <QByteArrayView>
#include <QStringView>

#include <cstdint>

namespace engine {

/// A cell of a row by SQLite's types. Texts and bytes lie where the cell was read from.
struct Cell {
    enum Kind : std::uint8_t { Null, Integer, Real, Text, Bytes } kind = Null;
    std::int64_t integer = 0;
    double real = 0;
    QStringView text;
    QByteArrayView bytes;
};

} // namespace engine
