#include "database/frmInstall.h"

#include "database/ConvertOldBase.h"
#include "database/DatabaseDialog.h"
#include "database/General.h"
#include "platform/forms/Controls.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"
#include "shared/Declaration.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

const QString CreateHead = QStringLiteral("frmInstall функция cmdCreate_Click:");
const QString SelectHead = QStringLiteral("frmInstall функция cmdSelect_Click:");

/// What a route has bound so far, and the file that it may replace. If the route fails it is given up again
/// in the order of GiveUp.
class Binding {
public:
    explicit Binding(QString head)
        : m_head(std::move(head)) {}

    /// The user has agreed to lose the file: whether the route succeeds or fails, it is not there afterwards.
    void Overwrite(const QString& path) { m_old = std::make_shared<runtime::OldFile>(path); }

    void OpenWorkspace() {
        gWorkspace = engine::DBEngine::Workspaces(0);
        m_workspaceOpen = true;
    }

    void OpenDatabase(const QString& path) {
        gDatabase = gWorkspace->OpenDatabase(path);
        m_databaseOpen = true;
    }

    void CreateDatabase(const QString& path) {
        gDatabase = gWorkspace->PrepareDatabase(path, QString::fromUtf16(engine::dbLangGeneral),
                                                engine::dbVersion40, m_old);
        m_databaseOpen = true;
    }

    void GiveUp() const {
        if (m_databaseOpen) {
            gDatabase->Discard();
            gDatabase.reset();
        }
        if (m_old)
            forms::Attempt(m_head, [this] { engine::DBEngine::KillDatabase(*m_old); });
        if (m_workspaceOpen) {
            forms::Attempt(m_head, [] { gWorkspace->Close(); });
            gWorkspace.reset();
        }
    }

private:
    QString m_head;
    std::shared_ptr<runtime::OldFile> m_old;
    bool m_databaseOpen = false;
    bool m_workspaceOpen = false;
};

} // namespace

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
    forms::BusyPointer pointer;
    Binding binding(CreateHead);
    try {
        if (runtime::IsPlainFile(path)) {
            pointer.Release();
            const bool overwrite = forms::AskNo(QStringLiteral("Файл ") + path +
                                                QStringLiteral("уже существует. Перезаписать его?"));
            if (!overwrite)
                return;
            pointer.Renew();
            binding.Overwrite(path);
        }
        binding.OpenWorkspace();
        binding.CreateDatabase(path);
        const bool created = General::ApplySQLToCreateDB(*gDatabase);
        if (created)
            gWorkspace->Publish(*gDatabase);
        pointer.Release();
        if (created) {
            forms::MsgBox(QStringLiteral("База данных успешно создана."), forms::Icon::Information);
            Finish(path);
        } else {
            forms::MsgBox(QStringLiteral("Не удалось создать базу данных."), forms::Icon::Exclamation);
            binding.GiveUp();
        }
    } catch (const runtime::Failure& failure) {
        pointer.Release();
        forms::ShowErrorBox(CreateHead, failure);
        binding.GiveUp();
    }
}

void frmInstall::cmdSelect_Click() {
    Binding binding(SelectHead);
    try {
        const QString path = AskDatabaseFile(cdlInstall, Surface());
        if (path.isEmpty() || !OfferConversion(path))
            return;
        binding.OpenWorkspace();
        binding.OpenDatabase(path);
        Finish(path);
    } catch (const runtime::Failure& failure) {
        forms::ShowErrorBox(SelectHead, failure);
        binding.GiveUp();
    }
}

void frmInstall::Finish(const QString& path) {
    gRegister().SaveKeyVal(QStringLiteral("DB_Path"), path);
    SetTag(QStringLiteral("1"));
    SetVisible(false);
}
