#include "platform/forms/MdiForm.h"

#include "platform/forms/Asking.h"
#include "platform/forms/ChildFrame.h"
#include "platform/forms/FrameWindow.h"

#include <QAction>
#include <QActionGroup>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>

namespace forms {

namespace {
MdiForm* current = nullptr;
}

struct MdiForm::FrameState {
    QPointer<FrameWindow> window;
    QMdiArea* area = nullptr;
    QPointer<ChildFrame> front; ///< what the area made active last
    std::weak_ptr<Form> active; ///< whose activation has run
    bool switching = false;     ///< an operation on the children is in progress
    int placed = 0;             ///< children that have taken their places since the area was empty
    bool closing = false;
    QMenu* windowMenu = nullptr;
    QList<QAction*> windowList;
};

MdiForm::MdiForm(Design design)
    : Form(std::move(design)) {
}

MdiForm::~MdiForm() {
    if (current == this)
        current = nullptr;
}

MdiForm* MdiForm::Current() {
    return current && current->IsLoaded() ? current : nullptr;
}

QMainWindow* MdiForm::Window() const {
    return m_frame ? m_frame->window.data() : nullptr;
}

QWidget* MdiForm::MakeSurface() {
    m_frame = std::make_shared<FrameState>();
    auto* window = new FrameWindow(weak_from_this());
    window->setContextMenuPolicy(Qt::NoContextMenu);
    auto* area = new QMdiArea(window);
    area->setObjectName(QStringLiteral("mdiArea"));
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setActivationOrder(QMdiArea::StackingOrder);
    area->setOption(QMdiArea::DontMaximizeSubWindowOnActivation); // a fixed window must not grow
    area->setBackground(FrameWindow::GroundOf(window->palette()));
    window->setCentralWidget(area);
    const QSize screen = window->screen()->availableSize();
    window->resize(screen * 3 / 4);

    m_frame->window = window;
    m_frame->area = area;
    current = this;
    QObject::connect(area, &QMdiArea::subWindowActivated, window, [this](QMdiSubWindow* child) {
        if (!child)
            return; // the program lost the focus
        m_frame->front = qobject_cast<ChildFrame*>(child);
        Settle();
    });
    return window;
}

void MdiForm::UnloadDependants() {
    m_frame->closing = true;
    // A child on whose way out the frame is closed goes by itself.
    const auto isChild = [](const std::shared_ptr<Form>& form) {
        return form->m_design.kind == Kind::Child && !form->m->unloading;
    };
    while (true) {
        const std::vector<std::shared_ptr<Form>> loaded = Loaded();
        const auto child = std::find_if(loaded.begin(), loaded.end(), isChild);
        if (child == loaded.end())
            return;
        (*child)->Unload();
    }
}

// --- The active child

std::shared_ptr<Form> MdiForm::ActiveForm() const {
    const std::shared_ptr<Form> active = m_frame ? m_frame->active.lock() : nullptr;
    return active && active->IsLoaded() ? active : nullptr;
}

ChildFrame* MdiForm::AddChild(Form& child) {
    auto* frame = new ChildFrame(child.weak_from_this(), child.m_design);
    const QScopedValueRollback switching(m_frame->switching, true);
    m_frame->area->addSubWindow(frame, frame->windowFlags());
    frame->hide();
    return frame;
}

/// Shows, hides or takes away children. Form_Activate is held back meanwhile; it runs once at the end.
void MdiForm::Switch(const std::function<void()>& change) {
    const std::shared_ptr<Form> self = weak_from_this().lock();
    {
        const std::shared_ptr<FrameState> state = m_frame;
        const QScopedValueRollback switching(state->switching, true);
        change();
    }
    Settle();
}

void MdiForm::ShowChild(ChildFrame* frame) {
    const std::shared_ptr<Form> form = frame->Owner();
    Switch([&] {
        const bool appears = frame->isHidden();
        if (frame->TakePlace() && m_frame->window->isVisible())
            PlaceNew(*frame);
        frame->show();
        if (appears)
            form->Resized();
        if (!form->IsLoaded())
            return;
        m_frame->area->setActiveSubWindow(frame);
        frame->raise();
        form->TakeFirstFocus();
        m_frame->front = frame;
    });
}

void MdiForm::HideChild(ChildFrame* frame) {
    Switch([&] {
        frame->hide();
        if (m_frame->front == frame)
            ActivateNext();
    });
}

void MdiForm::RemoveChild(ChildFrame* frame) {
    Switch([&] {
        const bool wasFront = m_frame->front == frame;
        frame->hide();
        m_frame->area->removeSubWindow(frame);
        if (wasFront)
            ActivateNext();
    });
}

void MdiForm::ActivateNext() {
    ChildFrame* next = nullptr;
    for (QMdiSubWindow* window : m_frame->area->subWindowList(QMdiArea::StackingOrder)) {
        auto* frame = qobject_cast<ChildFrame*>(window);
        if (frame && !frame->isHidden())
            next = frame; // the area keeps minimised ones below all others
    }
    m_frame->area->setActiveSubWindow(next);
    m_frame->front = next;
}

void MdiForm::Settle() {
    const std::shared_ptr<FrameState> state = m_frame;
    if (state->switching)
        return;
    const ChildFrame* front = state->front;
    const std::shared_ptr<Form> form = front && !front->isHidden() ? front->Owner() : nullptr;
    if (form == state->active.lock())
        return;
    state->active = form;
    if (form && form->IsLoaded() && !state->closing)
        form->Dispatch([&form] { form->Form_Activate(); });
}

void MdiForm::FollowWindowActivation(const std::function<void()>& deliver) {
    const std::shared_ptr<FrameState> state = m_frame;
    const QScopedValueRollback switching(state->switching, true);
    const QPointer<ChildFrame> front = state->front;
    deliver();
    // The area may choose another child than the one that was active when the program lost the focus.
    if (front && !front->isHidden() && state->window && state->window->isActiveWindow())
        state->area->setActiveSubWindow(front);
    state->front = front;
}

// --- Commands on the active child

void MdiForm::WithActive(const std::function<void(Form&)>& call) {
    const std::shared_ptr<Form> form = ActiveForm();
    if (!form)
        return;
    form->ApplyLeavingRules();
    const Asking asking(form->IsLoaded() ? form->OuterWindow() : nullptr);
    call(*form);
}

// --- Arrangement

std::vector<ChildFrame*> MdiForm::OpenFrames() const {
    std::vector<ChildFrame*> frames;
    for (QMdiSubWindow* window : m_frame->area->subWindowList(QMdiArea::StackingOrder)) {
        auto* frame = qobject_cast<ChildFrame*>(window);
        if (frame && !frame->isHidden() && !frame->isMinimized())
            frames.insert(frames.begin(), frame);
    }
    return frames;
}

namespace {

/// The part of the room where the minimised children do not stand.
QRect FreeGround(const QMdiArea& area, QSize room) {
    const QRect whole(QPoint(), room);
    QRect ground = whole;
    for (const QMdiSubWindow* window : area.subWindowList())
        if (window->isVisible() && window->isMinimized())
            ground.setBottom(std::min(ground.bottom(), window->geometry().top() - 1));
    return ground.height() > ground.width() / 8 ? ground : whole;
}

/// What the scroll bars take that children standing out of the room bring.
QSize BarsFor(const QMdiArea& area, const std::vector<ChildFrame*>& frames, QSize room) {
    QRect all;
    for (const ChildFrame* frame : frames)
        all |= frame->geometry();
    return {all.bottom() >= room.height() ? area.verticalScrollBar()->sizeHint().width() : 0,
            all.right() >= room.width() ? area.horizontalScrollBar()->sizeHint().height() : 0};
}

/// A fixed child keeps its size, and its close box in sight.
void Place(ChildFrame& frame, const QRect& place, const QRect& ground) {
    if (frame.isMaximized())
        frame.showNormal();
    if (!frame.IsFixed())
        return frame.setGeometry(place);
    const auto within = [](int at, int length, int from, int room) {
        return from + std::max(0, std::min(at - from, room - length));
    };
    frame.move(within(place.left(), frame.width(), ground.left(), ground.width()),
               within(place.top(), frame.height(), ground.top(), ground.height()));
}

/// So far apart that the title bar of the child behind stays in sight.
int CascadeStep(const ChildFrame& frame) {
    return frame.style()->pixelMetric(QStyle::PM_TitleBarHeight) +
           frame.style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
}

void PlaceInCascade(const std::vector<ChildFrame*>& frames, const QRect& ground) {
    const int step = CascadeStep(*frames.front());
    const QSize size(ground.width() * 2 / 3, ground.height() * 2 / 3);
    const int places = std::max(1, (ground.height() - size.height()) / step + 1);
    int number = 0;
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame, ++number) {
        const int offset = number % places * step;
        Place(**frame, QRect(ground.topLeft() + QPoint(offset, offset), size), ground);
    }
}

constexpr QSize LeastTile(200, 160);

/// With the sides exchanged.
QRect Turned(const QRect& place) {
    return {place.y(), place.x(), place.height(), place.width()};
}

/// Puts fixed children side by side, in as many lines as it takes, or one under the other, and tells where
/// `others` more find room: behind them in the line, or under the lines. If there is none they cover the foot
/// of the ground, where they hide no title bar.
QRect PlaceFixed(const std::vector<ChildFrame*>& fixed, const QRect& ground, bool sideBySide, int others) {
    const auto turned = [sideBySide](const QRect& place) { return sideBySide ? place : Turned(place); };
    const QRect room = turned(ground);
    const QSize least = turned(QRect(QPoint(), LeastTile)).size();
    QPoint next;
    int end = 0; // of the line
    for (ChildFrame* frame : fixed) {
        const QSize size = turned(QRect(QPoint(), frame->size())).size();
        if (next.x() > 0 && next.x() + size.width() > room.width())
            next = QPoint(0, end);
        Place(*frame, turned(QRect(room.topLeft() + next, size)), ground);
        next.rx() += size.width();
        end = std::max(end, next.y() + size.height());
    }
    if (next.y() == 0 && room.width() - next.x() >= others * least.width())
        return turned(room.adjusted(next.x(), 0, 0, 0));
    if (room.height() - end >= least.height())
        return turned(room.adjusted(0, end, 0, 0));
    QRect foot = ground;
    foot.setTop(std::max(ground.top(), ground.bottom() - LeastTile.height() * (sideBySide ? 1 : others)));
    return foot;
}

void PlaceInRow(const std::vector<ChildFrame*>& frames, const QRect& ground, bool sideBySide) {
    std::vector<ChildFrame*> fixed = frames;
    const auto firstSizable = std::stable_partition(fixed.begin(), fixed.end(),
                                                    [](const ChildFrame* frame) { return frame->IsFixed(); });
    const std::vector<ChildFrame*> others(firstSizable, fixed.end());
    fixed.erase(firstSizable, fixed.end());
    const int count = static_cast<int>(others.size());
    const QRect rest = PlaceFixed(fixed, ground, sideBySide, count);
    const auto part = [count](int length, int number) { return length * number / count; };
    for (int i = 0; i < count; ++i) {
        QRect place = rest;
        if (sideBySide) {
            place.setLeft(rest.left() + part(rest.width(), i));
            place.setRight(rest.left() + part(rest.width(), i + 1) - 1);
        } else {
            place.setTop(rest.top() + part(rest.height(), i));
            place.setBottom(rest.top() + part(rest.height(), i + 1) - 1);
        }
        Place(*others[static_cast<std::size_t>(i)], place, ground);
    }
}

} // namespace

