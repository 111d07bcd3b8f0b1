#include "platform/engine/jet4/RowParts.h"

#include <algorithm>

namespace engine::jet4 {

namespace {

constexpr std::uint32_t fixedStart = 2;

QString FromUtf16(const Bytes& bytes) {
    if (bytes.Size() % 2 != 0)
        throw Damage();
    QString text(static_cast<qsizetype>(bytes.Size() / 2), Qt::Uninitialized);
    qFromLittleEndian<char16_t>(bytes.View().data(), text.size(), text.data());
    return text;
}

} // namespace

RowParts::RowParts(Bytes row, const Table& table)
    : m_row(std::move(row))
    , m_columns(m_row.U16(0)) {
    const std::uint32_t maskLength = (m_columns + 7) / 8;
    if (m_columns == 0 || m_columns > table.columnsEver || m_row.Size() < fixedStart + maskLength)
        throw Damage();
    m_maskStart = m_row.Size() - maskLength;
    if (m_columns % 8 != 0 && m_row.U8(m_row.Size() - 1) >> m_columns % 8 != 0)
        throw Damage();
    m_fixedEnd = m_maskStart;

    std::uint32_t variable = 0;
    std::uint32_t fixedEnd = fixedStart;
    std::uint32_t truthsEnd = fixedStart; // one byte is kept for truths, though the mask holds them
    for (const Column& column : table.columns) {
        if (column.number >= m_columns)
            continue;
        std::uint32_t& end = column.type == DataType::Bit ? truthsEnd : fixedEnd;
        if (column.fixed)
            end = std::max<std::uint32_t>(end, fixedStart + column.offset + column.length);
        else
            ++variable;
    }
    // A row from before the table's first variable column has no variable part at all.
    if (variable > 0)
        FindVariable(table, variable);
    const bool exact = variable > 0 && !table.LacksColumns();
    if (m_fixedEnd < fixedEnd || (exact && m_fixedEnd > std::max(fixedEnd, truthsEnd)))
        throw Damage();
}

void RowParts::FindVariable(const Table& table, std::uint32_t known) {
    m_variableCount = m_row.U16(std::uint64_t{m_maskStart} - 2);
    const std::uint32_t offsets = 2 + 2 * (m_variableCount + 1);
    const bool fits =
        table.LacksColumns() ? m_variableCount <= table.variableColumns : m_variableCount == known;
    if (!fits || m_maskStart < fixedStart + offsets)
        throw Damage();
    for (std::uint32_t place = 0; place < m_variableCount; ++place) {
        if (VariableOffset(place) > VariableOffset(place + 1))
            throw Damage();
    }
    m_fixedEnd = VariableOffset(0);
    m_row.Part(0, m_maskStart - offsets).Whole(VariableOffset(m_variableCount));
}

std::uint32_t RowParts::VariableOffset(std::uint32_t place) const {
    return m_row.U16(m_maskStart - 2 - 2 * (place + 1));
}

bool RowParts::IsPresent(const Column& column) const {
    return column.number < m_columns &&
           (m_row.U8(m_maskStart + column.number / 8U) & (1U << column.number % 8U));
}

Bytes RowParts::Value(const Column& column) const {
    if (column.fixed)
        return m_row.Part(fixedStart + column.offset, column.length);
    if (column.variable >= m_variableCount)
        throw Damage();
    const std::uint32_t start = VariableOffset(column.variable);
    return m_row.Part(start, VariableOffset(column.variable + 1U) - start);
}

// Compressed text: one byte a character, and a byte 00 switches to two-byte characters and back.
QString DecodeText(const Bytes& text) {
    const bool compressed = text.Size() >= 2 && text.U16(0) == 0xFEFF;
    if (!compressed)
        return FromUtf16(text);
    QString decoded;
    bool oneByte = true;
    for (std::uint32_t start = 2; start < text.Size();) {
        std::uint32_t end = start;
        while (end < text.Size() && text.U8(end) != 0)
            ++end;
        const Bytes run = text.Part(start, end - start);
        decoded += oneByte ? QString::fromLatin1(run.View()) : FromUtf16(run);
        oneByte = !oneByte;
        start = end + 1;
    }
    return decoded;
}

} // namespace engine::jet4
