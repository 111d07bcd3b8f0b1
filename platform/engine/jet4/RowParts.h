#pragma once

#include "platform/engine/jet4/Reader.h"

namespace engine::jet4 {

/// A row taken apart: fixed data, variable data, and the mask that tells NULL from values. Damage if its
/// parts are not exactly where the table's columns have them.
class RowParts {
public:
    RowParts(Bytes row, const Table& table);

    /// Whether the mask's bit of that column is set; a row older than the column has none.
    bool IsPresent(const Column& column) const;
    /// The bytes of a value that is present.
    Bytes Value(const Column& column) const;

private:
    void FindVariable(const Table& table, std::uint32_t known);
    std::uint32_t VariableOffset(std::uint32_t place) const;

    Bytes m_row;
    std::uint32_t m_columns = 0;
    std::uint32_t m_maskStart = 0;
    std::uint32_t m_variableCount = 0;
    std::uint32_t m_fixedEnd = 0;
};

/// UTF-16, or the compressed form that begins with FF FE.
QString DecodeText(const Bytes& text);

} // namespace engine::jet4
