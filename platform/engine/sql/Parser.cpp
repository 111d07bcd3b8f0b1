#include "platform/engine/sql/Parser.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/runtime/Failure.h"

#include <algorithm>
#include <array>

namespace engine::sql {

Node::Node() = default;
Node::~Node() = default;

namespace {

// The engine gives up on deeper texts; SQLite's own limit of 1000 levels lies behind it.
constexpr int deepestTree = 400;
constexpr int deepestNesting = 400;

constexpr QStringView misplacedPoint = u"Недопустимое использование '.', '!' или '()'";

} // namespace

Parser::Nesting::Nesting(int& depth, int deepest)
    : m_depth(depth) {
    Expect(depth < deepest, QueryTooComplex);
    ++m_depth;
}

Parser::Parser(QStringView text, bool bindsLiterals)
    : m_text(text) {
    Lexer lexer(text);
    int literals = 0;
    do {
        m_tokens.push_back(lexer.Next());
        m_literals.push_back(bindsLiterals && m_tokens.back().IsLiteral() ? literals++ : -1);
    } while (m_tokens.back().kind != TokenKind::End);
    m_closes.assign(m_tokens.size(), m_tokens.size() - 1);
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < m_tokens.size(); ++at) {
        if (m_tokens[at].Is(u'(')) {
            open.push_back(at);
        } else if (m_tokens[at].Is(u')') && !open.empty()) {
            m_closes[open.back()] = at;
            open.pop_back();
        }
    }
}

const Token& Parser::Peek(std::size_t ahead) const {
    return m_tokens[std::min(m_at + ahead, m_tokens.size() - 1)];
}

Token Parser::Take() {
    const Token token = Peek();
    if (m_at + 1 < m_tokens.size())
        ++m_at;
    return token;
}

void Parser::Skip(int tokens) {
    while (tokens-- > 0)
        Take();
}

bool Parser::TakeWord(std::string_view keyword) {
    if (!AtWord(keyword))
        return false;
    Take();
    return true;
}

bool Parser::TakeSign(char16_t sign) {
    if (!Peek().Is(sign))
        return false;
    Take();
    return true;
}

bool Parser::IsOneOf(const Token& token, std::initializer_list<std::string_view> words) {
    return std::ranges::any_of(words, [&](std::string_view word) { return token.IsWord(word); });
}

bool Parser::AtName(std::size_t ahead) const {
    const Token& token = Peek(ahead);
    return token.kind == TokenKind::Name || (token.kind == TokenKind::Word && !token.IsReserved());
}

bool Parser::AtQuery() const {
    std::size_t depth = 0;
    while (Peek(depth).Is(u'('))
        ++depth;
    if (!AtWord("SELECT", depth))
        return false;
    if (depth < 2)
        return true;
    // In `((SELECT ...) + 1)` only the inner parenthesis is a query.
    const Token& next = m_tokens[std::min(m_closes[m_at + 1] + 1, m_tokens.size() - 1)];
    return next.Is(u')') || next.IsWord("UNION") || next.IsWord("ORDER");
}

void Parser::Expect(bool holds, const EngineError& error) {
    if (!holds)
        RaiseEngine(error);
}

void Parser::ExpectWord(std::string_view keyword, const EngineError& error) {
    Expect(TakeWord(keyword), error);
}

void Parser::ExpectSign(char16_t sign, const EngineError& error) {
    Expect(TakeSign(sign), error);
}

QString Parser::ExpectName(const EngineError& error) {
    Expect(AtName(), error);
    return Lexer::NameOf(Take()).toString();
}

bool Parser::AtClauseEnd() const {
    return AtEnd() || (Peek().Is(u')') && m_parentheses > 0) ||
           IsOneOf(Peek(), {"WHERE", "GROUP", "HAVING", "ORDER", "UNION", "PIVOT", "WITH"});
}

bool Parser::AtNextClause() const {
    return AtEnd() || IsOneOf(Peek(), {"FROM", "GROUP", "HAVING", "INTO", "ORDER", "PIVOT", "SET", "UNION",
                                       "VALUES", "WHERE"});
}

