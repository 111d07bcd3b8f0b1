#pragma once

#include <QString>

#include <optional>
#include <string>

namespace engine {

/// Whether a table or a column may be called so.
bool IsValidName(QStringView name);
bool SameName(QStringView a, QStringView b);
/// A name as SQLite takes it, in quotes.
QString QuoteName(QStringView name);
/// The word in capitals; nothing if it is longer or has other letters than those of ASCII.
std::optional<std::string> Capitals(QStringView word, std::size_t longest);

} // namespace engine
