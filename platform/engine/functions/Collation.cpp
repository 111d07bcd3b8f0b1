// The two orders of text. Their tables stand here and follow no library, so that a list stands in the same
// order on every system. ZV_FOLD is frozen: UNIQUE indexes of users' files persist it. ZV_SORT is the Russian
// alphabet, at query time only, and may still learn.

#include "platform/engine/functions/Call.h"
#include "platform/engine/functions/Functions.h"

#include <QString>
#include <QVarLengthArray>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <compare>
#include <cstring>
#include <vector>

namespace engine::functions {

namespace {

constexpr std::size_t foldedRange = 0x530;

/// A run of capitals that lie a fixed distance before their small letters; where that is 1, each is followed
/// by its own. The multiplication sign, dotted I and dotless i are in none; the final sigma is.
struct Capitals {
    char16_t first;
    char16_t last;
    int distance;
};
constexpr auto capitals = std::to_array<Capitals>(
    {{u'A', u'Z', 32},     {0x00C0, 0x00D6, 32}, {0x00D8, 0x00DE, 32}, {0x0100, 0x012E, 1},
     {0x0132, 0x0136, 1},  {0x0139, 0x0147, 1},  {0x014A, 0x0176, 1},  {0x0178, 0x0178, -121},
     {0x0179, 0x017D, 1},  {0x0386, 0x0386, 38}, {0x0388, 0x038A, 37}, {0x038C, 0x038C, 64},
     {0x038E, 0x038F, 63}, {0x0391, 0x03A1, 32}, {0x03A3, 0x03AB, 32}, {0x03C2, 0x03C2, 1},
     {0x0400, 0x040F, 80}, {0x0410, 0x042F, 32}, {0x0460, 0x0480, 1},  {0x048A, 0x04BE, 1},
     {0x04C0, 0x04C0, 15}, {0x04C1, 0x04CD, 1},  {0x04D0, 0x052E, 1}});

constexpr std::array<char16_t, foldedRange> MakeFoldTable() {
    std::array<char16_t, foldedRange> table{};
    for (std::size_t unit = 0; unit < table.size(); ++unit)
        table[unit] = static_cast<char16_t>(unit);
    for (const Capitals& run : capitals)
        for (int unit = run.first; unit <= run.last; unit += run.distance == 1 ? 2 : 1)
            table[static_cast<std::size_t>(unit)] = static_cast<char16_t>(unit + run.distance);
    return table;
}

constexpr std::array<char16_t, foldedRange> foldTable = MakeFoldTable();

constexpr char16_t FoldUnit(char16_t unit) {
    return unit < foldedRange ? foldTable[unit] : unit;
}

int Sign(qsizetype value) {
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

// Small letters and signs in the order of the alphabet: blanks, signs, digits, Cyrillic, Latin.
constexpr std::u16string_view firstLevel =
    u"\t\n\v\f\r \u203E_\u2017-\u2010\u2012\u2013\u2014\u2015,;:!‼¡?¿‽.\u2025\u2026\u00B7'\u2018"
    u"\u2019\u201A\u201B\u2039\u203A\"\u201C\u201D\u201E\u201F«»()[]{}\u2016§¶@*/\\&#%‰‱†‡•‣\u2027"
    u"\u2043\u2032\u2033\u2034\u2035\u2036\u2037\u2038※\u203F\u2040\u2041⁂`\u00B4^\u00AF\u00A8"
    u"\u00B8°\u0482©®+±÷×<=>¬|¦~\u2044¤¢$£¥"
    u"01½¼23¾456789"
    u"аәӕбвгғӻҕӷдԁђԃҙеєжԫҗзԅԑѕӡԇиҋійјкқӄҡҟҝԟԛлӆԯ"
    u"ԓԡљԉԕмӎнԩӊңӈԣҥњԋоөпԥҧҁрҏԗсԍҫтԏҭћуүұѹфхӽӿҳһ"
    u"ԧѡѿѽѻцҵчԭҷӌҹҽҿџшщъыьҍѣэюяԙѥѧѫѩѭѯѱѳѵҩԝӏ"
    u"aæbcdefghiĳıjklmnŋoœpqĸrsßtŧuvwxyzþŉ\u00B5";

// Each letter with those that stand with it, and behind it where nothing else differs.
constexpr std::u16string_view secondLevel =
    u" \u00A0\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A\u202F|\u2010\u2011|"
    u".\u2024|1¹|2²|3³|аӑӓ|әӛ|гѓґ|еѐӗё|жӂӝ|зӟ|иѝӥӣ|ії|кќ|оӧ|өӫ|уўӱӳӯ|чӵ|ыӹ|эӭ|ѵѷ|aªáàăâåäãąā|"
    u"cćĉčċç|dďđð|eéèĕêěëėęē|gğĝġģ|hĥħ|iíìĭîïĩİįī|jĵ|kķ|lĺľļłŀ|nńňñņ|oºóòŏôöőõøō|rŕřŗ|sśŝšşſ|"
    u"tťţ|uúùŭûůüűũųū|wŵ|yýŷÿ|zźžż";

/// What a character weighs; no first weight: it is in no table.
struct Weight {
    std::uint16_t first = 0;
    std::uint16_t second = 0;
};

constexpr char16_t signsBegin = 0x2000;
constexpr std::size_t signs = 0x50;
constexpr std::uint16_t behindTable = 0x1000; ///< the first weight of what is in no table begins here

using Weights = std::array<Weight, foldedRange + signs>;

constexpr Weight& At(Weights& weights, char16_t unit) {
    return weights[unit < foldedRange ? unit : foldedRange + unit - signsBegin];
}

constexpr Weights MakeWeights() {
    Weights weights{};
    std::uint16_t first = 0;
    for (const char16_t unit : firstLevel)
        At(weights, unit).first = ++first;
    Weight last;
    for (const char16_t unit : secondLevel) {
        if (unit == u'|')
            last = {};
        else if (last.first == 0)
            last = At(weights, unit);
        else
            At(weights, unit) = {last.first, ++last.second};
    }
    for (char16_t unit = 0; unit < foldedRange; ++unit)
        if (foldTable[unit] != unit)
            weights[unit] = weights[foldTable[unit]];
    return weights;
}

constexpr Weights weights = MakeWeights();

Weight WeightOf(char16_t unit) {
    if (unit < foldedRange)
        return weights[unit];
    const std::size_t sign = std::size_t{unit} - signsBegin;
    return sign < signs ? weights[foldedRange + sign] : Weight();
}

/// Soft hyphens, marks over letters and the like, which count only where all else is equal.
bool IsIgnorable(QChar character) {
    switch (character.category()) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
        return true;
    default:
        return false;
    }
}

/// The weights of any text, level by level.
class SortKey {
public:
    explicit SortKey(QStringView text) {
        for (const QChar character : text.toString().normalized(QString::NormalizationForm_C))
            Add(character);
    }

