#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <unordered_set>

namespace engine {

class FileCatalog;
class ResultSet;
class Transactions;
struct BoundPlan;
struct SchemaChange;

/// One open database file: the way of each statement through the cache of plans, the runner and the group,
/// and what is to be done when the file or what is known of it has changed. Everything may throw
/// runtime::Failure with the engine's numbers, and anything but IsOpen, Drop and the path asks for an open
/// one.
class Connection {
public:
    /// Opens and checks an existing file; failures as Workspace::OpenDatabase. `file` says where it stands if
    /// it has not come to its path yet.
    explicit Connection(const QString& path, const QString& file = {});
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    const QString& Path() const { return m_path; }
    bool IsOpen() const;
    /// Failure 3420 if it is closed.
    void CheckOpen() const;
    /// Makes pending statements durable and closes; what BeginTrans has begun is taken back. If the pending
    /// statements are lost, raises the failure and stays open; a second call closes.
    void Close();
    /// Closes, if it is open, and takes back what is not durable.
    void Drop() noexcept;

    void Execute(const QString& text, bool failOnError);
    int RecordsAffected() const { return m_affected; }
    std::shared_ptr<ResultSet> OpenRecordset(const QString& text, const std::function<bool()>& stop = {});

    /// The tables as they are now.
    const FileCatalog& Tables();
    void SetAllowZeroLength(const QString& table, const QString& column, bool allow);

    Transactions& Commits();

    // What an open result set needs.

    /// Grows with every change that this connection has made or has noticed: of one table, or of any if the
    /// name is empty.
    std::uint64_t ChangeCount(const QString& table);
    void Register(ResultSet* set) { m_sets.insert(set); }
    void Unregister(ResultSet* set) noexcept { m_sets.erase(set); }

private:
    struct Session;

    void Open();
    /// Before each statement: failure 3420 if it is closed; behind a look that found the file wrong looks
    /// again, and takes up a copy that has been put back.
    void Begin();
    /// Runs a statement, and once more if it fails and others turn out to have changed the file.
    template <class Work>
    auto TryAgain(Work work) -> decltype(work());
    std::shared_ptr<ResultSet> Read(const BoundPlan& bound);
    void Run(const BoundPlan& bound, bool failOnError);
    void RunAction(const BoundPlan& bound, bool failOnError);
    void RunSelectInto(const BoundPlan& bound);
    /// Makes the look-ups that the file lacks, as a statement of its own. False if there was nothing to do.
    bool KeepLookUps();
    void RunSchema(const SchemaChange& change);
    template <class Work>
    void ChangeSchema(const QString& table, Work work);

    /// Before each statement that does not write: commits a group that is due, and every so often looks at
    /// the file and at what other programs have done.
    void LookAround();
    /// Raises what is wrong with the file.
    void CheckFile();
    /// Takes note of what other programs have changed; true if there is something.
    bool NoticeOthers();
    /// The tables are other ones.
    void DropTables() noexcept;
    /// What is known of the file is true no more.
    void Forget() noexcept;
    void Undone() noexcept;

    QString m_path;     ///< as it was given
    QString m_file;     ///< where the file stands, from the root
    const bool m_isNew; ///< being filled, before it comes to its path
    int m_affected = 0;
    std::unordered_set<ResultSet*> m_sets;
    std::unique_ptr<Session> m;
};

} // namespace engine
