// The calls of the dialect: aggregates, choices and functions.
#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/ExpressionWriter.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

struct Aggregate {
    std::u16string_view name;
    const char16_t* function;
    enum Result : std::uint8_t { Whole, Fraction, Same } result;
};

constexpr auto aggregates = std::to_array<Aggregate>({
    {u"COUNT", u"count(", Aggregate::Whole},
    {u"SUM", u"sum(", Aggregate::Fraction},
    {u"AVG", u"avg(", Aggregate::Fraction},
    {u"MIN", u"min(", Aggregate::Same},
    {u"MAX", u"max(", Aggregate::Same},
    {u"FIRST", u"zv_first(", Aggregate::Same},
    {u"LAST", u"zv_last(", Aggregate::Same},
    {u"STDEV", u"zv_stdev(", Aggregate::Fraction},
    {u"STDEVP", u"zv_stdevp(", Aggregate::Fraction},
    {u"VAR", u"zv_var(", Aggregate::Fraction},
    {u"VARP", u"zv_varp(", Aggregate::Fraction},
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

/// The CASE of a choice. Its type is what all its results have in common.
class Choice {
public:
    explicit Choice(const QString& start)
        : m_texts{start} {}

    /// `words` stand in front of the result.
    void Add(const QString& words, const Written& result) {
        m_texts.back() += words;
        m_texts.emplace_back();
        m_results.push_back(result);
        m_wide = m_wide || result.wide;
        if (result.null)
            return;
        m_type = m_any ? CommonType(m_type, result.type) : result.type;
        m_any = true;
    }

    Written Take() const {
        Written choice;
        choice.type = m_type;
        choice.wide = m_wide;
        const bool amounts = m_type == DataType::Currency;
        for (std::size_t i = 0; i < m_results.size(); ++i)
            choice.text += m_texts[i] + (amounts ? Units(m_results[i]) : m_results[i].text);
        choice.text += u" END"_s;
        if (amounts)
            SetMoney(choice, choice.text);
        return choice;
    }

private:
    std::vector<QString> m_texts; ///< in front of each result
    std::vector<Written> m_results;
    DataType m_type = DataType::Unknown;
    bool m_any = false;
    bool m_wide = false;
};

int AggregateFailure(AggregateRule rule) {
    switch (rule) {
    case AggregateRule::InWhere:
        return AggregateInWhere;
    case AggregateRule::InOrderBy:
        return AggregateInOrderBy;
    case AggregateRule::InGroupBy:
        return AggregateInGroupBy;
    case AggregateRule::InJoin:
        return AggregateInJoin;
    default:
        return AggregateInExpression;
    }
}

} // namespace

bool ExpressionWriter::IsAggregate(const QString& name) {
    return std::ranges::any_of(aggregates, [&](const Aggregate& a) { return Names(a.name, name); });
}

void ExpressionWriter::FailArguments(const Node& node) const {
    m_context.RaiseSyntax(node, u"Функция использована с неверным числом аргументов"_s);
}

Written ExpressionWriter::WriteCall(const Node& node) {
    if (auto aggregate = WriteAggregate(node))
        return *aggregate;
    if (node.all)
        m_context.RaiseSyntax(node, u"Ошибка синтаксиса"_s);
    if (auto choice = WriteChoice(node))
        return *choice;
    return WriteFunction(node);
}

std::optional<Written> ExpressionWriter::WriteAggregate(const Node& node) {
    const auto found =
        std::ranges::find_if(aggregates, [&](const Aggregate& a) { return Names(a.name, node.name); });
    if (found == aggregates.end())
        return {};
    const bool counts = found == aggregates.begin();
    if (node.all ? !counts : node.children.size() != 1)
        FailArguments(node);
    if (m_rule != AggregateRule::Allowed)
        RaiseEngine(AggregateFailure(m_rule), m_context.Text(node).toString());
    m_sawAggregate = true;
    Written result;
    result.type = found->result == Aggregate::Whole ? DataType::Long : DataType::Double;
    QString function = QString::fromUtf16(found->function);
    const QString filter = m_filter.isEmpty() ? QString() : u" FILTER (WHERE "_s + m_filter + u')';
    if (node.all) {
        result.text = u"count(*)"_s + filter;
        return result;
    }
    const Written value = WriteAggregated(*node.children[0]);
    QString argument = value.text;
    if (found->result == Aggregate::Same) {
        result.type = value.type == DataType::Counter ? DataType::Long : value.type;
        result.size = value.size;
        result.wide = value.wide;
        argument = Sorted(value);
    } else if (found->result == Aggregate::Fraction) {
        if (value.Kind() == TypeKind::Text || value.Kind() == TypeKind::Bytes)
            m_context.AddTypeMismatch();
        if (value.Kind() == TypeKind::Unknown && !value.null)
            argument = u"zv_add("_s + value.text + u", 0)"_s;
        if (function == u"sum("_s && !value.money.isEmpty()) {
            function = u"zv_sum("_s;
            argument = value.money;
            result.type = DataType::Currency;
        }
    }
    result.text = function + argument + u')' + filter;
    if (result.type == DataType::Currency)
        SetMoney(result, result.text);
    return result;
}

/// The argument of an aggregate.
Written ExpressionWriter::WriteAggregated(const Node& node) {
    const AggregateRule rule = std::exchange(m_rule, AggregateRule::InExpression);
    const bool own = std::exchange(m_sawOwn, false);
    const bool outer = std::exchange(m_sawOuter, false);
    Written value = Value(node);
    if (m_sawOuter && !m_sawOwn && !m_scope.Sources().empty()) {
        // SQLite would take the aggregate for one of the statement around this one.
        const QString text = Delivered(value).text;
        value = DeliveredValue(value, u"CASE "_s + m_scope.Sources().front().columns.front().value.text +
                                          u" WHEN 0 THEN "_s + text + u" ELSE "_s + text + u" END"_s);
    }
    m_sawOwn = m_sawOwn || own;
    m_sawOuter = m_sawOuter || outer;
    m_rule = rule;
    return value;
}

std::optional<Written> ExpressionWriter::WriteChoice(const Node& node) {
    if (Names(u"IIF", node.name))
        return WriteIif(node);
    if (Names(u"SWITCH", node.name))
        return WriteSwitch(node);
    if (Names(u"CHOOSE", node.name))
        return WriteChoose(node);
    if (Names(u"ISNULL", node.name)) {
        if (node.children.size() != 1)
            FailArguments(node);
        Written result;
        result.text = Value(*node.children[0]).At(AddPrecedence) + u" IS NULL"_s;
        result.precedence = EqualPrecedence;
        result.condition = true;
        result.type = DataType::Bit;
        result.nullable = false;
        return result;
    }
    return {};
}

/// CASE computes only what it needs, as the engine does. An IIF in the last place continues the same CASE.
Written ExpressionWriter::WriteIif(const Node& node) {
    Choice choice(u"CASE"_s);
    const Node* current = &node;
    for (;;) {
        if (current->children.size() != 3)
            FailArguments(*current);
        const QString condition = Condition(*current->children[0]).text;
        choice.Add(u" WHEN "_s + condition + u" THEN "_s, Value(*current->children[1]));
        const Node& otherwise = *current->children[2];
        if (otherwise.kind == NodeKind::Call && !otherwise.all && Names(u"IIF", otherwise.name)) {
            current = &otherwise;
            continue;
        }
        choice.Add(u" ELSE "_s, Value(otherwise));
        return choice.Take();
    }
}

Written ExpressionWriter::WriteSwitch(const Node& node) {
    if (node.children.empty() || node.children.size() % 2 != 0)
        FailArguments(node);
    Choice choice(u"CASE"_s);
    for (std::size_t i = 0; i < node.children.size(); i += 2) {
        const QString condition = Condition(*node.children[i]).text;
        choice.Add(u" WHEN "_s + condition + u" THEN "_s, Value(*node.children[i + 1]));
    }
    return choice.Take();
}

Written ExpressionWriter::WriteChoose(const Node& node) {
    if (node.children.size() < 2)
        FailArguments(node);
    const Written index = Value(*node.children[0]);
    Choice choice(IsWholeNumber(index.type) ? u"CASE "_s + index.text
                                            : u"CASE zv_round("_s + index.text + u')');
    for (std::size_t i = 1; i < node.children.size(); ++i)
        choice.Add(u" WHEN "_s + QString::number(i) + u" THEN "_s, Value(*node.children[i]));
    return choice.Take();
}

Written ExpressionWriter::WriteFunction(const Node& node) {
    const functions::FunctionInfo* info = functions::FindFunction(node.name);
    if (!info)
        RaiseEngine(UndefinedFunction, node.name);
    const int count = static_cast<int>(node.children.size());
    if (count < info->minArguments || count > info->maxArguments)
        FailArguments(node);
    const bool readsText =
        std::ranges::any_of(textFunctions,
                            [&](std::u16string_view name) { return Names(name, node.name); }) ||
        (count == 1 && Names(u"FORMAT", node.name));
    Written result;
    result.type = info->result;
    result.text = u"zv_"_s + QString::fromLatin1(info->name).toLower() + u'(';
    for (int i = 0; i < count; ++i) {
        const Written value = Value(*node.children[static_cast<std::size_t>(i)]);
        if (i > 0)
            result.text += u", "_s;
        if (readsText && value.Kind() == TypeKind::Date)
            result.text += u"zv_datetext("_s + value.text + u')';
        else
            result.text += Argument(value);
        if (i == 0 && info->result == DataType::Unknown) {
            result.type = value.Kind() == TypeKind::Text ? DataType::Double : value.type;
            result.wide = value.wide;
        }
    }
    result.text += u')';
    if (result.type == DataType::Currency)
        SetMoney(result, result.text);
    // A truth may come as 1 or as -1.
    if (info->result == DataType::Bit) {
        result.text += u" <> 0"_s;
        result.precedence = EqualPrecedence;
        result.condition = true;
    }
    return result;
}

} // namespace engine::sql
