#pragma once

#include "platform/engine/schema/Table.h"

#include <vector>

namespace engine {

/// Columns by whose values single rows are looked for again and again. The storage keeps an index over them
/// in every file that it writes to, as long as the table has all of them. It is the storage's own: the
/// catalogue does not show it, and no statement takes it that has not asked for it (sql::LookUpTerm), so
/// that the order of no other rows tells of it.
struct LookUp {
    QString table;
    QStringList columns;

    /// How the index is called in the file.
    QString IndexName(const TableInfo& of) const;
    /// The text that makes it, empty if the table lacks one of the columns.
    QString CreateText(const TableInfo& of) const;
};

/// What every file is given.
std::vector<LookUp>& LookUps();

/// Whether the column is the first of a look-up.
bool BeginsLookUp(const TableInfo& table, const ColumnInfo& column);

/// Whether an index of the file is one of these, by its name.
bool IsLookUp(QStringView table, QStringView index);

} // namespace engine
