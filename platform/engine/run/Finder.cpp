#include "platform/engine/run/Finder.h"

#include "platform/engine/functions/Functions.h"
#include "platform/engine/run/Runner.h"
#include "platform/engine/schema/Types.h"

#include <algorithm>
#include <cmath>

namespace engine {

namespace {

constexpr double exactWhole = 9.0e15; ///< up to here a whole number is itself as a double

/// Equal for cells that the dialect's `=` finds equal: numbers by their value, whatever they are kept as,
/// texts folded. Nothing for a cell that equals none.
std::optional<std::size_t> HashOf(const Cell& cell, std::size_t seed) {
    switch (cell.kind) {
    case Cell::Integer:
        return qHash(cell.integer, seed);
    case Cell::Real:
        if (cell.real == std::floor(cell.real) && std::abs(cell.real) < exactWhole)
            return qHash(static_cast<std::int64_t>(cell.real), seed);
        return qHash(cell.real, seed);
    case Cell::Text:
        return qHash(functions::Fold(cell.text), seed);
    default:
        return std::nullopt;
    }
}

} // namespace

Finder::Search& Finder::SearchFor(const QString& criteria, sql::Scanned& scanned) {
    if (Search* known = m_searches.Find(criteria, scanned))
        return *known;
    scanned = sql::Scan(criteria);
    Search search{sql::TranslateCriteria(scanned, m_columns), {}};
    search.truth = Statement(m_db, search.plan.text, Doing::Read, {}, Statement::Lifetime::Kept);
    return m_searches.Keep(scanned, std::move(search));
}

std::optional<std::size_t> Finder::First(const QString& criteria) {
    sql::Scanned scanned;
    Search& search = SearchFor(criteria, scanned);
    const auto fits = [&](std::size_t row) {
        return !m_rows.IsRemoved(row) && IsTrue(search, row, scanned.literals);
    };
    std::vector<int> columns;
    std::size_t hash = 0;
    for (const sql::KeyCondition& key : search.plan.equalities) {
        const DataType type = m_columns[static_cast<std::size_t>(key.column)].type;
        if (!IsText(type) && !IsWholeNumber(type))
            continue;
        columns.push_back(key.column);
        const Value literal = scanned.literals[static_cast<std::size_t>(key.literal)].ToValue();
        hash = HashOf(CellOf(literal), hash).value_or(hash);
    }
    if (columns.empty()) {
        for (std::size_t row = 0; row < m_rows.Rows(); ++row)
            if (fits(row))
                return row;
        return std::nullopt;
    }
    const auto& rows = IndexOver(columns).rows;
    auto entry = std::ranges::lower_bound(rows, std::pair<std::size_t, std::uint32_t>(hash, 0));
    for (; entry != rows.end() && entry->first == hash; ++entry)
        if (fits(entry->second))
            return entry->second;
    return std::nullopt;
}

const Finder::Index& Finder::IndexOver(const std::vector<int>& columns) {
    if (const auto known = std::ranges::find(m_indexes, columns, &Index::columns); known != m_indexes.end())
        return *known;
    Index index{columns, {}};
    index.rows.reserve(m_rows.Rows());
    for (std::size_t row = 0; row < m_rows.Rows(); ++row) {
        std::optional<std::size_t> hash = 0;
        for (const int column : columns)
            if (hash)
                hash = HashOf(m_rows.At(row, column), *hash);
        if (hash)
            index.rows.emplace_back(*hash, static_cast<std::uint32_t>(row));
    }
    std::ranges::sort(index.rows);
    return m_indexes.emplace_back(std::move(index));
}

bool Finder::IsTrue(Search& search, std::size_t row, const std::vector<sql::Literal>& literals) const {
    Binding binding(search.truth);
    const int columns = static_cast<int>(m_columns.size());
    const int wanted = search.truth.ParameterCount();
    for (int column = 0; column < columns && column < wanted; ++column)
        search.truth.Bind(column + 1, m_rows.At(row, column));
    binding.Bind(columns + 1, search.plan.parameters, literals);
    return search.truth.Next() && search.truth.Real(0) != 0; // NULL reads as 0
}

} // namespace engine
