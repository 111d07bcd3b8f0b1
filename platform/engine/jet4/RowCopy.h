#pragma once

#include "platform/engine/jet4/Reader.h"
#include "platform/engine/schema/Table.h"
#include "platform/engine/store/Statement.h"

namespace engine::jet4 {

/// A table of the old file under the names that the new one gives it, and what is made for it there: columns
/// for all but those of an Unknown type, or none at all.
struct CopiedTable {
    Table source;
    TableInfo made;
};

/// Copies the rows of one file's tables into the tables made for them, and compares. The new file is one that
/// no one else knows of yet: it is written without a journal, and given to the disk by the caller. Comparing
/// takes an object of its own, which has nothing but the file to read from.
class RowCopy {
public:
    /// Opens the new file. Failures as SQLite has them, by the engine's numbers; `path` names the book in
    /// them.
    RowCopy(const QString& file, const Reader& reader, QString path);

    /// Makes the tables and copies their rows. Failure 3026 on a full disk.
    void CopyAll(const std::vector<CopiedTable>& tables);
    /// Reads every row back; failure 3043 if one differs from what was read of the old file.
    void CompareAll(const std::vector<CopiedTable>& tables);

private:
    void Make(const TableInfo& table);
    void Copy(const CopiedTable& table);
    void Compare(const CopiedTable& table);

    Sqlite m_db;
    const Reader& m_reader;
    QString m_path;
};

} // namespace engine::jet4
