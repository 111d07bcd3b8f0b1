#include "exchange/ExtractToCSV.h"
#include "platform/runtime/Codec1251.h"
#include "platform/runtime/Files.h"
#include "tests/exchange/ExchangeTest.h"
#include "tests/support/System.h"
#include "tests/support/WindowWalk.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

namespace {

const QString AllCards = QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl");
const QByteArray FullHeader =
    "First Name,Last Name,Middle Name,Name,Home Phone,Mobile Phone,Business Phone,Notes\r\n";

void PressOn(QWidget& dialog, const char* button) {
    QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
}

QListWidget& Parameters(QWidget& dialog) {
    return *dialog.findChild<QListWidget*>("lstParameter");
}

void Semicolon(QWidget& dialog) {
    QTest::mouseClick(dialog.findChild<QRadioButton*>("optDelimiter_1"), Qt::LeftButton, Qt::NoModifier,
                      {8, 8});
}

/// Leaves only these items ticked, counted from 1, and presses OK.
std::function<void(QWidget&)> OkWith(const QList<int>& items, bool semicolon = false) {
    return [=](QWidget& dialog) {
        QListWidget& list = Parameters(dialog);
        for (int item = 1; item <= list.count(); ++item)
            list.item(item - 1)->setCheckState(items.contains(item) ? Qt::Checked : Qt::Unchecked);
        if (semicolon)
            Semicolon(dialog);
        PressOn(dialog, "cmdOk");
    };
}

void Ok(QWidget& dialog) {
    PressOn(dialog, "cmdOk");
}

QString Done(int count) {
    return QStringLiteral("Экспорт данных в CSV файл успешно завершен. Экспортированно %1 записей.")
        .arg(count);
}

class ExportTest : public test::ExchangeTest {
protected:
    /// Exports a statement by the dialog's given handling and gives the file's bytes.
    QByteArray Export(const QString& sql, const std::function<void(QWidget&)>& dialog, int count) {
        const QString path = Beside(QStringLiteral("out%1.csv").arg(++m_files));
        test::Answers answers;
        answers.File(path).Modal("frmSelectDelimiter", dialog).Box(Done(count), forms::Icon::Information);
        exchange::ExtractToCSV(*list, sql);
        return test::ReadBytes(path);
    }

