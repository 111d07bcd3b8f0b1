#include "citycodes/frmTelKodFilter.h"

#include "citycodes/frmTelKod.h"

#include <QGridLayout>

namespace {

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmTelKodFilter");
    design.caption = QStringLiteral("Фильтр: коды городов");
    design.border = forms::Border::Fixed;
    design.tag = QStringLiteral("0");
    return design;
}

} // namespace

frmTelKodFilter::frmTelKodFilter()
    : FilterForm(WindowDesign(),
                 {QStringLiteral("SELECT t02cval FROM t02 ORDER BY t02cval"),
                  QStringLiteral("Нарушена целостность базы данных: в таблице t02 отсутствуют записи.")}) {
}

void frmTelKodFilter::CreateControls(QWidget* surface) {
    const Criterion& city =
        AddTextCriterion(surface, QStringLiteral("chkCity"), QStringLiteral("Название города:"),
                         QStringLiteral("txtCity"), 50, QStringLiteral("t03cval"));
    const Criterion& cityKod =
        AddTextCriterion(surface, QStringLiteral("chkCityKod"), QStringLiteral("Код города:"),
                         QStringLiteral("txtCityKod"), 10, QStringLiteral("t03numb"));
    const Criterion& region =
        AddListCriterion(surface, QStringLiteral("chkRegion"), QStringLiteral("Регион:"),
                         QStringLiteral("lstRegion"), QStringLiteral("t02cval"));
    auto* layout = new QGridLayout(surface);
    for (const Criterion& criterion : {city, cityKod, region})
        Place(*layout, criterion);
    layout->addWidget(MakeButtonRow(surface), layout->rowCount(), 0, 1, 2);

    region.field->setMinimumWidth(surface->fontMetrics().averageCharWidth() * 44);
    region.field->setFixedHeight(forms::HeightForRows(*qobject_cast<forms::ListBox*>(region.field), 10));
    city.field->setFocus(); // the usual first move is to type a name
}

std::shared_ptr<ListForm> frmTelKodFilter::MakeList() {
    return Create<frmTelKod>();
}

QString frmTelKodFilter::Statement() const {
    return QStringLiteral("SELECT * FROM t02, t03 WHERE t02rcid = t03code") + Clauses(true) +
           QStringLiteral(" ORDER BY t02cval, t03cval");
}
