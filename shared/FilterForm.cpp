#include "shared/FilterForm.h"

#include "platform/forms/MsgBox.h"
#include "platform/runtime/Numbers.h"
#include "shared/Declaration.h"
#include "shared/ListForm.h"

#include <QGridLayout>
#include <QHBoxLayout>

#include <algorithm>
#include <map>

using forms::ListBox;
using forms::TextBox;

FilterForm::FilterForm(forms::Design design, Entries entries)
    : Form(std::move(design))
    , m_entries(std::move(entries)) {
}

// --- Controls

const Criterion& FilterForm::AddTextCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                              const QString& fieldName, int maxLength,
                                              const QString& column) {
    TextBox* field = forms::MakeTextBox(fieldName, maxLength, parent);
    const Criterion& criterion = AddCriterion(parent, boxName, caption, fieldName, field, column);
    On(field, &QLineEdit::textChanged, [&criterion, field] { Tick(criterion, !field->text().isEmpty()); });
    OnLostFocus(field, [&criterion, field] {
        const bool ticked = criterion.box->isChecked(); // perhaps unticked by hand before
        forms::ReplaceApostrophes(field);
        Tick(criterion, ticked);
    });
    return criterion;
}

const Criterion& FilterForm::AddListCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                              const QString& fieldName, const QString& column) {
    m_box = new ListBox(parent);
    const Criterion& criterion = AddCriterion(parent, boxName, caption, fieldName, m_box, column);
    On(m_box, &ListBox::Click, [this, &criterion] { Tick(criterion, m_box->ListIndex() >= 0); });
    return criterion;
}

const Criterion& FilterForm::AddCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                          const QString& fieldName, QWidget* field, const QString& column) {
    auto* box = forms::Named(new QCheckBox(caption, parent), boxName);
    const Criterion& criterion =
        m_criteria.emplace_back(Criterion{box, forms::Named(field, fieldName), column});
    field->setAccessibleName(caption);
    forms::PaintField(field, false);
    On(box, &QCheckBox::toggled, [field](bool ticked) { forms::PaintField(field, ticked); });
    return criterion;
}

void FilterForm::Place(QGridLayout& layout, const Criterion& criterion) {
    const int row = layout.count() == 0 ? 0 : layout.rowCount();
    layout.addWidget(criterion.box, row, 0);
    layout.addWidget(criterion.field, row, 1);
    if (qobject_cast<ListBox*>(criterion.field))
        layout.setAlignment(criterion.box, Qt::AlignTop);
}

void FilterForm::OrderFields() const {
    std::map<const QWidget*, std::pair<QList<QWidget*>, QList<QWidget*>>> pages;
    for (const Criterion& criterion : m_criteria) {
        auto& [fields, boxes] = pages[criterion.box->parentWidget()];
        fields += criterion.field;
        boxes += criterion.box;
    }
    for (const auto& [page, controls] : pages) {
        const QList<QWidget*> order = controls.first + controls.second;
        for (qsizetype i = 1; i < order.size(); ++i)
            QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

void FilterForm::Tick(const Criterion& criterion, bool ticked) {
    criterion.box->setChecked(ticked);
    forms::PaintField(criterion.field, ticked);
}

bool FilterForm::IsTicked(QStringView column) const {
    return std::any_of(m_criteria.begin(), m_criteria.end(), [column](const Criterion& criterion) {
        return criterion.column == column && criterion.box->isChecked();
    });
}

QString FilterForm::Clauses(bool behindConditions) const {
    QString clauses;
    for (const Criterion& criterion : m_criteria) {
        if (!criterion.box->isChecked())
            continue;
        const auto* text = qobject_cast<QLineEdit*>(criterion.field);
        clauses += behindConditions ? QStringLiteral(" AND ") : QStringLiteral(" WHERE ");
        clauses += criterion.column + (text ? QStringLiteral(" LIKE '") : QStringLiteral(" = '"));
        clauses += (text ? text->text() : m_box->List(m_box->ListIndex())) + u'\'';
        behindConditions = true;
    }
    return clauses;
}

QWidget* FilterForm::MakeButtonRow(QWidget* parent) {
    auto* row = forms::Named(new QWidget(parent), QStringLiteral("buttonRow"));
    QPushButton* cmdFind = forms::MakeButton(QStringLiteral("cmdFind"), QStringLiteral("Найти"), row);
    QPushButton* cmdCancel = forms::MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"), row);
    QHBoxLayout* layout = forms::ButtonRow({cmdFind, cmdCancel});
    layout->setContentsMargins(0, 0, 0, 0);
    row->setLayout(layout);

    SetDefaultButton(cmdFind);
    SetCancelButton(cmdCancel);
    On(cmdFind, &QPushButton::clicked, [this] { cmdFind_Click(); });
    On(cmdCancel, &QPushButton::clicked, [this] { cmdCancel_Click(); });
    return row;
}

// --- The list

void FilterForm::Form_Load() {
    OrderFields();
    forms::Attempt(Head("Form_Load"), [this] {
        engine::Recordset rows = gDatabase->OpenRecordset(m_entries.statement, engine::dbOpenDynaset);
        if (rows.RecordCount() == 0) {
            forms::MsgBox(m_entries.emptyMessage, forms::Icon::Critical);
            return;
        }
        rows.MoveLast();
        rows.MoveFirst();
        for (; !rows.EndOfFile(); rows.MoveNext())
            m_box->AddItem(rows.Fields(0).Text());
        rows.Close();
        std::shared_ptr<ListForm> list = m_list.lock();
        if (!list)
            m_list = list = MakeList();
        list->Show();
        Attach(*list);
    });
}

void FilterForm::Attach(ListForm& list) {
    list.SetFilterPtr(std::static_pointer_cast<FilterForm>(shared_from_this()), false);
    SetTag(QStringLiteral("1"));
}

/// The list behind Find and Cancel; null, and the filter is gone, if its load has failed.
std::shared_ptr<ListForm> FilterForm::AttachedList() {
    std::shared_ptr<ListForm> list = m_list.lock();
    if (!list)
        Unload();
    else if (runtime::Val(Tag()) != 1)
        Attach(*list);
    return list;
}

void FilterForm::cmdFind_Click() {
    const QString sql = Statement();
    const std::shared_ptr<ListForm> list = AttachedList();
    if (!list)
        return;
    list->DoNotFillGrid(true);
    list->FillGrid(sql);
    SetVisible(false);
}

void FilterForm::cmdCancel_Click() {
    const std::shared_ptr<ListForm> list = AttachedList();
    if (!list)
        return;
    SetVisible(false);
    list->DoNotFillGrid(false);
}

void FilterForm::Form_Terminate() {
    if (const std::shared_ptr<ListForm> list = m_list.lock())
        list->SetFilterPtr(nullptr, true);
}
