// Whole statements on a small database: whatever they are, they end in rows, in a change or in a failure of
// the engine, and leave a sound file behind.
#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "platform/runtime/Failure.h"
#include "tests/fuzz/Fuzz.h"

#include <QStringList>
#include <QTemporaryDir>

#include <memory>

namespace {

/// More tables in one statement would make more rows than anybody can wait for.
constexpr int mostTables = 5;

class SmallBook {
public:
    SmallBook() {
        m_database = engine::DBEngine::Workspaces(0)->CreateDatabase(
            m_folder.filePath(QStringLiteral("f.mdb")), QString::fromUtf16(engine::dbLangGeneral));
        const char* statements[] = {
            "CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50), a01bith TEXT(20))",
            "CREATE TABLE b (n COUNTER NOT NULL PRIMARY KEY, d DATETIME, f DOUBLE, t BIT, u TEXT(5) UNIQUE)",
            "INSERT INTO a01 VALUES (1, 'Иванов', '05.12.1980')",
            "INSERT INTO a01 VALUES (2, 'Петров', NULL)",
            "INSERT INTO b (d, f, t, u) VALUES (#12/5/2006#, 1.5, TRUE, 'x')",
            "INSERT INTO b (d, f, t, u) VALUES (NULL, -2, FALSE, '7')",
        };
        for (const char* statement : statements)
            m_database->Execute(QString::fromUtf8(statement), engine::dbFailOnError);
    }

    void Run(const QString& text) {
        engine::DBEngine::Workspaces(0)->BeginTrans();
        for (const QString& statement : text.split(QChar(u'\x1f')))
            RunOne(statement);
        engine::DBEngine::Workspaces(0)->Rollback();
    }

private:
    /// What SQLite refuses, the dialect has let through by mistake.
    static void CheckFailure(const runtime::Failure& failure) {
        fuzz::Require(failure.number() != engine::ExpressionTooComplex);
    }

    void RunOne(const QString& statement) {
        try {
            engine::Recordset set = m_database->OpenRecordset(statement);
            for (; !set.EndOfFile(); set.MoveNext()) {
                for (int i = 0; i < set.FieldsCount(); ++i)
                    static_cast<void>(set.Fields(i).Text());
            }
        } catch (const runtime::Failure& failure) {
            CheckFailure(failure);
        }
        try {
            engine::Recordset set = m_database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
            set.FindFirst(statement);
        } catch (const runtime::Failure& failure) {
            CheckFailure(failure);
        }
        for (const int options : {0, engine::dbFailOnError}) {
            try {
                m_database->Execute(statement, options);
            } catch (const runtime::Failure& failure) {
                CheckFailure(failure);
            }
        }
    }

    QTemporaryDir m_folder;
    std::shared_ptr<engine::Database> m_database;
};

int TablesIn(const QString& text) {
    return static_cast<int>(text.count(QLatin1String("a01"), Qt::CaseInsensitive) +
                            text.count(QLatin1String(" b")) + text.count(QLatin1String(",b")) +
                            text.count(QLatin1String("[b")) +
                            text.count(QLatin1String("JOIN"), Qt::CaseInsensitive));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static SmallBook book;
    const QString text = QString::fromUtf8(fuzz::Bytes(data, size));
    // Texts of a huge length are no finding either.
    if (TablesIn(text) > mostTables || text.contains(QLatin1String("SPACE"), Qt::CaseInsensitive) ||
        text.contains(QLatin1String("STRING"), Qt::CaseInsensitive))
        return 0;
    book.Run(text);
    return 0;
}
