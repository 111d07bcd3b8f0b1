#include "platform/engine/dao/Recordset.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/run/ResultSet.h"
#include "platform/engine/schema/Names.h"
#include "platform/runtime/Dates.h"

#include <algorithm>

namespace engine {

namespace {

Value ValueOf(const Cell& cell, DataType type) {
    switch (cell.kind) {
    case Cell::Integer:
        if (type == DataType::Bit)
            return cell.integer != 0;
        if (type == DataType::Currency)
            return Money{cell.integer};
        if (type == DataType::Single)
            return static_cast<float>(cell.integer);
        if (type == DataType::Double)
            return static_cast<double>(cell.integer);
        if (type == DataType::Date)
            return runtime::DateFromNumber(static_cast<double>(cell.integer));
        return cell.integer;
    case Cell::Real:
        if (type == DataType::Date)
            return runtime::DateFromNumber(cell.real);
        if (type == DataType::Single)
            return static_cast<float>(cell.real);
        return cell.real;
    case Cell::Text:
        return cell.text.toString();
    case Cell::Bytes:
        return cell.bytes.toByteArray();
    default:
        return {};
    }
}

const ResultSet& Open(const ResultSet& set) {
    if (!set.IsOpen())
        RaiseEngine(ObjectClosed);
    return set;
}

const sql::ResultColumn& ColumnOf(const ResultSet& set, int column) {
    const auto& columns = Open(set).Columns();
    if (column < 0 || static_cast<std::size_t>(column) >= columns.size())
        RaiseEngine(ItemNotFound);
    return columns[static_cast<std::size_t>(column)];
}

} // namespace

QString Field::Name() const {
    return ColumnOf(*m_set, m_column).name;
}

DataType Field::Type() const {
    return ColumnOf(*m_set, m_column).type;
}

engine::Value Field::Value() const {
    return ValueOf(Open(*m_set).CurrentCell(m_column), Type());
}

QString Field::Text() const {
    const Cell cell = Open(*m_set).CurrentCell(m_column);
    if (cell.kind == Cell::Text)
        return cell.text.toString();
    return ValueOf(cell, Type()).Text();
}

ResultSet& Recordset::Set() const {
    if (!IsOpen())
        RaiseEngine(ObjectClosed);
    return *m_set;
}

bool Recordset::IsOpen() const {
    return m_set && m_set->IsOpen();
}

void Recordset::Close() {
    Set().Close();
}

std::int64_t Recordset::RecordCount() const {
    return Set().Reached();
}

bool Recordset::EndOfFile() const {
    return Set().Current() == m_set->Count();
}

void Recordset::MoveFirst() {
    Set().MoveTo(0);
}

void Recordset::MoveLast() {
    Set().MoveTo(m_set->Count() - 1);
}

void Recordset::MoveNext() {
    Set().MoveTo(m_set->Current() + 1);
}

int Recordset::FieldsCount() const {
    return static_cast<int>(Set().Columns().size());
}

Field Recordset::Fields(QStringView name) const {
    const auto& columns = Set().Columns();
    auto found = std::ranges::find(columns, name, &sql::ResultColumn::name);
    if (found == columns.end())
        found =
            std::ranges::find_if(columns, [name](const auto& column) { return SameName(column.name, name); });
    if (found == columns.end())
        RaiseEngine(ItemNotFound);
    return {*m_set, static_cast<int>(found - columns.begin())};
}

Field Recordset::Fields(int index) const {
    ColumnOf(Set(), index);
    return {*m_set, index};
}

void Recordset::FindFirst(const QString& criteria) {
    m_noMatch = !Set().MoveToFirst(criteria);
}

bool Recordset::NoMatch() const {
    return Set().IsOpen() && m_noMatch;
}

} // namespace engine
