#include "platform/engine/sql/QueryWriter.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Grouping.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int firstNameless = 1000;

QString Joined(const std::vector<QString>& texts) {
    QString joined;
    for (const QString& text : texts)
        joined += joined.isEmpty() ? text : u", "_s + text;
    return joined;
}

QString ColumnList(std::size_t count) {
    std::vector<QString> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back(u'c' + QString::number(i));
    return Joined(names);
}

/// A SELECT or a part of a UNION that takes no ORDER BY or LIMIT of its own beside others.
QString Enclosed(const QString& text) {
    return u"SELECT * FROM ("_s + text + u')';
}

/// What a column delivers: conditions as numbers, the dialect's truth being -1.
Written DeliveredBy(ExpressionWriter& writer, const Node& node) {
    const Written plain = writer.Write(node);
    return Delivered(plain.condition ? ExpressionWriter::AsNumber(plain) : plain);
}

/// Brings a delivered value of one SELECT into the form of the union's column of `type`.
void ConvertForUnion(Written& value, DataType type) {
    const bool amount = type == DataType::Currency;
    if ((value.type == DataType::Currency) == amount)
        return;
    Written converted = value;
    if (amount) {
        SetMoney(converted, Units(value));
        converted = Delivered(converted);
    } else {
        converted = DeliveredValue(value, value.text);
        converted.money.clear();
    }
    converted.type = type;
    value = converted;
}

bool IsConstant(const Node& node) {
    if (node.kind == NodeKind::Name || node.kind == NodeKind::Call || node.query)
        return false;
    return std::ranges::all_of(node.children, [](const NodePtr& child) { return IsConstant(*child); });
}

/// A constant that SQLite does not take for the position of a column.
QString NoPosition(const Written& constant) {
    return u'(' + constant.At(ConcatPrecedence) + u" || '')"_s;
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

const Node* PlainName(const SelectItem& item) {
    return item.expression && item.expression->kind == NodeKind::Name ? item.expression.get() : nullptr;
}

} // namespace

WrittenQuery QueryWriter::WriteDerived(const Query& query) {
    return Write(query, ColumnNames::Numbered);
}

WrittenQuery QueryWriter::WriteOneColumn(const Query& query) {
    WrittenQuery written = WriteDerived(query);
    if (written.columns.size() != 1)
        RaiseEngine(SubqueryColumns);
    return written;
}

WrittenQuery QueryWriter::Write(const Query& query, ColumnNames names) {
    if (query.parts.size() > 1)
        return WriteUnion(query, names);
    if (query.parts.front().query) {
        if (query.orderBy.empty())
            return Write(*query.parts.front().query, names);
        return WriteUnion(query, names);
    }
    Scope scope(m_outer);
    SelectParts parts = WriteParts(*query.parts.front().select, query.orderBy, scope);
    WrittenQuery written;
    written.text = Assemble(parts, names);
    written.singleRow =
        (parts.aggregated && !parts.groups) || (parts.top == 1 && !parts.percent && parts.orderBy.empty());
    written.columns = std::move(parts.columns);
    return written;
}

QString QueryWriter::UnionPartText(SelectParts& part, const std::vector<WrittenColumn>& columns,
                                   ColumnNames names) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Written& value = part.columns[i].value;
        ConvertForUnion(value, columns[i].value.type);
        // Equal rows are found by the columns' own collations.
        value.text = ExpressionWriter::Folded(value);
        value.precedence = CollatePrecedence;
    }
    const QString text = Assemble(part, names);
    return part.top > 0 ? Enclosed(text) : text;
}

WrittenQuery QueryWriter::WriteUnion(const Query& query, ColumnNames names) {
    WrittenQuery written;
    std::vector<SelectParts> parts;
    for (const QueryPart& part : query.parts) {
        if (part.select) {
            Scope scope(m_outer);
            parts.push_back(WriteParts(*part.select, {}, scope));
            parts.back().from.table = nullptr; // the scope ends here
        } else {
            const WrittenQuery inner = Write(*part.query, ColumnNames::Numbered);
            parts.emplace_back();
            parts.back().from.text = u'(' + inner.text + u')';
            for (const WrittenColumn& column : inner.columns) {
                parts.back().columns.push_back(column);
                Written& value = parts.back().columns.back().value;
                value =
                    Delivered(DeliveredValue(value, u'c' + QString::number(parts.back().columns.size() - 1)));
            }
        }
        const SelectParts& next = parts.back();
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
            written.columns[i].column = nullptr;
        }
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            written.text += query.parts[i].all ? u" UNION ALL "_s : u" UNION "_s;
        written.text += UnionPartText(parts[i], written.columns, names);
    }
    written.text += WriteUnionOrder(query, written.columns);
    return written;
}

