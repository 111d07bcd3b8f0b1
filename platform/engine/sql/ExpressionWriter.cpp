#include "platform/engine/sql/ExpressionWriter.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/QueryWriter.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

constexpr int deepestWriting = 600;
constexpr qsizetype longestExpression = 2'000'000;

/// Numbers as they are; what may be a text goes through the engine's addition, which converts or fails.
Written ForArithmetic(const Written& value) {
    Written number = value;
    if (value.Kind() == TypeKind::Text || (value.Kind() == TypeKind::Unknown && !value.null)) {
        number.text = u"zv_add("_s + value.text + u", 0)"_s;
        number.precedence = PrimaryPrecedence;
        number.type = DataType::Double;
        number.collated = false;
    }
    return number;
}

Written MakeCondition(QString text, int precedence) {
    Written written;
    written.text = std::move(text);
    written.precedence = precedence;
    written.condition = true;
    written.type = DataType::Bit;
    return written;
}

/// A result of whole numbers, which becomes a fraction where it grows beyond 32 bits.
void MakeWhole(Written& result) {
    result.type = DataType::Long;
    result.text = u"zv_whole("_s + result.text + u')';
    result.precedence = PrimaryPrecedence;
    result.wide = true;
}

/// Whether any result of the two, added or multiplied, has its place in 32 bits.
bool AreShort(const Written& left, const Written& right) {
    return left.type < DataType::Long && right.type < DataType::Long;
}

bool IsAmount(const Written& left, const Written& right) {
    const bool money = !left.money.isEmpty() || !right.money.isEmpty();
    const auto number = [](const Written& value) { return value.null || value.Kind() == TypeKind::Number; };
    return money && number(left) && number(right);
}

/// The two in units in which they can be compared: at least one is an amount of money.
bool HasAmount(std::initializer_list<const Written*> values) {
    const auto comparable = [](const Written* value) {
        return value->null || value->Kind() == TypeKind::Number || value->Kind() == TypeKind::Date;
    };
    return std::ranges::all_of(values, comparable) &&
           std::ranges::any_of(values, [](const Written* value) { return !value->money.isEmpty(); });
}

bool IsEquality(Op op) {
    return op == Op::Equal || op == Op::NotEqual;
}

/// A date as the text that the regional settings give it.
Written DateAsText(const Written& value) {
    Written text = value;
    if (value.Kind() == TypeKind::Date) {
        text.text = u"zv_datetext("_s + value.text + u')';
        text.precedence = PrimaryPrecedence;
        text.type = DataType::Text;
        text.collated = false;
    }
    return text;
}

} // namespace

ExpressionWriter::ExpressionWriter(Context& context, const Catalog* catalog, const Scope& scope,
                                   AggregateRule rule)
    : m_context(context)
    , m_catalog(catalog)
    , m_scope(scope)
    , m_rule(rule)
    , m_used(scope.Sources().size(), false) {
}

Written ExpressionWriter::AsNumber(Written value) {
    if (value.condition) {
        if (value.text == u"1"_s || value.text == u"0"_s)
            value.text = value.text == u"1"_s ? u"-1"_s : u"0"_s;
        else
            value.text = u"-("_s + value.text + u')';
        value.precedence = CollatePrecedence;
        value.type = DataType::Short;
        value.condition = false;
    } else if (value.type == DataType::Bit) {
        value.text = u"-("_s + value.At(AddPrecedence) + u" <> 0)"_s;
        value.precedence = CollatePrecedence;
        value.type = DataType::Short;
        value.collated = false;
    }
    return value;
}

void ExpressionWriter::LimitSources(int first, int last) {
    m_first = first;
    m_last = last;
}

QString ExpressionWriter::Folded(const Written& value) {
    const bool text = value.Kind() == TypeKind::Text || value.Kind() == TypeKind::Unknown;
    if (value.collated || !text || value.null)
        return Delivered(value).text;
    return value.At(CollatePrecedence) + u" COLLATE ZV_FOLD"_s;
}

