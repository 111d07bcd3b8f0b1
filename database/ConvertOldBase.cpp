#include "database/ConvertOldBase.h"

#include "database/Schema.h"
#include "platform/forms/BusyPointer.h"
#include "platform/forms/MsgBox.h"

#include <QFileInfo>
#include <QHash>

namespace {

using engine::jet4::Conversion;
using engine::jet4::Report;
using engine::jet4::Table;

/// Makes a table of ours as it is in the version of the schema that the file has.
bool MakeKnownTable(engine::Database& target, const Table& table) {
    const QString birthday = QStringLiteral("a01bith");
    const QHash<QString, QString> statements{
        {QStringLiteral("a01"), schema::CreateA01(table.Find(birthday) >= 0)},
        {QStringLiteral("a02"), schema::CreateA02()},
        {QStringLiteral("a03"), schema::CreateA03()},
        {QStringLiteral("t01"), schema::CreateT01()},
        {QStringLiteral("t02"), schema::CreateT02()},
        {QStringLiteral("t03"), schema::CreateT03()},
        {QStringLiteral("v00"), schema::CreateV00()},
    };
    const QString name = table.name.toLower();
    if (!statements.contains(name))
        return false;
    target.Execute(statements[name], engine::dbFailOnError);
    if (name == QStringLiteral("a01")) {
        for (const QString& column : schema::EmptyTextColumns()) {
            if (column != birthday || table.Find(birthday) >= 0)
                target.TableDefs(name).Fields(column).SetAllowZeroLength(true);
        }
    }
    return true;
}

QString SuccessText(const QString& path, const Report& report) {
    QString text = QStringLiteral("Файл ") + path +
                   QStringLiteral(" преобразован в новый формат. Прежний файл сохранён под именем ") +
                   QFileInfo(report.kept).fileName() + u'.';
    if (!report.notCopied.isEmpty())
        text +=
            QStringLiteral("\r\n\r\nНе перенесено: ") + report.notCopied.join(QStringLiteral(", ")) + u'.';
    if (!report.withoutIndexes.isEmpty())
        text += QStringLiteral("\r\n\r\nБез ключей и индексов перенесены таблицы: ") +
                report.withoutIndexes.join(QStringLiteral(", ")) + u'.';
    return text;
}

} // namespace

engine::jet4::Rules OldBaseRules() {
    return {.requiredTables = {QStringLiteral("a01"), QStringLiteral("v00")}, .makeTable = MakeKnownTable};
}

bool OfferConversion(const QString& path) {
    if (!Conversion::IsNeeded(path))
        return true;
    forms::BusyPointer pointer;
    Conversion conversion(path, OldBaseRules());
    pointer.Release();
    const QString question = QStringLiteral("Файл ") + path +
                             QStringLiteral(" создан прежней версией программы. Преобразовать его в новый "
                                            "формат? Прежний файл сохранится рядом под именем ") +
                             conversion.KeptName() + u'.';
    if (!forms::AskYes(question))
        return false;
    pointer.Renew();
    const Report report = conversion.Run();
    pointer.Release();
    forms::MsgBox(SuccessText(path, report), forms::Icon::Information);
    return true;
}
