#include "shared/Commands.h"
#include "tests/shell/StartedProgram.h"

#include <QApplication>
#include <QMenuBar>
#include <QScreen>

namespace {

class Frame : public test::Program {};

struct Entry {
    const char* menu;
    const char* name;
    const char* caption; ///< empty: a separator
};

const Entry Entries[] = {
    {"mnuBook", "mnuBookRecords", "Записи..."},
    {"mnuBook", "mnuBookCalendar", "Органайзер..."},
    {"mnuBook", "mnuBookTelKod", "Коды городов..."},
    {"mnuBook", "mnuBookSeparator1", ""},
    {"mnuBook", "mnuBookNewBase", "Выбрать другую базу..."},
    {"mnuBook", "mnuBookSeparator3", ""},
    {"mnuBook", "mnuBookImport", "Импорт книги из CSV файла..."},
    {"mnuBook", "mnuBookSeparator2", ""},
    {"mnuBook", "mnuBookExit", "Выход"},
    {"mnuSettings", "mnuSettingsTelefonType", "Типы телефонных номеров..."},
    {"mnuSettings", "mnuSettingsSQLVIEW", "SQL наблюдатель..."},
    {"mnuRecords", "mnuRecordsRefresh", "Обновить"},
    {"mnuRecords", "mnuRecordsSeparator1", ""},
    {"mnuRecords", "mnuRecordsFilter", "Фильтр"},
    {"mnuRecords", "mnuRecordsSeparator2", ""},
    {"mnuRecords", "mnuRecordsAdd", "Добавить запись"},
    {"mnuRecords", "mnuRecordsEdit", "Изменить запись"},
    {"mnuRecords", "mnuRecordsView", "Посмотреть запись"},
    {"mnuRecords", "mnuRecordsSeparator3", ""},
    {"mnuRecords", "mnuRecordsExtractToEnotherDB", "Извлечь в другую базу"},
    {"mnuRecords", "mnuRecordsSeparator4", ""},
    {"mnuRecords", "mnuRecordsImportFromCSV", "Импортировать из CSV файла"},
    {"mnuRecords", "mnuRecordsExtractToCSV", "Извлечь в CSV файл"},
    {"mnuCalendar", "mnuCalendarAddEvent", "Добавить..."},
    {"mnuCalendar", "mnuCalendarEditEvent", "Редактировать"},
    {"mnuCalendar", "mnuCalendarRemoveEvent", "Удалить"},
    {"mnuTelKod", "mnuTelKodFilter", "Фильтр"},
    {"mnuWindows", "mnuWindowCascade", "Каскад"},
    {"mnuWindows", "mnuWindowHorizontal", "По горизонтали"},
    {"mnuWindows", "mnuWindowVertical", "По вертикали"},
    {"mnuHelp", "mnuHelpAbout", "О программе..."},
};

/// A child that tells which operations the menus call on it.
class Listener : public forms::Form, public Commands {
public:
    Listener()
        : Form({.name = QStringLiteral("Listener"), .caption = {}, .tag = {}}) {}
    QStringList calls;

    void DoNotFillGrid(bool bNeedFill) override {
        calls += QStringLiteral("DoNotFillGrid %1").arg(bNeedFill);
    }
    void FillGrid(const QString& strSQL) override { calls += QStringLiteral("FillGrid [%1]").arg(strSQL); }
    void ShowFilter() override { calls += QStringLiteral("ShowFilter"); }
    void EditRecord(int nAction) override { calls += QStringLiteral("EditRecord %1").arg(nAction); }
    void ExtractToAnotherDB() override { calls += QStringLiteral("ExtractToAnotherDB"); }
    void ExtractToCSV() override { calls += QStringLiteral("ExtractToCSV"); }
    void EditEvent(int nType) override { calls += QStringLiteral("EditEvent %1").arg(nType); }
    void DeleteEvent() override { calls += QStringLiteral("DeleteEvent"); }

protected:
    void CreateControls(QWidget* /*surface*/) override {}
};

} // namespace

