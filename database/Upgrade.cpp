#include "database/Schema.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Process.h"
#include "shell/Declaration.h"
#include "shell/General.h"

namespace {

void Tell(const QString& text) {
    forms::MsgBox(text, forms::Icon::Critical);
}

[[noreturn]] void Refuse(const QString& text) {
    Tell(text);
    runtime::End();
}

[[noreturn]] void RefuseSeed(const QString& text) {
    Tell(text);
    gWorkspace->Rollback();
    runtime::End();
}

/// Ends the process unless the one row of the version table holds a version that this program can work with.
void CheckVersion(engine::Recordset& version) {
    if (version.RecordCount() == 0)
        Refuse(
            QStringLiteral("Нарушена целостность базы данных: в таблице v00 отсутствуют записи. Дальнейшая "
                           "работа программы не возможна."));
    version.MoveLast();
    version.MoveFirst();
    if (version.RecordCount() > 1)
        Refuse(
            QStringLiteral("Нарушена целостность базы данных: в таблице v00 более одной записи. Дальнейшая "
                           "работа программы не возможна."));
    const engine::Value value = version.Fields(u"v00vrid").Value();
    if (!value.IsNumeric())
        Refuse(
            QStringLiteral("Нарушена целостность базы данных: в таблице v00 содержится не числовое значение. "
                           "Дальнейшая работа программы не возможна."));
    if (value.Number() > General::nBaseVersion)
        Refuse(QStringLiteral(
                   "Данная версия программы может работать только с версией базы меньше либо равной ") +
               QString::number(General::nBaseVersion) + QStringLiteral(". Версия же текущей базы данных: ") +
               value.Text());
}

bool IsVersion(const engine::Recordset& version, int number) {
    return version.Fields(u"v00vrid").Value().Number() == number;
}

/// A birthday may be empty. The first rung says so behind its commit; a start that ends just there leaves it
/// to the next one.
void AllowEmptyBirthday() {
    const QString table = QStringLiteral("a01");
    if (!gDatabase->TableNames().contains(table))
        return;
    const engine::TableDef cards = gDatabase->TableDefs(table);
    for (int i = 0; i < cards.FieldsCount(); ++i) {
        if (engine::TableField field = cards.Fields(i); field.Name() == u"a01bith")
            field.SetAllowZeroLength(true);
    }
}

/// Regions, towns and birthdays came with version 2.
void RaiseToSecond(bool& bTransOpen) {
    gWorkspace->BeginTrans();
    bTransOpen = true;
    gDatabase->Execute(schema::CreateT02(), engine::dbFailOnError);
    gDatabase->Execute(schema::CreateT03(), engine::dbFailOnError);
    gDatabase->Execute(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)"), engine::dbFailOnError);
    gDatabase->Execute(QStringLiteral("UPDATE v00 SET v00vrid = 2"));
    if (!General::FillRegions(*gDatabase))
        RefuseSeed(QStringLiteral("Невозможно заполнить таблицу t02."));
    if (!General::FillCity(*gDatabase))
        RefuseSeed(QStringLiteral("Невозможно заполнить таблицу t03."));
    gWorkspace->CommitTrans();
    bTransOpen = false;
    AllowEmptyBirthday();
}

/// Events came with version 3.
void RaiseToThird(bool& bTransOpen) {
    AllowEmptyBirthday();
    gWorkspace->BeginTrans();
    bTransOpen = true;
    gDatabase->Execute(schema::CreateA03(), engine::dbFailOnError);
    gDatabase->Execute(QStringLiteral("UPDATE v00 SET v00vrid = 3"));
    gWorkspace->CommitTrans();
    bTransOpen = false;
}

} // namespace

void General::UpdateBaseIfNeed() {
    engine::Recordset version;
    bool bTransOpen = false;
    try {
        version = gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM v00"), engine::dbOpenDynaset);
        CheckVersion(version);
        if (IsVersion(version, 1)) {
            RaiseToSecond(bTransOpen);
            // A row that has been fetched keeps its values, so that a set opened anew shows the second rung.
            version = gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM v00"), engine::dbOpenDynaset);
        }
        if (IsVersion(version, 2))
            RaiseToThird(bTransOpen);
    } catch (const runtime::Failure& failure) {
        forms::ShowErrorBox(QStringLiteral("Функция UpdateBaseIfNeed:"), failure);
        if (version.IsOpen())
            version.Close();
        if (bTransOpen)
            gWorkspace->Rollback();
    }
}
