#pragma once

#include "platform/engine/run/PlanCache.h"
#include "platform/engine/store/Counters.h"
#include "platform/engine/store/Transactions.h"

#include <forward_list>

namespace engine {

/// What a statement runs with. It is reset at the end, before what was bound goes.
class Binding {
public:
    explicit Binding(Statement& statement)
        : m_statement(statement) {}
    ~Binding() { m_statement.Reset(); }
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

    /// The literal as it is; the statement's text outlives the run.
    void Bind(int place, const sql::Literal& literal);
    /// The parameters of a query, from this place on.
    void Bind(int firstPlace, const std::vector<sql::Parameter>& parameters,
              const std::vector<sql::Literal>& literals);
    /// A value that nobody else keeps.
    void Keep(int place, Value value);

private:
    Statement& m_statement;
    std::forward_list<Value> m_values; ///< which do not move
};

/// Runs action statements, and counts what they change.
class Runner {
public:
    Runner(const Sqlite& db, Transactions& commits, Counters& counters)
        : m_db(db)
        , m_commits(commits)
        , m_counters(counters) {}

    /// Runs an INSERT, UPDATE or DELETE within the group or the transaction; the number of rows that it has
    /// changed.
    int Run(const BoundPlan& bound, bool failOnError);

    /// Grows with every change: of one table, or of any if the name is empty.
    std::uint64_t ChangeCount(const QString& table) const {
        return table.isEmpty() ? m_changes : m_upheavals + m_tableChanges.value(table);
    }
    /// Something has changed that may concern any table.
    void NoteUpheaval() noexcept {
        ++m_upheavals;
        ++m_changes;
    }

private:
    void NoteInsert(const sql::Plan& plan, int changed, bool leftOut);

    const Sqlite& m_db;
    Transactions& m_commits;
    Counters& m_counters;
    std::uint64_t m_changes = 0; ///< of everything
    QHash<QString, std::uint64_t> m_tableChanges;
    std::uint64_t m_upheavals = 0; ///< changes that may concern any table
};

} // namespace engine
