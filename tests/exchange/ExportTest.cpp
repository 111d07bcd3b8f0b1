#include "exchange/ExtractToCSV.h"
#include "platform/runtime/Codec1251.h"
#include "platform/runtime/Files.h"
#include "tests/exchange/ImportMaster.h"
#include "tests/support/WindowWalk.h"

#include <QFileDialog>

using forms::Icon;

namespace {

const QString AllCards = QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl");
const QString Head = QStringLiteral("frmRecords функция ExtractToCSV:");
const QString GiveUp = QStringLiteral("Вы действительно хотите прервать процесс экспорта данных в файл CSV?");
const QByteArray FullHeader =
    "First Name,Last Name,Middle Name,Name,Home Phone,Mobile Phone,Business Phone,Notes\r\n";

using Dialog = std::function<void(QWidget&)>;

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
void Ok(QWidget& dialog) {
    PressOn(dialog, "cmdOk");
}
/// Leaves only these items ticked, counted from 1, and presses OK.
Dialog OkWith(const QList<int>& items, bool semicolon = false) {
    return [=](QWidget& dialog) {
        QListWidget& list = Parameters(dialog);
        for (int item = 1; item <= list.count(); ++item)
            list.item(item - 1)->setCheckState(items.contains(item) ? Qt::Checked : Qt::Unchecked);
        if (semicolon)
            Semicolon(dialog);
        PressOn(dialog, "cmdOk");
    };
}

QString Question(const QString& path) {
    return QStringLiteral("Файл '%1' уже существует. Перезаписать его?").arg(path);
}

class ExportTest : public test::ExchangeTest {
protected:
    using Boxes = std::function<void(test::Answers&)>;

    /// Exports to the path; `dialog` handles that of the columns where it comes, boxes come before and behind
    /// it.
    void Run(const QString& target, const Dialog& dialog, const Boxes& behind = {}, const Boxes& before = {},
             const QString& sql = AllCards) {
        test::Answers answers;
        answers.File(target, [](QFileDialog& files) {
            EXPECT_EQ(files.objectName(), QStringLiteral("cdlExtract"));
            EXPECT_EQ(files.nameFilters(), QStringList{"Файл с разделителями (*.csv)"});
        });
        if (before)
            before(answers);
        if (dialog)
            answers.Modal("frmSelectDelimiter", dialog);
        if (behind)
            behind(answers);
        exchange::ExtractToCSV(*list, sql);
        EXPECT_TRUE(answers.Done());
    }
    static Boxes Done(int count) {
        return [count](test::Answers& boxes) {
            boxes.Box(
                QStringLiteral("Экспорт данных в CSV файл успешно завершен. Экспортированно %1 записей.")
                    .arg(count),
                Icon::Information);
        };
    }
    static Boxes Fails(int number) {
        return [number](test::Answers& boxes) { boxes.Failure(Head, number); };
    }
    /// The bytes of a successful export of so many rows.
    QByteArray Export(const Dialog& dialog, int count, const QString& sql = AllCards) {
        Run(path, dialog, Done(count), {}, sql);
        QByteArray bytes = test::ReadBytes(path);
        QFile::remove(path);
        return bytes;
    }

