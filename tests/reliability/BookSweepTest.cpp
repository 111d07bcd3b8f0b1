// Cards are saved, imported and extracted through the windows on disks that fail.

#include "organiser/frmEvent.h"
#include "platform/forms/FlexGrid.h"
#include "platform/forms/ListBox.h"
#include "records/frmEditTelefonType.h"
#include "records/frmRecords.h"
#include "shared/Declaration.h"
#include "tests/exchange/ImportMaster.h"
#include "tests/reliability/CallSweep.h"

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <optional>

namespace {

constexpr int ImportedRows = 50;

/// Opens a file as the next program would, which puts right what was left half done.
void OpenAndClose(const QString& path) {
    engine::DBEngine::CreateWorkspace({}, {}, {})->OpenDatabase(path)->Close();
}

/// The program stands on a book of three cards.
class BookWork : public test::WindowTest, public test::Work {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        for (const char* card : {"1, 'А'", "2, 'Б'", "3, 'В'"})
            Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1)").arg(card));
        for (const char* phone : {"1, 1, '11'", "2, 1, '21'", "2, 3, '23'"})
            Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1)").arg(phone));
        AddRows();
        gDatabase->Close();
        m_bytes = test::ReadBytes(Path());
    }
    void TearDown() override {
        gDatabase = gWorkspace->OpenDatabase(Path());
        WindowTest::TearDown();
    }

    void Prepare() override {
        QFile::remove(Path() + QStringLiteral("-journal"));
        test::WriteBytes(Path(), m_bytes);
    }
    void Begin() override {
        gDatabase = gWorkspace->OpenDatabase(Path());
        list = forms::Form::Create<frmRecords>();
        list->Show();
        list->DoNotFillGrid(true);
        list->FillGrid({});
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
    QStringList Content(const QString& path) const {
        return test::ReadRows(path,
                              QStringLiteral("SELECT a01clid, a01last, a01memo FROM a01 ORDER BY a01clid")) +
               test::ReadRows(path, QStringLiteral("SELECT a02clid, a02code, a02cval FROM a02 ORDER BY "
                                                   "a02clid, a02code"));
    }

    const QByteArray& Bytes() const { return m_bytes; }
    /// What the work needs beside the cards.
    virtual void AddRows() {}

    std::shared_ptr<frmRecords> list;

private:
    QByteArray m_bytes;
};

/// A card is written by some statements, one by one.
class CardWork : public BookWork {
protected:
    void Begin() override {
        BookWork::Begin();
        OpenCard();
        card = Last("frmEditRecords");
    }
    void Act() override { Click(Control<QPushButton>(card, Button())); }
    bool WasReported(const QStringList& boxes) const override {
        return boxes.contains(QStringLiteral("Запись успешно ") + Done() + QStringLiteral(" базу данных.")) ||
               boxes.contains(QStringLiteral("Запись успешно ") + Done() + QStringLiteral(" базы данных."));
    }
    void CheckFiles(bool reported) override {
        OpenAndClose(Path());
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
        const QList<QStringList> states = States();
        const QStringList content = Content(Path());
        m_state = static_cast<int>(states.indexOf(content));
        EXPECT_GE(m_state, reported ? states.size() - 1 : 0) << content.join(u'\n').toStdString();
    }
    void ActAgain() override {
        if (card->IsLoaded())
            Act();
    }
    void Leave() override {
        card.reset();
        BookWork::Leave();
    }
    void CheckEnd() override {
        BookWork::CheckEnd();
        if (!cutsPower) {
            EXPECT_EQ(Content(Path()), End(m_state));
        }
    }

    virtual void OpenCard() = 0;
    virtual const char* Button() const { return "cmdSave"; }
    virtual QString Done() const { return QStringLiteral("сохранена в"); }
    /// The book before the first statement and behind each.
    virtual QList<QStringList> States() const = 0;
    /// The book once the work has been done again from that state.
    virtual QStringList End(int state) const {
        Q_UNUSED(state)
        return States().back();
    }

    void FillCard() {
        card = Last("frmEditRecords");
        Control<QLineEdit>(card, "txtLastName").setText(QStringLiteral("Яя"));
        Control<QLineEdit>(card, "txtRemark").setText(QStringLiteral("новое"));
        for (const int type : {0, 1}) {
            Control<forms::ListBox>(card, "lstTelefonType").SetListIndex(type);
            Click(Control<QLineEdit>(card, "txtTelefonNumber"));
            Control<QLineEdit>(card, "txtTelefonNumber").setText(QStringLiteral("9%1").arg(type));
        }
    }

    std::shared_ptr<forms::Form> card;

private:
    int m_state = 0;
};

