#include "database/ConvertOldBase.h"

#include "database/General.h"
#include "database/frmInstall.h"
#include "platform/engine/EngineError.h"
#include "platform/runtime/Files.h"
#include "tests/engine/jet4/OldFiles.h"
#include "tests/support/BoundBook.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>
#include <QtTest>

using forms::Icon;

namespace {

class OldBase : public test::Unbound {
protected:
    /// A copy of one of the old files, as the book.
    QByteArray Copy(const char* name) const {
        QByteArray bytes = test::ReadBytes(test::OldFile(name));
        test::WriteBytes(Path(), bytes);
        return bytes;
    }
    /// The question, and what is told behind a yes.
    test::Answers& Expect(test::Answers& answers, bool yes, const QString& further = {}) const {
        answers.Question(QStringLiteral("Файл %1 создан прежней версией программы. Преобразовать его в новый "
                                        "формат? Прежний файл сохранится рядом под именем book.jet4.mdb.")
                             .arg(Path()),
                         yes, true);
        if (yes)
            answers.Box(QStringLiteral("Файл %1 преобразован в новый формат. Прежний файл сохранён под "
                                       "именем book.jet4.mdb.%2")
                            .arg(Path(), further),
                        Icon::Information);
        return answers;
    }
    /// Converts the book; the user agrees.
    void Convert(const QString& further = {}) const {
        test::Answers answers;
        Expect(answers, true, further);
        EXPECT_TRUE(OfferConversion(Path()));
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        gWorkspace = engine::DBEngine::Workspaces(0);
    }
};

} // namespace

TEST_F(OldBase, EverySoundFileBecomesABookOfItsVersion) {
    const struct {
        const char* file;
        int version;
        const char* rows; ///< of a01 and a02, t01, t03
    } files[] = {
        {"v1-old.mdb", 1, "3|11|12|5|1913"},
        {"v2-old.mdb", 2, "3|14|15|6|1913"},
        {"v3-upgraded.mdb", 3, "3|7|6|5|1913"},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.file);
        const QByteArray before = Copy(file.file);
        Convert();
        EXPECT_EQ(test::ReadBytes(Path("book.jet4.mdb")), before);
        EXPECT_EQ(Row("SELECT v00vrid FROM v00"), QString::number(file.version));
        // The ladder goes on from there.
        gDatabase = gWorkspace->OpenDatabase(Path());
        General::UpdateBaseIfNeed();
        EXPECT_EQ(Row("SELECT v00vrid, (SELECT count(*) FROM a01), (SELECT count(*) FROM a02), (SELECT "
                      "count(*) FROM t01), (SELECT count(*) FROM t03) FROM v00"),
                  file.rows);
        gDatabase.reset();
        QFile::remove(Path("book.jet4.mdb"));
    }
}

TEST_F(OldBase, WhatDoesNotComeOverIsTold) {
    test::OldBytes old("v2-old.mdb");
    old.Put<std::uint8_t>(old.Row(u"v00", 0) + 2, 1);          // a version that needs neither of the two
    old.Put<std::uint16_t>(old.CatalogRow(u"t02") + 2 + 8, 5); // a query
    old.Replace(old.CatalogRow(u"t03"), "t03", "x03");
    test::WriteBytes(Path(), old.Bytes());
    Convert("\r\n\r\nНе перенесено: t02.\r\n\r\nБез ключей и индексов перенесены таблицы: x03.");
}

// A converted book of the current version is a new one in everything but its rows.
TEST_F(OldBase, TheSchemaIsThatOfANewBook) {
    Copy("v3-small.mdb");
    Convert();
    gDatabase = Create(Path("fresh.mdb"));
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));
    gDatabase->Close();
    const QString schema = "SELECT name, sql FROM sqlite_master ORDER BY name";
    EXPECT_EQ(Rows(schema), test::ReadRows(Path("fresh.mdb"), schema));
}

