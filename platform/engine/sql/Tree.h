#pragma once

#include "platform/engine/sql/Operators.h"
#include "platform/engine/sql/Plan.h"

#include <memory>
#include <vector>

// The tree of a statement, as it is written: names are not resolved, places are offsets into the text.
namespace engine::sql {

struct Query;

enum class NodeKind : std::uint8_t {
    Null,
    Truth, ///< TRUE or FALSE, told by `negated`
    Literal,
    Name,
    Not,
    Negate,
    Binary,
    Between, ///< children: value, bound, bound
    InList,  ///< children: value, items
    InQuery, ///< child: value; query
    IsNull,
    Call,
    Subquery,
    Exists,
    Quantified, ///< child: value; op; query; `all`
};

struct Node {
    NodeKind kind = NodeKind::Null;
    Op op = Op::And;
    bool negated = false; ///< NOT in front of LIKE, IN, BETWEEN, behind IS; FALSE
    bool all = false;     ///< Quantified: ALL; Call: the argument is `*`
    int depth = 1;
    int literal = -1;     ///< place among the statement's literals, -1 if its value is written out
    bool pattern = false; ///< a literal directly behind LIKE, on whose wildcards the plan rests
    Token token;          ///< Literal
    QString qualifier;
    QString name; ///< Name, Call
    std::vector<std::unique_ptr<Node>> children;
    std::unique_ptr<Query> query;
    qsizetype start = 0;
    qsizetype end = 0;

    Node();
    ~Node();
};

using NodePtr = std::unique_ptr<Node>;

struct SelectItem {
    NodePtr expression; ///< null for `*`
    QString qualifier;  ///< of `t.*`
    QString alias;
};

enum class JoinKind : std::uint8_t { Inner, Left, Right };

/// A table, a sub-query or a join in FROM.
struct Source {
    QString table;
    QString alias;
    std::unique_ptr<Query> query;
    JoinKind join = JoinKind::Inner;
    std::unique_ptr<Source> left; ///< of a join, with `right` and `on`
    std::unique_ptr<Source> right;
    NodePtr on;
    int depth = 1;
};

using SourcePtr = std::unique_ptr<Source>;

struct OrderItem {
    NodePtr expression;
    bool descending = false;
};

struct Select {
    bool distinct = false;
    bool distinctRow = false;
    int top = 0; ///< 0: all
    bool percent = false;
    std::vector<SelectItem> items;
    QString into;
    std::vector<SourcePtr> from;
    NodePtr where;
    std::vector<NodePtr> groupBy;
    NodePtr having;
};

struct QueryPart {
    std::unique_ptr<Select> select; ///< or `query`, in parentheses
    std::unique_ptr<Query> query;
    bool all = false; ///< joined to the parts before by UNION ALL
};

/// One SELECT, or several joined by UNION.
struct Query {
    std::vector<QueryPart> parts;
    std::vector<OrderItem> orderBy;
    int depth = 1; ///< of the deepest nesting in it
};

struct Transform {
    NodePtr value;
    NodePtr pivot;
    std::vector<NodePtr> headings; ///< IN (...); without it the rows tell
};

struct Assignment {
    QString qualifier;
    QString column;
    NodePtr value;
};

struct Insert {
    QString table;
    QStringList columns;
    bool listed = false; ///< whether the columns are written
    std::vector<NodePtr> values;
    std::unique_ptr<Query> query; ///< instead of values
};

struct Update {
    std::vector<SourcePtr> from;
    std::vector<Assignment> assignments;
    NodePtr where;
};

struct Delete {
    std::vector<SelectItem> items;
    std::vector<SourcePtr> from;
    NodePtr where;
};

struct Statement {
    enum Kind { QueryKind, TableKind, InsertKind, UpdateKind, DeleteKind, SchemaKind };
    Kind kind = QueryKind;
    std::unique_ptr<Query> query;
    std::unique_ptr<Transform> transform; ///< with `query`
    QString table; ///< TableKind: a text that is the name of a table, or no statement at all
    Insert insert;
    Update update;
    Delete remove;
    SchemaChange schema;
};

} // namespace engine::sql
