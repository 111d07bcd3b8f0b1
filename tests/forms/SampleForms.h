#pragma once

#include "platform/forms/Controls.h"
#include "platform/forms/MdiForm.h"

#include <QStringList>

/// What the windows of the test tell of their life, in order.
QStringList& Told();
/// The same joined by blanks, and emptied.
QString TakeTold();

/// A window with a text field, a second field, a list, a multi-line editor and three buttons that tells each
/// event.
class SampleForm : public forms::Form {
    Q_OBJECT

public:
    explicit SampleForm(const QString& name, forms::Kind kind);

    void Nothing();
    void Fail();

    /// Run inside the event of that name.
    std::function<void()> inLoad;
    std::function<void()> inActivate;
    std::function<void()> inUnload;
    std::function<void()> inFind;

    int resized = 0;

    QLineEdit* txtFirst = nullptr;
    QLineEdit* txtSecond = nullptr;
    QPushButton* cmdFind = nullptr;
    QPushButton* cmdCancel = nullptr;
    QPushButton* cmdOther = nullptr;
    QWidget* txtLines = nullptr;

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Resize() override { ++resized; }
    void Form_Unload() override;
    void Form_Terminate() override;

private:
    void Tell(const QString& what);
};

/// A frame with a context menu, whose command fails.
class SampleFrame final : public forms::MdiForm {
    Q_OBJECT

public:
    SampleFrame();

protected:
    void CreateControls(QWidget* surface) override;
};
