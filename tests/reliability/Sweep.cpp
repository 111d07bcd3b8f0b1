#include "tests/reliability/Sweep.h"

#include "platform/engine/GroupClock.h"
#include "tests/support/ShortLockWait.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QWidget>
#include <sqlite3.h>

#include <memory>

namespace test {

namespace {

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
    work.noSyncAtAll = fault.IsLasting() && fault.Kind().Concerns(FaultyFiles::Call::Sync);
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
        if (reported && Boxes::Failures(told).isEmpty())
            layer->CheckSynced(fault.WasHit());
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
        , m_files([this, &work, &fault](FaultyFiles::Call call) {
            if (!work.diskFails)
                return SQLITE_OK;
            if (call == FaultyFiles::Call::Open && m_slowOpens-- > 0)
                engine::GroupClock::Advance(std::chrono::milliseconds(52));
            return fault.Judge(call);
        }) {}
    void StartAnew(const Fault& fault) override {
        if (fault.CutsPower())
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
        if (m_fault.Judge(FaultyFiles::Call::Open) != SQLITE_OK)
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

void SweepLayer(Work& work, const std::string& name, int samples, std::span<const FaultKind> kinds,
                const std::function<std::unique_ptr<Layer>(Fault&)>& install) {
    SweepFaults(name, samples, kinds, [&](Fault& fault) { Survive(work, fault, install); });
}

void SweepDisk(Work& work, const std::string& name, int samples, int slowSamples) {
    constexpr int SlowOpens = 6; // each makes a commit of a statement
    const auto install = [&work](int slowOpens) {
        return [&work, slowOpens](Fault& fault) { return std::make_unique<Disk>(work, fault, slowOpens); };
    };
    SweepLayer(work, name, samples, DiskFaults(), install(0));
    SweepLayer(work, name + ", slow disk", slowSamples, DiskFaults(), install(SlowOpens));
}

void SweepLocks(Work& work, const std::string& name, const QString& book) {
    constexpr int RowLocked = 3218;
    const std::vector<FaultyFiles::Call> lock{FaultyFiles::Call::Open};
    const FaultKind locks[] = {{"BEGIN EXCLUSIVE", lock, SQLITE_BUSY}, // met by a query or by a statement
                               {"BEGIN IMMEDIATE", lock, SQLITE_BUSY, RowLocked},
                               {"BEGIN; SELECT count(*) FROM sqlite_schema", lock, SQLITE_BUSY, RowLocked}};
    SweepLayer(work, name + " under a lock", 1, locks,
               [&book](Fault& fault) { return std::make_unique<Lock>(book, fault); });
}

} // namespace test