    QString path = Beside(QStringLiteral("book.csv"));
};

TEST_F(ExportTest, Bytes) {
    EXPECT_EQ(Export(Ok, 0), QByteArray());
    AddCard(1, "Иванова", "Анна");
    AddPhone(1, 2, "123");
    AddPhone(1, 4, "основной");
    EXPECT_EQ(Export(Ok, 1), FullHeader + runtime::To1251(u"Анна,Иванова,,Иванова Анна ,,123,,\r\n"));

    // Nothing is quoted, trimmed or escaped; what the code page lacks becomes ?; of two numbers the first
    // goes.
    Execute("UPDATE a01 SET a01last = ' О^Нил, \"мл.\";', a01frst = '', a01memo = '№ «ёлка» — λ😀'");
    AddPhone(1, 1, "первый");
    AddPhone(1, 1, "второй");
    AddPhone(1, 3, "рабочий");
    const QByteArray bytes = Export(Ok, 1);
    EXPECT_EQ(bytes, FullHeader + runtime::To1251(u", О^Нил, \"мл.\";,, О^Нил, \"мл.\";  ,первый,123,рабочий,"
                                                  u"№ «ёлка» — ??\r\n"));
    EXPECT_TRUE(bytes.endsWith("\xB9 \xAB\xB8\xEB\xEA\xE0\xBB \x97 ??\r\n"));
    // A row for each phone that the list shows.
    const auto shown = QStringLiteral("SELECT * FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 "
                                      "AND t01code = a02code AND a02cval LIKE '*р*'");
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
        {{8}, false, u"Notes\r\nзаметка\r\n", 1},
        {{1, 2, 3}, true, u"First Name;Last Name;Middle Name\r\nИмя;Ааа;Отч\r\n;Ббб;\r\n", 2},
        {{4}, false, u"Name\r\n  \r\nАаа Имя Отч\r\nБбб  \r\n", 3}, // the two blanks always stand
        {{7, 1, 8}, true, u"Last Name;Business Phone;Notes\r\nАаа;;заметка\r\nБбб;7;\r\n", 2},
        {{5, 6}, false, u"Home Phone,Mobile Phone\r\n", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Export(OkWith(c.items, c.semicolon), c.count), runtime::To1251(c.text));

    Run(path, OkWith({}), [](test::Answers& boxes) {
        boxes.Box("Не выбран ни один параметр для экспорта.", Icon::Exclamation);
    });
    EXPECT_EQ(test::ReadBytes(path), QByteArray());
}

/// The old file goes at the question, before the dialog is asked; what comes then is not touched.
TEST_F(ExportTest, FilesThatNobodyAgreedToLose) {
    AddCard(1, "Ааа");
    Run({}, {});
    for (const QString& name : {path, Beside(".hidden.csv")}) {
        test::WriteBytes(name, "old");
        Run(name, {}, [&](test::Answers& boxes) { boxes.Question(Question(name), false, false); });
        EXPECT_EQ(test::ReadBytes(name), QByteArray("old"));
    }
    Run(
        path,
        [&](QWidget& dialog) {
            EXPECT_FALSE(QFileInfo::exists(path));
            test::WriteBytes(path, "somebody's");
            Ok(dialog);
        },
        Fails(58), [&](test::Answers& boxes) { boxes.Question(Question(path), true, false); });
    EXPECT_EQ(test::ReadBytes(path), "somebody's");
    QFile::remove(path);
    Run(Beside("book"), Ok, Done(1)); // a name without an extension gets that of the filter
    EXPECT_TRUE(test::ReadBytes(path).startsWith("First Name"));
}

TEST_F(ExportTest, TheDialogRemembersAConfirmedCancelOnly) {
    AddCard(1, "Ааа");
    const auto expect = [](QWidget& dialog, bool semicolon, int ticked) {
        EXPECT_EQ(dialog.findChild<QRadioButton*>("optDelimiter_1")->isChecked(), semicolon);
        int count = 0;
        for (int i = 0; i < 8; ++i)
            count += Parameters(dialog).item(i)->checkState() == Qt::Checked ? 1 : 0;
        EXPECT_EQ(count, ticked);
    };
    const auto cancelTwice = [&](QWidget& dialog) {
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
        QTest::keyClick(&dialog, Qt::Key_Escape);
    };
    Run(path, cancelTwice,
        [](test::Answers& boxes) { boxes.Question(GiveUp, false, false).Question(GiveUp, true, false); });
    // Its state came back; the close box then throws it away.
    Run(path, [&](QWidget& dialog) {
        expect(dialog, true, 7);
        dialog.close();
    });
    EXPECT_FALSE(QFileInfo::exists(path));
    const auto confirm = [&](QWidget& dialog) {
        expect(dialog, false, 8);
        QTest::keyClick(&Parameters(dialog), Qt::Key_Return); // the default button
    };
    Run(path, confirm, Done(1));
}

TEST_F(ExportTest, FailuresEndInTheBox) {
    AddCard(1, "Ааа");
    // A refused statement comes behind the opening of the file.
    for (const auto& [sql, number] : QList<QPair<QString, int>>{
             {"", 3078}, {"SELECT * FROM b01", 3078}, {"SELECT a01last FROM a01", 3265}}) {
        Run(path, Ok, Fails(number), {}, sql);
        ASSERT_TRUE(QFile::remove(path));
    }
    // The working database, under another spelling and through a link: nothing happens to either, nor to the
    // book that another program has open.
    const QString spelled = test::SpelledOtherwise(bookPath);
    const QString link = Beside("link.csv");
    ASSERT_TRUE(test::LinkByName(bookPath, link) || test::LinkFile(bookPath, link));
    const QStringList cards = Cards();
    const QString other = Beside("other.mdb");
    test::WriteBytes(other, "book");
    runtime::FileMark held;
    ASSERT_EQ(held.TakeShared(other), runtime::FileMark::Result::Taken);
    for (const QString& target : {bookPath, spelled, link, other})
        Run(target, {}, Fails(70),
            [&](test::Answers& boxes) { boxes.Question(Question(target), true, false); });
    EXPECT_EQ(Cards(), cards);
    EXPECT_EQ(test::Integrity(bookPath), QStringLiteral("ok"));
    EXPECT_TRUE(QFile::exists(link));
    EXPECT_EQ(test::ReadBytes(other), "book");
}

TEST_F(ExportTest, AFullDisk) {
    AddManyCards(2000);
    const QByteArray whole = Export(Ok, 2000);
    for (const qsizetype bytes : {qsizetype{0}, qsizetype{1}, qsizetype{512}, whole.size() - 1}) {
        SCOPED_TRACE(bytes);
        std::optional<test::SmallDisk> full;
        const auto limited = [&](QWidget& dialog) {
            full.emplace(bytes);
            Ok(dialog);
        };
        Run(path, limited, [&](test::Answers& boxes) {
            boxes.Box(Head + QStringLiteral("\r\nпроизошла ошибка №61 Диск переполнен"), Icon::Critical);
        });
        full.reset();
        const QByteArray part = test::ReadBytes(path);
        EXPECT_LE(part.size(), bytes);
        EXPECT_TRUE(whole.startsWith(part)) << "what has been written stays";
        ASSERT_TRUE(QFile::remove(path));
    }
}

/// The signed 16-bit counters.
TEST_F(ExportTest, Limits) {
    AddManyCards(32768);
    const struct {
        int rows;
        int lines;
        bool complete;
    } cases[] = {{32766, 32767, true}, {32767, 32768, false}, {32768, 1, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.rows);
        Run(path, OkWith({1}), c.complete ? Done(c.rows) : Fails(6), {},
            QStringLiteral("SELECT * FROM a01 WHERE a01clid <= %1").arg(c.rows));
        EXPECT_EQ(test::ReadBytes(path).count("\r\n"), c.lines);
        ASSERT_TRUE(QFile::remove(path));
    }
}

/// A book goes out and comes back into an empty one: the same names, the same numbers of the codes 1 to 3.
TEST_F(ExportTest, WhatGoesOutComesBack) {
    const QStringList names{"Иванов",     "Smith",        "О^Нил",           "\"Кавычки\"",
                            "№ 5 «ёлка»", "Ёжиков-Ёлкин", " пробел ",        "€¤§©®°±µ¶·",
                            "",           "%_~!",         QString(50, u'щ'), "ЁЛКА"};
    int id = 0;
    for (const QString& last : names) {
        ++id;
        AddCard(id, last, names.at(id % names.size()).left(3), id % 3 == 0 ? "" : QString::number(id));
        for (int code = 1; code <= 4; ++code)
            AddPhone(id, code, names.at((id + code) % 6) + QString::number(code));
    }
    Execute("UPDATE a01 SET a01last = 'λ日Ї' WHERE a01clid = 2");
    const auto content = [this] {
        return Rows("SELECT a01last, a01frst, a01midl, a02code, a02cval FROM a01 JOIN a02 ON a01clid = "
                    "a02clid WHERE a02code <= 3 ORDER BY a01clid, a02code");
    };
    QStringList expected = content();
    expected.replaceInStrings("λ日", "??");
    Run(path, OkWith({1, 2, 3, 5, 6, 7}, true), Done(id), {}, "SELECT * FROM a01 ORDER BY a01clid");
    Execute("DELETE FROM a01");
    Execute("DELETE FROM a02");
    const QStringList columns{"First Name", "Last Name",    "Middle Name",
                              "Home Phone", "Mobile Phone", "Business Phone"};
    // The second time every row finds its card, nothing changes.
    for (const int updated : {0, id}) {
        test::ImportFile(path, columns, test::ImportedAll(updated, id - updated), true);
        EXPECT_EQ(content(), expected);
    }
}

} // namespace