TEST_F(Frame, TheMenuTreeStandsAsTold) {
    Start();
    QStringList bar;
    for (const QAction* action : Window().menuBar()->actions()) {
        if (action->isVisible())
            bar += action->text();
    }
    EXPECT_EQ(bar, QStringList({QStringLiteral("Книга"), QStringLiteral("Настройки"), QStringLiteral("Окна"),
                                QStringLiteral("Помощь")}));
    const struct {
        const char* name;
        QString caption;
    } hidden[] = {
        {"mnuRecords", QStringLiteral("Меню записей")},
        {"mnuCalendar", QStringLiteral("Меню органайзера")},
        {"mnuTelKod", QStringLiteral("Меню кодов городов")},
    };
    for (const auto& menu : hidden)
        EXPECT_EQ(Window().findChild<QMenu*>(QString::fromLatin1(menu.name))->title(), menu.caption);

    std::map<QString, qsizetype> places;
    for (const Entry& entry : Entries) {
        SCOPED_TRACE(entry.name);
        const auto* menu = Window().findChild<QMenu*>(QString::fromLatin1(entry.menu));
        ASSERT_NE(menu, nullptr);
        const qsizetype place = places[menu->objectName()]++;
        ASSERT_LT(place, menu->actions().size());
        const QAction* action = menu->actions().at(place);
        EXPECT_EQ(action->objectName(), QString::fromLatin1(entry.name));
        EXPECT_EQ(action->isSeparator(), *entry.caption == '\0');
        EXPECT_TRUE(action->isEnabled());
        EXPECT_TRUE(action->shortcut().isEmpty());
        if (!action->isSeparator()) {
            EXPECT_EQ(action->text(), QString::fromUtf8(entry.caption));
        }
    }
}

TEST_F(Frame, ItFitsTheScreenAndNamesTheFile) {
    Start();
    EXPECT_EQ(Window().objectName(), QStringLiteral("frmMain"));
    EXPECT_EQ(Window().windowTitle(), QStringLiteral("Завелик - ") + Path());
    EXPECT_TRUE(QGuiApplication::primaryScreen()->availableSize().width() >= Window().width());
    const int screen = QGuiApplication::primaryScreen()->availableSize().width();
    EXPECT_EQ(Window().isMaximized(), screen < 1000) << "else the list of town codes would be cut";
    Store(QStringLiteral("/elsewhere.mdb"));
    Choose("mnuHelpAbout");
    EXPECT_EQ(Window().windowTitle(), QStringLiteral("Завелик - ") + Path());
}

TEST_F(Frame, CommandsReachTheActiveChildAndNoOther) {
    Start();
    const auto first = forms::Form::Create<Listener>();
    const auto second = forms::Form::Create<Listener>();
    first->Show();
    second->Show();
    const struct {
        const char* command;
        QStringList calls;
    } rows[] = {
        {"mnuRecordsRefresh", {QStringLiteral("DoNotFillGrid 1"), QStringLiteral("FillGrid []")}},
        {"mnuRecordsFilter", {QStringLiteral("ShowFilter")}},
        {"mnuRecordsAdd", {QStringLiteral("EditRecord 1")}},
        {"mnuRecordsEdit", {QStringLiteral("EditRecord 0")}},
        {"mnuRecordsView", {QStringLiteral("EditRecord 2")}},
        {"mnuRecordsExtractToEnotherDB", {QStringLiteral("ExtractToAnotherDB")}},
        {"mnuRecordsExtractToCSV", {QStringLiteral("ExtractToCSV")}},
        {"mnuCalendarAddEvent", {QStringLiteral("EditEvent 1")}},
        {"mnuCalendarEditEvent", {QStringLiteral("EditEvent 0")}},
        {"mnuCalendarRemoveEvent", {QStringLiteral("DeleteEvent")}},
        {"mnuTelKodFilter", {QStringLiteral("ShowFilter")}},
    };
    for (const auto& row : rows) {
        second->calls.clear();
        Choose(row.command);
        EXPECT_EQ(second->calls, row.calls) << row.command;
    }
    EXPECT_EQ(first->calls, QStringList());
}

TEST_F(Frame, EachLaunchOpensAWindowOfItsOwnAndOneAboutBox) {
    Start();
    const struct {
        const char* command;
        QString window;
    } rows[] = {
        {"mnuBookImport", QStringLiteral("frmImportMasterStep1")},
        {"mnuRecordsImportFromCSV", QStringLiteral("frmImportMasterStep1")},
        {"mnuSettingsSQLVIEW", QStringLiteral("frmUserEditor")},
        {"mnuSettingsSQLVIEW", QStringLiteral("frmUserEditor")},
        {"mnuHelpAbout", QStringLiteral("frmAbout")},
    };
    QStringList expected;
    for (const auto& row : rows) {
        Choose(row.command);
        expected += row.window;
        EXPECT_EQ(Children(), expected);
    }
    Choose("mnuHelpAbout");
    EXPECT_EQ(Children(), expected);
    EXPECT_EQ(forms::MdiForm::Current()->Area()->subWindowList().size(), expected.size());
}

TEST_F(Frame, ArrangingWithoutWindowsChangesNothing) {
    Start();
    const QSize before = Window().size();
    for (const char* command : {"mnuWindowCascade", "mnuWindowHorizontal", "mnuWindowVertical"})
        Choose(command);
    EXPECT_EQ(Window().size(), before);
    EXPECT_EQ(Children(), QStringList());
}
