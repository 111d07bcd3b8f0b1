#pragma once

#include <QString>
#include <QStringView>

namespace engine::functions {

/// Capitals and small letters, character by character, so that the length stays.
QString ToUpper(QString text);
QString ToLower(QString text);

} // namespace engine::functions
