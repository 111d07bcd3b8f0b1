#include "platform/engine/jet4/Replacement.h"

#include "platform/engine/EngineError.h"
#include "tests/engine/jet4/OldFiles.h"
#include "tests/support/System.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QDir>

using engine::jet4::FreeKeptName;
using engine::jet4::ReplaceKeeping;
using runtime::Disk;

namespace {

/// Thrown where the power goes off.
struct PowerOff {};

/// Fails at one of its steps, or ends the world there.
class FaultyDisk : public Disk {
public:
    enum Fault { None, Refuses, Dies };

    FaultyDisk(int step, Fault fault, bool links = true)
        : m_left(step)
        , m_fault(fault)
        , m_links(links) {}

    std::error_code Sync(const QString& path) override { return Step() ? Refused() : Disk::Sync(path); }
    std::error_code Link(const QString& path, const QString& name) override {
        if (!m_links)
            return std::make_error_code(std::errc::operation_not_supported);
        return Step() ? Refused() : Disk::Link(path, name);
    }
    std::error_code Rename(const QString& path, const QString& name) override {
        return Step() ? Refused() : Disk::Rename(path, name);
    }
    std::error_code Remove(const QString& path) override { return Step() ? Refused() : Disk::Remove(path); }

    bool Reached() const { return m_left <= 0; }

private:
    bool Step() {
        if (--m_left != 0)
            return false;
        if (m_fault == Dies)
            throw PowerOff();
        return m_fault == Refuses;
    }
    static std::error_code Refused() { return std::make_error_code(std::errc::no_space_on_device); }

    int m_left;
    Fault m_fault;
    bool m_links;
};

QString Native(const char* path) {
    return QDir::toNativeSeparators(QString::fromUtf8(path));
}

class Replacement : public testing::Test {
protected:
    Replacement() {
        test::WriteBytes(Book(), "old");
        test::WriteBytes(Finished(), "new");
    }

    QString Book() const { return m_folder.Path(QStringLiteral("Книга.mdb")); }
    QString Kept(const char* name = "Книга.jet4.mdb") const { return m_folder.Path(QString::fromUtf8(name)); }
    QString Finished() const { return m_folder.Path(QStringLiteral(".finished")); }

    static QByteArray Content(const QString& path) {
        return QFile::exists(path) ? test::ReadBytes(path) : QByteArrayLiteral("nothing");
    }

private:
    test::TestFolder m_folder;
};

} // namespace

TEST_F(Replacement, KeepsTheOldFileBesideTheNewOne) {
    const QString journal = Book() + QStringLiteral("-journal"); // would be played into the new one
    test::WriteBytes(journal, "stale");
    Disk disk;
    // After a power failure between the two names the next try takes up the same second name.
    ASSERT_FALSE(disk.Link(Book(), Kept()));
    EXPECT_EQ(FreeKeptName(Book()), Kept());
    EXPECT_EQ(ReplaceKeeping(disk, Finished(), Book()), Kept());
    EXPECT_EQ(Content(Book()), "new");
    EXPECT_EQ(Content(Kept()), "old");
    EXPECT_FALSE(QFile::exists(Finished()));
    EXPECT_FALSE(QFile::exists(journal));
}

TEST_F(Replacement, TakesTheFirstFreeName) {
    test::WriteBytes(Kept(), "somebody's");
    QDir().mkdir(Kept("Книга.jet4-2.mdb"));
    test::LinkByName(QStringLiteral("/nowhere"), Kept("Книга.jet4-3.mdb"));
    test::LinkByName(Book(), Kept("Книга.jet4-4.mdb"));
    EXPECT_EQ(FreeKeptName(Book()), Kept("Книга.jet4-5.mdb"));
    Disk disk;
    EXPECT_EQ(ReplaceKeeping(disk, Finished(), Book()), Kept("Книга.jet4-5.mdb"));
    EXPECT_EQ(Content(Kept()), "somebody's");
    EXPECT_EQ(Content(Kept("Книга.jet4-5.mdb")), "old");

    EXPECT_EQ(engine::jet4::KeptName(Native("/a/b.c.mdb"), 1), Native("/a/b.c.jet4.mdb"));
    EXPECT_EQ(engine::jet4::KeptName(Native("/a/book"), 2), Native("/a/book.jet4-2"));
}

// Every step in turn is refused, or is the last before the power goes: the old file is whole under one of its
// names, and only the old or the finished file stands under the old name.
TEST_F(Replacement, NoFaultLosesTheOldFile) {
    int faults = 0;
    for (const bool links : {true, false}) {
        for (const auto fault : {FaultyDisk::Refuses, FaultyDisk::Dies}) {
            bool reached = true;
            for (int step = 1; reached; ++step) {
                SCOPED_TRACE(testing::Message()
                             << "links " << links << " fault " << fault << " step " << step);
                QFile::remove(Kept());
                test::WriteBytes(Book(), "old");
                test::WriteBytes(Finished(), "new");
                FaultyDisk disk(step, fault, links);
                int number = 0;
                bool died = false;
                try {
                    number = test::FailureOf([&] { ReplaceKeeping(disk, Finished(), Book()); });
                } catch (const PowerOff&) {
                    died = true;
                }
                reached = disk.Reached();
                EXPECT_TRUE(number == 0 || number == engine::DiskFull) << number;
                const QByteArray book = Content(Book());
                EXPECT_TRUE(Content(Kept()) == "old" || book == "old");
                EXPECT_TRUE(book == "old" || book == "new" || (!links && died && book == "nothing"))
                    << book.constData();
                // A link that is refused is made up for by renaming; every other fault is told.
                EXPECT_TRUE(number != 0 || died || (book == "new" && Content(Kept()) == "old"));
                EXPECT_TRUE(reached || (number == 0 && !died));
                faults += number != 0 || died;
                // A refusal before the names have changed leaves no trace.
                if (number != 0 && book == "old") {
                    EXPECT_FALSE(QFile::exists(Kept()));
                    EXPECT_EQ(Content(Finished()), "new");
                }
            }
        }
    }
    EXPECT_EQ(faults, 19);
}
