#pragma once

#include "platform/engine/Value.h"

#include <QStringView>

#include <optional>

namespace engine::sql {

/// Whether a bare word is a keyword, which stands for a name only in brackets.
bool IsReserved(QStringView word);

} // namespace engine::sql
