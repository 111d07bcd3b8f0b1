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

QString QuotedText(const QString& text) {
    QString quoted = text;
    return u'\'' + quoted.replace(u'\'', u"''"_s) + u'\'';
}

const ColumnInfo& ColumnAt(const TableInfo& table, int column) {
    return table.columns[static_cast<std::size_t>(column)];
}

/// Whether every value of one type has its place in a column of the other without a change.
bool Fits(const Written& value, const ColumnInfo& column, int size) {
    if (column.type == DataType::Bit)
        return false; // NULL is No
    if (value.condition || value.null)
        return value.null;
    if (value.type == column.type && KindOf(column.type) != TypeKind::Text)
        return (IsWholeNumber(column.type) && !value.wide) || column.type == DataType::Date;
    if (value.type == DataType::Text && column.type == DataType::Text)
        return size > 0 && size <= column.size;
    const bool text = value.type == DataType::Text || value.type == DataType::Memo;
    return text && column.type == DataType::Memo;
}

} // namespace

const TableInfo& ActionWriter::TargetTable(const QString& name) const {
    const TableInfo* table = m_catalog.FindTable(name);
    if (!table)
        RaiseEngine(UnknownTargetTable, name);
    return *table;
}

QString ActionWriter::FullName(const TableInfo& table, int column) const {
    return m_context.lenient ? u"NULL"_s : QuotedText(table.name + u'.' + ColumnAt(table, column).name);
}

/// The part of a key that SQLite would let be NULL or make up; a counter is meant to be made up.
bool ActionWriter::IsKey(const TableInfo& table, int column) {
    const IndexInfo* key = table.PrimaryKey();
    return key && ColumnAt(table, column).type != DataType::Counter &&
           key->columns.contains(ColumnAt(table, column).name, Qt::CaseInsensitive);
}

QString ActionWriter::MissingKey(const TableInfo& table, int column) const {
    return ColumnAt(table, column).required ? QuotedText(table.name + u'.' + ColumnAt(table, column).name)
                                            : u"NULL"_s;
}

QString ActionWriter::Converted(const Written& value, const TableInfo& table, int column, int size) const {
    const ColumnInfo& target = ColumnAt(table, column);
    QString text = value.text;
    if (!Fits(value, target, size))
        text = u"zv_to("_s + QString::number(static_cast<int>(target.type)) + u", "_s +
               QString::number(target.size) + u", "_s + FullName(table, column) + u", "_s + Argument(value) +
               u')';
    if (IsKey(table, column) && !m_context.lenient)
        text = u"zv_required("_s + MissingKey(table, column) + u", "_s + text + u')';
    return text;
}

QString ActionWriter::Assigned(const Node& node, ExpressionWriter& writer, const TableInfo& table,
                               int column) {
    if (node.kind == NodeKind::Literal) {
        if (const auto parameter = m_context.WriteAssigned(node, ColumnAt(table, column), table.name))
            return parameter->text;
    }
    const Written value = writer.Value(node);
    return Converted(value, table, column, value.size);
}

