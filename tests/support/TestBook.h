#pragma once

#include "tests/support/Expect.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace test {

/// A temporary folder with a settings store of its own.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();
    QString Path(const QString& name) const;

private:
    QTemporaryDir m_folder;
};

/// Runs a SELECT of plain SQLite on the file by a second connection; each row is its values joined by '|',
/// NULL as "NULL". So what a test reads is what is on the disk.
QStringList ReadRows(const QString& path, const QString& sql);

/// SQLite's own integrity check by a second connection: "ok" or what is wrong.
QString Integrity(const QString& path);

} // namespace test
