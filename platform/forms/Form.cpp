#include "platform/forms/Form.h"

#include "platform/forms/Asking.h"
#include "platform/forms/ChildFrame.h"
#include "platform/forms/Controls.h"
#include "platform/forms/MdiForm.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"

#include <QApplication>
#include <QDialog>
#include <QFocusEvent>
#include <QInputMethod>
#include <QLayout>
#include <QMainWindow>
#include <QThread>
#include <QWindow>

#include <algorithm>

namespace forms {

namespace {

std::vector<std::shared_ptr<Form>>& LoadedForms() {
    static std::vector<std::shared_ptr<Form>> forms;
    return forms;
}

std::vector<std::shared_ptr<Form>>& KeptForms() {
    static std::vector<std::shared_ptr<Form>> forms;
    return forms;
}

/// Whether the field lost the focus to another window or to a menu: it is not left then.
bool KeepsTheFocus(const QFocusEvent& event, const QWidget& field) {
    switch (event.reason()) {
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
        return true;
    case Qt::ActiveWindowFocusReason:
        return QApplication::activeWindow() != field.window();
    default:
        return false;
    }
}

/// The keyboard goes back to the owner of a dialog. Window managers see to that too, but not all of them
/// where a box and the dialog below it go at once.
void ActivateOwnerOf(const QWidget& dialog) {
    const QWindow* window = dialog.windowHandle();
    QWindow* owner = window ? window->transientParent() : nullptr;
    if (owner && owner->isVisible())
        owner->requestActivate();
}

} // namespace

bool IsEnter(const QKeyEvent& key) {
    return (key.key() == Qt::Key_Return && key.modifiers() == Qt::NoModifier) ||
           (key.key() == Qt::Key_Enter && !(key.modifiers() & ~Qt::KeypadModifier));
}

Qt::WindowFlags Design::Flags(Qt::WindowType type) const {
    if (border == Border::Sizable)
        return type;
    return type | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint;
}

Form::Form(Design design)
    : m_design(std::move(design)) {
}

Form::~Form() = default;

// --- The life of a form

void Form::Terminate() {
    // Nobody holds the form any more: its handlers find no window and no shared reference.
    Attempt({}, [this] { Form_Terminate(); });
}

void Form::KeepForever(std::shared_ptr<Form> form) {
    KeptForms().push_back(std::move(form));
}

void Form::ReleaseAll() {
    while (!LoadedForms().empty()) {
        const std::shared_ptr<Form> form = LoadedForms().back();
        form->Discard();
    }
    const auto kept = std::exchange(KeptForms(), {});
}

std::vector<std::shared_ptr<Form>> Form::Loaded() {
    return LoadedForms();
}

std::shared_ptr<Form> Form::Of(const QWidget* widget) {
    while (widget) {
        for (const std::shared_ptr<Form>& form : LoadedForms())
            if (form->m_surface == widget)
                return form;
        widget = widget->isWindow() ? nullptr : widget->parentWidget(); // a box over a form is no part of it
    }
    return nullptr;
}

QWidget* Form::MakeSurface() {
    if (m_design.kind == Kind::Dialog) {
        auto* dialog = new QDialog(nullptr, m_design.Flags(Qt::Dialog));
        dialog->setModal(true);
        return dialog;
    }
    auto* surface = new QWidget;
    MdiForm* frame = MdiForm::Current();
    m->frame = frame ? frame->AddChild(*this) : new ChildFrame(weak_from_this(), m_design);
    m->frame->setWidget(surface);
    return surface;
}

void Form::Load() {
    if (IsLoaded())
        return;
    const std::shared_ptr<Form> self = shared_from_this();
    m = std::make_unique<State>();
    m->tag = m_design.tag;
    m_surface = MakeSurface();
    m_surface->setObjectName(m_design.name);
    m_surface->setWindowTitle(m_design.caption);
    m_surface->installEventFilter(this);
    LoadedForms().push_back(self);
    CreateControls(m_surface);
    FinishControls();
    Dispatch([this] { Form_Load(); });
}

void Form::FinishControls() {
    QLayout* layout = m_surface->layout();
    if (m_design.border == Border::Fixed && m_design.kind == Kind::Dialog && layout)
        layout->setSizeConstraint(QLayout::SetFixedSize);
    if (m->frame) {
        m->frame->ensurePolished();
        if (m_design.border == Border::Fixed)
            m->frame->setFixedSize(m->frame->sizeHint());
        else
            m->frame->resize(m_design.size.isEmpty() ? m->frame->sizeHint() : m_design.size);
    } else if (m_design.border == Border::Sizable && !m_design.size.isEmpty()) {
        m_surface->resize(m_design.size);
    }
}

void Form::Show(bool modal) {
    const std::shared_ptr<Form> self = shared_from_this();
    Load();
    if (!IsLoaded())
        return; // its load has unloaded it
    MakeVisible();
    auto* dialog = modal ? qobject_cast<QDialog*>(m_surface.data()) : nullptr;
    if (dialog && dialog->isVisible()) // the activation may have hidden or unloaded it already
        dialog->exec();
}

void Form::MakeVisible() {
    if (m->frame) {
        if (MdiForm* frame = MdiForm::Current())
            frame->ShowChild(m->frame);
        else
            m->frame->show();
        return;
    }
    const bool appears = m_surface->isHidden();
    if (appears && m_design.kind == Kind::Dialog)
        PlaceDialog();
    TakeFirstFocus();
    m_surface->QWidget::setVisible(true); // a dialog's own would act as if Tab had led into its field
    m_surface->raise();
    m_surface->activateWindow();
    if (!appears)
        return;
    Resized();
    if (IsLoaded())
        Dispatch([this] { Form_Activate(); });
}

void Form::PlaceDialog() {
    QWidget* owner = Asking::Owner();
    m_surface->ensurePolished();
    m_surface->adjustSize();
    // It is no child of its owner's: it may live on, hidden. So the windows are tied instead.
    m_surface->winId();
    m_surface->windowHandle()->setTransientParent(owner ? owner->windowHandle() : nullptr);
    if (m_design.onScreen)
        Asking::CentreOnScreen(*m_surface, owner);
    else
        Asking::Centre(*m_surface, owner);
}

void Form::TakeFirstFocus() {
    if (!m_surface->focusWidget())
        FocusFirstIn(*m_surface);
}

void Form::Unload() {
    if (!IsLoaded() || m->unloading)
        return;
    const std::shared_ptr<Form> self = shared_from_this();
    m->unloading = true;
    UnloadDependants();
    Dispatch([this] { Form_Unload(); });
    Discard();
}

void Form::Discard() {
    // The window goes when control returns to the event loop: one of its handlers may be on the way here.
    const std::shared_ptr<Form> self = shared_from_this();
    const QPointer<QWidget> surface = m_surface;
    const std::unique_ptr<State> state = std::move(m);
    m_surface = nullptr;
    std::erase(LoadedForms(), self);
    if (state->frame) {
        if (MdiForm* frame = MdiForm::Current())
            frame->RemoveChild(state->frame);
        state->frame->deleteLater();
    } else if (surface) {
        surface->hide();
        surface->deleteLater();
    }
    // The program ends with its frame. Without a loop to end, all later ones would end at once instead.
    if (m_design.kind == Kind::Frame && QThread::currentThread()->loopLevel() > 0)
        QCoreApplication::exit();
}

// --- Properties

// Each loads the form first; a load that unloads it again leaves the design value.

QString Form::Tag() {
    Load();
    return IsLoaded() ? m->tag : m_design.tag;
}

void Form::SetTag(const QString& tag) {
    Load();
    if (IsLoaded())
        m->tag = tag;
}

QString Form::Caption() {
    Load();
    return IsLoaded() ? m_surface->windowTitle() : m_design.caption;
}

void Form::SetCaption(const QString& caption) {
    Load();
    if (!IsLoaded())
        return;
    m_surface->setWindowTitle(caption);
    if (m->frame)
        m->frame->setWindowTitle(caption);
}

QWidget* Form::OuterWindow() const {
    return m->frame ? m->frame.data() : m_surface.data();
}

void Form::SetVisible(bool visible) {
    const std::shared_ptr<Form> self = shared_from_this();
    if (visible) {
        Show();
        return;
    }
    Load();
    if (!IsLoaded() || OuterWindow()->isHidden())
        return;
    MdiForm* frame = MdiForm::Current();
    if (m->frame && frame)
        frame->HideChild(m->frame);
    else
        OuterWindow()->hide();
}

int Form::Width() const {
    return IsLoaded() ? ToTwips(OuterWindow()->frameGeometry().width()) : 0;
}

int Form::Height() const {
    return IsLoaded() ? ToTwips(OuterWindow()->frameGeometry().height()) : 0;
}

void Form::SetHeight(int twips) {
    Load();
    if (!IsLoaded())
        return;
    QWidget* window = OuterWindow();
    const int border = window->frameGeometry().height() - window->height();
    window->resize(window->width(), ToPixels(twips) - border);
}

bool Form::IsMinimised() const {
    return IsLoaded() && OuterWindow()->isMinimized();
}

// --- Events

QString Form::Head(const char* routine) const {
    return QStringLiteral("%1 функция %2:").arg(Name(), QLatin1String(routine));
}

void Form::Dispatch(const std::function<void()>& handler, const QString& head) {
    const std::shared_ptr<Form> self = weak_from_this().lock();
    const Asking asking(IsLoaded() ? OuterWindow() : nullptr);
    Attempt(head, handler);
}

void Form::Resized() {
    // The sizes of a hidden window are not final; it gets its event when it is shown.
    if (IsLoaded() && OuterWindow()->isVisible())
        Dispatch([this] { Form_Resize(); });
}

bool Form::Form_KeyDown(int /*key*/, Qt::KeyboardModifiers /*modifiers*/) {
    return false;
}

void Form::OnLostFocus(QWidget* field, std::function<void()> rule) {
    m->leaving.push_back({field, std::move(rule)});
    field->installEventFilter(this);
}

void Form::OnGotFocus(QWidget* field, std::function<void()> rule) {
    m->entering.push_back({field, std::move(rule)});
    field->installEventFilter(this);
}

void Form::ApplyLeavingRules() {
    if (!IsLoaded())
        return;
    const std::shared_ptr<Form> self = weak_from_this().lock();
    if (m_surface->isAncestorOf(QApplication::focusWidget()))
        QGuiApplication::inputMethod()->commit();
    const Rules running = m->leaving; // a rule may unload the form
    for (const Rule& rule : running)
        rule.apply();
}

bool Form::eventFilter(QObject* watched, QEvent* event) {
    auto* widget = static_cast<QWidget*>(watched);
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        if (IsLoaded() && watched != m_surface)
            FollowFocus(*static_cast<QFocusEvent*>(event), widget);
        return false;
    case QEvent::KeyPress:
        return watched == m_surface && HandleKey(*static_cast<QKeyEvent*>(event));
    case QEvent::Close:
        if (watched != m_surface || !widget->isWindow())
            return false;
        event->accept();
        Unload();
        return true;
    case QEvent::Hide: // also behind Unload
        if (qobject_cast<QDialog*>(watched))
            ActivateOwnerOf(*widget);
        return false;
    default:
        return false;
    }
}

