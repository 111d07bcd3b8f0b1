#include "platform/engine/sql/TransformWriter.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/sql/Grouping.h"

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr std::size_t mostColumns = 255;
constexpr qsizetype longestName = 64;

/// A heading as the name of a column, without the signs that no name holds.
QString ColumnName(QString heading) {
    for (QChar& sign : heading)
        if (QStringView(u".![]`").contains(sign))
            sign = u'_';
    return heading.left(longestName);
}

/// The text of a heading in the list: a constant, with a sign if it is a number.
QString ListedText(const Node& heading) {
    switch (heading.kind) {
    case NodeKind::Literal:
        return Lexer::LiteralValue(heading.token).Text();
    case NodeKind::Null:
        return u"<>"_s;
    case NodeKind::Truth:
        return heading.negated ? u"0"_s : u"-1"_s;
    case NodeKind::Negate:
        if (heading.children[0]->kind == NodeKind::Literal)
            return u'-' + ListedText(*heading.children[0]);
        [[fallthrough]];
    default:
        RaiseEngine(SyntaxInTransform);
    }
}

} // namespace

std::vector<TransformWriter::PivotColumn> TransformWriter::ListedColumns(const Transform& transform,
                                                                         ExpressionWriter& writer) const {
    std::vector<PivotColumn> columns;
    for (const NodePtr& heading : transform.headings) {
        const QString name = ColumnName(ListedText(*heading));
        columns.push_back({writer.Value(*heading), name});
    }
    return columns;
}

std::vector<TransformWriter::PivotColumn> TransformWriter::ToldColumns(const std::vector<Heading>& headings,
                                                                       const Written& pivot) const {
    std::vector<PivotColumn> columns;
    for (const Heading& heading : headings) {
        PivotColumn column;
        column.value = StoredValue(
            heading.literal.startsWith(u'-') ? u'(' + heading.literal + u')' : heading.literal, pivot.type);
        column.value.null = heading.literal == u"NULL";
        column.name = ColumnName(heading.name);
        columns.push_back(std::move(column));
    }
    return columns;
}

QString TransformWriter::HeadingsText(const SelectParts& parts, const Written& pivot) {
    const Written heading = DeliveredValue(pivot, u"c0"_s);
    const QString name =
        pivot.Kind() == TypeKind::Date ? u"zv_datetext(c0)"_s : u"zv_cstr("_s + Argument(heading) + u')';
    const QString where = parts.where.isEmpty() ? QString() : u" WHERE "_s + parts.where;
    return u"SELECT quote(c0), CASE WHEN c0 IS NULL THEN '<>' ELSE "_s + name +
           u" END FROM (SELECT DISTINCT "_s + ExpressionWriter::Folded(pivot) + u" AS c0 FROM "_s +
           parts.from.text + where + u") ORDER BY "_s + ExpressionWriter::Sorted(heading);
}

void TransformWriter::Write(const Transform& transform, const Query& query,
                            const std::vector<Heading>* headings, Plan& plan) {
    const Select* select = query.parts.size() == 1 ? query.parts.front().select.get() : nullptr;
    if (!select || select->groupBy.empty() || select->distinct || select->top > 0 || !select->into.isEmpty())
        RaiseEngine(SyntaxInTransform);
    QueryWriter queries(m_context, &m_catalog, nullptr);
    Scope scope(nullptr);
    SelectParts parts = queries.WriteParts(*select, query.orderBy, scope);
    ExpressionWriter pivots(m_context, &m_catalog, scope, AggregateRule::InGroupBy);
    const Written pivot = pivots.Value(*transform.pivot);
    ExpressionWriter values(m_context, &m_catalog, scope, AggregateRule::Allowed);
    const Written value = values.Value(*transform.value);
    m_context.RaiseMistakes();
    if (!values.SawAggregate())
        RaiseEngine(NotInAggregate, m_context.Text(*transform.value).toString());
    GroupingCheck(select->groupBy, scope, m_context).Check(*transform.value);
    plan.verb = Verb::Select;
    if (transform.headings.empty() && !headings) {
        plan.headingsText = HeadingsText(parts, pivot);
        return;
    }
    const auto columns = headings ? ToldColumns(*headings, pivot) : ListedColumns(transform, pivots);
    if (columns.size() + parts.columns.size() > mostColumns)
        RaiseEngine(QueryTooComplex);
    for (const PivotColumn& column : columns) {
        const QString here = column.value.null ? pivot.At(AddPrecedence) + u" IS NULL"_s
                                               : pivots.Compare(Op::Equal, pivot, column.value).text;
        values.FilterAggregates(here);
        WrittenColumn cell;
        cell.name = column.name;
        cell.value = Delivered(value);
        // A cell without rows is NULL whatever the aggregate.
        cell.value.text = u"CASE WHEN count(*) FILTER (WHERE "_s + here + u") > 0 THEN "_s +
                          Delivered(values.Value(*transform.value)).text + u" END"_s;
        cell.value.precedence = PrimaryPrecedence;
        parts.columns.push_back(std::move(cell));
    }
    m_context.RaiseMistakes();
    plan.text = queries.Assemble(parts, ColumnNames::None);
    for (const WrittenColumn& column : parts.columns)
        plan.columns.push_back({column.name, column.value.type});
}

} // namespace engine::sql
