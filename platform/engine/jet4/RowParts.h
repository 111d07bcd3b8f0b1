#pragma once

#include "platform/engine/jet4/Reader.h"

#include <optional>

namespace engine::jet4 {

/// A row taken apart: fixed data, variable data, and the mask that tells NULL from values.
class RowParts {
public:
    /// The number of columns and a mask of one byte.
    static constexpr std::uint32_t leastSize = 3;

    RowParts(Bytes row, const Table& table);

    /// Whether the mask's bit of that column is set; a row older than the column has none.
    bool IsPresent(const Column& column) const;
    /// The bytes of a value that is present, `size` of them where the column is fixed; none where the row is
    /// older than the column.
    std::optional<Bytes> Value(const Column& column, std::uint32_t size) const;

private:
    std::uint32_t VariableOffset(std::uint32_t place) const;

    Bytes m_row;
    std::uint32_t m_columns = 0;
    std::uint32_t m_maskStart = 0;
    std::uint32_t m_variableCount = 0;
    std::uint32_t m_variableEnd = 0; ///< where the offsets of the variable data begin
    std::uint32_t m_fixedEnd = 0;
};

/// UTF-16, or the compressed form that begins with FF FE.
QString DecodeText(Bytes text);

} // namespace engine::jet4
