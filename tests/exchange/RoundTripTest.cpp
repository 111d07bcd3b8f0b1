#include "exchange/ExtractToCSV.h"
#include "tests/exchange/ImportMaster.h"

namespace {

class RoundTripTest : public test::ExchangeTest {
protected:
    QStringList NamesAndPhones() const {
        return Rows(
            "SELECT a01last, a01frst, a01midl, a02code, a02cval FROM a01 JOIN a02 ON a01clid = a02clid "
            "WHERE a02code <= 3 ORDER BY a01clid, a02code");
    }
};

/// A book goes out and comes back into an empty one: the same names, the same numbers of the codes 1 to 3.
TEST_F(RoundTripTest, ExportThenImport) {
    const QStringList names{"Иванов",     "Smith",        "О^Нил",           "\"Кавычки\"",
                            "№ 5 «ёлка»", "Ёжиков-Ёлкин", " пробел ",        "€¤§©®°±µ¶·",
                            "",           "%_~!",         QString(50, u'щ'), "ЁЛКА"};
    int id = 0;
    for (const QString& last : names) {
        ++id;
        AddCard(id, last, names.at(id % names.size()).left(3),
                id % 3 == 0 ? QStringLiteral("") : QString::number(id));
        for (int code = 1; code <= 4; ++code)
            AddPhone(id, code, names.at((id + code) % 6) + QString::number(code));
    }
    Execute("UPDATE a01 SET a01last = 'λ日Ї' WHERE a01clid = 2");
    const QStringList before = NamesAndPhones();

    const QString path = Beside("book.csv");
    {
        test::Answers answers;
        answers.File(path)
            .Modal("frmSelectDelimiter",
                   [](QWidget& dialog) {
                       dialog.findChild<QRadioButton*>("optDelimiter_1")->click();
                       QTest::mouseClick(dialog.findChild<QPushButton*>("cmdOk"), Qt::LeftButton);
                   })
            .Box(QStringLiteral("Экспорт данных в CSV файл успешно завершен. Экспортированно %1 записей.")
                     .arg(id),
                 forms::Icon::Information);
        exchange::ExtractToCSV(*list, "SELECT * FROM a01 ORDER BY a01clid");
    }
    Execute("DELETE FROM a01");
    Execute("DELETE FROM a02");
    const QStringList columns{"First Name", "Last Name",    "Middle Name",
                              "Home Phone", "Mobile Phone", "Business Phone"};
    test::ImportFile(path, columns, test::ImportedAll(0, id), true);

    QStringList expected = before;
    expected.replaceInStrings("λ日", "??");
    EXPECT_EQ(NamesAndPhones(), expected);

    // Once more: every row finds its card, nothing changes.
    const QStringList cards = Cards();
    test::ImportFile(path, columns, test::ImportedAll(id, 0), true);
    EXPECT_EQ(NamesAndPhones(), expected);
    EXPECT_EQ(Cards(), cards);
}

} // namespace