/// A new child stands a step further than the one before it, and wholly in sight if it can be.
void MdiForm::PlaceNew(ChildFrame& frame) {
    constexpr int StepsBeforeStart = 8;
    const QSize ground = m_frame->area->viewport()->size();
    if (!frame.IsFixed())
        frame.resize(frame.size().boundedTo(ground));
    if (OpenFrames().empty())
        m_frame->placed = 0;
    const int offset = m_frame->placed++ % StepsBeforeStart * CascadeStep(frame);
    const QSize room = (ground - frame.size()).expandedTo(QSize(0, 0));
    frame.move(std::min(offset, room.width()), std::min(offset, room.height()));
}

void MdiForm::Arrange(Arrangement arrangement) {
    const std::vector<ChildFrame*> frames = m_frame ? OpenFrames() : std::vector<ChildFrame*>();
    if (frames.empty())
        return;
    const QScopedValueRollback switching(m_frame->switching, true);
    const QMdiArea& area = *m_frame->area;
    const auto placeIn = [&](QSize room) {
        const QRect ground = FreeGround(area, room);
        if (arrangement == Cascade)
            PlaceInCascade(frames, ground);
        else
            PlaceInRow(frames, ground, arrangement == TileVertically);
    };
    QSize bars(0, 0);
    QSize before;
    do { // one bar may bring the other
        before = bars;
        const QSize room = area.maximumViewportSize() - before;
        placeIn(room);
        bars = before.expandedTo(BarsFor(area, frames, room));
    } while (bars != before);
    m_frame->area->setActiveSubWindow(frames.front());
    m_frame->front = frames.front();
}

