#include "records/frmEditRecords.h"

#include "platform/engine/EngineError.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Texts.h"
#include "platform/runtime/Dates.h"
#include "shared/Declaration.h"

#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <array>
#include <unordered_map>

namespace {

constexpr int NameLength = 50;
constexpr int RemarkLength = 100;
constexpr int BithLength = 20;
constexpr int NumberLength = 50;

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmEditRecords");
    design.border = forms::Border::Fixed;
    return design;
}

void ShowIntegrityBox(const QString& what) {
    forms::MsgBox(QStringLiteral("Ошибка целостности базы данных:\r\n") + what, forms::Icon::Critical);
}

QString NoTypes() {
    return QStringLiteral("в базе данных отсутствуют записи для типов телефонов.");
}

QString NoRecord() {
    return QStringLiteral("в базе данных отсутствует запись по данному клиенту.");
}

QString SeveralRecords() {
    return QStringLiteral("в базе данных присутствует несколько записей по данному клиенту.");
}

void ShowFilled(forms::TextBox* field, const engine::Recordset& record, QStringView column) {
    const engine::Value value = record.Fields(column).Value();
    if (value.IsFilled())
        field->ShowStored(value.Text());
}

void Execute(const QString& sql) {
    gDatabase->Execute(sql, engine::dbFailOnError);
}

QString Quoted(const QString& text) {
    return QLatin1Char('\'') + text + QLatin1Char('\'');
}

/// The condition that a column holds the text; NULL is as empty as the empty text. Of one longer than any
/// field takes its length and its beginning are compared: the whole would make the statement too long.
QString Holds(const QString& column, const QString& text) {
    QString part = forms::Beginning(text, RemarkLength).toString();
    const qsizetype length = part.size();
    part.replace(QLatin1Char('\''), QLatin1String("''"));
    if (length == text.size())
        return column + QStringLiteral(" & '' = ") + Quoted(part);
    return QStringLiteral("LEN(%1) = %2 AND LEFT(%1, %3) = ").arg(column).arg(text.size()).arg(length) +
           Quoted(part);
}

/// The condition that a record is of this person: all three names are the same, or the birthday and one name
/// are, as far as there are any.
QString IsPerson(const std::array<QString, 3>& names, const QString& bith) {
    static const std::array columns{"a01last", "a01frst", "a01midl"};
    QStringList all;
    QStringList filled;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        all += Holds(QLatin1String(columns[i]), names[i]);
        if (!names[i].isEmpty())
            filled += all.back();
    }
    QString condition = all.join(QLatin1String(" AND "));
    if (!bith.isEmpty() && !filled.isEmpty())
        condition += QStringLiteral(" OR ") + Holds(QStringLiteral("a01bith"), bith) +
                     QStringLiteral(" AND (") + filled.join(QLatin1String(" OR ")) + QStringLiteral(")");
    return condition;
}

bool IsBlank(const QLineEdit* field) {
    return runtime::Trim(field->text()).isEmpty();
}

/// Longer than any number that can be typed: of a file from elsewhere, and not seen whole.
bool IsLong(const QString& number) {
    return number.size() > NumberLength;
}

} // namespace

/// Which place of the list a phone code has.
class frmEditRecords::SlotTable {
public:
    void Set(std::int32_t code, std::int16_t slot) { m_slots[Checked(code)] = slot; }

    std::optional<std::int16_t> Find(std::int32_t code) const {
        const auto found = m_slots.find(Checked(code));
        return found == m_slots.end() ? std::nullopt : std::optional(found->second);
    }

private:
    static constexpr std::int32_t MaxCode = 32000;

    static std::int32_t Checked(std::int32_t code) {
        if (code < 0 || code > MaxCode)
            runtime::Raise(runtime::SubscriptOutOfRange);
        return code;
    }

    std::unordered_map<std::int32_t, std::int16_t> m_slots;
};

frmEditRecords::frmEditRecords()
    : Form(WindowDesign()) {
}

void frmEditRecords::SetFrm(std::shared_ptr<ListForm> ptr) {
    frmRecordsPtr = std::move(ptr);
}

