#include "exchange/CsvColumns.h"

#include <algorithm>

namespace exchange {

std::span<const CsvColumnDesign> CsvColumns() {
    static const CsvColumnDesign columns[] = {
        {CsvColumn::FirstName, 2, QStringLiteral("First Name"), QStringLiteral("Имя")},
        {CsvColumn::LastName, 1, QStringLiteral("Last Name"), QStringLiteral("Фамилия")},
        {CsvColumn::MiddleName, 3, QStringLiteral("Middle Name"), QStringLiteral("Отчество")},
        {CsvColumn::Name, 4, QStringLiteral("Name"), QStringLiteral("ФИО")},
        {CsvColumn::HomePhone, 5, QStringLiteral("Home Phone"), QStringLiteral("Домашний телефон"), 1},
        {CsvColumn::MobilePhone, 6, QStringLiteral("Mobile Phone"), QStringLiteral("Мобильный телефон"), 2},
        {CsvColumn::BusinessPhone, 7, QStringLiteral("Business Phone"), QStringLiteral("Рабочий телефон"), 3},
        {CsvColumn::Notes, 8, QStringLiteral("Notes"), QStringLiteral("Заметка")},
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
