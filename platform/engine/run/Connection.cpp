#include "platform/engine/run/Connection.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/run/FileWatch.h"
#include "platform/engine/run/ResultSet.h"
#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/SchemaEditor.h"
#include "platform/engine/store/FileCheck.h"
#include "platform/runtime/Files.h"

#include <QFileInfo>
#include <sqlite3.h>

#include <algorithm>

namespace engine {

namespace {

/// While alive, what SQLite runs asks now and then whether it is to stop.
class Stoppable {
public:
    Stoppable(sqlite3* db, const std::function<bool()>& stop)
        : m_db(db) {
        if (stop)
            sqlite3_progress_handler(m_db, instructions, &Ask, const_cast<std::function<bool()>*>(&stop));
    }
    ~Stoppable() { sqlite3_progress_handler(m_db, 0, nullptr, nullptr); }
    Stoppable(const Stoppable&) = delete;
    Stoppable& operator=(const Stoppable&) = delete;

private:
    static constexpr int instructions = 1000;

    static int Ask(void* stop) {
        try {
            return (*static_cast<std::function<bool()>*>(stop))() ? 1 : 0;
        } catch (...) { // no exception may pass through SQLite
            functions::KeepFailure();
            return 1;
        }
    }

    sqlite3* m_db;
};

/// The journal of a file; failure 3049 if it names another file.
QString SafeJournal(const QString& file, const QString& path) {
    QString journal = QFileInfo(file).canonicalFilePath() + QStringLiteral("-journal");
    if (JournalNamesAFile(journal))
        RaiseEngine(CannotOpenDatabase, path);
    return journal;
}

/// The file, if it may be opened; else failure 3045.
const QString& Granted(const runtime::OpenDatabaseFile& registered, const QString& file,
                       const QString& path) {
    if (!registered.Granted())
        RaiseEngine(FileInUse, path);
    return file;
}

/// Runs the work; a lack of memory becomes its failure.
template <class Work>
auto WithMemory(Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        throw MemoryFailure();
    }
}

} // namespace

/// What lives while the file is open.
struct Connection::Session {
    Session(Connection& owner, const QString& file, const QString& path);

    const QString journal;
    const std::optional<runtime::FileIdentity> identity;
    const runtime::OpenDatabaseFile registered;
    Sqlite db;
    Transactions commits;
    FileCatalog catalog;
    Counters counters;
    Runner runner;
    PlanCache plans;
    std::optional<FileWatch> watch; ///< once the file is known to be sound
    bool rulesAreOff = false;       ///< a definition could not switch them on again
    bool readOnly = false;
    bool hasLookUps = false; ///< as far as they can be had
};

Connection::Session::Session(Connection& owner, const QString& file, const QString& path)
    : journal(SafeJournal(file, path))
    , identity(runtime::IdentityOf(file))
    , registered(file)
    , db(Granted(registered, file, path), path)
    , commits(
          db, [this] { return watch->Look(commits.HoldsLock()); }, [&owner] { owner.Undone(); })
    , catalog(db)
    , counters(db)
    , runner(db, commits, counters)
    , plans(db, catalog) {
    // EXTRA: a commit that has been reported is on the disk, the removal of the journal included.
    db.Run("PRAGMA cell_size_check = ON; PRAGMA temp_store = MEMORY; PRAGMA cache_size = -16000; "
           "PRAGMA synchronous = EXTRA",
           Doing::Open);
    readOnly = db.IsReadOnly();
    CheckSound(db, file, path);
    for (const QString& table : catalog.TableNames())
        catalog.FindTable(table);
    // Not before: it writes to a file that other means have set to a write-ahead log.
    db.Run("PRAGMA journal_mode = DELETE", Doing::Open);
    watch.emplace(db, file, journal, identity);
}

Connection::Connection(const QString& path, const QString& file)
    : m_path(path)
    , m_file(QFileInfo(file.isEmpty() ? path : file).absoluteFilePath())
    , m_isNew(!file.isEmpty()) {
    Open();
}

Connection::~Connection() {
    if (!IsOpen())
        return;
    try {
        Commits().CommitGroup();
    } catch (const runtime::Failure&) {
        // Whoever drops a database without closing it has nobody to tell.
    }
    Drop();
}