void Parser::ExpectClauseEnd() const {
    if (!AtClauseEnd())
        FailBehindExpression();
}

void Parser::ExpectStatementEnd(const EngineError& error) {
    Expect(AtEnd(), error);
    TakeSign(u';');
    Expect(Peek().kind == TokenKind::End, TextBehindEnd);
}

void Parser::FailExpression(QStringView reason) const {
    if (m_clause == Clause::Criteria)
        RaiseEngine(SyntaxInCriteria, reason.toString());
    RaiseEngine(SyntaxInExpression, reason.toString(), ClauseText());
}

void Parser::FailPrimary() const {
    switch (Peek().kind) {
    case TokenKind::OpenText:
        FailExpression(u"Ошибка синтаксиса в строке");
    case TokenKind::OpenName:
        FailExpression(u"Отсутствует ), ] или элемент");
    case TokenKind::BadNumber:
        FailExpression(u"Ошибка синтаксиса в числе");
    case TokenKind::BadDate:
        FailExpression(u"Ошибка синтаксиса в дате");
    default:
        break;
    }
    if (Peek().Is(u'.') || Peek().Is(u'!'))
        FailExpression(misplacedPoint);
    FailExpression(Peek().Is(u',') ? u"Ошибка синтаксиса (запятая)"
                                   : u"Ошибка синтаксиса (пропущен оператор)");
}

void Parser::FailBehindExpression() const {
    if (Peek().Is(u')'))
        FailExpression(u"Лишняя )");
    FailExpression(Peek().Is(u',') ? u"Ошибка синтаксиса (запятая)"
                                   : u"Ошибка синтаксиса (пропущен оператор)");
}

void Parser::FailOpenParenthesis() const {
    if (!AtNextClause())
        FailBehindExpression();
    if (m_clause == Clause::Value)
        RaiseEngine(SyntaxInInsert);
    FailExpression(u"Отсутствует ), ] или элемент");
}

QString Parser::ClauseText() const {
    const qsizetype start = m_tokens[m_clauseStart].start;
    return m_text.mid(start, ClauseEnd(m_clauseStart) - start).toString();
}

qsizetype Parser::ClauseEnd(std::size_t from) const {
    int depth = 0;
    qsizetype end = m_tokens[from].start;
    for (std::size_t at = from; at < m_tokens.size(); ++at) {
        const Token& token = m_tokens[at];
        if (token.kind == TokenKind::End)
            break;
        if (token.Is(u'('))
            ++depth;
        if (token.Is(u')'))
            --depth;
        const bool behindError = at >= m_at;
        const bool outside = depth < 0 && (at > m_at || m_parentheses > 0);
        const bool word = (depth <= 0 || at == m_at) &&
                          IsOneOf(token, {"WHERE", "GROUP", "HAVING", "ORDER", "UNION", "FROM"});
        const bool itemEnd = m_clause == Clause::Item && depth <= 0 && token.Is(u',') && at > m_at;
        if (m_clause != Clause::Value && behindError && (token.Is(u';') || outside || word || itemEnd))
            break;
        end = token.end;
    }
    return end;
}

NodePtr Parser::NewNode(NodeKind kind, const Token& first, NodePtr left) const {
    auto node = std::make_unique<Node>();
    node->kind = kind;
    node->start = left ? left->start : first.start;
    node->end = first.end;
    if (left)
        node->children.push_back(std::move(left));
    return node;
}

NodePtr Parser::Finish(NodePtr node) const {
    int depth = node->query ? node->query->depth : 0;
    for (const auto& child : node->children)
        depth = std::max(depth, child->depth);
    node->depth = depth + 1;
    Expect(node->depth <= deepestTree, QueryTooComplex);
    if (m_at > 0)
        node->end = std::max(node->end, m_tokens[m_at - 1].end);
    return node;
}

