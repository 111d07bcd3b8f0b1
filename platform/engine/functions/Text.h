#pragma once

#include <QString>
#include <QStringView>

namespace engine::functions {

/// Capitals and small letters, character by character, so that the length stays.
QString ToUpper(QString text);
QString ToLower(QString text);

/// A text that begins with a mark of the byte order as SQLite has to get it: SQLite takes the mark at the
/// start away, or obeys it, so one of its own stands in front. Null for any other text, which SQLite keeps.
QString Marked(QStringView text);

} // namespace engine::functions
