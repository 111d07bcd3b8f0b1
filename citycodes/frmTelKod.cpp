#include "citycodes/frmTelKod.h"

#include "citycodes/frmTelKodFilter.h"

namespace {

constexpr int NameWidth = 5000;

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmTelKod");
    design.caption = QStringLiteral("Коды городов");
    design.size = QSize(840, 420);
    return design;
}

ListDesign TownList() {
    ListDesign list;
    list.gridName = QStringLiteral("gridTelKod");
    list.contextMenu = QStringLiteral("mnuTelKod");
    list.defaultStatement =
        QStringLiteral("SELECT * FROM t02, t03 WHERE t02rcid = t03code ORDER BY t02cval, t03cval");
    list.columns = {{QStringLiteral("Регион"), QStringLiteral("t02cval"), NameWidth},
                    {QStringLiteral("Город"), QStringLiteral("t03cval"), NameWidth},
                    {QStringLiteral("Код"), QStringLiteral("t03numb")}};
    list.searchColumn = 1;
    return list;
}

} // namespace

frmTelKod::frmTelKod()
    : ListForm(WindowDesign(), TownList()) {
}

std::shared_ptr<FilterForm> frmTelKod::MakeFilter() {
    return Create<frmTelKodFilter>();
}
