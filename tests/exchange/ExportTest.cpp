#include "exchange/ExtractToCSV.h"
#include "platform/runtime/Codec1251.h"
#include "platform/runtime/Files.h"
#include "tests/exchange/ExchangeTest.h"

#include <QFileDialog>
#include <QListWidget>
#include <QRadioButton>

using forms::Icon;

namespace {

const QString AllCards = "SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl";
const QString Head = "frmRecords функция ExtractToCSV:";

class ExportTest : public test::ExchangeTest {
protected:
    using Dialog = std::function<void(QWidget&)>;
    using Boxes = std::function<void(test::Answers&)>;

    static QListWidget& Parameters(QWidget& dialog) { return ControlOf<QListWidget>(dialog, "lstParameter"); }
    static void Semicolon(QWidget& dialog) { Click(ControlOf(dialog, "optDelimiter_1"), {8, 8}); }
    static void Ok(QWidget& dialog) { Click(ControlOf(dialog, "cmdOk")); }
    /// Leaves only these items ticked, counted from 1, and presses OK.
    static Dialog OkWith(const QList<int>& items, bool semicolon = false) {
        return [=](QWidget& dialog) {
            QListWidget& list = Parameters(dialog);
            for (int item = 1; item <= list.count(); ++item)
                list.item(item - 1)->setCheckState(items.contains(item) ? Qt::Checked : Qt::Unchecked);
            if (semicolon)
                Semicolon(dialog);
            Ok(dialog);
        };
    }

    /// Exports to the path; these boxes and dialogs come behind that for the file.
    void Run(const QString& target, const Boxes& boxes = {}, const QString& sql = AllCards) {
        test::Answers answers;
        answers.File(target, [](QFileDialog& files) {
            EXPECT_EQ(files.nameFilters(), QStringList{"Файл с разделителями (*.csv)"});
        });
        if (boxes)
            boxes(answers);
        exchange::ExtractToCSV(*list, sql);
        EXPECT_TRUE(answers.Done());
    }
    static test::Answers& Columns(test::Answers& answers, const Dialog& dialog) {
        return answers.Modal("frmSelectDelimiter", dialog);
    }
    /// The bytes of a successful export of so many rows.
    QByteArray Export(const Dialog& dialog, int count, const QString& sql = AllCards) {
        const QString done = "Экспорт данных в CSV файл успешно завершен. Экспортированно %1 записей.";
        const auto boxes = [&](test::Answers& answers) {
            Columns(answers, dialog).Box(done.arg(count), Icon::Information);
        };
        Run(path, boxes, sql);
        QByteArray bytes = test::ReadBytes(path);
        QFile::remove(path);
        return bytes;
    }

