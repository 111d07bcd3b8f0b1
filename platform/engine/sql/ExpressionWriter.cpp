#include "platform/engine/sql/ExpressionWriter.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/QueryWriter.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int deepestWriting = 600;
constexpr qsizetype longestExpression = 2'000'000;

/// Numbers as they are; what may be a text goes through the engine's addition, which converts or fails.
Written ForArithmetic(const Written& value) {
    if (!value.IsText() && !value.IsUnknown())
        return value;
    return value.As(u"zv_add("_s + value.text + u", 0)"_s, DataType::Double);
}

/// A result of whole numbers, which becomes a fraction where it grows beyond 32 bits.
Written Whole(const QString& text) {
    Written whole = MakeWritten(u"zv_whole("_s + text + u')', DataType::Long);
    whole.wide = true;
    return whole;
}

/// Whether the two can be compared in units, and at least one is an amount of money.
bool HasAmount(std::initializer_list<const Written*> values) {
    return std::ranges::all_of(values, [](const Written* v) { return v->null || v->IsNumber(); }) &&
           std::ranges::any_of(values, [](const Written* v) { return v->IsAmount(); });
}

/// A date as the text that the regional settings give it.
Written DateAsText(const Written& value) {
    return value.IsDate() ? value.As(u"zv_datetext("_s + value.text + u')', DataType::Text) : value;
}

Written Negated(bool negated, const Written& condition) {
    return negated ? MakeCondition(u"NOT "_s + condition.At(EqualPrecedence), NotPrecedence) : condition;
}

QString Joined(const Operator& op, const Written& left, const Written& right) {
    const QString text = QString::fromUtf16(op.text);
    if (op.precedence == PrimaryPrecedence)
        return text + left.text + u", "_s + right.text + u')';
    // Of comparisons none stands beside another, the other operators go from left to right.
    const bool compares = op.precedence == EqualPrecedence;
    return left.At(compares ? AddPrecedence : op.precedence) + text +
           right.At(compares ? AddPrecedence : op.precedence + 1);
}

/// The type of a sum, difference or product of numbers; with NULL on one side the other tells it.
DataType ResultType(Op op, const Written& left, const Written& right) {
    if (left.null || right.null)
        return left.null ? right.type : left.type;
    if (!left.IsDate() && !right.IsDate())
        return CommonType(left.type, right.type);
    const bool date = op == Op::Add || (op == Op::Subtract && !right.IsDate());
    return date ? DataType::Date : DataType::Double;
}

/// CURRENCY stays CURRENCY in a sum with any number, in a product with a whole number or another amount.
std::optional<Written> Amount(const Operator& op, const Written& left, const Written& right) {
    const auto number = [](const Written& value) { return value.null || value.Kind() == TypeKind::Number; };
    if (!op.amounts || !HasAmount({&left, &right}) || !number(left) || !number(right))
        return {};
    if (op.op == Op::Multiply && ResultType(op.op, left, right) != DataType::Currency && !left.null &&
        !right.null)
        return {};
    return MakeAmount(QString::fromUtf16(op.amounts) + Units(left) + u", "_s + Units(right) + u')');
}

/// Texts and whole numbers join as they are; anything else has a text of its own.
Written Concatenated(const Written& left, const Written& right) {
    const auto plain = [](const Written& value) {
        return value.IsText() || (IsWholeNumber(value.type) && !value.wide) || value.null;
    };
    const auto filled = [](const Written& value) {
        return value.nullable ? value.As(u"coalesce("_s + value.text + u", '')"_s, value.type) : value;
    };
    const bool joins = plain(left) && plain(right);
    Written result;
    if (joins)
        result = MakeWritten(Joined(OperatorOf(Op::Concat), filled(left), filled(right)), DataType::Text,
                             ConcatPrecedence);
    else
        result =
            MakeWritten(u"zv_concat("_s + Argument(left) + u", "_s + Argument(right) + u')', DataType::Text);
    result.nullable = false;
    return result;
}

} // namespace

void ExpressionWriter::LimitSources(std::size_t first, std::size_t end) {
    m_first = first;
    m_end = end;
}

Written ExpressionWriter::Write(const Node& node) {
    if (++m_depth > deepestWriting)
        RaiseEngine(QueryTooComplex);
    Written written = WriteKind(node);
    --m_depth;
    if (written.text.size() > longestExpression)
        RaiseEngine(QueryTooComplex);
    return written;
}

