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

namespace {

forms::Design DesignOf(const QString& name, forms::Kind kind, forms::Border border) {
    forms::Design design;
    design.name = name;
    design.caption = QStringLiteral("Окно ") + name;
    design.kind = kind;
    design.border = border;
    design.tag = QStringLiteral("0");
    design.size = QSize(400, 300);
    return design;
}

} // namespace

SampleForm::SampleForm(const QString& name, forms::Kind kind, forms::Border border)
    : Form(DesignOf(name, kind, border)) {
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

bool SampleForm::Form_KeyDown(int key, Qt::KeyboardModifiers /*modifiers*/) {
    if (key != Qt::Key_F9)
        return false;
    Tell(QStringLiteral("F9"));
    return true;
}

void SampleForm::Refill(int argument) {
    Tell(QStringLiteral("refill(%1)").arg(argument));
}

void SampleForm::Nothing() {
    Tell(QStringLiteral("nothing"));
}

void SampleForm::Fail() {
    runtime::Raise(runtime::DivisionByZero);
}

SampleFrame::SampleFrame()
    : MdiForm([] {
        forms::Design design =
            DesignOf(QStringLiteral("frmMain"), forms::Kind::Frame, forms::Border::Sizable);
        design.size = QSize(760, 700);
        return design;
    }()) {
}

void SampleFrame::CreateControls(QWidget* /*surface*/) {
    QMenu* book = AddMenu(QStringLiteral("mnuBook"), QStringLiteral("Книга"));
    AddCommand(book, QStringLiteral("mnuBookFail"), QStringLiteral("Сбой"),
               [this] { CallActive(&SampleForm::Fail); });
    QMenu* context = AddMenu(QStringLiteral("mnuContext"), QStringLiteral("Меню"), false);
    AddCommand(context, QStringLiteral("mnuContextRefill"), QStringLiteral("Обновить"),
               [this] { CallActive(&SampleForm::Refill, 7); });
    AddSeparator(context, QStringLiteral("mnuContextSeparator"));
    AddCommand(context, QStringLiteral("mnuContextClose"), QStringLiteral("Закрыть"),
               [this] { ActiveForm()->Unload(); });
    windows = AddMenu(QStringLiteral("mnuWindows"), QStringLiteral("Окна"));
    AddCommand(windows, QStringLiteral("mnuWindowCascade"), QStringLiteral("Каскад"),
               [this] { Arrange(Cascade); });
    SetWindowList(windows);
}

void SampleFrame::Form_Unload() {
    Told().append(QStringLiteral("frmMain.unload"));
}