std::vector<int> ActionWriter::InsertColumns(const Insert& insert, const TableInfo& table) const {
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

void ActionWriter::WriteInsert(const Insert& insert, Plan& plan) {
    const TableInfo& table = TargetTable(insert.table);
    const std::vector<int> columns = InsertColumns(insert, table);
    plan.verb = Verb::Insert;
    plan.target = table.name;
    for (const int column : columns)
        plan.setsCounter = plan.setsCounter || ColumnAt(table, column).type == DataType::Counter;
    plan.text = insert.query ? InsertQueryText(insert, table, columns) : InsertText(insert, table, columns);
    m_context.lenient = true;
    plan.ignoreText =
        insert.query ? InsertQueryText(insert, table, columns) : InsertText(insert, table, columns);
    m_context.lenient = false;
}

QString ActionWriter::InsertText(const Insert& insert, const TableInfo& table,
                                 const std::vector<int>& columns) {
    if (insert.values.size() != columns.size())
        RaiseEngine(InsertColumnsDiffer);
    const Scope scope(nullptr);
    ExpressionWriter writer(m_context, &m_catalog, scope, AggregateRule::InExpression);
    NewRow row;
    for (std::size_t i = 0; i < columns.size(); ++i)
        row.push_back({columns[i], Assigned(*insert.values[i], writer, table, columns[i])});
    return InsertRows(table, std::move(row), {});
}

/// The columns that the rows of a query fill where none are listed: all in their order, or, of a query that
/// delivers fewer, those that it names.
std::vector<int> ActionWriter::FilledColumns(const WrittenQuery& query, const TableInfo& table,
                                             std::vector<int> columns) const {
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

QString ActionWriter::InsertQueryText(const Insert& insert, const TableInfo& table,
                                      std::vector<int> columns) {
    const WrittenQuery query = QueryWriter(m_context, &m_catalog, nullptr).WriteDerived(*insert.query);
    if (!insert.listed)
        columns = FilledColumns(query, table, std::move(columns));
    if (query.columns.size() != columns.size())
        RaiseEngine(InsertColumnsDiffer);
    NewRow row;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Written value = DeliveredValue(query.columns[i].value, u'c' + QString::number(i));
        value.condition = false;
        row.push_back({columns[i], Converted(value, table, columns[i], value.size)});
    }
    return InsertRows(table, std::move(row), u" FROM ("_s + query.text + u')');
}

/// Adds what a row has to hold although the statement does not tell it: the key, and No for YESNO.
void ActionWriter::AddUntold(const TableInfo& table, NewRow& row) const {
    Written nothing;
    nothing.text = u"NULL"_s;
    nothing.null = true;
    for (int column = 0; column < static_cast<int>(table.columns.size()); ++column) {
        const bool told = std::ranges::find(row, column, &NewValue::column) != row.end();
        if (!told && (IsKey(table, column) || ColumnAt(table, column).type == DataType::Bit))
            row.push_back({column, Converted(nothing, table, column, 0)});
    }
}

/// The condition under which a row with that value is not left out: only with all of its key, if at all.
QStringList ActionWriter::KeyStays(const TableInfo& table, int column, const QString& value) const {
    return m_context.lenient && IsKey(table, column) ? QStringList{value + u" IS NOT NULL"_s} : QStringList();
}

QString ActionWriter::InsertRows(const TableInfo& table, NewRow row, const QString& from) const {
    AddUntold(table, row);
    QString names;
    QString values;
    QStringList keys;
    for (const NewValue& value : row) {
        names += (names.isEmpty() ? QString() : u", "_s) + QuoteName(ColumnAt(table, value.column).name);
        values += (values.isEmpty() ? QString() : u", "_s) + value.text;
        keys += KeyStays(table, value.column, value.text);
    }
    const QString start = (m_context.lenient ? u"INSERT OR IGNORE INTO "_s : u"INSERT INTO "_s) +
                          QuoteName(table.name) + u" ("_s + names + u") "_s;
    if (from.isEmpty() && keys.isEmpty())
        return start + u"VALUES ("_s + values + u')';
    return start + u"SELECT "_s + values + from +
           (keys.isEmpty() ? QString() : u" WHERE "_s + keys.join(u" AND "_s));
}

void ActionWriter::WriteUpdate(const Update& update, Plan& plan) {
    plan.verb = Verb::Update;
    plan.text = UpdateText(update, plan, Rows::All);
    if (!plan.keys.empty()) {
        plan.keyedText = UpdateText(update, plan, Rows::Listed);
        plan.keyedRowText = UpdateText(update, plan, Rows::One);
    }
    m_context.lenient = true;
    plan.ignoreText = UpdateText(update, plan, Rows::All);
    if (!plan.keys.empty())
        plan.keyedIgnoreText = UpdateText(update, plan, Rows::Listed);
    m_context.lenient = false;
}

ActionWriter::Target ActionWriter::UpdateTarget(const Update& update, const Scope& scope) const {
    Target target;
    for (const Assignment& assignment : update.assignments) {
        const auto place = scope.Find(assignment.qualifier, assignment.column);
        if (!place) {
            m_context.AddUnknownName(assignment.column);
            continue;
        }
        const ScopeSource& source = scope.Sources()[static_cast<std::size_t>(place->source)];
        if (!source.table || (target.source && target.source != &source) ||
            ColumnAt(*source.table, place->column).type == DataType::Counter)
            RaiseEngine(NotUpdatable);
        target = {source.table, &source};
    }
    if (!target.table) {
        m_context.RaiseMistakes();
        RaiseEngine(NotUpdatable);
    }
    return target;
}

QString ActionWriter::UpdateText(const Update& update, Plan& plan, Rows rows) {
    Scope scope(nullptr);
    const WrittenFrom from = FromWriter(m_context, &m_catalog, scope).Write(update.from);
    const Target target = UpdateTarget(update, scope);
    plan.target = target.table->name;
    if (!from.table)
        return UpdateJoinText(update, scope, target, from.text);
    ExpressionWriter writer(m_context, &m_catalog, scope, AggregateRule::InExpression);
    QString sets;
    QStringList conditions;
    for (const Assignment& assignment : update.assignments) {
        const int column = target.table->Find(assignment.column);
        if (column < 0)
            continue; // told already
        const QString value = Assigned(*assignment.value, writer, *target.table, column);
        sets += (sets.isEmpty() ? QString() : u", "_s) + QuoteName(ColumnAt(*target.table, column).name) +
                u" = "_s + value;
        conditions += KeyStays(*target.table, column, value);
    }
    QString text =
        (m_context.lenient ? u"UPDATE OR IGNORE "_s : u"UPDATE "_s) + from.text + u" SET "_s + sets;
    if (update.where)
        conditions.prepend(ExpressionWriter(m_context, &m_catalog, scope, AggregateRule::InWhere)
                               .Condition(*update.where)
                               .At(AndPrecedence)); // the value of a row that is not meant may fail
    if (rows != Rows::All)
        conditions += KeyText(*from.table, m_context.ParameterCount() + 1, rows);
    if (!conditions.isEmpty())
        text += u" WHERE "_s + conditions.join(u" AND "_s);
    if (rows != Rows::All)
        return text;
    plan.keys = FindKeys(update.where.get(), scope);
    plan.keyTable = plan.keys.empty() ? QString() : target.table->name;
    return text;
}

/// The new values of all rows first, then the rows they belong to.
QString ActionWriter::UpdateJoinText(const Update& update, const Scope& scope, const Target& target,
                                     const QString& from) {
    ExpressionWriter writer(m_context, &m_catalog, scope, AggregateRule::InExpression);
    QString values;
    QString sets;
    ScopeSource changed = *target.source;
    changed.alias = u"changed"_s;
    QStringList conditions{changed.RowId() + u" = news.row"_s};
    int number = 0;
    for (const Assignment& assignment : update.assignments) {
        const int column = target.table->Find(assignment.column);
        if (column < 0)
            continue;
        const QString name = u'v' + QString::number(number++);
        values += u", "_s + Assigned(*assignment.value, writer, *target.table, column) + u" AS "_s + name;
        sets += (sets.isEmpty() ? QString() : u", "_s) + QuoteName(ColumnAt(*target.table, column).name) +
                u" = news."_s + name;
        conditions += KeyStays(*target.table, column, u"news."_s + name);
    }
    QString rows = u"SELECT "_s + target.source->RowId() + u" AS row"_s + values + u" FROM "_s + from;
    if (update.where)
        rows += u" WHERE "_s + ExpressionWriter(m_context, &m_catalog, scope, AggregateRule::InWhere)
                                   .Condition(*update.where)
                                   .text;
    return (m_context.lenient ? u"UPDATE OR IGNORE "_s : u"UPDATE "_s) + QuoteName(target.table->name) +
           u" AS changed SET "_s + sets + u" FROM ("_s + rows + u") AS news WHERE "_s +
           conditions.join(u" AND "_s);
}

void ActionWriter::WriteDelete(const Delete& remove, Plan& plan) {
    plan.verb = Verb::Delete;
    plan.text = DeleteText(remove, plan, Rows::All);
    plan.ignoreText = plan.text;
    if (!plan.keys.empty()) {
        plan.keyedText = DeleteText(remove, plan, Rows::Listed);
        plan.keyedRowText = DeleteText(remove, plan, Rows::One);
        plan.keyedIgnoreText = plan.keyedText;
    }
}

/// The table whose rows go: the only one, or the one whose columns are listed.
ActionWriter::Target ActionWriter::DeleteTarget(const Delete& remove, const Scope& scope) {
    Target target;
    const auto choose = [&](const ScopeSource& source) {
        if (!source.table || (target.source && target.source != &source))
            RaiseEngine(NotUpdatable);
        target = {source.table, &source};
    };
    for (const SelectItem& item : remove.items) {
        if (!item.expression && item.qualifier.isEmpty())
            continue;
        if (!item.expression) {
            const auto found = std::ranges::find_if(scope.Sources(), [&](const ScopeSource& source) {
                return SameName(source.name, item.qualifier);
            });
            if (found == scope.Sources().end())
                RaiseEngine(UnknownNameInFind, item.qualifier + u".*"_s);
            choose(*found);
            continue;
        }
        if (item.expression->kind != NodeKind::Name)
            RaiseEngine(SyntaxInDelete);
        const auto place = scope.Find(item.expression->qualifier, item.expression->name);
        if (place)
            choose(scope.Sources()[static_cast<std::size_t>(place->source)]);
        else
            m_context.AddUnknownName(item.expression->name);
    }
    if (!target.table)
        m_context.RaiseMistakes();
    if (!target.table && scope.Sources().size() == 1)
        choose(scope.Sources().front());
    if (!target.table)
        RaiseEngine(NotUpdatable);
    return target;
}

QString ActionWriter::DeleteText(const Delete& remove, Plan& plan, Rows rows) {
    Scope scope(nullptr);
    const WrittenFrom from = FromWriter(m_context, &m_catalog, scope).Write(remove.from);
    const Target target = DeleteTarget(remove, scope);
    plan.target = target.table->name;
    Written where;
    if (remove.where)
        where =
            ExpressionWriter(m_context, &m_catalog, scope, AggregateRule::InWhere).Condition(*remove.where);
    if (!from.table) {
        ScopeSource gone = *target.source;
        gone.alias = u"gone"_s;
        return u"DELETE FROM "_s + QuoteName(target.table->name) + u" AS gone WHERE "_s + gone.RowId() +
               u" IN (SELECT "_s + target.source->RowId() + u" FROM "_s + from.text +
               (remove.where ? u" WHERE "_s + where.text : QString()) + u')';
    }
    plan.deletesAll = !remove.where;
    QString text = u"DELETE FROM "_s + from.text;
    if (!remove.where)
        return text;
    text += u" WHERE "_s + (rows == Rows::All ? where.text : where.At(AndPrecedence));
    if (rows != Rows::All)
        return text + u" AND "_s + KeyText(*from.table, m_context.ParameterCount() + 1, rows);
    plan.keys = FindKeys(remove.where.get(), scope);
    plan.keyTable = plan.keys.empty() ? QString() : target.table->name;
    return text;
}

/// A table made of a query: the columns keep their types, and no keys. A counter goes on counting in the copy
/// of one table; in any other query its numbers may be missing or repeated.
void ActionWriter::WriteInto(const Query& query, Plan& plan) {
    const QString& name = query.parts.front().select->into;
    if (m_catalog.FindTable(name))
        RaiseEngine(TableExists, name);
    if (!IsValidName(name))
        RaiseEngine(ReservedWord);
    const WrittenQuery written = QueryWriter(m_context, &m_catalog, nullptr).WriteDerived(query);
    plan.verb = Verb::SelectInto;
    plan.target = name;
    plan.intoTable.name = name;
    const auto& from = query.parts.front().select->from;
    bool counts = from.size() == 1 && !from.front()->left && !from.front()->query;
    QString names;
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
        if (plan.intoTable.Find(made.name) >= 0)
            RaiseEngine(ColumnDefinedTwice);
        if (!IsValidName(made.name))
            RaiseEngine(SyntaxInColumnDefinition);
        names += (names.isEmpty() ? QString() : u", "_s) + QuoteName(made.name);
        plan.intoTable.columns.push_back(std::move(made));
    }
    QString values;
    for (std::size_t i = 0; i < written.columns.size(); ++i) {
        Written value = DeliveredValue(written.columns[i].value, u'c' + QString::number(i));
        value.condition = false;
        values += (i == 0 ? QString() : u", "_s) +
                  Converted(value, plan.intoTable, static_cast<int>(i), value.size);
    }
    plan.text = u"INSERT INTO "_s + QuoteName(name) + u" ("_s + names + u") SELECT "_s + values +
                u" FROM ("_s + written.text + u')';
    plan.ignoreText = plan.text;
}

} // namespace engine::sql
