#pragma once

#include "platform/engine/functions/Functions.h"

#include <QString>
#include <sqlite3.h>

#include <ostream>

// GoogleTest prints texts that differ.
inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}

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
        sqlite3_stmt* statement = nullptr;
        QString answer;
        if (sqlite3_prepare16_v2(m_db, sql.utf16(), -1, &statement, nullptr) != SQLITE_OK) {
            answer = Message();
        } else {
            switch (sqlite3_step(statement)) {
            case SQLITE_ROW:
                answer = Value(statement);
                break;
            case SQLITE_DONE:
                answer = QStringLiteral("nothing");
                break;
            default:
                answer = Message();
            }
        }
        sqlite3_finalize(statement);
        return answer;
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

    QString Message() const {
        const QString message(static_cast<const QChar*>(sqlite3_errmsg16(m_db)));
        int number = 0;
        QString description;
        if (engine::functions::FailureOf(message, number, description))
            return description.isEmpty() ? QStringLiteral("#without text") : u'#' + QString::number(number);
        return u'!' + message;
    }

    sqlite3* m_db = nullptr;
};

} // namespace test
