#include "platform/engine/sql/QueryWriter.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int firstNameless = 1000;

QString ColumnName(qsizetype place) {
    return u'c' + QString::number(place);
}

/// Brings a delivered value of one SELECT into the form of the union's column of `type`.
Written ForUnion(const Written& value, DataType type) {
    const bool amount = type == DataType::Currency;
    if ((value.type == DataType::Currency) == amount)
        return value;
    if (amount)
        return value.As(Units(value), type);
    Written number = DeliveredValue(value, value.text);
    number.money.clear();
    number.type = type;
    return number;
}

bool IsConstant(const Node& node) {
    if (node.kind == NodeKind::Name || node.kind == NodeKind::Call || node.query)
        return false;
    return std::ranges::all_of(node.children, [](const NodePtr& child) { return IsConstant(*child); });
}

/// A constant that SQLite does not take for the position of a column.
Written NoPosition(const Written& constant) {
    Written value = constant.As(u'(' + constant.At(ConcatPrecedence) + u" || '')"_s, constant.type);
    value.money.clear();
    return value;
}

/// The place of the column, counted from 0, that a whole number in ORDER BY means; 3138 if there is none.
std::optional<std::size_t> PlaceOf(const Node& node, std::size_t columns) {
    if (node.kind != NodeKind::Literal || node.token.kind != TokenKind::Integer)
        return std::nullopt;
    const double position = Lexer::LiteralValue(node.token).Number();
    if (position < 1 || position > static_cast<double>(columns))
        RaiseEngine(SyntaxInOrderBy);
    return static_cast<std::size_t>(position) - 1;
}

/// Adds the columns of `*` or `t.*`.
void AddAll(const SelectItem& item, const Scope& scope, std::vector<WrittenColumn>& columns) {
    bool found = false;
    for (std::size_t s = 0; s < scope.sources.size(); ++s) {
        const ScopeSource& source = scope.sources[s];
        if (!item.qualifier.isEmpty() && !SameName(source.name, item.qualifier))
            continue;
        found = true;
        for (std::size_t c = 0; c < source.columns.size(); ++c)
            columns.push_back({source.columns[c].name, Delivered(source.columns[c].value), ScopePlace{s, c}});
    }
    if (!found && item.qualifier.isEmpty())
        RaiseEngine(ReservedWord); // nothing to select from
    if (!found)
        RaiseEngine(UnknownNameInFind, item.qualifier + u".*"_s);
}

/// Names that two tables deliver get the table in front; what has none is numbered.
void NameColumns(const Scope& scope, std::vector<WrittenColumn>& columns) {
    int nameless = firstNameless;
    QStringList names;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const WrittenColumn& column = columns[i];
        QString name = column.name;
        bool repeated = name.isEmpty();
        for (std::size_t j = 0; j < columns.size() && column.place; ++j) {
            if (i == j || !columns[j].place || !SameName(columns[j].name, column.name))
                continue;
            if (column.place == columns[j].place)
                repeated = repeated || j < i; // the same column again is nameless
            else
                name = scope.sources[column.place->source].name + u'.' + column.name;
        }
        names += repeated ? u"Expr"_s + QString::number(nameless++) : name;
    }
    for (std::size_t i = 0; i < columns.size(); ++i)
        columns[i].name = names[static_cast<qsizetype>(i)];
}

/// DISTINCTROW drops rows that differ only in tables of which nothing is shown.
void KeepDistinctRows(const Select& select, const Scope& scope, const std::vector<bool>& used,
                      SelectParts& parts) {
    QStringList rowIds;
    bool hidden = false;
    for (std::size_t i = 0; i < scope.sources.size(); ++i) {
        const ScopeSource& source = scope.sources[i];
        const bool listed = std::ranges::any_of(select.items, [&](const SelectItem& item) {
            return !item.expression && SameName(item.qualifier, source.name);
        });
        if (!used[i] && !listed)
            hidden = true;
        else if (source.table)
            rowIds += source.RowId();
        else
            return;
    }
    if (hidden && !rowIds.isEmpty())
        parts.groupBy = rowIds.join(u", "_s);
}

