#include "platform/engine/jet4/RowParts.h"

#include <algorithm>

namespace engine::jet4 {

namespace {

constexpr std::uint32_t fixedStart = 2;

QString FromUtf16(Bytes bytes) {
    if (bytes.Size() % 2 != 0)
        throw Damage();
    QString text(static_cast<qsizetype>(bytes.Size() / 2), Qt::Uninitialized);
    qFromLittleEndian<char16_t>(bytes.View().data(), text.size(), text.data());
    return text;
}

} // namespace

RowParts::RowParts(Bytes row, const Table& table)
    : m_row(row)
    , m_columns(row.U16(0)) {
    const std::uint32_t maskLength = (m_columns + 7) / 8;
    if (row.Size() < fixedStart + maskLength)
        throw Damage();
    m_maskStart = row.Size() - maskLength;
    m_fixedEnd = m_maskStart;
    // A row from before the table's first variable column has no variable part at all.
    const bool hasVariable =
        table.variableColumns > 0 &&
        std::any_of(table.columns.begin(), table.columns.end(),
                    [this](const Column& column) { return !column.fixed && column.number < m_columns; });
    if (!hasVariable)
        return;
    m_variableCount = row.U16(std::uint64_t{m_maskStart} - 2);
    const std::uint32_t offsets = 2 + 2 * (m_variableCount + 1);
    if (m_maskStart < fixedStart + offsets)
        throw Damage();
    m_variableEnd = m_maskStart - offsets;
    m_fixedEnd = VariableOffset(0);
}

std::uint32_t RowParts::VariableOffset(std::uint32_t place) const {
    const std::uint32_t offset = m_row.U16(m_maskStart - 2 - 2 * (place + 1));
    if (offset < fixedStart || offset > m_variableEnd)
        throw Damage();
    return offset;
}

bool RowParts::IsPresent(const Column& column) const {
    return column.number < m_columns &&
           (m_row.U8(m_maskStart + column.number / 8U) & (1U << column.number % 8U));
}

std::optional<Bytes> RowParts::Value(const Column& column, std::uint32_t size) const {
    if (column.fixed) {
        const std::uint32_t start = fixedStart + column.offset;
        if (start + size > m_fixedEnd)
            throw Damage();
        return m_row.Part(start, size);
    }
    if (column.variable >= m_variableCount)
        return std::nullopt;
    const std::uint32_t start = VariableOffset(column.variable);
    const std::uint32_t end = VariableOffset(column.variable + 1U);
    if (start > end)
        throw Damage();
    return m_row.Part(start, end - start);
}

// Compressed text: one byte a character, and a byte 00 switches to two-byte characters and back.
QString DecodeText(Bytes text) {
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
