#pragma once

#include "platform/forms/BusyPointer.h"
#include "platform/forms/ListBox.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

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
QLineEdit* MakeTextBox(const QString& name, int maxLength = 0, QWidget* parent = nullptr);

/// White with dark text (a criterion that counts, in any theme), or the form's background and text.
void PaintField(QWidget* field, bool white);
/// Paints all such fields anew after a change of the theme.
void RepaintFields();

/// The apostrophe rule: every ' of the field becomes ^.
void ReplaceApostrophes(QLineEdit* field);

/// The whole text of the field selected.
void SelectAll(QLineEdit* field);

} // namespace forms