void Connection::Open() {
    WithMemory([&] {
        if (!runtime::OpenDatabaseFile::Holds(m_file))
            CheckDatabaseFile(QFileInfo(m_path).absoluteFilePath() == m_file ? m_path : m_file);
        m = std::make_unique<Session>(*this, m_file, m_path);
    });
}

bool Connection::IsOpen() const {
    return m != nullptr;
}

void Connection::CheckOpen() const {
    if (!IsOpen())
        RaiseEngine(ObjectClosed);
}

void Connection::Close() {
    CheckOpen();
    Commits().CommitGroup();
    Drop();
}

void Connection::Drop() noexcept {
    if (!IsOpen())
        return;
    for (ResultSet* set : std::exchange(m_sets, {}))
        set->Close();
    Commits().Abandon();
    m.reset();
}

Transactions& Connection::Commits() {
    return m->commits;
}

// ---- queries ----

std::shared_ptr<ResultSet> Connection::OpenRecordset(const QString& text, const std::function<bool()>& stop) {
    Begin();
    const Stoppable stoppable(m->db.Handle(), stop);
    return WithMemory([&] {
        LookAround();
        return TryAgain([&] {
            return m->commits.Account([&] { return Read(m->plans.Of(text, sql::Purpose::OpenRecordset)); });
        });
    });
}

std::shared_ptr<ResultSet> Connection::Read(const BoundPlan& bound) {
    CachedPlan& cached = *bound.cached;
    if (!cached.text)
        cached.text = Statement(m->db, cached.plan.text, Doing::Read, {}, Statement::Lifetime::Kept);
    auto set = std::make_shared<ResultSet>(*this, m->db, bound);
    Binding binding(cached.text);
    binding.Bind(1, cached.plan.parameters, bound.scanned.literals);
    set->ReadAll(cached.text);
    return set;
}

// ---- actions ----

void Connection::Execute(const QString& text, bool failOnError) {
    Begin();
    m_affected = 0;
    if (m->rulesAreOff) {
        m->db.Run("PRAGMA ignore_check_constraints = OFF", Doing::Open);
        m->rulesAreOff = false;
    }
    WithMemory([&] {
        LookAround();
        TryAgain([&] {
            // Its tables may be gone too, which would read like a mistake in the statement.
            m->commits.RaiseLoss();
            Run(m->plans.Of(text, sql::Purpose::Execute), failOnError);
        });
    });
}

void Connection::Run(const BoundPlan& bound, bool failOnError) {
    switch (bound.cached->plan.verb) {
    case sql::Verb::Schema:
        return RunSchema(bound.cached->plan.change);
    case sql::Verb::SelectInto:
        return RunSelectInto(bound);
    default:
        return RunAction(bound, failOnError);
    }
}

void Connection::RunAction(const BoundPlan& bound, bool failOnError) {
    if (m->readOnly)
        RaiseEngine(NotUpdatable);
    if (m->commits.BeforeWrite(Doing::Write, bound.cached->plan.target) && NoticeOthers())
        return Execute(QString(bound.scanned.text), failOnError); // the plan is out of date
    // A new file is filled quicker without them, and nobody looks for anything in it.
    if (!m->hasLookUps && !m_isNew && KeepLookUps())
        return Execute(QString(bound.scanned.text), failOnError); // the lock may be gone with the group
    m_affected = m->commits.Account([&] { return m->runner.Run(bound, failOnError); });
    m->commits.StatementDone();
}

// ---- schema ----

/// They are a help alone: a statement does not fail for them.
bool Connection::KeepLookUps() {
    m->hasLookUps = true;
    try {
        const bool made = m->commits.Account([&] {
            const QStringList statements = m->catalog.MissingLookUps();
            for (const QString& text : statements)
                Statement(m->db, text, Doing::Define).Next();
            return !statements.isEmpty();
        });
        if (made)
            m->commits.StatementDone();
        return made;
    } catch (const runtime::Failure&) {
        return true;
    }
}

