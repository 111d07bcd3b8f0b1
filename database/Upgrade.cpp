#include "database/General.h"
#include "database/Schema.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Process.h"
#include "shared/Declaration.h"

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
    gDatabase->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01bith")).SetAllowZeroLength(true);
}

/// A first rung that was cut off just behind its commit has left the empty birthday forbidden: no card
/// without one could be saved. A column that others have made in their own way stays as it is.
void FinishSecond() {
    const QString table = QStringLiteral("a01");
    if (!gDatabase->TableNames().contains(table))
        return;
    const engine::TableDef cards = gDatabase->TableDefs(table);
    for (int i = 0; i < cards.FieldsCount(); ++i) {
        engine::TableField field = cards.Fields(i);
        if (field.Name() == u"a01bith" && field.Type() == engine::DataType::Text)
            field.SetAllowZeroLength(true);
    }
}

/// Events came with version 3.
void RaiseToThird(bool& bTransOpen) {
    gWorkspace->BeginTrans();
    bTransOpen = true;
    FinishSecond();
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