// Nobody is asked, the file stays.
TEST_F(OldBase, WhatIsRefusedStaysAsItIs) {
    using Bytes = test::OldBytes;
    const struct {
        const char* what;
        std::function<void(Bytes&)> change; ///< one contradiction in a sound book of the third version
        int number = engine::CannotOpenDatabase;
        const char* file = "v3-small.mdb";
    } cases[] = {
        {"a text, left to the engine", {}, 0, "broken-text.mdb"},
        {"a password", {}, engine::PasswordNeeded, "v1-password.mdb"},
        {"none of ours", {}, engine::UnrecognisedFormat, "foreign.mdb"},
        {"variable place of another", [](Bytes& b) { b.Add(b.Column(u"a01", u"a01frst") + 7, -1); }},
        {"fixed place upon another", [](Bytes& b) { b.Add(b.Column(u"a02", u"a02code") + 21, -2); }},
        {"number of another", [](Bytes& b) { b.Add(b.Column(u"a01", u"a01bith") + 5, -1); }},
        {"text as bytes", [](Bytes& b) { b.Put<std::uint8_t>(b.Column(u"a01", u"a01last"), 9); }},
        {"row with a column more", [](Bytes& b) { b.Add(b.Row(u"a01", 0), 1); }},
        {"last text ends early", [](Bytes& b) { b.Add(b.Trailer(u"a01", 0, 14), -2); }},
        {"card without a key", [](Bytes& b) { b.Add(b.Trailer(u"a01", 0, 0), -1); }},
        {"key twice", [](Bytes& b) { b.Add(b.Row(u"a01", 1) + 2, -1); }},
        {"type twice", [](Bytes& b) { b.Replace(b.Row(u"t01", 3), "Основной телефон", "домашний ТЕЛЕФОН"); }},
        {"table as a system's", [](Bytes& b) { b.Add(b.CatalogRow(u"a02") + 2 + 26, 2); }},
        {"no t03 in version 2", [](Bytes& b) { b.Replace(b.CatalogRow(u"t03"), "t03", "t04"); }},
        {"no a03 in version 3", [](Bytes& b) { b.Replace(b.CatalogRow(u"a03"), "a03", "a04"); }},
        {"no birthday in version 2", [](Bytes& b) { b.Rename(u"a01", "a01bith", "a01born"); }},
        {"code beyond its type",
         [](Bytes& b) {
             b.Rename(u"a02", "a02code", "x");
             b.Rename(u"a02", "a02clid", "a02code");
             b.Rename(u"a02", "x", "a02clid");
             b.Put<std::uint32_t>(b.Row(u"a02", 0) + 2 + 4, 70000);
         },
         engine::NumberOutOfRange},
    };
    const test::Answers nobodyIsAsked;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        QByteArray before = Copy(row.file);
        if (row.change) {
            Bytes bytes(row.file);
            row.change(bytes);
            before = bytes.Bytes();
            test::WriteBytes(Path(), before);
        }
        bool goOn = false;
        EXPECT_EQ(test::FailureOf([&] { goOn = OfferConversion(Path()); }, Path()), row.number);
        EXPECT_EQ(goOn, row.number == 0);
        EXPECT_EQ(test::ReadBytes(Path()), before);
        EXPECT_EQ(QFileInfo(Path()).dir().entryList(QDir::Files | QDir::Hidden), QStringList{"book.mdb"});
    }
}

// In the master a refusal and a No leave the window open, and a file that is converted is the chosen one.
TEST_F(OldBase, TheMasterTakesAFileUnlooked) {
    const QString text = Path("text.mdb");
    test::WriteBytes(text, "this is no database at all, whatever its name says");
    Copy("v1-old.mdb");
    test::Answers answers;
    answers.Modal("frmInstall", [&](QWidget& window) {
        for (int tries = 1; tries <= 4; ++tries) {
            EXPECT_EQ(gWorkspace, nullptr) << tries;
            QTest::mouseClick(window.findChild<QPushButton*>("cmdSelect"), Qt::LeftButton);
            EXPECT_EQ(window.isVisible(), tries < 4);
        }
    });
    const auto look = [](QFileDialog& dialog) {
        EXPECT_EQ(dialog.nameFilters(), QStringList("База данных Access (*.mdb)"));
        EXPECT_EQ(dialog.directory(), QDir(runtime::ProgramFolder()));
    };
    answers
        .File({}, look) // cancelled
        .File(text)
        .Failure("frmInstall функция cmdSelect_Click:", engine::UnrecognisedFormat)
        .File(Path());
    Expect(answers, false).File(Path());
    Expect(answers, true);
    const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
    master->Show(true);
    EXPECT_EQ(master->Tag(), "1");
    EXPECT_EQ(Stored(), Path());
    EXPECT_EQ(gDatabase->Name(), Path());
    EXPECT_EQ(Row("SELECT v00vrid FROM v00"), "1");
    EXPECT_TRUE(test::ReadBytes(text).startsWith("this is no database"));
}
