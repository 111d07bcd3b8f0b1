#include "database/ConvertOldBase.h"

#include "database/frmInstall.h"
#include "platform/engine/EngineError.h"
#include "tests/database/BoundBase.h"
#include "tests/engine/jet4/OldFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QPushButton>
#include <QtTest>

#include <functional>

using forms::Icon;

namespace {

class OldBase : public test::Unbound {
protected:
    /// A copy of one of the old files, as the book.
    void Copy(const char* name) const {
        QFile::remove(Path());
        ASSERT_TRUE(QFile::copy(test::OldFile(QString::fromUtf8(name)), Path()));
        ASSERT_TRUE(QFile::setPermissions(Path(), QFile::ReadOwner | QFile::WriteOwner));
    }

    QString Kept() const { return Path(QStringLiteral("book.jet4.mdb")); }

    /// The question, and what is told behind a yes.
    test::Answers& Expect(test::Answers& answers, bool yes) const {
        answers.Question(QStringLiteral("Файл %1 создан прежней версией программы. Преобразовать его в новый "
                                        "формат? Прежний файл сохранится рядом под именем book.jet4.mdb.")
                             .arg(Path()),
                         yes, true);
        if (yes)
            answers.Box(QStringLiteral("Файл %1 преобразован в новый формат. Прежний файл сохранён под "
                                       "именем book.jet4.mdb.")
                            .arg(Path()),
                        Icon::Information);
        return answers;
    }
    /// Converts the book; the user agrees.
    void Convert() const {
        test::Answers answers;
        Expect(answers, true);
        EXPECT_TRUE(OfferConversion(Path()));
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    }

    QStringList Files() const {
        return QFileInfo(Path()).dir().entryList({QStringLiteral("*.mdb*"), QStringLiteral(".zavelik*")},
                                                 QDir::Files | QDir::Hidden);
    }
};

} // namespace

TEST_F(OldBase, EverySoundFileBecomesABookOfItsVersion) {
    const struct {
        const char* file;
        int version;
        const char* rows; ///< of a01 and a02, t01, t03
    } files[] = {
        {"v1-old.mdb", 1, "11|12|5|1913"},
        {"broken-property-loop.mdb", 1, "11|12|5|1913"},
        {"v2-old.mdb", 2, "14|15|6|1913"},
        {"v3-upgraded.mdb", 3, "7|6|5|1913"},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.file);
        Copy(file.file);
        const QByteArray before = test::ReadBytes(Path());
        Convert();
        EXPECT_EQ(test::ReadBytes(Kept()), before);
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
        EXPECT_EQ(Row("SELECT v00vrid FROM v00"), QString::number(file.version));

        // The ladder goes on from there.
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = gWorkspace->OpenDatabase(Path());
        General::UpdateBaseIfNeed();
        EXPECT_EQ(Row("SELECT v00vrid, (SELECT count(*) FROM a01), (SELECT count(*) FROM a02), (SELECT "
                      "count(*) FROM t01), (SELECT count(*) FROM t03) FROM v00"),
                  QStringLiteral("3|") + QString::fromLatin1(file.rows));
        gDatabase.reset();
        QFile::remove(Kept());
    }
}

// A converted book of the current version is a new one in everything but its rows.
TEST_F(OldBase, TheSchemaIsThatOfANewBook) {
    Copy("v3-small.mdb");
    Convert();
    const QString fresh = Path(QStringLiteral("fresh.mdb"));
    gWorkspace = engine::DBEngine::Workspaces(0);
    gDatabase = gWorkspace->CreateDatabase(fresh, QString::fromUtf16(engine::dbLangGeneral));
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));
    gDatabase->Close();
    const QString schema = QStringLiteral("SELECT name, sql FROM sqlite_master ORDER BY name");
    EXPECT_EQ(test::ReadRows(Path(), schema), test::ReadRows(fresh, schema));

    gDatabase = gWorkspace->OpenDatabase(Path());
    const auto execute = [](const char* sql) {
        gDatabase->Execute(QString::fromUtf8(sql), engine::dbFailOnError);
    };
    execute("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, 'x')");
    execute("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 99, 'x')");
    EXPECT_EQ(Row(QStringLiteral("SELECT max(a02rcid) FROM a02")), QStringLiteral("36"));
    EXPECT_EQ(Row(QStringLiteral("SELECT max(t01ctid) FROM t01")), QStringLiteral("8"));
    EXPECT_EQ(test::FailureOf([&] { execute("UPDATE a02 SET a02cval = ''"); }), engine::EmptyTextNotAllowed);
    EXPECT_EQ(test::FailureOf([&] { execute("UPDATE t01 SET t01cval = 'Дача'"); }), engine::DuplicateKey);
}

