// Cards and events are saved, cards imported and extracted through the windows, on disks that fail, under
// locks of another program.

#include "organiser/frmEvent.h"
#include "platform/forms/FlexGrid.h"
#include "platform/forms/ListBox.h"
#include "tests/exchange/ImportMaster.h"
#include "tests/reliability/Sweep.h"

#include <QDir>
#include <QFileDialog>

#include <optional>

namespace {

/// The program stands on a book of three cards.
class BookWork : public test::WindowTest, public test::Work {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        for (const char* card : {"1, 'А'", "2, 'Б'", "3, 'В'"})
            Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1)").arg(card));
        for (const char* phone : {"1, 1, '11'", "2, 1, '21'", "2, 3, '23'"})
            Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1)").arg(phone));
        gDatabase->Close();
        bytes = test::ReadBytes(Path());
    }
    void TearDown() override {
        gDatabase = gWorkspace->OpenDatabase(Path());
        WindowTest::TearDown();
    }

    QString Folder() const override { return QFileInfo(Path()).path(); }
    QString Beside(const char* name) const { return QDir(Folder()).filePath(QString::fromLatin1(name)); }
    void Prepare() override {
        for (const QString& name : test::FilesOf(Path(), false))
            QFile::remove(QDir(Folder()).filePath(name));
        test::WriteBytes(Path(), bytes);
    }
    void Begin() override {
        gDatabase = gWorkspace->OpenDatabase(Path());
        list = forms::Form::Create<frmRecords>();
        list->Show();
        list->DoNotFillGrid(true);
        list->FillGrid({});
    }
    bool WasReported(const QStringList& boxes) const override {
        return boxes.filter(QStringLiteral(" успешно ")).size() == 1;
    }
    /// As the next program does, which puts right what was left half done.
    void CheckFiles(bool) override {
        engine::DBEngine::CreateWorkspace({}, {}, {})->OpenDatabase(Path())->Close();
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
    }
    void Leave() override {
        list.reset();
        for (const auto& form : forms::Form::Loaded()) {
            if (form.get() != forms::MdiForm::Current())
                form->Unload();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        gDatabase.reset();
    }
    void CheckEnd() override { EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok")); }

    /// Cards, then phones.
    static QString Content(const QString& path) {
        const QString cards = QStringLiteral("SELECT a01clid || a01last || ifnull(a01memo, '') FROM a01");
        const QString phones =
            QStringLiteral("SELECT a02clid || '-' || a02code || '-' || a02cval FROM a02 ORDER BY 1");
        return test::ReadRows(path, cards).join(u' ') + QStringLiteral(", ") +
               test::ReadRows(path, phones).join(u' ');
    }

    void CheckUntouched() const {
        EXPECT_TRUE(test::ReadBytes(Path()) == bytes);
        EXPECT_EQ(Content(Path()), QStringLiteral("1А 2Б 3В, 1-1-11 2-1-21 2-3-23"));
    }

    QByteArray bytes;
    std::shared_ptr<frmRecords> list;
};

/// A card is written by some statements, one by one.
struct Deed {
    const char* name;
    int row; ///< of the list; 0: a new card
    const char* button;
    QStringList states; ///< of the book before the first statement and behind each
};

void PrintTo(const Deed& deed, std::ostream* out) {
    *out << deed.name;
}

const Deed Add{"new card",
               0,
               "cmdSave",
               {"1А 2Б 3В, 1-1-11 2-1-21 2-3-23", "1А 2Б 3В 4Яновое, 1-1-11 2-1-21 2-3-23",
                "1А 2Б 3В 4Яновое, 1-1-11 2-1-21 2-3-23 4-1-90",
                "1А 2Б 3В 4Яновое, 1-1-11 2-1-21 2-3-23 4-1-90 4-2-91"}};
const Deed Change{"edited card",
                  2,
                  "cmdSave",
                  {"1А 2Б 3В, 1-1-11 2-1-21 2-3-23", "1А 2Яновое 3В, 1-1-11 2-1-21 2-3-23",
                   "1А 2Яновое 3В, 1-1-11", "1А 2Яновое 3В, 1-1-11 2-1-90",
                   "1А 2Яновое 3В, 1-1-11 2-1-90 2-2-91", "1А 2Яновое 3В, 1-1-11 2-1-90 2-2-91 2-3-23"}};
const Deed Remove{"deleted card",
                  2,
                  "cmdDelete",
                  {"1А 2Б 3В, 1-1-11 2-1-21 2-3-23", "1А 3В, 1-1-11 2-1-21 2-3-23", "1А 3В, 1-1-11"}};

class Card : public BookWork, public testing::WithParamInterface<Deed> {
protected:
    void Begin() override {
        BookWork::Begin();
        Control<forms::FlexGrid>(list, "gridRecords").SetRow(std::max(GetParam().row, 1));
        list->EditRecord(GetParam().row == 0 ? frmRecords::Add : frmRecords::Edit);
        card = Last("frmEditRecords");
        Control<QLineEdit>(card, "txtLastName").setText(QStringLiteral("Я"));
        Control<QLineEdit>(card, "txtRemark").setText(QStringLiteral("новое"));
        for (const int type : {0, 1}) {
            Control<forms::ListBox>(card, "lstTelefonType").SetListIndex(type);
            Click(Control<QLineEdit>(card, "txtTelefonNumber"));
            Control<QLineEdit>(card, "txtTelefonNumber").setText(QStringLiteral("9%1").arg(type));
        }
    }
    void Act() override { Click(Control<QPushButton>(card, GetParam().button)); }
    void CheckFiles(bool reported) override {
        BookWork::CheckFiles(reported);
        state = GetParam().states.indexOf(Content(Path()));
        EXPECT_GE(state, reported ? GetParam().states.size() - 1 : 0) << Content(Path()).toStdString();
    }
    void ActAgain() override {
        if (card->IsLoaded())
            Act();
    }
    void StartAgain() override {}
    void Leave() override {
        card.reset();
        BookWork::Leave();
    }
    void CheckEnd() override {
        BookWork::CheckEnd();
        if (startsAnew)
            return;
        QString end = GetParam().states.back();
        if (GetParam().row == 0 && state > 0 && state < GetParam().states.size() - 1) {
            // What the first attempt has left stays, and the card comes under the next number.
            end = GetParam().states.at(state);
            end.replace(u',', QStringLiteral(" 5Яновое,")) += QStringLiteral(" 5-1-90 5-2-91");
        }
        EXPECT_EQ(Content(Path()), end);
    }

    std::shared_ptr<forms::Form> card;
    qsizetype state = 0;
};

/// Fifty cards with three phones each.
class Import : public BookWork {
protected:
    static constexpr int RowCount = 50;

    void Prepare() override {
        BookWork::Prepare();
        QByteArray text = Columns.join(u',').toLatin1() + "\r\n";
        for (int i = 1; i <= RowCount; ++i)
            text += QStringLiteral("N%1,h%1,m%1,b%1\r\n").arg(i).toLatin1();
        test::WriteBytes(Beside("in.csv"), text);
    }
    void Begin() override {
        BookWork::Begin();
        OpenMaster();
    }
    void Act() override { master->PressImport(); }
    bool WasReported(const QStringList& boxes) const override {
        for (errors = 0; errors <= RowCount; ++errors) {
            if (boxes.contains(errors == 0 ? test::ImportedAll(0, RowCount)
                                           : test::ImportedWithErrors(RowCount, errors)))
                return true;
        }
        return false;
    }
    void CheckFiles(bool reported) override {
        BookWork::CheckFiles(reported);
        int whole = 0;
        for (const QString& card : test::ReadRows(
                 Path(), QStringLiteral("SELECT substr(a01last, 2), group_concat(a02cval, '') FROM (SELECT * "
                                        "FROM a01 LEFT JOIN a02 ON a02clid = a01clid WHERE a01clid > 3 "
                                        "ORDER BY a02rcid) GROUP BY a01clid"))) {
            const QString phones = card.section(u'|', 1);
            const QString all = QStringLiteral("h%1m%1b%1").arg(card.section(u'|', 0, 0));
            EXPECT_TRUE(all.startsWith(phones) || phones == u"NULL") << card.toStdString();
            whole += phones == all ? 1 : 0;
        }
        EXPECT_GE(whole, reported ? RowCount - errors : 0);
    }
    void ActAgain() override {
        if (!master || !master->form->IsLoaded())
            OpenMaster();
        Act();
    }
    void Leave() override {
        master.reset();
        BookWork::Leave();
    }
    void CheckEnd() override {
        BookWork::CheckEnd();
        EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT count(*), count(DISTINCT a01last), "
                                                        "(SELECT count(*) FROM a02), (SELECT count(DISTINCT "
                                                        "a02cval) FROM a02) FROM a01")),
                  QStringList{QStringLiteral("53|53|153|153")});
    }

