#include "platform/engine/jet4/Conversion.h"

#include "platform/engine/DatabaseFile.h"
#include "platform/engine/EngineError.h"
#include "platform/engine/jet4/RowCopy.h"

#include <QFile>
#include <QFileInfo>

namespace engine::jet4 {

namespace {

/// A file that is taken away again unless it has found its place.
class TemporaryFile {
public:
    explicit TemporaryFile(const QString& folder)
        : m_path(TemporaryName(folder)) {}
    ~TemporaryFile() {
        QFile::remove(m_path);
        RemoveJournal(m_path);
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

/// The dialect's words for a column of a table that nobody knows.
QString Declaration(const Column& column) {
    const auto sized = [&column](QStringView word) {
        return word.toString() + QStringLiteral("(%1)").arg(column.size);
    };
    switch (column.type) {
    case DataType::Bit:
        return QStringLiteral("BIT");
    case DataType::Byte:
        return QStringLiteral("BYTE");
    case DataType::Short:
        return QStringLiteral("SHORT");
    case DataType::Long:
        return QStringLiteral("LONG");
    case DataType::Counter:
        return QStringLiteral("COUNTER");
    case DataType::Single:
        return QStringLiteral("SINGLE");
    case DataType::Double:
        return QStringLiteral("DOUBLE");
    case DataType::Currency:
        return QStringLiteral("CURRENCY");
    case DataType::Date:
        return QStringLiteral("DATETIME");
    case DataType::Text:
        return sized(u"TEXT");
    case DataType::Memo:
        return QStringLiteral("LONGTEXT");
    case DataType::Guid:
        return QStringLiteral("GUID");
    default:
        return column.size > 0 ? sized(u"BINARY") : QStringLiteral("LONGBINARY");
    }
}

void AllowEmptyText(Database& target, const Table& table, const Column& column) {
    if (column.type == DataType::Text || column.type == DataType::Memo)
        target.TableDefs(table.name).Fields(column.name).SetAllowZeroLength(true);
}

/// Columns that the new file can take; a second counter becomes a plain number.
std::vector<Column> CopiedColumns(const Table& table) {
    std::vector<Column> copied;
    bool counted = false;
    for (const Column& column : table.columns) {
        if (column.type == DataType::Unknown)
            continue;
        copied.push_back(column);
        if (column.type == DataType::Counter && std::exchange(counted, true))
            copied.back().type = DataType::Long;
    }
    return copied;
}

/// A table without a rule but the types of its columns.
void MakePlainTable(Database& target, const Table& table) {
    QStringList declarations;
    const std::vector<Column> columns = CopiedColumns(table);
    for (const Column& column : columns)
        declarations += Quoted(column.name) + u' ' + Declaration(column);
    if (declarations.isEmpty())
        return;
    target.Execute(QStringLiteral("CREATE TABLE ") + Quoted(table.name) + QStringLiteral(" (") +
                       declarations.join(QStringLiteral(", ")) + u')',
                   dbFailOnError);
    for (const Column& column : columns)
        AllowEmptyText(target, table, column);
}

/// Columns that a user has added to a known table.
void AddFurtherColumns(Database& target, const Table& table) {
    for (const Column& column : CopiedColumns(table)) {
        const TableDef made = target.TableDefs(table.name);
        bool known = false;
        for (int i = 0; i < made.FieldsCount(); ++i)
            known = known || made.Fields(i).Name().compare(column.name, Qt::CaseInsensitive) == 0;
        if (known)
            continue;
        Column added = column;
        if (added.type == DataType::Counter)
            added.type = DataType::Long;
        target.Execute(QStringLiteral("ALTER TABLE ") + Quoted(table.name) + QStringLiteral(" ADD COLUMN ") +
                           Quoted(added.name) + u' ' + Declaration(added),
                       dbFailOnError);
        AllowEmptyText(target, table, added);
    }
}

} // namespace

Conversion::Conversion(const QString& path, Rules rules)
    : m_path(Resolved(path))
    , m_changed(QFileInfo(m_path).lastModified())
    , m_reader(m_path)
    , m_rules(std::move(rules)) {
    for (const QString& table : m_rules.requiredTables) {
        if (!m_reader.Find(table))
            RaiseEngine(UnrecognisedFormat, m_path);
    }
    CheckRows();
}

QString Conversion::KeptName() const {
    return QFileInfo(FreeKeptName(m_path)).fileName();
}

void Conversion::CheckRows() {
    std::vector<Value> values;
    for (const Table& table : m_reader.Tables()) {
        for (const RowPlace place : m_reader.Rows(table))
            m_reader.Read(table, place, values);
    }
}

void Conversion::CheckUnchanged() const {
    if (QFileInfo(m_path).lastModified() != m_changed)
        RaiseEngine(FileInUse, m_path);
}

void Conversion::MakeTable(Database& target, const Table& table, Report& report) const {
    for (const Column& column : table.columns) {
        if (column.type == DataType::Unknown)
            report.notCopied += table.name + u'.' + column.name;
    }
    if (m_rules.makeTable(target, table)) {
        AddFurtherColumns(target, table);
        return;
    }
    MakePlainTable(target, table);
    if (table.indexCount > 0)
        report.withoutIndexes += table.name;
}

void Conversion::MakeTables(const QString& path, Report& report) const {
    const auto workspace = DBEngine::CreateWorkspace(QStringLiteral("Conversion"), QString(), QString());
    const auto target = workspace->CreateDatabase(path, QString::fromUtf16(dbLangGeneral));
    workspace->BeginTrans();
    for (const Table& table : m_reader.Tables())
        MakeTable(*target, table, report);
    workspace->CommitTrans();
    workspace->Close();
}

Report Conversion::Run() {
    Disk disk;
    return Run(disk);
}

Report Conversion::Run(Disk& disk) {
    const TemporaryFile finished(QFileInfo(m_path).absolutePath());
    Report report;
    try {
        MakeTables(finished.Path(), report);
    } catch (const runtime::Failure& failure) {
        // The user knows the book alone.
        if (failure.number() == CannotOpenFile)
            RaiseEngine(CannotOpenFile, m_path);
        throw;
    }
    RowCopy(finished.Path(), m_reader, m_path).CopyAll();
    RowCopy(finished.Path(), m_reader, m_path).CompareAll();
    QFile::setPermissions(finished.Path(), QFile::permissions(m_path) | QFile::WriteOwner);
    CheckUnchanged();
    report.notCopied += m_reader.OtherObjects();
    report.kept = ReplaceKeeping(disk, finished.Path(), m_path);
    return report;
}

} // namespace engine::jet4
