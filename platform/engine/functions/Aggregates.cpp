// The aggregates that SQLite lacks. All pass over NULL and give NULL over too few rows.

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Call.h"
#include "platform/runtime/Failure.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>

namespace engine::functions {

namespace {

struct FreeValue {
    void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
};

/// The first or the last value in the order of delivery.
struct Edge {
    std::unique_ptr<sqlite3_value, FreeValue> value;
};

/// The sum of amounts of money; none of no row.
struct Sum {
    std::optional<Money> amount;
};

/// The value of the only row.
struct Single {
    bool met = false;
    std::unique_ptr<sqlite3_value, FreeValue> value;
};

/// Mean and sum of squared distances, carried along row by row, so that large equal values lose no digits.
struct Spread {
    std::int64_t count = 0;
    double mean = 0;
    double squares = 0;

    void Take(double number) {
        ++count;
        const double distance = number - mean;
        mean += distance / static_cast<double>(count);
        squares += distance * (number - mean);
    }
};

/// SQLite gives zeroed memory for the state of a group; an object is made there at the first row.
template <class State>
struct Slot {
    bool made;
    alignas(State) unsigned char place[sizeof(State)];

    State* Get() { return std::launder(reinterpret_cast<State*>(place)); }
};

template <class State>
State* StateOf(sqlite3_context* context) {
    auto* slot = static_cast<Slot<State>*>(sqlite3_aggregate_context(context, sizeof(Slot<State>)));
    if (!slot) {
        sqlite3_result_error_nomem(context);
        return nullptr;
    }
    if (!slot->made) {
        new (slot->place) State;
        slot->made = true;
    }
    return slot->Get();
}

/// The state of a group at its end, to be given up; null for a group without rows.
template <class State>
std::unique_ptr<State, void (*)(State*)> EndState(sqlite3_context* context) {
    auto* slot = static_cast<Slot<State>*>(sqlite3_aggregate_context(context, 0));
    return {slot && slot->made ? slot->Get() : nullptr, [](State* state) { state->~State(); }};
}

template <bool Last>
void StepEdge(sqlite3_context* context, int, sqlite3_value** values) {
    Edge* edge = StateOf<Edge>(context);
    if (!edge || sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    if (Last || !edge->value) {
        edge->value.reset(sqlite3_value_dup(values[0]));
        if (!edge->value)
            sqlite3_result_error_nomem(context);
    }
}

void EndEdge(sqlite3_context* context) {
    const auto edge = EndState<Edge>(context);
    if (edge && edge->value)
        sqlite3_result_value(context, edge->value.get());
}

void StepSum(sqlite3_context* context, int, sqlite3_value** values) {
    Sum* sum = StateOf<Sum>(context);
    if (!sum || sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    try {
        sum->amount = sum->amount.value_or(Money{}) + Money{sqlite3_value_int64(values[0])};
    } catch (...) { // no exception may pass through SQLite
        SetFailure(context);
    }
}

void EndSum(sqlite3_context* context) {
    const auto sum = EndState<Sum>(context);
    if (sum && sum->amount)
        sqlite3_result_int64(context, sum->amount->units);
}

void StepSingle(sqlite3_context* context, int, sqlite3_value** values) {
    Single* single = StateOf<Single>(context);
    if (!single)
        return;
    if (single->met) {
        try {
            RaiseEngine(SubqueryRows);
        } catch (...) { // no exception may pass through SQLite
            SetFailure(context);
        }
        return;
    }
    single->met = true;
    single->value.reset(sqlite3_value_dup(values[0]));
    if (!single->value)
        sqlite3_result_error_nomem(context);
}

void EndSingle(sqlite3_context* context) {
    const auto single = EndState<Single>(context);
    if (single && single->value)
        sqlite3_result_value(context, single->value.get());
}

void StepSpread(sqlite3_context* context, int, sqlite3_value** values) {
    Spread* spread = StateOf<Spread>(context);
    if (!spread || sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    try {
        const Value value = FromSqlite(values[0]);
        if (!value.IsNumeric())
            RaiseEngine(TypeMismatchInCriteria);
        spread->Take(value.Number());
    } catch (...) { // no exception may pass through SQLite
        SetFailure(context);
    }
}

template <bool Sample, bool Root>
void EndSpread(sqlite3_context* context) {
    const auto spread = EndState<Spread>(context);
    const std::int64_t divisor = spread ? spread->count - (Sample ? 1 : 0) : 0;
    if (divisor <= 0)
        return;
    const double variance = spread->squares / static_cast<double>(divisor);
    sqlite3_result_double(context, Root ? std::sqrt(variance) : variance);
}

using Step = void (*)(sqlite3_context*, int, sqlite3_value**);
using End = void (*)(sqlite3_context*);

} // namespace

void RegisterAggregates(sqlite3* db) {
    const auto add = [db](const char* name, Step step, End end) {
        CheckRegistered(sqlite3_create_function_v2(db, name, 1,
                                                   SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY,
                                                   nullptr, nullptr, step, end, nullptr));
    };
    add("zv_first", StepEdge<false>, EndEdge);
    add("zv_last", StepEdge<true>, EndEdge);
    add("zv_sum", StepSum, EndSum);
    add("zv_single", StepSingle, EndSingle);
    add("zv_stdev", StepSpread, EndSpread<true, true>);
    add("zv_stdevp", StepSpread, EndSpread<false, true>);
    add("zv_var", StepSpread, EndSpread<true, false>);
    add("zv_varp", StepSpread, EndSpread<false, false>);
}

} // namespace engine::functions
