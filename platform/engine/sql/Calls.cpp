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
        : m_start(start) {}

    /// `words` stand in front of the result.
    void Add(const QString& words, const Written& result) {
        m_results.emplace_back(words, result);
        m_wide = m_wide || result.wide;
        if (!result.null)
            m_type = m_type ? CommonType(*m_type, result.type) : result.type;
    }

    Written Take() const {
        const bool amounts = m_type == DataType::Currency;
        QString text = m_start;
        for (const auto& [words, result] : m_results)
            text += words + (amounts ? Units(result) : result.text);
        text += u" END"_s;
        Written choice = amounts ? MakeAmount(text) : MakeWritten(text, m_type.value_or(DataType::Unknown));
        choice.wide = m_wide;
        return choice;
    }

private:
    QString m_start;
    std::vector<std::pair<QString, Written>> m_results;
    std::optional<DataType> m_type;
    bool m_wide = false;
};

const Aggregate* FindAggregate(const QString& name) {
    const auto found =
        std::ranges::find_if(aggregates, [&](const Aggregate& a) { return Names(a.name, name); });
    return found == aggregates.end() ? nullptr : &*found;
}

} // namespace

bool ExpressionWriter::IsAggregate(const QString& name) {
    return FindAggregate(name) != nullptr;
}

void ExpressionWriter::FailArguments(const Node& node) const {
    m_context.RaiseSyntax(node, u"Функция использована с неверным числом аргументов"_s);
}

Written ExpressionWriter::WriteCall(const Node& node) {
    if (IsAggregate(node.name))
        return WriteAggregate(node);
    if (node.all)
        m_context.RaiseSyntax(node, u"Ошибка синтаксиса"_s);
    if (Names(u"IIF", node.name))
        return WriteIif(node);
    if (Names(u"SWITCH", node.name))
        return WriteSwitch(node);
    if (Names(u"CHOOSE", node.name))
        return WriteChoose(node);
    if (Names(u"ISNULL", node.name)) {
        if (node.children.size() != 1)
            FailArguments(node);
        return WriteIsNull(*node.children[0], false);
    }
    return WriteFunction(node);
}

Written ExpressionWriter::WriteAggregate(const Node& node) {
    const Aggregate& aggregate = *FindAggregate(node.name);
    const bool counts = aggregate.result == Aggregate::Whole;
    if (node.all ? !counts : node.children.size() != 1)
        FailArguments(node);
    if (m_aggregateFailure != 0)
        RaiseEngine(m_aggregateFailure, m_context.Text(node).toString());
    m_sawAggregate = true;
    const QString filter = m_filter.isEmpty() ? QString() : u" FILTER (WHERE "_s + m_filter + u')';
    if (node.all)
        return MakeWritten(u"count(*)"_s + filter, DataType::Long);
    const Written value = WriteAggregated(*node.children[0]);
    const QString function = QString::fromUtf16(aggregate.function);
    if (aggregate.result == Aggregate::Same) {
        const QString text = function + Sorted(value).text + u')' + filter;
        Written same = value.type == DataType::Currency  ? MakeAmount(text)
                       : value.type == DataType::Counter ? MakeWritten(text, DataType::Long)
                                                         : MakeWritten(text, value.type);
        same.size = value.size;
        same.wide = value.wide;
        return same;
    }
    if (counts)
        return MakeWritten(function + value.text + u')' + filter, DataType::Long);
    if (value.IsText() || value.Kind() == TypeKind::Bytes)
        m_context.AddTypeMismatch();
    if (Names(aggregate.name, u"SUM"_s) && value.IsAmount())
        return MakeAmount(u"zv_sum("_s + value.money + u')' + filter);
    const QString number = value.IsUnknown() ? u"zv_add("_s + value.text + u", 0)"_s : value.text;
    return MakeWritten(function + number + u')' + filter, DataType::Double);
}

/// The argument of an aggregate.
Written ExpressionWriter::WriteAggregated(const Node& node) {
    const int failure = std::exchange(m_aggregateFailure, AggregateInExpression);
    const bool own = std::exchange(m_sawOwn, false);
    const bool outer = std::exchange(m_sawOuter, false);
    Written value = Value(node);
    if (m_sawOuter && !m_sawOwn && !m_scope.sources.empty()) {
        // SQLite would take the aggregate for one of the statement around this one.
        const QString text = Delivered(value).text;
        value = DeliveredValue(value, u"CASE "_s + m_scope.sources.front().columns.front().value.text +
                                          u" WHEN 0 THEN "_s + text + u" ELSE "_s + text + u" END"_s);
    }
    m_sawOwn = m_sawOwn || own;
    m_sawOuter = m_sawOuter || outer;
    m_aggregateFailure = failure;
    return value;
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
    DataType type = info->result;
    bool wide = false;
    QStringList arguments;
    for (const NodePtr& child : node.children) {
        const Written value = Value(*child);
        if (arguments.isEmpty() && type == DataType::Unknown) {
            type = value.IsText() ? DataType::Double : value.type;
            wide = value.wide;
        }
        arguments += readsText && value.IsDate() ? u"zv_datetext("_s + value.text + u')' : Argument(value);
    }
    const QString text =
        u"zv_"_s + QString::fromLatin1(info->name).toLower() + u'(' + arguments.join(u", "_s) + u')';
    // A truth may come as 1 or as -1.
    if (info->result == DataType::Bit)
        return MakeCondition(text + u" <> 0"_s, EqualPrecedence);
    Written result = type == DataType::Currency ? MakeAmount(text) : MakeWritten(text, type);
    result.wide = wide;
    return result;
}

} // namespace engine::sql
