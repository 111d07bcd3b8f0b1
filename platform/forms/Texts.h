#pragma once

#include <QString>

class QWidget;

namespace forms {

/// The most characters (UTF-16 units) of one text that a control can show: more than a row of the widest
/// screen holds. Drawing, measuring and reading out take their time for each, seen or not.
inline constexpr qsizetype MostShown = 1024;

/// What is shown of a text: all of it, or its beginning and an ellipsis.
QString Shown(QStringView text, qsizetype most = MostShown);

/// At most so many units from the start, without half a surrogate pair at the end.
QStringView Beginning(QStringView text, qsizetype most);

/// The text on one line: line ends, tabs and other control characters, with the blanks around them, are one
/// blank inside the text and nothing at its ends. Halves of surrogate pairs go. `cursor`, a place in the
/// text, moves along.
QString OneLine(QStringView text, qsizetype& cursor);

/// The text without halves of surrogate pairs.
QString WithoutHalves(QStringView text);

/// What a tooltip is given to show the text as it is, broken into lines if it is long.
QString PlainToolTip(const QString& text);
/// A tooltip that shows the text as it is, whatever it looks like.
void SetPlainToolTip(QWidget* widget, const QString& text);

} // namespace forms