// --- Menus

QMenu* MdiForm::AddMenu(const QString& name, const QString& caption, bool visible) {
    auto* menu = new QMenu(caption, m_frame->window);
    menu->setObjectName(name);
    if (visible)
        m_frame->window->menuBar()->addMenu(menu);
    return menu;
}

void MdiForm::AddCommand(QMenu* menu, const QString& name, const QString& caption,
                         std::function<void()> command) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(name);
    On(action, &QAction::triggered, [command = std::move(command)] { command(); });
}

void MdiForm::AddSeparator(QMenu* menu, const QString& name) {
    menu->addSeparator()->setObjectName(name);
}

void MdiForm::SetWindowList(QMenu* menu) {
    m_frame->windowMenu = menu;
    On(menu, &QMenu::aboutToShow, [this] { FillWindowList(); });
}

void MdiForm::FillWindowList() {
    QMenu* menu = m_frame->windowMenu;
    qDeleteAll(std::exchange(m_frame->windowList, {}));
    const std::shared_ptr<Form> active = ActiveForm();
    std::vector<std::shared_ptr<Form>> children = Loaded();
    std::erase_if(children, [](const std::shared_ptr<Form>& form) {
        return !form->m->frame || form->m->frame->isHidden();
    });
    if (children.empty())
        return;
    m_frame->windowList.append(menu->addSeparator());
    m_frame->windowList.back()->setObjectName(QStringLiteral("mnuWindowsListSeparator"));
    auto* marks = new QActionGroup(m_frame->windowList.back());
    QStringList captions;
    for (const std::shared_ptr<Form>& form : children)
        captions += form->Caption();
    for (std::size_t i = 0; i < children.size(); ++i) {
        const std::shared_ptr<Form>& form = children[i];
        const auto place = static_cast<qsizetype>(i);
        QString caption = captions[place];
        if (captions.count(caption) > 1) // told apart by their numbers
            caption += QStringLiteral(" (%1)").arg(captions.first(place + 1).count(captions[place]));
        QAction* entry = menu->addAction(caption.replace(u'&', QStringLiteral("&&")));
        entry->setObjectName(QStringLiteral("mnuWindowsList_%1").arg(m_frame->windowList.size() - 1));
        entry->setCheckable(true);
        marks->addAction(entry);
        entry->setChecked(form == active);
        m_frame->windowList.append(entry);
        On(entry, &QAction::triggered, [weak = std::weak_ptr(form)] {
            const std::shared_ptr<Form> chosen = weak.lock();
            if (!chosen || !chosen->IsLoaded())
                return;
            if (chosen->IsMinimised())
                chosen->m->frame->showNormal();
            chosen->Show();
        });
    }
}

void MdiForm::PopupMenu(const QString& name, QPoint screenPosition) {
    auto* menu = m_frame->window->findChild<QMenu*>(name);
    if (!menu)
        runtime::Raise(runtime::NoSuchMember);
    menu->exec(screenPosition);
}

void PopupMenu(const QString& name, QPoint screenPosition) {
    if (MdiForm* frame = MdiForm::Current())
        frame->PopupMenu(name, screenPosition);
}

} // namespace forms
