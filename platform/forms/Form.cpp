#include "platform/forms/Form.h"

#include "platform/forms/Asking.h"
#include "platform/forms/ChildSurface.h"
#include "platform/forms/Controls.h"
#include "platform/forms/DialogWindow.h"
#include "platform/forms/EventDelivery.h"
#include "platform/forms/FormState.h"
#include "platform/forms/MdiForm.h"
#include "platform/forms/MsgBox.h"
#include "platform/forms/Twips.h"

#include <QApplication>
#include <QFocusEvent>
#include <QInputMethod>
#include <QLayout>
#include <QMainWindow>
#include <QThread>

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

/// The window that a dialog belongs to.
QWidget* Owner() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    const MdiForm* frame = MdiForm::Current();
    return frame && frame->Window()->isVisible() ? frame->Window() : nullptr;
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

} // namespace

bool IsEnter(const QKeyEvent& key) {
    return (key.key() == Qt::Key_Return && key.modifiers() == Qt::NoModifier) ||
           (key.key() == Qt::Key_Enter && !(key.modifiers() & ~Qt::KeypadModifier));
}

Form::Form(Design design)
    : m_design(std::move(design)) {
}

Form::~Form() = default;

// --- The life of a form

void Form::Terminate() {
    // Nobody holds the form any more: its handlers find no window and no shared reference.
    try {
        Form_Terminate();
    } catch (const runtime::Failure& failure) {
        ShowEscapedFailure(failure);
    }
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
    if (m_design.kind == Kind::Dialog)
        return new DialogWindow(weak_from_this(), m_design);
    auto* surface = new ChildSurface(weak_from_this());
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
    if (modal && m_design.kind == Kind::Dialog)
        ShowModal();
    else
        MakeVisible();
}

void Form::ShowModal() {
    if (m->modalLoop)
        return;
    QEventLoop loop;
    NestedLoop nested([&loop] { loop.quit(); });
    m->modalLoop = &loop;
    MakeVisible();
    // The activation may have hidden or unloaded it already.
    if (IsLoaded() && m->modalLoop == &loop && m_surface->isVisible())
        loop.exec(QEventLoop::DialogExec);
    if (IsLoaded() && m->modalLoop == &loop)
        m->modalLoop = nullptr;
    nested.Rethrow();
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
        static_cast<DialogWindow*>(m_surface.data())->Place(Owner(), m_design.onScreen);
    TakeFirstFocus();
    m_surface->show();
    m_surface->raise();
    m_surface->activateWindow();
    if (!appears)
        return;
    Resized();
    if (IsLoaded())
        Dispatch([this] { Form_Activate(); });
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
    if (state->modalLoop)
        state->modalLoop->quit();
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

bool Form::Visible() {
    Load();
    return IsLoaded() && !OuterWindow()->isHidden();
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
    if (m->modalLoop)
        std::exchange(m->modalLoop, nullptr)->quit();
    MdiForm* frame = MdiForm::Current();
    if (m->frame && frame)
        frame->HideChild(m->frame);
    else
        OuterWindow()->hide();
}

int Form::Width() const {
    if (!IsLoaded())
        return 0;
    return ToTwips(m->frame ? m->frame->width() : m_surface->frameGeometry().width());
}

int Form::Height() const {
    if (!IsLoaded())
        return 0;
    return ToTwips(m->frame ? m->frame->height() : m_surface->frameGeometry().height());
}

void Form::SetHeight(int twips) {
    Load();
    if (!IsLoaded())
        return;
    QWidget* window = OuterWindow();
    const int border = m->frame ? 0 : window->frameGeometry().height() - window->height();
    window->resize(window->width(), ToPixels(twips) - border);
}

bool Form::IsMinimised() const {
    return IsLoaded() && OuterWindow()->isMinimized();
}

void Form::SetBusy(bool busy) {
    Load();
    if (!IsLoaded())
        return;
    if (busy)
        m_surface->setCursor(Qt::WaitCursor);
    else
        m_surface->unsetCursor();
}

// --- Events

void Form::Dispatch(const std::function<void()>& handler) {
    const std::shared_ptr<Form> self = weak_from_this().lock();
    const Asking asking(IsLoaded() ? OuterWindow() : nullptr);
    try {
        handler();
    } catch (const runtime::Failure& failure) {
        ShowEscapedFailure(failure);
    }
}

void Form::DispatchSignal(const std::function<void()>& handler) {
    try {
        Dispatch(handler);
    } catch (...) {
        if (!EventDelivery::Keep())
            throw;
    }
}

void Form::Resized() {
    // The sizes of a hidden window are not final; it gets its event when it is shown.
    if (IsLoaded() && OuterWindow()->isVisible())
        Dispatch([this] { Form_Resize(); });
}

bool Form::Form_KeyDown(int /*key*/, Qt::KeyboardModifiers /*modifiers*/) {
    return false;
}

bool Form::PreviewKey(const QKeyEvent& key) {
    bool handled = false;
    if (m_keyPreview)
        Dispatch([&] { handled = Form_KeyDown(key.key(), key.modifiers()); });
    return handled;
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
    const FieldRules running = m->leaving; // a rule may unload the form
    for (const FieldRule& rule : running)
        rule.apply();
}

void Form::PrepareFor(const QObject* sender) {
    if (qobject_cast<const QPushButton*>(sender))
        ApplyLeavingRules();
}

bool Form::eventFilter(QObject* watched, QEvent* event) {
    const bool left = event->type() == QEvent::FocusOut;
    if (!IsLoaded() || (!left && event->type() != QEvent::FocusIn))
        return false;
    auto* field = static_cast<QWidget*>(watched);
    if (left && KeepsTheFocus(*static_cast<QFocusEvent*>(event), *field)) {
        m->resting = field;
        return false;
    }
    const bool returns = !left && m->resting == field;
    m->resting = nullptr;
    if (returns)
        return false;
    const FieldRules running = left ? m->leaving : m->entering; // a rule may unload the form
    Dispatch([&] {
        for (const FieldRule& rule : running)
            if (rule.field == field)
                rule.apply();
    });
    return false;
}

// --- Default and cancel button

void Form::SetDefaultButton(QPushButton* button) {
    m->defaultButton = button;
    button->setDefault(true);
}

void Form::SetCancelButton(QPushButton* button) {
    m->cancelButton = button;
}

bool Form::PressButtonFor(const QKeyEvent& key) {
    if (!IsLoaded())
        return false;
    QPushButton* button = nullptr;
    if (IsEnter(key)) {
        button = qobject_cast<QPushButton*>(m_surface->focusWidget());
        if (!button)
            button = m->defaultButton;
    } else if (key.key() == Qt::Key_Escape && key.modifiers() == Qt::NoModifier) {
        button = m->cancelButton;
    }
    if (!button || !button->isEnabled() || !button->isVisible())
        return false;
    if (!key.isAutoRepeat()) // a key held down presses once
        button->click();
    return true;
}

} // namespace forms
