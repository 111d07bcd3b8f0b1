#pragma once

#include "platform/engine/sql/Scope.h"
#include "platform/engine/sql/Tree.h"

namespace engine::sql {

/// The column and the literal of `column = literal`, or of a LIKE without wildcards, if that is what the node
/// is; a number column against a whole number, or a text column against a text.
std::optional<KeyCondition> KeyOf(const Node& node, const Scope& scope);

/// A further condition for a WHERE over one table that names a value for the first column of a look-up:
/// `q1."a02clid" = q1."a02clid"`, without which SQLite does not take the look-up's index. Else null.
TermPtr LookUpTerm(const Node* where, const Scope& scope);

} // namespace engine::sql
