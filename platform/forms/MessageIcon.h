#pragma once

#include <QIcon>
#include <QStyle>

namespace forms {

/// The icon of a message box where no icon theme has one: drawn, sharp at every size. Null if the theme has
/// it or the icon is none of a message box.
QIcon MessageIcon(QStyle::StandardPixmap which);

} // namespace forms
