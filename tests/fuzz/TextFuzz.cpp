// Any text as a date, as a number and as a statement.
#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"
#include "tests/fuzz/Fuzz.h"

#include <QStringList>
#include <QTemporaryDir>

#include <cmath>

namespace {

using fuzz::FailureOf;
using fuzz::Require;

/// What is recognised lies in the range, and comes back from the text that it is written as.
void CheckDate(const QString& text) {
    static const runtime::FixedToday today(QDate(2006, 12, 5));
    const auto value = runtime::TryTextToDate(text);
    Require(runtime::IsDate(text) == value.has_value());
    Require(FailureOf([&] { runtime::TextToDate(text); }) == (value ? 0 : runtime::TypeMismatch));
    if (!value)
        return;
    Require(value->isValid() && value->date().year() >= 100 && value->date().year() <= 9999);
    Require(runtime::TextToDate(runtime::DateToText(*value)) == *value);
    Require(runtime::DateFromNumber(runtime::NumberFromDate(*value)) == *value);
}

/// What is read is finite and comes back from the text that it is written as; all else is one of two
/// failures.
void CheckNumber(const QString& text) {
    double value = 0;
    const int failure = FailureOf([&] { value = runtime::TextToNumber(text); });
    Require(failure == 0 || failure == runtime::TypeMismatch || failure == runtime::Overflow);
    Require(std::isfinite(value) && !std::isnan(runtime::Val(text)));
    constexpr double precision = 1e-14; // 15 digits are written
    constexpr double smallest = 1e-300; // smaller ones lose digits
    constexpr double greatest = std::numeric_limits<double>::max() / 2;
    if (std::abs(value) > smallest && std::abs(value) < greatest) {
        const double back = runtime::TextToNumber(runtime::NumberToText(value));
        Require(std::abs(back - value) <= precision * std::abs(value));
    }
}

/// Statements end in rows, in a change or in a failure of the engine.
class SmallBook {
public:
    SmallBook()
        : m_database(m_workspace->CreateDatabase(m_folder.filePath(QStringLiteral("f.mdb")),
                                                 QString::fromUtf16(engine::dbLangGeneral))) {
        for (const char* statement :
             {"CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50), a01bith TEXT(20))",
              "CREATE TABLE b (n COUNTER PRIMARY KEY, d DATETIME, f DOUBLE, t BIT, u TEXT(5) UNIQUE)",
              "INSERT INTO a01 VALUES (1, 'Иванов', '05.12.1980')",
              "INSERT INTO a01 VALUES (2, 'Петров', NULL)",
              "INSERT INTO b (d, f, t, u) VALUES (#12/5/2006#, 1.5, TRUE, 'x')",
              "INSERT INTO b (d, f, t, u) VALUES (NULL, -2, FALSE, '7')"})
            m_database->Execute(QString::fromUtf8(statement), engine::dbFailOnError);
    }

    void Run(const QString& text) const {
        m_workspace->BeginTrans();
        for (const QString& statement : text.split(QChar(u'\x1f')))
            RunOne(statement);
        m_workspace->Rollback();
    }

private:
    void RunOne(const QString& statement) const {
        // More rows, or longer texts, than anybody can wait for.
        const auto count = [&statement](const char* word) {
            return statement.count(QLatin1String(word), Qt::CaseInsensitive);
        };
        const bool runs = count("a01") + count(" b") + count(",b") + count("[b") + count("JOIN") <= 5 &&
                          count("SPACE") + count("STRING") == 0;
        const auto check = [](const std::function<void()>& action) {
            // What SQLite refuses, the dialect has let through by mistake.
            Require(FailureOf(action) != engine::ExpressionTooComplex);
        };
        check([&] {
            auto set = m_database->OpenRecordset(statement, engine::dbOpenDynaset, [runs] { return !runs; });
            for (; runs && !set.EndOfFile(); set.MoveNext()) {
                for (int i = 0; i < set.FieldsCount(); ++i)
                    static_cast<void>(set.Fields(i).Text());
            }
        });
        if (!runs)
            return;
        check([&] { m_database->OpenRecordset(QStringLiteral("SELECT * FROM a01")).FindFirst(statement); });
        for (const int options : {0, engine::dbFailOnError})
            check([&] { m_database->Execute(statement, options); });
    }

    QTemporaryDir m_folder;
    std::shared_ptr<engine::Workspace> m_workspace = engine::DBEngine::Workspaces(0);
    std::shared_ptr<engine::Database> m_database;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const SmallBook book;
    const QString text = QString::fromUtf8(fuzz::Bytes(data, size));
    CheckDate(text);
    CheckNumber(text);
    book.Run(text);
    return 0;
}
