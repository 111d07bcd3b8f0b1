#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/sql/Plan.h"

#include <algorithm>

namespace engine::sql {

namespace {

constexpr qsizetype longestStatement = 1'000'000;
constexpr std::size_t mostBoundLiterals = 200;

/// Collects the literals of a statement, and watches for the words behind which their values matter.
class Scanner {
public:
    explicit Scanner(Scanned& scanned)
        : m_scanned(scanned) {}

    void Run() {
        Lexer lexer(m_scanned.text);
        for (Token token = lexer.Next(); token.kind != TokenKind::End; token = lexer.Next()) {
            if (token.IsBroken() || m_scanned.literals.size() > mostBoundLiterals)
                return GiveUp();
            if (token.IsLiteral())
                AddLiteral(token);
            else
                PassOver(token);
            m_isFirst = false;
        }
        if (m_bySchema)
            return GiveUp();
        if (m_byText)
            for (Literal& literal : m_scanned.literals)
                literal.Fix();
    }

private:
    void GiveUp() {
        m_scanned.cacheable = false;
        m_scanned.literals.clear();
    }

    void AddLiteral(const Token& token) {
        // In an order a number tells a column, however it is written: `1`, `(1)`, `+1`.
        const bool isFixed = m_behindTop || m_inOrder;
        m_scanned.literals.emplace_back(token, isFixed        ? Literal::Role::Fixed
                                               : m_behindLike ? Literal::Role::Pattern
                                                              : Literal::Role::Value);
        m_behindLike = false;
        m_behindTop = false;
    }

    void PassOver(const Token& token) {
        const auto isAny = [&](std::initializer_list<std::string_view> words) {
            return std::ranges::any_of(words, [&](std::string_view word) { return token.IsWord(word); });
        };
        m_behindTop = token.IsWord("TOP");
        m_behindLike = token.IsWord("LIKE") || (m_behindLike && token.Is(u'('));
        m_inOrder = m_inOrder || token.IsWord("ORDER");
        // Grouping and DISTINCT compare expressions with each other, literals included.
        m_byText = m_byText || isAny({"GROUP", "HAVING", "DISTINCT", "TRANSFORM"});
        m_bySchema = m_bySchema || (m_isFirst && isAny({"CREATE", "ALTER", "DROP"}));
    }

    Scanned& m_scanned;
    bool m_isFirst = true;     ///< of all tokens
    bool m_behindLike = false; ///< a literal next is a pattern
    bool m_behindTop = false;
    bool m_inOrder = false;
    bool m_byText = false;
    bool m_bySchema = false;
};

/// A pattern that is none differs from both kinds: reading it fails.
int KindOfPattern(const Literal& literal) {
    const QString pattern = literal.ToValue().Text();
    return !functions::HasWildcards(pattern) ? 0 : functions::IsPattern(pattern) ? 1 : 2;
}

bool IsDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

} // namespace

Literal::Literal(const Token& token, Role role)
    : m_kind(token.kind)
    , m_role(role)
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

/// Where both begin alike, a literal ends what stands before it, and is read, whatever that is.
std::optional<Literal> Literal::Likeness(QStringView text, qsizetype place) const {
    const QChar first = place < text.size() ? text[place] : QChar();
    if (first != m_text.front() && !(IsDigit(first) && IsDigit(m_text.front())))
        return {};
    const Literal other(Lexer(text, place).Next(), m_role);
    return IsLike(other) ? std::optional(other) : std::nullopt;
}

bool Literal::IsLike(const Literal& other) const {
    if (m_kind != other.m_kind)
        return false;
    if (m_role == Role::Fixed)
        return m_text == other.m_text;
    if (m_kind == TokenKind::Fraction) // or an amount
        return (ToValue().As<Money>() == nullptr) == (other.ToValue().As<Money>() == nullptr);
    return m_role == Role::Value || m_kind != TokenKind::Text || KindOfPattern(*this) == KindOfPattern(other);
}

Scanned Scan(const QString& text) {
    if (text.size() > longestStatement)
        RaiseEngine(QueryTooComplex);
    Scanned scanned{text, {}};
    Scanner(scanned).Run();
    return scanned;
}

bool ScanLike(const Scanned& known, const QString& text, Scanned& scanned) {
    if (!known.cacheable || text.size() > longestStatement)
        return false;
    scanned.text = text;
    scanned.cacheable = true;
    scanned.literals.clear();
    QStringView rest(text);
    const QChar* from = known.text.constData();
    for (const Literal& literal : known.literals) {
        const QStringView between(from, literal.Text().data());
        const auto likeness =
            rest.startsWith(between) ? literal.Likeness(rest, between.size()) : std::nullopt;
        if (!likeness)
            return false;
        scanned.literals.push_back(*likeness);
        rest = rest.sliced(between.size() + likeness->Text().size());
        from = literal.Text().end();
    }
    return rest == QStringView(from, known.text.constEnd());
}

} // namespace engine::sql
