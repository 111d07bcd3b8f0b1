#include "tests/reliability/Sweep.h"

#include "platform/engine/GroupClock.h"
#include "tests/support/FullRun.h"
#include "tests/support/ShortLockWait.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QWidget>
#include <sqlite3.h>

#include <iostream>
#include <limits>

namespace test {

namespace {

using Call = FaultyFiles::Call;

constexpr int RowLocked = 3218;
constexpr int DiskFull = 3026;
constexpr int DiskFailure = 3043;
constexpr int CannotOpenFile = 3051;
const std::vector<Call> Writing{Call::Write, Call::Truncate, Call::Sync, Call::Delete, Call::SyncFolder};

const FaultKind diskFaults[] = {
    {"disk full", {Call::Write}, SQLITE_FULL, DiskFull},
    {"write", {Call::Write, Call::Truncate}, SQLITE_IOERR_WRITE, DiskFailure},
    {"sync", {Call::Sync}, SQLITE_IOERR_FSYNC, DiskFailure},
    {"delete", {Call::Delete}, SQLITE_IOERR_DELETE, DiskFailure},
    {"sync of the folder", {Call::SyncFolder}, SQLITE_IOERR_DIR_FSYNC, DiskFailure},
    {"open", {Call::Open}, SQLITE_CANTOPEN, CannotOpenFile},
    {"read", {Call::Read}, SQLITE_IOERR_READ, DiskFailure},
    {"power off", Writing, FaultyFiles::PowerOff, DiskFailure, true},
    {"killed", Writing, FaultyFiles::Killed, DiskFailure, true},
};

/// One failure at most is told, by the routine that met it, with a number and a description that fit.
void CheckBoxes(const Fault& fault, const QStringList& boxes, bool reported) {
    SCOPED_TRACE(boxes.join(u'\n').toStdString());
    const QStringList failures = Boxes::Failures(boxes);
    EXPECT_LE(failures.size(), 1);
    EXPECT_TRUE(reported || !failures.isEmpty()) << "neither success nor failure was told";
    EXPECT_TRUE(fault.WasHit() || (reported && failures.isEmpty()));
    static const QRegularExpression form(QStringLiteral("^[^\r]+:\r\nпроизошла ошибка №(\\d+) (\\S.+)$"));
    for (const QString& failure : failures) {
        const QRegularExpressionMatch parts = form.match(failure);
        EXPECT_TRUE(parts.hasMatch());
        EXPECT_TRUE(fault.Kind().number == 0 || parts.captured(1).toInt() == fault.Kind().number);
    }
}

void Survive(Work& work, Fault& fault, const std::function<std::unique_ptr<Layer>(Fault&)>& install) {
    work.startsAnew = fault.Kind().startsAnew;
    work.Prepare();
    Boxes boxes([&work](QWidget& window) { work.Answer(window); });
    bool reported = false;
    {
        const auto layer = install(fault);
        work.Begin();
        work.diskFails = true;
        layer->Begin();
        work.Act();
        layer->End();
        work.diskFails = false;
        const QStringList told = boxes.Take();
        reported = work.WasReported(told);
        CheckBoxes(fault, told, reported);
        if (!work.startsAnew) {
            work.CheckFiles(reported);
            work.ActAgain();
        }
        work.Leave();
        if (work.startsAnew)
            layer->StartAnew(fault);
    }
    if (work.startsAnew) {
        work.CheckFiles(reported);
        work.StartAgain();
        work.Leave();
    }
    EXPECT_EQ(Boxes::Failures(boxes.Take()), QStringList());
    work.CheckEnd();
}

/// The disk under SQLite, on which some openings take so long that a statement is a commit of its own.
class Disk final : public Layer {
public:
    Disk(Work& work, Fault& fault, int slowOpens)
        : m_slowOpens(slowOpens)
        , m_files([this, &work, &fault](Call call) {
            if (!work.diskFails)
                return SQLITE_OK;
            if (call == Call::Open && m_slowOpens-- > 0)
                engine::GroupClock::Advance(std::chrono::milliseconds(52));
            return fault.Judge(call);
        }) {}
    void StartAnew(const Fault& fault) override {
        if (fault.Kind().code == FaultyFiles::PowerOff)
            FaultyFiles::PowerOn();
    }

private:
    int m_slowOpens;
    FaultyFiles m_files;
};

/// Another program, which begins a transaction on the book; the name of the fault is its statement.
class Lock final : public Layer {
public:
    Lock(const QString& book, Fault& fault)
        : m_fault(fault) {
        EXPECT_EQ(sqlite3_open(QFile::encodeName(book).constData(), &m_other), SQLITE_OK);
    }
    ~Lock() override { sqlite3_close(m_other); }
    void Begin() override {
        if (m_fault.Judge(Call::Open) != SQLITE_OK)
            Run(m_fault.Kind().name);
    }
    void End() override {
        if (m_fault.WasHit())
            Run("ROLLBACK");
    }

private:
    void Run(const char* sql) { EXPECT_EQ(sqlite3_exec(m_other, sql, nullptr, nullptr, nullptr), SQLITE_OK); }

