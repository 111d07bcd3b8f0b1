// The aggregates that SQLite lacks. All but zv_single pass over NULL, and give NULL over too few rows.

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Call.h"

#include <cmath>
#include <memory>
#include <new>
#include <optional>

namespace engine::functions {

namespace {

/// A value kept beyond its row.
class Kept {
public:
    void Keep(sqlite3_value* value) {
        m_value.reset(sqlite3_value_dup(value));
        if (!m_value)
            throw std::bad_alloc();
    }
    explicit operator bool() const { return m_value != nullptr; }
    void Give(sqlite3_context* context) const {
        if (m_value)
            sqlite3_result_value(context, m_value.get());
    }

private:
    struct Free {
        void operator()(sqlite3_value* value) const { sqlite3_value_free(value); }
    };
    std::unique_ptr<sqlite3_value, Free> m_value;
};

/// The first or the last value in the order of delivery.
template <bool Last>
struct Edge {
    Kept kept;

    void Add(sqlite3_value* value) {
        if (Last || !kept)
            kept.Keep(value);
    }
    void Give(sqlite3_context* context) const { kept.Give(context); }
};

/// The value of the only row, be it NULL; failure 3354 of several.
struct Single {
    static constexpr bool takesNull = true;
    Kept kept;

    void Add(sqlite3_value* value) {
        if (kept)
            RaiseEngine(SubqueryRows);
        kept.Keep(value);
    }
    void Give(sqlite3_context* context) const { kept.Give(context); }
};

/// The sum of amounts of money in ten-thousandths; failure 6.
struct Sum {
    Money sum;

    void Add(sqlite3_value* value) { sum = sum + Money{sqlite3_value_int64(value)}; }
    void Give(sqlite3_context* context) const { sqlite3_result_int64(context, sum.units); }
};

/// Variance of a sample or of a whole, or its root. Mean and sum of squared distances are carried along row
/// by row, so that large equal values lose no digits.
template <bool Sample, bool Root>
struct Spread {
    std::int64_t count = 0;
    double mean = 0;
    double squares = 0;

    void Add(sqlite3_value* given) {
        const Value value = FromSqlite(given);
        if (!value.IsNumeric())
            RaiseEngine(TypeMismatchInCriteria);
        const double distance = value.Number() - mean;
        mean += distance / static_cast<double>(++count);
        squares += distance * (value.Number() - mean);
    }
    void Give(sqlite3_context* context) const {
        const std::int64_t divisor = count - (Sample ? 1 : 0);
        if (divisor <= 0)
            return;
        const double variance = squares / static_cast<double>(divisor);
        sqlite3_result_double(context, Root ? std::sqrt(variance) : variance);
    }
};

/// The state of a group, made at the first row that counts: SQLite keeps and clears the place for the
/// pointer.
template <class State>
State** StateOf(sqlite3_context* context, int size) {
    return static_cast<State**>(sqlite3_aggregate_context(context, size));
}

template <class State>
void Step(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    if (!requires { State::takesNull; } && sqlite3_value_type(values[0]) == SQLITE_NULL)
        return;
    try {
        State** state = StateOf<State>(context, sizeof(State*));
        if (!state)
            throw std::bad_alloc();
        if (!*state)
            *state = new State;
        (*state)->Add(values[0]);
    } catch (...) { // no exception may pass through SQLite
        SetFailure(context);
    }
}

template <class State>
void End(sqlite3_context* context) {
    State** state = StateOf<State>(context, 0);
    const std::unique_ptr<State> ended(state ? *state : nullptr);
    if (ended)
        ended->Give(context);
}

template <class State>
void Register(sqlite3* db, const char* name) {
    CheckRegistered(sqlite3_create_function_v2(db, name, 1,
                                               SQLITE_UTF16 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY,
                                               nullptr, nullptr, Step<State>, End<State>, nullptr));
}

} // namespace

void RegisterAggregates(sqlite3* db) {
    Register<Edge<false>>(db, "zv_first");
    Register<Edge<true>>(db, "zv_last");
    Register<Sum>(db, "zv_sum");
    Register<Single>(db, "zv_single");
    Register<Spread<true, true>>(db, "zv_stdev");
    Register<Spread<false, true>>(db, "zv_stdevp");
    Register<Spread<true, false>>(db, "zv_var");
    Register<Spread<false, false>>(db, "zv_varp");
}

} // namespace engine::functions