class NewCard : public CardWork {
    void OpenCard() override {
        list->EditRecord(frmRecords::Add);
        FillCard();
    }
    QList<QStringList> States() const override {
        return {
            {"1|А|NULL", "2|Б|NULL", "3|В|NULL", "1|1|11", "2|1|21", "2|3|23"},
            {"1|А|NULL", "2|Б|NULL", "3|В|NULL", "4|Яя|новое", "1|1|11", "2|1|21", "2|3|23"},
            {"1|А|NULL", "2|Б|NULL", "3|В|NULL", "4|Яя|новое", "1|1|11", "2|1|21", "2|3|23", "4|1|90"},
            {"1|А|NULL", "2|Б|NULL", "3|В|NULL", "4|Яя|новое", "1|1|11", "2|1|21", "2|3|23", "4|1|90",
             "4|2|91"},
        };
    }
    // What the first attempt has left stays, and the card comes under the next number.
    QStringList End(int state) const override {
        if (state == 0 || state == States().size() - 1)
            return States().back();
        QStringList end = States().at(state);
        end.insert(4, QStringLiteral("5|Яя|новое"));
        return end + QStringList{"5|1|90", "5|2|91"};
    }
};

class EditedCard : public CardWork {
    void OpenCard() override {
        Control<forms::FlexGrid>(list, "gridRecords").SetRow(2);
        list->EditRecord(frmRecords::Edit);
        FillCard();
    }
    QList<QStringList> States() const override {
        return {
            {"1|А|NULL", "2|Б|NULL", "3|В|NULL", "1|1|11", "2|1|21", "2|3|23"},
            {"1|А|NULL", "2|Яя|новое", "3|В|NULL", "1|1|11", "2|1|21", "2|3|23"},
            {"1|А|NULL", "2|Яя|новое", "3|В|NULL", "1|1|11"},
            {"1|А|NULL", "2|Яя|новое", "3|В|NULL", "1|1|11", "2|1|90"},
            {"1|А|NULL", "2|Яя|новое", "3|В|NULL", "1|1|11", "2|1|90", "2|2|91"},
            {"1|А|NULL", "2|Яя|новое", "3|В|NULL", "1|1|11", "2|1|90", "2|2|91", "2|3|23"},
        };
    }
};

class DeletedCard : public CardWork {
    void OpenCard() override {
        Control<forms::FlexGrid>(list, "gridRecords").SetRow(2);
        list->EditRecord(frmRecords::Edit);
    }
    const char* Button() const override { return "cmdDelete"; }
    QString Done() const override { return QStringLiteral("удалена из"); }
    QList<QStringList> States() const override {
        return {
            {"1|А|NULL", "2|Б|NULL", "3|В|NULL", "1|1|11", "2|1|21", "2|3|23"},
            {"1|А|NULL", "3|В|NULL", "1|1|11", "2|1|21", "2|3|23"},
            {"1|А|NULL", "3|В|NULL", "1|1|11"},
        };
    }
};

/// Fifty cards with three phones each.
class Import : public BookWork {
protected:
    void SetUp() override {
        BookWork::SetUp();
        QByteArray text = Columns.join(u',').toLatin1() + "\r\n";
        for (int i = 1; i <= ImportedRows; ++i)
            text += QStringLiteral("N%1,h%1,m%1,b%1\r\n").arg(i).toLatin1();
        test::WriteBytes(File(), text);
    }
    void Begin() override {
        BookWork::Begin();
        OpenMaster();
    }
    void Act() override { master->PressImport(); }
    bool WasReported(const QStringList& boxes) const override {
        for (int errors = 0; errors <= ImportedRows; ++errors) {
            reportedRows = ImportedRows - errors;
            if (boxes.contains(errors == 0 ? test::ImportedAll(0, ImportedRows)
                                           : test::ImportedWithErrors(ImportedRows, errors)))
                return true;
        }
        return false;
    }
    void CheckFiles(bool reported) override {
        OpenAndClose(Path());
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
        const QStringList cards = test::ReadRows(
            Path(), QStringLiteral("SELECT a01clid, a01last FROM a01 WHERE a01clid > 3 ORDER BY a01clid"));
        int whole = 0;
        for (const QString& card : cards) {
            const QString number = card.section(u'|', 1).mid(1);
            const QStringList all{"1|h" + number, "2|m" + number, "3|b" + number};
            const QStringList phones = test::ReadRows(
                Path(), QStringLiteral("SELECT a02code, a02cval FROM a02 WHERE a02clid = %1 ORDER BY a02rcid")
                            .arg(card.section(u'|', 0, 0)));
            EXPECT_EQ(phones, all.mid(0, phones.size()));
            whole += phones == all ? 1 : 0;
        }
        EXPECT_GE(whole, reported ? reportedRows : 0);
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
    void StartAgain() override {
        BookWork::Begin();
        ActAgain();
    }
    void CheckEnd() override {
        BookWork::CheckEnd();
        EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT count(*), count(DISTINCT a01last) FROM a01")),
                  QStringList{QStringLiteral("%1|%1").arg(ImportedRows + 3)});
        EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT count(*), count(DISTINCT a02cval) FROM a02")),
                  QStringList{QStringLiteral("%1|%1").arg(3 * ImportedRows + 3)});
    }

