#include "tests/support/WindowWalk.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QCalendarWidget>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>

#include <map>
#include <set>

namespace test {

namespace {

template <class... Widgets>
bool IsOne(const QWidget& widget) {
    return (qobject_cast<const Widgets*>(&widget) || ...);
}

bool IsField(const QWidget& widget) {
    return IsOne<QLineEdit, QPlainTextEdit, QAbstractItemView, QAbstractSpinBox, QCalendarWidget>(widget);
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
        if (IsInner(*widget, window) ||
            (!IsField(*widget) && !IsOne<QLabel, QAbstractButton, QTabWidget>(*widget)))
            continue;
        const QString name = widget->objectName();
        const auto tell = [&](const char* fault) {
            faults += QLatin1String(widget->metaObject()->className()) + u' ' + name + QLatin1String(fault);
        };
        if (name.isEmpty() || name.startsWith(QStringLiteral("qt_")) || !names.insert(name).second)
            tell(" has no name of its own");
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const auto* label = qobject_cast<const QLabel*>(widget);
        if (widget->accessibleName().isEmpty() && (IsField(*widget) || (button && button->text().isEmpty())))
            tell(" has no accessible name");
        const QString caption = button ? button->text() : label && label->buddy() ? label->text() : QString();
        const QString letter = QKeySequence::mnemonic(caption).toString();
        if (!letter.isEmpty() && !letters.insert(letter).second)
            tell(" shares its letter");
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
    };
    const auto word = words.find(place->role());
    const QString role = word == words.end() ? QString::number(place->role()) : word->second;
    QString name = place->text(QAccessible::Name).remove(u'&');
    if (name.endsWith(u':'))
        name.chop(1);
    return role + u' ' + name;
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
