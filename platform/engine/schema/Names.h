#pragma once

#include <QStringList>

#include <optional>
#include <string>

namespace engine {

inline constexpr qsizetype longestName = 64;

/// Whether a table or a column may be called so.
bool IsValidName(QStringView name);
/// The one comparison of names.
bool SameName(QStringView a, QStringView b);
bool HasName(const QStringList& names, QStringView name);
/// A name as SQLite takes it, in quotes.
QString QuoteName(QStringView name);
/// A text as SQLite takes it, in quotes.
QString QuoteText(QStringView text);
/// Names in quotes, separated by commas.
QString QuoteNames(const QStringList& names);
/// The word in capitals; nothing if it is longer or has other letters than those of ASCII.
std::optional<std::string> Capitals(QStringView word, std::size_t longest);

} // namespace engine
