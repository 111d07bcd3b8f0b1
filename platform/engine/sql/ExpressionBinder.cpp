#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Binder.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int deepestBinding = 600;

/// Numbers as they are; what may be a text goes through the engine's addition, which converts or fails.
Bound ForArithmetic(const Bound& value) {
    if (!value.IsText() && !value.IsUnknown())
        return value;
    return value.As(DataType::Double, MakeTerm(u"zv_add(%, 0)", {value}));
}

/// A result of whole numbers, which becomes a fraction where it grows beyond 32 bits.
Bound Whole(const TermPtr& term) {
    Bound whole = MakeBound(DataType::Long, MakeTerm(u"zv_whole(%)", {term}));
    whole.wide = true;
    return whole;
}

/// Whether the two can be compared in units, and at least one is an amount of money.
bool HasAmount(std::initializer_list<const Bound*> values) {
    return std::ranges::all_of(values, [](const Bound* v) { return v->null || v->IsNumber(); }) &&
           std::ranges::any_of(values, [](const Bound* v) { return v->IsAmount(); });
}

/// A date as the text that the regional settings give it.
Bound DateAsText(const Bound& value) {
    return value.IsDate() ? value.As(DataType::Text, MakeTerm(u"zv_datetext(%)", {value})) : value;
}

Bound Negated(bool negated, const Bound& condition) {
    return negated ? MakeCondition(u"NOT %", {condition.At(EqualPrecedence)}, NotPrecedence) : condition;
}

TermPtr Joined(const Operator& op, const Bound& left, const Bound& right) {
    const QString form = QString::fromUtf16(op.form);
    if (op.precedence == PrimaryPrecedence)
        return MakeTerm(form, {left, right});
    // Of comparisons none stands beside another, the other operators go from left to right.
    const bool compares = op.precedence == EqualPrecedence;
    return MakeTerm(form,
                    {left.At(compares ? AddPrecedence : op.precedence),
                     right.At(compares ? AddPrecedence : op.precedence + 1)},
                    op.precedence);
}

/// Values that one term joins by commas: `%, %`.
QString Marks(std::size_t count, QStringView between = u", ") {
    return QStringList(static_cast<qsizetype>(count), u"%"_s).join(between);
}

/// The type of a sum, difference or product of numbers; with NULL on one side the other tells it.
DataType ResultType(Op op, const Bound& left, const Bound& right) {
    if (left.null || right.null)
        return left.null ? right.type : left.type;
    if (!left.IsDate() && !right.IsDate())
        return CommonType(left.type, right.type);
    const bool date = op == Op::Add || (op == Op::Subtract && !right.IsDate());
    return date ? DataType::Date : DataType::Double;
}

/// CURRENCY stays CURRENCY in a sum with any number, in a product with a whole number or another amount.
std::optional<Bound> Amount(const Operator& op, const Bound& left, const Bound& right) {
    const auto number = [](const Bound& value) { return value.null || value.Kind() == TypeKind::Number; };
    if (!op.amounts || !HasAmount({&left, &right}) || !number(left) || !number(right))
        return {};
    if (op.op == Op::Multiply && ResultType(op.op, left, right) != DataType::Currency && !left.null &&
        !right.null)
        return {};
    return MakeAmount(MakeTerm(QString::fromUtf16(op.amounts), {Units(left), Units(right)}));
}

/// Texts and whole numbers join as they are; anything else has a text of its own.
Bound Concatenated(const Bound& left, const Bound& right) {
    const auto plain = [](const Bound& value) {
        return value.IsText() || (IsWholeNumber(value.type) && !value.wide) || value.null;
    };
    const auto filled = [](const Bound& value) {
        return value.nullable ? value.As(value.type, MakeTerm(u"coalesce(%, '')", {value})) : value;
    };
    Bound result =
        MakeBound(DataType::Text, plain(left) && plain(right)
                                      ? Joined(OperatorOf(Op::Concat), filled(left), filled(right))
                                      : MakeTerm(u"zv_concat(%, %)", {Argument(left), Argument(right)}));
    result.nullable = false;
    return result;
}

} // namespace

void ExpressionBinder::LimitSources(std::size_t first, std::size_t end) {
    m_first = first;
    m_end = end;
}

Bound ExpressionBinder::Bind(const Node& node) {
    if (++m_depth > deepestBinding)
        RaiseEngine(QueryTooComplex);
    Bound bound = BindKind(node);
    --m_depth;
    return bound;
}

