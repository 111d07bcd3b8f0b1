#include "platform/forms/FilterForm.h"

#include "platform/forms/ListForm.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Numbers.h"

#include <QHBoxLayout>

#include <map>

namespace forms {

FilterForm::FilterForm(Design design, std::function<std::shared_ptr<engine::Database>()> database)
    : Form(std::move(design))
    , m_database(std::move(database)) {
}

// --- Controls

Criterion* FilterForm::AddTextCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                        const QString& fieldName, int maxLength, const QString& column) {
    auto* box = Named(new QCheckBox(caption, parent), boxName);
    TextBox* field = MakeTextBox(fieldName, maxLength, parent);
    Criterion* criterion = AddCriterion(std::make_unique<Criterion>(box, field, column));
    On(field, &QLineEdit::textChanged,
       [this, criterion, field] { Tick(*criterion, !field->text().isEmpty()); });
    OnLostFocus(field, [this, criterion, field] {
        const bool ticked = criterion->IsTicked(); // the rule may run behind a box that was unticked by hand
        ReplaceApostrophes(field);
        Tick(*criterion, ticked);
    });
    return criterion;
}

Criterion* FilterForm::AddListCriterion(QWidget* parent, const QString& boxName, const QString& caption,
                                        const QString& fieldName, const QString& column) {
    auto* box = Named(new QCheckBox(caption, parent), boxName);
    auto* list = Named(new ListBox(parent), fieldName);
    Criterion* criterion = AddCriterion(std::make_unique<Criterion>(box, list, column));
    On(list, &ListBox::Click, [this, criterion, list] { Tick(*criterion, list->ListIndex() >= 0); });
    return criterion;
}

Criterion* FilterForm::AddCriterion(std::unique_ptr<Criterion> made) {
    if (m_criteriaOf != Surface()) { // those of an earlier load have lost their controls
        m_criteria.clear();
        m_criteriaOf = Surface();
    }
    Criterion* criterion = m_criteria.emplace_back(std::move(made)).get();
    criterion->Field()->setAccessibleName(criterion->Box()->text());
    PaintField(criterion->Field(), false);
    On(criterion->Box(), &QCheckBox::toggled,
       [criterion] { PaintField(criterion->Field(), criterion->IsTicked()); });
    return criterion;
}

void FilterForm::OrderFields() {
    std::map<const QWidget*, std::pair<QList<QWidget*>, QList<QWidget*>>> pages;
    for (const auto& criterion : m_criteria) {
        auto& [fields, boxes] = pages[criterion->Box()->parentWidget()];
        fields += criterion->Field();
        boxes += criterion->Box();
    }
    for (const auto& [page, controls] : pages) {
        const QList<QWidget*> order = controls.first + controls.second;
        for (qsizetype i = 1; i < order.size(); ++i)
            QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

void FilterForm::Tick(Criterion& criterion, bool ticked) {
    criterion.Box()->setChecked(ticked);
    PaintField(criterion.Field(), criterion.IsTicked());
}

QWidget* FilterForm::MakeButtonRow(QWidget* parent) {
    auto* row = Named(new QWidget(parent), QStringLiteral("buttonRow"));
    QPushButton* cmdFind = MakeButton(QStringLiteral("cmdFind"), QStringLiteral("Найти"), row);
    QPushButton* cmdCancel = MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"), row);
    QHBoxLayout* layout = ButtonRow({cmdFind, cmdCancel});
    layout->setContentsMargins(0, 0, 0, 0);
    row->setLayout(layout);

    SetDefaultButton(cmdFind);
    SetCancelButton(cmdCancel);
    On(cmdFind, &QPushButton::clicked, [this] { cmdFind_Click(); });
    On(cmdCancel, &QPushButton::clicked, [this] { cmdCancel_Click(); });
    return row;
}

// --- Events

void FilterForm::Form_Load() {
    OrderFields();
    engine::Recordset rows;
    try {
        const ListSource source = Source();
        rows = Database().OpenRecordset(source.statement, engine::dbOpenDynaset);
        if (rows.RecordCount() == 0) {
            MsgBox(source.emptyMessage, Icon::Critical);
            return;
        }
        rows.MoveLast();
        rows.MoveFirst();
        for (; !rows.EndOfFile(); rows.MoveNext())
            source.list->AddItem(rows.Fields(0).Text());
        rows.Close();
        List().Show();
        Attach();
        SetTag(QStringLiteral("1"));
    } catch (const runtime::Failure& failure) {
        ShowErrorBox(Name() + QStringLiteral(" функция Form_Load:"), failure);
    }
}

void FilterForm::Form_Terminate() {
    if (m_list)
        m_list->SetFilterPtr(nullptr, true);
}

void FilterForm::cmdFind_Click() {
    if (!m_list) // its load has failed
        return Unload();
    const QString sql = Statement();
    AttachIfNew();
    List().DoNotFillGrid(true);
    List().FillGrid(sql);
    SetTag(QStringLiteral("1"));
    SetVisible(false);
}

void FilterForm::cmdCancel_Click() {
    if (!m_list)
        return Unload();
    AttachIfNew();
    SetTag(QStringLiteral("1"));
    SetVisible(false);
    List().DoNotFillGrid(false);
}

// --- The list

engine::Database& FilterForm::Database() const {
    const std::shared_ptr<engine::Database> database = m_database();
    if (!database)
        runtime::Raise(runtime::ObjectNotSet);
    return *database;
}

ListForm& FilterForm::List() {
    if (!m_list)
        m_list = MakeList();
    return *m_list;
}

void FilterForm::Attach() {
    List().SetFilterPtr(std::static_pointer_cast<FilterForm>(shared_from_this()), false);
}

void FilterForm::AttachIfNew() {
    if (runtime::Val(Tag()) != 1)
        Attach();
}

} // namespace forms
