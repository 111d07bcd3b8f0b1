#pragma once

#include "platform/engine/schema/Types.h"

#include <QStringList>

#include <vector>

namespace engine {

/// A column as the file declares it.
struct ColumnInfo : SizedType {
    QString name = {};
    bool required = false;
    /// NOT NULL came after rows without a value, so that only new values have to meet it.
    bool requiredLater = false;
    bool allowZeroLength = false;
    bool unique = false; ///< UNIQUE written with the column
};

struct IndexInfo {
    QString name = {};
    QStringList columns;
    bool primary = false;
    bool unique = false;
    bool disallowNull = false; ///< WITH DISALLOW NULL: its columns become required
};

struct TableInfo {
    QString name = {};
    std::vector<ColumnInfo> columns = {};
    std::vector<IndexInfo> indexes = {};

    /// Place of a column by name, case ignored; -1 if there is none.
    int Find(QStringView column) const;
    const ColumnInfo& At(int place) const { return columns[static_cast<std::size_t>(place)]; }
    ColumnInfo& At(int place) { return columns[static_cast<std::size_t>(place)]; }
    int CounterColumn() const; ///< -1 if there is none
    /// Place of the column that SQLite keeps as the row number, making up a number for NULL: the counter, or
    /// a key of one whole number; else -1.
    int RowNumberColumn() const;
    const IndexInfo* FindIndex(QStringView index) const; ///< by name, case ignored; null if there is none
    const IndexInfo* PrimaryKey() const;                 ///< null if there is none
    int KeyColumn() const; ///< of a primary key that is one column; -1 for any other key and for none
    bool IsKey(int column) const { return column >= 0 && column == KeyColumn(); }
};

/// What the translator asks of the open file. Names ignore case.
class Catalog {
public:
    virtual ~Catalog() = default;
    virtual const TableInfo* FindTable(QStringView name) const = 0;
};

/// One step of a schema statement.
struct SchemaChange {
    enum Kind {
        CreateTable,
        DropTable,
        AddColumn,
        DropColumn,
        AlterColumn,
        AllowZeroLength,
        CreateIndex,
        DropIndex
    };
    Kind kind = CreateTable;
    /// CreateTable: the whole definition; else only its name.
    TableInfo table = {};
    /// AddColumn, AlterColumn, AllowZeroLength (that and the name), DropColumn (the name).
    ColumnInfo column = {};
    /// CreateIndex, DropIndex (the name), AddColumn with a named UNIQUE.
    IndexInfo index = {};
};

/// The table as a change makes it of those that there are; one that is to go as it is. Failures: 3010, 3265,
/// 3280, 3283, 3290, 3292, 3293, 3371, 3372, 3375, 3376, 3380, 3381, 3382. Whether the rows allow the change,
/// SQLite tells.
TableInfo Changed(const SchemaChange& change, const Catalog& catalog);

} // namespace engine