Bound ExpressionBinder::BindKind(const Node& node) {
    switch (node.kind) {
    case NodeKind::Null:
        return MakeNull();
    case NodeKind::Truth: {
        Bound truth = MakeCondition(node.negated ? u"0" : u"1");
        truth.nullable = false;
        return truth;
    }
    case NodeKind::Literal:
        return m_context.BindLiteral(node);
    case NodeKind::Name:
        return BindName(node);
    case NodeKind::Not:
        return Negated(true, Condition(*node.children[0]));
    case NodeKind::Negate:
        return BindNegate(node);
    case NodeKind::Binary:
        return BindBinary(node);
    case NodeKind::Between:
        return BindBetween(node);
    case NodeKind::InList:
        return BindInList(node);
    case NodeKind::InQuery:
        return BindInQuery(Value(*node.children[0]), *node.query, node.negated);
    case NodeKind::IsNull:
        return BindIsNull(*node.children[0], node.negated);
    case NodeKind::Call:
        return BindCall(node);
    case NodeKind::Subquery:
        return BindSubquery(node);
    case NodeKind::Exists:
        return MakeCondition(u"EXISTS (%)", {QueryBinder(m_context, &m_scope).Bind(*node.query)});
    case NodeKind::Quantified:
        return BindQuantified(node);
    }
    return {};
}

Bound ExpressionBinder::ColumnValue(const Node& node) {
    const Bound value = Bind(node);
    return value.condition ? AsNumber(value) : value;
}

Bound ExpressionBinder::Condition(const Node& node) {
    Bound value = Bind(node);
    if (value.condition || value.null) {
        value.condition = true;
        return value;
    }
    return MakeCondition(u"% <> 0", {ForArithmetic(value).At(AddPrecedence)}, EqualPrecedence);
}

Bound ExpressionBinder::BindName(const Node& node) {
    for (const Scope* scope = &m_scope; scope; scope = scope->outer) {
        const bool own = scope == &m_scope;
        const bool limited = own && m_end > 0;
        const auto place = limited ? scope->Find(node.qualifier, node.name, m_first, m_end)
                                   : scope->Find(node.qualifier, node.name);
        if (place) {
            (own ? m_sawOwn : m_sawOuter) = true;
            if (own)
                m_used[place->source] = true;
            return scope->Column(*place).value;
        }
        if (limited && scope->Find(node.qualifier, node.name))
            RaiseEngine(JoinFieldNotIncluded, node.name);
    }
    if (node.qualifier.isEmpty()) {
        if (const auto alias = BindAlias(node.name))
            return *alias;
        const bool yes = SameName(node.name, u"YES"_s);
        if (yes || SameName(node.name, u"NO"_s) || SameName(node.name, u"OFF"_s))
            return MakeCondition(yes ? u"1" : u"0");
    }
    m_context.AddUnknownName(node.qualifier.isEmpty() ? node.name : node.qualifier + u'.' + node.name);
    return MakeBound(DataType::Unknown, MakeTerm(u"NULL"));
}

std::optional<Bound> ExpressionBinder::BindAlias(const QString& name) {
    for (const SelectItem& item : m_items) {
        if (!item.expression || !SameName(item.alias, name))
            continue;
        if (std::ranges::find(m_openAliases, &item) != m_openAliases.end())
            return {}; // an alias that means itself is no name at all
        m_openAliases.push_back(&item);
        Bound value = Bind(*item.expression);
        m_openAliases.pop_back();
        return value;
    }
    return {};
}

Bound ExpressionBinder::BindNegate(const Node& node) {
    const Bound number = ForArithmetic(Value(*node.children[0]));
    if (number.IsAmount())
        return MakeAmount(MakeTerm(u"zv_msub(0, %)", {number.money}));
    const TermPtr term = MakeTerm(u"-%", {number.At(PrimaryPrecedence)}, CollatePrecedence);
    if (IsWholeNumber(number.type) && number.type != DataType::Short &&
        (number.type != DataType::Long || node.children[0]->kind != NodeKind::Literal))
        return Whole(term);
    Bound negative = number.As(number.IsDate() ? DataType::Double : number.type, term);
    negative.null = false;
    return negative;
}

Bound ExpressionBinder::BindBinary(const Node& node) {
    const Operator& op = OperatorOf(node.op);
    if (op.level <= AndLevel)
        return BindLogical(node);
    if (node.op == Op::Like)
        return BindLike(node);
    const Bound left = Value(*node.children[0]);
    const Bound right = Value(*node.children[1]);
    if (op.level == ComparisonLevel)
        return Compare(node.op, left, right);
    if (node.op == Op::Concat)
        return Concatenated(DateAsText(left), DateAsText(right));
    return BindArithmetic(op, left, right);
}