Written ExpressionWriter::WriteKind(const Node& node) {
    switch (node.kind) {
    case NodeKind::Null:
        return MakeNull();
    case NodeKind::Truth: {
        Written truth = MakeCondition(node.negated ? u"0"_s : u"1"_s, PrimaryPrecedence);
        truth.nullable = false;
        return truth;
    }
    case NodeKind::Literal:
        return m_context.WriteLiteral(node);
    case NodeKind::Name:
        return WriteName(node);
    case NodeKind::Not:
        return Negated(true, Condition(*node.children[0]));
    case NodeKind::Negate:
        return WriteNegate(node);
    case NodeKind::Binary:
        return WriteBinary(node);
    case NodeKind::Between:
        return WriteBetween(node);
    case NodeKind::InList:
        return WriteInList(node);
    case NodeKind::InQuery:
        return WriteInQuery(Value(*node.children[0]), *node.query, node.negated);
    case NodeKind::IsNull:
        return WriteIsNull(*node.children[0], node.negated);
    case NodeKind::Call:
        return WriteCall(node);
    case NodeKind::Subquery:
        return WriteSubquery(node);
    case NodeKind::Exists:
        return MakeCondition(u"EXISTS ("_s + QueryWriter(m_context, &m_scope).Write(*node.query).text + u')',
                             PrimaryPrecedence);
    case NodeKind::Quantified:
        return WriteQuantified(node);
    }
    return {};
}

Written ExpressionWriter::ColumnValue(const Node& node) {
    const Written value = Write(node);
    return value.condition ? AsNumber(value) : value;
}

Written ExpressionWriter::Condition(const Node& node) {
    Written value = Write(node);
    if (value.condition || value.null) {
        value.condition = true;
        return value;
    }
    return MakeCondition(ForArithmetic(value).At(AddPrecedence) + u" <> 0"_s, EqualPrecedence);
}

Written ExpressionWriter::WriteName(const Node& node) {
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
        if (const auto alias = WriteAlias(node.name))
            return *alias;
        const bool yes = SameName(node.name, u"YES"_s);
        if (yes || SameName(node.name, u"NO"_s) || SameName(node.name, u"OFF"_s))
            return MakeCondition(yes ? u"1"_s : u"0"_s, PrimaryPrecedence);
    }
    m_context.AddUnknownName(node.qualifier.isEmpty() ? node.name : node.qualifier + u'.' + node.name);
    return MakeWritten(u"NULL"_s, DataType::Unknown);
}

std::optional<Written> ExpressionWriter::WriteAlias(const QString& name) {
    for (const SelectItem& item : m_items) {
        if (!item.expression || !SameName(item.alias, name))
            continue;
        if (std::ranges::find(m_openAliases, &item) != m_openAliases.end())
            return {}; // an alias that means itself is no name at all
        m_openAliases.push_back(&item);
        Written value = Write(*item.expression);
        m_openAliases.pop_back();
        return value;
    }
    return {};
}

Written ExpressionWriter::WriteNegate(const Node& node) {
    Written number = ForArithmetic(Value(*node.children[0]));
    if (number.IsAmount()) {
        SetMoney(number, u"zv_msub(0, "_s + number.money + u')');
        return number;
    }
    const QString text = u'-' + number.At(PrimaryPrecedence);
    if (IsWholeNumber(number.type) && number.type != DataType::Short &&
        (number.type != DataType::Long || node.children[0]->kind != NodeKind::Literal))
        return Whole(text);
    number = number.As(text, number.IsDate() ? DataType::Double : number.type);
    number.precedence = CollatePrecedence;
    number.null = false;
    return number;
}

Written ExpressionWriter::WriteBinary(const Node& node) {
    const Operator& op = OperatorOf(node.op);
    if (op.level <= AndLevel)
        return WriteLogical(node);
    if (node.op == Op::Like)
        return WriteLike(node);
    const Written left = Value(*node.children[0]);
    const Written right = Value(*node.children[1]);
    if (op.level == ComparisonLevel)
        return Compare(node.op, left, right);
    if (node.op == Op::Concat)
        return Concatenated(DateAsText(left), DateAsText(right));
    return WriteArithmetic(op, left, right);
}

Written ExpressionWriter::WriteLogical(const Node& node) {
    const Operator& op = OperatorOf(node.op);
    const Written left = Negated(node.op == Op::Imp, Condition(*node.children[0]));
    return MakeCondition(Joined(op, left, Condition(*node.children[1])), op.precedence);
}

void ExpressionWriter::CheckComparable(const Written& left, const Written& right) {
    const bool same = left.Kind() == right.Kind() || (left.IsNumber() && right.IsNumber());
    if (!same && left.Kind() != TypeKind::Unknown && right.Kind() != TypeKind::Unknown)
        m_context.AddTypeMismatch();
}

