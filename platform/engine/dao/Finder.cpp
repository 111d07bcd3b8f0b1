#include "platform/engine/dao/Finder.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/run/Connection.h"
#include "platform/engine/run/KeyHash.h"

#include <sqlite3.h>

#include <algorithm>

namespace engine {

namespace {

constexpr int maxSearches = 50;

bool SameNumber(const RowBuffer::Cell& cell, const Value& literal) {
    if (const auto* number = literal.As<std::int64_t>())
        return cell.kind == RowBuffer::Cell::Integer ? cell.integer == *number
                                                     : cell.real == static_cast<double>(*number);
    const auto* fraction = literal.As<double>();
    const double value =
        cell.kind == RowBuffer::Cell::Integer ? static_cast<double>(cell.integer) : cell.real;
    return fraction != nullptr && value == *fraction;
}

} // namespace

Finder::Finder(Connection& connection, const RowBuffer& rows, const std::vector<sql::ResultColumn>& columns)
    : m_connection(connection)
    , m_rows(rows)
    , m_columns(columns) {
}

void Finder::Forget() noexcept {
    m_searches.clear();
    m_indexes.clear();
}

std::shared_ptr<Finder::Search> Finder::SearchFor(const sql::Scanned& scanned) {
    auto search = scanned.cacheable ? m_searches.value(scanned.shape) : nullptr;
    if (search)
        return search;
    search = std::make_shared<Search>();
    search->plan = sql::TranslateCriteria(scanned, m_columns);
    if (scanned.cacheable) {
        if (m_searches.size() >= maxSearches)
            m_searches.clear();
        m_searches.insert(scanned.shape, search);
    }
    return search;
}

std::optional<std::size_t> Finder::First(const QString& criteria) {
    const sql::Scanned scanned = sql::Scan(criteria);
    const auto search = SearchFor(scanned);
    Keys keys;
    KeyHash hash;
    for (const auto& key : search->plan.equalities) {
        const Value literal = scanned.literals[static_cast<std::size_t>(key.literal)].ToValue();
        if (!IsKeyLiteral(m_columns[static_cast<std::size_t>(key.column)].type, literal))
            continue;
        keys.push_back(key);
        AddLiteral(hash, literal);
    }
    if (keys.empty()) {
        for (std::size_t row = 0; row < m_rows.Rows(); ++row)
            if (!m_rows.IsRemoved(row) && IsTrue(*search, row, scanned.literals))
                return row;
        return std::nullopt;
    }
    const bool exact = search->plan.exact && keys.size() == search->plan.equalities.size();
    const Index& index = IndexOver(keys);
    auto entry =
        std::ranges::lower_bound(index.rows, std::pair<std::uint64_t, std::uint32_t>(hash.Result(), 0));
    for (; entry != index.rows.end() && entry->first == hash.Result(); ++entry)
        if (Equal(entry->second, keys, scanned.literals) &&
            (exact || IsTrue(*search, entry->second, scanned.literals)))
            return entry->second;
    return std::nullopt;
}

const Finder::Index& Finder::IndexOver(const Keys& keys) {
    std::vector<int> columns;
    for (const auto& key : keys)
        columns.push_back(key.column);
    const auto found = std::ranges::find(m_indexes, columns, &Index::columns);
    if (found != m_indexes.end())
        return *found;
    Index index{columns, {}};
    index.rows.reserve(m_rows.Rows());
    for (std::size_t row = 0; row < m_rows.Rows(); ++row) {
        if (m_rows.IsRemoved(row))
            continue;
        KeyHash hash;
        bool complete = true;
        for (const int column : columns) {
            const auto cell = m_rows.At(row, column);
            if (cell.kind == RowBuffer::Cell::Integer)
                hash.Add(cell.integer);
            else if (cell.kind == RowBuffer::Cell::Real)
                hash.Add(cell.real);
            else if (cell.kind == RowBuffer::Cell::Text)
                hash.Add(cell.text);
            else
                complete = false;
        }
        if (complete)
            index.rows.emplace_back(hash.Result(), static_cast<std::uint32_t>(row));
    }
    std::ranges::sort(index.rows);
    return m_indexes.emplace_back(std::move(index));
}

bool Finder::Equal(std::size_t row, const Keys& keys, const std::vector<sql::Literal>& literals) const {
    return std::ranges::all_of(keys, [&](const sql::KeyCondition& key) {
        const auto cell = m_rows.At(row, key.column);
        const Value literal = literals[static_cast<std::size_t>(key.literal)].ToValue();
        if (const auto* text = literal.As<QString>())
            return cell.kind == RowBuffer::Cell::Text && functions::CompareFolded(cell.text, *text) == 0;
        return (cell.kind == RowBuffer::Cell::Integer || cell.kind == RowBuffer::Cell::Real) &&
               SameNumber(cell, literal);
    });
}

bool Finder::IsTrue(Search& search, std::size_t row, const std::vector<sql::Literal>& literals) const {
    m_connection.Prepare(search.truth, search.plan.text, Statement::Lifetime::Kept);
    Binding binding(search.truth);
    const int columns = static_cast<int>(m_columns.size());
    const int wanted = search.truth.ParameterCount();
    for (int column = 0; column < columns && column < wanted; ++column)
        search.truth.Bind(column + 1, m_rows.At(row, column));
    Connection::Bind(binding, columns + 1, search.plan.parameters, literals);
    const int code = search.truth.Step();
    if (code != SQLITE_ROW)
        m_connection.RaiseRead(code);
    return sqlite3_column_double(search.truth.Handle(), 0) != 0; // NULL reads as 0
}

} // namespace engine