private:
    void OpenMaster() {
        master.emplace();
        master->TypeFile(File());
        master->Go(2);
        master->Tick(Columns);
    }
    QString File() const { return QFileInfo(Path()).path() + QStringLiteral("/in.csv"); }

    const QStringList Columns{"Last Name", "Home Phone", "Mobile Phone", "Business Phone"};
    std::optional<test::ImportMaster> master;
    mutable int reportedRows = 0; ///< behind a report: of the rows, those without an error
};

/// The three cards go into a file of their own, perhaps in the place of another; nothing but a failure is
/// told.
class Extraction : public BookWork, public testing::WithParamInterface<const char*> {
protected:
    void Prepare() override {
        BookWork::Prepare();
        for (const QString& name : test::FilesOf(Target(), false))
            QFile::remove(QFileInfo(Target()).dir().filePath(name));
        if (*GetParam() != '\0')
            test::WriteBytes(Target(), GetParam());
    }
    void Act() override { list->ExtractToAnotherDB(); }
    void Answer(QWidget& window) override {
        test::TypeIntoFileDialog(dynamic_cast<QFileDialog&>(window), Target());
    }
    bool WasReported(const QStringList& boxes) const override {
        return test::Boxes::Failures(boxes).isEmpty();
    }
    void CheckFiles(bool reported) override {
        EXPECT_EQ(test::ReadBytes(Path()), Bytes());
        if (!reported && !cutsPower) {
            EXPECT_EQ(Leftovers(), QStringList());
        } else if (reported || (QFile::exists(Target()) && test::ReadBytes(Target()) != GetParam())) {
            CheckTarget();
        }
    }
    void ActAgain() override { Act(); }
    void StartAgain() override {
        Begin();
        Act();
    }
    void CheckEnd() override {
        EXPECT_EQ(test::ReadBytes(Path()), Bytes());
        CheckTarget();
    }

private:
    QString Target() const { return QFileInfo(Path()).dir().filePath(QStringLiteral("target.mdb")); }
    QStringList Leftovers() const { return test::FilesOf(Target(), cutsPower); }
    void CheckTarget() const {
        EXPECT_EQ(Leftovers(), QStringList{"target.mdb"});
        EXPECT_EQ(test::Integrity(Target()), QStringLiteral("ok"));
        EXPECT_EQ(Content(Target()), QStringList({"1|А|", "2|Б|", "3|В|", "1|1|11", "2|1|21", "2|3|23"}));
        EXPECT_EQ(test::ReadRows(Target(), QStringLiteral("SELECT (SELECT count(*) FROM t01), "
                                                          "(SELECT count(*) FROM t02), "
                                                          "(SELECT count(*) FROM t03), v00vrid FROM v00")),
                  QStringList{"4|79|1913|3"});
    }
};

/// A type is renamed: no box tells the success.
class RenamedType : public BookWork {
protected:
    void AddRows() override {
        Run(QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 10, 'Дача')"));
    }
    void Begin() override {
        BookWork::Begin();
        OpenTypes();
    }
    void Act() override {
        List().SetListIndex(4);
        Click(Control<QPushButton>(types, "cmdEdit"));
    }
    void Answer(QWidget& dialog) override {
        ControlOf<QLineEdit>(dialog, "txtNewValue").setText(NewName);
        Click(ControlOf<QPushButton>(dialog, "cmdSave"));
    }
    bool WasReported(const QStringList& boxes) const override { return boxes.isEmpty(); }
    void CheckFiles(bool reported) override {
        OpenAndClose(Path());
        EXPECT_TRUE(!reported || InFile() == NewName);
        if (types && List().ListCount() > 0) { // it can be that the list alone could not be read
            EXPECT_EQ(List().List(4), InFile());
        }
    }
    void ActAgain() override {
        OpenTypes();
        Act();
    }
    void Leave() override {
        types.reset();
        BookWork::Leave();
    }
    void CheckEnd() override {
        BookWork::CheckEnd();
        EXPECT_TRUE(cutsPower || InFile() == NewName);
    }

private:
    void OpenTypes() {
        types = forms::Form::Create<frmEditTelefonType>();
        types->Show();
    }
    forms::ListBox& List() { return Control<forms::ListBox>(types, "lstTelefonType"); }
    QString InFile() const {
        return test::ReadRows(Path(), QStringLiteral("SELECT t01cval FROM t01 WHERE t01code = 10")).value(0);
    }