Written ExpressionWriter::Compare(Op op, const Written& left, const Written& right) {
    CheckComparable(left, right);
    const QString sign = QString::fromUtf16(OperatorOf(op).text);
    const bool unknown = left.Kind() == TypeKind::Unknown || right.Kind() == TypeKind::Unknown;
    if (unknown && !left.null && !right.null)
        return MakeCondition(u"zv_compare("_s + left.text + u", "_s + right.text + u')' + sign + u'0',
                             EqualPrecedence);
    if (HasAmount({&left, &right}))
        return MakeCondition(ComparedUnits(left) + sign + ComparedUnits(right), EqualPrecedence);
    Written first = left;
    if (left.IsText() && right.IsText()) {
        const bool equality = op == Op::Equal || op == Op::NotEqual;
        first = !equality ? Sorted(left) : right.collated ? left : Folded(left);
    }
    return MakeCondition(Joined(OperatorOf(op), first, right), EqualPrecedence);
}

Written ExpressionWriter::WriteArithmetic(const Operator& op, Written left, Written right) {
    const bool sum = op.op == Op::Add;
    if (!sum) {
        left = ForArithmetic(left);
        right = ForArithmetic(right);
    }
    if (const auto amount = Amount(op, left, right))
        return *amount;
    if (sum && left.IsText() && right.IsText())
        return MakeWritten(Joined(OperatorOf(Op::Concat), left, right), CommonType(left.type, right.type),
                           ConcatPrecedence);
    if (sum && !left.null && !right.null && !(left.IsNumber() && right.IsNumber())) {
        const bool unknown = left.IsUnknown() || right.IsUnknown();
        return MakeWritten(u"zv_add("_s + left.text + u", "_s + right.text + u')',
                           unknown ? DataType::Unknown : DataType::Double);
    }
    const QString text = Joined(op, left, right);
    if (op.result != DataType::Unknown) {
        Written result =
            MakeWritten(text, left.null || right.null ? ResultType(op.op, left, right) : op.result);
        result.wide = op.result == DataType::Long;
        return result;
    }
    const bool whole = IsWholeNumber(left.type) && IsWholeNumber(right.type);
    const bool fits = left.type < DataType::Long && right.type < DataType::Long; // any result, in 32 bits
    if (whole && !fits)
        return Whole(text);
    const DataType type = whole ? DataType::Long : ResultType(op.op, left, right);
    // The engine's addition refuses what has grown beyond all numbers.
    return op.op == Op::Multiply && !whole ? MakeWritten(u"zv_add("_s + text + u", 0)"_s, type)
                                           : MakeWritten(text, type, op.precedence);
}

bool ExpressionWriter::IsPlainPattern(const Node& literal) {
    return literal.kind == NodeKind::Literal && literal.pattern && literal.token.kind == TokenKind::Text &&
           !functions::HasWildcards(Lexer::LiteralValue(literal.token).Text());
}

Written ExpressionWriter::WriteLike(const Node& node) {
    const Written value = DateAsText(Value(*node.children[0]));
    const Written pattern = DateAsText(Value(*node.children[1]));
    if (IsPlainPattern(*node.children[1]) && value.IsText())
        return Compare(node.negated ? Op::NotEqual : Op::Equal, value, pattern);
    return Negated(node.negated,
                   MakeCondition(u"zv_like("_s + Argument(value) + u", "_s + Argument(pattern) + u')',
                                 PrimaryPrecedence));
}

Written ExpressionWriter::WriteBetween(const Node& node) {
    const Written value = Value(*node.children[0]);
    const Written low = Value(*node.children[1]);
    const Written high = Value(*node.children[2]);
    CheckComparable(value, low);
    CheckComparable(value, high);
    // The bounds may stand in either order.
    if (value.IsUnknown() || low.IsUnknown() || high.IsUnknown()) {
        const auto between = [&](const Written& from, const Written& to) {
            return Compare(Op::GreaterEqual, value, from).text + u" AND "_s +
                   Compare(Op::LessEqual, value, to).text;
        };
        return Negated(node.negated,
                       MakeCondition(between(low, high) + u" OR "_s + between(high, low), OrPrecedence));
    }
    const bool amounts = HasAmount({&value, &low, &high});
    const auto operand = [&](const Written& one) { return amounts ? ComparedUnits(one) : one.text; };
    const QString bounds = (value.IsText() ? Sorted(low).text : operand(low)) + u", "_s + operand(high);
    return MakeCondition((value.IsText() ? Sorted(value).text
                          : amounts      ? ComparedUnits(value)
                                         : value.At(AddPrecedence)) +
                             (node.negated ? u" NOT BETWEEN min("_s : u" BETWEEN min("_s) + bounds +
                             u") AND max("_s + bounds + u')',
                         EqualPrecedence);
}

