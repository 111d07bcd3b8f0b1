#include "platform/forms/MenuAccess.h"

#include <QAccessibleObject>
#include <QAccessibleWidget>
#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace forms {

namespace {

QMenuBar* BarOf(const QAction* title) {
    for (QObject* owner : title->associatedObjects())
        if (auto* bar = qobject_cast<QMenuBar*>(owner))
            return bar;
    return nullptr;
}

class Title final : public QAccessibleObject, public QAccessibleActionInterface {
public:
    using QAccessibleObject::QAccessibleObject;

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : QAccessibleObject::interface_cast(type);
    }

    QAccessible::Role role() const override { return QAccessible::PopupMenu; }
    QAccessible::State state() const override {
        QAccessible::State state;
        const QMenuBar* bar = BarOf(Action());
        state.focusable = true;
        state.hasPopup = true;
        state.focused = bar && bar->activeAction() == Action();
        state.disabled = !Action()->isEnabled();
        state.invisible = !bar || !bar->isVisible() || !Action()->isVisible();
        return state;
    }
    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Accelerator)
            return QKeySequence::mnemonic(Action()->text()).toString(QKeySequence::NativeText);
        return which == QAccessible::Name ? Action()->text().remove(u'&') : QString();
    }
    QRect rect() const override {
        const QMenuBar* bar = BarOf(Action());
        if (!bar)
            return {};
        const QRect place = bar->actionGeometry(Action());
        return {bar->mapToGlobal(place.topLeft()), place.size()};
    }

    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(BarOf(Action()));
    }
    int childCount() const override { return Action()->menu() ? 1 : 0; }
    QAccessibleInterface* child(int index) const override {
        return index == 0 ? QAccessible::queryAccessibleInterface(Action()->menu()) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return child && child->object() == Action()->menu() ? 0 : -1;
    }

    QStringList actionNames() const override { return {showMenuAction()}; }
    void doAction(const QString& name) override {
        if (QMenuBar* bar = BarOf(Action()); bar && name == showMenuAction())
            bar->setActiveAction(Action());
    }
    QStringList keyBindingsForAction(const QString& /*name*/) const override {
        return {text(QAccessible::Accelerator)};
    }

private:
    QAction* Action() const { return static_cast<QAction*>(object()); }
};

class Bar final : public QAccessibleWidget {
public:
    explicit Bar(QMenuBar* bar)
        : QAccessibleWidget(bar, QAccessible::MenuBar) {}

    int childCount() const override { return static_cast<int>(widget()->actions().size()); }
    QAccessibleInterface* child(int index) const override {
        QAction* title = widget()->actions().value(index);
        return title ? QAccessible::queryAccessibleInterface(title) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        for (int index = 0; child && index < childCount(); ++index)
            if (widget()->actions()[index] == child->object())
                return index;
        return -1;
    }
};

QAccessibleInterface* Make(const QString& /*className*/, QObject* object) {
    if (auto* bar = qobject_cast<QMenuBar*>(object))
        return new Bar(bar);
    auto* action = qobject_cast<QAction*>(object);
    return action && BarOf(action) ? new Title(action) : nullptr;
}

} // namespace

void InstallMenuAccess() {
    QAccessible::installFactory(Make);
}

} // namespace forms
