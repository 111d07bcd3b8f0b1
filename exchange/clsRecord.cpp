#include "exchange/clsRecord.h"

#include "exchange/CsvColumns.h"
#include "platform/runtime/Failure.h"
#include "shared/Declaration.h"

#include <QStringBuilder>

void clsRecord::Clear() {
    strFirstName.clear();
    strLastName.clear();
    strMiddleName.clear();
    m_phones.clear();
}

void clsRecord::SetParameter(const QString& strParam, const QString& strValue) {
    const exchange::CsvColumnDesign* design = exchange::FindImported(strParam);
    if (!design)
        return;
    switch (design->column) {
    case exchange::CsvColumn::Name:
    case exchange::CsvColumn::FirstName:
        strFirstName = strValue;
        break;
    case exchange::CsvColumn::LastName:
        strLastName = strValue;
        break;
    case exchange::CsvColumn::MiddleName:
        strMiddleName = strValue;
        break;
    default:
        m_phones[design->phoneCode] = strValue;
        break;
    }
}

bool clsRecord::PutRecord() {
    if (!HasName())
        return false;
    try {
        Merge();
        return true;
    } catch (const runtime::Failure&) {
        return false;
    }
}

bool clsRecord::HasName() const {
    return !runtime::Trim(strMiddleName).isEmpty() || !runtime::Trim(strLastName).isEmpty() ||
           !runtime::Trim(strFirstName).isEmpty();
}

void clsRecord::Merge() {
    const engine::Recordset highest =
        gDatabase->OpenRecordset(QStringLiteral("SELECT MAX(a01clid) FROM a01"), engine::dbOpenDynaset);
    const engine::Value last = highest.Fields(0).Value();
    // Held to 16 bits also for a row that will find its card.
    const runtime::Int16 newNumber{last.IsNull() ? 1 : std::int64_t{last.Long()} + 1};

    const engine::Recordset lookup =
        gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM a01 WHERE a01frst LIKE '") % strFirstName %
                                     QStringLiteral("' AND a01midl LIKE '") % strMiddleName %
                                     QStringLiteral("' AND a01last LIKE '") % strLastName % u'\'',
                                 engine::dbOpenDynaset);
    const int number = lookup.RecordCount() != 0 ? UseFound(lookup) : Insert(newNumber);
    for (const auto& [code, phone] : m_phones)
        ReplacePhone(number, code, phone);
}

int clsRecord::UseFound(const engine::Recordset& lookup) {
    const runtime::Int16 number{lookup.Fields(u"a01clid").Value().Long()};
    ++nUpdateNumber;
    return number;
}

int clsRecord::Insert(int number) {
    gDatabase->Execute(
        QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo) VALUES ( ") %
            QString::number(number) % QStringLiteral(", '") % strLastName % QStringLiteral("', '") %
            strFirstName % QStringLiteral("', '") % strMiddleName %
            QStringLiteral("', 'Импортирован из файла')"),
        engine::dbFailOnError);
    ++nInsertNumber;
    return number;
}

void clsRecord::ReplacePhone(int number, int code, const QString& value) {
    const QString card = QString::number(number);
    gDatabase->Execute(QStringLiteral("DELETE FROM a02 WHERE a02clid = ") % card %
                           QStringLiteral(" AND a02code = ") % QString::number(code),
                       engine::dbFailOnError);
    gDatabase->Execute(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (") % card %
                           QStringLiteral(",  ") % QString::number(code) % QStringLiteral(", '") % value %
                           QStringLiteral("')"),
                       engine::dbFailOnError);
}
