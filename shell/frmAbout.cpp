#include "shell/frmAbout.h"

#include "Product.h"
#include "platform/forms/Controls.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Texts.h"
#include "shared/Declaration.h"

#include <QGridLayout>
#include <QVBoxLayout>

namespace {

QString Version() {
    return QStringLiteral("%1.%2.%3").arg(product::Major).arg(product::Minor).arg(product::Revision);
}

QString AuthorMail() {
    return QString::fromUtf16(product::AuthorMail);
}

} // namespace

frmAbout::frmAbout()
    : Form({.name = QStringLiteral("frmAbout"),
            .caption = QStringLiteral("О программе"),
            .kind = forms::Kind::Child,
            .border = forms::Border::Fixed,
            .tag = {}}) {
}

forms::TextBox* frmAbout::AddRow(QGridLayout* grid, const QString& labelName, const QString& caption,
                                 const QString& fieldName) {
    QLabel* label = forms::MakeLabel(labelName, caption);
    forms::TextBox* field = forms::MakeTextBox(fieldName);
    forms::Lock(field);
    forms::NameField(field, fieldName, label);
    const int row = grid->rowCount();
    grid->addWidget(label, row, 0);
    grid->addWidget(field, row, 1);
    return field;
}

void frmAbout::CreateControls(QWidget* surface) {
    constexpr int Margin = 12;
    constexpr int CharactersInField = 42;
    QLabel* author =
        forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("Norvane 58, автор Orlenta+"), surface);
    QFont bold = author->font();
    bold.setBold(true);
    author->setFont(bold);
    QLabel* legal =
        forms::MakeLabel(QStringLiteral("Label2"), QString::fromUtf16(product::LegalLine), surface);
    legal->setWordWrap(true);

    auto* fields = new QGridLayout;
    fields->setHorizontalSpacing(Margin);
    txtVersion = AddRow(fields, QStringLiteral("Label3"), QStringLiteral("Версия программы:"),
                        QStringLiteral("txtVersion"));
    txtVersionBase = AddRow(fields, QStringLiteral("Label4"), QStringLiteral("Версия базы:"),
                            QStringLiteral("txtVersionBase"));
    txtUseBase = AddRow(fields, QStringLiteral("Label5"), QStringLiteral("Используется база:"),
                        QStringLiteral("txtUseBase"));
    txtCompileDate = AddRow(fields, QStringLiteral("Label7"), QStringLiteral("Дата компиляции:"),
                            QStringLiteral("txtCompileDate"));
    txtUseBase->setMinimumWidth(txtUseBase->fontMetrics().averageCharWidth() * CharactersInField);

    QLabel* invitation = forms::MakeLabel(
        QStringLiteral("Label6"),
        QStringLiteral("Все вопросы и пожелания по поводу функционала программы направляйте по "
                       "адресу: "),
        surface);
    invitation->setWordWrap(true);
    QPushButton* lblMailTo = forms::MakeButton(QStringLiteral("lblMailTo"), AuthorMail(), surface);
    lblMailTo->setFlat(true);
    lblMailTo->setCursor(Qt::PointingHandCursor);
    lblMailTo->setStyleSheet(QStringLiteral(
        "QPushButton { color: palette(link); text-decoration: underline; border: 1px solid transparent; }"
        "QPushButton:focus { border: 1px dotted palette(link); }"));

    auto* layout = new QVBoxLayout(surface);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(Margin);
    layout->addWidget(author);
    layout->addWidget(legal);
    layout->addLayout(fields);
    layout->addWidget(invitation);
    layout->addWidget(lblMailTo, 0, Qt::AlignLeft);
    QWidget::setTabOrder(txtCompileDate, lblMailTo);
    On(lblMailTo, &QPushButton::clicked, [this] { lblMailTo_Click(); });
}

void frmAbout::Form_Load() {
    forms::Attempt(Head("Form_Load"), [this] {
        txtVersion->setText(Version());
        engine::Recordset version =
            gDatabase->OpenRecordset(QStringLiteral("SELECT * FROM v00"), engine::dbOpenDynaset);
        if (version.RecordCount() != 0) {
            version.MoveLast();
            version.MoveFirst();
        }
        if (version.RecordCount() != 1) {
            forms::MsgBox(QStringLiteral("Нарушена целостность базы данных."), forms::Icon::Critical);
            return;
        }
        txtVersionBase->setText(version.Fields(u"v00vrid").Value().Text());
        version.Close();
        txtUseBase->ShowStored(gRegister().GetKeyVal(QStringLiteral("DB_Path")));
        forms::SetPlainToolTip(txtUseBase, txtUseBase->text());
        txtUseBase->setCursorPosition(0);
        txtCompileDate->setText(QStringLiteral("02.08.2006"));
    });
}

bool frmAbout::Form_KeyDown(int key, Qt::KeyboardModifiers modifiers) {
    if (key != Qt::Key_Escape || modifiers != Qt::NoModifier)
        return false;
    Unload();
    return true;
}

void frmAbout::lblMailTo_Click() {
    try {
        mpsConnect.SignOn();
        mpmMessage.SessionID = mpsConnect.SessionID;
        mpmMessage.Compose();
        mpmMessage.RecipDisplayName = QStringLiteral("Orlenta+");
        mpmMessage.RecipAddress = AuthorMail();
        mpmMessage.Send(true);
        mpsConnect.SignOff();
    } catch (const runtime::Failure& failure) {
        if (mpsConnect.IsOpen())
            mpsConnect.SignOff();
        forms::ShowErrorBox(Head("lblMailTo_Click"), failure);
    }
}