Bound ExpressionBinder::BindLogical(const Node& node) {
    const Bound left = Negated(node.op == Op::Imp, Condition(*node.children[0]));
    return MakeCondition(Joined(OperatorOf(node.op), left, Condition(*node.children[1])));
}

void ExpressionBinder::CheckComparable(const Bound& left, const Bound& right) {
    const bool same = left.Kind() == right.Kind() || (left.IsNumber() && right.IsNumber());
    if (!same && left.Kind() != TypeKind::Unknown && right.Kind() != TypeKind::Unknown)
        m_context.AddTypeMismatch();
}

Bound ExpressionBinder::Compare(Op op, const Bound& left, const Bound& right) {
    CheckComparable(left, right);
    const bool unknown = left.Kind() == TypeKind::Unknown || right.Kind() == TypeKind::Unknown;
    Bound a = left;
    Bound b = right;
    if (unknown && !left.null && !right.null) {
        a.term = MakeTerm(u"zv_compare(%, %)", {left, right});
        b.term = MakeTerm(u"0");
    } else if (HasAmount({&left, &right})) {
        a.term = ComparedUnits(left);
        b.term = ComparedUnits(right);
    } else if (left.IsText() && right.IsText()) {
        const bool equality = op == Op::Equal || op == Op::NotEqual;
        a = !equality ? Sorted(left) : right.collated ? left : Folded(left);
    }
    return MakeCondition(Joined(OperatorOf(op), a, b));
}

Bound ExpressionBinder::BindArithmetic(const Operator& op, Bound left, Bound right) {
    const bool sum = op.op == Op::Add;
    if (!sum) {
        left = ForArithmetic(left);
        right = ForArithmetic(right);
    }
    if (const auto amount = Amount(op, left, right))
        return *amount;
    if (sum && left.IsText() && right.IsText())
        return MakeBound(CommonType(left.type, right.type), Joined(OperatorOf(Op::Concat), left, right));
    if (sum && !left.null && !right.null && !(left.IsNumber() && right.IsNumber())) {
        const bool unknown = left.IsUnknown() || right.IsUnknown();
        return MakeBound(unknown ? DataType::Unknown : DataType::Double,
                         MakeTerm(u"zv_add(%, %)", {left, right}));
    }
    const TermPtr term = Joined(op, left, right);
    if (op.result != DataType::Unknown) {
        Bound result = MakeBound(left.null || right.null ? ResultType(op.op, left, right) : op.result, term);
        result.wide = op.result == DataType::Long;
        return result;
    }
    const bool whole = IsWholeNumber(left.type) && IsWholeNumber(right.type);
    const bool fits = left.type < DataType::Long && right.type < DataType::Long; // any result, in 32 bits
    if (whole)
        return fits ? MakeBound(DataType::Long, term) : Whole(term);
    // The engine's addition refuses what has grown beyond all numbers.
    return MakeBound(ResultType(op.op, left, right),
                     op.op == Op::Multiply ? MakeTerm(u"zv_add(%, 0)", {term}) : term);
}

bool ExpressionBinder::IsPlainPattern(const Node& literal) {
    return literal.kind == NodeKind::Literal && literal.pattern && literal.token.kind == TokenKind::Text &&
           !functions::HasWildcards(Lexer::LiteralValue(literal.token).Text());
}

Bound ExpressionBinder::BindLike(const Node& node) {
    const Bound value = DateAsText(Value(*node.children[0]));
    const Bound pattern = DateAsText(Value(*node.children[1]));
    if (IsPlainPattern(*node.children[1]) && value.IsText())
        return Compare(node.negated ? Op::NotEqual : Op::Equal, value, pattern);
    return Negated(node.negated, MakeCondition(u"zv_like(%, %)", {Argument(value), Argument(pattern)}));
}

Bound ExpressionBinder::BindBetween(const Node& node) {
    const Bound value = Value(*node.children[0]);
    const Bound low = Value(*node.children[1]);
    const Bound high = Value(*node.children[2]);
    CheckComparable(value, low);
    CheckComparable(value, high);
    // The bounds may stand in either order.
    if (value.IsUnknown() || low.IsUnknown() || high.IsUnknown())
        return Negated(
            node.negated,
            MakeCondition(u"% AND % OR % AND %",
                          {Compare(Op::GreaterEqual, value, low), Compare(Op::LessEqual, value, high),
                           Compare(Op::GreaterEqual, value, high), Compare(Op::LessEqual, value, low)},
                          OrPrecedence));
    const bool amounts = HasAmount({&value, &low, &high});
    const auto term = [&](const Bound& one) { return amounts ? ComparedUnits(one) : one.term; };
    const TermPtr first = term(value.IsText() ? Sorted(low) : low);
    const TermPtr last = term(high);
    return MakeCondition(
        node.negated ? u"% NOT BETWEEN min(%, %) AND max(%, %)" : u"% BETWEEN min(%, %) AND max(%, %)",
        {{term(value.IsText() ? Sorted(value) : value), AddPrecedence}, first, last, first, last},
        EqualPrecedence);
}