TEST_F(OldBase, WhatIsRefusedStaysAsItIs) {
    const struct {
        const char* file;
        int number;
    } files[] = {
        {"broken-text.mdb", 0}, // left to the engine, as is the next
        {"broken-jet3-header.mdb", 0},
        {"broken-truncated.mdb", engine::CannotOpenDatabase},
        {"broken-columns.mdb", engine::CannotOpenDatabase},
        {"v1-password.mdb", engine::PasswordNeeded},
        {"foreign.mdb", engine::UnrecognisedFormat},
    };
    const test::Answers nobodyIsAsked;
    for (const auto& file : files) {
        SCOPED_TRACE(file.file);
        Copy(file.file);
        const QByteArray before = test::ReadBytes(Path());
        bool goOn = false;
        EXPECT_EQ(test::FailureOf([&] { goOn = OfferConversion(Path()); }), file.number);
        EXPECT_EQ(goOn, file.number == 0);
        if (goOn) {
            const int expected = QString::fromUtf8(file.file).contains(u"jet3") ? engine::OlderFormat
                                                                                : engine::UnrecognisedFormat;
            EXPECT_EQ(test::FailureOf([&] { engine::DBEngine::Workspaces(0)->OpenDatabase(Path()); }),
                      expected);
        }
        EXPECT_EQ(test::ReadBytes(Path()), before);
        EXPECT_EQ(Files(), QStringList{QStringLiteral("book.mdb")});
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    }
}

// One contradiction in a sound book of the third version: nobody is asked, the file stays.
TEST_F(OldBase, ContradictionsAreRefusedBeforeTheQuestion) {
    using Bytes = test::OldBytes;
    const struct {
        const char* what;
        std::function<void(Bytes&)> change;
        int number = engine::CannotOpenDatabase;
    } cases[] = {
        {"no variable columns", [](Bytes& b) { b.Put<std::uint16_t>(b.Definition(u"a01") + 43, 0); }},
        {"variable place beyond the end", [](Bytes& b) { b.Add(b.Column(u"a01", u"a01bith") + 7, 5); }},
        {"variable place of another", [](Bytes& b) { b.Add(b.Column(u"a01", u"a01frst") + 7, -1); }},
        {"fixed place upon another", [](Bytes& b) { b.Add(b.Column(u"a02", u"a02code") + 21, -2); }},
        {"number that no row has", [](Bytes& b) { b.Add(b.Column(u"a01", u"a01bith") + 5, 1); }},
        {"number of another", [](Bytes& b) { b.Add(b.Column(u"a01", u"a01bith") + 5, -1); }},
        {"text of type 0", [](Bytes& b) { b.Put<std::uint8_t>(b.Column(u"a01", u"a01last"), 0); }},
        {"text as bytes", [](Bytes& b) { b.Put<std::uint8_t>(b.Column(u"a01", u"a01last"), 9); }},
        {"code of one byte", [](Bytes& b) { b.Put<std::uint8_t>(b.Column(u"a02", u"a02code"), 2); }},
        {"row without columns", [](Bytes& b) { b.Put<std::uint16_t>(b.Row(u"a01", 0), 0); }},
        {"row with a column more", [](Bytes& b) { b.Add(b.Row(u"a01", 0), 1); }},
        {"row with a text more", [](Bytes& b) { b.Add(b.Trailer(u"a01", 0, 2), 1); }},
        {"first text begins late", [](Bytes& b) { b.Add(b.Trailer(u"a01", 0, 4), 2); }},
        {"last text ends early", [](Bytes& b) { b.Add(b.Trailer(u"a01", 0, 14), -2); }},
        {"number ends early", [](Bytes& b) { b.Add(b.Trailer(u"a02", 0, 6), -2); }},
        {"card without a key", [](Bytes& b) { b.Add(b.Trailer(u"a01", 0, 0), -1); }},
        {"phone without a number", [](Bytes& b) { b.Add(b.Trailer(u"a02", 0, 0), -8); }},
        {"key twice", [](Bytes& b) { b.Add(b.Row(u"a01", 1) + 2, -1); }},
        {"type twice",
         [](Bytes& b) {
             b.Replace(b.Row(u"t01", 3), QStringLiteral("Основной телефон"),
                       QStringLiteral("домашний ТЕЛЕФОН"));
         }},
        {"table as a system's", [](Bytes& b) { b.Add(b.CatalogRow(u"a02") + 2 + 26, 2); }},
        {"table as something else", [](Bytes& b) { b.Add(b.CatalogRow(u"a02") + 2 + 8, 6); }},
        {"table as a deleted one",
         [](Bytes& b) { b.Replace(b.CatalogRow(u"a02"), QStringLiteral("a02"), QStringLiteral("~02")); }},
        {"table of the second version",
         [](Bytes& b) { b.Replace(b.CatalogRow(u"t03"), QStringLiteral("t03"), QStringLiteral("t04")); }},
        {"table of the third version",
         [](Bytes& b) { b.Replace(b.CatalogRow(u"a03"), QStringLiteral("a03"), QStringLiteral("a04")); }},
        {"column of the second version",
         [](Bytes& b) { b.Rename(u"a01", QStringLiteral("a01bith"), QStringLiteral("a01born")); }},
        {"code beyond its type",
         [](Bytes& b) {
             b.Rename(u"a02", QStringLiteral("a02code"), QStringLiteral("x"));
             b.Rename(u"a02", QStringLiteral("a02clid"), QStringLiteral("a02code"));
             b.Rename(u"a02", QStringLiteral("x"), QStringLiteral("a02clid"));
             b.Put<std::uint32_t>(b.Row(u"a02", 0) + 2 + 4, 70000);
         },
         engine::NumberOutOfRange},
    };
    const test::Answers nobodyIsAsked;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        Bytes bytes("v3-small.mdb");
        row.change(bytes);
        test::WriteBytes(Path(), bytes.Bytes());
        EXPECT_EQ(test::FailureOf([&] { OfferConversion(Path()); }, Path()), row.number);
        EXPECT_EQ(test::ReadBytes(Path()), bytes.Bytes());
        EXPECT_EQ(Files(), QStringList{QStringLiteral("book.mdb")});
    }
}