    const QString NewName = QStringLiteral("Сад");
    std::shared_ptr<forms::Form> types;
};

class AddedEvent : public BookWork {
    void Act() override {
        General::ShowEventDialog(QStringLiteral("Добавление события"), QDate(2006, 5, 15), -1);
    }
    void Answer(QWidget& window) override {
        const auto dialog = Last("frmEvent");
        ControlOf<QLineEdit>(window, "txtEventName").setText(Name);
        Click(ControlOf<QPushButton>(window, "cmdSaveEvent"));
        diskFails = false;
        if (dialog->IsLoaded() && !cutsPower)
            Click(ControlOf<QPushButton>(window, "cmdSaveEvent"));
        if (dialog->IsLoaded())
            dialog->Unload();
    }
    void ActAgain() override {}
    bool WasReported(const QStringList& boxes) const override {
        return test::Boxes::Failures(boxes) != boxes;
    }
    void CheckFiles(bool reported) override {
        OpenAndClose(Path());
        EXPECT_TRUE(!reported || Events() == QStringList(Name));
    }
    void CheckEnd() override {
        BookWork::CheckEnd();
        EXPECT_TRUE(cutsPower || Events() == QStringList(Name)) << Events().join(u' ').toStdString();
    }
    QStringList Events() const { return test::ReadRows(Path(), QStringLiteral("SELECT a03evnm FROM a03")); }

    const QString Name = QStringLiteral("Юбилей");
};

/// The three cards go into a text file.
class Export : public BookWork {
public:
    QString Folder() const { return QFileInfo(Path()).path(); }

private:
    void Prepare() override {
        BookWork::Prepare();
        QFile::remove(Target());
    }
    void Act() override { list->ExtractToCSV(); }
    void Answer(QWidget& window) override {
        if (auto* dialog = qobject_cast<QFileDialog*>(&window))
            test::TypeIntoFileDialog(*dialog, Target());
        else
            QTest::mouseClick(&ControlOf<QPushButton>(window, "cmdOk"), Qt::LeftButton);
    }
    bool WasReported(const QStringList& boxes) const override {
        return boxes.contains(
            QStringLiteral("Экспорт данных в CSV файл успешно завершен. Экспортированно 3 записей."));
    }
    void CheckFiles(bool reported) override {
        EXPECT_EQ(test::ReadBytes(Path()), Bytes());
        if (reported)
            CheckTarget();
    }
    void ActAgain() override { Act(); }
    void StartAgain() override {
        Begin();
        Act();
    }
    void CheckEnd() override { CheckTarget(); }

    QString Target() const { return Folder() + QStringLiteral("/target.csv"); }
    void CheckTarget() const {
        EXPECT_EQ(test::ReadBytes(Target()),
                  runtime::To1251(u"First Name,Last Name,Middle Name,Name,Home Phone,Mobile Phone,Business "
                                  u"Phone,Notes\r\n,А,,А  ,11,,,\r\n,Б,,Б  ,21,,23,\r\n,В,,В  ,,,,\r\n"));
    }
};

} // namespace

TEST_F(NewCard, OnADiskThatFails) {
    test::SweepWork(*this, "new card", 6);
}

TEST_F(EditedCard, OnADiskThatFails) {
    test::SweepWork(*this, "edited card", 6);
}

TEST_F(DeletedCard, OnADiskThatFails) {
    test::SweepWork(*this, "deleted card", 6);
}

TEST_F(RenamedType, OnADiskThatFails) {
    test::SweepWork(*this, "renamed type", 2);
}

TEST_F(AddedEvent, OnADiskThatFails) {
    test::SweepWork(*this, "added event", 2);
}

TEST_F(Import, OnADiskThatFails) {
    test::SweepWork(*this, "import of 50 rows", 4);
}

TEST_P(Extraction, OnADiskThatFails) {
    test::SweepWork(*this, *GetParam() == '\0' ? "extraction" : "extraction over a file", 2);
}

INSTANTIATE_TEST_SUITE_P(Over, Extraction, testing::Values("", "another file"));

#ifdef Q_OS_UNIX
TEST_F(Export, OnASystemThatFails) {
    test::SweepCalls(*this, "export", Folder(), 2);
}

TEST_F(NewCard, UnderALock) {
    test::SweepLocks(*this, Path());
}

TEST_F(EditedCard, UnderALock) {
    test::SweepLocks(*this, Path());
}

TEST_F(DeletedCard, UnderALock) {
    test::SweepLocks(*this, Path());
}

TEST_F(Import, UnderALock) {
    test::SweepLocks(*this, Path());
}

TEST_F(Export, UnderALock) {
    test::SweepLocks(*this, Path());
}
#endif