    QString path = Beside(QStringLiteral("book.csv"));

private:
    int m_files = 0;
};

TEST_F(ExportTest, Bytes) {
    AddCard(1, "Иванова", "Анна");
    AddPhone(1, 2, "123");
    AddPhone(1, 4, "основной");
    EXPECT_EQ(Export(AllCards, Ok, 1),
              FullHeader + runtime::To1251(u"Анна,Иванова,,Иванова Анна ,,123,,\r\n"));

    // Nothing is quoted, trimmed or escaped; what the code page lacks becomes ?; of two numbers the first
    // goes.
    Execute("UPDATE a01 SET a01last = ' О^Нил, \"мл.\";', a01frst = '', a01memo = '№ «ёлка» — λ😀'");
    AddPhone(1, 1, "первый");
    AddPhone(1, 1, "второй");
    AddPhone(1, 3, "рабочий");
    const QByteArray bytes = Export(AllCards, Ok, 1);
    EXPECT_EQ(bytes, FullHeader + runtime::To1251(u", О^Нил, \"мл.\";,, О^Нил, \"мл.\";  ,первый,123,рабочий,"
                                                  u"№ «ёлка» — ??\r\n"));
    EXPECT_TRUE(bytes.endsWith("\xB9 \xAB\xB8\xEB\xEA\xE0\xBB \x97 ??\r\n"));
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
        {{8}, false, u"Notes\r\nзаметка\r\n", 1},
        {{1, 2, 3}, true, u"First Name;Last Name;Middle Name\r\nИмя;Ааа;Отч\r\n;Ббб;\r\n", 2},
        {{4}, false, u"Name\r\n  \r\nАаа Имя Отч\r\nБбб  \r\n", 3}, // the two blanks always stand
        {{7, 1, 8}, true, u"Last Name;Business Phone;Notes\r\nАаа;;заметка\r\nБбб;7;\r\n", 2},
        {{5, 6}, false, u"Home Phone,Mobile Phone\r\n", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Export(AllCards, OkWith(c.items, c.semicolon), c.count), runtime::To1251(c.text));
}

TEST_F(ExportTest, ARowForEachPhoneThatTheListShows) {
    AddCard(1, "Два");
    AddPhone(1, 2, "первый");
    AddPhone(1, 2, "второй");
    EXPECT_EQ(
        Export(
            "SELECT * FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code AND "
            "a02cval LIKE '*'",
            OkWith({1, 6}), 2),
        runtime::To1251(u"Last Name,Mobile Phone\r\nДва,первый\r\nДва,первый\r\n"));
}

TEST_F(ExportTest, EmptyFiles) {
    EXPECT_EQ(Export(AllCards, Ok, 0), QByteArray());

    AddCard(1, "Ааа");
    {
        test::Answers answers;
        answers.File(path)
            .Modal("frmSelectDelimiter", OkWith({}))
            .Box("Не выбран ни один параметр для экспорта.", forms::Icon::Exclamation);
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_EQ(test::ReadBytes(path), QByteArray());
    // The dialog was unloaded: it starts from its start state.
    EXPECT_EQ(Export(AllCards, Ok, 1).left(FullHeader.size()), FullHeader);
}

TEST_F(ExportTest, TheFileDialogAndTheOverwriteQuestion) {
    AddCard(1, "Ааа");
    const QString question = QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(path);
    const QString give_up =
        QStringLiteral("Вы действительно хотите прервать процесс экспорта данных в файл CSV?");
    {
        test::Answers answers;
        answers.File({}, [](QFileDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), QStringLiteral("cdlExtract"));
            EXPECT_EQ(dialog.nameFilters(), QStringList{"Файл с разделителями (*.csv)"});
        });
        exchange::ExtractToCSV(*list, AllCards);
    }
    test::WriteBytes(path, "old");
    {
        test::Answers answers;
        answers.File(path).Question(question, false, false);
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_EQ(test::ReadBytes(path), QByteArray("old"));
    {
        // The old file goes at the question, before the dialog is asked.
        test::Answers answers;
        answers.File(path)
            .Question(question, true, false)
            .Modal("frmSelectDelimiter",
                   [&](QWidget& dialog) {
                       EXPECT_FALSE(QFileInfo::exists(path));
                       QTest::keyClick(&dialog, Qt::Key_Escape);
                   })
            .Question(give_up, true, false);
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_FALSE(QFileInfo::exists(path));
    {
        // A name without an extension gets that of the filter.
        test::Answers answers;
        answers.File(Beside("book")).Modal("frmSelectDelimiter", Ok).Box(Done(1), forms::Icon::Information);
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_TRUE(test::ReadBytes(path).startsWith("First Name"));
}

TEST_F(ExportTest, TheDialogRemembersAConfirmedCancelOnly) {
    AddCard(1, "Ааа");
    const QString give_up =
        QStringLiteral("Вы действительно хотите прервать процесс экспорта данных в файл CSV?");
    const auto expect = [](QWidget& dialog, bool semicolon, int ticked) {
        EXPECT_EQ(dialog.findChild<QRadioButton*>("optDelimiter_1")->isChecked(), semicolon);
        int count = 0;
        for (int i = 0; i < 8; ++i)
            count += Parameters(dialog).item(i)->checkState() == Qt::Checked ? 1 : 0;
        EXPECT_EQ(count, ticked);
    };
    {
        test::Answers answers;
        answers.File(path)
            .Modal("frmSelectDelimiter",
                   [&](QWidget& dialog) {
                       expect(dialog, false, 8);
                       QStringList texts;
                       for (int i = 0; i < 8; ++i)
                           texts.append(Parameters(dialog).item(i)->text());
                       EXPECT_EQ(texts, (QStringList{"Фамилия", "Имя", "Отчество", "ФИО", "Домашний телефон",
                                                     "Мобильный телефон", "Рабочий телефон", "Заметка"}));
                       EXPECT_EQ(test::WindowFaults(dialog), QStringList());
                       EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Выбор разделителя"));
                       Parameters(dialog).item(3)->setCheckState(Qt::Unchecked);
                       Semicolon(dialog);
                       PressOn(dialog, "cmdCancel");
                       EXPECT_TRUE(dialog.isVisible()) << "No keeps it open";
                       PressOn(dialog, "cmdCancel");
                   })
            .Question(give_up, false, false)
            .Question(give_up, true, false);
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_FALSE(QFileInfo::exists(path));
    {
        // Its state came back; the close box then throws it away.
        test::Answers answers;
        answers.File(path).Modal("frmSelectDelimiter", [&](QWidget& dialog) {
            expect(dialog, true, 7);
            dialog.close();
        });
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_FALSE(QFileInfo::exists(path));
    {
        test::Answers answers;
        answers.File(path)
            .Modal("frmSelectDelimiter",
                   [&](QWidget& dialog) {
                       expect(dialog, false, 8);
                       QTest::keyClick(&Parameters(dialog), Qt::Key_Return); // the default button
                   })
            .Box(Done(1), forms::Icon::Information);
        exchange::ExtractToCSV(*list, AllCards);
    }
}

TEST_F(ExportTest, FailuresEndInTheBox) {
    AddCard(1, "Ааа");
    const auto head = [](int number) {
        return QStringLiteral("frmRecords функция ExtractToCSV:\r\nпроизошла ошибка №%1 ").arg(number);
    };
    // A refused statement comes behind the opening of the file.
    for (const auto& [sql, number] : QList<QPair<QString, int>>{
             {"", 3078}, {"SELECT * FROM b01", 3078}, {"SELECT a01last FROM a01", 3265}}) {
        test::Answers answers;
        answers.File(path).Modal("frmSelectDelimiter", Ok).BoxStarting(head(number), forms::Icon::Critical);
        exchange::ExtractToCSV(*list, sql);
        EXPECT_TRUE(answers.Done());
        ASSERT_TRUE(QFile::remove(path));
    }
    // The working database, under another spelling and through a link: nothing happens to either.
    const QString spelled = test::SpelledOtherwise(bookPath);
    const QString link = Beside("link.csv");
    ASSERT_TRUE(test::LinkByName(bookPath, link) || test::LinkFile(bookPath, link));
    const QStringList cards = Cards();
    // So it is for the book that another program has open.
    const QString other = Beside("other.mdb");
    test::WriteBytes(other, "book");
    runtime::FileMark held;
    ASSERT_EQ(held.TakeShared(other), runtime::FileMark::Result::Taken);
    for (const QString& target : {bookPath, spelled, link, other}) {
        test::Answers answers;
        answers.File(target)
            .Question(QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(target), true, false)
            .BoxStarting(head(70), forms::Icon::Critical);
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_EQ(Cards(), cards);
    EXPECT_EQ(test::Integrity(bookPath), QStringLiteral("ok"));
    EXPECT_TRUE(QFile::exists(link));
    EXPECT_EQ(test::ReadBytes(other), "book");
}

/// A hidden file counts as well, and what comes while the dialog is asked is not touched.
TEST_F(ExportTest, FilesThatNobodyAgreedToLose) {
    AddCard(1, "Ааа");
    const QString hidden = Beside(".h.csv");
    test::WriteBytes(hidden, "old");
    {
        test::Answers answers;
        answers.File(hidden).Question(
            QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(hidden), false, false);
        exchange::ExtractToCSV(*list, AllCards);
    }
    EXPECT_EQ(test::ReadBytes(hidden), "old");
    test::Answers answers;
    answers.File(path)
        .Modal("frmSelectDelimiter",
               [&](QWidget& dialog) {
                   test::WriteBytes(path, "somebody's");
                   Ok(dialog);
               })
        .BoxStarting(QStringLiteral("frmRecords функция ExtractToCSV:\r\nпроизошла ошибка №58 "),
                     forms::Icon::Critical);
    exchange::ExtractToCSV(*list, AllCards);
    EXPECT_EQ(test::ReadBytes(path), "somebody's");
}

TEST_F(ExportTest, AFullDisk) {
    AddManyCards(20000);
    const QByteArray whole = Export(AllCards, Ok, 20000);
    for (const qsizetype bytes : {qsizetype{0}, qsizetype{1}, qsizetype{512}, whole.size() - 1}) {
        SCOPED_TRACE(bytes);
        test::Answers answers;
        answers.File(path)
            .Modal("frmSelectDelimiter", Ok)
            .Box("frmRecords функция ExtractToCSV:\r\nпроизошла ошибка №61 Диск переполнен",
                 forms::Icon::Critical);
        {
            const test::SmallDisk full(bytes);
            exchange::ExtractToCSV(*list, AllCards);
        }
        const QByteArray part = test::ReadBytes(path);
        EXPECT_LE(part.size(), bytes);
        EXPECT_TRUE(whole.startsWith(part)) << "what has been written stays";
        ASSERT_TRUE(QFile::remove(path));
    }
}

/// The signed 16-bit counters.
TEST_F(ExportTest, Limits) {
    const QString overflow =
        QStringLiteral("frmRecords функция ExtractToCSV:\r\nпроизошла ошибка №6 Переполнение");
    AddManyCards(32768);
    const struct {
        int rows;
        int lines;
        bool complete;
    } cases[] = {{32766, 32767, true}, {32767, 32768, false}, {32768, 1, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rows);
        test::Answers answers;
        answers.File(path).Modal("frmSelectDelimiter", OkWith({1}));
        if (c.complete)
            answers.Box(Done(c.rows), forms::Icon::Information);
        else
            answers.Box(overflow, forms::Icon::Critical);
        exchange::ExtractToCSV(*list, QStringLiteral("SELECT * FROM a01 WHERE a01clid <= %1").arg(c.rows));
        EXPECT_EQ(test::ReadBytes(path).count("\r\n"), c.lines);
        ASSERT_TRUE(QFile::remove(path));
    }
}

} // namespace