void frmEditRecords::LockForView() {
    cmdDelete->setEnabled(false);
    cmdSave->setEnabled(false);
    for (QLineEdit* field : {txtLastName, txtFirstName, txtMiddleName, txtTelefonNumber, txtRemark, txtBith})
        forms::Lock(field);
    txtBith->setPlaceholderText({});
}

void frmEditRecords::CreateControls(QWidget* surface) {
    auto* layout = new QVBoxLayout(surface);
    layout->addWidget(MakeRecordFrame(surface));
    layout->addLayout(MakeTelefonRow(surface));
    layout->addSpacing(layout->spacing());
    layout->addLayout(MakeButtonRow(surface));
    SetTabOrder();
    ConnectControls();
}

QWidget* frmEditRecords::MakeRecordFrame(QWidget* parent) {
    auto* Frame1 =
        forms::Named(new QGroupBox(QStringLiteral("Параметры записи:"), parent), QStringLiteral("Frame1"));
    auto* layout = new QGridLayout(Frame1);
    const auto addField = [&](const QString& labelName, const QString& caption, const QString& name,
                              int maxLength) {
        const int row = layout->rowCount();
        auto* label = forms::MakeLabel(labelName, caption, Frame1);
        auto* field = forms::MakeTextBox(name, maxLength, Frame1);
        forms::NameField(field, name, label);
        layout->addWidget(label, row, 0);
        layout->addWidget(field, row, 1);
        return field;
    };
    txtLastName = addField(QStringLiteral("lblLastName"), QStringLiteral("Фамилия:"),
                           QStringLiteral("txtLastName"), NameLength);
    txtFirstName = addField(QStringLiteral("lblFirstName"), QStringLiteral("Имя:"),
                            QStringLiteral("txtFirstName"), NameLength);
    txtMiddleName = addField(QStringLiteral("lblMiddleName"), QStringLiteral("Отчество:"),
                             QStringLiteral("txtMiddleName"), NameLength);
    txtBith = addField(QStringLiteral("lblBith"), QStringLiteral("День рожден.:"), QStringLiteral("txtBith"),
                       BithLength);
    txtBith->setPlaceholderText(QStringLiteral("дд.мм.гггг"));
    txtRemark = addField(QStringLiteral("lblRemark"), QStringLiteral("Заметка:"), QStringLiteral("txtRemark"),
                         RemarkLength);
    layout->setColumnMinimumWidth(1, Frame1->fontMetrics().averageCharWidth() * 48);
    return Frame1;
}

QBoxLayout* frmEditRecords::MakeTelefonRow(QWidget* parent) {
    auto* typeLabel = forms::MakeLabel(QStringLiteral("lblTelefonType"), QStringLiteral("Телефон:"), parent);
    lstTelefonType = new forms::ListBox(parent);
    forms::NameField(lstTelefonType, QStringLiteral("lstTelefonType"), typeLabel);
    lstTelefonType->setFixedHeight(forms::HeightForRows(*lstTelefonType, 7));

    auto* numberLabel =
        forms::MakeLabel(QStringLiteral("lblTelefonNumber"), QStringLiteral("Номер телефона:"), parent);
    txtTelefonNumber = forms::MakeTextBox(QStringLiteral("txtTelefonNumber"), NumberLength, parent);
    forms::NameField(txtTelefonNumber, QStringLiteral("txtTelefonNumber"), numberLabel);

    auto* layout = new QHBoxLayout;
    auto* types = new QVBoxLayout;
    types->addWidget(typeLabel);
    types->addWidget(lstTelefonType);
    auto* number = new QVBoxLayout;
    number->addWidget(numberLabel);
    number->addWidget(txtTelefonNumber);
    number->addStretch();
    layout->addLayout(types, 4);
    layout->addLayout(number, 3);
    return layout;
}

QBoxLayout* frmEditRecords::MakeButtonRow(QWidget* parent) {
    cmdSave = forms::MakeButton(QStringLiteral("cmdSave"), QStringLiteral("Сохранить"), parent);
    cmdCancel = forms::MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"), parent);
    cmdDelete = forms::MakeButton(QStringLiteral("cmdDelete"), QStringLiteral("Удалить"), parent);
    QBoxLayout* row = forms::ButtonRow({cmdSave, cmdCancel, cmdDelete});
    row->insertSpacing(row->indexOf(cmdDelete), cmdDelete->fontMetrics().height()); // not hit in passing
    return row;
}

