#pragma once

#include "platform/engine/dao/DBEngine.h"
#include "tests/support/Expect.h"

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

/// The fixture of all tests that need a book, at the depth of the engine: a folder, and what is on the disk.
/// BoundBase (BoundBook.h) adds the process-wide objects, WindowTest the windows.
class FolderTest : public testing::Test {
protected:
    QString Path(const QString& name = QStringLiteral("book.mdb")) const { return m_folder.Path(name); }
    static std::shared_ptr<engine::Database> Create(const QString& path) {
        return engine::DBEngine::Workspaces(0)->CreateDatabase(path,
                                                               QString::fromUtf16(engine::dbLangGeneral));
    }

    /// What a second connection reads from the book.
    QStringList Rows(const QString& sql) const {
        engine::DBEngine::Commit();
        return ReadRows(Path(), sql);
    }
    QString Row(const QString& sql) const { return Rows(sql).join(u'\n'); }

private:
    TestFolder m_folder;
};

} // namespace test
