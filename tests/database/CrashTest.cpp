// A child process is killed hard while it creates a file or upgrades one. Afterwards there is what was there
// before, or the whole new file, or one that is raised by a whole rung.

#include "tests/database/BoundBase.h"
#include "tests/support/KilledChild.h"

#include <QFile>

using namespace std::chrono_literals;

namespace {

/// The child's work, which the parent alone starts.
class DISABLED_CrashChild : public test::Unbound {
protected:
    DISABLED_CrashChild() { gWorkspace = engine::DBEngine::Workspaces(0); }
    const QString path = test::HandedOver();
};

TEST_F(DISABLED_CrashChild, Create) {
    const auto old = QFile::exists(path) ? std::make_shared<runtime::OldFile>(path) : nullptr;
    test::TellParent("working");
    gDatabase = gWorkspace->PrepareDatabase(path, QString::fromUtf16(engine::dbLangGeneral),
                                            engine::dbVersion40, old);
    General::ApplySQLToCreateDB(*gDatabase);
    gWorkspace->Publish(*gDatabase);
    test::TellParent("created");
}

TEST_F(DISABLED_CrashChild, Upgrade) {
    gDatabase = gWorkspace->OpenDatabase(path);
    test::TellParent("working");
    General::UpdateBaseIfNeed();
}

class Crash : public test::Unbound {
protected:
    void Open() {
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = gWorkspace->OpenDatabase(Path()); // rolls back what a dead process left
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
    }
    void Close() {
        gDatabase.reset();
        gWorkspace.reset();
    }
    bool Has(const char* table) const { return gDatabase->TableNames().contains(QString::fromLatin1(table)); }
};

std::vector<std::chrono::microseconds> Moments(const char* work) {
    return test::Moments(work, {0us, 2ms, 5ms, 8ms, 12ms, 18ms, 30ms, 60ms, 120ms}, 80);
}

} // namespace

TEST_F(Crash, CreationLeavesWhatWasThereOrTheWholeFile) {
    for (const QByteArray& old : {QByteArray(), QByteArrayLiteral("another file")}) {
        int whole = 0;
        auto moments = Moments("creation");
        moments.push_back(test::ToTheEnd);
        for (const auto moment : moments) {
            SCOPED_TRACE(moment.count());
            QFile::remove(Path());
            if (!old.isEmpty())
                test::WriteBytes(Path(), old);
            const QByteArray said =
                test::KillWhileRunning(QStringLiteral("DISABLED_CrashChild.Create"), Path(), moment);
            if (said.isEmpty() && (old.isEmpty() ? !QFile::exists(Path()) : test::ReadBytes(Path()) == old))
                continue;
            ++whole;
            Open();
            EXPECT_EQ(Row(QStringLiteral("SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03), "
                                         "v00vrid FROM v00")),
                      QStringLiteral("79|1913|3"));
            Close();
        }
        EXPECT_GT(whole, 0);
    }
}

TEST_F(Crash, AnUpgradeIsDoneWholeOrNotAtAll) {
    for (const auto moment : Moments("upgrade")) {
        SCOPED_TRACE(moment.count());
        QFile::remove(Path());
        const auto workspace = engine::DBEngine::Workspaces(0);
        const auto db = workspace->CreateDatabase(Path(), QString::fromUtf16(engine::dbLangGeneral));
        db->Execute(QStringLiteral("CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY)"));
        db->Execute(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (5)"));
        db->Execute(QStringLiteral("CREATE TABLE v00 (v00vrid BYTE NOT NULL PRIMARY KEY)"));
        db->Execute(QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (1)"));
        db->Close();

        test::KillWhileRunning(QStringLiteral("DISABLED_CrashChild.Upgrade"), Path(), moment);
        Open();
        const QString version = Row(QStringLiteral("SELECT v00vrid FROM v00"));
        const bool raised = version != u"1";
        EXPECT_EQ(Row(QStringLiteral("SELECT a01clid FROM a01")), QStringLiteral("5"));
        EXPECT_EQ(gDatabase->TableDefs(QStringLiteral("a01")).FieldsCount(), raised ? 2 : 1);
        EXPECT_EQ(Has("t02"), raised);
        EXPECT_EQ(Has("a03"), version == u"3");
        if (raised) {
            EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM t03")), QStringLiteral("1913"));
        }
        Close();
    }
}
