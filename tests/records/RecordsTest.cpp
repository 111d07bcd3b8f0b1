#include "tests/records/RecordsTest.h"

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
    return Listed(Grid(list), {column});
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