/// Whether an expression of ORDER BY is one of the columns of a SELECT DISTINCT: written alike or meaning the
/// same.
bool IsShown(const Node& node, const Written& value, const Select& select, const Scope& scope,
             const SelectParts& parts) {
    const QString text = Delivered(value).text;
    return std::ranges::any_of(parts.columns,
                               [&](const auto& column) { return column.value.text == text; }) ||
           std::ranges::any_of(select.items, [&](const SelectItem& item) {
               return item.expression && scope.Same(*item.expression, node);
           });
}

} // namespace

const ScopeSource* OnlyTable(const Scope& scope) {
    return scope.sources.size() == 1 && scope.sources.front().table ? &scope.sources.front() : nullptr;
}

WrittenQuery QueryWriter::WriteOneColumn(const Query& query) {
    WrittenQuery written = Write(query);
    if (written.columns.size() != 1)
        RaiseEngine(SubqueryColumns);
    return written;
}

WrittenQuery QueryWriter::Write(const Query& query) {
    const QueryPart& first = query.parts.front();
    if (query.parts.size() > 1 || (first.query && !query.orderBy.empty()))
        return WriteUnion(query);
    if (first.query)
        return Write(*first.query);
    Scope scope{m_outer};
    SelectParts parts = WriteParts(*first.select, query.orderBy, scope);
    const bool singleRow =
        (parts.aggregated && !parts.groups) || (parts.top == 1 && !parts.percent && parts.orderBy.empty());
    return {parts.Assemble(), std::move(parts.columns), singleRow};
}

SelectParts QueryWriter::WriteUnionPart(const QueryPart& part) {
    SelectParts parts;
    if (part.select) {
        Scope scope{m_outer};
        parts = WriteParts(*part.select, {}, scope);
        parts.table = nullptr; // the scope ends here
        return parts;
    }
    const WrittenQuery inner = Write(*part.query);
    parts.from = u'(' + inner.text + u')';
    for (const WrittenColumn& column : inner.columns)
        parts.columns.push_back(
            {column.name, Delivered(DeliveredValue(column.value, ColumnName(std::ssize(parts.columns))))});
    return parts;
}

WrittenQuery QueryWriter::WriteUnion(const Query& query) {
    WrittenQuery written;
    std::vector<SelectParts> parts;
    for (const QueryPart& part : query.parts) {
        const SelectParts& next = parts.emplace_back(WriteUnionPart(part));
        if (parts.size() == 1) {
            written.columns = next.columns;
            continue;
        }
        if (next.columns.size() != written.columns.size())
            RaiseEngine(UnionColumnsDiffer);
        for (std::size_t i = 0; i < next.columns.size(); ++i) {
            Written& value = written.columns[i].value;
            const Written& other = next.columns[i].value;
            value.size = std::max(value.size, other.size);
            if (value.null)
                value.type = other.type;
            else if (!other.null)
                value.type = CommonType(value.type, other.type);
            value.null = value.null && other.null;
            value.condition = false;
            value.wide = value.wide || other.wide;
        }
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        // Equal rows are found by the columns' own collations.
        for (std::size_t c = 0; c < written.columns.size(); ++c)
            parts[i].columns[c].value =
                Folded(ForUnion(parts[i].columns[c].value, written.columns[c].value.type));
        if (i > 0)
            written.text += query.parts[i].all ? u" UNION ALL "_s : u" UNION "_s;
        // A part of a UNION takes no LIMIT of its own beside others.
        const QString text = parts[i].Assemble();
        written.text += parts[i].top > 0 ? u"SELECT * FROM ("_s + text + u')' : text;
    }
    written.text += WriteUnionOrder(query, written.columns);
    return written;
}

