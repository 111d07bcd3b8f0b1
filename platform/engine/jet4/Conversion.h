#pragma once

#include "platform/engine/DBEngine.h"
#include "platform/engine/jet4/Reader.h"
#include "platform/engine/jet4/Replacement.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>

namespace engine::jet4 {

/// What the owner of the data knows of it.
struct Rules {
    /// Tables without which a file is somebody else's and is not converted.
    QStringList requiredTables;
    /// Makes the table in the new file if its name is known, and tells whether it has.
    std::function<bool(Database& target, const Table& table)> makeTable;
};

/// What a conversion did.
struct Report {
    QString kept; ///< path of the old file, under its new name
    /// What the new file lacks: columns whose type it does not know as "table.column", and saved queries and
    /// links.
    QStringList notCopied;
    /// Tables that came over without their keys and indexes.
    QStringList withoutIndexes;
};

/// The conversion of one file of the old format into one of ours, in the same place.
class Conversion {
public:
    /// Whether the file at the path has the header of the old format; anything else is left to OpenDatabase.
    static bool IsNeeded(const QString& path) { return Reader::IsOldFormat(path); }

    /// Reads the whole file and checks every row; nothing is written. Failures: 3031 it has a password, 3049
    /// it is damaged, 3343 a required table is missing, and those of reading a file (3024, 3051, 3043).
    Conversion(const QString& path, Rules rules);

    /// Name, without folder, under which the old file will be kept, as things stand.
    QString KeptName() const;

    /// Writes the new file beside the old one, compares it row by row with what was read, and lets the two
    /// change places: see ReplaceKeeping. After a failure the old file stands untouched in its place and
    /// nothing else is left. Failures: 3026, 3043, 3051, 3045 if the old file was changed meanwhile, 3049 if
    /// its rows contradict its keys.
    Report Run();
    Report Run(Disk& disk);

private:
    void CheckRows();
    void CheckUnchanged() const;
    void MakeTables(const QString& path, Report& report) const;
    void MakeTable(Database& target, const Table& table, Report& report) const;

    QString m_path; ///< with links resolved
    QDateTime m_changed;
    Reader m_reader;
    Rules m_rules;
};

} // namespace engine::jet4