/// A union sorts by the names of its first SELECT or by position.
QString QueryWriter::WriteUnionOrder(const Query& query, const std::vector<WrittenColumn>& columns) {
    std::vector<QString> items;
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
        Written number = columns[place].value;
        number.text = QString::number(place + 1);
        number.precedence = PrimaryPrecedence;
        items.push_back(ExpressionWriter::Sorted(number) + (item.descending ? u" DESC"_s : QString()));
    }
    return items.empty() ? QString() : u" ORDER BY "_s + Joined(items);
}

SelectParts QueryWriter::WriteParts(const Select& select, const std::vector<OrderItem>& orderBy,
                                    Scope& scope) {
    SelectParts parts;
    parts.distinct = select.distinct;
    parts.top = select.top;
    parts.percent = select.percent;
    if (!select.from.empty())
        parts.from = FromWriter(m_context, m_catalog, scope).Write(select.from);
    WriteColumns(select, scope, parts);
    if (select.where) {
        const Written where =
            ExpressionWriter(m_context, m_catalog, scope, AggregateRule::InWhere).Condition(*select.where);
        parts.where = where.text;
        parts.wherePrecedence = where.precedence;
    }
    WriteGroups(select, scope, parts);
    WriteOrder(select, orderBy, scope, parts);
    // Unknown names are told first.
    if ((parts.aggregated || parts.groups) && m_context.UnknownNames().isEmpty())
        CheckGrouped(select, orderBy, scope);
    return parts;
}

void QueryWriter::WriteColumns(const Select& select, Scope& scope, SelectParts& parts) {
    ExpressionWriter writer(m_context, m_catalog, scope, AggregateRule::Allowed);
    writer.OfferAliases(select.items);
    bool all = false;
    for (const SelectItem& item : select.items) {
        if (!item.expression) {
            AddAll(item, scope, parts);
            all = all || item.qualifier.isEmpty();
            continue;
        }
        WrittenColumn column;
        column.name = item.alias;
        column.value = DeliveredBy(writer, *item.expression);
        if (const Node* name = PlainName(item)) {
            const auto place = scope.Find(name->qualifier, name->name);
            if (place && column.name.isEmpty())
                column.name = scope.Column(*place).name;
            const TableInfo* table =
                place ? scope.Sources()[static_cast<std::size_t>(place->source)].table : nullptr;
            if (table)
                column.column = &table->columns[static_cast<std::size_t>(place->column)];
        }
        parts.columns.push_back(std::move(column));
    }
    parts.aggregated = writer.SawAggregate();
    NameColumns(select, scope, parts);
    if (select.distinctRow && !all && !parts.aggregated && select.groupBy.empty())
        KeepDistinctRows(select, scope, writer.UsedSources(), parts);
}

void QueryWriter::AddAll(const SelectItem& item, Scope& scope, SelectParts& parts) const {
    bool found = false;
    for (const ScopeSource& source : scope.Sources()) {
        if (!item.qualifier.isEmpty() && !SameName(source.name, item.qualifier))
            continue;
        found = true;
        for (std::size_t i = 0; i < source.columns.size(); ++i) {
            WrittenColumn column;
            column.name = source.columns[i].name;
            column.value = Delivered(source.columns[i].value);
            if (source.table)
                column.column = &source.table->columns[i];
            parts.columns.push_back(std::move(column));
        }
    }
    if (!found && item.qualifier.isEmpty())
        RaiseEngine(ReservedWord); // nothing to select from
    if (!found)
        RaiseEngine(UnknownNameInFind, item.qualifier + u".*"_s);
}

