#include "platform/engine/store/Counters.h"

#include "platform/engine/store/Statement.h"

#include <sqlite3.h>

#include <algorithm>

namespace engine {

int Counters::BeforeInsert(const QString& table) {
    const auto counter = m_counters.find(table);
    if (counter == m_counters.end() || !counter->behind)
        return SQLITE_OK;
    const int code = Last(table) < counter->last ? SetLast(table, counter->last) : SQLITE_OK;
    counter->behind = code != SQLITE_OK;
    return code;
}

void Counters::Inserted(const QString& table, std::int64_t number) {
    Counter& counter = m_counters[table];
    counter.last = std::max(counter.last, number);
}

void Counters::Failed(const QString& table) {
    Counter& counter = m_counters[table];
    counter.last = std::max(counter.last, Last(table)) + 1;
    counter.behind = true;
}

void Counters::Undone() {
    for (Counter& counter : m_counters)
        counter.behind = true;
}

std::int64_t Counters::Last(const QString& table) const {
    Statement statement;
    if (statement.Prepare(m_db, u"SELECT seq FROM sqlite_sequence WHERE name = ?1") != SQLITE_OK)
        return 0; // there is no counter in the file yet
    statement.BindText(1, table);
    return statement.Step() == SQLITE_ROW ? statement.Number(0) : 0;
}

int Counters::SetLast(const QString& table, std::int64_t number) const {
    const auto run = [&](QStringView text) {
        Statement statement;
        const int code = statement.Prepare(m_db, text);
        if (code != SQLITE_OK)
            return code;
        statement.BindText(1, table);
        statement.BindNumber(2, number);
        return statement.Step();
    };
    // A table without rows so far has no note yet; its name stands there once at most.
    const int code = run(u"DELETE FROM sqlite_sequence WHERE name = ?1 AND ?2 IS NOT NULL");
    if (code != SQLITE_DONE)
        return code;
    const int inserted = run(u"INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)");
    return inserted == SQLITE_DONE ? SQLITE_OK : inserted;
}

} // namespace engine
