#include "platform/engine/EngineError.h"
#include "platform/engine/sql/Parser.h"

#include <algorithm>

namespace engine::sql {

namespace {

constexpr int deepestQueries = 50;

} // namespace

std::unique_ptr<Query> Parser::ParseQueryAlone() {
    auto query = ParseQuery();
    ExpectStatementEnd(SyntaxInFrom);
    return query;
}

/// A query in parentheses inside an expression or a FROM.
std::unique_ptr<Query> Parser::ParseNestedQuery() {
    const Nesting parentheses(m_parentheses, deepestQueries);
    const std::size_t start = m_clauseStart;
    const Clause clause = m_clause;
    Take();
    auto query = ParseQuery();
    if (!TakeSign(u')'))
        FailOpenParenthesis();
    m_clauseStart = start;
    m_clause = clause;
    return query;
}

std::unique_ptr<Query> Parser::ParseQuery() {
    auto query = std::make_unique<Query>();
    query->parts.push_back(ParseQueryPart());
    while (TakeWord("UNION")) {
        const bool all = TakeWord("ALL");
        Expect(AtQuery(), SyntaxInUnion);
        query->parts.push_back(ParseQueryPart());
        query->parts.back().all = all;
    }
    if (AtWord("ORDER"))
        ParseOrderBy(*query);
    if (AtWord("WITH") && AtWord("OWNERACCESS", 1) && AtWord("OPTION", 2)) {
        Skip(3); // the engine has no owners; the words change nothing
    }
    for (const auto& part : query->parts) {
        if (part.query)
            query->depth = std::max(query->depth, part.query->depth + 1);
    }
    return query;
}

QueryPart Parser::ParseQueryPart() {
    QueryPart part;
    if (Peek().Is(u'('))
        part.query = ParseNestedQuery();
    else
        part.select = ParseSelect();
    return part;
}

std::unique_ptr<Select> Parser::ParseSelect() {
    auto select = std::make_unique<Select>();
    ExpectWord("SELECT", ReservedWord);
    if (TakeWord("DISTINCT"))
        select->distinct = true;
    else if (TakeWord("DISTINCTROW"))
        select->distinctRow = true;
    else
        TakeWord("ALL");
    if (TakeWord("TOP"))
        ParseTop(*select);
    ParseItems(*select);
    if (TakeWord("INTO"))
        select->into = ExpectName(ReservedWord);
    if (TakeWord("FROM")) {
        ParseFrom(select->from);
        Expect(AtClauseEnd(), SyntaxInFrom);
    }
    select->where = ParseCondition("WHERE", SyntaxInWhere);
    if (AtWord("GROUP"))
        ParseGroupBy(*select);
    select->having = ParseCondition("HAVING", SyntaxInHaving);
    return select;
}

void Parser::ParseTop(Select& select) {
    const Token number = Take();
    const Value value = Lexer::LiteralValue(number);
    Expect(number.kind == TokenKind::Integer && value.Long() >= 1, InvalidTop);
    select.top = value.Long();
    select.percent = TakeWord("PERCENT");
    Expect(!select.percent || select.top <= 100, InvalidTop);
}

void Parser::ParseItems(Select& select) {
    do {
        select.items.push_back(ParseItem(ReservedWord));
    } while (TakeSign(u','));
    if (!AtWord("FROM") && !AtWord("INTO") && !AtClauseEnd())
        FailBehindExpression();
}

SelectItem Parser::ParseItem(const EngineError& error) {
    SelectItem item;
    if (TakeSign(u'*'))
        return item;
    const bool point = Peek(1).Is(u'.') || Peek(1).Is(u'!');
    if (AtName() && point && Peek(2).Is(u'*')) {
        item.qualifier = Lexer::NameOf(Take()).toString();
        Skip(2);
        return item;
    }
    ExpectItem(error);
    Expect(!IsOneOf(Peek(), {"FROM", "INTO", "AS"}), error);
    item.expression = ParseExpression(Clause::Item);
    if (TakeWord("AS"))
        item.alias = ExpectName(error);
    return item;
}

void Parser::ParseFrom(std::vector<SourcePtr>& from) {
    do {
        from.push_back(ParseJoins());
    } while (TakeSign(u','));
}

SourcePtr Parser::ParseJoins() {
    SourcePtr source = ParseSource();
    const bool joins = AtWord("INNER") || AtWord("LEFT") || AtWord("RIGHT") || AtWord("JOIN");
    return joins ? ParseJoinTail(std::move(source)) : std::move(source);
}

SourcePtr Parser::ParseJoinTail(SourcePtr left) {
    auto join = std::make_unique<Source>();
    if (TakeWord("LEFT"))
        join->join = JoinKind::Left;
    else if (TakeWord("RIGHT"))
        join->join = JoinKind::Right;
    else
        ExpectWord("INNER", SyntaxInFrom);
    if (join->join != JoinKind::Inner)
        TakeWord("OUTER");
    ExpectWord("JOIN", SyntaxInFrom);
    join->left = std::move(left);
    join->right = ParseJoins();
    Expect(!AtWord("USING"), SyntaxInFrom);
    ExpectWord("ON", SyntaxInJoin);
    join->on = ParseExpression(Clause::Condition);
    // A further join stands in parentheses with the first.
    if (!AtClauseEnd() && !Peek().Is(u',') && !Peek().Is(u')') && !AtWord("SET") && !AtWord("ON"))
        FailBehindExpression();
    join->depth = std::max(join->left->depth, join->right->depth) + 1;
    Expect(join->depth <= deepestQueries, QueryTooComplex);
    return join;
}

SourcePtr Parser::ParseSource() {
    auto source = std::make_unique<Source>();
    if (Peek().Is(u'(')) {
        if (AtQuery()) {
            source->query = ParseNestedQuery();
            source->alias = ParseAlias();
            return source;
        }
        const Nesting parentheses(m_parentheses, deepestQueries);
        Take();
        SourcePtr joined = ParseJoins();
        ExpectSign(u')', SyntaxInFrom);
        return joined;
    }
    if (Peek().kind == TokenKind::Name && Peek(1).Is(u'.') &&
        Lexer::NameOf(Peek()).trimmed().startsWith(u"SELECT", Qt::CaseInsensitive))
        return ParseBracketQuery();
    source->table = ExpectName(SyntaxInFrom);
    source->alias = ParseAlias();
    return source;
}

/// `[SELECT ...]. AS t`: the brackets hold a statement; its literals are written out, since the name hides
/// them.
SourcePtr Parser::ParseBracketQuery() {
    auto source = std::make_unique<Source>();
    source->query = Parser(Lexer::NameOf(Take()), false).ParseQueryAlone();
    Take();
    source->alias = ParseAlias();
    return source;
}

QString Parser::ParseAlias() {
    if (TakeWord("AS"))
        return ExpectName(SyntaxInFrom);
    const bool columns = AtWord("USING") && Peek(1).Is(u'(');
    return AtName() && !columns ? Lexer::NameOf(Take()).toString() : QString();
}

NodePtr Parser::ParseCondition(std::string_view keyword, const EngineError& error) {
    if (!TakeWord(keyword))
        return {};
    Expect(!AtClauseEnd(), error);
    NodePtr condition = ParseExpression(Clause::Condition);
    ExpectClauseEnd();
    return condition;
}

void Parser::ParseGroupBy(Select& select) {
    Take();
    ExpectWord("BY", SyntaxInGroupBy);
    do {
        ExpectItem(SyntaxInGroupBy);
        select.groupBy.push_back(ParseExpression(Clause::Item));
    } while (TakeSign(u','));
    ExpectClauseEnd();
}

void Parser::ParseOrderBy(Query& query) {
    Take();
    ExpectWord("BY", SyntaxInOrderBy);
    do {
        ExpectItem(SyntaxInOrderBy);
        OrderItem item;
        item.expression = ParseExpression(Clause::Item);
        item.descending = TakeWord("DESC");
        if (!item.descending)
            TakeWord("ASC");
        query.orderBy.push_back(std::move(item));
    } while (TakeSign(u','));
    ExpectClauseEnd();
}

} // namespace engine::sql
