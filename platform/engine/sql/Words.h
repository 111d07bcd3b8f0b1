#pragma once

#include "platform/engine/Value.h"

#include <QStringView>

#include <optional>

namespace engine::sql {

/// Whether a bare word is a keyword, which stands for a name only in brackets.
bool IsReserved(QStringView word);

/// The type that a word of a column definition names.
std::optional<DataType> TypeOfWord(QStringView word);

/// Whether a table or a column may be called so.
bool IsValidName(QStringView name);

bool SameName(QStringView a, QStringView b);

} // namespace engine::sql
