#include "exchange/CsvColumns.h"

#include <algorithm>

namespace exchange {

std::span<const CsvColumnDesign> CsvColumns() {
    static const CsvColumnDesign columns[] = {
        {CsvColumn::FirstName, QStringLiteral("First Name"), 2, QStringLiteral("Имя")},
        {CsvColumn::LastName, QStringLiteral("Last Name"), 1, QStringLiteral("Фамилия")},
        {CsvColumn::MiddleName, QStringLiteral("Middle Name"), 3, QStringLiteral("Отчество")},
        {CsvColumn::Name, QStringLiteral("Name"), 4, QStringLiteral("ФИО")},
        {CsvColumn::HomePhone, QStringLiteral("Home Phone"), 5, QStringLiteral("Домашний телефон"), 1},
        {CsvColumn::MobilePhone, QStringLiteral("Mobile Phone"), 6, QStringLiteral("Мобильный телефон"), 2},
        {CsvColumn::BusinessPhone, QStringLiteral("Business Phone"), 7, QStringLiteral("Рабочий телефон"), 3},
        {CsvColumn::Notes, QStringLiteral("Notes"), 8, QStringLiteral("Заметка")},
    };
    return columns;
}

const CsvColumnDesign* FindImported(const QString& header) {
    const QString capitals = header.toUpper();
    for (const CsvColumnDesign& design : CsvColumns())
        if (design.column != CsvColumn::Notes && design.header.compare(capitals, Qt::CaseInsensitive) == 0)
            return &design;
    return nullptr;
}

} // namespace exchange
