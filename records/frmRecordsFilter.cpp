#include "records/frmRecordsFilter.h"

#include "records/frmRecords.h"
#include "shared/Declaration.h"

#include <QGridLayout>
#include <QVBoxLayout>

namespace {

constexpr int NameLength = 50;
constexpr int RemarkLength = 100;
constexpr int BithLength = 20;

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmRecordsFilter");
    design.caption = QStringLiteral("Фильтр: список записей");
    design.border = forms::Border::Fixed;
    design.tag = QStringLiteral("0");
    return design;
}

void Place(QGridLayout& layout, int row, const forms::Criterion& criterion) {
    layout.addWidget(criterion.Box(), row, 0);
    layout.addWidget(criterion.Field(), row, 1);
}

} // namespace

frmRecordsFilter::frmRecordsFilter()
    : FilterForm(WindowDesign(), [] { return gDatabase; }) {
}

void frmRecordsFilter::CreateControls(QWidget* surface) {
    auto* SSTab1 = forms::MakeTabs(QStringLiteral("SSTab1"), surface);
    SSTab1->addTab(MakeRecordPage(SSTab1), QStringLiteral("Параметры записи"));
    SSTab1->addTab(MakeTelefonPage(SSTab1), QStringLiteral("Парам. тел. номеров"));

    auto* layout = new QVBoxLayout(surface);
    layout->addWidget(SSTab1);
    layout->addWidget(MakeButtonRow(surface));

    m_lastName->Field()->setFocus(); // the usual first move is to type a name
}

QWidget* frmRecordsFilter::MakeRecordPage(QWidget* parent) {
    auto* page = new QWidget(parent);
    m_lastName = AddTextCriterion(page, QStringLiteral("chkLastName"), QStringLiteral("Фамилия:"),
                                  QStringLiteral("txtLastName"), NameLength, QStringLiteral("a01last"));
    m_firstName = AddTextCriterion(page, QStringLiteral("chkFirstName"), QStringLiteral("Имя:"),
                                   QStringLiteral("txtFirstName"), NameLength, QStringLiteral("a01frst"));
    m_middleName = AddTextCriterion(page, QStringLiteral("chkMiddleName"), QStringLiteral("Отчество:"),
                                    QStringLiteral("txtMiddleName"), NameLength, QStringLiteral("a01midl"));
    m_remark = AddTextCriterion(page, QStringLiteral("chkRemark"), QStringLiteral("Заметка:"),
                                QStringLiteral("txtRemark"), RemarkLength, QStringLiteral("a01memo"));
    m_bith = AddTextCriterion(page, QStringLiteral("chkBith"), QStringLiteral("День рожд."),
                              QStringLiteral("txtBith"), BithLength, QStringLiteral("a01bith"));

    auto* layout = new QGridLayout(page);
    int row = 0;
    for (const forms::Criterion* criterion : {m_lastName, m_firstName, m_middleName, m_remark, m_bith})
        Place(*layout, row++, *criterion);
    layout->setRowStretch(row, 1);
    layout->setColumnMinimumWidth(1, page->fontMetrics().averageCharWidth() * 40);
    return page;
}

QWidget* frmRecordsFilter::MakeTelefonPage(QWidget* parent) {
    auto* page = new QWidget(parent);
    m_telefonType = AddListCriterion(page, QStringLiteral("chkTelefonType"), QStringLiteral("Тип телефона:"),
                                     QStringLiteral("lstTelefonType"), QStringLiteral("t01cval"));
    m_telefonNumber =
        AddTextCriterion(page, QStringLiteral("chkTelefonNumber"), QStringLiteral("Номер телефона:"),
                         QStringLiteral("txtTelefonNumber"), NameLength, QStringLiteral("a02cval"));

    auto* layout = new QGridLayout(page);
    Place(*layout, 0, *m_telefonType);
    layout->setAlignment(m_telefonType->Box(), Qt::AlignTop);
    layout->setRowStretch(0, 1);
    Place(*layout, 1, *m_telefonNumber);
    // The list takes the height that the other page gives; its own wish would be taller.
    m_telefonType->Field()->setMinimumHeight(page->fontMetrics().height() * 5);
    m_telefonType->Field()->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    return page;
}

std::shared_ptr<forms::ListForm> frmRecordsFilter::MakeList() {
    return Create<frmRecords>();
}

forms::FilterForm::ListSource frmRecordsFilter::Source() {
    return {qobject_cast<forms::ListBox*>(m_telefonType->Field()),
            QStringLiteral("SELECT t01cval FROM t01 where t01type = 0 ORDER BY t01code"),
            QStringLiteral("Нарушена целостность базы данных: в таблице t01 типы телефонных номеров.")};
}

QString frmRecordsFilter::Statement() const {
    QString sql = QStringLiteral("SELECT *");
    bool needsWhere = true;
    if (m_telefonType->IsTicked() || m_telefonNumber->IsTicked()) {
        sql += QStringLiteral(
            " FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code");
        needsWhere = false;
    } else {
        sql += QStringLiteral(" FROM a01");
    }
    for (const forms::Criterion* criterion :
         {m_lastName, m_firstName, m_middleName, m_remark, m_bith, m_telefonType, m_telefonNumber}) {
        if (!criterion->IsTicked())
            continue;
        sql += criterion->Clause(needsWhere ? QStringLiteral("WHERE") : QStringLiteral("AND"));
        needsWhere = false;
    }
    return sql + QStringLiteral(" ORDER BY a01last, a01frst, a01midl");
}