QString ExpressionWriter::Sorted(const Written& value) {
    const bool text = value.Kind() == TypeKind::Text || value.Kind() == TypeKind::Unknown;
    return text && !value.null ? value.At(CollatePrecedence) + u" COLLATE ZV_SORT"_s : Delivered(value).text;
}

Written ExpressionWriter::Write(const Node& node) {
    if (++m_depth > deepestWriting)
        RaiseEngine(QueryTooComplex);
    Written written;
    switch (node.kind) {
    case NodeKind::Null:
        written.text = u"NULL"_s;
        written.null = true;
        break;
    case NodeKind::Truth:
        written = MakeCondition(node.negated ? u"0"_s : u"1"_s, PrimaryPrecedence);
        written.nullable = false;
        break;
    case NodeKind::Literal:
        written = m_context.WriteLiteral(node);
        break;
    case NodeKind::Name:
        written = WriteName(node);
        break;
    case NodeKind::Not:
        written = WriteNot(node);
        break;
    case NodeKind::Negate:
        written = WriteNegate(node);
        break;
    case NodeKind::Binary:
        written = WriteBinary(node);
        break;
    case NodeKind::Between:
        written = WriteBetween(node);
        break;
    case NodeKind::InList:
        written = WriteInList(node);
        break;
    case NodeKind::InQuery:
        written = WriteInQuery(node);
        break;
    case NodeKind::IsNull:
        written = WriteIsNull(node);
        break;
    case NodeKind::Call:
        written = WriteCall(node);
        break;
    case NodeKind::Subquery:
        written = WriteSubquery(node);
        break;
    case NodeKind::Exists:
        written = WriteExists(node);
        break;
    case NodeKind::Quantified:
        written = WriteQuantified(node);
        break;
    }
    --m_depth;
    if (written.text.size() > longestExpression)
        RaiseEngine(QueryTooComplex);
    return written;
}

Written ExpressionWriter::Value(const Node& node) {
    return AsNumber(Write(node));
}

Written ExpressionWriter::Condition(const Node& node) {
    Written value = Write(node);
    if (value.condition || value.null) {
        value.condition = true;
        return value;
    }
    if (value.Kind() == TypeKind::Number || value.Kind() == TypeKind::Date)
        return MakeCondition(value.At(AddPrecedence) + u" <> 0"_s, EqualPrecedence);
    return MakeCondition(ForArithmetic(value).text + u" <> 0"_s, EqualPrecedence);
}

