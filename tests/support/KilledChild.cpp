#include "tests/support/KilledChild.h"

#include "tests/support/FullRun.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>

namespace test {

namespace {

const QString Mark = QStringLiteral("ZAVELIK_KILLED_CHILD");
constexpr int LongestStart = 20'000; ///< milliseconds

} // namespace

QByteArray KillWhileRunning(const QString& temporary, std::chrono::microseconds moment) {
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(Mark, QStringLiteral("1"));
    for (const char* name : {"TMPDIR", "TMP", "TEMP"})
        environment.insert(QString::fromLatin1(name), temporary);
    child.setProcessEnvironment(environment);
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--gtest_filter=%1.%2")
                     .arg(QString::fromUtf8(test.test_suite_name()), QString::fromUtf8(test.name()))});
    QByteArray said;
    const auto listenFor = [&](const QByteArray& line) {
        while (!said.contains(line) && child.waitForReadyRead(LongestStart))
            said += child.readAllStandardOutput().replace("\r\n", "\n");
        EXPECT_TRUE(said.contains(line)) << said.constData();
    };
    listenFor("working\n");
    if (moment == AtTheEnd)
        listenFor("waiting\n");
    else
        QThread::usleep(static_cast<unsigned long>(moment.count()));
    child.kill();
    child.waitForFinished();
    return said + child.readAllStandardOutput().replace("\r\n", "\n");
}

bool IsKilledChild() {
    return qEnvironmentVariableIsSet(Mark.toLatin1().constData());
}

void TellParent(const QByteArray& line) {
    QFile output;
    EXPECT_TRUE(output.open(stdout, QFile::WriteOnly));
    output.write(line + '\n');
}

void WaitForTheKill() {
    TellParent("waiting");
    QThread::sleep(LongestStart / 1000);
    std::abort();
}

std::vector<std::chrono::microseconds>
Moments(const std::string& work, std::initializer_list<std::chrono::microseconds> fixed, int count) {
    std::vector<std::chrono::microseconds> moments(fixed);
    if (IsFullRun()) {
        const std::random_device::result_type seed =
            qEnvironmentVariableIsSet("ZAVELIK_SEED")
                ? static_cast<std::random_device::result_type>(qEnvironmentVariableIntValue("ZAVELIK_SEED"))
                : std::random_device()();
        std::cout << "  " << work << ": ZAVELIK_SEED=" << seed << '\n';
        std::mt19937 engine(seed);
        std::uniform_int_distribution<std::chrono::microseconds::rep> any(0, std::max(fixed).count());
        for (int i = 0; i < count; ++i)
            moments.emplace_back(any(engine));
    }
    moments.push_back(AtTheEnd);
    std::cout << "FIGURE kills: " << work << ": " << moments.size() << std::endl;
    return moments;
}

} // namespace test
