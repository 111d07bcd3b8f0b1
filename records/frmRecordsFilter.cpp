#include "records/frmRecordsFilter.h"

#include "records/frmRecords.h"

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

} // namespace

frmRecordsFilter::frmRecordsFilter()
    : FilterForm(
          WindowDesign(),
          {QStringLiteral("SELECT t01cval FROM t01 where t01type = 0 ORDER BY t01code"),
           QStringLiteral("Нарушена целостность базы данных: в таблице t01 типы телефонных номеров.")}) {
}

void frmRecordsFilter::CreateControls(QWidget* surface) {
    auto* SSTab1 = forms::MakeTabs(QStringLiteral("SSTab1"), surface);
    SSTab1->addTab(MakeRecordPage(SSTab1), QStringLiteral("Параметры записи"));
    SSTab1->addTab(MakeTelefonPage(SSTab1), QStringLiteral("Парам. тел. номеров"));

    auto* layout = new QVBoxLayout(surface);
    layout->addWidget(SSTab1);
    layout->addWidget(MakeButtonRow(surface));

    surface->findChild<QWidget*>(QStringLiteral("txtLastName"))->setFocus(); // the usual first move
}

QWidget* frmRecordsFilter::MakeRecordPage(QWidget* parent) {
    auto* page = new QWidget(parent);
    auto* layout = new QGridLayout(page);
    const auto add = [&](const QString& box, const QString& caption, const QString& field, int length,
                         const QString& column) {
        Place(*layout, AddTextCriterion(page, box, caption, field, length, column));
    };
    add(QStringLiteral("chkLastName"), QStringLiteral("Фамилия:"), QStringLiteral("txtLastName"), NameLength,
        QStringLiteral("a01last"));
    add(QStringLiteral("chkFirstName"), QStringLiteral("Имя:"), QStringLiteral("txtFirstName"), NameLength,
        QStringLiteral("a01frst"));
    add(QStringLiteral("chkMiddleName"), QStringLiteral("Отчество:"), QStringLiteral("txtMiddleName"),
        NameLength, QStringLiteral("a01midl"));
    add(QStringLiteral("chkRemark"), QStringLiteral("Заметка:"), QStringLiteral("txtRemark"), RemarkLength,
        QStringLiteral("a01memo"));
    add(QStringLiteral("chkBith"), QStringLiteral("День рожд."), QStringLiteral("txtBith"), BithLength,
        QStringLiteral("a01bith"));
    layout->setRowStretch(layout->rowCount(), 1);
    layout->setColumnMinimumWidth(1, page->fontMetrics().averageCharWidth() * 40);
    return page;
}

QWidget* frmRecordsFilter::MakeTelefonPage(QWidget* parent) {
    auto* page = new QWidget(parent);
    const Criterion& type =
        AddListCriterion(page, QStringLiteral("chkTelefonType"), QStringLiteral("Тип телефона:"),
                         QStringLiteral("lstTelefonType"), QStringLiteral("t01cval"));
    const Criterion& number =
        AddTextCriterion(page, QStringLiteral("chkTelefonNumber"), QStringLiteral("Номер телефона:"),
                         QStringLiteral("txtTelefonNumber"), NameLength, QStringLiteral("a02cval"));

    auto* layout = new QGridLayout(page);
    Place(*layout, type);
    layout->setRowStretch(0, 1);
    Place(*layout, number);
    // The list takes the height that the other page gives; its own wish would be taller.
    type.field->setMinimumHeight(page->fontMetrics().height() * 5);
    type.field->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    return page;
}

std::shared_ptr<ListForm> frmRecordsFilter::MakeList() {
    return Create<frmRecords>();
}

QString frmRecordsFilter::Statement() const {
    const bool joined = IsTicked(u"t01cval") || IsTicked(u"a02cval");
    const QString tables =
        joined ? QStringLiteral(
                     " FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code")
               : QStringLiteral(" FROM a01");
    return QStringLiteral("SELECT *") + tables + Clauses(joined) +
           QStringLiteral(" ORDER BY a01last, a01frst, a01midl");
}