Written ExpressionWriter::WriteName(const Node& node) {
    for (const Scope* scope = &m_scope; scope; scope = scope->Outer()) {
        const bool limited = scope == &m_scope && m_last >= 0;
        const auto place = limited ? scope->Find(node.qualifier, node.name, m_first, m_last)
                                   : scope->Find(node.qualifier, node.name);
        if (place) {
            m_sawOwn = m_sawOwn || scope == &m_scope;
            m_sawOuter = m_sawOuter || scope != &m_scope;
            if (scope == &m_scope)
                m_used[static_cast<std::size_t>(place->source)] = true;
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
    Written unknown;
    unknown.text = u"NULL"_s;
    return unknown;
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

Written ExpressionWriter::WriteNot(const Node& node) {
    const Written operand = Condition(*node.children[0]);
    return MakeCondition(u"NOT "_s + operand.At(EqualPrecedence), NotPrecedence);
}

Written ExpressionWriter::WriteNegate(const Node& node) {
    Written number = ForArithmetic(Value(*node.children[0]));
    if (!number.money.isEmpty()) {
        SetMoney(number, u"zv_msub(0, "_s + number.money + u')');
        return number;
    }
    number.text = u'-' + number.At(PrimaryPrecedence);
    number.precedence = CollatePrecedence;
    number.null = false;
    if (number.type == DataType::Byte || number.type == DataType::Counter)
        number.type = DataType::Long;
    if (number.type == DataType::Date)
        number.type = DataType::Double;
    number.collated = false;
    if (number.type == DataType::Long && node.children[0]->kind != NodeKind::Literal)
        MakeWhole(number);
    return number;
}

Written ExpressionWriter::WriteBinary(const Node& node) {
    switch (node.op) {
    case Op::Imp:
    case Op::Eqv:
    case Op::Xor:
    case Op::Or:
    case Op::And:
        return WriteLogical(node);
    case Op::Like:
        return WriteLike(node);
    case Op::Equal:
    case Op::NotEqual:
    case Op::Less:
    case Op::LessEqual:
    case Op::Greater:
    case Op::GreaterEqual: {
        const Written left = Value(*node.children[0]);
        return Compare(node.op, left, Value(*node.children[1]));
    }
    default:
        return WriteArithmetic(node);
    }
}

Written ExpressionWriter::WriteLogical(const Node& node) {
    const Written left = Condition(*node.children[0]);
    const Written right = Condition(*node.children[1]);
    switch (node.op) {
    case Op::And:
        return MakeCondition(left.At(AndPrecedence) + u" AND "_s + right.At(NotPrecedence), AndPrecedence);
    case Op::Or:
        return MakeCondition(left.At(OrPrecedence) + u" OR "_s + right.At(AndPrecedence), OrPrecedence);
    case Op::Imp:
        return MakeCondition(u"NOT "_s + left.At(EqualPrecedence) + u" OR "_s + right.At(AndPrecedence),
                             OrPrecedence);
    default:
        // Both are 0, 1 or NULL, so that they can be compared.
        return MakeCondition(left.At(AddPrecedence) + (node.op == Op::Xor ? u" <> "_s : u" = "_s) +
                                 right.At(AddPrecedence),
                             EqualPrecedence);
    }
}

bool ExpressionWriter::CheckComparable(const Written& left, const Written& right) {
    const TypeKind a = left.Kind() == TypeKind::Date ? TypeKind::Number : left.Kind();
    const TypeKind b = right.Kind() == TypeKind::Date ? TypeKind::Number : right.Kind();
    if (a == b || a == TypeKind::Unknown || b == TypeKind::Unknown)
        return true;
    m_context.AddTypeMismatch();
    return false;
}

Written ExpressionWriter::Compare(Op op, const Written& left, const Written& right) {
    const QString sign = QString::fromUtf16(OperatorOf(op).text);
    CheckComparable(left, right);
    const bool unknown = left.Kind() == TypeKind::Unknown || right.Kind() == TypeKind::Unknown;
    if (unknown && !left.null && !right.null)
        return MakeCondition(u"zv_compare("_s + left.text + u", "_s + right.text + u')' + sign + u'0',
                             EqualPrecedence);
    if (HasAmount({&left, &right}))
        return MakeCondition(ComparedUnits(left) + sign + ComparedUnits(right), EqualPrecedence);
    QString leftText = left.At(AddPrecedence);
    if (left.Kind() == TypeKind::Text && right.Kind() == TypeKind::Text) {
        if (!IsEquality(op))
            leftText = left.At(CollatePrecedence) + u" COLLATE ZV_SORT"_s;
        else if (!left.collated && !right.collated)
            leftText = left.At(CollatePrecedence) + u" COLLATE ZV_FOLD"_s;
    }
    return MakeCondition(leftText + sign + right.At(AddPrecedence), EqualPrecedence);
}

Written ExpressionWriter::WriteArithmetic(const Node& node) {
    Written left = Value(*node.children[0]);
    Written right = Value(*node.children[1]);
    if (node.op == Op::Concat)
        return WriteConcat(left, right);
    if (node.op == Op::Add)
        return WriteAdd(left, right);
    left = ForArithmetic(left);
    right = ForArithmetic(right);
    if (auto amount = WriteAmount(node.op, left, right))
        return *amount;
    Written result;
    result.type = DataType::Double;
    const bool whole = IsWholeNumber(left.type) && IsWholeNumber(right.type);
    const bool date = left.Kind() == TypeKind::Date || right.Kind() == TypeKind::Date;
    switch (node.op) {
    case Op::Subtract:
        result.text = left.At(AddPrecedence) + u" - "_s + right.At(MultiplyPrecedence);
        result.precedence = AddPrecedence;
        if (left.Kind() == TypeKind::Date && right.Kind() != TypeKind::Date)
            result.type = DataType::Date;
        else if (!date)
            result.type = whole ? DataType::Long : CommonType(left.type, right.type);
        if (whole && !AreShort(left, right))
            MakeWhole(result);
        break;
    case Op::Multiply:
        result.text = left.At(MultiplyPrecedence) + u" * "_s + right.At(ConcatPrecedence);
        result.precedence = MultiplyPrecedence;
        if (!date)
            result.type = whole ? DataType::Long : CommonType(left.type, right.type);
        if (whole && !AreShort(left, right)) {
            MakeWhole(result);
        } else if (!whole) {
            // The engine's addition refuses what has grown beyond all numbers.
            result.text = u"zv_add("_s + result.text + u", 0)"_s;
            result.precedence = PrimaryPrecedence;
        }
        break;
    case Op::IntDivide:
    case Op::Mod:
        result.text =
            (node.op == Op::Mod ? u"zv_mod("_s : u"zv_intdiv("_s) + left.text + u", "_s + right.text + u')';
        result.type = DataType::Long;
        result.wide = true;
        break;
    case Op::Divide:
        result.text = u"zv_div("_s + left.text + u", "_s + right.text + u')';
        break;
    default:
        result.text = u"zv_pow("_s + left.text + u", "_s + right.text + u')';
        break;
    }
    // With NULL on one side the other tells the type.
    if (left.null || right.null)
        result.type = left.null ? right.type : left.type;
    return result;
}

/// The operators of which CURRENCY stays CURRENCY: a sum with any number, a product with a whole number or
/// another amount.
std::optional<Written> ExpressionWriter::WriteAmount(Op op, const Written& left, const Written& right) {
    if (!IsAmount(left, right))
        return {};
    const bool product = op == Op::Multiply;
    if (product && CommonType(left.type, right.type) != DataType::Currency && !left.null && !right.null)
        return {};
    if (!product && op != Op::Add && op != Op::Subtract)
        return {};
    const QString function = product ? u"zv_mmul("_s : op == Op::Add ? u"zv_madd("_s : u"zv_msub("_s;
    Written result;
    SetMoney(result, function + Units(left) + u", "_s + Units(right) + u')');
    return result;
}

Written ExpressionWriter::WriteAdd(const Written& left, const Written& right) {
    if (auto amount = WriteAmount(Op::Add, left, right))
        return *amount;
    Written result;
    const TypeKind a = left.Kind();
    const TypeKind b = right.Kind();
    const auto isNumber = [](TypeKind kind) { return kind == TypeKind::Number || kind == TypeKind::Date; };
    if (a == TypeKind::Text && b == TypeKind::Text) {
        result.text = left.At(ConcatPrecedence) + u" || "_s + right.At(CollatePrecedence);
        result.precedence = ConcatPrecedence;
        result.type = CommonType(left.type, right.type);
    } else if (left.null || right.null || (isNumber(a) && isNumber(b))) {
        result.text = left.At(AddPrecedence) + u" + "_s + right.At(MultiplyPrecedence);
        result.precedence = AddPrecedence;
        if (left.null || right.null)
            result.type = left.null ? right.type : left.type;
        else if (a == TypeKind::Date || b == TypeKind::Date)
            result.type = DataType::Date;
        else if (IsWholeNumber(left.type) && IsWholeNumber(right.type) && AreShort(left, right))
            result.type = DataType::Long;
        else if (IsWholeNumber(left.type) && IsWholeNumber(right.type))
            MakeWhole(result);
        else
            result.type = CommonType(left.type, right.type);
    } else {
        result.text = u"zv_add("_s + left.text + u", "_s + right.text + u')';
        result.type = a == TypeKind::Unknown || b == TypeKind::Unknown ? DataType::Unknown : DataType::Double;
    }
    return result;
}

Written ExpressionWriter::WriteConcat(const Written& left, const Written& right) {
    const Written a = DateAsText(left);
    const Written b = DateAsText(right);
    // Texts and whole numbers join as they are; anything else has a text of its own.
    const auto plain = [](const Written& value) {
        return value.Kind() == TypeKind::Text || (IsWholeNumber(value.type) && !value.wide) || value.null;
    };
    const auto filled = [](const Written& value, int least) {
        return value.nullable ? u"coalesce("_s + value.text + u", '')"_s : value.At(least);
    };
    Written result;
    result.type = DataType::Text;
    result.nullable = false;
    if (plain(a) && plain(b)) {
        result.text = filled(a, ConcatPrecedence) + u" || "_s + filled(b, CollatePrecedence);
        result.precedence = ConcatPrecedence;
    } else {
        result.text = u"zv_concat("_s + Argument(a) + u", "_s + Argument(b) + u')';
    }
    return result;
}

bool ExpressionWriter::IsPlainPattern(const Node& literal) {
    return literal.kind == NodeKind::Literal && literal.pattern && literal.token.kind == TokenKind::Text &&
           !functions::HasWildcards(Lexer::LiteralValue(literal.token).Text());
}

Written ExpressionWriter::WriteLike(const Node& node) {
    const Written value = DateAsText(Value(*node.children[0]));
    const Node& patternNode = *node.children[1];
    const Written pattern = DateAsText(Value(patternNode));
    const bool plain = IsPlainPattern(patternNode);
    if (plain && value.Kind() == TypeKind::Text)
        return Compare(node.negated ? Op::NotEqual : Op::Equal, value, pattern);
    const QString text = u"zv_like("_s + Argument(value) + u", "_s + Argument(pattern) + u')';
    if (node.negated)
        return MakeCondition(u"NOT "_s + text, NotPrecedence);
    return MakeCondition(text, PrimaryPrecedence);
}

Written ExpressionWriter::WriteBetween(const Node& node) {
    const Written value = Value(*node.children[0]);
    const Written low = Value(*node.children[1]);
    const Written high = Value(*node.children[2]);
    CheckComparable(value, low);
    CheckComparable(value, high);
    const auto isUnknown = [](const Written& w) { return w.Kind() == TypeKind::Unknown && !w.null; };
    if (isUnknown(value) || isUnknown(low) || isUnknown(high)) {
        const auto between = [&](const Written& from, const Written& to) {
            return Compare(Op::GreaterEqual, value, from).text + u" AND "_s +
                   Compare(Op::LessEqual, value, to).text;
        };
        const QString text = between(low, high) + u" OR "_s + between(high, low);
        return node.negated ? MakeCondition(u"NOT ("_s + text + u')', NotPrecedence)
                            : MakeCondition(text, OrPrecedence);
    }
    const bool text = value.Kind() == TypeKind::Text;
    const bool amounts = HasAmount({&value, &low, &high});
    const QString first = text ? Sorted(low) : amounts ? ComparedUnits(low) : low.text;
    const QString bounds = first + u", "_s + (amounts ? ComparedUnits(high) : high.text);
    // The bounds may stand in either order.
    return MakeCondition((text      ? Sorted(value)
                          : amounts ? ComparedUnits(value)
                                    : value.At(AddPrecedence)) +
                             (node.negated ? u" NOT BETWEEN min("_s : u" BETWEEN min("_s) + bounds +
                             u") AND max("_s + bounds + u')',
                         EqualPrecedence);
}

Written ExpressionWriter::WriteInList(const Node& node) {
    const Written value = Value(*node.children[0]);
    bool unknown = value.Kind() == TypeKind::Unknown;
    std::vector<Written> items;
    for (std::size_t i = 1; i < node.children.size(); ++i) {
        items.push_back(Value(*node.children[i]));
        CheckComparable(value, items.back());
        unknown = unknown || (items.back().Kind() == TypeKind::Unknown && !items.back().null);
    }
    QString text;
    if (unknown) {
        for (const Written& item : items)
            text += (text.isEmpty() ? QString() : u" OR "_s) + Compare(Op::Equal, value, item).text;
        return node.negated ? MakeCondition(u"NOT ("_s + text + u')', NotPrecedence)
                            : MakeCondition(text, OrPrecedence);
    }
    const bool amounts = std::ranges::any_of(items, [&](const Written& item) {
        return HasAmount({&value, &item});
    });
    text = amounts ? ComparedUnits(value) : Folded(value);
    if (text == value.text)
        text = value.At(AddPrecedence);
    text += node.negated ? u" NOT IN ("_s : u" IN ("_s;
    for (std::size_t i = 0; i < items.size(); ++i)
        text += (i == 0 ? QString() : u", "_s) + (amounts ? ComparedUnits(items[i]) : items[i].text);
    return MakeCondition(text + u')', EqualPrecedence);
}

Written ExpressionWriter::WriteIn(const Written& value, const Query& query, bool negated) {
    const WrittenQuery inner = QueryWriter(m_context, m_catalog, &m_scope).WriteOneColumn(query);
    const Written column = DeliveredValue(inner.columns.front().value, u"c0"_s);
    CheckComparable(value, column);
    QString text = Folded(value);
    if (text == value.text)
        text = value.At(AddPrecedence);
    QString rows = inner.text;
    if (HasAmount({&value, &column})) {
        text = ComparedUnits(value);
        rows = u"SELECT "_s + ComparedUnits(column) + u" FROM ("_s + rows + u')';
    } else if (!column.money.isEmpty()) {
        rows = u"SELECT "_s + column.text + u" FROM ("_s + rows + u')';
    }
    return MakeCondition(text + (negated ? u" NOT IN ("_s : u" IN ("_s) + rows + u')', EqualPrecedence);
}

Written ExpressionWriter::WriteInQuery(const Node& node) {
    return WriteIn(Value(*node.children[0]), *node.query, node.negated);
}

Written ExpressionWriter::WriteIsNull(const Node& node) {
    const Written value = Value(*node.children[0]);
    return MakeCondition(value.At(AddPrecedence) + (node.negated ? u" IS NOT NULL"_s : u" IS NULL"_s),
                         EqualPrecedence);
}

Written ExpressionWriter::WriteSubquery(const Node& node) {
    const WrittenQuery inner = QueryWriter(m_context, m_catalog, &m_scope).WriteOneColumn(*node.query);
    Written written =
        DeliveredValue(inner.columns.front().value,
                       inner.singleRow ? u'(' + inner.text + u')'
                                       : u"(SELECT zv_single(c0) FROM ("_s + inner.text + u"))"_s);
    written.nullable = true;
    return written;
}

Written ExpressionWriter::WriteExists(const Node& node) {
    const WrittenQuery inner = QueryWriter(m_context, m_catalog, &m_scope).WriteDerived(*node.query);
    return MakeCondition(u"EXISTS ("_s + inner.text + u')', PrimaryPrecedence);
}

Written ExpressionWriter::WriteQuantified(const Node& node) {
    const bool aggregatesBefore = std::exchange(m_sawAggregate, false);
    const Written value = Value(*node.children[0]);
    const bool aggregated = m_sawAggregate;
    m_sawAggregate = m_sawAggregate || aggregatesBefore;
    if ((node.op == Op::Equal && !node.all) || (node.op == Op::NotEqual && node.all))
        return WriteIn(value, *node.query, node.all);
    const WrittenQuery inner = QueryWriter(m_context, m_catalog, &m_scope).WriteOneColumn(*node.query);
    Written column = DeliveredValue(inner.columns.front().value, u"c0"_s);
    if (aggregated) {
        // An aggregate of this query cannot stand inside the inner one: compare with the least or greatest.
        const bool greatest = (node.op == Op::Greater || node.op == Op::GreaterEqual) == node.all;
        column = DeliveredValue(column, (greatest ? u"(SELECT max("_s : u"(SELECT min("_s) + Sorted(column) +
                                            u") FROM ("_s + inner.text + u"))"_s);
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
