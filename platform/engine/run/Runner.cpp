#include "platform/engine/run/Runner.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"

#include <sqlite3.h>

#include <algorithm>

namespace engine {

namespace {

// Most literals are what their column holds already.
bool FitsAsItIs(const sql::Literal& literal, const ColumnInfo& column) {
    if (literal.Whole() != nullptr)
        return column.type == DataType::Long || column.type == DataType::Counter;
    const QStringView text = literal.Plain();
    const bool takesText = column.type == DataType::Text || column.type == DataType::Memo;
    return takesText && !text.isNull() && (column.size <= 0 || text.size() <= column.size);
}

// A value that its column will certainly refuse: an UPDATE whose value cannot be converted fails only if it
// hits a row.
Value RefusedValue(const ColumnInfo& column) {
    const int size = std::max(column.size, functions::guidSize) + 1;
    return column.type == DataType::Binary ? Value(QByteArray(size, 'x')) : Value(QString(size, u'x'));
}

/// The failure that a value of an UPDATE raises once it hits a row.
using Refusal = std::optional<runtime::Failure>;

/// Binds a value that goes into a column. What cannot be converted is NULL without failOnError; with it an
/// INSERT raises, and an UPDATE keeps the failure and binds what its column refuses. False: the one row is
/// left out.
bool BindConverted(Binding& binding, int place, const sql::Literal& literal, const ColumnInfo& column,
                   bool inserts, bool failOnError, Refusal& refused) {
    try {
        binding.Keep(place, functions::ToColumn(literal.ToValue(), column.type, column.size));
    } catch (const runtime::Failure& failure) {
        const bool tooLong = failure.number() == ValueTooLong;
        if (inserts && failOnError)
            throw;
        if (inserts && tooLong)
            return false;
        if (failOnError && !refused)
            refused = failure;
        binding.Keep(place, failOnError || tooLong ? RefusedValue(column) : Value());
    }
    return true;
}

} // namespace

void Binding::Bind(int place, const sql::Literal& literal) {
    if (const std::int64_t* whole = literal.Whole())
        m_statement.BindNumber(place, *whole);
    else if (const QStringView text = literal.Plain(); !text.isNull())
        m_statement.BindText(place, text);
    else
        Keep(place, literal.ToValue());
}

void Binding::Bind(int firstPlace, const std::vector<sql::Parameter>& parameters,
                   const std::vector<sql::Literal>& literals) {
    for (int place = firstPlace; const sql::Parameter& parameter : parameters)
        Bind(place++, literals[static_cast<std::size_t>(parameter.literal)]);
}

void Binding::Keep(int place, Value value) {
    m_statement.Bind(place, m_values.emplace_front(std::move(value)));
}

int Runner::Run(const BoundPlan& bound, bool failOnError) {
    CachedPlan& cached = *bound.cached;
    const sql::Plan& plan = cached.plan;
    const bool inserts = plan.verb == sql::Verb::Insert;
    Statement& statement = failOnError ? cached.text : cached.ignoreText;
    if (!statement)
        statement = Statement(m_db, failOnError ? plan.text : plan.ignoreText, Doing::Write, plan.target,
                              Statement::Lifetime::Kept);
    Refusal refused;
    Binding binding(statement);
    for (int place = 1; const sql::Parameter& parameter : plan.parameters) {
        const sql::Literal& literal = bound.scanned.literals[static_cast<std::size_t>(parameter.literal)];
        if (!parameter.column || FitsAsItIs(literal, *parameter.column))
            binding.Bind(place, literal);
        else if (!BindConverted(binding, place, literal, *parameter.column, inserts, failOnError, refused))
            return 0;
        ++place;
    }
    if (inserts)
        m_counters.BeforeInsert(plan.target);
    m_commits.CheckAlive();
    const int code = statement.Step();
    // A key without a value: SQLite leaves the statement out, not the row alone.
    const bool done = code == SQLITE_DONE || ((code & 0xff) == SQLITE_MISMATCH && !failOnError);
    if (!done && !refused)
        refused = statement.FailureOf(code);
    const int changed = code == SQLITE_DONE ? m_db.Changes() : 0;
    if (changed > 0) {
        ++m_changes;
        ++m_tableChanges[plan.target];
    }
    if (cached.countsUp)
        NoteInsert(plan, changed,
                   (code & 0xff) == SQLITE_CONSTRAINT || (done && !failOnError && changed == 0));
    if (!done)
        throw runtime::Failure(*refused);
    return changed;
}

void Runner::NoteInsert(const sql::Plan& plan, int changed, bool leftOut) {
    if (changed > 0)
        m_counters.Inserted(plan.target, m_db.LastRow());
    else if (leftOut && !plan.setsCounter)
        m_counters.Failed(plan.target);
}

} // namespace engine
