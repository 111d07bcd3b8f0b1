#include "platform/engine/sql/ActionWriter.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Keys.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int widestText = 255;

/// A piece of a statement in both of its forms.
struct Forms {
    QString text;
    QString ignoring; ///< what does not fit becomes NULL

    Forms(const QString& both = {}) // NOLINT: a plain text is the same in both
        : Forms(both, both) {}
    Forms(QString failing, QString other)
        : text(std::move(failing))
        , ignoring(std::move(other)) {}

    Forms& operator+=(const Forms& more) {
        text += more.text;
        ignoring += more.ignoring;
        return *this;
    }
};

struct NewValue {
    int column = 0; ///< place in the table
    Forms value;
};

const ColumnInfo& ColumnAt(const TableInfo& table, int column) {
    return table.columns[static_cast<std::size_t>(column)];
}

QString Where(const QStringList& conditions) {
    return conditions.isEmpty() ? QString() : u" WHERE "_s + conditions.join(u" AND "_s);
}

/// Whether every value of one type has its place in a column of the other without a change.
bool Fits(const Written& value, const ColumnInfo& column) {
    if (column.type == DataType::Bit)
        return false; // NULL is No
    if (value.condition || value.null)
        return value.null;
    if (value.type == column.type && KindOf(column.type) != TypeKind::Text)
        return (IsWholeNumber(column.type) && !value.wide) || column.type == DataType::Date;
    if (value.type == DataType::Text && column.type == DataType::Text)
        return value.size > 0 && value.size <= column.size;
    const bool text = value.type == DataType::Text || value.type == DataType::Memo;
    return text && column.type == DataType::Memo;
}

/// The part of a key that SQLite would let be NULL or make up; a counter is meant to be made up.
bool IsKey(const TableInfo& table, int column) {
    const IndexInfo* key = table.PrimaryKey();
    return key && ColumnAt(table, column).type != DataType::Counter &&
           key->columns.contains(ColumnAt(table, column).name, Qt::CaseInsensitive);
}

/// A value on its way into a column: converted, and NULL refused where it would stand in a key.
Forms Converted(const Written& value, const TableInfo& table, int column) {
    const ColumnInfo& target = ColumnAt(table, column);
    const QString name = QuoteText(table.name + u'.' + target.name);
    Forms converted = value.text;
    if (!Fits(value, target)) {
        converted = u"zv_to("_s + QString::number(static_cast<int>(target.type)) + u", "_s +
                    QString::number(target.size) + u", "_s;
        converted += {name, u"NULL"_s};
        converted += u", "_s + Argument(value) + u')';
    }
    if (IsKey(table, column))
        converted.text =
            u"zv_required("_s + (target.required ? name : u"NULL"_s) + u", "_s + converted.text + u')';
    return converted;
}

Forms Assigned(Context& context, const Node& node, ExpressionWriter& writer, const TableInfo& table,
               int column) {
    if (const auto parameter = context.WriteAssigned(node, ColumnAt(table, column), table.name))
        return *parameter;
    return Converted(writer.Value(node), table, column);
}

/// A column of a query that stands as the source of rows.
Forms Converted(const WrittenQuery& query, std::size_t place, const TableInfo& table, int column) {
    Written value = DeliveredValue(query.columns[place].value, u'c' + QString::number(place));
    value.condition = false;
    return Converted(value, table, column);
}

std::vector<int> InsertColumns(const Insert& insert, const TableInfo& table) {
    std::vector<int> columns;
    if (!insert.listed) {
        for (int i = 0; i < static_cast<int>(table.columns.size()); ++i)
            columns.push_back(i);
        return columns;
    }
    for (const QString& name : insert.columns) {
        const int column = table.Find(name);
        if (column < 0)
            RaiseEngine(UnknownInsertColumn, name);
        if (std::ranges::find(columns, column) != columns.end())
            RaiseEngine(SyntaxInInsert);
        columns.push_back(column);
    }
    return columns;
}

