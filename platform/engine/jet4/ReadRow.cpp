// The values of a row: each column type's form in the file.

#include "platform/engine/jet4/RowParts.h"
#include "platform/runtime/Dates.h"

#include <QUuid>

#include <algorithm>
#include <array>
#include <cmath>

namespace engine::jet4 {

namespace {

constexpr std::uint8_t shortBinary = 9;

/// A column type of the file, the type that takes its values, and the bytes of a value; 0 where they are not
/// always as many. Of those of an Unknown type nothing but their places is known.
struct Form {
    std::uint8_t code;
    DataType type;
    std::uint8_t size;
};
constexpr auto forms = std::to_array<Form>({
    {1, DataType::Bit, 0},
    {2, DataType::Byte, 1},
    {3, DataType::Short, 2},
    {4, DataType::Long, 4},
    {5, DataType::Currency, 8},
    {6, DataType::Single, 4},
    {7, DataType::Double, 8},
    {8, DataType::Date, 8},
    {shortBinary, DataType::Binary, 0},
    {10, DataType::Text, 0},
    {11, DataType::Binary, 0},
    {12, DataType::Memo, 0},
    {15, DataType::Guid, 16},
    {16, DataType::Unknown, 0},
    {17, DataType::Unknown, 0},
});

constexpr std::uint8_t fixedFlag = 1;
constexpr std::uint8_t counterFlag = 4;

Value Finite(double number) {
    if (!std::isfinite(number))
        throw Damage();
    return number;
}

Value DateNumber(double number) {
    if (!runtime::IsDateNumber(number))
        throw Damage();
    return number;
}

Value GuidText(const Bytes& bytes) {
    QUuid guid;
    guid.data1 = bytes.U32(0);
    guid.data2 = bytes.U16(4);
    guid.data3 = bytes.U16(6);
    for (std::uint32_t i = 0; i < 8; ++i)
        guid.data4[i] = bytes.U8(8 + i);
    return guid.toString().toUpper();
}

Value NumberValue(DataType type, const Bytes& bytes) {
    switch (type) {
    case DataType::Byte:
        return std::int64_t{bytes.U8(0)};
    case DataType::Short:
        return std::int64_t{static_cast<std::int16_t>(bytes.U16(0))};
    case DataType::Long:
    case DataType::Counter:
        return std::int64_t{static_cast<std::int32_t>(bytes.U32(0))};
    case DataType::Currency:
        return engine::Money{static_cast<std::int64_t>(bytes.U64(0))};
    case DataType::Single:
        return Finite(bytes.F32(0));
    case DataType::Double:
        return Finite(bytes.F64(0));
    case DataType::Date:
        return DateNumber(bytes.F64(0));
    default:
        return GuidText(bytes);
    }
}

Value TextValue(const Bytes& bytes, int size) {
    QString text = DecodeText(bytes);
    if (size > 0 && text.size() > size)
        throw Damage();
    return text;
}

} // namespace

Column Reader::ReadColumn(const Bytes& definition) {
    Column column;
    const std::uint8_t flags = definition.U8(15);
    const auto form = std::ranges::find(forms, definition.U8(0), &Form::code);
    if (form == forms.end())
        throw Damage();
    const bool counts = form->type == DataType::Long && (flags & counterFlag) != 0;
    column.type = counts ? DataType::Counter : form->type;
    column.valueSize = form->size;
    column.number = definition.U16(5);
    column.variable = definition.U16(7);
    column.fixed = flags & fixedFlag;
    column.offset = definition.U16(21);
    column.length = definition.U16(23);
    if (column.type == DataType::Text)
        column.size = std::clamp(column.length / 2, 1, longestText);
    else if (form->code == shortBinary)
        column.size = column.length;
    if (column.valueSize > 0 && column.length != column.valueSize)
        throw Damage();
    return column;
}

void Reader::Read(const Table& table, RowPlace place, std::vector<Value>& values) const {
    m_image.Guarded([&] {
        const RowParts parts(m_image.RowAt(place).bytes, table);
        values.clear();
        for (const Column& column : table.columns)
            values.push_back(ReadValue(column, parts));
    });
}

Value Reader::ReadValue(const Column& column, const RowParts& parts) const {
    if (column.type == DataType::Bit)
        return parts.IsPresent(column);
    if (column.type == DataType::Unknown || !parts.IsPresent(column))
        return {};
    const Bytes bytes = parts.Value(column);
    if (column.valueSize > 0)
        return NumberValue(column.type, bytes.Whole(column.valueSize));
    if (column.type == DataType::Text)
        return TextValue(bytes, column.size);
    if (column.size > 0)
        return bytes.View().toByteArray();
    const QByteArray held = ReadLong(bytes);
    return column.type == DataType::Memo ? TextValue(Bytes(held), 0) : Value(held);
}

// A long value begins with its length, whose two highest bits tell where it lies: behind this head, as one
// row of a page for long values, or as a chain of such rows, each of which begins with the place of the next.
QByteArray Reader::ReadLong(const Bytes& value) const {
    constexpr std::uint32_t headLength = 12;
    constexpr std::uint32_t inlineFlag = 0x80000000;
    constexpr std::uint32_t singleFlag = 0x40000000;
    const std::uint32_t length = value.U32(0) & ~(inlineFlag | singleFlag);
    if (length > m_image.Size())
        throw Damage();
    if (value.U32(0) & inlineFlag)
        return value.From(headLength).Whole(length).View().toByteArray();
    const auto rowAt = [this](const Bytes& pointer) {
        const RowPlace place = PlaceIn(pointer);
        if (m_image.Page(place.page).Part(ownerPlace, 4).View() != QByteArrayView("LVAL", 4))
            throw Damage();
        return m_image.RowAt(place).bytes;
    };
    if (value.U32(0) & singleFlag)
        return rowAt(value.From(4)).Whole(length).View().toByteArray();
    QByteArray whole;
    whole.reserve(length);
    for (Bytes pointer = value.From(4); whole.size() < qsizetype{length};) {
        pointer = rowAt(pointer);
        const Bytes part = pointer.From(4);
        if (part.Size() == 0 || part.Size() > length - static_cast<std::uint32_t>(whole.size()))
            throw Damage();
        whole += part.View();
    }
    return whole;
}

} // namespace engine::jet4
