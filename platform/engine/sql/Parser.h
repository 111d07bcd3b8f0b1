#pragma once

#include "platform/engine/EngineError.h"
#include "platform/engine/sql/Tree.h"

#include <QString>

#include <string_view>

namespace engine::sql {

/// Reads one statement, or the criteria of a search, into its tree. Failures: the dialect's numbers for wrong
/// syntax, 3360 for a text nested too deep.
class Parser {
public:
    /// `bindsLiterals`: literals are numbered for binding, else written out.
    Parser(QStringView text, bool bindsLiterals);

    Statement ParseStatement();
    NodePtr ParseCriteria();
    /// A SELECT or UNION alone, as it stands inside `[SELECT ...].`
    std::unique_ptr<Query> ParseQueryAlone();

private:
    /// Where an expression stands; tells the end of the text that a failure quotes.
    enum class Clause : std::uint8_t { Condition, Item, Value, Criteria };

    // Tokens
    const Token& Peek(std::size_t ahead = 0) const;
    Token Take();
    void Skip(int tokens);
    /// Whether the statement ends here.
    bool AtEnd() const { return Peek().kind == TokenKind::End || Peek().Is(u';'); }
    bool TakeWord(std::string_view keyword);
    bool TakeSign(char16_t sign);
    bool AtWord(std::string_view keyword, std::size_t ahead = 0) const { return Peek(ahead).IsWord(keyword); }
    static bool IsOneOf(const Token& token, std::initializer_list<std::string_view> words);
    bool AtName(std::size_t ahead = 0) const;
    /// Whether a query begins here, and not a sub-query inside a larger expression.
    bool AtQuery() const;
    /// Failure `error` unless it holds; unless the next token is that word, that sign, a name, the first of
    /// an item in a list.
    static void Expect(bool holds, const EngineError& error);
    void ExpectWord(std::string_view keyword, const EngineError& error);
    void ExpectSign(char16_t sign, const EngineError& error);
    QString ExpectName(const EngineError& error);
    void ExpectItem(const EngineError& error) const { Expect(!AtClauseEnd() && !Peek().Is(u','), error); }
    bool AtClauseEnd() const;
    /// Whether the statement ends here, or a word that no expression can hold begins its next clause.
    bool AtNextClause() const;
    void ExpectClauseEnd() const;
    void ExpectStatementEnd(const EngineError& error);

    // Failures
    [[noreturn]] void FailExpression(QStringView reason) const;
    [[noreturn]] void FailPrimary() const;
    [[noreturn]] void FailBehindExpression() const;
    /// What follows the inside of a parenthesis and does not close it.
    [[noreturn]] void FailOpenParenthesis() const;
    QString ClauseText() const;
    qsizetype ClauseEnd(std::size_t from) const;

    // Expressions
    NodePtr ParseExpression(Clause clause);
    NodePtr ParseBinary(int level);
    NodePtr ParsePrefix();
    NodePtr ParsePrimary();
    NodePtr ParseComparison(NodePtr left);
    NodePtr ParseBetween(NodePtr left, bool negated);
    NodePtr ParseIn(NodePtr left, bool negated);
    NodePtr ParseIsNull(NodePtr left);
    NodePtr ParseLiteral();
    NodePtr ParseParenthesis();
    NodePtr ParseName();
    NodePtr ParseCall();
    void ParseArguments(Node& call);
    std::unique_ptr<Query> ParseNestedQuery();
    /// With an operand in front of `first`, the node begins there.
    NodePtr NewNode(NodeKind kind, const Token& first, NodePtr left = {}) const;
    NodePtr Finish(NodePtr node) const;

    // Queries
    std::unique_ptr<Query> ParseQuery();
    QueryPart ParseQueryPart();
    std::unique_ptr<Select> ParseSelect();
    void ParseTop(Select& select);
    void ParseItems(Select& select);
    /// Failure `error` where nothing stands.
    SelectItem ParseItem(const EngineError& error);
    void ParseFrom(std::vector<SourcePtr>& from);
    SourcePtr ParseJoins();
    SourcePtr ParseJoinTail(SourcePtr left);
    SourcePtr ParseSource();
    SourcePtr ParseBracketQuery();
    QString ParseAlias();
    /// WHERE or HAVING; null if there is none.
    NodePtr ParseCondition(std::string_view keyword, const EngineError& error);
    void ParseGroupBy(Select& select);
    void ParseOrderBy(Query& query);

    // Statements
    void ParseParameters();
    void ParseTransform(Statement& statement);
    void ParseInsert(Insert& insert);
    void ParseValues(Insert& insert);
    void ParseUpdate(Update& update);
    void ParseDelete(Delete& remove);
    void ParseSelectStatement(Statement& statement);

    // Schema statements
    void ParseCreate(SchemaChange& change);
    void ParseCreateTable(SchemaChange& change);
    void ParseCreateIndex(SchemaChange& change, bool unique);
    void ParseAlter(SchemaChange& change);
    void ParseAlterAdd(SchemaChange& change);
    void ParseDrop(SchemaChange& change);
    ColumnInfo ParseColumn(TableInfo& table, const EngineError& error);
    void ParseColumnType(ColumnInfo& column);
    void ParseColumnConstraint(ColumnInfo& column, TableInfo& table);
    IndexInfo ParseTableConstraint(const TableInfo& table);
    IndexInfo ParseKey(const TableInfo& table);
    /// Failure `error` unless a name comes that new things may bear; `invalid` if it may not.
    QString ParseNewName(const EngineError& error, const EngineError& invalid);
    QStringList ParseColumnNames(const EngineError& error);

    /// Counts how deep the current place is nested; failure 3360 beyond `deepest`.
    class Nesting {
    public:
        Nesting(int& depth, int deepest);
        ~Nesting() { --m_depth; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        int& m_depth;
    };

    QStringView m_text;
    std::vector<Token> m_tokens;
    std::vector<int> m_literals;       ///< number of the literal at each token, -1 for others
    std::vector<std::size_t> m_closes; ///< for each `(` the token of its `)`, or the last token
    std::size_t m_at = 0;
    int m_nesting = 0;
    int m_parentheses = 0; ///< queries in parentheses around the current place
    Clause m_clause = Clause::Condition;
    std::size_t m_clauseStart = 0; ///< token at which the current expression begins
};

} // namespace engine::sql
