#pragma once

#include "platform/forms/BusyPointer.h"
#include "platform/forms/ListBox.h"
#include "platform/forms/TextBox.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

class QHBoxLayout;

namespace forms {

/// Sets object name, and as accessible name the label's text; makes the label the field's buddy.
void NameField(QWidget* field, const QString& name, QLabel* label);

template <class Widget>
Widget* Named(Widget* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

QLabel* MakeLabel(const QString& name, const QString& caption, QWidget* parent = nullptr);
QPushButton* MakeButton(const QString& name, const QString& caption, QWidget* parent = nullptr);
/// The buttons of a window in their order, at the right, all as wide as the widest.
QHBoxLayout* ButtonRow(const QList<QPushButton*>& buttons);
/// A one-line text box; maxLength 0 sets no limit.
TextBox* MakeTextBox(const QString& name, int maxLength = 0, QWidget* parent = nullptr);

/// A list of texts with ticks.
QListWidget* MakeTickList(const QString& name, QLabel* label);
/// Height of a list that shows so many rows whole.
int HeightForRows(const QListWidget& list, int rows);
/// Pages that the arrow keys turn on their tabs, and Ctrl+PgUp and Ctrl+PgDn anywhere in the window; a page
/// turned by these starts in its first field.
QTabWidget* MakeTabs(const QString& name, QWidget* window);

/// Gives the focus to the first field of the window or page in the tab order.
void FocusFirstIn(QWidget& ground);

/// Option buttons of one group: Tab goes to the chosen one, the arrow keys choose.
void GroupOptions(const QList<QRadioButton*>& options);

/// Shown only: it takes no typing, and looks it.
void Lock(QLineEdit* field);

/// White with dark text (a criterion that counts, in any theme), or the form's background and text.
void PaintField(QWidget* field, bool white);
/// Paints all such fields anew after a change of the theme.
void RepaintFields();

/// The apostrophe rule: every ' of the field becomes ^. A part of a stored text stays what it is.
void ReplaceApostrophes(QLineEdit* field);

} // namespace forms