    std::strong_ordering operator<=>(const SortKey&) const = default;

private:
    void Add(QChar character) {
        const char16_t unit = character.unicode();
        const Weight weight = WeightOf(unit);
        if (weight.first != 0) {
            m_first.push_back(weight.first);
            m_second.push_back(weight.second);
        } else if (character.decompositionTag() == QChar::Canonical) {
            for (const QChar part : character.decomposition())
                Add(part);
        } else if (!IsIgnorable(character)) {
            m_first.push_back(static_cast<std::uint32_t>(behindTable) + FoldUnit(unit));
            m_second.push_back(0);
        }
    }

    std::vector<std::uint32_t> m_first;
    std::vector<std::uint16_t> m_second;
};

int CompareKeys(QStringView a, QStringView b) {
    const auto order = SortKey(a) <=> SortKey(b);
    return order < 0 ? -1 : order > 0 ? 1 : CompareFolded(a, b);
}

/// A text as SQLite hands it over. Within a row it may begin at an odd place, where no unit can be read.
class GivenText {
public:
    GivenText(const void* start, int bytes)
        : m_view(static_cast<const char16_t*>(start), bytes / 2) {
        if (reinterpret_cast<std::uintptr_t>(start) % alignof(char16_t) == 0)
            return;
        m_copy.resize(m_view.size());
        std::memcpy(m_copy.data(), start, static_cast<std::size_t>(m_view.size()) * sizeof(char16_t));
        m_view = QStringView(m_copy.data(), m_copy.size());
    }
    GivenText(const GivenText&) = delete;
    GivenText& operator=(const GivenText&) = delete;

