#include "platform/runtime/Files.h"

#include "platform/runtime/System.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using runtime::InputFile;
using runtime::OutputFile;

namespace {

class Files : public testing::Test {
protected:
    QString Path(const QString& name) const { return m_folder.filePath(name); }

    QString Make(const QString& name, const QByteArray& content = {}) const {
        test::WriteBytes(Path(name), content);
        return Path(name);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

// What each path is for finding, for reading, for writing anew and for deleting.
TEST_F(Files, EveryUseNamesWhatIsWrong) {
    using namespace runtime;
    constexpr int notAsked = -1;
    QDir().mkdir(Path(QStringLiteral("folder.mdb")));
    const QString plain = Make(QStringLiteral("plain.mdb"));
    const QString odd = Make(QStringLiteral("строка вторая 📒 'x' %TEMP%^&.mdb"));
    const QString link = Path(QStringLiteral("link.mdb"));
    const QString dangling = Path(QStringLiteral("dangling.mdb"));
    const bool links =
        test::LinkByName(plain, link) && test::LinkByName(Path(QStringLiteral("gone")), dangling);
    const QString locked = Make(QStringLiteral("locked"), "a");
    QFile::setPermissions(locked, {});
    const test::PlainUser owner({Path({}), locked});
    const bool barred = !QFile(locked).open(QFile::ReadOnly);
    const struct {
        QString path;
        bool found;
        int input;
        int output;
        int kill;
    } rows[] = {
        {odd, true, 0, FileAlreadyExists, 0},
        {odd, false, notAsked, notAsked, FileNotFound},
        {link, links, notAsked, notAsked, links ? PathFileAccess : FileNotFound},
        {dangling, false, notAsked, links ? PathFileAccess : 0, notAsked},
        {Path(QStringLiteral("folder.mdb")), false, PathFileAccess, PathFileAccess, PathFileAccess},
        {Make(QStringLiteral(".hidden.mdb")), false, notAsked, notAsked, notAsked},
        {locked, true, barred ? PathFileAccess : 0, notAsked, notAsked},
        {Path(QStringLiteral("missing")), false, FileNotFound, notAsked, FileNotFound},
        {Path(QStringLiteral("no/such")), false, notAsked, PathNotFound, FileNotFound},
        {QString(), false, BadFileName, BadFileName, BadFileName},
        {Path(QString(40000, u'x')), false, BadFileName, BadFileName, BadFileName},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path.toStdString());
        const auto ask = [](int expected, const auto& use) {
            EXPECT_EQ(expected == notAsked ? expected : test::FailureOf(use), expected);
        };
        EXPECT_EQ(IsPlainFile(row.path), row.found);
        ask(row.input, [&row] { InputFile file(row.path); });
        ask(row.output, [&row] { OutputFile file(row.path); });
        ask(row.kill, [&row] { Kill(row.path); });
    }
    EXPECT_TRUE(QFile::exists(plain) && QFile::exists(Path(QStringLiteral("folder.mdb"))));
    EXPECT_FALSE(QFile::exists(odd));
}

TEST_F(Files, AnOpenDatabaseIsNeitherDeletedNorReadAsTextUnderAnyName) {
    const QString book = Make(QStringLiteral("book.mdb"), "cards");
    const QString hardLink = Path(QStringLiteral("hard.mdb"));
    ASSERT_TRUE(test::LinkFile(book, hardLink));
    {
        const runtime::OpenDatabaseFile open(book);
        for (const QString& path : {book, hardLink}) {
            EXPECT_EQ(test::FailureOf([&] { runtime::Kill(path); }), runtime::PermissionDenied);
            EXPECT_EQ(test::FailureOf([&] { InputFile file(path); }), runtime::PermissionDenied);
        }
    }
    EXPECT_EQ(test::FailureOf([&] { runtime::Kill(book); }), 0);
}

TEST_F(Files, OutputIsWrittenInTheCodePageWithBothLineEnds) {
    const QString path = Path(QStringLiteral("строка вторая 📒 'x' %TEMP%^&.mdb"));
    OutputFile file(path);
    file.Print(QStringLiteral("Имя;№"));
    file.Print(QStringLiteral("日\nx"));
    file.Close();
    EXPECT_EQ(test::ReadBytes(path), QByteArrayLiteral("\xC8\xEC\xFF;\xB9\r\n?\nx\r\n"));
}

TEST_F(Files, InputSplitsLinesAtCarriageReturns) {
    const QByteArray large(70'000, 'y');
    const struct {
        QByteArray content;
        QStringList lines;
    } rows[] = {
        {"one\r\ntwo\r\n", {"one", "two"}},
        {"one\ntwo\r\nthree", {"one\ntwo", "three"}},
        {"\r\n\r\n", {"", ""}},
        {"one\r\n\x1Atwo", {"one"}},
        {"\xC8\xEC\xFF\r", {QStringLiteral("Имя")}},
        {large + "\r\n" + large + "\rz", {QString::fromLatin1(large), QString::fromLatin1(large), "z"}},
    };
    for (const auto& row : rows) {
        InputFile file(Make(QStringLiteral("in.csv"), row.content));
        QStringList lines;
        while (!file.AtEnd())
            lines += file.LineInput();
        EXPECT_EQ(lines, row.lines) << row.content.left(40).toStdString();
        EXPECT_EQ(test::FailureOf([&] { file.LineInput(); }), runtime::InputPastEnd);
    }
}
