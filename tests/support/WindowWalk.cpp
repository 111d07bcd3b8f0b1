#include "tests/support/WindowWalk.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QCalendarWidget>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTextEdit>

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

} // namespace test