    Fault& m_fault;
    sqlite3* m_other = nullptr;
    const ShortLockWait m_wait{std::chrono::milliseconds(10)};
};

} // namespace

void Work::Answer(QWidget& window) {
    ADD_FAILURE() << "nobody expected " << window.objectName().toStdString();
    window.close();
}

QStringList FilesOf(const QString& path, bool startsAnew) {
    const QFileInfo file(path);
    QStringList names{file.completeBaseName() + u'*'};
    if (!startsAnew)
        names += QStringLiteral(".zavelik*");
    return file.dir().entryList(names, QDir::Files | QDir::Hidden);
}

int Fault::Judge(Call call) {
    ++m_calls.at(static_cast<std::size_t>(call));
    if (!m_kind.Concerns(call))
        return 0;
    ++m_concerned;
    const bool fails = m_concerned == m_place || (m_lasting && m_concerned > m_place);
    m_hit = m_hit || fails;
    return fails ? m_kind.code : 0;
}

int Fault::CallsOf(const FaultKind& kind) const {
    int calls = 0;
    for (const Call call : kind.calls)
        calls += m_calls.at(static_cast<std::size_t>(call));
    return calls;
}

void SweepLayer(Work& work, const std::string& name, Places places, std::span<const FaultKind> kinds,
                const std::function<std::unique_ptr<Layer>(Fault&)>& install) {
    if (places == Places::None && !IsFullRun())
        return;
    const bool everywhere = IsFullRun();
    Fault none(kinds.front(), std::numeric_limits<int>::max(), false);
    Survive(work, none, install);
    int all = 0;
    for (int turn = 0; const FaultKind& kind : kinds) {
        const int calls = none.CallsOf(kind);
        const int place = calls == 0 ? 0 : turn * calls / 7 % calls + 1;
        const bool lastsNow = turn++ % 2 == 1;
        for (const bool lasting : {false, true}) {
            const bool isTaken = kind.EndsAll() ? !lasting : everywhere || lasting == lastsNow;
            if (calls == 0 || !isTaken || testing::Test::HasFailure())
                continue;
            const std::string way = name + " | " + kind.name + (lasting ? ", lasting" : "");
            const auto hitsAt = [&](int at) {
                SCOPED_TRACE(way + " at call " + std::to_string(at));
                Fault fault(kind, at, lasting);
                Survive(work, fault, install);
                return fault.WasHit() && !testing::Test::HasFailure();
            };
            int hits = 0;
            while (everywhere && hitsAt(hits + 1))
                ++hits;
            if (!everywhere)
                hits = hitsAt(place) || hitsAt(1) ? 1 : 0; // the number of calls is a matter of time
            if (!everywhere && kind.EndsAll()) // right behind the work: what it has reported is on the disk
                hits += hitsAt(calls + 1) ? 1 : 0;
            std::cout << "  " << way << ": " << hits << " of " << calls << " calls failed\n";
            EXPECT_TRUE(hits > 0 || testing::Test::HasFailure());
            all += hits;
        }
    }
    std::cout << "FIGURE faults: " << name << ": " << all << std::endl;
}

void SweepDisk(Work& work, const std::string& name, Places onASlowDisk) {
    constexpr int SlowOpens = 6; // each makes a commit of a statement
    const auto install = [&work](int slowOpens) {
        return [&work, slowOpens](Fault& fault) { return std::make_unique<Disk>(work, fault, slowOpens); };
    };
    SweepLayer(work, name, Places::Some, diskFaults, install(0));
    SweepLayer(work, name + ", slow disk", onASlowDisk, diskFaults, install(SlowOpens));
}

void SweepLocks(Work& work, const std::string& name, const QString& book) {
    const std::vector<Call> lock{Call::Open};
    const FaultKind locks[] = {{"BEGIN EXCLUSIVE", lock, SQLITE_BUSY}, // met by a query or by a statement
                               {"BEGIN IMMEDIATE", lock, SQLITE_BUSY, RowLocked},
                               {"BEGIN; SELECT count(*) FROM sqlite_schema", lock, SQLITE_BUSY, RowLocked}};
    SweepLayer(work, name + " under a lock", Places::Some, locks,
               [&book](Fault& fault) { return std::make_unique<Lock>(book, fault); });
}

} // namespace test
