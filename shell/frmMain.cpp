#include "shell/frmMain.h"

#include "database/DatabaseDialog.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"
#include "platform/runtime/Process.h"
#include "shared/Commands.h"
#include "shared/Declaration.h"
#include "shell/General.h"
#include "shell/Guide.h"
#include "shell/frmAbout.h"

#include <QGuiApplication>
#include <QMainWindow>
#include <QMenu>
#include <QScreen>
#include <QShortcut>

namespace {

constexpr int WidthForTheCodeList = 850; ///< logical pixels; in a narrower frame its last column is cut

/// Most of the screen, but no more than the windows of the program can use.
QSize StartingSize() {
    constexpr QSize Largest(1440, 960);
    constexpr double Share = 0.85;
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? (screen->availableSize() * Share).boundedTo(Largest) : Largest;
}

} // namespace

frmMain::frmMain()
    : MdiForm({.name = QStringLiteral("frmMain"),
               .caption = QStringLiteral("Завелик"),
               .kind = forms::Kind::Frame,
               .border = forms::Border::Sizable,
               .tag = {},
               .size = StartingSize()}) {
}

void frmMain::CreateControls(QWidget* /*surface*/) {
    MakeBookMenu();
    MakeSettingsMenu();
    MakeRecordsMenu();
    MakeCalendarMenu();
    MakeTelKodMenu();
    MakeWindowsMenu();
    MakeHelpMenu();
    On(new QShortcut(QKeySequence(Qt::Key_F1), Window()), &QShortcut::activated, ShowGuide);
}

void frmMain::Form_Load() {
    if (Window()->width() < WidthForTheCodeList)
        Window()->setWindowState(Window()->windowState() | Qt::WindowMaximized);
    SetCaption(Caption() + QStringLiteral(" - ") + gRegister().GetKeyVal(QStringLiteral("DB_Path")));
}

void frmMain::MakeBookMenu() {
    QMenu* menu = AddMenu(QStringLiteral("mnuBook"), QStringLiteral("Книга"));
    AddCommand(menu, QStringLiteral("mnuBookRecords"), QStringLiteral("Записи..."),
               General::ShowRecordsFilter);
    AddCommand(menu, QStringLiteral("mnuBookCalendar"), QStringLiteral("Органайзер..."),
               General::ShowCalendar);
    AddCommand(menu, QStringLiteral("mnuBookTelKod"), QStringLiteral("Коды городов..."),
               General::ShowTelKodFilter);
    AddSeparator(menu, QStringLiteral("mnuBookSeparator1"));
    AddCommand(menu, QStringLiteral("mnuBookNewBase"), QStringLiteral("Выбрать другую базу..."),
               [this] { mnuBookNewBase_Click(); });
    AddSeparator(menu, QStringLiteral("mnuBookSeparator3"));
    AddCommand(menu, QStringLiteral("mnuBookImport"), QStringLiteral("Импорт книги из CSV файла..."),
               General::ShowImportMaster);
    AddSeparator(menu, QStringLiteral("mnuBookSeparator2"));
    AddCommand(menu, QStringLiteral("mnuBookExit"), QStringLiteral("Выход"), [this] { Unload(); });
}

void frmMain::MakeSettingsMenu() {
    QMenu* menu = AddMenu(QStringLiteral("mnuSettings"), QStringLiteral("Настройки"));
    AddCommand(menu, QStringLiteral("mnuSettingsTelefonType"), QStringLiteral("Типы телефонных номеров..."),
               General::ShowEditTelefonType);
    AddCommand(menu, QStringLiteral("mnuSettingsSQLVIEW"), QStringLiteral("SQL наблюдатель..."),
               General::ShowUserEditor);
}