TEST_F(OldBase, OnNoNothingChanges) {
    Copy("v1-old.mdb");
    const QByteArray before = test::ReadBytes(Path());
    test::Answers answers;
    Expect(answers, false);
    EXPECT_FALSE(OfferConversion(Path()));
    EXPECT_EQ(test::ReadBytes(Path()), before);
    EXPECT_EQ(Files(), QStringList{QStringLiteral("book.mdb")});
}

TEST_F(OldBase, ThereIsNoQuestionForAFileOfOurs) {
    const test::Answers nobodyIsAsked;
    engine::DBEngine::Workspaces(0)
        ->CreateDatabase(Path(), QString::fromUtf16(engine::dbLangGeneral))
        ->Close();
    EXPECT_TRUE(OfferConversion(Path()));
    EXPECT_TRUE(OfferConversion(Path(QStringLiteral("missing.mdb"))));
    EXPECT_TRUE(OfferConversion(QFileInfo(Path()).absolutePath()));
}

// In the master a refusal leaves the window open, and a file that is converted is the chosen one.
TEST_F(OldBase, TheMasterTakesAnOldFile) {
    Copy("v1-old.mdb");
    const QString damaged = Path(QStringLiteral("damaged.mdb"));
    ASSERT_TRUE(QFile::copy(test::OldFile(QStringLiteral("broken-columns.mdb")), damaged));
    const auto select = [](QWidget& window) {
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdSelect")), Qt::LeftButton);
    };
    test::Answers answers;
    answers.Modal(QStringLiteral("frmInstall"), [&](QWidget& window) {
        select(window);
        EXPECT_TRUE(window.isVisible());
        select(window);
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(gDatabase, nullptr);
        select(window);
        EXPECT_FALSE(window.isVisible());
    });
    answers.File(damaged)
        .Failure(QStringLiteral("frmInstall функция cmdSelect_Click:"), engine::CannotOpenDatabase)
        .File(Path());
    Expect(answers, false).File(Path());
    Expect(answers, true);
    const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
    master->Show(true);
    EXPECT_EQ(master->Tag(), QStringLiteral("1"));
    master->Unload();
    EXPECT_EQ(gRegister().GetKeyVal(QStringLiteral("DB_Path")), Path());
    General::UpdateBaseIfNeed();
    EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM a01")), QStringLiteral("11"));
    EXPECT_EQ(Row(QStringLiteral("SELECT v00vrid FROM v00")), QStringLiteral("3"));
    EXPECT_TRUE(QFile::exists(Kept()));
}