private:
    void OpenMaster() {
        master.emplace();
        master->TypeFile(Beside("in.csv"));
        master->Go(2);
        master->Tick(Columns);
    }

    const QStringList Columns{"Last Name", "Home Phone", "Mobile Phone", "Business Phone"};
    std::optional<test::ImportMaster> master;
    mutable int errors = 0; ///< rows of the last report
};

/// The three cards go into the place of another file; the book is only read.
class Extraction : public BookWork {
protected:
    void Prepare() override {
        BookWork::Prepare();
        for (const QString& name : test::FilesOf(Target(), false))
            QFile::remove(QDir(Folder()).filePath(name));
        test::WriteBytes(Target(), m_replaced);
    }
    void Act() override { list->ExtractToAnotherDB(); }
    void Answer(QWidget& window) override {
        test::TypeIntoFileDialog(dynamic_cast<QFileDialog&>(window), Target());
    }
    bool WasReported(const QStringList& boxes) const override {
        return test::Boxes::Failures(boxes).isEmpty();
    }
    void CheckFiles(bool reported) override {
        CheckUntouched();
        if (!reported && !startsAnew) {
            EXPECT_EQ(test::FilesOf(Target(), startsAnew), QStringList());
        } else if (reported || (QFile::exists(Target()) && test::ReadBytes(Target()) != m_replaced)) {
            CheckEnd();
        }
    }
    void CheckEnd() override {
        CheckUntouched();
        EXPECT_EQ(test::FilesOf(Target(), startsAnew), QStringList{"target.mdb"});
        EXPECT_EQ(test::Integrity(Target()), QStringLiteral("ok"));
        EXPECT_EQ(Content(Target()), QStringLiteral("1А 2Б 3В, 1-1-11 2-1-21 2-3-23"));
        EXPECT_EQ(
            test::ReadRows(Target(), QStringLiteral("SELECT (SELECT count(*) FROM t01), (SELECT count(*) "
                                                    "FROM t03), v00vrid FROM v00")),
            QStringList{"4|1913|3"});
    }

private:
    QString Target() const { return Beside("target.mdb"); }

