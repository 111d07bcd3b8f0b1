#pragma once

#include <QString>

/// The program's settings in the per-user store. No operation fails towards its caller: each shows its own
/// box.
class clsRegister {
public:
    clsRegister();

    /// The empty text if the key does not exist.
    QString GetKeyVal(const QString& strKey);
    void SaveKeyVal(const QString& strKey, const QString& strValue);
    void SetSection(const QString& strNewSection);
    QString GetSectionName() const;
    void DeleteKey(const QString& strKey);
    /// The section named, whatever the current one, which does not change.
    void DeleteSection(const QString& strSection);
    void DeleteAllSection();

private:
    QString strAppName;
    QString strSectionName;
};
