#include "tests/support/WindowWalk.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTest>
#include <QTextEdit>

#include <map>
#include <set>

namespace test {

namespace {

bool IsField(const QWidget& widget) {
    return qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QTextEdit*>(&widget) ||
           qobject_cast<const QPlainTextEdit*>(&widget) || qobject_cast<const QAbstractItemView*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(&widget) || qobject_cast<const QComboBox*>(&widget) ||
           qobject_cast<const QCalendarWidget*>(&widget);
}

bool IsControl(const QWidget& widget) {
    return IsField(widget) || qobject_cast<const QLabel*>(&widget) ||
           qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QTabWidget*>(&widget);
}

/// Whether the widget is a part that the toolkit has put into one of the controls.
bool IsInner(const QWidget& widget, const QWidget& window) {
    for (const QWidget* parent = widget.parentWidget(); parent && parent != &window;
         parent = parent->parentWidget())
        if (IsField(*parent) || parent->inherits("QTabBar"))
            return true;
    return false;
}

} // namespace

QStringList WindowFaults(const QWidget& window) {
    QStringList faults;
    std::set<QString> names;
    std::set<QString> letters;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (!IsControl(*widget) || IsInner(*widget, window))
            continue;
        const QString kind = QString::fromLatin1(widget->metaObject()->className());
        const QString name = widget->objectName();
        if (name.isEmpty() || name.startsWith(QStringLiteral("qt_")))
            faults.append(QStringLiteral("%1 has no name").arg(kind));
        else if (!names.insert(name).second)
            faults.append(QStringLiteral("the name %1 stands twice").arg(name));
        if (IsField(*widget) && widget->accessibleName().isEmpty())
            faults.append(QStringLiteral("%1 %2 has no accessible name").arg(kind, name));

        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const auto* label = qobject_cast<const QLabel*>(widget);
        if (button && button->text().isEmpty() && button->accessibleName().isEmpty())
            faults.append(QStringLiteral("button %1 has neither text nor accessible name").arg(name));
        const QString caption = button ? button->text() : label && label->buddy() ? label->text() : QString();
        const QString letter = QKeySequence::mnemonic(caption).toString();
        if (!letter.isEmpty() && !letters.insert(letter).second)
            faults.append(QStringLiteral("%1 stands twice, again at %2").arg(letter, name));
    }
    return faults;
}

namespace {

QString Bare(QString text) {
    text.remove(u'&');
    return text.endsWith(u':') ? text.chopped(1) : text;
}

template <class... Widgets>
bool IsOne(const QWidget& widget) {
    return (qobject_cast<const Widgets*>(&widget) || ...);
}

/// The role that a control has to be found under; none for what is no control.
QAccessible::Role RoleOf(const QWidget& widget) {
    if (IsOne<QLineEdit, QPlainTextEdit>(widget))
        return QAccessible::EditableText;
    if (IsOne<QAbstractSpinBox>(widget))
        return QAccessible::SpinBox;
    if (IsOne<QCalendarWidget, QTableView>(widget))
        return QAccessible::Table;
    if (IsOne<QListWidget>(widget))
        return QAccessible::List;
    if (IsOne<QComboBox>(widget))
        return QAccessible::ComboBox;
    if (IsOne<QCheckBox>(widget))
        return QAccessible::CheckBox;
    if (IsOne<QRadioButton>(widget))
        return QAccessible::RadioButton;
    if (IsOne<QPushButton>(widget))
        return QAccessible::Button;
    if (IsOne<QTabBar>(widget))
        return QAccessible::PageTabList;
    if (IsOne<QGroupBox>(widget))
        return QAccessible::Grouping;
    if (widget.inherits("LinkLabel"))
        return QAccessible::Link;
    return QAccessible::NoRole;
}

using Tree = std::map<const QObject*, QAccessibleInterface*>;

void Gather(QAccessibleInterface* place, Tree& tree) {
    if (!place || !place->object() || !tree.emplace(place->object(), place).second)
        return;
    for (int child = 0; child < place->childCount(); ++child)
        Gather(place->child(child), tree);
}

/// The text that the user sees beside the control or on it.
QString CaptionOf(const QWidget& widget, const QAccessibleInterface& place) {
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
        return button->text();
    if (const auto* group = qobject_cast<const QGroupBox*>(&widget))
        return group->title();
    for (const auto& relation : place.relations(QAccessible::Label))
        if (const auto* label = qobject_cast<const QLabel*>(relation.first->object()))
            return label->text();
    return {};
}

} // namespace

QStringList SpokenFaults(QWidget& window) {
    QAccessible::setActive(true);
    QStringList faults;
    Tree tree;
    Gather(QAccessible::queryAccessibleInterface(&window), tree);
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const QAccessible::Role role = RoleOf(*widget);
        if (role == QAccessible::NoRole || IsInner(*widget, window))
            continue;
        const QString what =
            QString::fromLatin1(widget->metaObject()->className()) + u' ' + widget->objectName();
        const auto found = tree.find(widget);
        if (found == tree.end()) {
            faults.append(what + QStringLiteral(" is not in the tree"));
            continue;
        }
        const QAccessibleInterface& place = *found->second;
        const QString name = place.text(QAccessible::Name);
        const QString caption = CaptionOf(*widget, place);
        if (place.role() != role)
            faults.append(QStringLiteral("%1 has the role %2").arg(what).arg(place.role()));
        if (name.isEmpty())
            faults.append(what + QStringLiteral(" has no name"));
        else if (!caption.isEmpty() && !qobject_cast<const QCalendarWidget*>(widget) &&
                 Bare(name) != Bare(caption))
            faults.append(QStringLiteral("%1 is called %2 beside %3").arg(what, name, caption));
        if (widget->isEnabled() == place.state().disabled)
            faults.append(what + QStringLiteral(" is not told to be enabled or not"));
    }
    return faults;
}

QString Spoken(QWidget* widget) {
    QAccessible::setActive(true);
    const QAccessibleInterface* place = widget ? QAccessible::queryAccessibleInterface(widget) : nullptr;
    if (!place)
        return QStringLiteral("nothing");
    static const std::map<QAccessible::Role, QString> words = {
        {QAccessible::EditableText, QStringLiteral("text")},
        {QAccessible::SpinBox, QStringLiteral("date")},
        {QAccessible::Table, QStringLiteral("table")},
        {QAccessible::List, QStringLiteral("list")},
        {QAccessible::CheckBox, QStringLiteral("box")},
        {QAccessible::RadioButton, QStringLiteral("option")},
        {QAccessible::Button, QStringLiteral("button")},
        {QAccessible::PageTabList, QStringLiteral("tabs")},
        {QAccessible::Link, QStringLiteral("link")},
        {QAccessible::ButtonMenu, QStringLiteral("menu")},
    };
    const auto word = words.find(place->role());
    const QString role = word == words.end() ? QString::number(place->role()) : word->second;
    return role + u' ' + Bare(place->text(QAccessible::Name));
}

QString SpokenRound() {
    constexpr int LongestRound = 40;
    QStringList said;
    const QWidget* first = QApplication::focusWidget();
    QWidget* field = QApplication::focusWidget();
    do {
        said.append(Spoken(field));
        if (field)
            QTest::keyClick(field, Qt::Key_Tab);
        field = QApplication::focusWidget();
    } while (field && field != first && said.size() < LongestRound);
    return said.join(QStringLiteral("; "));
}

} // namespace test
