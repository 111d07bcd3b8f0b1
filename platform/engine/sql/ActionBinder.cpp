#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Binder.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int widestText = 255;

/// Whether every value of one type has its place in a column of the other without a change.
bool Fits(const Bound& value, const ColumnInfo& column) {
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
    return key && table.At(column).type != DataType::Counter &&
           key->columns.contains(table.At(column).name, Qt::CaseInsensitive);
}

/// A value on its way into a column: converted, and NULL refused where it would stand in a key. What does not
/// fit becomes NULL in a statement that leaves failing rows out.
NewValue Converted(const Bound& value, const TableInfo& table, int column) {
    const ColumnInfo& target = table.At(column);
    const TermPtr null = MakeTerm(u"NULL");
    Term named = *MakeTerm(QuoteText(table.name + u'.' + target.name));
    named.ignoring = null;
    const auto name = std::make_shared<const Term>(std::move(named));
    TermPtr term = value.term;
    if (!Fits(value, target))
        term = MakeTerm(u"zv_to(%1, %2, %, %)"_s.arg(static_cast<int>(target.type)).arg(target.size),
                        {name, Argument(value)});
    if (!IsKey(table, column))
        return {column, term};
    Term required = *MakeTerm(u"zv_required(%, %)", {target.required ? name : null, term});
    required.ignoring = term;
    return {column, std::make_shared<const Term>(std::move(required)), true};
}

NewValue Assigned(Context& context, const Node& node, ExpressionBinder& binder, const TableInfo& table,
                  int column) {
    if (const TermPtr parameter = context.BindAssigned(node, table.At(column)))
        return {column, parameter, IsKey(table, column)};
    return Converted(binder.Value(node), table, column);
}

/// A column of a query that stands as the source of rows.
NewValue Converted(const BoundQuery& query, std::size_t place, const TableInfo& table, int column) {
    Bound value = DeliveredValue(query.columns[place].value, MakeTerm(u'c' + QString::number(place)));
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
std::vector<int> FilledColumns(const BoundQuery& query, const TableInfo& table, std::vector<int> columns) {
    if (query.columns.size() >= columns.size())
        return columns;
    columns.clear();
    for (const BoundColumn& column : query.columns) {
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
        if (!told && (IsKey(table, column) || table.At(column).type == DataType::Bit))
            row.push_back(Converted(MakeNull(), table, column));
    }
}

void Choose(const ScopeSource*& target, const ScopeSource& source) {
    if (!source.table || (target && target != &source))
        RaiseEngine(NotUpdatable);
    target = &source;
}

const ScopeSource& Chosen(const Context& context, const ScopeSource* target) {
    if (target)
        return *target;
    context.RaiseMistakes();
    RaiseEngine(NotUpdatable);
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
        Choose(target, scope.sources[place->source]);
        if (target->table->columns[place->column].type == DataType::Counter)
            RaiseEngine(NotUpdatable);
    }
    return Chosen(context, target);
}

/// The table whose rows go: the only one, or the one whose columns are listed.
const ScopeSource& DeleteTarget(Context& context, const Delete& remove, const Scope& scope) {
    const ScopeSource* target = nullptr;
    for (const SelectItem& item : remove.items) {
        if (!item.expression && item.qualifier.isEmpty())
            continue;
        if (!item.expression) {
            const auto found = std::ranges::find_if(scope.sources, [&](const ScopeSource& source) {
                return SameName(source.name, item.qualifier);
            });
            if (found == scope.sources.end())
                RaiseEngine(UnknownNameInFind, item.qualifier + u".*"_s);
            Choose(target, *found);
            continue;
        }
        if (item.expression->kind != NodeKind::Name)
            RaiseEngine(SyntaxInDelete);
        if (const auto place = scope.Find(item.expression->qualifier, item.expression->name))
            Choose(target, scope.sources[place->source]);
        else
            context.AddUnknownName(item.expression->name);
    }
    if (!target && scope.sources.size() == 1) {
        context.RaiseMistakes();
        Choose(target, scope.sources.front());
    }
    return Chosen(context, target);
}

void AddCondition(Context& context, const NodePtr& where, const Scope& scope, BoundChange& bound) {
    if (where)
        bound.conditions.push_back(
            ExpressionBinder(context, scope, &AggregateInWhere).Condition(*where).At(AndPrecedence));
}

} // namespace

BoundInsert BindInsert(Context& context, const Insert& insert, Plan& plan) {
    BoundInsert bound{context.FindTable(insert.table)};
    if (!bound.table)
        RaiseEngine(UnknownTargetTable, insert.table);
    const TableInfo& table = *bound.table;
    std::vector<int> columns = InsertColumns(insert, table);
    plan.verb = Verb::Insert;
    plan.target = table.name;
    plan.setsCounter = std::ranges::find(columns, table.CounterColumn()) != columns.end();
    if (insert.query) {
        bound.from = QueryBinder(context, nullptr).Bind(*insert.query);
        if (!insert.listed)
            columns = FilledColumns(*bound.from, table, std::move(columns));
    }
    if ((bound.from ? bound.from->columns.size() : insert.values.size()) != columns.size())
        RaiseEngine(InsertColumnsDiffer);
    const Scope scope;
    ExpressionBinder binder(context, scope, &AggregateInExpression);
    for (std::size_t i = 0; i < columns.size(); ++i)
        bound.row.push_back(bound.from ? Converted(*bound.from, i, table, columns[i])
                                       : Assigned(context, *insert.values[i], binder, table, columns[i]));
    AddUntold(table, bound.row);
    return bound;
}

BoundChange BindUpdate(Context& context, Scope& scope, const Update& update, Plan& plan) {
    BoundChange bound;
    bound.from = BindFrom(context, scope, update.from);
    bound.target = &UpdateTarget(context, update, scope);
    bound.joins = !scope.OneTable();
    const TableInfo& table = *bound.target->table;
    plan.verb = Verb::Update;
    plan.target = table.name;
    ExpressionBinder binder(context, scope, &AggregateInExpression);
    for (const Assignment& assignment : update.assignments) {
        const int column = table.Find(assignment.column);
        if (column >= 0) // else told already
            bound.values.push_back(Assigned(context, *assignment.value, binder, table, column));
    }
    AddCondition(context, update.where, scope, bound);
    return bound;
}

BoundChange BindDelete(Context& context, Scope& scope, const Delete& remove, Plan& plan) {
    BoundChange bound;
    bound.from = BindFrom(context, scope, remove.from);
    bound.target = &DeleteTarget(context, remove, scope);
    bound.joins = !scope.OneTable();
    plan.verb = Verb::Delete;
    plan.target = bound.target->table->name;
    AddCondition(context, remove.where, scope, bound);
    return bound;
}

BoundInsert BindInto(Context& context, const Query& query, Plan& plan) {
    const QString& name = query.parts.front().select->into;
    if (context.FindTable(name))
        RaiseEngine(TableExists, name);
    if (!IsValidName(name))
        RaiseEngine(ReservedWord);
    plan.verb = Verb::SelectInto;
    plan.target = name;
    TableInfo& table = plan.intoTable;
    BoundInsert bound{&table, {}, QueryBinder(context, nullptr).Bind(query)};
    table.name = name;
    const auto& from = query.parts.front().select->from;
    bool counts = from.size() == 1 && !from.front()->left && !from.front()->query;
    for (const BoundColumn& column : bound.from->columns) {
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
    for (std::size_t i = 0; i < table.columns.size(); ++i)
        bound.row.push_back(Converted(*bound.from, i, table, static_cast<int>(i)));
    return bound;
}

} // namespace engine::sql