void frmMain::MakeRecordsMenu() {
    QMenu* menu = AddMenu(QStringLiteral("mnuRecords"), QStringLiteral("Меню записей"), false);
    const auto editRecord = [this](int action) {
        return [this, action] { CallActive(&Commands::EditRecord, action); };
    };
    AddCommand(menu, QStringLiteral("mnuRecordsRefresh"), QStringLiteral("Обновить"),
               [this] { mnuRecordsRefresh_Click(); });
    AddSeparator(menu, QStringLiteral("mnuRecordsSeparator1"));
    AddCommand(menu, QStringLiteral("mnuRecordsFilter"), QStringLiteral("Фильтр"),
               [this] { CallActive(&Commands::ShowFilter); });
    AddSeparator(menu, QStringLiteral("mnuRecordsSeparator2"));
    AddCommand(menu, QStringLiteral("mnuRecordsAdd"), QStringLiteral("Добавить запись"), editRecord(1));
    AddCommand(menu, QStringLiteral("mnuRecordsEdit"), QStringLiteral("Изменить запись"), editRecord(0));
    AddCommand(menu, QStringLiteral("mnuRecordsView"), QStringLiteral("Посмотреть запись"), editRecord(2));
    AddSeparator(menu, QStringLiteral("mnuRecordsSeparator3"));
    AddCommand(menu, QStringLiteral("mnuRecordsExtractToEnotherDB"), QStringLiteral("Извлечь в другую базу"),
               [this] { CallActive(&Commands::ExtractToAnotherDB); });
    AddSeparator(menu, QStringLiteral("mnuRecordsSeparator4"));
    AddCommand(menu, QStringLiteral("mnuRecordsImportFromCSV"), QStringLiteral("Импортировать из CSV файла"),
               General::ShowImportMaster);
    AddCommand(menu, QStringLiteral("mnuRecordsExtractToCSV"), QStringLiteral("Извлечь в CSV файл"),
               [this] { CallActive(&Commands::ExtractToCSV); });
}

void frmMain::MakeCalendarMenu() {
    QMenu* menu = AddMenu(QStringLiteral("mnuCalendar"), QStringLiteral("Меню органайзера"), false);
    AddCommand(menu, QStringLiteral("mnuCalendarAddEvent"), QStringLiteral("Добавить..."),
               [this] { CallActive(&Commands::EditEvent, 1); });
    AddCommand(menu, QStringLiteral("mnuCalendarEditEvent"), QStringLiteral("Редактировать"),
               [this] { CallActive(&Commands::EditEvent, 0); });
    AddCommand(menu, QStringLiteral("mnuCalendarRemoveEvent"), QStringLiteral("Удалить"),
               [this] { CallActive(&Commands::DeleteEvent); });
}

void frmMain::MakeTelKodMenu() {
    QMenu* menu = AddMenu(QStringLiteral("mnuTelKod"), QStringLiteral("Меню кодов городов"), false);
    AddCommand(menu, QStringLiteral("mnuTelKodFilter"), QStringLiteral("Фильтр"),
               [this] { CallActive(&Commands::ShowFilter); });
}

void frmMain::MakeWindowsMenu() {
    QMenu* menu = AddMenu(QStringLiteral("mnuWindows"), QStringLiteral("Окна"));
    AddCommand(menu, QStringLiteral("mnuWindowCascade"), QStringLiteral("Каскад"),
               [this] { Arrange(Cascade); });
    AddCommand(menu, QStringLiteral("mnuWindowHorizontal"), QStringLiteral("По горизонтали"),
               [this] { Arrange(TileHorizontally); });
    AddCommand(menu, QStringLiteral("mnuWindowVertical"), QStringLiteral("По вертикали"),
               [this] { Arrange(TileVertically); });
    SetWindowList(menu);
}

void frmMain::MakeHelpMenu() {
    QMenu* menu = AddMenu(QStringLiteral("mnuHelp"), QStringLiteral("Помощь"));
    AddCommand(menu, QStringLiteral("mnuHelpAbout"), QStringLiteral("О программе..."),
               [] { Default<frmAbout>()->Show(); });
}

void frmMain::mnuRecordsRefresh_Click() {
    CallActive(&Commands::DoNotFillGrid, true);
    CallActive(&Commands::FillGrid, QString());
}

void frmMain::mnuBookNewBase_Click() {
    const bool goOn =
        forms::AskNo(QStringLiteral("Данная процедура потребует перезапуска программы. Если у вас есть "
                                    "не сохраненные данные, они будут потеряны. Продолжить?"));
    if (!goOn)
        return;
    const QString path = AskDatabaseFile(cdlMain, Window());
    if (path.isEmpty() || !runtime::IsPlainFile(path))
        return;
    gRegister().SaveKeyVal(QStringLiteral("DB_Path"), path);
    runtime::End();
}
