#include "platform/runtime/Files.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
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

    QString MakePipe(const QString& name) const { return test::MakePipe(Path(name)); }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Files, OnlyPlainFilesAreFound) {
    QDir().mkdir(Path(QStringLiteral("folder.mdb")));
    const QString plain = Make(QStringLiteral("plain.mdb"));
    const bool links = test::LinkByName(plain, Path(QStringLiteral("link.mdb")));
    test::LinkByName(Path(QStringLiteral("gone")), Path(QStringLiteral("dangling.mdb")));
    const struct {
        QString path;
        bool found;
    } rows[] = {
        {plain, true},
        {Path(QStringLiteral("link.mdb")), links},
        {Make(test::OddName()), true},
        {Path(QStringLiteral("dangling.mdb")), false},
        {Path(QStringLiteral("folder.mdb")), false},
        {Make(QStringLiteral(".hidden.mdb")), false},
        {MakePipe(QStringLiteral("pipe.mdb")), false},
        {test::DevicePath(), false},
        {Path(QStringLiteral("missing")), false},
        {plain + u'/', false},
        {Path(QStringLiteral("pl*.mdb")), false},
        {QString(), false},
        {plain + QChar(0) + u'x', false},
        {test::TooLongPath(), false},
        {plain + QChar(0xD83D), false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(runtime::IsPlainFile(row.path), row.found) << row.path.toStdString();
}

TEST_F(Files, KillDeletesFilesAndNothingElse) {
    const QString folder = Path(QStringLiteral("folder"));
    QDir().mkdir(folder);
    const QString odd = Make(test::OddName());
    const QString kept = Make(QStringLiteral("kept"));
    const QString link = Path(QStringLiteral("link"));
    const bool links = test::LinkByName(kept, link);
    const struct {
        QString path;
        int failure;
    } rows[] = {
        {odd, 0},
        {odd, runtime::FileNotFound},
        {link, links ? runtime::PathFileAccess : runtime::FileNotFound},
        {folder, runtime::PathFileAccess},
        {MakePipe(QStringLiteral("pipe")), runtime::PathFileAccess},
        {Path(QStringLiteral("no/such")), runtime::FileNotFound},
        {Path(QStringLiteral("*")), runtime::FileNotFound},
        {test::TooLongPath(), runtime::BadFileName},
        {QString(), runtime::BadFileName},
        {kept + QChar(0), runtime::BadFileName},
    };
    for (const auto& row : rows)
        EXPECT_EQ(test::FailureOf([&] { runtime::Kill(row.path); }), row.failure) << row.path.toStdString();
    EXPECT_TRUE(QFile::exists(kept));
    EXPECT_TRUE(QFile::exists(folder));
    EXPECT_FALSE(QFile::exists(odd));
    EXPECT_EQ(QFile::exists(link), links);
}

TEST_F(Files, AnOpenDatabaseIsNotDeletedUnderAnyName) {
    const QString book = Make(QStringLiteral("book.mdb"), "cards");
    const QString link = Path(QStringLiteral("link.mdb"));
    const QString hardLink = Path(QStringLiteral("hard.mdb"));
    QFile::link(book, link);
    ASSERT_TRUE(test::LinkFile(book, hardLink));
    QDir().mkdir(Path(QStringLiteral("sub")));
    {
        const runtime::OpenDatabaseFile open(book);
        const runtime::OpenDatabaseFile openTwice(link);
        for (const QString& path : {book, link, hardLink, Path(QStringLiteral("sub/../book.mdb")),
                                    Path(QStringLiteral("sub/.././/book.mdb"))})
            EXPECT_EQ(test::FailureOf([&] { runtime::Kill(path); }), runtime::PermissionDenied);
        EXPECT_EQ(test::ReadBytes(book), "cards");
    }
    EXPECT_EQ(test::FailureOf([&] { runtime::Kill(book); }), 0);
    EXPECT_FALSE(runtime::OpenDatabaseFile::Holds(book));
}

TEST_F(Files, OutputIsWrittenInTheCodePageWithBothLineEnds) {
    const QString path = Path(test::OddName());
    OutputFile file(path);
    file.Print(QStringLiteral("Имя;№"));
    file.Print(QStringLiteral("日\nx"));
    file.Close();
    file.Close();
    EXPECT_EQ(test::ReadBytes(path), QByteArrayLiteral("\xC8\xEC\xFF;\xB9\r\n?\nx\r\n"));
}

TEST_F(Files, OutputNamesWhatIsWrong) {
    QDir().mkdir(Path(QStringLiteral("folder")));
    const QString link = Path(QStringLiteral("link"));
    const bool links = test::LinkByName(Path(QStringLiteral("nowhere")), link);
    const struct {
        QString path;
        int failure;
    } rows[] = {
        {Path(QStringLiteral("folder")), runtime::PathFileAccess},
        {MakePipe(QStringLiteral("pipe")), runtime::PathFileAccess},
        {test::DevicePath(), runtime::PathFileAccess},
        {Make(QStringLiteral("somebody's")), runtime::FileAlreadyExists},
        {link, links ? runtime::PathFileAccess : 0},
        {Path(QStringLiteral("no/such.csv")), runtime::PathNotFound},
        {Make(QStringLiteral("file")) + QStringLiteral("/x.csv"), runtime::PathNotFound},
        {test::TooLongPath(), runtime::BadFileName},
        {QString(), runtime::BadFileName},
    };
    for (const auto& row : rows)
        EXPECT_EQ(test::FailureOf([&] { OutputFile file(row.path); }), row.failure) << row.path.toStdString();
}

TEST_F(Files, AFullDiskIsReportedAtTheLatestOnClosing) {
    // The greatest size of a file stands in for the end of the disk.
    const QString line(99, u'x');
    for (const qint64 room : {0, 512, 100'000}) {
        QFile::remove(Path(QStringLiteral("full.csv")));
        OutputFile file(Path(QStringLiteral("full.csv")));
        const test::SmallDisk full(room);
        const int failure = test::FailureOf([&] {
            for (qint64 written = 0; written <= room; written += 101)
                file.Print(line);
            file.Close();
        });
        EXPECT_EQ(failure, runtime::DiskFull) << room;
    }
}

TEST_F(Files, InputSplitsLinesAtCarriageReturns) {
    const QByteArray large(70'000, 'y');
    const struct {
        QByteArray content;
        QStringList lines;
    } rows[] = {
        {"", {}},
        {"one", {"one"}},
        {"one\r\ntwo\r\n", {"one", "two"}},
        {"one\rtwo", {"one", "two"}},
        {"one\ntwo\r\nthree", {"one\ntwo", "three"}},
        {"\r\n\r\n", {"", ""}},
        {"one\r\r\n", {"one", ""}},
        {"\n", {"\n"}},
        {"one\x1Atwo\r\n", {"one"}},
        {"one\r\n\x1Atwo", {"one"}},
        {"\x1A", {}},
        {"\xEF\xBB\xBFx", {QStringLiteral("п»їx")}},
        {"\xC8\xEC\xFF\r", {QStringLiteral("Имя")}},
        {large.left(65'535) + "\r\nz", {QString::fromLatin1(large.left(65'535)), "z"}},
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

TEST_F(Files, InputNamesWhatIsWrong) {
    QDir().mkdir(Path(QStringLiteral("folder")));
    const QString locked = Make(QStringLiteral("locked"), "a");
    const test::Unreadable nobody(locked);
    const struct {
        QString path;
        int failure;
    } rows[] = {
        {Path(QStringLiteral("missing")), runtime::FileNotFound},
        {Path(QStringLiteral("folder")), runtime::PathFileAccess},
        {MakePipe(QStringLiteral("pipe")), runtime::PathFileAccess},
        {locked, runtime::PathFileAccess},
        {test::DevicePath(), runtime::PathFileAccess},
        {test::TooLongPath(), runtime::BadFileName},
        {QString(), runtime::BadFileName},
    };
    for (const auto& row : rows)
        EXPECT_EQ(test::FailureOf([&] { InputFile file(row.path); }), row.failure) << row.path.toStdString();
}

TEST_F(Files, ALineLargerThanTheMemoryIsRefused) {
    const QString path = Make(QStringLiteral("zeros.csv"));
    ASSERT_TRUE(QFile::resize(path, qint64{1} << 40)); // a hole: it takes no room
    InputFile file(path);
    EXPECT_EQ(test::FailureOf([&] { file.LineInput(); }), runtime::OutOfMemory);
}

TEST_F(Files, PathsAreJoinedWithOneSeparator) {
    const QString name = QStringLiteral("a.mdb");
    const QString separator = QDir::toNativeSeparators(QStringLiteral("/"));
    EXPECT_EQ(runtime::JoinPath(QStringLiteral("folder"), name), QStringLiteral("folder") + separator + name);
    EXPECT_EQ(runtime::JoinPath(separator, name), separator + name);
}

TEST_F(Files, TheProgramFolderCanBeWritten) {
    int count = 1;
    QByteArray name = "test";
    char* arguments[] = {name.data(), nullptr};
    const QCoreApplication application(count, static_cast<char**>(arguments));
    const QString folder = runtime::ProgramFolder();
    EXPECT_FALSE(folder.endsWith(u'/'));
    EXPECT_EQ(test::FailureOf([&] {
                  OutputFile file(runtime::JoinPath(folder, QStringLiteral("program-folder-test.tmp")));
              }),
              0);
    runtime::Kill(runtime::JoinPath(folder, QStringLiteral("program-folder-test.tmp")));
}
