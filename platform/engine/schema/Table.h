#pragma once

#include "platform/engine/Value.h"

#include <QStringList>

#include <vector>

namespace engine {

/// A column as the file declares it.
struct ColumnInfo {
    QString name;
    DataType type = DataType::Text;
    /// Characters of a text column, bytes of a BINARY one (0: no limit); of CURRENCY 0, or the digits where
    /// an older file keeps it as a fraction.
    int size = 0;
    bool required = false;
    bool allowZeroLength = false;
    bool unique = false; ///< UNIQUE written with the column
};

struct IndexInfo {
    QString name;
    QStringList columns;
    bool primary = false;
    bool unique = false;
    bool disallowNull = false; ///< WITH DISALLOW NULL: its columns become required
};

struct TableInfo {
    QString name;
    std::vector<ColumnInfo> columns;
    std::vector<IndexInfo> indexes;

    /// Place of a column by name, case ignored; -1 if there is none.
    int Find(QStringView column) const;
    int CounterColumn() const; ///< -1 if there is none
    /// Place of the column that SQLite keeps as the row number, making up a number for NULL: the counter, or
    /// a key of one whole number; else -1.
    int RowNumberColumn() const;
    const IndexInfo* PrimaryKey() const; ///< null if there is none
};

/// What the translator asks of the open file. Names ignore case.
class Catalog {
public:
    virtual ~Catalog() = default;
    virtual const TableInfo* FindTable(QStringView name) const = 0;
};

/// One step of a schema statement, carried out by the catalog.
struct SchemaChange {
    enum Kind { CreateTable, DropTable, AddColumn, DropColumn, AlterColumn, CreateIndex, DropIndex };
    Kind kind = CreateTable;
    TableInfo table;   ///< CreateTable: the whole definition; else only its name
    ColumnInfo column; ///< AddColumn, AlterColumn, DropColumn (name alone)
    IndexInfo index;   ///< CreateIndex, DropIndex (name alone), AddColumn with a named UNIQUE
};

} // namespace engine
