#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Binder.h"
#include "platform/engine/sql/Writer.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int firstNameless = 1000;

/// Brings a delivered value of one SELECT into the form of the union's column of `type`.
Bound ForUnion(const Bound& value, DataType type) {
    const bool amount = type == DataType::Currency;
    if ((value.type == DataType::Currency) == amount)
        return value;
    if (amount)
        return value.As(type, Units(value));
    Bound number = DeliveredValue(value, value.term);
    number.money.reset();
    number.type = type;
    return number;
}

bool IsConstant(const Node& node) {
    if (node.kind == NodeKind::Name || node.kind == NodeKind::Call || node.query)
        return false;
    return std::ranges::all_of(node.children, [](const NodePtr& child) { return IsConstant(*child); });
}

/// A constant that SQLite does not take for the position of a column.
Bound NoPosition(const Bound& constant) {
    Bound value = constant.As(constant.type, MakeTerm(u"(% || '')", {constant.At(ConcatPrecedence)}));
    value.money.reset();
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
void AddAll(const SelectItem& item, const Scope& scope, std::vector<BoundColumn>& columns) {
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
void NameColumns(const Scope& scope, std::vector<BoundColumn>& columns) {
    int nameless = firstNameless;
    QStringList names;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const BoundColumn& column = columns[i];
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
                      BoundSelect& bound) {
    std::vector<TermPtr> rowIds;
    bool hidden = false;
    for (std::size_t i = 0; i < scope.sources.size(); ++i) {
        const ScopeSource& source = scope.sources[i];
        const bool listed = std::ranges::any_of(select.items, [&](const SelectItem& item) {
            return !item.expression && SameName(item.qualifier, source.name);
        });
        if (!used[i] && !listed)
            hidden = true;
        else if (source.table)
            rowIds.push_back(MakeTerm(source.RowId()));
        else
            return;
    }
    if (hidden && !rowIds.empty())
        bound.groupBy = std::move(rowIds);
}

/// Whether an expression of ORDER BY is one of the columns of a SELECT DISTINCT: written alike or of the same
/// meaning.
bool IsShown(const Node& node, const Bound& value, const Select& select, const Scope& scope,
             const BoundSelect& bound) {
    const QString text = Writer().Text(Delivered(value).term);
    return std::ranges::any_of(
               bound.columns, [&](const auto& column) { return Writer().Text(column.value.term) == text; }) ||
           std::ranges::any_of(select.items, [&](const SelectItem& item) {
               return item.expression && scope.Same(*item.expression, node);
           });
}

/// Collects the sources into the scope first, since any ON may name any of them.
class FromBinder {
public:
    FromBinder(Context& context, Scope& scope)
        : m_context(context)
        , m_scope(scope) {}

    void Collect(const Source& source) {
        if (source.left) {
            Collect(*source.left);
            Collect(*source.right);
        } else if (source.query) {
            AddQuery(source);
        } else {
            AddTable(source);
        }
    }

    TermPtr Bind(const Source& source) { return source.left ? BindJoin(source) : m_terms[m_next++]; }

private:
    void AddTable(const Source& source) {
        const TableInfo* table = m_context.FindTable(source.table);
        if (!table)
            RaiseEngine(UnknownTable, source.table);
        ScopeSource added{
            source.alias.isEmpty() ? table->name : source.alias, m_context.NewAlias(), table, {}};
        for (const ColumnInfo& column : table->columns) {
            Bound value = StoredValue(added.alias + u'.' + QuoteName(column.name), column.type, column.size);
            // Files of before may hold NULL where No is meant; a row that an outer join leaves out holds
            // none.
            if (column.type == DataType::Bit)
                value.term = MakeTerm(u"CASE WHEN % IS NOT NULL THEN ifnull(%, 0) END",
                                      {MakeTerm(added.RowId()), value});
            value.collated = value.IsText();
            added.columns.push_back({column.name, std::move(value)});
        }
        m_terms.push_back(MakeTerm(QuoteName(table->name) + u" AS "_s + added.alias));
        m_scope.sources.push_back(std::move(added));
    }

    void AddQuery(const Source& source) {
        const QueryPtr query = QueryBinder(m_context, nullptr).Bind(*source.query);
        ScopeSource added{source.alias, m_context.NewAlias(), nullptr, {}};
        for (const BoundColumn& column : query->columns) {
            const QString place = QString::number(added.columns.size());
            Bound value = DeliveredValue(column.value, MakeTerm(added.alias + u".c"_s + place));
            value.nullable = true; // an outer join may leave it out
            value.null = false;
            added.columns.push_back({column.name, std::move(value)});
        }
        m_terms.push_back(MakeTerm(u"(%) AS "_s + added.alias, {query}));
        m_scope.sources.push_back(std::move(added));
    }

    TermPtr BindJoin(const Source& join) {
        const std::size_t first = m_next;
        TermPtr left = Bind(*join.left);
        TermPtr right = Bind(*join.right);
        ExpressionBinder binder(m_context, m_scope, &AggregateInJoin);
        binder.LimitSources(first, m_next);
        const Bound condition = binder.Condition(*join.on);
        // A right join is a left join seen from the other side, which every SQLite knows.
        if (join.join == JoinKind::Right)
            std::swap(left, right);
        return MakeTerm(join.join == JoinKind::Inner ? u"% JOIN % ON %" : u"% LEFT JOIN % ON %",
                        {left, {right, PrimaryPrecedence}, condition}, JoinPrecedence);
    }

    Context& m_context;
    Scope& m_scope;
    std::vector<TermPtr> m_terms; ///< of each source
    std::size_t m_next = 0;       ///< source that is bound next
};

} // namespace

TermPtr BindFrom(Context& context, Scope& scope, const std::vector<SourcePtr>& from) {
    FromBinder binder(context, scope);
    for (const auto& source : from)
        binder.Collect(*source);
    QString form;
    std::vector<Operand> sources;
    for (const auto& source : from) {
        // A join behind a comma is one operand.
        sources.emplace_back(binder.Bind(*source), sources.empty() ? 0 : PrimaryPrecedence);
        form += form.isEmpty() ? u"%"_s : u", %"_s;
    }
    return form.isEmpty() ? nullptr : MakeTerm(form, std::move(sources));
}

QueryPtr QueryBinder::BindOneColumn(const Query& query) {
    QueryPtr bound = Bind(query);
    if (bound->columns.size() != 1)
        RaiseEngine(SubqueryColumns);
    return bound;
}

QueryPtr QueryBinder::Bind(const Query& query) {
    const QueryPart& first = query.parts.front();
    if (query.parts.size() > 1 || (first.query && !query.orderBy.empty()))
        return BindUnion(query);
    if (first.query)
        return Bind(*first.query);
    Scope scope{m_outer};
    BoundSelect select = BindSelect(*first.select, query.orderBy, scope);
    BoundQuery bound;
    bound.columns = select.columns;
    bound.singleRow = (select.aggregated && !select.groups) ||
                      (select.top == 1 && !select.percent && select.orderBy.empty());
    bound.parts.push_back(std::move(select));
    return std::make_shared<BoundQuery>(std::move(bound));
}

BoundSelect QueryBinder::BindUnionPart(const QueryPart& part) {
    BoundSelect bound;
    if (part.select) {
        Scope scope{m_outer};
        bound = BindSelect(*part.select, {}, scope);
    } else {
        const QueryPtr inner = Bind(*part.query);
        bound.from = MakeTerm(u"(%)", {inner});
        for (const BoundColumn& column : inner->columns) {
            const TermPtr name = MakeTerm(u'c' + QString::number(bound.columns.size()));
            bound.columns.push_back({column.name, Delivered(DeliveredValue(column.value, name))});
        }
    }
    bound.all = part.all;
    return bound;
}

QueryPtr QueryBinder::BindUnion(const Query& query) {
    BoundQuery bound;
    for (const QueryPart& part : query.parts) {
        const BoundSelect& next = bound.parts.emplace_back(BindUnionPart(part));
        if (bound.parts.size() == 1) {
            bound.columns = next.columns;
            continue;
        }
        if (next.columns.size() != bound.columns.size())
            RaiseEngine(UnionColumnsDiffer);
        for (std::size_t i = 0; i < next.columns.size(); ++i) {
            Bound& value = bound.columns[i].value;
            const Bound& other = next.columns[i].value;
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
    // Equal rows are found by the columns' own collations.
    for (BoundSelect& part : bound.parts)
        for (std::size_t i = 0; i < bound.columns.size(); ++i)
            part.columns[i].value = Folded(ForUnion(part.columns[i].value, bound.columns[i].value.type));
    bound.orderBy = BindUnionOrder(query, bound.columns);
    return std::make_shared<BoundQuery>(std::move(bound));
}

/// A union sorts by the names of its first SELECT or by position.
std::vector<OrderTerm> QueryBinder::BindUnionOrder(const Query& query,
                                                   const std::vector<BoundColumn>& columns) {
    std::vector<OrderTerm> order;
    for (const OrderItem& item : query.orderBy) {
        std::size_t place = columns.size();
        if (const auto told = PlaceOf(*item.expression, columns.size())) {
            place = *told;
        } else if (item.expression->kind == NodeKind::Name) {
            const auto found = std::ranges::find_if(
                columns, [&](const BoundColumn& c) { return SameName(c.name, item.expression->name); });
            place = static_cast<std::size_t>(found - columns.begin());
        }
        if (place == columns.size()) {
            m_context.AddUnknownName(m_context.Text(*item.expression).toString());
            continue;
        }
        const Bound& value = columns[place].value;
        order.push_back({value.As(value.type, MakeTerm(QString::number(place + 1))), item.descending});
    }
    return order;
}

BoundSelect QueryBinder::BindSelect(const Select& select, const std::vector<OrderItem>& orderBy,
                                    Scope& scope) {
    BoundSelect bound;
    bound.distinct = select.distinct;
    bound.top = select.top;
    bound.percent = select.percent;
    bound.from = BindFrom(m_context, scope, select.from);
    bound.oneTable = scope.OneTable();
    BindColumns(select, scope, bound);
    if (select.where)
        bound.where = ExpressionBinder(m_context, scope, &AggregateInWhere).Condition(*select.where).term;
    BindGroups(select, scope, bound);
    BindOrder(select, orderBy, scope, bound);
    // Unknown names are told first.
    if ((bound.aggregated || bound.groups) && m_context.UnknownNames().isEmpty())
        CheckGrouped(select, orderBy, scope);
    return bound;
}

void QueryBinder::BindColumns(const Select& select, const Scope& scope, BoundSelect& bound) {
    ExpressionBinder binder(m_context, scope, 0);
    binder.OfferAliases(select.items);
    bool all = false;
    for (const SelectItem& item : select.items) {
        if (!item.expression) {
            AddAll(item, scope, bound.columns);
            all = all || item.qualifier.isEmpty();
            continue;
        }
        BoundColumn column{item.alias, Delivered(binder.ColumnValue(*item.expression))};
        const Node& name = *item.expression;
        if (name.kind == NodeKind::Name && item.alias.isEmpty())
            column.place = scope.Find(name.qualifier, name.name);
        if (column.place)
            column.name = scope.Column(*column.place).name;
        bound.columns.push_back(std::move(column));
    }
    bound.aggregated = binder.SawAggregate();
    NameColumns(scope, bound.columns);
    if (select.distinctRow && !all && !bound.aggregated && select.groupBy.empty())
        KeepDistinctRows(select, scope, binder.UsedSources(), bound);
}

void QueryBinder::BindGroups(const Select& select, const Scope& scope, BoundSelect& bound) {
    bound.groups = !select.groupBy.empty();
    ExpressionBinder binder(m_context, scope, &AggregateInGroupBy);
    for (const auto& group : select.groupBy) {
        const Bound value = binder.Value(*group);
        bound.groupBy.push_back(IsConstant(*group) ? NoPosition(value).term : Folded(value).term);
    }
    if (!select.having)
        return;
    bound.having = ExpressionBinder(m_context, scope, 0).Condition(*select.having).term;
    if (!bound.groups && !bound.aggregated && !bound.columns.empty()) {
        // SQLite takes a query without GROUP BY for a grouped one only by an aggregate among its columns.
        Bound& first = bound.columns.front().value;
        first = first.As(first.type, MakeTerm(u"CASE WHEN count(*) >= 0 THEN % END", {first}));
    }
    bound.aggregated = true;
}

void QueryBinder::BindOrder(const Select& select, const std::vector<OrderItem>& orderBy, const Scope& scope,
                            BoundSelect& bound) {
    const bool grouped = bound.aggregated || bound.groups;
    ExpressionBinder binder(m_context, scope, grouped ? nullptr : &AggregateInOrderBy);
    for (const OrderItem& item : orderBy) {
        Bound value;
        if (const auto place = PlaceOf(*item.expression, bound.columns.size())) {
            value = bound.columns[*place].value;
        } else {
            value = binder.Value(*item.expression);
            if (binder.SawOuter())
                RaiseEngine(ExpressionTooComplex); // it would be the same for all rows
            if (IsConstant(*item.expression))
                value = NoPosition(value);
            if (select.distinct && m_context.UnknownNames().isEmpty() &&
                !IsShown(*item.expression, value, select, scope, bound))
                RaiseEngine(OrderByConflictsWithDistinct, m_context.Text(*item.expression).toString());
        }
        bound.orderBy.push_back({value, item.descending});
    }
}

void QueryBinder::CheckGrouped(const Select& select, const std::vector<OrderItem>& orderBy,
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

} // namespace engine::sql