/// Names that two tables deliver get the table in front; what has none is numbered.
void QueryWriter::NameColumns(const Select& select, const Scope& scope, SelectParts& parts) const {
    struct Origin {
        const SelectItem* item;
        ScopePlace place;
        bool plain;
    };
    std::vector<Origin> origins;
    for (const SelectItem& item : select.items) {
        if (item.expression) {
            const Node* name = PlainName(item);
            const auto place =
                name && item.alias.isEmpty() ? scope.Find(name->qualifier, name->name) : std::nullopt;
            origins.push_back({&item, place.value_or(ScopePlace{}), place.has_value()});
            continue;
        }
        for (int s = 0; s < static_cast<int>(scope.Sources().size()); ++s) {
            const ScopeSource& source = scope.Sources()[static_cast<std::size_t>(s)];
            if (!item.qualifier.isEmpty() && !SameName(source.name, item.qualifier))
                continue;
            for (int c = 0; c < static_cast<int>(source.columns.size()); ++c)
                origins.push_back({&item, ScopePlace{s, c}, true});
        }
    }
    int nameless = firstNameless;
    std::vector<QString> names;
    for (std::size_t i = 0; i < parts.columns.size(); ++i) {
        QString name = parts.columns[i].name;
        bool repeated = name.isEmpty();
        for (std::size_t j = 0; j < parts.columns.size() && origins[i].plain; ++j) {
            if (i == j || !origins[j].plain || !SameName(parts.columns[j].name, parts.columns[i].name))
                continue;
            if (origins[i].place == origins[j].place)
                repeated = repeated || j < i; // the same column again is nameless
            else
                name = scope.Sources()[static_cast<std::size_t>(origins[i].place.source)].name + u'.' +
                       parts.columns[i].name;
        }
        names.push_back(repeated ? u"Expr"_s + QString::number(nameless++) : name);
    }
    for (std::size_t i = 0; i < names.size(); ++i)
        parts.columns[i].name = names[i];
}

/// DISTINCTROW drops rows that differ only in tables of which nothing is shown.
void QueryWriter::KeepDistinctRows(const Select& select, const Scope& scope, const std::vector<bool>& used,
                                   SelectParts& parts) const {
    std::vector<QString> rowIds;
    bool hidden = false;
    for (std::size_t i = 0; i < scope.Sources().size(); ++i) {
        const ScopeSource& source = scope.Sources()[i];
        const bool listed = std::ranges::any_of(select.items, [&](const SelectItem& item) {
            return !item.expression && SameName(item.qualifier, source.name);
        });
        if (!used[i] && !listed)
            hidden = true;
        else if (source.table)
            rowIds.push_back(source.RowId());
        else
            return;
    }
    if (hidden && !rowIds.empty()) {
        parts.groupBy = Joined(rowIds);
        parts.distinct = false;
    }
}

void QueryWriter::WriteGroups(const Select& select, Scope& scope, SelectParts& parts) {
    if (!select.groupBy.empty()) {
        ExpressionWriter writer(m_context, m_catalog, scope, AggregateRule::InGroupBy);
        std::vector<QString> groups;
        for (const auto& group : select.groupBy) {
            const Written value = writer.Value(*group);
            groups.push_back(IsConstant(*group) ? NoPosition(value) : ExpressionWriter::Folded(value));
        }
        parts.groupBy = Joined(groups);
        parts.groups = true;
    }
    if (!select.having)
        return;
    ExpressionWriter writer(m_context, m_catalog, scope, AggregateRule::Allowed);
    parts.having = writer.Condition(*select.having).text;
    if (!parts.groups && !parts.aggregated && !parts.columns.empty()) {
        // SQLite takes a query without GROUP BY for a grouped one only by an aggregate among its columns.
        Written& first = parts.columns.front().value;
        first.text = u"CASE WHEN count(*) >= 0 THEN "_s + first.text + u" END"_s;
        first.precedence = PrimaryPrecedence;
        first.collated = false;
    }
    parts.aggregated = true;
}

bool QueryWriter::IsShown(const Node& node, const QString& text, const Select& select, const Scope& scope,
                          const SelectParts& parts) const {
    if (std::ranges::any_of(parts.columns,
                            [&](const WrittenColumn& column) { return column.value.text == text; }))
        return true;
    const GroupingCheck check(select.groupBy, scope, m_context);
    return std::ranges::any_of(select.items, [&](const SelectItem& item) {
        return item.expression && check.Same(*item.expression, node);
    });
}

void QueryWriter::WriteOrder(const Select& select, const std::vector<OrderItem>& orderBy, Scope& scope,
                             SelectParts& parts) {
    const bool grouped = parts.aggregated || parts.groups;
    ExpressionWriter writer(m_context, m_catalog, scope,
                            grouped ? AggregateRule::Allowed : AggregateRule::InOrderBy);
    for (const OrderItem& item : orderBy) {
        Written value;
        if (const auto place = PlaceOf(*item.expression, parts.columns.size())) {
            value = parts.columns[*place].value;
        } else {
            value = writer.Value(*item.expression);
            if (writer.SawOuter())
                RaiseEngine(ExpressionTooComplex); // it would be the same for all rows
            if (IsConstant(*item.expression)) {
                value.text = NoPosition(value);
                value.precedence = PrimaryPrecedence;
                value.money.clear();
            }
            if (select.distinct && m_context.UnknownNames().isEmpty() &&
                !IsShown(*item.expression, Delivered(value).text, select, scope, parts))
                RaiseEngine(OrderByConflictsWithDistinct, m_context.Text(*item.expression).toString());
        }
        parts.orderBy.push_back(ExpressionWriter::Sorted(value) + (item.descending ? u" DESC"_s : QString()));
    }
}

