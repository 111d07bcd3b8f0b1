#include "platform/engine/dao/Recordset.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/dao/RecordsetImpl.h"
#include "platform/runtime/Dates.h"

namespace engine {

namespace {

Value ValueOf(const RowBuffer::Cell& cell, DataType type) {
    switch (cell.kind) {
    case RowBuffer::Cell::Integer:
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
    case RowBuffer::Cell::Real:
        if (type == DataType::Date)
            return runtime::DateFromNumber(cell.real);
        if (type == DataType::Single)
            return static_cast<float>(cell.real);
        return cell.real;
    case RowBuffer::Cell::Text:
        return cell.text.toString();
    case RowBuffer::Cell::Bytes:
        return cell.bytes.toByteArray();
    default:
        return {};
    }
}

} // namespace

QString Field::Name() const {
    m_set->CheckOpen();
    return m_set->Column(m_column).name;
}

DataType Field::Type() const {
    m_set->CheckOpen();
    return m_set->Column(m_column).type;
}

engine::Value Field::Value() const {
    const auto cell = m_set->Current(m_column);
    return ValueOf(cell, m_set->Column(m_column).type);
}

QString Field::Text() const {
    const auto cell = m_set->Current(m_column);
    if (cell.kind == RowBuffer::Cell::Text)
        return cell.text.toString();
    if (cell.kind == RowBuffer::Cell::Null)
        return {};
    return ValueOf(cell, m_set->Column(m_column).type).Text();
}

Recordset::Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

Recordset::Recordset(std::shared_ptr<RecordsetImpl> impl)
    : m_impl(std::move(impl)) {
}

RecordsetImpl& Recordset::Impl() const {
    if (!m_impl)
        RaiseEngine(ObjectClosed);
    m_impl->CheckOpen();
    return *m_impl;
}

std::int64_t Recordset::RecordCount() const {
    return Impl().Reached();
}

bool Recordset::EndOfFile() const {
    return Impl().EndOfFile();
}

bool Recordset::BeginOfFile() const {
    return Impl().BeginOfFile();
}

void Recordset::MoveFirst() {
    Impl().MoveFirst();
}

void Recordset::MoveLast() {
    Impl().MoveLast();
}

void Recordset::MoveNext() {
    Impl().MoveNext();
}

void Recordset::MovePrevious() {
    Impl().MovePrevious();
}

int Recordset::FieldsCount() const {
    return Impl().Columns();
}

Field Recordset::Fields(QStringView name) const {
    RecordsetImpl& impl = Impl();
    return {impl, impl.FindColumn(name)};
}

Field Recordset::Fields(int index) const {
    RecordsetImpl& impl = Impl();
    impl.Column(index);
    return {impl, index};
}

void Recordset::FindFirst(const QString& criteria) {
    Impl().FindFirst(criteria);
}

bool Recordset::NoMatch() const {
    return Impl().NoMatch();
}

bool Recordset::IsOpen() const {
    return m_impl && m_impl->IsOpen();
}

void Recordset::Close() {
    Impl().Close();
}

} // namespace engine
