#include "database/General.h"
#include "database/SeedData.h"
#include "platform/engine/dao/Database.h"
#include "platform/forms/MsgBox.h"

#include <QStringBuilder>

namespace {

QString Text(const char16_t* text) {
    return QString::fromUtf16(text);
}

/// Writes the towns of the regions, each under the number that its region has in `t02`. False, after a box,
/// if a region is not there.
bool FillTowns(engine::Database& db, std::span<const seed::Region> regions) {
    engine::Recordset rows = db.OpenRecordset(QStringLiteral("SELECT * FROM t02"), engine::dbOpenDynaset);
    for (const seed::Region& region : regions) {
        const QString name = Text(region.name);
        rows.FindFirst(QStringLiteral("t02cval= '") + name + u'\'');
        if (rows.NoMatch()) {
            forms::MsgBox(QStringLiteral("Ошибка целостности базы данных: отсутствует регион '") + name +
                              QStringLiteral("'."),
                          forms::Icon::Critical);
            return false;
        }
        const QString number = QString::number(rows.Fields(u"t02rcid").Value().Long());
        for (const seed::Town& town : region.towns)
            db.Execute(QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (") % number %
                           QStringLiteral(", '") % QStringView(town.name) % QStringLiteral("', ") %
                           QString::number(town.code) % u')',
                       engine::dbFailOnError);
    }
    return true;
}

} // namespace

bool General::FillRegions(engine::Database& db) {
    return forms::Attempt(QStringLiteral("General функция FillRegions:"), [&] {
        for (const seed::Region& region : seed::AllRegions())
            db.Execute(QStringLiteral("INSERT INTO t02 (t02cval) VALUES ('") + Text(region.name) +
                           QStringLiteral("')"),
                       engine::dbFailOnError);
    });
}

bool General::FillCity(engine::Database& db) {
    return forms::Attempt(QStringLiteral("General функция FillCity:"),
                          [&] { return FillTowns(db, seed::FirstRegions()) && FillCity1(db); });
}

bool General::FillCity1(engine::Database& db) {
    return forms::Attempt(QStringLiteral("General функция FillCity1:"),
                          [&] { return FillTowns(db, seed::LastRegions()); });
}
