#include "platform/engine/run/Connection.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/dao/RecordsetImpl.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/SchemaEditor.h"
#include "platform/engine/store/DatabaseFile.h"
#include "platform/engine/store/LockWait.h"
#include "platform/runtime/Files.h"

#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <limits>

namespace engine {

namespace {

constexpr int maxPlans = 200;
constexpr auto lookInterval = std::chrono::milliseconds(50);

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

sqlite3_file* FileOf(sqlite3* db) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(db, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    return file;
}

// The check of a file tells in words alone that a page could not be read; anything else that it finds is
// damage.
int CodeIn(const QString& finding) {
    constexpr auto mark = QLatin1String("error code=");
    const qsizetype place = finding.indexOf(mark);
    const QStringView code = QStringView(finding).mid(place + mark.size());
    const auto end = std::ranges::find_if_not(code, [](QChar character) { return character.isDigit(); });
    const int number = place < 0 ? 0 : code.left(end - code.begin()).toInt();
    return (number & 0xff) == SQLITE_IOERR ? number : SQLITE_CORRUPT;
}

runtime::Failure MemoryFailure() {
    return {runtime::OutOfMemory, runtime::RuntimeText(runtime::OutOfMemory)};
}

// Most literals are what their column holds already.
bool FitsAsItIs(const sql::Literal& literal, const ColumnInfo& column) {
    if (literal.Whole() != nullptr)
        return column.type == DataType::Long || column.type == DataType::Counter;
    const QStringView text = literal.Plain();
    const bool takesText = column.type == DataType::Text || column.type == DataType::Memo;
    return takesText && !text.isNull() && (column.size <= 0 || text.size() <= column.size);
}

// A value that its column will certainly refuse: an UPDATE whose value cannot be converted fails only if it
// hits a row.
Value RefusedValue(const ColumnInfo& column) {
    const int size = std::max(column.size, functions::guidSize) + 1;
    return column.type == DataType::Binary ? Value(QByteArray(size, 'x')) : Value(QString(size, u'x'));
}

} // namespace

void Binding::Bind(int place, const sql::Literal& literal) {
    if (const std::int64_t* whole = literal.Whole())
        m_statement.BindNumber(place, *whole);
    else if (const QStringView text = literal.Plain(); !text.isNull())
        m_statement.BindText(place, text);
    else
        Keep(place, literal.ToValue());
}

void Binding::Keep(int place, Value value) {
    m_statement.Bind(place, m_values.emplace_front(std::move(value)));
}

Connection::Connection(const QString& path, const QString& file)
    : m_path(path)
    , m_file(QFileInfo(file.isEmpty() ? path : file).absoluteFilePath())
    , m_isNew(!file.isEmpty()) {
    Open();
}

void Connection::Open() {
    try {
        const QString spelled = QFileInfo(m_path).absoluteFilePath() == m_file ? m_path : m_file;
        if (!runtime::OpenDatabaseFile::Holds(m_file))
            CheckDatabaseFile(spelled);
        m_journal = QFileInfo(m_file).canonicalFilePath() + QStringLiteral("-journal");
        if (JournalNamesAFile(m_journal))
            RaiseEngine(CannotOpenDatabase, m_path);
        m_identity = runtime::IdentityOf(m_file);
        m_registered = std::make_unique<runtime::OpenDatabaseFile>(m_file);
        if (!m_registered->Granted())
            RaiseEngine(FileInUse, m_path);
        m_db = std::make_unique<Sqlite>(m_file, m_path);
        m_commits = std::make_unique<Transactions>(
            *m_db, [this] { return LookAtFile(); }, [this] { Undone(); });
        // EXTRA: a commit that has been reported is on the disk, the removal of the journal included.
        m_db->Run("PRAGMA cell_size_check = ON; PRAGMA temp_store = MEMORY; PRAGMA cache_size = -16000; "
                  "PRAGMA synchronous = EXTRA",
                  Doing::Open);
        m_catalog = std::make_unique<FileCatalog>(*m_db);
        m_counters = std::make_unique<Counters>(*m_db);
        m_readOnly = m_db->IsReadOnly();
        CheckSound();
        // Not before: it writes to a file that other means have set to a write-ahead log.
        m_db->Run("PRAGMA journal_mode = DELETE", Doing::Open);
        m_seenData = ReadNumber(m_dataVersion, u"PRAGMA data_version");
        m_seenSchema = ReadNumber(m_schemaVersion, u"PRAGMA schema_version");
        m_hasLookUps = false;
        m_lastLook = GroupClock::Now();
    } catch (const std::bad_alloc&) {
        Shut();
        throw MemoryFailure();
    } catch (...) {
        Shut();
        throw;
    }
}

Connection::~Connection() {
    if (!IsOpen())
        return;
    try {
        m_commits->CommitGroup();
    } catch (const runtime::Failure&) {
        // Whoever drops a database without closing it has nobody to tell.
    }
    Shut();
}

void Connection::CheckSound() {
    if (m_db->Number("PRAGMA application_id") != applicationId)
        RaiseEngine(UnrecognisedFormat, m_path);
    // SQLite takes what is missing of the last page for zeros.
    const std::int64_t whole = m_db->Number("PRAGMA page_count") * m_db->Number("PRAGMA page_size");
    if (QFileInfo(m_file).size() < whole) // looked at last: others may let it grow meanwhile
        RaiseEngine(CannotOpenDatabase, m_path);
    // Columns that are worked out one from the other can keep any reader busy for ever.
    if (m_db->Number("SELECT count(*) FROM sqlite_schema AS s, pragma_table_xinfo(s.name) AS c WHERE s.type "
                     "= 'table' AND s.rootpage <> 0 AND c.hidden > 1") != 0)
        RaiseEngine(UnrecognisedFormat, m_path);
    // Rows older than a rule may break it, and the file is sound all the same.
    m_db->Run("PRAGMA ignore_check_constraints = ON", Doing::Open);
    Statement check(*m_db, u"PRAGMA quick_check(1)", Doing::Open);
    if (const QString finding = check.Next() ? check.Text(0) : QString(); finding != QLatin1String("ok"))
        throw m_db->FailureOf(CodeIn(finding), Doing::Open);
    m_db->Run("PRAGMA ignore_check_constraints = OFF", Doing::Open);
    for (const QString& table : m_catalog->TableNames())
        m_catalog->FindTable(table);
}

void Connection::CheckOpen() const {
    if (!IsOpen())
        RaiseEngine(ObjectClosed);
}

void Connection::Close() {
    CheckOpen();
    m_commits->CommitGroup();
    Shut();
}

void Connection::Drop() noexcept {
    if (IsOpen())
        Shut();
}

void Connection::Shut() noexcept {
    const auto sets = std::exchange(m_sets, {});
    for (RecordsetImpl* set : sets)
        set->Close();
    DropPlans();
    m_bound = {};
    m_dataVersion.Finish();
    m_schemaVersion.Finish();
    if (m_commits)
        m_commits->Abandon();
    m_catalog.reset();
    m_counters.reset();
    m_commits.reset();
    m_db.reset();
    m_registered.reset();
}

// ---- plans ----

const BoundPlan& Connection::PlanOf(const QString& text, sql::Purpose purpose) {
    BoundPlan& bound = m_bound;
    sql::Scan(text, bound.scanned);
    auto& plans = purpose == sql::Purpose::Execute ? m_actions : m_queries;
    bound.cached = bound.scanned.cacheable ? plans.value(bound.scanned.shape) : nullptr;
    if (!bound.cached) {
        bound.cached = std::make_shared<CachedPlan>();
        bound.cached->plan = sql::Translate(bound.scanned, *m_catalog, purpose);
        const sql::Verb verb = bound.cached->plan.verb;
        const bool pivots = !bound.cached->plan.headingsText.isEmpty();
        if (pivots) {
            const auto headings = ReadHeadings(bound);
            bound.cached->plan = sql::Translate(bound.scanned, *m_catalog, purpose, &headings);
        }
        const TableInfo* target =
            verb == sql::Verb::Insert ? m_catalog->FindTable(bound.cached->plan.target) : nullptr;
        bound.cached->countsUp = target != nullptr && target->CounterColumn() >= 0;
        if (bound.scanned.cacheable && !pivots && verb != sql::Verb::Schema &&
            verb != sql::Verb::SelectInto) {
            if (plans.size() >= maxPlans)
                EvictPlan(plans);
            plans.insert(bound.scanned.shape, bound.cached);
        }
    }
    bound.cached->lastUse = ++m_useCount;
    return bound;
}

/// The columns of a TRANSFORM, which the rows tell at each opening.
std::vector<sql::Heading> Connection::ReadHeadings(const BoundPlan& bound) {
    const sql::Plan& plan = bound.cached->plan;
    Statement statement(*m_db, plan.headingsText);
    Binding binding(statement);
    Bind(binding, 1, plan.parameters, bound.scanned.literals);
    std::vector<sql::Heading> headings;
    while (statement.Next())
        headings.push_back({statement.Text(0), statement.Text(1)});
    return headings;
}

void Connection::EvictPlan(QHash<QString, std::shared_ptr<CachedPlan>>& plans) const {
    auto oldest = plans.begin();
    for (auto plan = plans.begin(); plan != plans.end(); ++plan)
        if ((*plan)->lastUse < (*oldest)->lastUse)
            oldest = plan;
    plans.erase(oldest);
}

void Connection::DropPlans() noexcept {
    m_queries.clear();
    m_actions.clear();
}

void Connection::Prepare(Statement& statement, const QString& text, Statement::Lifetime lifetime) {
    if (statement)
        return;
    statement = Statement(*m_db, text, Doing::Read, {}, lifetime);
}

void Connection::RaiseRead(int code) {
    const auto failure = m_db->FailureOf(code, Doing::Read);
    m_commits->StatementFailed(failure); // some failures of a query take a transaction along
    throw runtime::Failure(failure);
}

void Connection::Bind(Binding& binding, int firstPlace, const std::vector<sql::Parameter>& parameters,
                      const std::vector<sql::Literal>& literals) {
    for (int place = firstPlace; const sql::Parameter& parameter : parameters)
        binding.Bind(place++, literals[static_cast<std::size_t>(parameter.literal)]);
}

// ---- queries ----

std::shared_ptr<RecordsetImpl> Connection::OpenRecordset(const QString& text,
                                                         const std::function<bool()>& stop) {
    CheckOpen();
    FindAgain();
    const Stoppable stoppable(m_db->Handle(), stop);
    try {
        LookAround();
        for (bool again = false;; again = true) {
            try {
                return Read(PlanOf(text, sql::Purpose::OpenRecordset));
            } catch (const runtime::Failure& failure) {
                m_commits->StatementFailed(failure); // some take a transaction along
                CheckFile();
                if (again || !NoticeOthers())
                    throw;
            }
        }
    } catch (const std::bad_alloc&) {
        throw MemoryFailure();
    }
}

std::shared_ptr<RecordsetImpl> Connection::Read(const BoundPlan& bound) {
    CachedPlan& cached = *bound.cached;
    Statement& statement = cached.text;
    Prepare(statement, cached.plan.text, Statement::Lifetime::Kept);
    auto set = std::make_shared<RecordsetImpl>(*this, bound);
    Binding binding(statement);
    Bind(binding, 1, cached.plan.parameters, bound.scanned.literals);
    while (statement.Next())
        set->Rows().Add(statement);
    set->Start();
    return set;
}

// ---- actions ----

void Connection::Execute(const QString& text, bool failOnError) {
    CheckOpen();
    FindAgain();
    m_affected = 0;
    if (m_rulesAreOff) {
        m_db->Run("PRAGMA ignore_check_constraints = OFF", Doing::Open);
        m_rulesAreOff = false;
    }
    try {
        LookAround();
        for (bool again = false;; again = true) {
            // Its tables may be gone too, which would read like a mistake in the statement.
            m_commits->RaiseLoss();
            try {
                return Run(PlanOf(text, sql::Purpose::Execute), failOnError);
            } catch (const runtime::Failure&) {
                CheckFile();
                if (again || !NoticeOthers())
                    throw;
            }
        }
    } catch (const std::bad_alloc&) {
        throw MemoryFailure();
    }
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
    const sql::Plan& plan = bound.cached->plan;
    if (m_readOnly)
        RaiseEngine(NotUpdatable);
    if (m_commits->BeforeWrite(Doing::Write, plan.target) && NoticeOthers())
        return Execute(QString(bound.scanned.text), failOnError); // the plan is out of date
    // A new file is filled quicker without them, and nobody looks for anything in it.
    if (!m_hasLookUps && !m_isNew && KeepLookUps())
        return Execute(QString(bound.scanned.text), failOnError); // the lock may be gone with the group
    try {
        Perform(bound, failOnError);
    } catch (const runtime::Failure& failure) {
        m_commits->StatementFailed(failure);
        throw;
    } catch (...) {
        m_commits->StatementFailed(MemoryFailure());
        throw;
    }
    m_commits->StatementDone();
}

void Connection::Perform(const BoundPlan& bound, bool failOnError) {
    CachedPlan& cached = *bound.cached;
    const sql::Plan& plan = cached.plan;
    Statement& statement = failOnError ? cached.text : cached.ignoreText;
    Prepare(statement, failOnError ? plan.text : plan.ignoreText, Statement::Lifetime::Kept);
    std::optional<runtime::Failure> refused;
    Binding binding(statement);
    if (!BindAction(binding, bound, failOnError, refused))
        return; // the only row is left out
    int code = StepAction(statement, plan);
    if ((code & 0xff) == SQLITE_MISMATCH && !failOnError)
        code = SQLITE_DONE; // a key without a value: SQLite leaves the statement out, not the row alone
    const bool done = code == SQLITE_DONE;
    if (!done && !refused)
        refused = m_db->FailureOf(code, Doing::Write, plan.target);
    if (cached.countsUp)
        NoteInsert(plan, (code & 0xff) == SQLITE_CONSTRAINT || (done && !failOnError && m_affected == 0));
    if (done)
        return;
    throw runtime::Failure(*refused);
}

bool Connection::BindAction(Binding& binding, const BoundPlan& bound, bool failOnError,
                            std::optional<runtime::Failure>& refused) {
    const sql::Plan& plan = bound.cached->plan;
    int place = 0;
    for (const sql::Parameter& parameter : plan.parameters) {
        ++place;
        const sql::Literal& literal = bound.scanned.literals[static_cast<std::size_t>(parameter.literal)];
        if (!parameter.column || FitsAsItIs(literal, *parameter.column)) {
            binding.Bind(place, literal);
            continue;
        }
        const ColumnInfo& column = *parameter.column;
        try {
            binding.Keep(place, functions::ToColumn(literal.ToValue(), column.type, column.size));
        } catch (const runtime::Failure& failure) {
            const bool tooLong = failure.number() == ValueTooLong;
            if (plan.verb == sql::Verb::Insert && failOnError)
                throw;
            if (plan.verb == sql::Verb::Insert && tooLong)
                return false;
            if (failOnError && !refused)
                refused = failure;
            binding.Keep(place, failOnError || tooLong ? RefusedValue(column) : Value());
        }
    }
    return true;
}

int Connection::StepAction(Statement& statement, const sql::Plan& plan) {
    if (plan.verb == sql::Verb::Insert)
        m_counters->BeforeInsert(plan.target);
    m_commits->CheckAlive();
    const int code = statement.Step();
    if (code == SQLITE_DONE)
        m_affected = static_cast<int>(
            std::min<sqlite3_int64>(sqlite3_changes64(m_db->Handle()), std::numeric_limits<int>::max()));
    if (m_affected > 0) {
        ++m_changes;
        ++m_tableChanges[plan.target];
    }
    return code;
}

void Connection::NoteInsert(const sql::Plan& plan, bool leftOut) {
    if (m_affected > 0)
        m_counters->Inserted(plan.target, sqlite3_last_insert_rowid(m_db->Handle()));
    else if (leftOut && !plan.setsCounter)
        m_counters->Failed(plan.target);
}

// ---- schema ----

/// They are a help alone: a statement does not fail for them.
bool Connection::KeepLookUps() {
    m_hasLookUps = true;
    try {
        const QStringList statements = m_catalog->MissingLookUps();
        if (statements.isEmpty())
            return false;
        for (const QString& text : statements)
            Statement(*m_db, text, Doing::Define).Next();
    } catch (const runtime::Failure& failure) {
        m_commits->StatementFailed(failure);
        return true;
    }
    m_commits->StatementDone();
    return true;
}

template <class Work>
void Connection::ChangeSchema(const QString& table, Work work) {
    if (m_readOnly)
        RaiseEngine(ReadOnly);
    const auto reads = [&](const RecordsetImpl* set) { return SameName(set->Table(), table); };
    if (std::ranges::any_of(m_sets, reads))
        RaiseEngine(TableInUse, table);
    if (m_commits->BeforeWrite(Doing::Define, table))
        NoticeOthers();
    m_commits->CheckAlive();
    const auto takeBack = [&](const runtime::Failure& failure) {
        if (m_db->InTransaction())
            m_db->Try("ROLLBACK TO definition; RELEASE definition");
        Forget();
        m_commits->StatementFailed(failure);
    };
    try {
        m_db->Run("SAVEPOINT definition", Doing::Define, table);
    } catch (const runtime::Failure& failure) {
        m_commits->StatementFailed(failure);
        throw;
    }
    try {
        SchemaEditor editor(*m_db, *m_catalog, *m_counters, m_rulesAreOff);
        work(editor);
        m_commits->CheckAlive();
        m_db->Run("RELEASE definition", Doing::Define, table);
    } catch (const runtime::Failure& failure) {
        takeBack(failure);
        throw;
    } catch (...) {
        takeBack(MemoryFailure());
        throw;
    }
    Forget();
    m_commits->StatementDone();
}

void Connection::RunSchema(const SchemaChange& change) {
    ChangeSchema(change.table.name, [&](SchemaEditor& editor) { editor.Apply(change); });
}

void Connection::RunSelectInto(const BoundPlan& bound) {
    const sql::Plan& plan = bound.cached->plan;
    ChangeSchema(plan.intoTable.name, [&](SchemaEditor& editor) {
        editor.Apply({.table = plan.intoTable});
        Statement statement(*m_db, plan.text, Doing::Write, plan.intoTable.name);
        Binding binding(statement);
        Bind(binding, 1, plan.parameters, bound.scanned.literals);
        statement.Next();
        m_affected = static_cast<int>(sqlite3_changes64(m_db->Handle()));
    });
}

void Connection::SetAllowZeroLength(const QString& table, const QString& column, bool allow) {
    CheckOpen();
    try {
        const TableInfo* info = Tables().FindTable(table);
        const int place = info == nullptr ? -1 : info->Find(column);
        if (place < 0)
            RaiseEngine(ItemNotFound);
        if (!IsText(info->At(place).type))
            RaiseEngine(InvalidOperation);
        SchemaChange change{SchemaChange::AllowZeroLength, {.name = info->name}, info->At(place)};
        if (std::exchange(change.column.allowZeroLength, allow) != allow)
            RunSchema(change);
    } catch (const std::bad_alloc&) {
        throw MemoryFailure();
    }
}

// ---- changes ----

const FileCatalog& Connection::Tables() {
    CheckOpen();
    FindAgain();
    LookAround();
    return *m_catalog;
}

std::uint64_t Connection::ChangeCount(const QString& table) {
    LookAround();
    return table.isEmpty() ? m_changes : m_upheavals + m_tableChanges.value(table);
}

void Connection::NoteUpheaval() noexcept {
    ++m_upheavals;
    ++m_changes;
}

std::int64_t Connection::ReadNumber(Statement& statement, QStringView pragma) const {
    try {
        if (!statement)
            statement = Statement(*m_db, pragma, Doing::Read, {}, Statement::Lifetime::Kept);
        const ResetGuard guard(statement);
        return statement.Next() ? statement.Number(0) : -1;
    } catch (const runtime::Failure&) {
        return -1;
    }
}

void Connection::LookAround() {
    m_commits->CommitDueGroup();
    if (m_commits->HoldsLock() || GroupClock::Now() - m_lastLook < lookInterval)
        return;
    CheckFile();
    NoticeOthers();
}

int Connection::LookAtFile() {
    const int code = StateOfFile();
    m_isLost = code != SQLITE_OK;
    return code;
}

int Connection::StateOfFile() const {
    const auto identity = runtime::IdentityOf(m_file);
    if (!identity)
        return SQLITE_READONLY_DBMOVED;
    if (identity != m_identity)
        return SQLITE_NOTADB;
    // By SQLite's own handle: closing another one would drop its locks.
    sqlite3_file* const file = FileOf(m_db->Handle());
    std::array<char, headerSize> header{};
    const int code = file->pMethods->xRead(file, header.data(), headerSize, 0);
    if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ)
        return code;
    if (!IsHeaderOfOurs(header) || (!m_commits->HoldsLock() && JournalNamesAFile(m_journal)))
        return SQLITE_NOTADB;
    return SQLITE_OK;
}

