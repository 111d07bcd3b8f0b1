#include "tests/records/RecordsTest.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>

namespace {

QString Literal(const QString& text) {
    return text.isNull() ? QStringLiteral("NULL") : QLatin1Char('\'') + text + QLatin1Char('\'');
}

} // namespace

void RecordsTest::AddCard(int id, const QString& last, const QString& first, const QString& middle,
                          const QString& remark, const QString& bith) {
    QStringList values{QString::number(id)};
    for (const QString& text : {last, first, middle, remark, bith})
        values += Literal(text);
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) VALUES (") +
        values.join(QStringLiteral(", ")) + QStringLiteral(")"));
}

void RecordsTest::AddPhone(int card, int code, const QString& number) {
    Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, %2, %3)")
            .arg(QString::number(card), QString::number(code), Literal(number)));
}

QString RecordsTest::FocusName() {
    TakeKeyboard();
    const QWidget* focus = QApplication::focusWidget();
    return focus ? focus->objectName() : QString();
}

void RecordsTest::ClickButton(const std::shared_ptr<forms::Form>& window, const char* name) {
    Click(Control<QAbstractButton>(window, name));
}

void RecordsTest::Fill(const std::shared_ptr<forms::Form>& window, const char* field, const QString& text) {
    Fill(Control<QLineEdit>(window, field), text);
}

std::shared_ptr<ListForm> RecordsTest::OpenPair() {
    Choose("mnuBookRecords");
    return std::static_pointer_cast<ListForm>(Last("frmRecords"));
}

std::shared_ptr<ListForm> RecordsTest::OpenFilledList() {
    auto list = OpenPair();
    Find(Last("frmRecordsFilter"));
    return list;
}

forms::FlexGrid& RecordsTest::Grid(const std::shared_ptr<ListForm>& list) {
    return Control<forms::FlexGrid>(list, "gridRecords");
}

QStringList RecordsTest::Column(const std::shared_ptr<ListForm>& list, int column) {
    QStringList texts;
    for (int row = 1; row < Grid(list).Rows(); ++row)
        texts += Grid(list).TextMatrix(row, column);
    return texts;
}

void RecordsTest::ChooseInMenu(const std::shared_ptr<ListForm>& list, const char* entry,
                               const std::function<void(test::Answers&)>& expect) {
    Activate(list);
    test::Answers answers;
    answers.Menu(QStringLiteral("mnuRecords"), QString::fromLatin1(entry));
    if (expect)
        expect(answers);
    QTest::mouseClick(Grid(list).viewport(), Qt::RightButton);
}

std::shared_ptr<forms::Form> RecordsTest::OpenCard(const std::shared_ptr<ListForm>& list, const char* entry,
                                                   int row) {
    const std::size_t before = Windows("frmEditRecords").size();
    Grid(list).SetRow(row);
    ChooseInMenu(list, entry);
    const auto cards = Windows("frmEditRecords");
    return cards.size() > before ? cards.back() : nullptr;
}

QString RecordsTest::ErrorText(const QString& head, int number, const QString& description) {
    return forms::ErrorText(head, runtime::Failure(number, description));
}
