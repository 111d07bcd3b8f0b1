#include "tests/support/KilledChild.h"

#include "tests/support/FullRun.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <iostream>
#include <random>

namespace test {

namespace {

const char* const HandedVariable = "ZAVELIK_CHILD_HANDED";
constexpr int LongestStart = 20'000; ///< milliseconds

} // namespace

QByteArray KillWhileRunning(const QString& disabledTest, const QString& handed,
                            std::chrono::microseconds moment) {
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(HandedVariable), handed);
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--gtest_also_run_disabled_tests"),
                                                          QStringLiteral("--gtest_filter=") + disabledTest});
    const QByteArray start = "working\n";
    QByteArray said;
    const auto listen = [&] { said += child.readAllStandardOutput().replace("\r\n", "\n"); };
    while (!said.contains(start) && child.waitForReadyRead(LongestStart))
        listen();
    EXPECT_TRUE(said.contains(start)) << said.constData();
    if (moment == ToTheEnd)
        child.waitForFinished();
    else
        QThread::usleep(static_cast<unsigned long>(moment.count()));
    child.kill();
    child.waitForFinished();
    listen();
    return said.mid(said.indexOf(start) + start.size());
}

QString HandedOver() {
    return qEnvironmentVariable(HandedVariable);
}

void TellParent(const QByteArray& line) {
    QFile output;
    ASSERT_TRUE(output.open(stdout, QFile::WriteOnly));
    output.write(line + '\n');
    output.flush();
}

std::vector<std::chrono::microseconds>
Moments(const char* work, std::initializer_list<std::chrono::microseconds> fixed, int count) {
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
    std::cout << "FIGURE kills: " << work << ": " << moments.size() << std::endl;
    return moments;
}

} // namespace test
