#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/sql/Lexer.h"
#include "platform/engine/sql/Plan.h"

namespace engine::sql {

namespace {

constexpr qsizetype longestStatement = 1'000'000;
constexpr std::size_t mostBoundLiterals = 200;

/// A text that is joined from many short pieces; room for all of it is taken at once.
class ShapeText {
public:
    explicit ShapeText(qsizetype most)
        : m_text(most, Qt::Uninitialized)
        , m_end(m_text.data()) {}

    void Add(QStringView piece) {
        for (const QChar character : piece)
            *m_end++ = character;
    }
    bool IsEmpty() const { return m_end == m_text.constData(); }
    QString Take() {
        m_text.truncate(m_end - m_text.constData());
        m_text.squeeze();
        return std::move(m_text);
    }

private:
    QString m_text;
    QChar* m_end;
};

/// Joins the shape of a statement, and watches for the words behind which a literal's value matters.
class ShapeBuilder {
public:
    explicit ShapeBuilder(const QString& text)
        : m_text(text)
        , m_shape(text.size() * unitsForOne) {
        m_scanned.text = text;
    }

    Scanned Build() {
        Lexer lexer(m_text);
        for (Token token = lexer.Next(); token.kind != TokenKind::End; token = lexer.Next()) {
            if (token.IsBroken() || m_scanned.literals.size() > mostBoundLiterals)
                return WithoutShape();
            if (!m_shape.IsEmpty())
                m_shape.Add(u" ");
            if (token.IsLiteral())
                AddLiteral(token);
            else
                AddOther(token);
            m_behindLike = token.IsWord("LIKE") || (m_behindLike && token.Is(u'('));
            m_previous = token;
        }
        if (m_bySchema)
            return WithoutShape();
        m_scanned.shape = m_byText ? m_text : m_shape.Take();
        return std::move(m_scanned);
    }

private:
    Scanned WithoutShape() {
        m_scanned.cacheable = false;
        m_scanned.shape = m_text;
        m_scanned.literals.clear();
        return std::move(m_scanned);
    }

    void AddLiteral(const Token& token) {
        Value value = Lexer::LiteralValue(token);
        switch (token.kind) {
        case TokenKind::Text:
            m_shape.Add(!m_behindLike ? u"?s" : PatternMark(value.Text()));
            break;
        case TokenKind::Integer:
            m_shape.Add(u"?i");
            break;
        case TokenKind::Fraction:
            m_shape.Add(value.As<Money>() ? u"?m" : u"?f");
            break;
        default:
            m_shape.Add(u"?t");
            break;
        }
        // In an order a number tells a column, however it is written: `1`, `(1)`, `+1`.
        if (m_previous.IsWord("TOP") || m_inOrder)
            m_shape.Add(token.text);
        m_scanned.literals.push_back(std::move(value));
    }

    /// A pattern that is none has a shape of its own: no plan is found for it, and reading it fails.
    static QStringView PatternMark(const QString& pattern) {
        if (!functions::HasWildcards(pattern))
            return u"?s";
        return functions::IsPattern(pattern) ? u"?w" : u"?x";
    }

    void AddOther(const Token& token) {
        m_shape.Add(token.text);
        if (token.kind == TokenKind::Word)
            Watch(token);
    }

    void Watch(const Token& word) {
        switch (word.text.front().unicode() | 0x20) {
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
            m_bySchema = m_bySchema || (IsFirst() && word.IsWord("DROP"));
            break;
        case u't':
            m_byText = m_byText || word.IsWord("TRANSFORM");
            break;
        case u'c':
            m_bySchema = m_bySchema || (IsFirst() && word.IsWord("CREATE"));
            break;
        case u'a':
            m_bySchema = m_bySchema || (IsFirst() && word.IsWord("ALTER"));
            break;
        default:
            break;
        }
    }

    bool IsFirst() const { return m_previous.kind == TokenKind::End; }

    /// A blank, the mark of a literal and the literal itself, for a token of one character.
    static constexpr qsizetype unitsForOne = 4;

    const QString& m_text;
    ShapeText m_shape;
    Scanned m_scanned;
    Token m_previous;
    bool m_behindLike = false; ///< a literal next is a pattern
    bool m_inOrder = false;
    bool m_byText = false;
    bool m_bySchema = false;
};

} // namespace

Scanned Scan(const QString& text) {
    if (text.size() > longestStatement)
        RaiseEngine(QueryTooComplex);
    return ShapeBuilder(text).Build();
}

} // namespace engine::sql
