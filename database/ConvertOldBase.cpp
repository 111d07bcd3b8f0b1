#include "database/ConvertOldBase.h"

#include "database/Schema.h"
#include "platform/forms/BusyPointer.h"
#include "platform/forms/MsgBox.h"

#include <QFileInfo>
#include <QHash>

namespace {

using engine::jet4::Conversion;
using engine::jet4::KnownTable;
using engine::jet4::Reader;
using engine::jet4::Report;
using engine::jet4::Table;

/// The version of the schema; 0 if the table of versions does not tell it.
std::int64_t VersionOf(const Reader& reader) {
    const Table* versions = reader.Find(u"v00");
    const int place = versions ? versions->Find(u"v00vrid") : -1;
    std::int64_t version = 0;
    if (place < 0 || versions->rowCount != 1)
        return version;
    reader.ForEachRow(*versions, [&](const std::vector<engine::Value>& values) {
        const auto* held = values[static_cast<std::size_t>(place)].As<std::int64_t>();
        version = held ? *held : version;
    });
    return version;
}

QStringList TablesOfVersion(const Reader& reader) {
    const std::int64_t version = VersionOf(reader);
    QStringList tables{QStringLiteral("a02"), QStringLiteral("t01")};
    if (version >= 2)
        tables += {QStringLiteral("t02"), QStringLiteral("t03")};
    if (version >= 3)
        tables += QStringLiteral("a03");
    return tables;
}

/// A table of ours as it is in the version of the schema that the file has.
KnownTable KnownTableOf(const Reader& reader, const Table& table) {
    const QString birthday = QStringLiteral("a01bith");
    const bool withBirthday = table.Find(birthday) >= 0 || VersionOf(reader) >= 2;
    const QHash<QString, QString> statements{
        {QStringLiteral("a01"), schema::CreateA01(withBirthday)},
        {QStringLiteral("a02"), schema::CreateA02()},
        {QStringLiteral("a03"), schema::CreateA03()},
        {QStringLiteral("t01"), schema::CreateT01()},
        {QStringLiteral("t02"), schema::CreateT02()},
        {QStringLiteral("t03"), schema::CreateT03()},
        {QStringLiteral("v00"), schema::CreateV00()},
    };
    const QString name = table.name.toLower();
    KnownTable known{statements.value(name), {}};
    if (name == QStringLiteral("a01")) {
        known.emptyTexts = schema::EmptyTextColumns();
        if (!withBirthday)
            known.emptyTexts.removeOne(birthday);
    }
    return known;
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
    if (!report.renamed.isEmpty())
        text += QStringLiteral("\r\n\r\nПеренесено под другими именами: ") +
                report.renamed.join(QStringLiteral(", ")) + u'.';
    return text;
}

} // namespace

engine::jet4::Rules OldBaseRules() {
    return {.requiredTables = {QStringLiteral("a01"), QStringLiteral("v00")},
            .furtherTables = TablesOfVersion,
            .known = KnownTableOf};
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
