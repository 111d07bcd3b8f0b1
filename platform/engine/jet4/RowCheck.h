#pragma once

#include "platform/engine/jet4/Reader.h"
#include "platform/engine/schema/Table.h"

namespace engine::jet4 {

/// Reads every row and looks whether the table that is to be made can take them all. Failures: 3049 if a
/// column lacks or is of another type, if a value lacks where one is required, if a unique one repeats; 3349,
/// with the column's name, if a number is beyond its type.
void CheckKnownRows(const Reader& reader, const Table& table, const TableInfo& made, const QString& path);

/// Reads every row of a table that nobody knows. Its generated numbers become plain ones where they could not
/// be generated again: where one lacks or repeats, and in a second such column.
void CheckUnknownRows(const Reader& reader, Table& table);

} // namespace engine::jet4
