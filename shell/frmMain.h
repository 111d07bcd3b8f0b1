#pragma once

#include "platform/forms/CommonDialog.h"
#include "platform/forms/MdiForm.h"

/// The frame: menu bar, the windows within it, and the hidden menus that serve them as context menus. Its
/// commands start windows, arrange them, or call a named operation of the active one.
class frmMain final : public forms::MdiForm {
    Q_OBJECT

public:
    frmMain();

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Load() override;

private:
    void MakeBookMenu();
    void MakeSettingsMenu();
    void MakeRecordsMenu();
    void MakeCalendarMenu();
    void MakeTelKodMenu();
    void MakeWindowsMenu();
    void MakeHelpMenu();

    void mnuBookNewBase_Click();
    void mnuRecordsRefresh_Click();

    forms::CommonDialog cdlMain{QStringLiteral("cdlMain")};
};
