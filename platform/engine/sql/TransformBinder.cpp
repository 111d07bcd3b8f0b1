// TRANSFORM: one row for each group, one column for each value of the pivot.
#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Binder.h"

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

std::vector<BoundColumn> ListedColumns(const Transform& transform, ExpressionBinder& binder) {
    std::vector<BoundColumn> columns;
    for (const NodePtr& heading : transform.headings) {
        const QString name = ColumnName(ListedText(*heading));
        columns.push_back({name, binder.Value(*heading)});
    }
    return columns;
}

std::vector<BoundColumn> ToldColumns(const std::vector<Heading>& headings, const Bound& pivot) {
    std::vector<BoundColumn> columns;
    for (const Heading& heading : headings) {
        const bool negative = heading.literal.startsWith(u'-');
        Bound value = StoredValue(negative ? u'(' + heading.literal + u')' : heading.literal, pivot.type);
        value.null = heading.literal == u"NULL";
        columns.push_back({ColumnName(heading.name), std::move(value)});
    }
    return columns;
}

/// The query that delivers the headings, as SQLite writes them and by name:
/// `SELECT quote(q2.c0), CASE ... END FROM (SELECT DISTINCT q1."a02code" AS c0 FROM ...) AS q2`.
BoundSelect HeadingsOf(BoundSelect rows, const Bound& pivot, const QString& alias) {
    BoundQuery values;
    values.parts.emplace_back();
    values.parts.front().distinct = true;
    values.parts.front().columns = {{{}, Delivered(pivot)}};
    values.parts.front().from = std::move(rows.from);
    values.parts.front().where = std::move(rows.where);
    const Bound heading = DeliveredValue(pivot, MakeTerm(alias + u".c0"_s));
    const Bound kept = Delivered(heading);
    const TermPtr name =
        pivot.IsDate() ? MakeTerm(u"zv_datetext(%)", {kept}) : MakeTerm(u"zv_cstr(%)", {Argument(heading)});
    BoundSelect headings;
    headings.columns = {
        {{}, MakeBound(DataType::Text, MakeTerm(u"quote(%)", {kept}))},
        {{}, MakeBound(DataType::Text, MakeTerm(u"CASE WHEN % IS NULL THEN '<>' ELSE % END", {kept, name}))}};
    headings.from = MakeTerm(u"(%) AS "_s + alias, {std::make_shared<const BoundQuery>(std::move(values))});
    headings.orderBy = {{heading}};
    return headings;
}

} // namespace

BoundTransform BindTransform(Context& context, const Transform& transform, const Query& query,
                             const std::vector<Heading>* headings) {
    const Select* select = query.parts.size() == 1 ? query.parts.front().select.get() : nullptr;
    if (!select || select->groupBy.empty() || select->distinct || select->top > 0 || !select->into.isEmpty())
        RaiseEngine(SyntaxInTransform);
    Scope scope;
    BoundSelect bound = QueryBinder(context, nullptr).BindSelect(*select, query.orderBy, scope);
    ExpressionBinder pivots(context, scope, &AggregateInGroupBy);
    const Bound pivot = pivots.Value(*transform.pivot);
    ExpressionBinder values(context, scope, 0);
    const Bound value = Delivered(values.Value(*transform.value));
    context.RaiseMistakes();
    if (!values.SawAggregate() || !scope.IsDecided(*transform.value, select->groupBy))
        RaiseEngine(NotInAggregate, context.Text(*transform.value).toString());
    if (transform.headings.empty() && !headings)
        return {HeadingsOf(std::move(bound), pivot, context.NewAlias()), true};
    const auto columns = headings ? ToldColumns(*headings, pivot) : ListedColumns(transform, pivots);
    if (columns.size() + bound.columns.size() > mostColumns)
        RaiseEngine(QueryTooComplex);
    for (const BoundColumn& column : columns) {
        const Bound here = column.value.null
                               ? MakeCondition(u"% IS NULL", {pivot.At(AddPrecedence)}, EqualPrecedence)
                               : pivots.Compare(Op::Equal, pivot, column.value);
        values.FilterAggregates(here.term);
        // A cell without rows is NULL whatever the aggregate.
        const TermPtr cell = MakeTerm(u"CASE WHEN count(*) FILTER (WHERE %) > 0 THEN % END",
                                      {here, Delivered(values.Value(*transform.value))});
        bound.columns.push_back({column.name, value.As(value.type, cell)});
    }
    context.RaiseMistakes();
    return {std::move(bound)};
}

} // namespace engine::sql