    QStringView View() const { return m_view; }

private:
    QStringView m_view;
    QVarLengthArray<char16_t> m_copy;
};

template <int (*Compare)(QStringView, QStringView)>
int CallCollation(void*, int aBytes, const void* a, int bBytes, const void* b) {
    try {
        return Compare(GivenText(a, aBytes).View(), GivenText(b, bBytes).View());
    } catch (...) { // no exception may pass through SQLite
        KeepFailure();
        return 0;
    }
}

template <int (*Compare)(QStringView, QStringView)>
void RegisterCollation(sqlite3* db, const char* name) {
    // Not SQLITE_UTF16_ALIGNED, for which SQLite copies every text that is compared.
    CheckRegistered(
        sqlite3_create_collation_v2(db, name, SQLITE_UTF16, nullptr, CallCollation<Compare>, nullptr));
}

} // namespace

QString Fold(QStringView text) {
    QString folded(text.size(), Qt::Uninitialized);
    std::transform(text.utf16(), text.utf16() + text.size(), reinterpret_cast<char16_t*>(folded.data()),
                   FoldUnit);
    return folded;
}

int CompareFolded(QStringView a, QStringView b) {
    const char16_t* left = a.utf16();
    const char16_t* right = b.utf16();
    const qsizetype common = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        if (left[i] == right[i])
            continue;
        const char16_t foldedLeft = FoldUnit(left[i]);
        const char16_t foldedRight = FoldUnit(right[i]);
        if (foldedLeft != foldedRight)
            return foldedLeft < foldedRight ? -1 : 1;
    }
    return Sign(a.size() - b.size());
}

int CompareSorted(QStringView a, QStringView b) {
    const char16_t* left = a.utf16();
    const char16_t* right = b.utf16();
    const qsizetype common = std::min(a.size(), b.size());
    // The character behind a difference is looked at too: a mark there would belong to the difference.
    const auto isPlain = [](const char16_t* text, qsizetype place, qsizetype size) {
        return place >= size || WeightOf(text[place]).first != 0;
    };
    int second = 0;
    for (qsizetype i = 0; i < common; ++i) {
        const Weight leftWeight = WeightOf(left[i]);
        const Weight rightWeight = WeightOf(right[i]);
        if (leftWeight.first == 0 || rightWeight.first == 0)
            return CompareKeys(a, b);
        if (leftWeight.first != rightWeight.first) {
            if (!isPlain(left, i + 1, a.size()) || !isPlain(right, i + 1, b.size()))
                return CompareKeys(a, b);
            return leftWeight.first < rightWeight.first ? -1 : 1;
        }
        if (second == 0)
            second = Sign(leftWeight.second - rightWeight.second);
    }
    if (a.size() == b.size())
        return second;
    if (!isPlain(left, common, a.size()) || !isPlain(right, common, b.size()))
        return CompareKeys(a, b);
    return Sign(a.size() - b.size());
}

void RegisterCollations(sqlite3* db) {
    RegisterCollation<CompareFolded>(db, "ZV_FOLD");
    RegisterCollation<CompareSorted>(db, "ZV_SORT");
}

} // namespace engine::functions
