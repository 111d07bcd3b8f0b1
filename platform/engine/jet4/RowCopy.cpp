#include "platform/engine/jet4/RowCopy.h"

#include "platform/engine/Catalog.h"
#include "platform/engine/EngineError.h"
#include "platform/engine/SqliteFailure.h"
#include "platform/engine/functions/Functions.h"

#include <QFile>
#include <sqlite3.h>

#include <algorithm>

namespace engine::jet4 {

namespace {

/// The columns of a table that the new file has, with their places in a row that is read.
struct CopiedColumns {
    QStringList names; ///< in quotes
    std::vector<std::size_t> places;
    std::vector<sql::ColumnInfo> targets;
    int rowNumber = -1; ///< which of them SQLite keeps as the row number
};

CopiedColumns ColumnsOf(const Table& table, const Layout& layout) {
    CopiedColumns columns;
    for (std::size_t place = 0; place < table.columns.size(); ++place) {
        const int target = layout.info.Find(table.columns[place].name);
        if (target < 0)
            continue;
        if (target == layout.info.RowNumberColumn())
            columns.rowNumber = static_cast<int>(columns.places.size());
        columns.names += QuoteName(table.columns[place].name);
        columns.places.push_back(place);
        columns.targets.push_back(layout.info.columns[static_cast<std::size_t>(target)]);
    }
    return columns;
}

/// A value in the form that its column in the new file has, if that is of another type than the old one.
const Value& Converted(const Table& table, const CopiedColumns& columns, std::size_t i,
                       std::vector<Value>& values) {
    Value& value = values[columns.places[i]];
    const sql::ColumnInfo& target = columns.targets[i];
    if (table.columns[columns.places[i]].type != target.type)
        value = functions::ToColumn(value, target.type, 0, table.name + u'.' + target.name);
    return value;
}

QString InsertText(const Table& table, const CopiedColumns& columns, std::size_t rows) {
    const QStringList parameters(columns.names.size(), QStringLiteral("?"));
    const QStringList values(static_cast<qsizetype>(rows), u'(' + parameters.join(u',') + u')');
    return QStringLiteral("INSERT INTO %1 (%2) VALUES ")
               .arg(QuoteName(table.name), columns.names.join(u',')) +
           values.join(u',');
}

/// The row number under which the new file keeps a row; those without a key are counted.
std::int64_t KeyOf(const CopiedColumns& columns, const std::vector<Value>& values, std::int64_t count) {
    if (columns.rowNumber < 0)
        return count;
    return static_cast<std::int64_t>(
        values[columns.places[static_cast<std::size_t>(columns.rowNumber)]].Number());
}

bool Equals(const Statement& statement, int column, const Value& value) {
    sqlite3_stmt* row = statement.Handle();
    const int type = sqlite3_column_type(row, column);
    if (const auto* text = value.As<QString>()) {
        if (type != SQLITE_TEXT)
            return false;
        const auto* found = static_cast<const char16_t*>(sqlite3_column_text16(row, column));
        return QStringView(found, sqlite3_column_bytes16(row, column) / 2) == *text;
    }
    if (const auto* whole = value.As<std::int64_t>())
        return type == SQLITE_INTEGER && sqlite3_column_int64(row, column) == *whole;
    if (const auto* amount = value.As<Money>())
        return type == SQLITE_INTEGER && sqlite3_column_int64(row, column) == amount->units;
    if (const auto* truth = value.As<bool>())
        return type == SQLITE_INTEGER && sqlite3_column_int64(row, column) == (*truth ? 1 : 0);
    if (const auto* number = value.As<double>())
        return type == SQLITE_FLOAT && sqlite3_column_double(row, column) == *number;
    if (const auto* bytes = value.As<QByteArray>())
        return type == SQLITE_BLOB &&
               QByteArrayView(static_cast<const char*>(sqlite3_column_blob(row, column)),
                              sqlite3_column_bytes(row, column)) == *bytes;
    return type == SQLITE_NULL;
}

} // namespace

RowCopy::RowCopy(const QString& file, const Reader& reader, QString path)
    : m_reader(reader)
    , m_path(std::move(path)) {
    const int code =
        sqlite3_open_v2(QFile::encodeName(file).constData(), &m_db,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    try {
        if (code != SQLITE_OK)
            Raise(code);
        functions::RegisterCollations(m_db);
        functions::RegisterFunctions(m_db);
        // The rules of a column are newer than the rows: an empty text in a column that refuses it is kept.
        for (const char* pragma :
             {"PRAGMA locking_mode = EXCLUSIVE", "PRAGMA journal_mode = OFF", "PRAGMA synchronous = OFF",
              "PRAGMA cache_size = -16000", "PRAGMA ignore_check_constraints = ON"})
            Run(pragma);
    } catch (...) {
        sqlite3_close(m_db);
        throw;
    }
}

RowCopy::~RowCopy() {
    sqlite3_close(m_db);
}

void RowCopy::Raise(int code) {
    if ((code & 0xFF) == SQLITE_CONSTRAINT)
        RaiseEngine(CannotOpenDatabase, m_path);
    throw FailureFrom(m_db, code, Doing::Write, m_path);
}

void RowCopy::Run(const char* text) {
    if (const int code = sqlite3_exec(m_db, text, nullptr, nullptr, nullptr); code != SQLITE_OK)
        Raise(code);
}

void RowCopy::CopyAll() {
    Run("BEGIN");
    for (const Table& table : m_reader.Tables())
        Copy(table);
    Run("COMMIT");
}

void RowCopy::CompareAll() {
    for (const Table& table : m_reader.Tables())
        Compare(table);
}

// Many rows go into one statement: what SQLite does once for each statement weighs as much as a row.
void RowCopy::Copy(const Table& table) {
    const FileCatalog catalog(m_db, m_path);
    const Layout* layout = catalog.FindLayout(table.name);
    if (!layout)
        return;
    const CopiedColumns columns = ColumnsOf(table, *layout);
    const std::vector<RowPlace> places = m_reader.Rows(table);
    constexpr std::size_t most = 50;
    std::vector<std::vector<Value>> rows(std::min(most, places.size()));
    Statement insert;
    std::size_t prepared = 0;
    for (std::size_t start = 0; start < places.size(); start += prepared) {
        const std::size_t count = std::min(most, places.size() - start);
        if (count != prepared)
            Prepare(insert, InsertText(table, columns, count));
        prepared = count;
        int parameter = 0;
        for (std::size_t row = 0; row < count; ++row) {
            m_reader.Read(table, places[start + row], rows[row]);
            for (std::size_t i = 0; i < columns.places.size(); ++i)
                insert.Bind(++parameter, Converted(table, columns, i, rows[row]));
        }
        if (const int code = insert.Step(); code != SQLITE_DONE)
            Raise(code);
        insert.Reset();
    }
}

void RowCopy::Prepare(Statement& statement, const QString& text) {
    if (const int code = statement.Prepare(m_db, text, Statement::Lifetime::Kept); code != SQLITE_OK)
        Raise(code);
}

// The rows of an old file lie nearly in the order of their keys: they are met on the way through the new
// table, and only those that are not are looked up.
void RowCopy::Compare(const Table& table) {
    const FileCatalog catalog(m_db, m_path);
    const Layout* layout = catalog.FindLayout(table.name);
    if (!layout)
        return;
    const CopiedColumns columns = ColumnsOf(table, *layout);
    const QString text =
        QStringLiteral("SELECT rowid, %1 FROM %2").arg(columns.names.join(u','), QuoteName(table.name));
    Statement inOrder;
    Statement byKey;
    Prepare(inOrder, text + QStringLiteral(" ORDER BY rowid"));
    Prepare(byKey, text + QStringLiteral(" WHERE rowid = ?"));
    bool more = inOrder.Step() == SQLITE_ROW;
    std::int64_t count = 0;
    std::vector<Value> values;
    for (const RowPlace place : m_reader.Rows(table)) {
        m_reader.Read(table, place, values);
        ++count;
        const std::int64_t key = KeyOf(columns, values, count);
        while (more && inOrder.Number(0) < key)
            more = inOrder.Step() == SQLITE_ROW;
        const bool met = more && inOrder.Number(0) == key;
        if (!met)
            byKey.BindNumber(1, key);
        if (!met && byKey.Step() != SQLITE_ROW)
            RaiseEngine(DiskOrNetworkFailure);
        const Statement& found = met ? inOrder : byKey;
        for (std::size_t i = 0; i < columns.places.size(); ++i) {
            if (!Equals(found, static_cast<int>(i) + 1, Converted(table, columns, i, values)))
                RaiseEngine(DiskOrNetworkFailure);
        }
        if (!met)
            byKey.Reset();
    }
    Statement all;
    Prepare(all, QStringLiteral("SELECT count(*) FROM ") + QuoteName(table.name));
    if (all.Step() != SQLITE_ROW || all.Number(0) != count)
        RaiseEngine(DiskOrNetworkFailure);
}

} // namespace engine::jet4
