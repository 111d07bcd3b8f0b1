#include "citycodes/frmTelKodFilter.h"

#include "citycodes/frmTelKod.h"
#include "shared/Declaration.h"

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
    : FilterForm(WindowDesign(), [] { return gDatabase; }) {
}

void frmTelKodFilter::CreateControls(QWidget* surface) {
    m_city = AddTextCriterion(surface, QStringLiteral("chkCity"), QStringLiteral("Название города:"),
                              QStringLiteral("txtCity"), 50, QStringLiteral("t03cval"));
    m_cityKod = AddTextCriterion(surface, QStringLiteral("chkCityKod"), QStringLiteral("Код города:"),
                                 QStringLiteral("txtCityKod"), 10, QStringLiteral("t03numb"));
    m_region = AddListCriterion(surface, QStringLiteral("chkRegion"), QStringLiteral("Регион:"),
                                QStringLiteral("lstRegion"), QStringLiteral("t02cval"));

    auto* layout = new QGridLayout(surface);
    int row = 0;
    for (const forms::Criterion* criterion : {m_city, m_cityKod, m_region}) {
        layout->addWidget(criterion->Box(), row, 0);
        layout->addWidget(criterion->Field(), row++, 1);
    }
    layout->setAlignment(m_region->Box(), Qt::AlignTop);
    layout->addWidget(MakeButtonRow(surface), row, 0, 1, 2);

    m_region->Field()->setMinimumWidth(surface->fontMetrics().averageCharWidth() * 44);
    m_region->Field()->setFixedHeight(forms::HeightForRows(*Source().list, 10));
    m_city->Field()->setFocus(); // the usual first move is to type a name
}

std::shared_ptr<forms::ListForm> frmTelKodFilter::MakeList() {
    return Create<frmTelKod>();
}

QString frmTelKodFilter::Statement() const {
    QString statement = QStringLiteral("SELECT * FROM t02, t03 WHERE t02rcid = t03code");
    for (const forms::Criterion* criterion : {m_city, m_cityKod, m_region}) {
        if (criterion->IsTicked())
            statement += criterion->Clause(QStringLiteral("AND"));
    }
    return statement + QStringLiteral(" ORDER BY t02cval, t03cval");
}

forms::FilterForm::ListSource frmTelKodFilter::Source() {
    return {qobject_cast<forms::ListBox*>(m_region->Field()),
            QStringLiteral("SELECT t02cval FROM t02 ORDER BY t02cval"),
            QStringLiteral("Нарушена целостность базы данных: в таблице t02 отсутствуют записи.")};
}
