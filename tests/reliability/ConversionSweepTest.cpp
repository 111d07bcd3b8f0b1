// The program is started on a book of the old format, on a system whose calls fail.

#include "platform/forms/Form.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Process.h"
#include "shared/Declaration.h"
#include "shell/General.h"
#include "tests/reliability/CallSweep.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace {

class Conversion : public testing::Test, public test::Work {
protected:
    Conversion() { m_old = test::ReadBytes(QStringLiteral(ZAVELIK_TEST_DATA "/jet/v1-old.mdb")); }

    void Prepare() override {
        QDir(Folder()).removeRecursively();
        QDir().mkpath(Folder());
        test::WriteBytes(Path(), m_old);
        gRegister().SaveKeyVal(QStringLiteral("DB_Path"), Path());
    }
    void Act() override {
        const runtime::EndTrap trap;
        try {
            General::Main();
        } catch (const runtime::Failure& failure) {
            forms::ShowErrorBox({}, failure);
        } catch (const runtime::ProcessEnded&) {
            // The process is gone: nothing is closed.
        }
    }
    bool WasReported(const QStringList& boxes) const override {
        return !boxes.filter(QStringLiteral("преобразован в новый формат")).isEmpty() &&
               test::Boxes::Failures(boxes).isEmpty();
    }
    /// The old bytes are there in any case; the new book is whole.
    void CheckFiles(bool reported) override {
        if (test::ReadBytes(Path()) == m_old) {
            EXPECT_FALSE(reported);
            return;
        }
        EXPECT_EQ(test::ReadBytes(Kept()), m_old);
        engine::DBEngine::CreateWorkspace({}, {}, {})->OpenDatabase(Path())->Close();
        EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT count(*) FROM a01")), QStringList{"11"});
    }
    void ActAgain() override {
        Leave();
        Act();
    }
    void StartAgain() override { Act(); }
    void Leave() override {
        for (const auto& form : forms::Form::Loaded())
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        gDatabase.reset();
        gWorkspace.reset();
    }
    void CheckEnd() override {
        EXPECT_NE(test::ReadBytes(Path()), m_old);
        CheckFiles(true);
        EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT v00vrid FROM v00")), QStringList{"3"});
    }

    QString Folder() const { return m_folder.Path(QStringLiteral("books")); }

private:
    QString Path() const { return Folder() + QStringLiteral("/book.mdb"); }
    QString Kept() const { return Folder() + QStringLiteral("/book.jet4.mdb"); }

    test::TestFolder m_folder;
    QByteArray m_old;
};

} // namespace

TEST_F(Conversion, OnASystemThatFails) {
    test::SweepCalls(*this, "conversion", Folder(), 1);
}
