#include "SampleForms.h"

#include "platform/runtime/Failure.h"

#include <QMenu>
#include <QPlainTextEdit>
#include <QVBoxLayout>

QStringList& Told() {
    static QStringList told;
    return told;
}

QString TakeTold() {
    return std::exchange(Told(), {}).join(u' ');
}

SampleForm::SampleForm(const QString& name, forms::Kind kind)
    : Form({.name = name,
            .caption = QStringLiteral("Окно ") + name,
            .kind = kind,
            .border = forms::Border::Fixed,
            .tag = QStringLiteral("0")}) {
}

void SampleForm::Tell(const QString& what) {
    Told().append(Name() + u'.' + what);
}

void SampleForm::CreateControls(QWidget* surface) {
    auto* label = forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("Первое:"), surface);
    txtFirst = forms::MakeTextBox(QStringLiteral("txtFirst"), 50, surface);
    forms::NameField(txtFirst, QStringLiteral("txtFirst"), label);
    txtSecond = forms::MakeTextBox(QStringLiteral("txtSecond"), 0, surface);
    txtSecond->setAccessibleName(QStringLiteral("Второе"));
    auto* lines = forms::Named(new QPlainTextEdit(surface), QStringLiteral("txtLines"));
    lines->setAccessibleName(QStringLiteral("Строки"));
    lines->setTabChangesFocus(true);
    txtLines = lines;
    cmdFind = forms::MakeButton(QStringLiteral("cmdFind"), QStringLiteral("&Find"), surface);
    cmdOther = forms::MakeButton(QStringLiteral("cmdOther"), QStringLiteral("Другое"), surface);
    cmdCancel = forms::MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"), surface);
    auto* layout = new QVBoxLayout(surface);
    for (QWidget* control :
         std::initializer_list<QWidget*>{label, txtFirst, txtSecond, txtLines, cmdFind, cmdOther, cmdCancel})
        layout->addWidget(control);

    SetDefaultButton(cmdFind);
    SetCancelButton(cmdCancel);
    OnLostFocus(txtFirst, [this] {
        forms::ReplaceApostrophes(txtFirst);
        Tell(QStringLiteral("left"));
    });
    OnGotFocus(txtSecond, [this] { Tell(QStringLiteral("got")); });
    On(cmdFind, &QPushButton::clicked, [this] {
        Tell(QStringLiteral("find(") + txtFirst->text() + u')');
        if (inFind)
            inFind();
    });
    On(cmdOther, &QPushButton::clicked, [this] { Tell(QStringLiteral("other")); });
    On(cmdCancel, &QPushButton::clicked, [this] { Tell(QStringLiteral("cancel")); });
}

void SampleForm::Form_Load() {
    Tell(QStringLiteral("load"));
    if (inLoad)
        inLoad();
}

void SampleForm::Form_Activate() {
    Tell(QStringLiteral("activate"));
    if (inActivate)
        inActivate();
}

void SampleForm::Form_Unload() {
    Tell(QStringLiteral("unload"));
    if (inUnload)
        inUnload();
}

void SampleForm::Form_Terminate() {
    Tell(QStringLiteral("terminate"));
}

void SampleForm::Nothing() {
    Tell(QStringLiteral("nothing"));
}

void SampleForm::Fail() {
    runtime::Raise(runtime::DivisionByZero);
}

SampleFrame::SampleFrame()
    : MdiForm({.name = QStringLiteral("frmMain"),
               .caption = {},
               .kind = forms::Kind::Frame,
               .tag = {},
               .size = QSize(760, 700)}) {
}

void SampleFrame::CreateControls(QWidget* /*surface*/) {
    AddCommand(AddMenu(QStringLiteral("mnuContext"), QStringLiteral("Меню"), false),
               QStringLiteral("mnuContextFail"), QStringLiteral("Сбой"),
               [this] { CallActive(&SampleForm::Fail); });
}
