#include "tests/reliability/Sweep.h"

#include "platform/engine/GroupClock.h"
#include "tests/support/KilledChild.h"
#include "tests/support/ShortLockWait.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
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
    if (!fault.WasHit() || fault.Kind().code == 0) {
        EXPECT_TRUE(reported && failures.isEmpty());
    }
    static const QRegularExpression form(QStringLiteral("^[^\r]+:\r\nпроизошла ошибка №(\\d+) (\\S.+)$"));
    for (const QString& failure : failures) {
        const QRegularExpressionMatch parts = form.match(failure);
        EXPECT_TRUE(parts.hasMatch());
        EXPECT_TRUE(fault.Kind().number == 0 || parts.captured(1).toInt() == fault.Kind().number);
    }
}

/// Behind the work: what it has left, and that it can be done at last.
void StartAnew(Work& work, bool reported) {
    work.CheckFiles(reported);
    work.StartAgain();
    work.Leave();
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
        work.Act();
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
    const bool wasKilled = fault.Kind().code == 0 && fault.WasHit();
    if (work.startsAnew)
        StartAnew(work, reported && !wasKilled);
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
    void StartAnew(const Fault& fault) override { FaultyFiles::PowerOn(*fault.Kind().remains); }

private:
    int m_slowOpens;
    FaultyFiles m_files;
};

/// In the process that is to be killed.
[[noreturn]] void WorkUntilKilled(Work& work) {
    work.Prepare();
    Boxes boxes([&work](QWidget& window) { work.Answer(window); });
    work.Begin();
    TellParent("folder " + work.Folder().toUtf8());
    TellParent("working");
    work.Act();
    TellParent(work.WasReported(boxes.Take()) ? "reported" : "failed");
    WaitForTheKill();
}

void TakeOver(const QString& from, const QString& to) {
    const QDir left(from);
    const QDir folder(to);
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden))
        QFile::remove(folder.filePath(name));
    for (const QString& name : left.entryList(QDir::Files | QDir::Hidden))
        EXPECT_TRUE(QFile::copy(left.filePath(name), folder.filePath(name)));
}

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

void SweepLocks(Work& work, const QString& book) {
    const ShortLockWait wait(std::chrono::milliseconds(10));
    work.startsAnew = false;
    for (const char* lock :
         {"BEGIN EXCLUSIVE", "BEGIN IMMEDIATE", "BEGIN; SELECT count(*) FROM sqlite_schema"}) {
        SCOPED_TRACE(lock);
        work.Prepare();
        Boxes boxes([&work](QWidget& window) { work.Answer(window); });
        work.Begin();
        sqlite3* opened = nullptr;
        ASSERT_EQ(sqlite3_open(QFile::encodeName(book).constData(), &opened), SQLITE_OK);
        std::unique_ptr<sqlite3, decltype(&sqlite3_close)> other(opened, &sqlite3_close);
        ASSERT_EQ(sqlite3_exec(opened, lock, nullptr, nullptr, nullptr), SQLITE_OK);
        work.Act();
        other.reset();
        const QStringList told = boxes.Take();
        SCOPED_TRACE(told.join(u'\n').toStdString());
        const QStringList failures = Boxes::Failures(told);
        static const QRegularExpression locked(QStringLiteral("ошибка №(3045|3211|3218) "));
        EXPECT_EQ(failures, failures.filter(locked));
        EXPECT_EQ(failures.size(), work.WasReported(told) ? 0 : 1);
        work.CheckFiles(work.WasReported(told));
        work.ActAgain();
        work.Leave();
        EXPECT_EQ(Boxes::Failures(boxes.Take()), QStringList());
        work.CheckEnd();
    }
}

void SweepKills(Work& work, const std::string& name,
                std::initializer_list<std::chrono::microseconds> moments) {
    if (IsKilledChild())
        WorkUntilKilled(work);
    work.startsAnew = true;
    for (const auto moment : Moments(name, moments, 80)) {
        SCOPED_TRACE(moment.count());
        work.Prepare();
        const QTemporaryDir temporary;
        const QByteArray said = KillWhileRunning(temporary.path(), moment);
        static const QRegularExpression told(QStringLiteral("folder (.*)\n"));
        TakeOver(told.match(QString::fromUtf8(said)).captured(1), work.Folder());
        EXPECT_FALSE(said.contains("failed\n"));
        Boxes boxes([&work](QWidget& window) { work.Answer(window); });
        StartAnew(work, said.contains("reported\n"));
        EXPECT_EQ(Boxes::Failures(boxes.Take()), QStringList());
        work.CheckEnd();
    }
}

} // namespace test
