#pragma once

#include <QString>
#include <QStringView>

namespace engine::functions {

/// Capitals and small letters, character by character, so that the length stays.
QString ToUpper(QString text);
QString ToLower(QString text);

/// -1, 0, 1 as the dialect's comparison operators see two texts: equal without regard to case, else by the
/// alphabet.
int CompareTexts(QStringView a, QStringView b);

} // namespace engine::functions
