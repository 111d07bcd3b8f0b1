#pragma once

#include "platform/engine/sql/Plan.h"

namespace engine::sql {

/// Compares a schema statement with the file. Failures: 3010, 3371, 3375, 3376, 3372, 3380, 3381, 3283.
void CheckSchemaChange(const SchemaChange& change, const Catalog& catalog);

} // namespace engine::sql
