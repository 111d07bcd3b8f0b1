// The calls of the dialect: aggregates, choices and functions.
#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Binder.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

struct Aggregate {
    std::u16string_view name;
    const char16_t* form;
    enum Result : std::uint8_t { Whole, Fraction, Same } result;
};

constexpr auto aggregates = std::to_array<Aggregate>({
    {u"COUNT", u"count(%)", Aggregate::Whole},
    {u"SUM", u"sum(%)", Aggregate::Fraction},
    {u"AVG", u"avg(%)", Aggregate::Fraction},
    {u"MIN", u"min(%)", Aggregate::Same},
    {u"MAX", u"max(%)", Aggregate::Same},
    {u"FIRST", u"zv_first(%)", Aggregate::Same},
    {u"LAST", u"zv_last(%)", Aggregate::Same},
    {u"STDEV", u"zv_stdev(%)", Aggregate::Fraction},
    {u"STDEVP", u"zv_stdevp(%)", Aggregate::Fraction},
    {u"VAR", u"zv_var(%)", Aggregate::Fraction},
    {u"VARP", u"zv_varp(%)", Aggregate::Fraction},
});

/// Functions that read their arguments as texts, so that a date goes to them in its short form.
constexpr auto textFunctions = std::to_array<std::u16string_view>({
    u"LEN",   u"LEFT", u"RIGHT",      u"MID",    u"INSTR",     u"INSTRREV", u"UCASE",
    u"LCASE", u"TRIM", u"LTRIM",      u"RTRIM",  u"STRCOMP",   u"VAL",      u"CSTR",
    u"ASC",   u"ASCW", u"STRREVERSE", u"ISDATE", u"ISNUMERIC",
});

bool Names(std::u16string_view name, const QString& word) {
    return SameName(QStringView(name), word);
}

/// A result of a choice, behind `words` over `operands`.
struct Branch {
    QString words;
    std::vector<Operand> operands;
    Bound result;
};

/// CASE, which computes only what it needs, as the engine does. Its type is what all results have in common.
Bound Choice(QString form, std::vector<Operand> operands, const std::vector<Branch>& branches) {
    std::optional<DataType> type;
    bool wide = false;
    for (const auto& [words, conditions, result] : branches) {
        wide = wide || result.wide;
        if (!result.null)
            type = type ? CommonType(*type, result.type) : result.type;
    }
    const bool amounts = type == DataType::Currency;
    for (const auto& [words, conditions, result] : branches) {
        form += words + u'%';
        operands.insert(operands.end(), conditions.begin(), conditions.end());
        operands.emplace_back(amounts ? Units(result) : result.term);
    }
    const TermPtr term = MakeTerm(form + u" END"_s, std::move(operands));
    Bound choice = amounts ? MakeAmount(term) : MakeBound(type.value_or(DataType::Unknown), term);
    choice.wide = wide;
    return choice;
}

const Aggregate* FindAggregate(const QString& name) {
    const auto found =
        std::ranges::find_if(aggregates, [&](const Aggregate& a) { return Names(a.name, name); });
    return found == aggregates.end() ? nullptr : &*found;
}

} // namespace

bool ExpressionBinder::IsAggregate(const QString& name) {
    return FindAggregate(name) != nullptr;
}

void ExpressionBinder::ExpectArguments(const Node& node, bool right) const {
    if (!right)
        m_context.RaiseSyntax(node, u"Функция использована с неверным числом аргументов"_s);
}

Bound ExpressionBinder::BindCall(const Node& node) {
    if (IsAggregate(node.name))
        return BindAggregate(node);
    if (node.all)
        m_context.RaiseSyntax(node, u"Ошибка синтаксиса"_s);
    if (Names(u"IIF", node.name))
        return BindIif(node);
    if (Names(u"SWITCH", node.name))
        return BindSwitch(node);
    if (Names(u"CHOOSE", node.name))
        return BindChoose(node);
    if (Names(u"ISNULL", node.name)) {
        ExpectArguments(node, node.children.size() == 1);
        return BindIsNull(*node.children[0], false);
    }
    return BindFunction(node);
}

TermPtr ExpressionBinder::Filtered(const QString& form, std::vector<Operand> operands) const {
    if (!m_filter)
        return MakeTerm(form, std::move(operands));
    operands.emplace_back(m_filter);
    return MakeTerm(form + u" FILTER (WHERE %)"_s, std::move(operands));
}

