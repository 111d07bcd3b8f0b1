#include "platform/engine/EngineError.h"
#include "platform/runtime/Settings.h"
#include "tests/support/WindowTest.h"

#include <QDir>
#include <QProcess>

namespace {

class ProgramEnd : public test::Program {};

/// The program as the system starts it.
TEST_F(ProgramEnd, WhatCannotBeWrittenAnyMoreIsTold) {
    MakeBook();
    QDir().mkpath(Path(QStringLiteral("zavelik")));
    runtime::UseSettingsFile(Path(QStringLiteral("zavelik/settings.ini")));
    Store(Path());
    const QString told = QStringLiteral("произошла ошибка №%1 ").arg(engine::DiskOrNetworkFailure) +
                         engine::EngineText(engine::DiskOrNetworkFailure);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), Path(QString()));
    environment.insert(QStringLiteral("ZAVELIK_FULL_DISK"), QStringLiteral("1"));
    for (const auto& [said, rows] : {std::pair(told, QStringList{"3"}), {QString(), {"1", "3"}}}) {
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QCoreApplication::applicationDirPath() + QStringLiteral("/driven_program"), {});
        EXPECT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0);
        EXPECT_EQ(QString::fromUtf8(program.readAllStandardOutput()), said);
        EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT v00vrid FROM v00 ORDER BY 1")), rows);
        environment.remove(QStringLiteral("ZAVELIK_FULL_DISK"));
    }
}

} // namespace
