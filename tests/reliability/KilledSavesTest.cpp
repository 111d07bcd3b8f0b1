// A child process that makes, changes and deletes cards is killed hard. Every card whose success it has told
// is as it was told; of the next one the statements up to one are there and none behind it.

#include "platform/forms/FlexGrid.h"
#include "platform/forms/ListBox.h"
#include "records/frmRecords.h"
#include "shared/Declaration.h"
#include "shell/frmMain.h"
#include "tests/support/Boxes.h"
#include "tests/support/KilledChild.h"
#include "tests/support/WindowTest.h"

#include <QLineEdit>
#include <QPushButton>

using namespace std::chrono_literals;

namespace {

/// The book as the parent imagines it.
struct Card {
    QString name;
    QStringList phones; ///< "code|number"

    bool operator==(const Card&) const = default;
};
using Book = QMap<int, Card>;

enum class Deed { Add, Edit, Delete };

/// What the child does, deed by deed from 1: mostly new cards, now and then the last one is changed or
/// deleted.
Deed DeedOf(int number) {
    if (number % 5 == 3)
        return Deed::Edit;
    return number % 5 == 4 ? Deed::Delete : Deed::Add;
}
QString NameOf(int number) {
    return QStringLiteral("Ф%1").arg(number, 6, 10, QLatin1Char('0'));
}
QString PhoneOf(int number, int code) {
    return QStringLiteral("%1-%2").arg(number).arg(code);
}

/// The book before the deed and behind each of its statements.
QList<Book> StatesOf(int number, Book book) {
    QList<Book> states{book};
    const auto note = [&] { states += book; };
    if (DeedOf(number) == Deed::Delete) {
        const int last = book.lastKey();
        const QStringList phones = book[last].phones;
        book.remove(last);
        book[-last] = {{}, phones}; // phones without their card, until the next statement
        note();
        book.remove(-last);
        note();
        return states;
    }
    const int id = DeedOf(number) == Deed::Edit ? book.lastKey() : (book.isEmpty() ? 1 : book.lastKey() + 1);
    book[id].name = NameOf(number);
    note();
    if (DeedOf(number) == Deed::Edit) {
        book[id].phones.clear();
        note();
    }
    for (const int code : {1, 2}) {
        book[id].phones += QStringLiteral("%1|").arg(code) + PhoneOf(number, code);
        note();
    }
    return states;
}

/// Does the deeds through the windows of cards, until it is killed.
class DISABLED_SavingChild : public test::WindowTest {
protected:
    void SetUp() override {
        forms::Form::Default<frmMain>()->Show();
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = gWorkspace->OpenDatabase(test::HandedOver());
    }

    static void Do(const std::shared_ptr<frmRecords>& list, int number) {
        auto& grid = Control<forms::FlexGrid>(list, "gridRecords");
        grid.SetRow(grid.Rows() - 1);
        const Deed deed = DeedOf(number);
        list->EditRecord(deed == Deed::Add ? frmRecords::Add : frmRecords::Edit);
        const auto card = Last("frmEditRecords");
        if (deed != Deed::Delete) {
            Control<QLineEdit>(card, "txtLastName").setText(NameOf(number));
            for (const int code : {1, 2}) {
                Control<forms::ListBox>(card, "lstTelefonType").SetListIndex(code - 1);
                auto& field = Control<QLineEdit>(card, "txtTelefonNumber");
                Click(field);
                field.setText(PhoneOf(number, code));
            }
        }
        Click(Control<QPushButton>(card, deed == Deed::Delete ? "cmdDelete" : "cmdSave"));
    }
};

TEST_F(DISABLED_SavingChild, Saves) {
    const auto list = forms::Form::Create<frmRecords>();
    list->Show();
    list->DoNotFillGrid(true);
    list->FillGrid(QStringLiteral("SELECT * FROM a01 ORDER BY a01clid"));
    test::Boxes boxes;
    test::TellParent("working");
    for (int number = 1;; ++number) {
        Do(list, number);
        const QStringList told = boxes.Take();
        ASSERT_TRUE(told.last().startsWith(QStringLiteral("Запись успешно"))) << told.last().toStdString();
        test::TellParent("done");
    }
}

class KilledSaves : public test::WindowTest {
protected:
    Book Read() const {
        Book book;
        for (const QString& row : Rows(QStringLiteral("SELECT a01clid, a01last FROM a01")))
            book[row.section(u'|', 0, 0).toInt()].name = row.section(u'|', 1);
        for (const QString& row : Rows(QStringLiteral("SELECT a02clid, a02code, a02cval FROM a02 "
                                                      "ORDER BY a02clid, a02code"))) {
            const int id = row.section(u'|', 0, 0).toInt();
            book[book.contains(id) ? id : -id].phones += row.section(u'|', 1);
        }
        return book;
    }
};

} // namespace

TEST_F(KilledSaves, EveryReportedCardIsThere) {
    int reported = 0;
    for (const auto moment : test::Moments("saves of cards", {1ms, 60ms, 150ms, 400ms, 900ms}, 100)) {
        SCOPED_TRACE(moment.count());
        Run(QStringLiteral("DELETE FROM a01"));
        Run(QStringLiteral("DELETE FROM a02"));
        gDatabase->Close();
        const QByteArray said =
            test::KillWhileRunning(QStringLiteral("DISABLED_SavingChild.Saves"), Path(), moment);
        gDatabase = gWorkspace->OpenDatabase(Path()); // rolls back what a dead process left
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));

        const auto done = static_cast<int>(said.count("done\n"));
        Book expected;
        for (int number = 1; number <= done; ++number)
            expected = StatesOf(number, expected).back();
        EXPECT_TRUE(StatesOf(done + 1, expected).contains(Read())) << "behind " << done << " deeds";
        reported += done;
    }
    EXPECT_GT(reported, 0) << "no run got as far as its first card";
}
