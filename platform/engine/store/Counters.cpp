#include "platform/engine/store/Counters.h"

#include "platform/engine/store/Statement.h"

#include <algorithm>

namespace engine {

void Counters::BeforeInsert(const QString& table) {
    const auto counter = m_counters.find(table);
    if (counter == m_counters.end() || !counter->behind)
        return;
    if (Last(table) < counter->last)
        SetLast(table, counter->last);
    counter->behind = false;
}

void Counters::Inserted(const QString& table, std::int64_t number) {
    Counter& counter = m_counters[table];
    counter.last = std::max(counter.last, number);
}

void Counters::Failed(const QString& table) {
    Counter& counter = m_counters[table];
    counter.behind = true;
    counter.last = std::max(counter.last, Last(table)) + 1;
}

void Counters::Undone() {
    for (Counter& counter : m_counters)
        counter.behind = true;
}

std::int64_t Counters::Last(const QString& table) const {
    if (m_db.Number("SELECT count(*) FROM sqlite_schema WHERE name = 'sqlite_sequence'") == 0)
        return 0;
    Statement last(m_db, u"SELECT seq FROM sqlite_sequence WHERE name = ?1");
    last.BindText(1, table);
    return last.Next() ? last.Number(0) : 0;
}

void Counters::SetLast(const QString& table, std::int64_t number) const {
    // A table without rows so far has no note yet; its name stands there once at most.
    for (const QStringView text : {u"DELETE FROM sqlite_sequence WHERE name = ?1 AND ?2 IS NOT NULL",
                                   u"INSERT INTO sqlite_sequence (name, seq) VALUES (?1, ?2)"}) {
        Statement statement(m_db, text, Doing::Write, table);
        statement.BindText(1, table);
        statement.BindNumber(2, number);
        statement.Next();
    }
}

} // namespace engine
