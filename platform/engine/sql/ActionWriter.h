#pragma once

#include "platform/engine/sql/QueryWriter.h"

namespace engine::sql {

// INSERT, UPDATE, DELETE and SELECT ... INTO. The first two come in two forms: one that fails, and one that
// leaves failing rows out:
//   UPDATE "t02" AS q1 SET "t02cval" = zv_to(10, 50, 't02.t02cval', q1."t02rcid") WHERE q1."t02rcid" > ?1
//   UPDATE OR IGNORE "t02" AS q1 SET "t02cval" = zv_to(10, 50, NULL, q1."t02rcid") WHERE q1."t02rcid" > ?1

void WriteInsert(Context& context, const Insert& insert, Plan& plan);
void WriteUpdate(Context& context, const Update& update, Plan& plan);
void WriteDelete(Context& context, const Delete& remove, Plan& plan);
void WriteInto(Context& context, const Query& query, Plan& plan);

} // namespace engine::sql