template <class Work>
void Connection::ChangeSchema(const QString& table, Work work) {
    if (m->readOnly)
        RaiseEngine(ReadOnly);
    if (std::ranges::any_of(m_sets, [&](const ResultSet* set) { return SameName(set->Table(), table); }))
        RaiseEngine(TableInUse, table);
    if (m->commits.BeforeWrite(Doing::Define, table))
        NoticeOthers();
    m->commits.CheckAlive();
    m->commits.Account([&] {
        m->db.Run("SAVEPOINT definition", Doing::Define, table);
        try {
            SchemaEditor editor(m->db, m->catalog, m->counters, m->rulesAreOff);
            work(editor);
            m->commits.CheckAlive();
            m->db.Run("RELEASE definition", Doing::Define, table);
        } catch (...) {
            if (m->db.InTransaction())
                m->db.Try("ROLLBACK TO definition; RELEASE definition");
            Forget();
            throw;
        }
    });
    Forget();
    m->commits.StatementDone();
}

void Connection::RunSchema(const SchemaChange& change) {
    ChangeSchema(change.table.name, [&](SchemaEditor& editor) { editor.Apply(change); });
}

void Connection::RunSelectInto(const BoundPlan& bound) {
    const sql::Plan& plan = bound.cached->plan;
    ChangeSchema(plan.intoTable.name, [&](SchemaEditor& editor) {
        editor.Apply({.table = plan.intoTable});
        Statement statement(m->db, plan.text, Doing::Write, plan.intoTable.name);
        Binding binding(statement);
        binding.Bind(1, plan.parameters, bound.scanned.literals);
        statement.Next();
        m_affected = m->db.Changes();
    });
}

void Connection::SetAllowZeroLength(const QString& table, const QString& column, bool allow) {
    WithMemory([&] {
        const TableInfo* info = Tables().FindTable(table);
        const int place = info == nullptr ? -1 : info->Find(column);
        if (place < 0)
            RaiseEngine(ItemNotFound);
        if (!IsText(info->At(place).type))
            RaiseEngine(InvalidOperation);
        SchemaChange change{SchemaChange::AllowZeroLength, {.name = info->name}, info->At(place)};
        if (std::exchange(change.column.allowZeroLength, allow) != allow)
            RunSchema(change);
    });
}

// ---- changes ----

const FileCatalog& Connection::Tables() {
    Begin();
    LookAround();
    return m->catalog;
}

std::uint64_t Connection::ChangeCount(const QString& table) {
    LookAround();
    return m->runner.ChangeCount(table);
}

void Connection::Begin() {
    CheckOpen();
    if (!m->watch->IsLost() || m->commits.HoldsLock() || m->commits.Depth() > 0)
        return;
    if (m->watch->Look(false) == SQLITE_OK || !m->watch->HasCopyInItsPlace())
        return;
    { const Connection trial(m_path); } // raises what is wrong with it
    Drop();
    Open();
}

template <class Work>
auto Connection::TryAgain(Work work) -> decltype(work()) {
    for (bool again = false;; again = true) {
        try {
            return work();
        } catch (const runtime::Failure&) {
            CheckFile();
            if (again || !NoticeOthers())
                throw;
        }
    }
}

void Connection::LookAround() {
    m->commits.CommitDueGroup();
    if (m->commits.HoldsLock() || !m->watch->IsDue())
        return;
    CheckFile();
    NoticeOthers();
}

void Connection::CheckFile() {
    const bool locked = m->commits.HoldsLock();
    const int code = m->watch->Look(locked);
    if (code == SQLITE_OK)
        return;
    if (!locked) { // what was read of the file meanwhile tells nothing
        Forget();
        sqlite3_db_release_memory(m->db.Handle());
    }
    throw m->db.FailureOf(code, Doing::Read);
}

bool Connection::NoticeOthers() {
    const FileWatch::News news = m->watch->Ask();
    if (news == FileWatch::News::None)
        return false;
    if (news == FileWatch::News::Tables)
        DropTables();
    else
        m->runner.NoteUpheaval();
    return true;
}

void Connection::DropTables() noexcept {
    m->catalog.Drop();
    m->plans.Drop();
    m->hasLookUps = false;
    m->runner.NoteUpheaval();
}

void Connection::Forget() noexcept {
    DropTables();
    m->watch->ForgetTables();
}

void Connection::Undone() noexcept {
    m->counters.Undone();
    Forget();
}

} // namespace engine
