#include "platform/forms/Controls.h"

#include "platform/forms/RowDelegate.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPalette>
#include <QShortcut>

#include <algorithm>

namespace forms {

namespace {

constexpr auto PaintedWhite = "paintedWhite"; ///< property of a field that PaintField has coloured

QString PlainText(const QString& caption) {
    QString text = caption;
    return text.remove(u'&');
}

} // namespace

void NameField(QWidget* field, const QString& name, QLabel* label) {
    field->setObjectName(name);
    field->setAccessibleName(PlainText(label->text()));
    label->setBuddy(field);
}

QLabel* MakeLabel(const QString& name, const QString& caption, QWidget* parent) {
    return Named(new QLabel(caption, parent), name);
}

QPushButton* MakeButton(const QString& name, const QString& caption, QWidget* parent) {
    auto* button = Named(new QPushButton(caption, parent), name);
    button->setAutoDefault(false); // the form's default button keeps its mark
    return button;
}

QHBoxLayout* ButtonRow(const QList<QPushButton*>& buttons) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    int width = 0;
    for (const QPushButton* button : buttons)
        width = std::max(width, button->sizeHint().width());
    for (QPushButton* button : buttons) {
        button->setMinimumWidth(width);
        row->addWidget(button);
    }
    return row;
}

TextBox* MakeTextBox(const QString& name, int maxLength, QWidget* parent) {
    auto* box = Named(new TextBox(parent), name);
    if (maxLength > 0)
        box->setMaxLength(maxLength);
    return box;
}

QListWidget* MakeTickList(const QString& name, QLabel* label) {
    auto* list = new QListWidget;
    list->setItemDelegate(new RowDelegate(list));
    NameField(list, name, label);
    return list;
}

int HeightForRows(const QListWidget& list, int rows) {
    return rows * (list.fontMetrics().height() + RowDelegate::Padding) + 2 * list.frameWidth();
}

QTabWidget* MakeTabs(const QString& name, QWidget* window) {
    auto* tabs = Named(new QTabWidget(window), name);
    const auto turnOn = [window, tabs](Qt::Key key, int pages) {
        auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), window);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        QObject::connect(shortcut, &QShortcut::activated, tabs, [tabs, pages] {
            const int page = tabs->currentIndex() + pages;
            if (page < 0 || page >= tabs->count())
                return;
            tabs->setCurrentIndex(page);
            FocusFirstIn(*tabs->currentWidget());
        });
    };
    turnOn(Qt::Key_PageUp, -1);
    turnOn(Qt::Key_PageDown, 1);
    return tabs;
}

void FocusFirstIn(QWidget& ground) {
    for (QWidget* next = ground.nextInFocusChain(); next && next != &ground;
         next = next->nextInFocusChain()) {
        if (next->isEnabled() && (next->focusPolicy() & Qt::TabFocus) && ground.isAncestorOf(next) &&
            next->isVisibleTo(&ground) && !next->focusProxy()) {
            next->setFocus();
            return;
        }
    }
}

void GroupOptions(const QList<QRadioButton*>& options) {
    for (QRadioButton* option : options) {
        const auto follow = [option](bool chosen) {
            option->setFocusPolicy(chosen ? Qt::StrongFocus : Qt::ClickFocus);
        };
        follow(option->isChecked());
        QObject::connect(option, &QRadioButton::toggled, option, follow);
    }
}

void Lock(QLineEdit* field) {
    field->setReadOnly(true);
    PaintField(field, false);
}

void PaintField(QWidget* field, bool white) {
    const QPalette theme = QApplication::palette(field);
    QPalette palette = theme;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QColor text = group == QPalette::Disabled ? QColor(Qt::darkGray) : QColor(Qt::black);
        palette.setColor(group, QPalette::Base,
                         white ? QColor(Qt::white) : theme.color(group, QPalette::Window));
        palette.setColor(group, QPalette::Text, white ? text : theme.color(group, QPalette::WindowText));
    }
    field->setPalette(palette);
    field->setProperty(PaintedWhite, white);
}

void RepaintFields() {
    for (QWidget* field : QApplication::allWidgets()) {
        const QVariant white = field->property(PaintedWhite);
        if (white.isValid())
            PaintField(field, white.toBool());
    }
}

void ReplaceApostrophes(QLineEdit* field) {
    QString text = field->text();
    const auto* box = qobject_cast<const TextBox*>(field);
    if (!text.contains(u'\'') || (box && box->ShowsPart()))
        return;
    const int cursor = field->cursorPosition();
    field->setText(text.replace(u'\'', u'^'));
    field->setCursorPosition(cursor);
}

} // namespace forms
