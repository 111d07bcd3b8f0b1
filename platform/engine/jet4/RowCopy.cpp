#include "platform/engine/jet4/RowCopy.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/SchemaEditor.h"

#include <utility>

namespace engine::jet4 {

namespace {

/// The columns that the new file has, with their places in a row that is read.
struct CopiedColumns {
    QStringList names; ///< in quotes
    std::vector<std::size_t> places;
    int rowNumber = -1; ///< which of them SQLite keeps as the row number
};

CopiedColumns ColumnsOf(const CopiedTable& table) {
    const int rowNumber = table.made.RowNumberColumn();
    CopiedColumns columns;
    for (std::size_t place = 0; place < table.source.columns.size(); ++place) {
        const QString& name = table.source.columns[place].name;
        const int target = table.made.Find(name);
        if (target < 0)
            continue;
        if (target == rowNumber)
            columns.rowNumber = static_cast<int>(columns.places.size());
        columns.names += QuoteName(name);
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

QString InsertText(const QString& table, const CopiedColumns& columns, std::size_t rows) {
    const QStringList parameters(columns.names.size(), QStringLiteral("?"));
    const QStringList values(static_cast<qsizetype>(rows), u'(' + parameters.join(u',') + u')');
    return QStringLiteral("INSERT INTO %1 (%2) VALUES ").arg(QuoteName(table), columns.names.join(u',')) +
           values.join(u',');
}

} // namespace

RowCopy::RowCopy(const QString& file, const Reader& reader, QString path)
    : m_db(file, path)
    , m_reader(reader)
    , m_path(std::move(path)) {
    // The rules of a column are newer than the rows: an empty text in a column that refuses it is kept.
    m_db.Run("PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = MEMORY; PRAGMA synchronous = OFF; "
             "PRAGMA cache_size = -16000; PRAGMA ignore_check_constraints = ON",
             Doing::Copy);
}

void RowCopy::CopyAll(const std::vector<CopiedTable>& tables) {
    m_db.Run("BEGIN", Doing::Copy);
    for (const CopiedTable& table : tables)
        Copy(table);
    m_db.Run("COMMIT", Doing::Copy);
}

void RowCopy::Make(const TableInfo& table) {
    const FileCatalog catalog(m_db);
    Counters counters(m_db);
    bool rulesAreOff = false; // they are for all of this file
    SchemaEditor(m_db, catalog, counters, rulesAreOff).Apply({.table = table});
}

void RowCopy::CompareAll(const std::vector<CopiedTable>& tables) {
    for (const CopiedTable& table : tables)
        Compare(table);
}

// Many rows go into one statement: what SQLite does once for each statement weighs as much as a row.
void RowCopy::Copy(const CopiedTable& table) {
    const CopiedColumns columns = ColumnsOf(table);
    if (columns.places.empty())
        return;
    Make(table.made);
    constexpr std::size_t mostRows = 50;
    constexpr qsizetype mostBytes = 1 << 20;
    std::vector<std::vector<Value>> rows;
    qsizetype bytes = 0;
    Statement insert;
    std::size_t prepared = 0;
    const auto write = [&] {
        if (rows.size() != std::exchange(prepared, rows.size()))
            insert = Statement(m_db, InsertText(table.made.name, columns, rows.size()), Doing::Copy, {},
                               Statement::Lifetime::Kept);
        int parameter = 0;
        for (const std::vector<Value>& values : rows) {
            for (const std::size_t place : columns.places)
                insert.Bind(++parameter, values[place]);
        }
        insert.Next();
        insert.Reset();
        rows.clear();
        bytes = 0;
    };
    m_reader.ForEachRow(table.source, [&](std::vector<Value>& values) {
        bytes += BytesIn(values);
        rows.push_back(std::move(values));
        if (rows.size() == mostRows || bytes > mostBytes)
            write();
    });
    if (!rows.empty())
        write();
}

// Rows with a key are looked up by it; the others stand in the order in which they were written.
void RowCopy::Compare(const CopiedTable& table) {
    const CopiedColumns columns = ColumnsOf(table);
    if (columns.places.empty())
        return;
    const bool keyed = columns.rowNumber >= 0;
    const auto key = static_cast<std::size_t>(columns.rowNumber);
    const QString name = QuoteName(table.made.name);
    Statement found(m_db,
                    QStringLiteral("SELECT %1 FROM %2 ").arg(columns.names.join(u','), name) +
                        (keyed ? QStringLiteral("WHERE %1 = ?").arg(columns.names[columns.rowNumber])
                               : QStringLiteral("NOT INDEXED")),
                    Doing::Copy, {}, Statement::Lifetime::Kept);
    std::int64_t count = 0;
    m_reader.ForEachRow(table.source, [&](const std::vector<Value>& values) {
        ++count;
        if (keyed) {
            found.Reset();
            found.Bind(1, values[columns.places[key]]);
        }
        bool equal = found.Next();
        for (std::size_t i = 0; equal && i < columns.places.size(); ++i)
            equal = found.Column(static_cast<int>(i)) == CellOf(values[columns.places[i]]);
        if (!equal)
            RaiseEngine(DiskOrNetworkFailure);
    });
    Statement all(m_db, QStringLiteral("SELECT count(*) FROM ") + name, Doing::Copy);
    if (!all.Next() || all.Number(0) != count)
        RaiseEngine(DiskOrNetworkFailure);
}

} // namespace engine::jet4