    QString path = Path("book.csv");
};

TEST_F(ExportTest, Bytes) {
    EXPECT_EQ(Export(Ok, 0), QByteArray());
    // Nothing is quoted, trimmed or escaped; what the code page lacks becomes ?; of two numbers the first
    // goes.
    AddCard(1, " О^Нил, \"мл.\";", "", "", "№ «ёлка» — λ😀");
    AddPhone(1, 1, "первый");
    AddPhone(1, 1, "второй");
    AddPhone(1, 3, "рабочий");
    AddPhone(1, 4, "основной");
    const QByteArray bytes = Export(Ok, 1);
    EXPECT_EQ(
        bytes,
        "First Name,Last Name,Middle Name,Name,Home Phone,Mobile Phone,Business Phone,Notes\r\n" +
            runtime::To1251(u", О^Нил, \"мл.\";,, О^Нил, \"мл.\";  ,первый,,рабочий,№ «ёлка» — ??\r\n"));
    EXPECT_TRUE(bytes.endsWith("\xB9 \xAB\xB8\xEB\xEA\xE0\xBB \x97 ??\r\n"));
    // A row for each phone that the list shows.
    const auto shown = "SELECT * FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = "
                       "a02code AND a02cval LIKE '*р*'";
    EXPECT_EQ(Export(OkWith({5}), 3, shown), "Home Phone\r\n" + runtime::To1251(u"первый\r\n").repeated(3));
}

TEST_F(ExportTest, ChosenColumnsAndDelimiter) {
    AddCard(1, "Ааа", "Имя", "Отч", "заметка");
    AddCard(2, "Ббб");
    AddPhone(2, 3, "7");
    Execute("INSERT INTO a01 (a01clid) VALUES (3)");
    const struct {
        QList<int> items;
        bool semicolon;
        const char16_t* text;
        int count;
    } cases[] = {
        {{1, 2, 3}, true, u"First Name;Last Name;Middle Name\r\nИмя;Ааа;Отч\r\n;Ббб;\r\n", 2},
        {{4}, false, u"Name\r\n  \r\nАаа Имя Отч\r\nБбб  \r\n", 3}, // the two blanks always stand
        {{7, 8}, true, u"Business Phone;Notes\r\n;заметка\r\n7;\r\n", 2},
        {{5, 6}, false, u"Home Phone,Mobile Phone\r\n", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Export(OkWith(c.items, c.semicolon), c.count), runtime::To1251(c.text));

    Run(path, [](test::Answers& answers) {
        Columns(answers, OkWith({})).Box("Не выбран ни один параметр для экспорта.", Icon::Exclamation);
    });
    EXPECT_EQ(test::ReadBytes(path), QByteArray());
}

/// The old file goes at the question, before the dialog is asked; what comes then is not touched. A book that
/// a program has open stays.
TEST_F(ExportTest, FilesThatNobodyAgreedToLose) {
    AddCard(1, "Ааа");
    Run({});
    const auto ask = [](test::Answers& answers, const QString& file, bool yes) -> test::Answers& {
        return answers.Question(QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(file), yes,
                                false);
    };
    const QString hidden = Path(".hidden.csv");
    for (const QString& file : {hidden, path})
        test::WriteBytes(file, "old");
    Run(hidden, [&](test::Answers& answers) { ask(answers, hidden, false); });
    EXPECT_EQ(test::ReadBytes(hidden), "old");
    const auto replaceMeanwhile = [&](QWidget& dialog) {
        EXPECT_FALSE(QFileInfo::exists(path));
        test::WriteBytes(path, "somebody's");
        Ok(dialog);
    };
    Run(path, [&](test::Answers& answers) {
        Columns(ask(answers, path, true), replaceMeanwhile).Failure(Head, 58);
    });
    EXPECT_EQ(test::ReadBytes(path), "somebody's");
    runtime::FileMark held;
    ASSERT_EQ(held.TakeShared(path), runtime::FileMark::Result::Taken);
    for (const QString& file : {path, bookPath})
        Run(file, [&](test::Answers& answers) { ask(answers, file, true).Failure(Head, 70); });
    EXPECT_EQ(test::ReadBytes(path), "somebody's");
    EXPECT_EQ(Cards().size(), 1);
}

TEST_F(ExportTest, TheDialogRemembersAConfirmedCancelOnly) {
    const auto shows = [](QWidget& dialog, bool semicolon, bool ticked) {
        EXPECT_EQ(ControlOf<QRadioButton>(dialog, "optDelimiter_1").isChecked(), semicolon);
        EXPECT_EQ(Parameters(dialog).item(3)->checkState() == Qt::Checked, ticked);
    };
    const auto cancelTwice = [&](QWidget& dialog) {
        shows(dialog, false, true);
        Parameters(dialog).item(3)->setCheckState(Qt::Unchecked);
        Semicolon(dialog);
        Click(ControlOf(dialog, "cmdCancel"));
        EXPECT_TRUE(dialog.isVisible()) << "No keeps it open";
        QTest::keyClick(&dialog, Qt::Key_Escape);
    };
    const QString giveUp = "Вы действительно хотите прервать процесс экспорта данных в файл CSV?";
    Run(path, [&](test::Answers& answers) {
        Columns(answers, cancelTwice).Question(giveUp, false, false).Question(giveUp, true, false);
    });
    // Its state came back; the close box then throws it away.
    const auto close = [&](QWidget& dialog) {
        shows(dialog, true, false);
        dialog.close();
    };
    Run(path, [&](test::Answers& answers) { Columns(answers, close); });
    EXPECT_FALSE(QFileInfo::exists(path));
    const auto confirm = [&](QWidget& dialog) {
        shows(dialog, false, true);
        QTest::keyClick(&Parameters(dialog), Qt::Key_Return); // the default button
    };
    Export(confirm, 0);
}

TEST_F(ExportTest, AFullDisk) {
    gWorkspace->BeginTrans();
    for (int id = 1; id <= 2000; ++id)
        AddCard(id, "Ц");
    gWorkspace->CommitTrans();
    const QByteArray whole = Export(Ok, 2000);
    std::optional<test::SmallDisk> full;
    const auto onFullDisk = [&](QWidget& dialog) {
        full.emplace(whole.size() - 1);
        Ok(dialog);
    };
    Run(path, [&](test::Answers& answers) { Columns(answers, onFullDisk).Failure(Head, 61); });
    full.reset();
    const QByteArray part = test::ReadBytes(path);
    EXPECT_TRUE(whole.startsWith(part) && part.size() < whole.size()) << "what has been written stays";
}

} // namespace
