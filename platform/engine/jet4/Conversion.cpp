#include "platform/engine/jet4/Conversion.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/jet4/RowCheck.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Plan.h"
#include "platform/engine/store/NewFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <system_error>

namespace engine::jet4 {

namespace {

QString Resolved(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return canonical.isEmpty() ? path : QDir::toNativeSeparators(canonical);
}

/// What a statement of the owner makes; without columns if the table is not known.
TableInfo Made(const KnownTable& known) {
    class NoTables : public Catalog {
        const TableInfo* FindTable(QStringView) const override { return nullptr; }
    };
    if (known.statement.isEmpty())
        return {};
    TableInfo made =
        sql::Translate(sql::Scan(known.statement), NoTables(), sql::Purpose::Execute).change.table;
    for (const QString& column : known.emptyTexts)
        made.At(made.Find(column)).allowZeroLength = true;
    return made;
}

/// The columns that nobody knows, without a rule but their types.
void AddFurtherColumns(TableInfo& made, const Table& table) {
    const bool known = !made.columns.empty();
    if (!known)
        made.name = table.name;
    for (const Column& column : table.columns) {
        if (column.type == DataType::Unknown || made.Find(column.name) >= 0)
            continue;
        ColumnInfo further{static_cast<const SizedType&>(column), column.name};
        further.allowZeroLength = IsText(column.type);
        if (known && column.type == DataType::Counter)
            further.type = DataType::Long;
        made.columns.push_back(std::move(further));
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

/// Failure 3045 if another program has the database open: it holds a lock on the file, or on the file of
/// users (`Book.ldb`) beside it. What it has not written yet would be missing in a copy. A file of users that
/// nobody holds was left by a crash and says nothing.
void CheckNotInUse(const QString& path) {
    const QFileInfo file(path);
    const QString users = file.dir().filePath(file.completeBaseName() + QStringLiteral(".ldb"));
    for (const QString& held : {path, users, users.chopped(3) + QStringLiteral("LDB")}) {
        if (runtime::FileMark::IsInUse(held))
            RaiseEngine(FileInUse, path);
    }
}

QString CheckedPath(const QString& path) {
    QString resolved = Resolved(path);
    CheckNotInUse(resolved);
    std::error_code error;
    const QString kept = FreeKeptName(resolved);
    if (!runtime::Stands(kept, error) && error == std::errc::filename_too_long)
        RaiseEngine(InvalidPath, kept);
    return resolved;
}

} // namespace

Conversion::Conversion(const QString& path, Rules rules)
    : m_path(CheckedPath(path))
    , m_changed(QFileInfo(m_path).lastModified())
    , m_size(QFileInfo(m_path).size())
    , m_reader(m_path)
    , m_rules(std::move(rules)) {
    CheckTables();
    for (const Table& table : m_reader->Tables())
        m_tables.push_back({table, {}});
    GiveNames();
    PlanTables();
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

void Conversion::CheckUnchanged() const {
    const QFileInfo file(m_path);
    if (file.lastModified() != m_changed || file.size() != m_size)
        RaiseEngine(FileInUse, m_path);
    CheckNotInUse(m_path);
}

/// Names that the new file cannot take give way to others.
void Conversion::GiveNames() {
    QStringList tables;
    for (const Table& table : m_reader->Tables())
        tables += table.name;
    for (auto& [table, made] : m_tables) {
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

/// Checks the rows, settles what is made of each table, and reports what is not copied.
void Conversion::PlanTables() {
    m_report.notCopied = m_reader->OtherObjects();
    for (auto& [table, made] : m_tables) {
        made = Made(m_rules.known(*m_reader, table));
        if (!made.columns.empty()) {
            CheckKnownRows(*m_reader, table, made, m_path);
        } else {
            CheckUnknownRows(*m_reader, table);
            if (table.indexCount > 0)
                m_report.withoutIndexes += table.name;
        }
        AddFurtherColumns(made, table);
        for (const Column& column : table.columns)
            if (column.type == DataType::Unknown)
                m_report.notCopied += table.name + u'.' + column.name;
    }
}

Report Conversion::Run(runtime::Disk& disk) {
    const HiddenFile finished(QFileInfo(m_path).absolutePath(), m_path);
    RowCopy(finished.File(), *m_reader, m_path).CopyAll(m_tables);
    RowCopy(finished.File(), *m_reader, m_path).CompareAll(m_tables);
    QFile::setPermissions(finished.File(), QFile::permissions(m_path) | QFile::WriteOwner);
    m_reader.reset();
    CheckUnchanged();
    m_report.kept = ReplaceKeeping(disk, finished.File(), m_path);
    return m_report;
}

} // namespace engine::jet4