Bound ExpressionBinder::BindAggregate(const Node& node) {
    const Aggregate& aggregate = *FindAggregate(node.name);
    const bool counts = aggregate.result == Aggregate::Whole;
    ExpectArguments(node, node.all ? counts : node.children.size() == 1);
    if (m_aggregateFailure != nullptr)
        RaiseEngine(*m_aggregateFailure, m_context.Text(node).toString());
    m_sawAggregate = true;
    if (node.all)
        return MakeBound(DataType::Long, Filtered(u"count(*)"_s, {}));
    const Bound value = BindAggregated(*node.children[0]);
    if (aggregate.result == Aggregate::Same) {
        const TermPtr term = Filtered(QString::fromUtf16(aggregate.form), {Sorted(value)});
        Bound same = value.type == DataType::Currency  ? MakeAmount(term)
                     : value.type == DataType::Counter ? MakeBound(DataType::Long, term)
                                                       : MakeBound(value.type, term);
        same.size = value.size;
        same.wide = value.wide;
        return same;
    }
    if (counts)
        return MakeBound(DataType::Long, Filtered(QString::fromUtf16(aggregate.form), {value}));
    if (value.IsText() || value.Kind() == TypeKind::Bytes)
        m_context.AddTypeMismatch();
    if (Names(aggregate.name, u"SUM"_s) && value.IsAmount())
        return MakeAmount(Filtered(u"zv_sum(%)"_s, {value.money}));
    const TermPtr number = value.IsUnknown() ? MakeTerm(u"zv_add(%, 0)", {value}) : value.term;
    return MakeBound(DataType::Double, Filtered(QString::fromUtf16(aggregate.form), {number}));
}

/// The argument of an aggregate.
Bound ExpressionBinder::BindAggregated(const Node& node) {
    const EngineError* failure = std::exchange(m_aggregateFailure, &AggregateInExpression);
    const bool own = std::exchange(m_sawOwn, false);
    const bool outer = std::exchange(m_sawOuter, false);
    Bound value = Value(node);
    if (m_sawOuter && !m_sawOwn && !m_scope.sources.empty()) {
        // SQLite would take the aggregate for one of the statement around this one.
        const Bound inner = Delivered(value);
        const Bound& column = m_scope.sources.front().columns.front().value;
        value = DeliveredValue(value, MakeTerm(u"CASE % WHEN 0 THEN % ELSE % END", {column, inner, inner}));
    }
    m_sawOwn = m_sawOwn || own;
    m_sawOuter = m_sawOuter || outer;
    m_aggregateFailure = failure;
    return value;
}

/// An IIF in the last place continues the same CASE.
Bound ExpressionBinder::BindIif(const Node& node) {
    std::vector<Branch> branches;
    const Node* current = &node;
    for (;;) {
        ExpectArguments(*current, current->children.size() == 3);
        const Bound condition = Condition(*current->children[0]);
        branches.push_back({u" WHEN % THEN "_s, {condition}, Value(*current->children[1])});
        const Node& otherwise = *current->children[2];
        if (otherwise.kind != NodeKind::Call || otherwise.all || !Names(u"IIF", otherwise.name)) {
            branches.push_back({u" ELSE "_s, {}, Value(otherwise)});
            return Choice(u"CASE"_s, {}, branches);
        }
        current = &otherwise;
    }
}

Bound ExpressionBinder::BindSwitch(const Node& node) {
    ExpectArguments(node, !node.children.empty() && node.children.size() % 2 == 0);
    std::vector<Branch> branches;
    for (std::size_t i = 0; i < node.children.size(); i += 2) {
        const Bound condition = Condition(*node.children[i]);
        branches.push_back({u" WHEN % THEN "_s, {condition}, Value(*node.children[i + 1])});
    }
    return Choice(u"CASE"_s, {}, branches);
}

Bound ExpressionBinder::BindChoose(const Node& node) {
    ExpectArguments(node, node.children.size() >= 2);
    const Bound index = Value(*node.children[0]);
    std::vector<Branch> branches;
    for (std::size_t i = 1; i < node.children.size(); ++i)
        branches.push_back({u" WHEN "_s + QString::number(i) + u" THEN "_s, {}, Value(*node.children[i])});
    return Choice(IsWholeNumber(index.type) ? u"CASE %"_s : u"CASE zv_round(%)"_s, {index}, branches);
}

Bound ExpressionBinder::BindFunction(const Node& node) {
    const functions::FunctionInfo* info = functions::FindFunction(node.name);
    if (!info)
        RaiseEngine(UndefinedFunction, node.name);
    const int count = static_cast<int>(node.children.size());
    ExpectArguments(node, count >= info->minArguments && count <= info->maxArguments);
    const bool readsText =
        std::ranges::any_of(textFunctions,
                            [&](std::u16string_view name) { return Names(name, node.name); }) ||
        (count == 1 && Names(u"FORMAT", node.name));
    Bound result = MakeBound(info->result, {});
    QString form = u"zv_"_s + QString::fromLatin1(info->name).toLower() + u'(';
    std::vector<Operand> arguments;
    for (const NodePtr& child : node.children) {
        const Bound value = Value(*child);
        form += arguments.empty() ? u"%"_s : u", %"_s;
        if (arguments.empty() && info->result == DataType::Unknown) {
            result.type = value.IsText() ? DataType::Double : value.type;
            result.wide = value.wide;
        }
        arguments.emplace_back(readsText && value.IsDate() ? MakeTerm(u"zv_datetext(%)", {value})
                                                           : Argument(value));
    }
    result.term = MakeTerm(form + u')', std::move(arguments));
    // A truth may come as 1 or as -1.
    if (info->result == DataType::Bit)
        return MakeCondition(u"% <> 0", {result}, EqualPrecedence);
    return result.type == DataType::Currency ? MakeAmount(result.term) : result;
}

} // namespace engine::sql