/// The clause stays the current one behind the expression: what follows wrongly is reported as part of it.
NodePtr Parser::ParseExpression(Clause clause) {
    m_clauseStart = m_at;
    m_clause = clause;
    return ParseBinary(0);
}

NodePtr Parser::ParseBinary(int level) {
    NodePtr left = ParsePrefix();
    for (;;) {
        const Token& token = Peek();
        const bool negated = token.IsWord("NOT") && IsOneOf(Peek(1), {"LIKE", "IN", "BETWEEN"});
        const bool special = negated || IsOneOf(token, {"IN", "BETWEEN", "IS"});
        const Operator* found = special ? &OperatorOf(Op::Like) : FindOperator(token);
        if (!found || found->level < level)
            return left;
        if (found->level == ComparisonLevel) {
            left = ParseComparison(std::move(left));
            continue;
        }
        Take();
        NodePtr node = NewNode(NodeKind::Binary, token, std::move(left));
        node->op = found->op;
        node->children.push_back(ParseBinary(found->level + 1));
        left = Finish(std::move(node));
    }
}

NodePtr Parser::ParsePrefix() {
    const Nesting nesting(m_nesting, deepestNesting);
    const Token& token = Peek();
    const bool negates = token.IsWord("NOT");
    if (!negates && !token.Is(u'-') && !token.Is(u'+'))
        return ParsePrimary();
    Take();
    NodePtr operand = ParseBinary((negates ? NotLevel : NegateLevel) + 1);
    if (token.Is(u'+'))
        return operand;
    NodePtr node = NewNode(negates ? NodeKind::Not : NodeKind::Negate, token);
    node->children.push_back(std::move(operand));
    return Finish(std::move(node));
}

NodePtr Parser::ParseComparison(NodePtr left) {
    const bool negated = TakeWord("NOT");
    if (AtWord("IN"))
        return ParseIn(std::move(left), negated);
    if (AtWord("BETWEEN"))
        return ParseBetween(std::move(left), negated);
    if (AtWord("IS"))
        return ParseIsNull(std::move(left));
    const Token sign = Take();
    NodePtr node = NewNode(NodeKind::Binary, sign, std::move(left));
    node->negated = negated;
    node->op = FindOperator(sign)->op;
    if (node->op != Op::Like && IsOneOf(Peek(), {"ALL", "ANY", "SOME"})) {
        node->kind = NodeKind::Quantified;
        node->all = Take().IsWord("ALL");
        if (!Peek().Is(u'('))
            FailPrimary();
        node->query = ParseNestedQuery();
        return Finish(std::move(node));
    }
    const bool pattern = node->op == Op::Like && Peek().IsLiteral();
    node->children.push_back(ParseBinary(ComparisonLevel + 1));
    Node& right = *node->children.back();
    right.pattern = pattern && right.kind == NodeKind::Literal;
    if (node->op == Op::Like && right.kind == NodeKind::Literal && right.token.kind == TokenKind::Text &&
        !functions::IsPattern(Lexer::LiteralValue(right.token).Text()))
        runtime::Raise(runtime::InvalidPattern);
    return Finish(std::move(node));
}

NodePtr Parser::ParseBetween(NodePtr left, bool negated) {
    NodePtr node = NewNode(NodeKind::Between, Take(), std::move(left));
    node->negated = negated;
    node->children.push_back(ParseBinary(ComparisonLevel + 1));
    if (!TakeWord("AND"))
        FailExpression(u"Оператор Between без And");
    node->children.push_back(ParseBinary(ComparisonLevel + 1));
    return Finish(std::move(node));
}

NodePtr Parser::ParseIn(NodePtr left, bool negated) {
    NodePtr node = NewNode(NodeKind::InList, Take(), std::move(left));
    node->negated = negated;
    if (!Peek().Is(u'('))
        FailExpression(u"Оператор In без ()");
    if (AtQuery()) {
        node->kind = NodeKind::InQuery;
        node->query = ParseNestedQuery();
    } else {
        ParseArguments(*node);
    }
    return Finish(std::move(node));
}