void frmEditRecords::SetTabOrder() {
    QWidget* const order[] = {txtLastName,    txtFirstName,     txtMiddleName, txtBith,   txtRemark,
                              lstTelefonType, txtTelefonNumber, cmdSave,       cmdCancel, cmdDelete};
    for (std::size_t i = 1; i < std::size(order); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

void frmEditRecords::ConnectControls() {
    for (QLineEdit* field : {txtLastName, txtFirstName, txtMiddleName, txtRemark})
        OnLostFocus(field, [field] { forms::ReplaceApostrophes(field); });
    On(txtTelefonNumber, &forms::TextBox::Edited, [this] { txtTelefonNumber_Change(); });
    OnLostFocus(txtTelefonNumber, [this] { txtTelefonNumber_LostFocus(); });
    On(lstTelefonType, &forms::ListBox::Click, [this] { lstTelefonType_Click(); });
    On(lstTelefonType, &forms::ListBox::KeyPress,
       [this](const QString& text) { lstTelefonType_KeyPress(text); });
    SetDefaultButton(cmdSave);
    SetCancelButton(cmdCancel);
    On(
        cmdSave, &QPushButton::clicked, [this] { cmdSave_Click(); },
        QStringLiteral("frmEditRecord функция cmdSave_Click:"));
    On(cmdCancel, &QPushButton::clicked, [this] { Unload(); });
    On(
        cmdDelete, &QPushButton::clicked, [this] { cmdDelete_Click(); },
        QStringLiteral("frmEditRecord функция cmdDelete_Click:"));
}

void frmEditRecords::Form_Load() {
    strTelefonNumbers.clear();
    m_codes.clear();
    nTelefonIndex = -1;
    m_read = false;
    m_persons.clear();
    m_newId.clear();
    m_foreignCodes.clear();
}

// reading

void frmEditRecords::Form_Activate() {
    if (m_read) // coming back to the card keeps what the user has typed
        return;
    m_read = true;
    try {
        if (!LoadCard())
            Unload();
    } catch (const runtime::Failure& failure) {
        DisableAfterFailedLoad();
        forms::ShowErrorBox(Head("Form_Activate"), failure);
    }
}

/// False, after a box, if the database has no sound data for the card.
bool frmEditRecords::LoadCard() {
    engine::Recordset types = gDatabase->OpenRecordset(TypesStatement(), engine::dbOpenDynaset);
    if (types.RecordCount() == 0 && cmdSave->isEnabled()) {
        ShowIntegrityBox(NoTypes());
        return false;
    }
    SlotTable slots;
    LoadTypes(types, slots);
    if (Tag().isEmpty()) {
        cmdDelete->setEnabled(false);
    } else {
        if (!LoadRecord())
            return false;
        LoadTelefonNumbers(slots);
    }
    types.Close();
    ShowFirstType();
    return true;
}

QString frmEditRecords::TypesStatement() {
    if (!Tag().isEmpty() && !cmdSave->isEnabled())
        return QStringLiteral("SELECT * FROM t01, a02 WHERE a02clid = ") + Tag() +
               QStringLiteral(" AND a02code = t01code AND t01type = 0 ORDER BY t01code");
    return QStringLiteral("SELECT * FROM t01 WHERE t01type = 0 ORDER BY t01code");
}

void frmEditRecords::LoadTypes(engine::Recordset& types, SlotTable& slots) {
    for (; !types.EndOfFile(); types.MoveNext()) {
        const engine::Value name = types.Fields(u"t01cval").Value();
        if (!name.IsFilled())
            continue;
        const runtime::Int16 slot(lstTelefonType->ListCount());
        lstTelefonType->AddItem(name.Text());
        strTelefonNumbers.emplace_back();
        m_codes.append(types.Fields(u"t01code").Text());
        slots.Set(types.Fields(u"t01code").Value().Long(), slot.value());
    }
}

/// False, after a box, if the card's record is missing or doubled.
bool frmEditRecords::LoadRecord() {
    engine::Recordset record = gDatabase->OpenRecordset(
        QStringLiteral("SELECT * FROM a01 WHERE a01clid = ") + Tag(), engine::dbOpenDynaset);
    if (record.RecordCount() < 1) {
        ShowIntegrityBox(NoRecord());
        return false;
    }
    record.MoveLast();
    record.MoveFirst();
    if (record.RecordCount() >= 2) {
        ShowIntegrityBox(SeveralRecords());
        return false;
    }
    ShowFilled(txtLastName, record, u"a01last");
    ShowFilled(txtFirstName, record, u"a01frst");
    ShowFilled(txtMiddleName, record, u"a01midl");
    ShowFilled(txtRemark, record, u"a01memo");
    ShowFilled(txtBith, record, u"a01bith");
    const auto text = [&record](QStringView column) { return record.Fields(column).Text(); };
    KnowAs(IsPerson({text(u"a01last"), text(u"a01frst"), text(u"a01midl")}, text(u"a01bith")));
    return true;
}

void frmEditRecords::LoadTelefonNumbers(const SlotTable& slots) {
    engine::Recordset numbers =
        gDatabase->OpenRecordset(QStringLiteral("SELECT a02code, a02cval FROM a02 WHERE a02clid = ") + Tag() +
                                     QStringLiteral(" ORDER BY a02code"),
                                 engine::dbOpenDynaset);
    for (; !numbers.EndOfFile(); numbers.MoveNext()) {
        const std::int32_t code = numbers.Fields(u"a02code").Value().Long();
        const std::optional<std::int16_t> slot = slots.Find(code);
        if (!slot) {
            if (const QString text = QString::number(code); !m_foreignCodes.contains(text))
                m_foreignCodes.append(text);
            continue;
        }
        const engine::Value number = numbers.Fields(u"a02cval").Value();
        if (number.IsFilled())
            strTelefonNumbers[*slot] = runtime::Trim(number.Text());
    }
}

void frmEditRecords::ShowFirstType() {
    if (lstTelefonType->ListCount() > 0)
        lstTelefonType->SetListIndex(0); // shows its number
}

void frmEditRecords::DisableAfterFailedLoad() {
    nTelefonIndex = -1;
    for (QWidget* control :
         std::initializer_list<QWidget*>{cmdSave, cmdDelete, lstTelefonType, txtTelefonNumber})
        control->setEnabled(false);
}

// phones

void frmEditRecords::lstTelefonType_Click() {
    txtTelefonNumber_LostFocus(); // a pick by other means than mouse and keys comes without a change of focus
    nTelefonIndex = runtime::Int16(lstTelefonType->ListIndex()).value();
    txtTelefonNumber->ShowStored(nTelefonIndex < 0 ? QString()
                                                   : runtime::Trim(strTelefonNumbers[nTelefonIndex]));
}

/// What is typed stands in place of the number, as behind Tab.
void frmEditRecords::lstTelefonType_KeyPress(const QString& text) {
    txtTelefonNumber->setFocus();
    txtTelefonNumber->selectAll();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, text);
    QApplication::sendEvent(txtTelefonNumber, &press);
}

void frmEditRecords::txtTelefonNumber_Change() {
    if (nTelefonIndex >= 0)
        strTelefonNumbers[nTelefonIndex] = txtTelefonNumber->text();
}

void frmEditRecords::txtTelefonNumber_LostFocus() {
    if (txtTelefonNumber->isReadOnly())
        return;
    forms::ReplaceApostrophes(txtTelefonNumber);
    for (QString& number : strTelefonNumbers) // those that the file held, too: they are written anew
        if (!IsLong(number))
            number.replace(u'\'', u'^');
}

// writing

void frmEditRecords::cmdSave_Click() {
    if (Tag().isEmpty())
        m_newId.clear();
    try {
        if (!CheckBith() || !ConfirmNameless() || !Save())
            return;
        forms::MsgBox(QStringLiteral("Запись успешно сохранена в базу данных."), forms::Icon::Information);
        RefreshListAndUnload(m_newId);
    } catch (const engine::UnsyncedCommit&) {
        if (!m_newId.isEmpty())
            SetTag(m_newId); // the record is in the file: the next try is not for a second one
        throw;
    }
}

bool frmEditRecords::CheckBith() {
    if (txtBith->text().isEmpty() || txtBith->ShowsPart() || runtime::IsDate(txtBith->text()))
        return true;
    forms::MsgBox(QStringLiteral("Не правильный формат даты."), forms::Icon::Exclamation);
    txtBith->setFocus();
    return false;
}

bool frmEditRecords::ConfirmNameless() {
    if (!IsBlank(txtLastName) || !IsBlank(txtFirstName) || !IsBlank(txtMiddleName))
        return true;
    return forms::AskNo(
        QStringLiteral("Вы действительно хотите сохранить запись с не заполнеными полями 'Фамилия', "
                       "'Имя' и 'Отчество'?"));
}

/// False, after a box, if the database no longer has what the card stands on.
bool frmEditRecords::Save() {
    const std::optional<QString> id = Tag().isEmpty() ? InsertRecord() : UpdateRecord();
    return id && InsertTelefonNumbers(*id);
}

/// Behind FROM or SET: the record that the card was opened for. Its number alone may belong to somebody else
/// by now. Whether it does behind a change of another program is told by names and birthday. The condition is
/// part of the statement that writes, so nobody comes in between.
QString frmEditRecords::OwnRecord() {
    return QStringLiteral(" WHERE a01clid = ") + Tag() + QStringLiteral(" AND (") +
           m_persons.join(QLatin1String(" OR ")) + QStringLiteral(")");
}

void frmEditRecords::KnowAs(const QString& person) {
    if (!m_persons.contains(person))
        m_persons += person;
}

/// Calls for the other cards of this program on the same record.
void frmEditRecords::TellOtherCards(const std::function<void(frmEditRecords&)>& tell) {
    for (const auto& form : Loaded()) {
        auto* card = dynamic_cast<frmEditRecords*>(form.get());
        if (card && card != this && card->Tag() == Tag() && !card->m_persons.isEmpty())
            tell(*card);
    }
}

/// Writes the record and takes its phones out, to be written anew. Nothing, after a box, if the record is no
/// longer there: phones written then would belong to no card, or to another one.
std::optional<QString> frmEditRecords::UpdateRecord() {
    if (m_persons.isEmpty()) {
        ShowIntegrityBox(NoRecord());
        return std::nullopt;
    }
    const QString id = Tag();
    Execute(QStringLiteral("UPDATE a01 SET ") + Assignments() + OwnRecord());
    if (gDatabase->RecordsAffected() == 0) {
        ShowIntegrityBox(NoRecord());
        return std::nullopt;
    }
    const QString person = ShownPerson();
    KnowAs(person);
    TellOtherCards([&](frmEditRecords& card) { card.KnowAs(person); });
    QString removal = QStringLiteral("DELETE FROM a02 WHERE a02clid = ") + id;
    if (const QStringList spared = SparedCodes(); !spared.isEmpty())
        removal +=
            QStringLiteral(" AND a02code NOT IN (") + spared.join(QStringLiteral(", ")) + QStringLiteral(")");
    Execute(removal);
    return id;
}

/// The columns with what their fields hold. One of which only a part was seen stays in the file as it is.
QString frmEditRecords::Assignments() const {
    const struct {
        const forms::TextBox* field;
        const char* column;
    } columns[] = {{txtLastName, "a01last"},
                   {txtFirstName, "a01frst"},
                   {txtMiddleName, "a01midl"},
                   {txtRemark, "a01memo"},
                   {txtBith, "a01bith"}};
    QStringList assignments;
    for (const auto& column : columns)
        if (!column.field->ShowsPart())
            assignments.append(QLatin1String(column.column) + QStringLiteral(" = ") +
                               Quoted(column.field->text()));
    return assignments.isEmpty() ? QStringLiteral("a01clid = a01clid")
                                 : assignments.join(QStringLiteral(", "));
}

/// The codes of the phones that a save leaves alone: their type does not exist, or not all of their number
/// was seen.
QStringList frmEditRecords::SparedCodes() const {
    QStringList codes = m_foreignCodes;
    for (std::size_t slot = 0; slot < strTelefonNumbers.size(); ++slot)
        if (IsLong(strTelefonNumbers[slot]))
            codes.append(m_codes[static_cast<qsizetype>(slot)]);
    return codes;
}

/// Writes a new record under the highest number plus one, which it returns.
QString frmEditRecords::InsertRecord() {
    engine::Recordset next =
        gDatabase->OpenRecordset(QStringLiteral("SELECT max(a01clid) + 1 FROM a01"), engine::dbOpenDynaset);
    next.MoveFirst();
    const engine::Value number = next.Fields(0).Value();
    QString id = number.IsFilled() ? number.Text() : QStringLiteral("1");
    next.Close();
    Execute(
        QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) VALUES (") +
        id + QStringLiteral(", ") + Quoted(txtLastName->text()) + QStringLiteral(", ") +
        Quoted(txtFirstName->text()) + QStringLiteral(", ") + Quoted(txtMiddleName->text()) +
        QStringLiteral(", ") + Quoted(txtRemark->text()) + QStringLiteral(", ") + Quoted(txtBith->text()) +
        QStringLiteral(")"));
    m_newId = id;
    m_persons = {ShownPerson()};
    return id;
}

QString frmEditRecords::ShownPerson() const {
    return IsPerson({txtLastName->Value(), txtFirstName->Value(), txtMiddleName->Value()}, txtBith->Value());
}

/// One row for each number. False, after a box, if a type is no longer there.
bool frmEditRecords::InsertTelefonNumbers(const QString& id) {
    engine::Recordset types =
        gDatabase->OpenRecordset(QStringLiteral("SELECT t01code, t01cval FROM t01 WHERE t01type = 0"));
    for (int i = 0; i < lstTelefonType->ListCount(); ++i) {
        const QString number = runtime::Trim(strTelefonNumbers[static_cast<std::size_t>(i)]);
        if (number.isEmpty() || IsLong(number))
            continue;
        types.FindFirst(QStringLiteral("t01cval= ") + Quoted(lstTelefonType->List(i)));
        if (types.NoMatch()) {
            ShowIntegrityBox(NoTypes());
            return false;
        }
        Execute(QStringLiteral("INSERT INTO a02 (a02clid, a02cval, a02code) VALUES (") + id +
                QStringLiteral(", ") + Quoted(number) + QStringLiteral(", ") +
                types.Fields(u"t01code").Text() + QStringLiteral(")"));
    }
    return true;
}

void frmEditRecords::cmdDelete_Click() {
    if (!forms::AskNo(QStringLiteral("Вы действительно хотите удалить запись из базы данных?")) ||
        !DeleteRecord())
        return;
    forms::MsgBox(QStringLiteral("Запись успешно удалена из базы данных."), forms::Icon::Information);
    TellOtherCards([](frmEditRecords& card) { card.m_persons.clear(); });
    RefreshListAndUnload({});
}

/// False, after a box, if the number belongs to somebody else now. If it is nobody's the phones that a
/// cut-off deletion has left go all the same.
bool frmEditRecords::DeleteRecord() {
    const QString record = QStringLiteral("SELECT a01clid FROM a01 WHERE a01clid = ") + Tag();
    if (!m_persons.isEmpty())
        Execute(QStringLiteral("DELETE FROM a01") + OwnRecord());
    if (gDatabase->OpenRecordset(record, engine::dbOpenDynaset).RecordCount() != 0) {
        ShowIntegrityBox(NoRecord());
        return false;
    }
    Execute(QStringLiteral("DELETE FROM a02 WHERE a02clid = ") + Tag() + QStringLiteral(" AND NOT EXISTS (") +
            record + QStringLiteral(")"));
    return true;
}

void frmEditRecords::RefreshListAndUnload(const QString& newId) {
    if (frmRecordsPtr && frmRecordsPtr->IsLoaded()) { // the list can have been closed before the card
        frmRecordsPtr->FillGrid({});
        if (!newId.isEmpty())
            frmRecordsPtr->MakeCurrent(newId);
    }
    Unload();
}
