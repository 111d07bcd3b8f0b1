#include "platform/engine/EngineError.h"
#include "platform/runtime/Settings.h"
#include "tests/support/WindowTest.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

namespace {

/// The program as the system starts it.
class ProgramEnd : public test::Program {
protected:
    /// What its boxes said, once it has ended well.
    QString Run(const QString& fullDisk) const {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), Path(QStringLiteral("config")));
        environment.insert(QStringLiteral("ZAVELIK_FULL_DISK"), fullDisk);
        program.setProcessEnvironment(environment);
        program.start(QCoreApplication::applicationDirPath() + QStringLiteral("/driven_program"), {});
        EXPECT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), 0);
        return QString::fromUtf8(program.readAllStandardOutput());
    }
};

TEST_F(ProgramEnd, WhatCannotBeWrittenAnyMoreIsTold) {
    MakeBook();
    engine::DBEngine::Workspaces(0)->OpenDatabase(Path())->Execute(
        QStringLiteral("CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50))"));
    engine::DBEngine::Commit();
    QDir().mkpath(Path(QStringLiteral("config/zavelik")));
    runtime::UseSettingsFile(Path(QStringLiteral("config/zavelik/settings.ini")));
    Store(Path());
    const QString folder = QFileInfo(Path()).path();
    EXPECT_EQ(Run(folder), QStringLiteral("произошла ошибка №%1 ").arg(engine::DiskFull) +
                               engine::EngineText(engine::DiskFull));
    EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT a01last FROM a01")), QStringList());
    EXPECT_EQ(Run({}), QString());
    EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT a01last FROM a01")), QStringList{"Яя"});
}

} // namespace
