#include "shared/clsRegister.h"

#include "platform/forms/MsgBox.h"
#include "platform/runtime/Process.h"
#include "platform/runtime/Settings.h"
#include "shared/Declaration.h"

namespace {

/// A deletion that failed may be passed over; else the program ends.
void AskToGoOn(const QString& head, const runtime::Failure& failure) {
    const QString question =
        forms::ErrorText(head, failure) + QStringLiteral("\r\nПродолжить работу программы?");
    if (!forms::AskNo(question, forms::Icon::Critical))
        runtime::End();
}

} // namespace

clsRegister::clsRegister()
    : strAppName(QString::fromUtf16(AppTitle))
    , strSectionName(QStringLiteral("General")) {
}

QString clsRegister::GetKeyVal(const QString& strKey) {
    try {
        return runtime::GetSetting(strAppName, strSectionName, strKey);
    } catch (const runtime::Failure& failure) {
        forms::ShowErrorBox(QStringLiteral("Класс clsRegister функция GetKeyVal:"), failure);
        return {};
    }
}

void clsRegister::SaveKeyVal(const QString& strKey, const QString& strValue) {
    try {
        runtime::SaveSetting(strAppName, strSectionName, strKey, strValue);
    } catch (const runtime::Failure& failure) {
        forms::ShowErrorBox(QStringLiteral("Класс clsRegister функция SaveKeyVal:"), failure);
    }
}

void clsRegister::SetSection(const QString& strNewSection) {
    strSectionName = strNewSection;
}

QString clsRegister::GetSectionName() const {
    return strSectionName;
}

void clsRegister::DeleteKey(const QString& strKey) {
    try {
        runtime::DeleteSetting(strAppName, strSectionName, strKey);
    } catch (const runtime::Failure& failure) {
        AskToGoOn(QStringLiteral("Класс clsRegister функция DeleteKey:"), failure);
    }
}

void clsRegister::DeleteSection(const QString& strSection) {
    try {
        runtime::DeleteSetting(strAppName, strSection);
    } catch (const runtime::Failure& failure) {
        AskToGoOn(QStringLiteral("Класс clsRegister функция DeleteSection:"), failure);
    }
}

void clsRegister::DeleteAllSection() {
    try {
        runtime::DeleteSetting(strAppName);
    } catch (const runtime::Failure& failure) {
        AskToGoOn(QStringLiteral("Класс clsRegister функция DeleteAllSection:"), failure);
    }
}
