#include "database/frmInstall.h"

#include "database/ConvertOldBase.h"
#include "database/DatabaseDialog.h"
#include "database/General.h"
#include "database/GiveUp.h"
#include "platform/forms/Controls.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"
#include "shared/Declaration.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

frmInstall::frmInstall()
    : Form({.name = QStringLiteral("frmInstall"),
            .caption = QStringLiteral("Мастер создания базы данных"),
            .kind = forms::Kind::Dialog,
            .border = forms::Border::Fixed,
            .tag = QStringLiteral("0")}) {
}

void frmInstall::CreateControls(QWidget* surface) {
    constexpr int Margin = 12;
    constexpr int CharactersInLine = 58;

    QLabel* welcome = forms::MakeLabel(
        QStringLiteral("Label1"),
        QStringLiteral("Добро пожаловать в мастер создания базы данных. Вы можете создать новую базу "
                       "данных или выбрать существующую. Для этого воспользуйтесь соответствующими "
                       "кнопками."),
        surface);
    welcome->setWordWrap(true);
    welcome->setMinimumWidth(welcome->fontMetrics().averageCharWidth() * CharactersInLine);
    txtDBPath = forms::MakeTextBox(QStringLiteral("txtDBPath"), 0, surface);
    txtDBPath->HoldPath();
    txtDBPath->setAccessibleName(QStringLiteral("Файл базы данных"));
    QPushButton* cmdSelect =
        forms::MakeButton(QStringLiteral("cmdSelect"), QStringLiteral("Выбрать..."), surface);
    QPushButton* cmdCreate =
        forms::MakeButton(QStringLiteral("cmdCreate"), QStringLiteral("Создать"), surface);

    auto* layout = new QVBoxLayout(surface);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(Margin);
    layout->addWidget(welcome);
    layout->addWidget(txtDBPath);
    layout->addLayout(forms::ButtonRow({cmdSelect, cmdCreate}));

    QWidget::setTabOrder(txtDBPath, cmdSelect);
    QWidget::setTabOrder(cmdSelect, cmdCreate);
    SetDefaultButton(cmdCreate);
    On(cmdSelect, &QPushButton::clicked, [this] { cmdSelect_Click(); });
    On(cmdCreate, &QPushButton::clicked, [this] { cmdCreate_Click(); });
}

void frmInstall::Form_Load() {
    const QString file = QString::fromUtf16(AppTitle) + QStringLiteral(".mdb");
    txtDBPath->setText(runtime::JoinPath(runtime::ProgramFolder(), file));
}

void frmInstall::cmdCreate_Click() {
    const QString path = txtDBPath->text();
    std::shared_ptr<runtime::OldFile> old;
    forms::BusyPointer pointer;
    try {
        if (runtime::IsPlainFile(path)) {
            pointer.Release();
            const bool overwrite = forms::AskNo(QStringLiteral("Файл ") + path +
                                                QStringLiteral("уже существует. Перезаписать его?"));
            if (!overwrite)
                return;
            pointer.Renew();
            old = std::make_shared<runtime::OldFile>(path);
        }
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = gWorkspace->PrepareDatabase(path, QString::fromUtf16(engine::dbLangGeneral),
                                                engine::dbVersion40, old);
        const bool created = General::ApplySQLToCreateDB(*gDatabase);
        if (created)
            gWorkspace->Publish(*gDatabase);
        pointer.Release();
        if (created) {
            forms::MsgBox(QStringLiteral("База данных успешно создана."), forms::Icon::Information);
            return Finish(path);
        }
        forms::MsgBox(QStringLiteral("Не удалось создать базу данных."), forms::Icon::Exclamation);
    } catch (const runtime::Failure& failure) {
        pointer.Release();
        forms::ShowErrorBox(Head("cmdCreate_Click"), failure);
    }
    GiveUp(Head("cmdCreate_Click"), gWorkspace, gDatabase, old);
}

void frmInstall::cmdSelect_Click() {
    const bool succeeded = forms::Attempt(Head("cmdSelect_Click"), [this] {
        const QString path = AskDatabaseFile(cdlInstall, Surface());
        if (path.isEmpty() || !OfferConversion(path))
            return;
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = gWorkspace->OpenDatabase(path);
        Finish(path);
    });
    if (!succeeded)
        GiveUp(Head("cmdSelect_Click"), gWorkspace, gDatabase);
}

void frmInstall::Finish(const QString& path) {
    gRegister().SaveKeyVal(QStringLiteral("DB_Path"), path);
    SetTag(QStringLiteral("1"));
    SetVisible(false);
}
