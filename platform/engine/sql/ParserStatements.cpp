#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Parser.h"

namespace engine::sql {

Statement Parser::ParseStatement() {
    Statement statement;
    if (AtWord("PARAMETERS"))
        ParseParameters();
    if (AtWord("TRANSFORM")) {
        ParseTransform(statement);
    } else if (AtQuery()) {
        ParseSelectStatement(statement);
    } else if (AtWord("INSERT")) {
        statement.kind = Statement::InsertKind;
        ParseInsert(statement.insert);
    } else if (AtWord("UPDATE")) {
        statement.kind = Statement::UpdateKind;
        ParseUpdate(statement.update);
    } else if (AtWord("DELETE")) {
        statement.kind = Statement::DeleteKind;
        ParseDelete(statement.remove);
    } else if (AtWord("CREATE") || AtWord("ALTER") || AtWord("DROP")) {
        statement.kind = Statement::SchemaKind;
        if (AtWord("CREATE"))
            ParseCreate(statement.schema);
        else if (AtWord("ALTER"))
            ParseAlter(statement.schema);
        else
            ParseDrop(statement.schema);
    } else {
        // Any other text is taken for the name of a table.
        statement.kind = Statement::TableKind;
        const bool alone = (AtName() && Peek(1).kind == TokenKind::End) ||
                           (AtName() && Peek(1).Is(u';') && Peek(2).kind == TokenKind::End);
        statement.table = alone ? Lexer::NameOf(Peek()).toString() : m_text.toString();
    }
    return statement;
}

void Parser::ParseSelectStatement(Statement& statement) {
    statement.kind = Statement::QueryKind;
    statement.query = ParseQuery();
    if (Peek().Is(u')')) {
        m_parentheses = 0;
        FailBehindExpression();
    }
    ExpectStatementEnd(SyntaxInFrom);
}

/// The names are only declared: nobody can give them values, so that a use counts as an unknown name.
void Parser::ParseParameters() {
    Take();
    do {
        ExpectName(SyntaxInParameters);
        Expect(Peek().kind == TokenKind::Word && TypeOfWord(Take().text), SyntaxInParameters);
        if (TakeSign(u'(')) {
            Expect(Take().kind == TokenKind::Integer, SyntaxInParameters);
            ExpectSign(u')', SyntaxInParameters);
        }
    } while (TakeSign(u','));
    ExpectSign(u';', SyntaxInParameters);
    Expect(AtQuery() || IsOneOf(Peek(), {"TRANSFORM", "INSERT", "UPDATE", "DELETE"}), SyntaxInParameters);
}

void Parser::ParseTransform(Statement& statement) {
    Take();
    statement.transform = std::make_unique<Transform>();
    Transform& transform = *statement.transform;
    transform.value = ParseExpression(Clause::Item);
    if (TakeWord("AS"))
        ExpectName(SyntaxInTransform); // the headings name the columns
    Expect(AtWord("SELECT"), SyntaxInTransform);
    statement.query = ParseQuery();
    Expect(TakeWord("PIVOT"), SyntaxInTransform);
    transform.pivot = ParseExpression(Clause::Item);
    if (transform.pivot->kind == NodeKind::InList && !transform.pivot->negated) {
        // `PIVOT expression IN (headings)` reads as a condition.
        auto& children = transform.pivot->children;
        for (std::size_t i = 1; i < children.size(); ++i)
            transform.headings.push_back(std::move(children[i]));
        NodePtr pivot = std::move(children.front());
        transform.pivot = std::move(pivot);
    }
    if (!AtEnd())
        FailBehindExpression();
    ExpectStatementEnd(SyntaxInTransform);
}

void Parser::ParseInsert(Insert& insert) {
    Take();
    ExpectWord("INTO", SyntaxInInsert);
    insert.table = ExpectName(SyntaxInInsert);
    if (Peek().Is(u'(') && !AtQuery()) {
        insert.listed = true;
        insert.columns = ParseColumnNames(SyntaxInInsert);
    }
    if (TakeWord("VALUES")) {
        ParseValues(insert);
        ExpectStatementEnd(MissingSemicolon);
        return;
    }
    Expect(AtQuery(), SyntaxInInsert);
    insert.query = ParseQuery();
    ExpectStatementEnd(MissingSemicolon);
}

void Parser::ParseValues(Insert& insert) {
    ExpectSign(u'(', SyntaxInInsert);
    do {
        Expect(!Peek().Is(u',') && !Peek().Is(u')') && Peek().kind != TokenKind::End, SyntaxInInsert);
        insert.values.push_back(ParseExpression(Clause::Value));
        Expect(!AtEnd(), SyntaxInInsert); // the parenthesis is left open
        if (!Peek().Is(u',') && !Peek().Is(u')'))
            FailBehindExpression();
    } while (TakeSign(u','));
    ExpectSign(u')', SyntaxInInsert);
}

void Parser::ParseUpdate(Update& update) {
    Take();
    Expect(AtName() || Peek().Is(u'('), SyntaxInUpdate);
    ParseFrom(update.from);
    ExpectWord("SET", SyntaxInUpdate);
    do {
        Assignment assignment;
        assignment.column = ExpectName(SyntaxInUpdate);
        if (TakeSign(u'.') || TakeSign(u'!')) {
            assignment.qualifier = assignment.column;
            assignment.column = ExpectName(SyntaxInUpdate);
        }
        ExpectSign(u'=', SyntaxInUpdate);
        ExpectItem(SyntaxInUpdate);
        assignment.value = ParseExpression(Clause::Item);
        update.assignments.push_back(std::move(assignment));
    } while (TakeSign(u','));
    if (!AtWord("WHERE") && !AtEnd())
        FailBehindExpression();
    update.where = ParseCondition("WHERE", SyntaxInWhere);
    ExpectStatementEnd(SyntaxInUpdate);
}

void Parser::ParseDelete(Delete& remove) {
    Take();
    if (!AtWord("FROM")) {
        do {
            remove.items.push_back(ParseItem(SyntaxInDelete));
        } while (TakeSign(u','));
    }
    ExpectWord("FROM", SyntaxInDelete);
    ParseFrom(remove.from);
    Expect(AtClauseEnd(), SyntaxInFrom);
    remove.where = ParseCondition("WHERE", SyntaxInWhere);
    ExpectStatementEnd(SyntaxInDelete);
}

} // namespace engine::sql