void Connection::CheckFile() {
    const int code = LookAtFile();
    if (code == SQLITE_OK)
        return;
    if (!m_commits->HoldsLock()) { // what was read of the file meanwhile tells nothing
        Forget();
        sqlite3_db_release_memory(m_db->Handle());
    }
    throw m_db->FailureOf(code, Doing::Read);
}

void Connection::FindAgain() {
    if (!m_isLost || m_commits->HoldsLock() || m_commits->Depth() > 0)
        return;
    if (LookAtFile() == SQLITE_OK || !HasCopyInItsPlace())
        return;
    { const Connection trial(m_path); } // raises what is wrong with it
    Shut();
    Open();
    NoteUpheaval();
    m_isLost = false;
}

/// Whether another file with the very bytes of the one that was opened stands there now.
bool Connection::HasCopyInItsPlace() const {
    if (!QFileInfo(m_file).isFile() || runtime::OpenDatabaseFile::Holds(m_file))
        return false;
    QFile copy(m_file);
    sqlite3_file* const file = FileOf(m_db->Handle());
    sqlite3_int64 size = 0;
    if (!copy.open(QIODevice::ReadOnly) || file->pMethods->xFileSize(file, &size) != SQLITE_OK ||
        copy.size() != size)
        return false;
    QByteArray ours(1 << 16, Qt::Uninitialized);
    for (sqlite3_int64 at = 0; at < size; at += ours.size()) {
        const QByteArray theirs = copy.read(ours.size());
        if (theirs.isEmpty() ||
            file->pMethods->xRead(file, ours.data(), static_cast<int>(theirs.size()), at) != SQLITE_OK ||
            QByteArrayView(ours).first(theirs.size()) != theirs)
            return false;
    }
    return true;
}

bool Connection::NoticeOthers() {
    m_lastLook = GroupClock::Now();
    LockWait::Allow(m_db->Handle(), false); // the statement itself waits, and once is enough
    const std::int64_t data = ReadNumber(m_dataVersion, u"PRAGMA data_version");
    LockWait::Allow(m_db->Handle(), true);
    if (data == m_seenData || data < 0)
        return false;
    m_seenData = data;
    NoteUpheaval();
    const std::int64_t schema = ReadNumber(m_schemaVersion, u"PRAGMA schema_version");
    if (schema != m_seenSchema) {
        DropPlans();
        m_catalog->Drop();
        m_hasLookUps = false;
    }
    m_seenSchema = schema;
    return true;
}

/// What is known of the file is true no more.
void Connection::Forget() noexcept {
    m_catalog->Drop();
    DropPlans();
    m_hasLookUps = false;
    m_seenSchema = -1;
    NoteUpheaval();
}

void Connection::Undone() noexcept {
    m_counters->Undone();
    Forget();
}

} // namespace engine