    const QByteArray m_replaced = "another file";
};

/// The dialog stays behind a failure, and its second try makes the same event, not another one.
class AddedEvent : public BookWork {
    void Act() override {
        General::ShowEventDialog(QStringLiteral("Добавление события"), QDate(2006, 5, 15), -1);
    }
    void Answer(QWidget& window) override {
        const auto dialog = Last("frmEvent");
        ControlOf<QLineEdit>(window, "txtEventName").setText(QStringLiteral("Юбилей"));
        for (int tries = 0; dialog->IsLoaded() && tries < (startsAnew ? 1 : 2); ++tries) {
            Click(ControlOf<QPushButton>(window, "cmdSaveEvent"));
            diskFails = false;
        }
        if (dialog->IsLoaded())
            dialog->Unload();
    }
    void CheckFiles(bool reported) override {
        BookWork::CheckFiles(reported);
        EXPECT_TRUE(!reported || Events() == QStringList(QStringLiteral("Юбилей")));
    }
    void ActAgain() override {}
    void StartAgain() override {}
    void CheckEnd() override {
        BookWork::CheckEnd();
        EXPECT_TRUE(startsAnew || Events() == QStringList(QStringLiteral("Юбилей")));
    }
    QStringList Events() const { return test::ReadRows(Path(), QStringLiteral("SELECT a03evnm FROM a03")); }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Deeds, Card, testing::Values(Add, Change, Remove));

TEST_P(Card, OnADiskThatFails) {
    test::SweepDisk(*this, GetParam().name);
}

TEST_P(Card, UnderALock) {
    test::SweepLocks(*this, GetParam().name, Path());
}

TEST_F(AddedEvent, OnADiskThatFails) {
    test::SweepDisk(*this, "added event");
}

TEST_F(Import, OnADiskThatFails) {
    test::SweepDisk(*this, "import of 50 rows");
}

TEST_F(Import, UnderALock) {
    test::SweepLocks(*this, "import", Path());
}

TEST_F(Extraction, OnADiskThatFails) {
    test::SweepDisk(*this, "extraction", test::Places::None);
}