Bound ExpressionBinder::BindInList(const Node& node) {
    const Bound value = Value(*node.children[0]);
    bool unknown = value.Kind() == TypeKind::Unknown;
    bool amounts = false;
    std::vector<Bound> items;
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        items.push_back(Value(*node.children[i]));
        CheckComparable(value, items.back());
        unknown = unknown || items.back().IsUnknown();
        amounts = amounts || HasAmount({&value, &items.back()});
    }
    std::vector<Operand> operands;
    if (!unknown)
        operands.push_back(amounts ? Operand(ComparedUnits(value)) : Folded(value).At(AddPrecedence));
    for (const Bound& item : items)
        operands.push_back(unknown   ? Operand(Compare(Op::Equal, value, item))
                           : amounts ? Operand(ComparedUnits(item))
                                     : Operand(item));
    if (unknown)
        return Negated(node.negated, MakeCondition(Marks(items.size(), u" OR "), operands, OrPrecedence));
    return MakeCondition((node.negated ? u"% NOT IN ("_s : u"% IN ("_s) + Marks(items.size()) + u')',
                         operands, EqualPrecedence);
}

Bound ExpressionBinder::BindInQuery(const Bound& value, const Query& query, bool negated) {
    const QueryPtr inner = QueryBinder(m_context, &m_scope).BindOneColumn(query);
    const Bound column = DeliveredValue(inner->columns.front().value, MakeTerm(u"c0"));
    CheckComparable(value, column);
    const bool amounts = HasAmount({&value, &column});
    Operand rows = inner;
    if (column.IsAmount() || amounts)
        rows = MakeTerm(u"SELECT % FROM (%)", {amounts ? ComparedUnits(column) : column.term, inner});
    return MakeCondition(negated ? u"% NOT IN (%)" : u"% IN (%)",
                         {amounts ? Operand(ComparedUnits(value)) : Folded(value).At(AddPrecedence), rows},
                         EqualPrecedence);
}

Bound ExpressionBinder::BindIsNull(const Node& value, bool negated) {
    Bound bound = MakeCondition(negated ? u"% IS NOT NULL" : u"% IS NULL", {Value(value).At(AddPrecedence)},
                                EqualPrecedence);
    bound.nullable = false;
    return bound;
}

Bound ExpressionBinder::BindSubquery(const Node& node) {
    const QueryPtr inner = QueryBinder(m_context, &m_scope).BindOneColumn(*node.query);
    Bound bound =
        DeliveredValue(inner->columns.front().value,
                       MakeTerm(inner->singleRow ? u"(%)" : u"(SELECT zv_single(c0) FROM (%))", {inner}));
    bound.nullable = true;
    return bound;
}

Bound ExpressionBinder::BindQuantified(const Node& node) {
    const bool aggregatesBefore = std::exchange(m_sawAggregate, false);
    const Bound value = Value(*node.children[0]);
    const bool aggregated = m_sawAggregate;
    m_sawAggregate = m_sawAggregate || aggregatesBefore;
    if ((node.op == Op::Equal && !node.all) || (node.op == Op::NotEqual && node.all))
        return BindInQuery(value, *node.query, node.all);
    const QueryPtr inner = QueryBinder(m_context, &m_scope).BindOneColumn(*node.query);
    const Bound column = DeliveredValue(inner->columns.front().value, MakeTerm(u"c0"));
    if (aggregated) {
        // An aggregate of this query cannot stand inside the inner one: compare with the least or greatest.
        const bool greatest = (node.op == Op::Greater || node.op == Op::GreaterEqual) == node.all;
        return Compare(node.op, value,
                       DeliveredValue(column, MakeTerm(greatest ? u"(SELECT max(%) FROM (%))"
                                                                : u"(SELECT min(%) FROM (%))",
                                                       {Sorted(column), inner})));
    }
    // ANY is true for one that holds, ALL for none that fails; NULLs leave the answer open.
    const Bound each = Compare(node.op, value, column);
    return MakeCondition(
        node.all
            ? u"(SELECT CASE WHEN min(%) = 0 THEN 0 WHEN count(*) > count(%) THEN NULL ELSE 1 END FROM (%))"
            : u"(SELECT CASE WHEN max(%) = 1 THEN 1 WHEN count(*) > count(%) THEN NULL ELSE 0 END FROM (%))",
        {each, each, inner});
}

} // namespace engine::sql
