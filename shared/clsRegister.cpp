#include "shared/clsRegister.h"

#include "platform/forms/MsgBox.h"
#include "platform/runtime/Process.h"
#include "platform/runtime/Settings.h"
#include "shared/Declaration.h"

namespace {

/// A deletion that failed may be passed over; else the program ends.
template <class Deletion>
void Delete(const char* routine, Deletion deletion) {
    try {
        deletion();
    } catch (const runtime::Failure& failure) {
        const QString head = QStringLiteral("Класс clsRegister функция %1:").arg(QLatin1String(routine));
        if (!forms::AskNo(forms::ErrorText(head, failure) +
                              QStringLiteral("\r\nПродолжить работу программы?"),
                          forms::Icon::Critical))
            runtime::End();
    }
}

} // namespace

clsRegister::clsRegister()
    : strAppName(QString::fromUtf16(AppTitle))
    , strSectionName(QStringLiteral("General")) {
}

QString clsRegister::GetKeyVal(const QString& strKey) {
    QString value;
    forms::Attempt(QStringLiteral("Класс clsRegister функция GetKeyVal:"),
                   [&] { value = runtime::GetSetting(strAppName, strSectionName, strKey); });
    return value;
}

void clsRegister::SaveKeyVal(const QString& strKey, const QString& strValue) {
    forms::Attempt(QStringLiteral("Класс clsRegister функция SaveKeyVal:"),
                   [&] { runtime::SaveSetting(strAppName, strSectionName, strKey, strValue); });
}

void clsRegister::SetSection(const QString& strNewSection) {
    strSectionName = strNewSection;
}

QString clsRegister::GetSectionName() const {
    return strSectionName;
}

void clsRegister::DeleteKey(const QString& strKey) {
    Delete("DeleteKey", [&] { runtime::DeleteSetting(strAppName, strSectionName, strKey); });
}

void clsRegister::DeleteSection(const QString& strSection) {
    Delete("DeleteSection", [&] { runtime::DeleteSetting(strAppName, strSection); });
}

void clsRegister::DeleteAllSection() {
    Delete("DeleteAllSection", [&] { runtime::DeleteSetting(strAppName); });
}
