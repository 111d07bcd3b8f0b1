#pragma once

#include "platform/engine/functions/Functions.h"
#include "tests/support/Expect.h"

#include <QString>
#include <sqlite3.h>

#include <memory>

namespace test {

inline QString Text(const char16_t* text) {
    return QString::fromUtf16(text);
}

/// A memory database with our functions, which answers one-value statements as text.
class Scratch {
public:
    Scratch() {
        sqlite3_open16(u":memory:", &m_db);
        engine::functions::RegisterCollations(m_db);
        engine::functions::RegisterFunctions(m_db);
    }
    ~Scratch() { sqlite3_close(m_db); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    /// The value of the first row's first column; "NULL"; "#n" for our failure n; "!text" for SQLite's own.
    QString Ask(const QString& sql) {
        sqlite3_stmt* prepared = nullptr;
        if (sqlite3_prepare16_v2(m_db, sql.utf16(), -1, &prepared, nullptr) != SQLITE_OK)
            return Message();
        const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> statement(prepared, &sqlite3_finalize);
        switch (sqlite3_step(prepared)) {
        case SQLITE_ROW:
            return Value(prepared);
        case SQLITE_DONE:
            return QStringLiteral("nothing");
        default:
            return Failure();
        }
    }
    QString Ask(const char* sql) { return Ask(QString::fromUtf8(sql)); }

    sqlite3* Handle() const { return m_db; }

private:
    static QString Value(sqlite3_stmt* statement) {
        switch (sqlite3_column_type(statement, 0)) {
        case SQLITE_NULL:
            return QStringLiteral("NULL");
        case SQLITE_FLOAT: {
            QString number = QString::number(sqlite3_column_double(statement, 0), 'g', 12);
            // A fraction is told from a whole number.
            if (!number.contains(u'.') && !number.contains(u'e'))
                number += QStringLiteral(".0");
            return number;
        }
        default:
            return QString(static_cast<const QChar*>(sqlite3_column_text16(statement, 0)),
                           sqlite3_column_bytes16(statement, 0) / 2);
        }
    }

    QString Message() const { return u'!' + QString(static_cast<const QChar*>(sqlite3_errmsg16(m_db))); }
    QString Failure() const {
        try {
            engine::functions::RethrowFailure();
            return Message();
        } catch (const runtime::Failure& failure) {
            return failure.description().isEmpty() ? QStringLiteral("#without text")
                                                   : u'#' + QString::number(failure.number());
        }
    }

    sqlite3* m_db = nullptr;
};

} // namespace test
