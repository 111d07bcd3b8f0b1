#include "platform/engine/jet4/RowCopy.h"

#include "platform/engine/Catalog.h"
#include "platform/engine/EngineError.h"
#include "platform/engine/SqliteFailure.h"
#include "platform/engine/functions/Functions.h"

#include <QFile>
#include <sqlite3.h>

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
        if (target == layout.RowNumberColumn())
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

void RowCopy::Copy(const Table& table) {
    const FileCatalog catalog(m_db, m_path);
    const Layout* layout = catalog.FindLayout(table.name);
    if (!layout)
        return;
    const CopiedColumns columns = ColumnsOf(table, *layout);
    QStringList parameters;
    for (qsizetype i = 0; i < columns.names.size(); ++i)
        parameters += QStringLiteral("?");
    Statement insert;
    const QString text = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                             .arg(QuoteName(table.name), columns.names.join(u','), parameters.join(u','));
    if (const int code = insert.Prepare(m_db, text, Statement::Lifetime::Kept); code != SQLITE_OK)
        Raise(code);
    std::vector<Value> values;
    for (const RowPlace place : m_reader.Rows(table)) {
        m_reader.Read(table, place, values);
        for (std::size_t i = 0; i < columns.places.size(); ++i)
            insert.Bind(static_cast<int>(i) + 1, Converted(table, columns, i, values));
        if (const int code = insert.Step(); code != SQLITE_DONE)
            Raise(code);
        insert.Reset();
    }
}

void RowCopy::Compare(const Table& table) {
    const FileCatalog catalog(m_db, m_path);
    const Layout* layout = catalog.FindLayout(table.name);
    if (!layout)
        return;
    const CopiedColumns columns = ColumnsOf(table, *layout);
    Statement select;
    const QString text = QStringLiteral("SELECT %1 FROM %2 WHERE rowid = ?")
                             .arg(columns.names.join(u','), QuoteName(table.name));
    if (const int code = select.Prepare(m_db, text, Statement::Lifetime::Kept); code != SQLITE_OK)
        Raise(code);
    std::vector<Value> values;
    std::int64_t count = 0;
    for (const RowPlace place : m_reader.Rows(table)) {
        m_reader.Read(table, place, values);
        ++count;
        const std::size_t key =
            columns.rowNumber < 0 ? 0 : columns.places[static_cast<std::size_t>(columns.rowNumber)];
        select.BindNumber(1, columns.rowNumber < 0 ? count : static_cast<std::int64_t>(values[key].Number()));
        bool same = select.Step() == SQLITE_ROW;
        for (std::size_t i = 0; same && i < columns.places.size(); ++i)
            same = Equals(select, static_cast<int>(i), Converted(table, columns, i, values));
        if (!same)
            RaiseEngine(DiskOrNetworkFailure);
        select.Reset();
    }
    Statement all;
    if (all.Prepare(m_db, QStringLiteral("SELECT count(*) FROM ") + QuoteName(table.name)) != SQLITE_OK ||
        all.Step() != SQLITE_ROW || all.Number(0) != count)
        RaiseEngine(DiskOrNetworkFailure);
}

} // namespace engine::jet4
