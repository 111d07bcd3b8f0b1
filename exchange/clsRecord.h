#pragma once

#include "platform/runtime/Numbers.h"

#include <QString>

#include <map>

namespace engine {
class Recordset;
}

/// One row of an imported file and its merge into the working database: the card with the same three names,
/// or a new one, takes the phones that the row carries.
class clsRecord {
public:
    /// Forgets the row; the counters stay.
    void Clear();
    /// Stores one cell under its column name, case ignored; an unknown name is passed over.
    void SetParameter(const QString& strParam, const QString& strValue);
    /// Merges the row. False, without a word to the user, for an error row; what was done before the failure
    /// stays done and counted.
    bool PutRecord();
    std::int16_t GetUpdateNumber() const { return nUpdateNumber.value(); }
    std::int16_t GetInsertNumber() const { return nInsertNumber.value(); }

private:
    bool HasName() const;
    void Merge();
    // Both give the number of the card that the row goes to, and count it.
    int UseFound(const engine::Recordset& lookup);
    int Insert(int number);
    static void ReplacePhone(int number, int code, const QString& value);

    QString strFirstName;
    QString strLastName;
    QString strMiddleName;
    std::map<int, QString> m_phones; ///< by code; those of the columns that were chosen, empty cells too
    runtime::Int16 nUpdateNumber;
    runtime::Int16 nInsertNumber;
};
