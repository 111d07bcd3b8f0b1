// TRANSFORM: one row for each group, one column for each value of the pivot.
#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/QueryWriter.h"

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

struct PivotColumn {
    Written value;
    QString name;
};

std::vector<PivotColumn> ListedColumns(const Transform& transform, ExpressionWriter& writer) {
    std::vector<PivotColumn> columns;
    for (const NodePtr& heading : transform.headings) {
        const QString name = ColumnName(ListedText(*heading));
        columns.push_back({writer.Value(*heading), name});
    }
    return columns;
}

std::vector<PivotColumn> ToldColumns(const std::vector<Heading>& headings, const Written& pivot) {
    std::vector<PivotColumn> columns;
    for (const Heading& heading : headings) {
        const bool negative = heading.literal.startsWith(u'-');
        Written value = StoredValue(negative ? u'(' + heading.literal + u')' : heading.literal, pivot.type);
        value.null = heading.literal == u"NULL";
        columns.push_back({std::move(value), ColumnName(heading.name)});
    }
    return columns;
}

QString HeadingsText(const SelectParts& parts, const Written& pivot) {
    const Written heading = DeliveredValue(pivot, u"c0"_s);
    const QString name = pivot.IsDate() ? u"zv_datetext(c0)"_s : u"zv_cstr("_s + Argument(heading) + u')';
    const QString& condition = parts.where.text;
    const QString where = condition.isEmpty() ? QString() : u" WHERE "_s + condition;
    return u"SELECT quote(c0), CASE WHEN c0 IS NULL THEN '<>' ELSE "_s + name +
           u" END FROM (SELECT DISTINCT "_s + Folded(pivot).text + u" AS c0 FROM "_s + parts.from + where +
           u") ORDER BY "_s + Sorted(heading).text;
}

} // namespace

void WriteTransform(Context& context, const Transform& transform, const Query& query,
                    const std::vector<Heading>* headings, Plan& plan) {
    const Select* select = query.parts.size() == 1 ? query.parts.front().select.get() : nullptr;
    if (!select || select->groupBy.empty() || select->distinct || select->top > 0 || !select->into.isEmpty())
        RaiseEngine(SyntaxInTransform);
    Scope scope;
    SelectParts parts = QueryWriter(context, nullptr).WriteParts(*select, query.orderBy, scope);
    ExpressionWriter pivots(context, scope, AggregateInGroupBy);
    const Written pivot = pivots.Value(*transform.pivot);
    ExpressionWriter values(context, scope, 0);
    const Written value = Delivered(values.Value(*transform.value));
    context.RaiseMistakes();
    if (!values.SawAggregate() || !scope.IsDecided(*transform.value, select->groupBy))
        RaiseEngine(NotInAggregate, context.Text(*transform.value).toString());
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
        // A cell without rows is NULL whatever the aggregate.
        const QString cell = u"CASE WHEN count(*) FILTER (WHERE "_s + here + u") > 0 THEN "_s +
                             Delivered(values.Value(*transform.value)).text + u" END"_s;
        parts.columns.push_back({column.name, value.As(cell, value.type)});
    }
    context.RaiseMistakes();
    plan.text = parts.Assemble();
    for (const WrittenColumn& column : parts.columns)
        plan.columns.push_back({column.name, column.value.type});
}

} // namespace engine::sql
