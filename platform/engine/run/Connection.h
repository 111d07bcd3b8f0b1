#pragma once

#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/sql/Plan.h"
#include "platform/engine/store/Counters.h"
#include "platform/engine/store/Statement.h"
#include "platform/engine/store/Transactions.h"
#include "platform/runtime/FileIdentity.h"

#include <QHash>

#include <forward_list>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_set>

namespace runtime {
class OpenDatabaseFile;
}

namespace engine {

class RecordsetImpl;

/// A translated statement and what SQLite has compiled of it so far.
struct CachedPlan {
    sql::Plan plan;
    Statement text;
    Statement ignoreText;
    Statement rowText;
    bool countsUp = false; ///< an INSERT that can use up a generated number
    std::uint64_t lastUse = 0;
};

/// A plan together with the literals of the text at hand.
struct BoundPlan {
    std::shared_ptr<CachedPlan> cached;
    sql::Scanned scanned;
};

/// What a statement runs with. It is reset at the end, before what was bound goes.
class Binding {
public:
    explicit Binding(Statement& statement)
        : m_statement(statement) {}
    ~Binding() { m_statement.Reset(); }
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

    /// The literal as it is; the statement's text outlives the run.
    void Bind(int place, const sql::Literal& literal);
    /// A value that nobody else keeps.
    void Keep(int place, Value value);

private:
    Statement& m_statement;
    std::forward_list<Value> m_values; ///< which do not move
};

/// One open database file: the SQLite connection, the cache of statements, and what the layer knows of the
/// file. Everything but the constructor's parts may throw runtime::Failure with the engine's numbers.
class Connection {
public:
    /// Opens and checks an existing file; failures as Workspace::OpenDatabase. `file` says where it stands if
    /// it has not come to its path yet.
    explicit Connection(const QString& path, const QString& file = {});
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const QString& Path() const { return m_path; }
    bool IsOpen() const { return m_db != nullptr; }
    /// Failure 3420 if it is closed.
    void CheckOpen() const;
    /// Makes pending statements durable and closes; what BeginTrans has begun is taken back. If the pending
    /// statements are lost, raises the failure and stays open; a second call closes.
    void Close();
    /// Closes, if it is open, and takes back what is not durable.
    void Drop() noexcept;

    void Execute(const QString& text, bool failOnError);
    int RecordsAffected() const { return m_affected; }
    std::shared_ptr<RecordsetImpl> OpenRecordset(const QString& text, const std::function<bool()>& stop = {});

    /// The tables as they are now.
    const FileCatalog& Tables();
    void SetAllowZeroLength(const QString& table, const QString& column, bool allow);

    Transactions& Commits() { return *m_commits; }

    // What an open result set needs.

    /// Grows with every change that this connection has made or has noticed: of one table, or of any if the
    /// name is empty.
    std::uint64_t ChangeCount(const QString& table);
    void Register(RecordsetImpl* set) { m_sets.insert(set); }
    void Unregister(RecordsetImpl* set) noexcept { m_sets.erase(set); }
    /// Compiles the text if that is not done yet.
    void Prepare(Statement& statement, const QString& text, Statement::Lifetime lifetime);
    [[noreturn]] void RaiseRead(int code);
    /// Binds the parameters of a query.
    static void Bind(Binding& binding, int firstPlace, const std::vector<sql::Parameter>& parameters,
                     const std::vector<sql::Literal>& literals);

private:
    void Open();
    void CheckSound();
    /// Good until the next call.
    const BoundPlan& PlanOf(const QString& text, sql::Purpose purpose);
    std::vector<sql::Heading> ReadHeadings(const BoundPlan& bound);
    void EvictPlan(QHash<QString, std::shared_ptr<CachedPlan>>& plans) const;

    void Run(const BoundPlan& bound, bool failOnError);
    void RunAction(const BoundPlan& bound, bool failOnError);
    /// The statement of an action itself, within the group or the transaction.
    void Perform(const BoundPlan& bound, bool failOnError);
    void RunSelectInto(const BoundPlan& bound);
    /// Makes the look-ups that the file lacks, as a statement of its own. False if there was nothing to do.
    bool KeepLookUps();
    void RunSchema(const SchemaChange& change);
    template <class Work>
    void ChangeSchema(const QString& table, Work work);
    /// Runs an action statement to its end; the SQLite code.
    int StepAction(Statement& statement, const sql::Plan& plan);
    /// Binds an action's values. What cannot be converted is NULL without failOnError; with it an INSERT
    /// raises, and an UPDATE keeps the failure in `refused` and binds what its column refuses. False: the one
    /// row is left out.
    static bool BindAction(Binding& binding, const BoundPlan& bound, bool failOnError,
                           std::optional<runtime::Failure>& refused);
    void NoteUpheaval() noexcept;
    /// Keeps account of generated numbers; `leftOut`: a row was refused by a rule.
    void NoteInsert(const sql::Plan& plan, bool leftOut);

    /// Before each statement that does not write: commits a group that is due, and every so often looks at
    /// the file and at what other programs have done.
    void LookAround();
    /// A SQLite code: whether the file stands at its path as it was opened, and is still a database of ours.
    int StateOfFile() const;
    int LookAtFile();
    void CheckFile();
    /// Behind a look that found it wrong: looks again, and takes up a copy that has been put back.
    void FindAgain();
    bool HasCopyInItsPlace() const;
    /// Takes note of what other programs have changed; true if there is something.
    bool NoticeOthers();
    std::int64_t ReadNumber(Statement& statement, QStringView pragma) const;
    void DropPlans() noexcept;
    void Forget() noexcept;
    void Undone() noexcept;
    std::shared_ptr<RecordsetImpl> Read(const BoundPlan& bound);
    void Shut() noexcept;

    QString m_path;    ///< as it was given
    QString m_file;    ///< where the file stands, from the root
    QString m_journal; ///< where SQLite keeps it, links followed
    std::optional<runtime::FileIdentity> m_identity;
    bool m_isLost = false; ///< it did not stand there at the last look
    std::unique_ptr<runtime::OpenDatabaseFile> m_registered;
    std::unique_ptr<Sqlite> m_db;
    bool m_readOnly = false;
    bool m_rulesAreOff = false; ///< a definition could not switch them on again
    const bool m_isNew;         ///< being filled, before it comes to its path
    bool m_hasLookUps = false;  ///< as far as they can be had
    std::unique_ptr<FileCatalog> m_catalog;
    std::unique_ptr<Counters> m_counters;
    std::unique_ptr<Transactions> m_commits;
    QHash<QString, std::shared_ptr<CachedPlan>> m_queries;
    QHash<QString, std::shared_ptr<CachedPlan>> m_actions;
    BoundPlan m_bound; ///< of the statement at hand
    std::uint64_t m_useCount = 0;
    std::unordered_set<RecordsetImpl*> m_sets;
    int m_affected = 0;

    std::uint64_t m_changes = 0; ///< of everything
    QHash<QString, std::uint64_t> m_tableChanges;
    std::uint64_t m_upheavals = 0; ///< changes that may concern any table
    GroupClock::Time m_lastLook;
    Statement m_dataVersion;
    Statement m_schemaVersion;
    std::int64_t m_seenData = -1;
    std::int64_t m_seenSchema = -1;
};

} // namespace engine
