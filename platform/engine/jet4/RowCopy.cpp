#include "platform/engine/jet4/RowCopy.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/store/SqliteFailure.h"

#include <QFile>
#include <sqlite3.h>

#include <utility>

namespace engine::jet4 {

namespace {

/// The columns of a table that the new file has, with their places in a row that is read.
struct CopiedColumns {
    QStringList names; ///< in quotes
    std::vector<std::size_t> places;
    int rowNumber = -1; ///< which of them SQLite keeps as the row number
};

/// Raises 3043 if the new file lacks one.
CopiedColumns ColumnsOf(const Table& table, const FileCatalog& catalog) {
    const Layout* layout = catalog.FindLayout(table.name);
    CopiedColumns columns;
    for (std::size_t place = 0; place < table.columns.size(); ++place) {
        const Column& column = table.columns[place];
        if (column.type == DataType::Unknown)
            continue;
        const int target = layout ? layout->info.Find(column.name) : -1;
        if (target < 0)
            RaiseEngine(DiskOrNetworkFailure);
        if (target == layout->info.RowNumberColumn())
            columns.rowNumber = static_cast<int>(columns.places.size());
        columns.names += QuoteName(column.name);
        columns.places.push_back(place);
    }
    return columns;
}

qsizetype BytesIn(const std::vector<Value>& values) {
    qsizetype bytes = 0;
    for (const Value& value : values) {
        if (const auto* text = value.As<QString>())
            bytes += text->size() * 2;
        else if (const auto* held = value.As<QByteArray>())
            bytes += held->size();
    }
    return bytes;
}

QString InsertText(const Table& table, const CopiedColumns& columns, std::size_t rows) {
    const QStringList parameters(columns.names.size(), QStringLiteral("?"));
    const QStringList values(static_cast<qsizetype>(rows), u'(' + parameters.join(u',') + u')');
    return QStringLiteral("INSERT INTO %1 (%2) VALUES ")
               .arg(QuoteName(table.name), columns.names.join(u',')) +
           values.join(u',');
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

void RowCopy::CopyAll(const std::vector<Table>& tables) {
    Run("BEGIN");
    for (const Table& table : tables)
        Copy(table);
    Run("COMMIT");
}

void RowCopy::CompareAll(const std::vector<Table>& tables) {
    for (const Table& table : tables)
        Compare(table);
}

void RowCopy::Prepare(Statement& statement, const QString& text) {
    if (const int code = statement.Prepare(m_db, text, Statement::Lifetime::Kept); code != SQLITE_OK)
        Raise(code);
}

// Many rows go into one statement: what SQLite does once for each statement weighs as much as a row.
void RowCopy::Copy(const Table& table) {
    const CopiedColumns columns = ColumnsOf(table, FileCatalog(m_db, m_path));
    if (columns.places.empty())
        return;
    constexpr std::size_t mostRows = 50;
    constexpr qsizetype mostBytes = 1 << 20;
    std::vector<std::vector<Value>> rows;
    qsizetype bytes = 0;
    Statement insert;
    std::size_t prepared = 0;
    const auto write = [&] {
        if (rows.size() != std::exchange(prepared, rows.size()))
            Prepare(insert, InsertText(table, columns, rows.size()));
        int parameter = 0;
        for (const std::vector<Value>& values : rows) {
            for (const std::size_t place : columns.places)
                insert.Bind(++parameter, values[place]);
        }
        if (const int code = insert.Step(); code != SQLITE_DONE)
            Raise(code);
        insert.Reset();
        rows.clear();
        bytes = 0;
    };
    m_reader.ForEachRow(table, [&](std::vector<Value>& values) {
        bytes += BytesIn(values);
        rows.push_back(std::move(values));
        if (rows.size() == mostRows || bytes > mostBytes)
            write();
    });
    if (!rows.empty())
        write();
}

// Rows with a key are looked up by it; the others stand in the order in which they were written.
void RowCopy::Compare(const Table& table) {
    const CopiedColumns columns = ColumnsOf(table, FileCatalog(m_db, m_path));
    if (columns.places.empty())
        return;
    const bool keyed = columns.rowNumber >= 0;
    const auto key = static_cast<std::size_t>(columns.rowNumber);
    const QString name = QuoteName(table.name);
    Statement found;
    Prepare(found, QStringLiteral("SELECT %1 FROM %2 ").arg(columns.names.join(u','), name) +
                       (keyed ? QStringLiteral("WHERE %1 = ?").arg(columns.names[columns.rowNumber])
                              : QStringLiteral("NOT INDEXED")));
    std::int64_t count = 0;
    m_reader.ForEachRow(table, [&](const std::vector<Value>& values) {
        ++count;
        if (keyed) {
            found.Reset();
            found.Bind(1, values[columns.places[key]]);
        }
        bool equal = found.Step() == SQLITE_ROW;
        for (std::size_t i = 0; equal && i < columns.places.size(); ++i)
            equal = Equals(found, static_cast<int>(i), values[columns.places[i]]);
        if (!equal)
            RaiseEngine(DiskOrNetworkFailure);
    });
    Statement all;
    Prepare(all, QStringLiteral("SELECT count(*) FROM ") + name);
    if (all.Step() != SQLITE_ROW || all.Number(0) != count)
        RaiseEngine(DiskOrNetworkFailure);
}

} // namespace engine::jet4