/// The columns that the rows of a query fill where none are listed: all in their order, or, of a query that
/// delivers fewer, those that it names.
std::vector<int> FilledColumns(const WrittenQuery& query, const TableInfo& table, std::vector<int> columns) {
    if (query.columns.size() >= columns.size())
        return columns;
    columns.clear();
    for (const WrittenColumn& column : query.columns) {
        const int place = table.Find(column.name);
        if (place < 0 || std::ranges::find(columns, place) != columns.end())
            RaiseEngine(InsertColumnsDiffer);
        columns.push_back(place);
    }
    return columns;
}

/// Adds what a row has to hold although the statement does not tell it: the key, and No for YESNO.
void AddUntold(const TableInfo& table, std::vector<NewValue>& row) {
    for (int column = 0; column < static_cast<int>(table.columns.size()); ++column) {
        const bool told = std::ranges::find(row, column, &NewValue::column) != row.end();
        if (!told && (IsKey(table, column) || ColumnAt(table, column).type == DataType::Bit))
            row.push_back({column, Converted(MakeNull(), table, column)});
    }
}

/// A row is left out that has not all of its key.
QStringList KeyStays(const TableInfo& table, int column, const Forms& value) {
    return IsKey(table, column) ? QStringList{value.ignoring + u" IS NOT NULL"_s} : QStringList();
}

/// `from`: where the rows come from; empty for one row.
void InsertRows(const TableInfo& table, std::vector<NewValue> row, const QString& from, Plan& plan) {
    AddUntold(table, row);
    QStringList names;
    QStringList keys;
    Forms values;
    for (const NewValue& value : row) {
        values += names.isEmpty() ? QString() : u", "_s;
        values += value.value;
        names += QuoteName(ColumnAt(table, value.column).name);
        keys += KeyStays(table, value.column, value.value);
    }
    const QString into = u"INTO "_s + QuoteName(table.name) + u" ("_s + names.join(u", "_s) + u") "_s;
    const auto rows = [&](const QString& texts, const QStringList& conditions) {
        if (from.isEmpty() && conditions.isEmpty())
            return u"VALUES ("_s + texts + u')';
        return u"SELECT "_s + texts + from + Where(conditions);
    };
    plan.text = u"INSERT "_s + into + rows(values.text, {});
    plan.ignoreText = u"INSERT OR IGNORE "_s + into + rows(values.ignoring, keys);
}

/// The only table to which values are assigned.
const ScopeSource& UpdateTarget(Context& context, const Update& update, const Scope& scope) {
    const ScopeSource* target = nullptr;
    for (const Assignment& assignment : update.assignments) {
        const auto place = scope.Find(assignment.qualifier, assignment.column);
        if (!place) {
            context.AddUnknownName(assignment.column);
            continue;
        }
        const ScopeSource& source = scope.sources[place->source];
        if (!source.table || (target && target != &source) ||
            source.table->columns[place->column].type == DataType::Counter)
            RaiseEngine(NotUpdatable);
        target = &source;
    }
    if (!target) {
        context.RaiseMistakes();
        RaiseEngine(NotUpdatable);
    }
    return *target;
}

/// The table whose rows go: the only one, or the one whose columns are listed.
const ScopeSource& DeleteTarget(Context& context, const Delete& remove, const Scope& scope) {
    const ScopeSource* target = nullptr;
    const auto choose = [&](const ScopeSource& source) {
        if (!source.table || (target && target != &source))
            RaiseEngine(NotUpdatable);
        target = &source;
    };
    for (const SelectItem& item : remove.items) {
        if (!item.expression && item.qualifier.isEmpty())
            continue;
        if (!item.expression) {
            const auto found = std::ranges::find_if(scope.sources, [&](const ScopeSource& source) {
                return SameName(source.name, item.qualifier);
            });
            if (found == scope.sources.end())
                RaiseEngine(UnknownNameInFind, item.qualifier + u".*"_s);
            choose(*found);
            continue;
        }
        if (item.expression->kind != NodeKind::Name)
            RaiseEngine(SyntaxInDelete);
        const auto place = scope.Find(item.expression->qualifier, item.expression->name);
        if (place)
            choose(scope.sources[place->source]);
        else
            context.AddUnknownName(item.expression->name);
    }
    if (!target)
        context.RaiseMistakes();
    if (!target && scope.sources.size() == 1)
        choose(scope.sources.front());
    if (!target)
        RaiseEngine(NotUpdatable);
    return *target;
}

