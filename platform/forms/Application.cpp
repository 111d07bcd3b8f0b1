#include "platform/forms/Application.h"

#include "platform/forms/Colours.h"
#include "platform/forms/Controls.h"
#include "platform/forms/DarkPreference.h"
#include "platform/forms/Form.h"
#include "platform/forms/MenuAccess.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/ProgramStyle.h"
#include "platform/forms/TableAccess.h"

#include <QAbstractButton>
#include <QAbstractEventDispatcher>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLibraryInfo>
#include <QLocale>
#include <QSessionManager>
#include <QStyleFactory>
#include <QTranslator>

namespace forms {

namespace {

constexpr int TypedTogether = 1000; ///< milliseconds between the letters of one text that is looked for

/// The file dialog writes dates and sizes by the system's locale, which is read from the environment at its
/// first use: here, and Russian. The environment itself stays as the user set it.
int& WithRussianLocale(int& argc) {
    constexpr auto Variable = "LC_ALL";
    const bool wasSet = qEnvironmentVariableIsSet(Variable);
    const QByteArray before = qgetenv(Variable);
    qputenv(Variable, "ru_RU.UTF-8");
    const QString used = QLocale::system().monthName(1);
    if (wasSet)
        qputenv(Variable, before);
    else
        qunsetenv(Variable);
    return argc;
}

/// What the toolkit's own Russian texts lack.
class MissingTexts final : public QTranslator {
public:
    using QTranslator::QTranslator;

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char* /*remark*/,
                      int /*number*/) const override {
        static const QHash<QLatin1String, QString> texts{
            {QLatin1String("Folder"), QStringLiteral("Папка")},
            {QLatin1String("Drive"), QStringLiteral("Диск")},
            {QLatin1String("Unknown"), QStringLiteral("Неизвестный")},
        };
        return QLatin1String(context) == u"QAbstractFileIconProvider" ? texts.value(QLatin1String(source))
                                                                      : QString();
    }
};

} // namespace

Application::Application(int& argc, char** argv, Program program)
    : QApplication(WithRussianLocale(argc), argv)
    , m_program(std::move(program)) {
    setApplicationName(m_program.title);
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    LoadToolkitTexts();
    setKeyboardInputInterval(TypedTogether);
    installEventFilter(this);
    InstallTableAccess();
    InstallMenuAccess();
    if (ChooseStyle())
        WatchDarkPreference(this, [this](bool dark) { PreferDark(dark); });
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &Application::WriteWhenIdle);
    connect(this, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& manager) {
        EndSession([&manager] { return manager.allowsErrorInteraction(); });
    });
    connect(this, &QCoreApplication::aboutToQuit, this, &Application::WriteAtEnd);
}

Application::~Application() {
    Form::ReleaseAll();
    sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

const Program& Application::Running() {
    return static_cast<const Application*>(instance())->m_program;
}

void Application::EndSession(const std::function<bool()>& mayTell) {
    try {
        m_program.writeToDisk();
    } catch (const runtime::Failure& failure) {
        if (mayTell())
            ShowErrorBox({}, failure);
    }
    m_sessionEnds = true;
}

bool Application::SessionEnds() {
    return static_cast<const Application*>(instance())->m_sessionEnds;
}

/// Whether the program may choose the colours. The style of Windows is kept as users know it.
bool Application::ChooseStyle() {
    if (style()->inherits("QWindowsVistaStyle")) {
        m_systemStyle = style()->objectName();
        return true;
    }
    if (!ProgramStyle::IsBuiltOn(*style()))
        return false;
    const bool coloursAreChosen = qobject_cast<const QProxyStyle*>(style()) != nullptr;
    setStyle(new ProgramStyle(QStringLiteral("fusion")));
    return !coloursAreChosen;
}

void Application::PreferDark(bool dark) {
    if (dark == m_darkened || (dark && IsDark(palette().color(QPalette::Window))))
        return;
    m_darkened = dark;
    if (!m_systemStyle.isEmpty()) // it has light colours alone
        setStyle(dark ? new ProgramStyle(QStringLiteral("fusion")) : QStyleFactory::create(m_systemStyle));
    setPalette(dark ? ProgramStyle::DarkPalette() : QPalette()); // else the theme's own
}

void Application::LoadToolkitTexts() {
    installTranslator(new MissingTexts(this));
    auto* texts = new QTranslator(this);
    const QString program = applicationDirPath() + u'/';
    for (const QString& folder : {QLibraryInfo::path(QLibraryInfo::TranslationsPath),
                                  program + QStringLiteral("translations"), program + m_program.texts}) {
        if (texts->load(QStringLiteral("qtbase_ru"), folder)) {
            installTranslator(texts);
            return;
        }
    }
}

bool Application::notify(QObject* receiver, QEvent* event) {
    bool handled = true;
    Attempt({}, [&] { handled = QApplication::notify(receiver, event); });
    return handled;
}

/// Enter goes past buttons and frames of fields up to the form, whose buttons it presses: some platform
/// themes let check boxes, options and frames take it.
bool Application::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress)
        m_sessionEnds = false;
    if (event->type() != QEvent::KeyPress || !IsEnter(*static_cast<QKeyEvent*>(event)))
        return false;
    if (!qobject_cast<QAbstractButton*>(watched) && !qobject_cast<QGroupBox*>(watched))
        return false;
    if (!Form::Of(static_cast<QWidget*>(watched)))
        return false;
    event->ignore();
    return true;
}

bool Application::event(QEvent* event) {
    const bool handled = QApplication::event(event);
    if (event->type() == QEvent::ApplicationPaletteChange)
        RepaintFields();
    return handled;
}

void Application::WriteWhenIdle() {
    // Called by the dispatcher itself, which must not be left by an exception.
    try {
        m_program.writeToDisk();
    } catch (const runtime::Failure& failure) {
        TellLater(failure);
    }
}

void Application::WriteAtEnd() {
    // What the last handlers wrote: behind this nobody could be told.
    Attempt({}, m_program.writeToDisk);
}

void Application::TellLater(const runtime::Failure& failure) {
    if (m_telling)
        return; // one box at a time, also when each round through the loop fails anew
    m_telling = true;
    QMetaObject::invokeMethod(
        this,
        [this, failure] {
            ShowErrorBox({}, failure);
            m_telling = false;
        },
        Qt::QueuedConnection);
}

} // namespace forms