void QueryWriter::CheckGrouped(const Select& select, const std::vector<OrderItem>& orderBy,
                               const Scope& scope) {
    const GroupingCheck check(select.groupBy, scope, m_context);
    for (const SelectItem& item : select.items) {
        if (!item.expression)
            RaiseEngine(CannotGroupAsterisk);
        check.Check(*item.expression);
    }
    if (select.having)
        check.Check(*select.having);
    for (const OrderItem& item : orderBy)
        check.Check(*item.expression);
}

QString QueryWriter::AssembleBody(const SelectParts& parts, const QString& columns,
                                  const QString& further) const {
    QString text = (parts.distinct ? u"SELECT DISTINCT "_s : u"SELECT "_s) + columns;
    if (!parts.from.text.isEmpty())
        text += u" FROM "_s + parts.from.text;
    QString where = parts.where;
    if (!further.isEmpty() && !where.isEmpty() && parts.wherePrecedence < AndPrecedence)
        where = u'(' + where + u')';
    if (!further.isEmpty())
        where += where.isEmpty() ? further : u" AND "_s + further;
    if (!where.isEmpty())
        text += u" WHERE "_s + where;
    if (!parts.groupBy.isEmpty())
        text += u" GROUP BY "_s + parts.groupBy;
    if (!parts.having.isEmpty())
        text += u" HAVING "_s + parts.having;
    return text;
}

QString QueryWriter::Assemble(const SelectParts& parts, ColumnNames names, const QString& further,
                              const QString& rowNumber) const {
    if (parts.top > 0 && (parts.percent || !parts.orderBy.empty()))
        return AssembleTop(parts, names, further);
    std::vector<QString> columns;
    for (std::size_t i = 0; i < parts.columns.size(); ++i) {
        const Written& value = parts.columns[i].value;
        QString text = parts.distinct ? ExpressionWriter::Folded(value) : value.text;
        if (names == ColumnNames::Numbered)
            text += u" AS c"_s + QString::number(i);
        columns.push_back(std::move(text));
    }
    if (!rowNumber.isEmpty())
        columns.push_back(rowNumber);
    QString text = AssembleBody(parts, Joined(columns), further);
    if (!parts.orderBy.empty())
        text += u" ORDER BY "_s + Joined(parts.orderBy);
    if (parts.top > 0)
        text += u" LIMIT "_s + QString::number(parts.top);
    return text;
}

/// TOP takes in the rows that are equal to the last one in the sort columns, and a share of all rows can only
/// be told when they are counted. So the rows are ranked.
QString QueryWriter::AssembleTop(const SelectParts& parts, ColumnNames names, const QString& further) const {
    Q_UNUSED(names) // the outer columns bear the inner names
    std::vector<QString> columns;
    for (std::size_t i = 0; i < parts.columns.size(); ++i) {
        const Written& value = parts.columns[i].value;
        columns.push_back((parts.distinct ? ExpressionWriter::Folded(value) : value.text) + u" AS c"_s +
                          QString::number(i));
    }
    std::vector<QString> directions;
    for (std::size_t i = 0; i < parts.orderBy.size(); ++i) {
        const bool descending = parts.orderBy[i].endsWith(u" DESC"_s);
        QString key = parts.orderBy[i];
        if (descending)
            key.chop(5);
        columns.push_back(key + u" AS o"_s + QString::number(i));
        const bool text = key.endsWith(u" COLLATE ZV_SORT"_s);
        directions.push_back(u'o' + QString::number(i) + (text ? u" COLLATE ZV_SORT"_s : u""_s) +
                             (descending ? u" DESC"_s : u""_s));
    }
    const QString order = Joined(directions);
    const QString rank =
        order.isEmpty() ? u"row_number() OVER ()"_s : u"rank() OVER (ORDER BY "_s + order + u')';
    const QString list = ColumnList(parts.columns.size());
    QString text = u"SELECT "_s + list + u" FROM (SELECT *, "_s + rank + u" AS place"_s +
                   (parts.percent ? u", count(*) OVER () AS total"_s : u""_s) + u" FROM ("_s +
                   AssembleBody(parts, Joined(columns), further) + u")) WHERE place <= "_s;
    const QString top = QString::number(parts.top);
    text += parts.percent ? u"(total * "_s + top + u" + 99) / 100"_s : top;
    return text + u" ORDER BY place"_s;
}

} // namespace engine::sql