/// The row number of the target under another name of its table.
QString RowIdAs(ScopeSource target, const QString& alias) {
    target.alias = alias;
    return target.RowId();
}

} // namespace

void WriteInsert(Context& context, const Insert& insert, Plan& plan) {
    const TableInfo* table = context.FindTable(insert.table);
    if (!table)
        RaiseEngine(UnknownTargetTable, insert.table);
    std::vector<int> columns = InsertColumns(insert, *table);
    plan.verb = Verb::Insert;
    plan.target = table->name;
    plan.setsCounter = std::ranges::find(columns, table->CounterColumn()) != columns.end();
    std::vector<NewValue> row;
    QString from;
    if (insert.query) {
        const WrittenQuery query = QueryWriter(context, nullptr).Write(*insert.query);
        if (!insert.listed)
            columns = FilledColumns(query, *table, std::move(columns));
        if (query.columns.size() != columns.size())
            RaiseEngine(InsertColumnsDiffer);
        for (std::size_t i = 0; i < columns.size(); ++i)
            row.push_back({columns[i], Converted(query, i, *table, columns[i])});
        from = u" FROM ("_s + query.text + u')';
    } else {
        if (insert.values.size() != columns.size())
            RaiseEngine(InsertColumnsDiffer);
        const Scope scope;
        ExpressionWriter writer(context, scope, AggregateInExpression);
        for (std::size_t i = 0; i < columns.size(); ++i)
            row.push_back({columns[i], Assigned(context, *insert.values[i], writer, *table, columns[i])});
    }
    InsertRows(*table, std::move(row), from, plan);
}

/// A join writes the new values of all rows first, then the rows they belong to:
/// UPDATE "a01" AS changed SET "a01last" = news.v0
///   FROM (SELECT q1.rowid AS row, ... AS v0 FROM "a01" AS q1 JOIN ...) AS news WHERE changed.rowid =
///   news.row
void WriteUpdate(Context& context, const Update& update, Plan& plan) {
    Scope scope;
    const QString from = WriteFrom(context, scope, update.from);
    const ScopeSource& target = UpdateTarget(context, update, scope);
    const TableInfo& table = *target.table;
    const bool joins = !OnlyTable(scope);
    plan.verb = Verb::Update;
    plan.target = table.name;
    ExpressionWriter writer(context, scope, AggregateInExpression);
    Forms sets;
    Forms news = u"SELECT "_s + target.RowId() + u" AS row"_s;
    QStringList keys;
    int number = 0;
    for (const Assignment& assignment : update.assignments) {
        const int column = table.Find(assignment.column);
        if (column < 0)
            continue; // told already
        Forms value = Assigned(context, *assignment.value, writer, table, column);
        if (joins) {
            const QString name = u'v' + QString::number(number++);
            news += u", "_s;
            news += value;
            news += u" AS "_s + name;
            value = u"news."_s + name;
        }
        sets +=
            (sets.text.isEmpty() ? QString() : u", "_s) + QuoteName(ColumnAt(table, column).name) + u" = "_s;
        sets += value;
        keys += KeyStays(table, column, value);
    }
    QStringList conditions;
    if (update.where) // in front of the keys: the value of a row that is not meant may fail
        conditions +=
            ExpressionWriter(context, scope, AggregateInWhere).Condition(*update.where).At(AndPrecedence);
    Forms statement(u"UPDATE "_s, u"UPDATE OR IGNORE "_s);
    statement += (joins ? QuoteName(table.name) + u" AS changed"_s : from) + u" SET "_s;
    statement += sets;
    if (joins) {
        statement += u" FROM ("_s;
        statement += news;
        statement += u" FROM "_s + from + Where(conditions) + u") AS news"_s;
        conditions = {RowIdAs(target, u"changed"_s) + u" = news.row"_s};
    }
    plan.text = statement.text + Where(conditions);
    plan.ignoreText = statement.ignoring + Where(conditions + keys);
    if (!joins && FindKeys(update.where.get(), scope, plan)) {
        const int parameter = context.ParameterCount() + 1;
        const QString listed = KeyText(target, parameter, Rows::Listed);
        plan.keyedText = statement.text + Where(conditions + QStringList{listed});
        plan.keyedRowText =
            statement.text + Where(conditions + QStringList{KeyText(target, parameter, Rows::One)});
        plan.keyedIgnoreText = statement.ignoring + Where(conditions + keys + QStringList{listed});
    }
}