NodePtr Parser::ParseIsNull(NodePtr left) {
    NodePtr node = NewNode(NodeKind::IsNull, Take(), std::move(left));
    node->negated = TakeWord("NOT");
    if (!TakeWord("NULL"))
        FailExpression(u"Недопустимое использование оператора Is");
    return Finish(std::move(node));
}

NodePtr Parser::ParsePrimary() {
    const Token& token = Peek();
    if (token.IsLiteral())
        return ParseLiteral();
    if (token.Is(u'('))
        return ParseParenthesis();
    if (token.IsWord("NULL"))
        return NewNode(NodeKind::Null, Take());
    if (IsOneOf(token, {"TRUE", "FALSE", "ON"})) {
        NodePtr node = NewNode(NodeKind::Truth, Take());
        node->negated = token.IsWord("FALSE");
        return node;
    }
    if (token.IsWord("EXISTS") && Peek(1).Is(u'(')) {
        NodePtr node = NewNode(NodeKind::Exists, Take());
        node->query = ParseNestedQuery();
        return Finish(std::move(node));
    }
    const bool function = AtName() || IsOneOf(token, {"ASC", "LEFT", "RIGHT"});
    if (token.kind == TokenKind::Word && Peek(1).Is(u'(') && function)
        return ParseCall();
    if (AtName())
        return ParseName();
    FailPrimary();
}

NodePtr Parser::ParseLiteral() {
    NodePtr node = NewNode(NodeKind::Literal, Peek());
    node->token = Peek();
    node->literal = m_literals[m_at];
    Take();
    return node;
}

NodePtr Parser::ParseParenthesis() {
    const Nesting nesting(m_nesting, deepestNesting);
    if (AtQuery()) {
        NodePtr node = NewNode(NodeKind::Subquery, Peek());
        node->query = ParseNestedQuery();
        return Finish(std::move(node));
    }
    const Token open = Take();
    NodePtr node = ParseBinary(0);
    if (!TakeSign(u')'))
        FailOpenParenthesis();
    node->start = open.start;
    node->end = m_tokens[m_at - 1].end;
    return node;
}

NodePtr Parser::ParseName() {
    NodePtr node = NewNode(NodeKind::Name, Peek());
    node->name = Lexer::NameOf(Take()).toString();
    while (Peek().Is(u'.') || Peek().Is(u'!')) {
        const Token& part = Peek(1);
        // Behind a point every word is a name.
        const bool named = part.kind == TokenKind::Word || part.kind == TokenKind::Name;
        if (!named || !node->qualifier.isEmpty())
            FailExpression(misplacedPoint);
        Take();
        node->qualifier = std::exchange(node->name, Lexer::NameOf(Take()).toString());
    }
    return Finish(std::move(node));
}

NodePtr Parser::ParseCall() {
    const Nesting nesting(m_nesting, deepestNesting);
    NodePtr node = NewNode(NodeKind::Call, Peek());
    node->name = Take().text.toString();
    if (Peek(1).Is(u'*') && Peek(2).Is(u')')) {
        node->all = true;
        Skip(3);
    } else {
        ParseArguments(*node);
    }
    return Finish(std::move(node));
}

/// The list in parentheses of a call or of IN.
void Parser::ParseArguments(Node& call) {
    Take();
    if (TakeSign(u')')) {
        if (call.kind != NodeKind::Call)
            FailExpression(u"Оператор In без ()");
        return;
    }
    do {
        call.children.push_back(ParseBinary(0));
    } while (TakeSign(u','));
    if (!TakeSign(u')'))
        FailOpenParenthesis();
}

NodePtr Parser::ParseCriteria() {
    m_clause = Clause::Criteria;
    if (Peek().kind == TokenKind::End)
        FailPrimary();
    NodePtr node = ParseBinary(0);
    if (Peek().kind != TokenKind::End)
        FailBehindExpression();
    return node;
}

} // namespace engine::sql