Written ExpressionWriter::WriteInList(const Node& node) {
    const Written value = Value(*node.children[0]);
    bool unknown = value.Kind() == TypeKind::Unknown;
    bool amounts = false;
    std::vector<Written> items;
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        items.push_back(Value(*node.children[i]));
        CheckComparable(value, items.back());
        unknown = unknown || items.back().IsUnknown();
        amounts = amounts || HasAmount({&value, &items.back()});
    }
    QStringList texts;
    for (const Written& item : items)
        texts += unknown ? Compare(Op::Equal, value, item).text : amounts ? ComparedUnits(item) : item.text;
    if (unknown)
        return Negated(node.negated, MakeCondition(texts.join(u" OR "_s), OrPrecedence));
    return MakeCondition((amounts ? ComparedUnits(value) : Folded(value).At(AddPrecedence)) +
                             (node.negated ? u" NOT IN ("_s : u" IN ("_s) + texts.join(u", "_s) + u')',
                         EqualPrecedence);
}

Written ExpressionWriter::WriteInQuery(const Written& value, const Query& query, bool negated) {
    const WrittenQuery inner = QueryWriter(m_context, &m_scope).WriteOneColumn(query);
    const Written column = DeliveredValue(inner.columns.front().value, u"c0"_s);
    CheckComparable(value, column);
    const bool amounts = HasAmount({&value, &column});
    QString rows = inner.text;
    if (column.IsAmount() || amounts)
        rows = u"SELECT "_s + (amounts ? ComparedUnits(column) : column.text) + u" FROM ("_s + rows + u')';
    return MakeCondition((amounts ? ComparedUnits(value) : Folded(value).At(AddPrecedence)) +
                             (negated ? u" NOT IN ("_s : u" IN ("_s) + rows + u')',
                         EqualPrecedence);
}

Written ExpressionWriter::WriteIsNull(const Node& value, bool negated) {
    Written written = MakeCondition(
        Value(value).At(AddPrecedence) + (negated ? u" IS NOT NULL"_s : u" IS NULL"_s), EqualPrecedence);
    written.nullable = false;
    return written;
}

Written ExpressionWriter::WriteSubquery(const Node& node) {
    const WrittenQuery inner = QueryWriter(m_context, &m_scope).WriteOneColumn(*node.query);
    Written written =
        DeliveredValue(inner.columns.front().value,
                       inner.singleRow ? u'(' + inner.text + u')'
                                       : u"(SELECT zv_single(c0) FROM ("_s + inner.text + u"))"_s);
    written.nullable = true;
    return written;
}

Written ExpressionWriter::WriteQuantified(const Node& node) {
    const bool aggregatesBefore = std::exchange(m_sawAggregate, false);
    const Written value = Value(*node.children[0]);
    const bool aggregated = m_sawAggregate;
    m_sawAggregate = m_sawAggregate || aggregatesBefore;
    if ((node.op == Op::Equal && !node.all) || (node.op == Op::NotEqual && node.all))
        return WriteInQuery(value, *node.query, node.all);
    const WrittenQuery inner = QueryWriter(m_context, &m_scope).WriteOneColumn(*node.query);
    Written column = DeliveredValue(inner.columns.front().value, u"c0"_s);
    if (aggregated) {
        // An aggregate of this query cannot stand inside the inner one: compare with the least or greatest.
        const bool greatest = (node.op == Op::Greater || node.op == Op::GreaterEqual) == node.all;
        column = DeliveredValue(column, (greatest ? u"(SELECT max("_s : u"(SELECT min("_s) +
                                            Sorted(column).text + u") FROM ("_s + inner.text + u"))"_s);
        return Compare(node.op, value, column);
    }
    const QString each = Compare(node.op, value, column).text;
    // ANY is true for one that holds, ALL for none that fails; NULLs leave the answer open.
    const QString decided =
        node.all ? u"min("_s + each + u") = 0 THEN 0"_s : u"max("_s + each + u") = 1 THEN 1"_s;
    return MakeCondition(u"(SELECT CASE WHEN "_s + decided + u" WHEN count(*) > count("_s + each +
                             u") THEN NULL ELSE "_s + (node.all ? u'1' : u'0') + u" END FROM ("_s +
                             inner.text + u"))"_s,
                         PrimaryPrecedence);
}

} // namespace engine::sql
