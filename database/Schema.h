#pragma once

#include <QString>
#include <QStringList>

/// The statements that make the tables, for the creation of a database, the upgrade of an older one and the
/// conversion of an old file.
namespace schema {

/// Cards; the birthday came with version 2.
QString CreateA01(bool withBirthday = true);
QString CreateA02();
QString CreateT01();
QString CreateV00();
QString CreateT02();
QString CreateT03();
QString CreateA03();

/// Lets the storage keep what cards and phones are looked for by: an import asks for each of its rows.
void KeepLookUps();

/// The columns of a01 that take the empty text; the texts of the other tables refuse it.
QStringList EmptyTextColumns();

} // namespace schema