/// A union sorts by the names of its first SELECT or by position.
QString QueryWriter::WriteUnionOrder(const Query& query, const std::vector<WrittenColumn>& columns) {
    QStringList items;
    for (const OrderItem& item : query.orderBy) {
        std::size_t place = columns.size();
        if (const auto told = PlaceOf(*item.expression, columns.size())) {
            place = *told;
        } else if (item.expression->kind == NodeKind::Name) {
            const auto found = std::ranges::find_if(
                columns, [&](const WrittenColumn& c) { return SameName(c.name, item.expression->name); });
            place = static_cast<std::size_t>(found - columns.begin());
        }
        if (place == columns.size()) {
            m_context.AddUnknownName(m_context.Text(*item.expression).toString());
            continue;
        }
        const Written& value = columns[place].value;
        items += OrderTerm{value.As(QString::number(place + 1), value.type), item.descending}.Text();
    }
    return items.empty() ? QString() : u" ORDER BY "_s + items.join(u", "_s);
}

SelectParts QueryWriter::WriteParts(const Select& select, const std::vector<OrderItem>& orderBy,
                                    Scope& scope) {
    SelectParts parts;
    parts.distinct = select.distinct;
    parts.top = select.top;
    parts.percent = select.percent;
    parts.from = WriteFrom(m_context, scope, select.from);
    parts.table = OnlyTable(scope);
    WriteColumns(select, scope, parts);
    if (select.where)
        parts.where = ExpressionWriter(m_context, scope, AggregateInWhere).Condition(*select.where);
    WriteGroups(select, scope, parts);
    WriteOrder(select, orderBy, scope, parts);
    // Unknown names are told first.
    if ((parts.aggregated || parts.groups) && m_context.UnknownNames().isEmpty())
        CheckGrouped(select, orderBy, scope);
    return parts;
}

void QueryWriter::WriteColumns(const Select& select, const Scope& scope, SelectParts& parts) {
    ExpressionWriter writer(m_context, scope, 0);
    writer.OfferAliases(select.items);
    bool all = false;
    for (const SelectItem& item : select.items) {
        if (!item.expression) {
            AddAll(item, scope, parts.columns);
            all = all || item.qualifier.isEmpty();
            continue;
        }
        WrittenColumn column{item.alias, Delivered(writer.ColumnValue(*item.expression))};
        const Node& name = *item.expression;
        if (name.kind == NodeKind::Name && item.alias.isEmpty())
            column.place = scope.Find(name.qualifier, name.name);
        if (column.place)
            column.name = scope.Column(*column.place).name;
        parts.columns.push_back(std::move(column));
    }
    parts.aggregated = writer.SawAggregate();
    NameColumns(scope, parts.columns);
    if (select.distinctRow && !all && !parts.aggregated && select.groupBy.empty())
        KeepDistinctRows(select, scope, writer.UsedSources(), parts);
}

void QueryWriter::WriteGroups(const Select& select, const Scope& scope, SelectParts& parts) {
    if (!select.groupBy.empty()) {
        ExpressionWriter writer(m_context, scope, AggregateInGroupBy);
        QStringList groups;
        for (const auto& group : select.groupBy) {
            const Written value = writer.Value(*group);
            groups += IsConstant(*group) ? NoPosition(value).text : Folded(value).text;
        }
        parts.groupBy = groups.join(u", "_s);
        parts.groups = true;
    }
    if (!select.having)
        return;
    parts.having = ExpressionWriter(m_context, scope, 0).Condition(*select.having).text;
    if (!parts.groups && !parts.aggregated && !parts.columns.empty()) {
        // SQLite takes a query without GROUP BY for a grouped one only by an aggregate among its columns.
        Written& first = parts.columns.front().value;
        first = first.As(u"CASE WHEN count(*) >= 0 THEN "_s + first.text + u" END"_s, first.type);
    }
    parts.aggregated = true;
}