void Form::FollowFocus(const QFocusEvent& event, QWidget* field) {
    if (event.lostFocus() && KeepsTheFocus(event, *field)) {
        m->resting = field;
        return;
    }
    const bool returns = event.gotFocus() && m->resting == field;
    m->resting = nullptr;
    if (returns)
        return;
    const Rules running = event.lostFocus() ? m->leaving : m->entering; // a rule may unload the form
    Dispatch([&] {
        for (const Rule& rule : running)
            if (rule.field == field)
                rule.apply();
    });
}

// --- Default and cancel button

void Form::SetDefaultButton(QPushButton* button) {
    m->defaultButton = button;
    button->setDefault(true);
}

void Form::SetCancelButton(QPushButton* button) {
    m->cancelButton = button;
}

QPushButton* Form::ButtonFor(const QKeyEvent& key) const {
    if (key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier)
        return m->cancelButton;
    if (!IsEnter(key))
        return nullptr;
    auto* focused = qobject_cast<QPushButton*>(m_surface->focusWidget());
    return focused ? focused : m->defaultButton.data();
}

bool Form::HandleKey(const QKeyEvent& key) {
    bool handled = false;
    Dispatch([&] { handled = Form_KeyDown(key.key(), key.modifiers()); });
    if (handled || !IsLoaded())
        return true;
    QPushButton* button = ButtonFor(key);
    if (!button || !button->isEnabled() || !button->isVisible())
        return m_design.kind == Kind::Dialog; // whose own keys would close it
    if (!key.isAutoRepeat())                  // a key held down presses once
        button->click();
    return true;
}

} // namespace forms
