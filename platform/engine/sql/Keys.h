#pragma once

#include "platform/engine/sql/Scope.h"
#include "platform/engine/sql/Tree.h"

namespace engine::sql {

/// Whether an index in memory finds the rows of a WHERE on one table; the plan is told the conditions.
bool FindKeys(const Node* where, const Scope& scope, Plan& plan);

/// Which rows of its table a statement looks at: all of them, or those that an index has named.
enum class Rows { All, One, Listed };
/// `alias.rowid = ?` or `alias.rowid IN (...)` for the rows found, which come as parameter `number`.
TermPtr KeyTerm(const ScopeSource& source, int number, Rows rows);
/// The column and the literal of `column = literal`, if that is what it is.
std::optional<KeyCondition> KeyOf(const Node& node, const Scope& scope);

} // namespace engine::sql
