#pragma once

#include "platform/engine/sql/QueryBinder.h"

namespace engine::sql {

/// A value on its way into a column, converted to its type.
struct NewValue {
    int column = 0; ///< place in the table
    TermPtr value;
    bool key = false; ///< without it the row cannot stand
};

/// INSERT, and the second half of SELECT ... INTO.
struct BoundInsert {
    const TableInfo* table = nullptr;
    std::vector<NewValue> row = {};
    QueryPtr from = {}; ///< where the rows come from; null for one row
};

/// UPDATE and DELETE.
struct BoundChange {
    const ScopeSource* target = nullptr;
    bool joins = false; ///< the rows to change are found by a query over more than the target
    TermPtr from;
    std::vector<NewValue> values = {};    ///< UPDATE
    std::vector<Operand> conditions = {}; ///< each of them is to hold
};

// Each tells the plan its verb and its target.
BoundInsert BindInsert(Context& context, const Insert& insert, Plan& plan);
BoundChange BindUpdate(Context& context, Scope& scope, const Update& update, Plan& plan);
BoundChange BindDelete(Context& context, Scope& scope, const Delete& remove, Plan& plan);
/// A table made of a query: the columns keep their types, and no keys. A counter goes on counting in the copy
/// of one table; in any other query its numbers may be missing or repeated.
BoundInsert BindInto(Context& context, const Query& query, Plan& plan);

} // namespace engine::sql
