#pragma once

#include "platform/engine/jet4/Reader.h"
#include "platform/engine/jet4/RowCopy.h"
#include "platform/engine/store/Replacement.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace engine::jet4 {

/// How a table that the owner of the data knows is made in the new file.
struct KnownTable {
    QString statement;      ///< CREATE TABLE; empty if the name is not known
    QStringList emptyTexts; ///< columns of it that take the empty text
};

/// What the owner of the data knows of it.
struct Rules {
    /// Tables without which a file is somebody else's and is not converted.
    QStringList requiredTables;
    /// Those that a file of ours must have besides, as far as its content tells.
    std::function<QStringList(const Reader&)> furtherTables;
    std::function<KnownTable(const Reader&, const Table&)> known;
};

/// What a conversion did.
struct Report {
    QString kept; ///< path of the old file, under its new name
    /// What the new file lacks: columns whose type it does not know as "table.column", saved queries, links
    /// and the tables of other programs.
    QStringList notCopied;
    /// Tables that came over without their keys and indexes.
    QStringList withoutIndexes;
    /// Tables and columns whose names the new file cannot take: "old → new", "table.old → new".
    QStringList renamed;
};

/// The conversion of one file of the old format into one of ours, in the same place.
class Conversion {
public:
    /// Whether the file at the path has the header of the old format; anything else is left to OpenDatabase.
    static bool IsNeeded(const QString& path) { return Reader::IsOldFormat(path); }

    /// Reads the whole file and checks every row; nothing is written. Failures: 3031 it has a password, 3045
    /// another program has it open, 3044 its name leaves no room for that of the kept file, 3049 it is
    /// damaged, 3343 a required table is missing, 3349 a number is beyond the type of its column, and those
    /// of reading a file (3024, 3051, 3043).
    Conversion(const QString& path, Rules rules);

    /// Name, without folder, under which the old file will be kept, as things stand.
    QString KeptName() const;

    /// Writes the new file beside the old one, compares it row by row with what was read, and lets the two
    /// change places: see ReplaceKeeping. After a failure the old file stands untouched in its place and
    /// nothing else is left. Failures: 3026, 3043, 3051, 3045 if the old file was changed or opened
    /// meanwhile. To be called once.
    Report Run(runtime::Disk& disk = runtime::Disk::Current());

private:
    void CheckTables() const;
    void GiveNames();
    void PlanTables();
    void CheckUnchanged() const;

    QString m_path; ///< with links resolved
    QDateTime m_changed;
    qint64 m_size = 0;
    std::optional<Reader> m_reader; ///< keeps the old file open
    Rules m_rules;
    std::vector<CopiedTable> m_tables;
    Report m_report;
};

} // namespace engine::jet4
