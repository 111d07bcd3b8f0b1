#include "platform/engine/jet4/RowCheck.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"

#include <algorithm>

namespace engine::jet4 {

namespace {

/// Remembers texts or whole numbers and tells whether one came twice. Of a text 64 bits are remembered, which
/// is as good as all of it.
class Distinct {
public:
    void Add(const Value& value) {
        if (const auto* text = value.As<QString>())
            m_seen.push_back(qHash(functions::Fold(*text)));
        else if (const auto* number = value.As<std::int64_t>())
            m_seen.push_back(static_cast<std::size_t>(*number));
    }
    bool Repeats() {
        std::ranges::sort(m_seen);
        return std::ranges::adjacent_find(m_seen) != m_seen.end();
    }

private:
    std::vector<std::size_t> m_seen;
};

struct Rule {
    std::size_t place; ///< of the column in a row
    ColumnInfo column;
    Distinct seen;
};

std::vector<Rule> RulesOf(const Table& table, const TableInfo& made, const QString& path) {
    std::vector<Rule> rules;
    for (const ColumnInfo& column : made.columns) {
        const int place = table.Find(column.name);
        const DataType type =
            place < 0 ? DataType::Unknown : table.columns[static_cast<std::size_t>(place)].type;
        if (!(IsWholeNumber(column.type) && IsWholeNumber(type)) && !(IsText(column.type) && IsText(type)))
            RaiseEngine(CannotOpenDatabase, path);
        rules.push_back({static_cast<std::size_t>(place), column, {}});
        rules.back().column.unique =
            column.unique || made.RowNumberColumn() == static_cast<int>(rules.size()) - 1;
    }
    return rules;
}

void CheckRange(const Value& value, const ColumnInfo& column, const Table& table, const QString& path) {
    const auto* number = value.As<std::int64_t>();
    const WholeRange range = RangeOf(column.type);
    if (number && (*number < range.least || *number > range.greatest))
        throw runtime::Failure(
            NumberOutOfRange,
            EngineText(NumberOutOfRange) +
                QStringLiteral(" Файл '%1', таблица '%2', поле '%3'.").arg(path, table.name, column.name));
}

} // namespace

void CheckKnownRows(const Reader& reader, const Table& table, const TableInfo& made, const QString& path) {
    std::vector<Rule> rules = RulesOf(table, made, path);
    reader.ForEachRow(table, [&](const std::vector<Value>& values) {
        for (Rule& rule : rules) {
            const Value& value = values[rule.place];
            if (value.IsNull() && rule.column.required)
                RaiseEngine(CannotOpenDatabase, path);
            if (IsWholeNumber(rule.column.type))
                CheckRange(value, rule.column, table, path);
            if (rule.column.unique)
                rule.seen.Add(value);
        }
    });
    if (std::ranges::any_of(rules, &Distinct::Repeats, &Rule::seen))
        RaiseEngine(CannotOpenDatabase, path);
}

void CheckUnknownRows(const Reader& reader, Table& table) {
    const auto counter = std::ranges::find(table.columns, DataType::Counter, &Column::type);
    const auto place = static_cast<std::size_t>(counter - table.columns.begin());
    Distinct seen;
    bool lacks = false;
    reader.ForEachRow(table, [&](const std::vector<Value>& values) {
        if (counter == table.columns.end())
            return;
        lacks = lacks || values[place].IsNull();
        seen.Add(values[place]);
    });
    for (auto column = counter; column != table.columns.end(); ++column)
        if (column->type == DataType::Counter && (column != counter || lacks || seen.Repeats()))
            column->type = DataType::Long;
}

} // namespace engine::jet4
