#pragma once

#include "platform/engine/dao/Recordset.h"
#include "platform/forms/Controls.h"
#include "platform/forms/Form.h"
#include "platform/runtime/Numbers.h"
#include "shared/ListForm.h"

#include <functional>
#include <optional>
#include <vector>

class QBoxLayout;

/// The card: one record of a01 with its phones. Tag is the number of the record, empty for a new one; a
/// disabled cmdSave makes it a view.
class frmEditRecords final : public forms::Form {
    Q_OBJECT

public:
    frmEditRecords();

    /// The list that is told of every change.
    void SetFrm(std::shared_ptr<ListForm> ptr);
    /// Turns the loaded card into a view: nothing can be changed, saved or deleted.
    void LockForView();

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Load() override;
    void Form_Activate() override;

private:
    class SlotTable;

    QWidget* MakeRecordFrame(QWidget* parent);
    QBoxLayout* MakeTelefonRow(QWidget* parent);
    QBoxLayout* MakeButtonRow(QWidget* parent);
    void SetTabOrder();
    void ConnectControls();

    bool LoadCard();
    QString TypesStatement();
    void LoadTypes(engine::Recordset& types, SlotTable& slots);
    bool LoadRecord();
    void LoadTelefonNumbers(const SlotTable& slots);
    void ShowFirstType();
    void DisableAfterFailedLoad();

    void lstTelefonType_Click();
    void lstTelefonType_KeyPress(const QString& text);
    void txtTelefonNumber_Change();
    void txtTelefonNumber_LostFocus();
    void cmdSave_Click();
    void cmdDelete_Click();

    bool CheckBith();
    bool ConfirmNameless();
    bool Save();
    std::optional<QString> UpdateRecord();
    QString Assignments() const;
    QStringList SparedCodes() const;
    QString InsertRecord();
    bool DeleteRecord();
    QString OwnRecord();
    QString ShownPerson() const;
    void KnowAs(const QString& person);
    void TellOtherCards(const std::function<void(frmEditRecords&)>& tell);
    bool InsertTelefonNumbers(const QString& id);
    /// A new record becomes the list's current one.
    void RefreshListAndUnload(const QString& newId);

    QPointer<forms::TextBox> txtLastName;
    QPointer<forms::TextBox> txtFirstName;
    QPointer<forms::TextBox> txtMiddleName;
    QPointer<forms::TextBox> txtBith;
    QPointer<forms::TextBox> txtRemark;
    QPointer<forms::ListBox> lstTelefonType;
    QPointer<forms::TextBox> txtTelefonNumber;
    QPointer<QPushButton> cmdSave;
    QPointer<QPushButton> cmdCancel;
    QPointer<QPushButton> cmdDelete;

    std::vector<QString> strTelefonNumbers; ///< one for each place of lstTelefonType
    QStringList m_codes;                    ///< of these types
    std::int16_t nTelefonIndex = -1;        ///< whose number txtTelefonNumber shows; -1: nobody's
    std::shared_ptr<ListForm> frmRecordsPtr;
    bool m_read = false;
    /// Conditions that tell the record of this card from another one under its number: whose it is, as it was
    /// read and as the cards of this program have written it since. None: it is deleted.
    QStringList m_persons;
    QString m_newId;            ///< of the record that a new card has written
    QStringList m_foreignCodes; ///< of phones whose type does not exist: not shown, spared by a save
};
