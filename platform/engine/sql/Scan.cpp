#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/sql/Plan.h"

#include <algorithm>

namespace engine::sql {

namespace {

constexpr qsizetype longestStatement = 1'000'000;
constexpr std::size_t mostBoundLiterals = 200;

/// Joins the shape of a statement, and watches for the words behind which a literal's value matters.
class ShapeBuilder {
public:
    explicit ShapeBuilder(Scanned& scanned)
        : m_scanned(scanned) {}

    void Build() {
        Lexer lexer(m_scanned.text);
        for (Token token = lexer.Next(); token.kind != TokenKind::End; token = lexer.Next()) {
            if (token.IsBroken() || m_scanned.literals.size() > mostBoundLiterals)
                return GiveUp();
            if (token.IsLiteral())
                AddLiteral(token);
            else
                AddOther(token);
        }
        if (m_bySchema)
            return GiveUp();
        if (m_byText)
            m_scanned.shape = m_scanned.text;
        else
            m_scanned.shape.truncate(m_end);
    }

private:
    void GiveUp() {
        m_scanned.cacheable = false;
        m_scanned.shape.clear();
        m_scanned.literals.clear();
    }

    /// A piece and the blank behind it.
    void Add(QStringView piece) {
        const qsizetype end = m_end + piece.size() + 1;
        if (end > m_room) {
            m_room = std::max(end, m_scanned.text.size() * 2);
            m_scanned.shape.resize(m_room);
            m_shape = m_scanned.shape.data();
        }
        QChar* to = m_shape + m_end;
        for (const QChar character : piece) // mostly few: a call would cost more
            *to++ = character;
        *to = u' ';
        m_end = end;
    }

    void AddLiteral(const Token& token) {
        m_scanned.literals.emplace_back(token);
        switch (token.kind) {
        case TokenKind::Text:
            Add(!m_behindLike ? u"?s" : PatternMark(m_scanned.literals.back().ToValue().Text()));
            break;
        case TokenKind::Integer:
            Add(u"?i");
            break;
        case TokenKind::Fraction:
            Add(m_scanned.literals.back().ToValue().As<Money>() ? u"?m" : u"?f");
            break;
        default:
            Add(u"?t");
            break;
        }
        // In an order a number tells a column, however it is written: `1`, `(1)`, `+1`.
        if (m_behindTop || m_inOrder)
            Add(token.text);
        m_behindLike = false;
        m_behindTop = false;
    }

    /// A pattern that is none has a shape of its own: no plan is found for it, and reading it fails.
    static QStringView PatternMark(const QString& pattern) {
        if (!functions::HasWildcards(pattern))
            return u"?s";
        return functions::IsPattern(pattern) ? u"?w" : u"?x";
    }

    void AddOther(const Token& token) {
        const bool isFirst = m_end == 0;
        Add(token.text);
        m_behindTop = false;
        m_behindLike = m_behindLike && token.Is(u'(');
        if (token.kind == TokenKind::Word)
            Watch(token, isFirst);
    }

    void Watch(const Token& word, bool isFirst) {
        switch (word.text.front().unicode() | 0x20) {
        case u'l':
            m_behindLike = word.IsWord("LIKE");
            break;
        case u'o':
            m_inOrder = m_inOrder || word.IsWord("ORDER");
            break;
        case u'g':
            // Grouping and DISTINCT compare expressions with each other, literals included.
            m_byText = m_byText || word.IsWord("GROUP");
            break;
        case u'h':
            m_byText = m_byText || word.IsWord("HAVING");
            break;
        case u'd':
            m_byText = m_byText || word.IsWord("DISTINCT");
            m_bySchema = m_bySchema || (isFirst && word.IsWord("DROP"));
            break;
        case u't':
            m_behindTop = word.IsWord("TOP");
            m_byText = m_byText || word.IsWord("TRANSFORM");
            break;
        case u'c':
            m_bySchema = m_bySchema || (isFirst && word.IsWord("CREATE"));
            break;
        case u'a':
            m_bySchema = m_bySchema || (isFirst && word.IsWord("ALTER"));
            break;
        default:
            break;
        }
    }

    Scanned& m_scanned;
    QChar* m_shape = nullptr;
    qsizetype m_room = 0;      ///< for the shape
    qsizetype m_end = 0;       ///< of the shape
    bool m_behindLike = false; ///< a literal next is a pattern
    bool m_behindTop = false;
    bool m_inOrder = false;
    bool m_byText = false;
    bool m_bySchema = false;
};

} // namespace

Literal::Literal(const Token& token)
    : m_kind(token.kind)
    , m_text(token.text) {
    if (m_kind == TokenKind::Integer) {
        m_whole = *Lexer::LiteralValue(token).As<std::int64_t>();
    } else if (m_kind == TokenKind::Text) {
        const QStringView inside = m_text.sliced(1, m_text.size() - 2);
        if (!inside.contains(m_text.front()))
            m_plain = inside;
    }
}

Value Literal::ToValue() const {
    if (m_kind == TokenKind::Integer)
        return m_whole;
    if (!m_plain.isNull())
        return m_plain.toString();
    Token token;
    token.kind = m_kind;
    token.text = m_text;
    return Lexer::LiteralValue(token);
}

void Scan(const QString& text, Scanned& scanned) {
    if (text.size() > longestStatement)
        RaiseEngine(QueryTooComplex);
    scanned.text = text;
    scanned.literals.clear();
    scanned.cacheable = true;
    ShapeBuilder(scanned).Build();
}

Scanned Scan(const QString& text) {
    Scanned scanned;
    Scan(text, scanned);
    return scanned;
}

} // namespace engine::sql