void QueryWriter::WriteOrder(const Select& select, const std::vector<OrderItem>& orderBy, const Scope& scope,
                             SelectParts& parts) {
    const bool grouped = parts.aggregated || parts.groups;
    ExpressionWriter writer(m_context, scope, grouped ? 0 : AggregateInOrderBy);
    for (const OrderItem& item : orderBy) {
        Written value;
        if (const auto place = PlaceOf(*item.expression, parts.columns.size())) {
            value = parts.columns[*place].value;
        } else {
            value = writer.Value(*item.expression);
            if (writer.SawOuter())
                RaiseEngine(ExpressionTooComplex); // it would be the same for all rows
            if (IsConstant(*item.expression))
                value = NoPosition(value);
            if (select.distinct && m_context.UnknownNames().isEmpty() &&
                !IsShown(*item.expression, value, select, scope, parts))
                RaiseEngine(OrderByConflictsWithDistinct, m_context.Text(*item.expression).toString());
        }
        parts.orderBy.push_back({value, item.descending});
    }
}

void QueryWriter::CheckGrouped(const Select& select, const std::vector<OrderItem>& orderBy,
                               const Scope& scope) const {
    const auto check = [&](const Node& expression) {
        if (!scope.IsDecided(expression, select.groupBy))
            RaiseEngine(NotInAggregate, m_context.Text(expression).toString());
    };
    for (const SelectItem& item : select.items) {
        if (!item.expression)
            RaiseEngine(CannotGroupAsterisk);
        check(*item.expression);
    }
    if (select.having)
        check(*select.having);
    for (const OrderItem& item : orderBy)
        check(*item.expression);
}

QString OrderTerm::Text() const {
    return Sorted(value).text + (descending ? u" DESC"_s : QString());
}

QStringList SelectParts::ColumnTexts() const {
    QStringList texts;
    for (const auto& column : columns)
        texts += (distinct ? Folded(column.value) : column.value).text + u" AS "_s + ColumnName(texts.size());
    return texts;
}

QString SelectParts::Body(const QStringList& columnTexts) const {
    const auto clause = [](const QString& words, const QString& text) {
        return text.isEmpty() ? text : words + text;
    };
    return (distinct ? u"SELECT DISTINCT "_s : u"SELECT "_s) + columnTexts.join(u", "_s) +
           clause(u" FROM "_s, from) + clause(u" WHERE "_s, where.text) + clause(u" GROUP BY "_s, groupBy) +
           clause(u" HAVING "_s, having);
}

QString SelectParts::Assemble(const QString& rowNumber) const {
    if (top > 0 && (percent || !orderBy.empty()))
        return AssembleTop();
    QStringList texts = ColumnTexts();
    if (!rowNumber.isEmpty())
        texts += rowNumber;
    QString text = Body(texts);
    for (std::size_t i = 0; i < orderBy.size(); ++i)
        text += (i == 0 ? u" ORDER BY "_s : u", "_s) + orderBy[i].Text();
    return top > 0 ? text + u" LIMIT "_s + QString::number(top) : text;
}

/// TOP takes in the rows that are equal to the last one in the sort columns, and a share of all rows can only
/// be told when they are counted. So the rows are ranked.
QString SelectParts::AssembleTop() const {
    QStringList texts = ColumnTexts();
    QStringList names;
    while (names.size() < std::ssize(columns))
        names += ColumnName(names.size());
    QStringList order;
    for (const OrderTerm& term : orderBy) {
        const QString name = u'o' + QString::number(order.size());
        texts += Sorted(term.value).text + u" AS "_s + name;
        order += OrderTerm{DeliveredValue(term.value, name), term.descending}.Text();
    }
    const QString rank = order.isEmpty() ? u"row_number() OVER ()"_s
                                         : u"rank() OVER (ORDER BY "_s + order.join(u", "_s) + u')';
    const QString most = QString::number(top);
    return u"SELECT "_s + names.join(u", "_s) + u" FROM (SELECT *, "_s + rank + u" AS place"_s +
           (percent ? u", count(*) OVER () AS total"_s : u""_s) + u" FROM ("_s + Body(texts) +
           u")) WHERE place <= "_s + (percent ? u"(total * "_s + most + u" + 99) / 100"_s : most) +
           u" ORDER BY place"_s;
}

} // namespace engine::sql
