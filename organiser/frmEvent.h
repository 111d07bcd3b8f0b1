#pragma once

#include "platform/forms/Form.h"

#include <QDate>

class QRadioButton;

namespace forms {
class DTPicker;
class TextBox;
} // namespace forms

namespace General {

/// The event dialog, modal: a new event for number -1, else the event of that number.
void ShowEventDialog(const QString& strCaption, QDate dtDate, std::int32_t nEventId);

} // namespace General

/// The dialog of one event. Its Tag tells what to do: -1 a new event, else the number of the event to change.
class frmEvent : public forms::Form {
    Q_OBJECT

public:
    frmEvent();

    void SetEventDate(QDate date);

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Activate() override;

private:
    void cmdSaveEvent_Click();
    void LoadEvent();

    QPointer<forms::DTPicker> dtpEventDate;
    QPointer<forms::TextBox> txtEventName;
    QPointer<QRadioButton> optEventPeriod[2];
};