void WriteDelete(Context& context, const Delete& remove, Plan& plan) {
    Scope scope;
    const QString from = WriteFrom(context, scope, remove.from);
    const ScopeSource& target = DeleteTarget(context, remove, scope);
    plan.verb = Verb::Delete;
    plan.target = target.table->name;
    QStringList conditions;
    if (remove.where)
        conditions +=
            ExpressionWriter(context, scope, AggregateInWhere).Condition(*remove.where).At(AndPrecedence);
    QString rows = from + Where(conditions);
    if (!OnlyTable(scope))
        rows = QuoteName(target.table->name) + u" AS gone WHERE "_s + RowIdAs(target, u"gone"_s) +
               u" IN (SELECT "_s + target.RowId() + u" FROM "_s + rows + u')';
    plan.text = plan.ignoreText = u"DELETE FROM "_s + rows;
    plan.deletesAll = OnlyTable(scope) && !remove.where;
    if (OnlyTable(scope) && FindKeys(remove.where.get(), scope, plan)) {
        const auto keyed = [&](Rows found) {
            return plan.text + u" AND "_s + KeyText(target, context.ParameterCount() + 1, found);
        };
        plan.keyedText = plan.keyedIgnoreText = keyed(Rows::Listed);
        plan.keyedRowText = keyed(Rows::One);
    }
}

/// A table made of a query: the columns keep their types, and no keys. A counter goes on counting in the copy
/// of one table; in any other query its numbers may be missing or repeated.
void WriteInto(Context& context, const Query& query, Plan& plan) {
    const QString& name = query.parts.front().select->into;
    if (context.FindTable(name))
        RaiseEngine(TableExists, name);
    if (!IsValidName(name))
        RaiseEngine(ReservedWord);
    const WrittenQuery written = QueryWriter(context, nullptr).Write(query);
    plan.verb = Verb::SelectInto;
    plan.target = name;
    TableInfo& table = plan.intoTable;
    table.name = name;
    const auto& from = query.parts.front().select->from;
    bool counts = from.size() == 1 && !from.front()->left && !from.front()->query;
    for (const WrittenColumn& column : written.columns) {
        ColumnInfo made;
        made.name = column.name;
        made.name.replace(u'.', u'_');
        made.type = column.value.type == DataType::Unknown ? DataType::Text : column.value.type;
        made.allowZeroLength = true;
        if (made.type == DataType::Counter && !std::exchange(counts, false))
            made.type = DataType::Long;
        if (made.type == DataType::Text)
            made.size = column.value.size > 0 ? column.value.size : widestText;
        if (made.type == DataType::Binary)
            made.size = column.value.size;
        if (table.Find(made.name) >= 0)
            RaiseEngine(ColumnDefinedTwice);
        if (!IsValidName(made.name))
            RaiseEngine(SyntaxInColumnDefinition);
        table.columns.push_back(std::move(made));
    }
    QStringList names;
    QStringList values;
    for (std::size_t i = 0; i < written.columns.size(); ++i) {
        names += QuoteName(table.columns[i].name);
        values += Converted(written, i, table, static_cast<int>(i)).text;
    }
    plan.text = u"INSERT INTO "_s + QuoteName(name) + u" ("_s + names.join(u", "_s) + u") SELECT "_s +
                values.join(u", "_s) + u" FROM ("_s + written.text + u')';
    plan.ignoreText = plan.text;
}

} // namespace engine::sql
