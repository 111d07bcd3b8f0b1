#include "tests/reliability/Sweep.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>
#include <QWidget>

namespace test {

namespace {

/// One failure at most is told, by the routine that met it, with a number and a description that fit.
void CheckBoxes(const Fault& fault, const QStringList& boxes, bool reported) {
    SCOPED_TRACE(boxes.join(QStringLiteral("\n")).toStdString());
    const QStringList failures = Boxes::Failures(boxes);
    EXPECT_LE(failures.size(), 1);
    EXPECT_TRUE(reported || !failures.isEmpty()) << "neither success nor failure was told";
    EXPECT_TRUE(fault.WasHit() || (reported && failures.isEmpty()));
    static const QRegularExpression form(QStringLiteral("^[^\r]+:\r\nпроизошла ошибка №(\\d+) (\\S.+)$"));
    for (const QString& failure : failures) {
        const QRegularExpressionMatch parts = form.match(failure);
        EXPECT_TRUE(parts.hasMatch());
        EXPECT_EQ(parts.captured(1).toInt(), fault.Kind().number);
    }
}

/// The greatest age of statements that are not committed yet, in milliseconds, and somewhat more.
constexpr unsigned long SlowOpen = 52;

bool Survives(Work& work, Fault& fault, int slowOpens) {
    work.cutsPower = fault.CutsPower();
    work.Prepare();
    Boxes boxes([&work](QWidget& window) { work.Answer(window); });
    bool reported = false;
    {
        const FaultyFiles files([&](FaultyFiles::Call call) {
            if (!work.diskFails)
                return SQLITE_OK;
            if (call == FaultyFiles::Call::Open && slowOpens-- > 0)
                QThread::msleep(SlowOpen);
            return fault.Judge(call);
        });
        work.Begin();
        work.diskFails = true;
        work.Act();
        work.diskFails = false;
        const QStringList told = boxes.Take();
        reported = work.WasReported(told);
        CheckBoxes(fault, told, reported);
        if (fault.CutsPower()) {
            work.Leave();
            FaultyFiles::PowerOn(*fault.Kind().remains);
        } else {
            work.CheckFiles(reported);
            work.ActAgain();
            work.Leave();
        }
    }
    if (fault.CutsPower()) {
        work.CheckFiles(reported);
        work.StartAgain();
        work.Leave();
    }
    EXPECT_EQ(Boxes::Failures(boxes.Take()), QStringList());
    work.CheckEnd();
    return !testing::Test::HasFailure();
}

} // namespace

void Work::Answer(QWidget& window) {
    ADD_FAILURE() << "nobody expected " << window.objectName().toStdString();
    window.close();
}

QStringList FilesOf(const QString& path, bool cutsPower) {
    const QFileInfo file(path);
    QStringList names{file.completeBaseName() + u'*'};
    if (!cutsPower)
        names += QStringLiteral(".zavelik*");
    return file.dir().entryList(names, QDir::Files | QDir::Hidden);
}

void SweepWork(Work& work, const std::string& name, int samples) {
    constexpr int SlowOpens = 6; // each makes a commit of a statement
    SweepFaults(name, samples, [&work](Fault& fault) { return Survives(work, fault, 0); });
    SweepFaults(name + ", slow disk", 1, [&work](Fault& fault) { return Survives(work, fault, SlowOpens); });
}

} // namespace test
