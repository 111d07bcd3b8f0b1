#include "platform/engine/jet4/Conversion.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/jet4/OtherPrograms.h"
#include "platform/engine/jet4/RowCheck.h"
#include "platform/engine/jet4/RowCopy.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/store/DatabaseFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace engine::jet4 {

namespace {

/// A file that is taken away again unless it has found its place.
class TemporaryFile {
public:
    explicit TemporaryFile(const QString& folder)
        : m_path(TemporaryName(folder)) {}
    ~TemporaryFile() {
        QFile::remove(m_path);
        RemoveJournals(m_path);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const QString& Path() const { return m_path; }

private:
    QString m_path;
};

QString Resolved(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? path : canonical;
}

QString Quoted(const QString& name) {
    return u'[' + name + u']';
}

void AllowEmptyText(Database& target, const Table& table, const Column& column) {
    if (IsText(column.type))
        target.TableDefs(table.name).Fields(column.name).SetAllowZeroLength(true);
}

/// A table without a rule but the types of its columns.
void MakePlainTable(Database& target, const Table& table) {
    QStringList declarations;
    for (const Column& column : table.columns) {
        if (column.type != DataType::Unknown)
            declarations += Quoted(column.name) + u' ' + column.TypeText();
    }
    if (declarations.isEmpty())
        return;
    target.Execute(QStringLiteral("CREATE TABLE ") + Quoted(table.name) + QStringLiteral(" (") +
                       declarations.join(QStringLiteral(", ")) + u')',
                   dbFailOnError);
    for (const Column& column : table.columns)
        AllowEmptyText(target, table, column);
}

/// Columns that a user has added to a known table.
void AddFurtherColumns(Database& target, const Table& table) {
    const TableDef made = target.TableDefs(table.name);
    QStringList known;
    for (int i = 0; i < made.FieldsCount(); ++i)
        known += made.Fields(i).Name();
    for (Column added : table.columns) {
        if (added.type == DataType::Unknown || HasName(known, added.name))
            continue;
        if (added.type == DataType::Counter)
            added.type = DataType::Long;
        target.Execute(QStringLiteral("ALTER TABLE ") + Quoted(table.name) + QStringLiteral(" ADD COLUMN ") +
                           Quoted(added.name) + u' ' + added.TypeText(),
                       dbFailOnError);
        AllowEmptyText(target, table, added);
    }
}

/// The name in a form that the new file takes, other than those that are taken.
QString FreeName(const QString& name, const QStringList& taken) {
    QString form = name;
    for (qsizetype i = 0; i < form.size(); ++i) {
        if (form[i].isHighSurrogate() && i + 1 < form.size() && form[i + 1].isLowSurrogate())
            ++i;
        else if (form[i].isSurrogate() || form[i] >= QChar(0xFFFE))
            form[i] = u'_';
    }
    if (form.startsWith(u'~'))
        form[0] = u'_';
    if (form.startsWith(QLatin1String("sqlite_"), Qt::CaseInsensitive))
        form.prepend(u'_');
    constexpr int longestPlace = 4;
    form.truncate(longestName);
    QString free = form;
    for (int place = 2; free != name && HasName(taken, free); ++place)
        free = form.left(longestName - longestPlace) + QStringLiteral("_%1").arg(place);
    return free;
}

QString CheckedPath(const QString& path) {
    QString resolved = Resolved(path);
    CheckNotInUse(resolved);
    std::error_code error;
    const QString kept = FreeKeptName(resolved);
    const bool stands =
        std::filesystem::exists(std::filesystem::symlink_status(kept.toStdU16String(), error));
    if (!stands && error == std::errc::filename_too_long)
        RaiseEngine(InvalidPath, kept);
    return resolved;
}

} // namespace

Conversion::Conversion(const QString& path, Rules rules)
    : m_path(CheckedPath(path))
    , m_changed(QFileInfo(m_path).lastModified())
    , m_size(QFileInfo(m_path).size())
    , m_reader(m_path)
    , m_rules(std::move(rules))
    , m_tables(m_reader->Tables()) {
    CheckTables();
    CheckRows();
    GiveNames();
    m_report.notCopied = m_reader->OtherObjects();
}

void Conversion::CheckTables() const {
    const auto lacks = [this](const QStringList& tables) {
        return std::any_of(tables.begin(), tables.end(),
                           [this](const QString& table) { return !m_reader->Find(table); });
    };
    if (lacks(m_rules.requiredTables))
        RaiseEngine(UnrecognisedFormat, m_path);
    if (lacks(m_rules.furtherTables(*m_reader)))
        RaiseEngine(CannotOpenDatabase, m_path);
}

QString Conversion::KeptName() const {
    return QFileInfo(FreeKeptName(m_path)).fileName();
}

void Conversion::CheckRows() {
    for (Table& table : m_tables) {
        const QString statement = m_rules.known(*m_reader, table).statement;
        if (statement.isEmpty())
            CheckUnknownRows(*m_reader, table);
        else
            CheckKnownRows(*m_reader, table, statement, m_path);
    }
}

void Conversion::CheckUnchanged() const {
    const QFileInfo file(m_path);
    if (file.lastModified() != m_changed || file.size() != m_size)
        RaiseEngine(FileInUse, m_path);
    CheckNotInUse(m_path);
}

/// Names that the new file cannot take give way to others.
void Conversion::GiveNames() {
    QStringList tables;
    for (const Table& table : m_tables)
        tables += table.name;
    for (Table& table : m_tables) {
        QStringList columns;
        for (const Column& column : table.columns)
            columns += column.name;
        for (Column& column : table.columns) {
            const QString old = std::exchange(column.name, FreeName(column.name, columns));
            columns += column.name;
            if (column.name != old)
                m_report.renamed += table.name + u'.' + old + QStringLiteral(" → ") + column.name;
        }
        const QString old = std::exchange(table.name, FreeName(table.name, tables));
        tables += table.name;
        if (table.name != old)
            m_report.renamed += old + QStringLiteral(" → ") + table.name;
    }
}

void Conversion::MakeTable(Database& target, const Table& table) {
    for (const Column& column : table.columns) {
        if (column.type == DataType::Unknown)
            m_report.notCopied += table.name + u'.' + column.name;
    }
    const KnownTable known = m_rules.known(*m_reader, table);
    if (known.statement.isEmpty()) {
        MakePlainTable(target, table);
        if (table.indexCount > 0)
            m_report.withoutIndexes += table.name;
        return;
    }
    target.Execute(known.statement, dbFailOnError);
    for (const QString& column : known.emptyTexts)
        target.TableDefs(table.name).Fields(column).SetAllowZeroLength(true);
    AddFurtherColumns(target, table);
}

void Conversion::MakeTables(const QString& path) {
    const auto workspace = DBEngine::CreateWorkspace(QStringLiteral("Conversion"), QString(), QString());
    const auto target = workspace->CreateDatabase(path, QString::fromUtf16(dbLangGeneral));
    workspace->BeginTrans();
    for (const Table& table : m_tables)
        MakeTable(*target, table);
    workspace->CommitTrans();
    workspace->Close();
}

Report Conversion::Run() {
    return Run(runtime::Disk::Current());
}

Report Conversion::Run(runtime::Disk& disk) {
    const TemporaryFile finished(QFileInfo(m_path).absolutePath());
    try {
        MakeTables(finished.Path());
    } catch (const runtime::Failure& failure) {
        // The user knows the book alone.
        if (failure.number() == CannotOpenFile)
            RaiseEngine(CannotOpenFile, m_path);
        throw;
    }
    RowCopy(finished.Path(), *m_reader, m_path).CopyAll(m_tables);
    RowCopy(finished.Path(), *m_reader, m_path).CompareAll(m_tables);
    QFile::setPermissions(finished.Path(), QFile::permissions(m_path) | QFile::WriteOwner);
    m_reader.reset();
    CheckUnchanged();
    m_report.kept = ReplaceKeeping(disk, finished.Path(), m_path);
    return m_report;
}

} // namespace engine::jet4
