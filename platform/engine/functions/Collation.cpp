// The two orders of text. ZV_FOLD is frozen: UNIQUE indexes of users' files persist it, so its table stands
// here and follows no library. ZV_SORT is the Russian alphabet of the library, at query time only.

#include "platform/engine/functions/Call.h"
#include "platform/engine/functions/Functions.h"

#include <QCollator>
#include <QLocale>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <vector>

namespace engine::functions {

namespace {

constexpr std::size_t foldedRange = 0x530;

/// Small letters of a run of capitals that lie a fixed distance before them.
constexpr void FoldBlock(std::array<char16_t, foldedRange>& table, char16_t first, char16_t last,
                         char16_t distance) {
    for (char16_t unit = first; unit <= last; ++unit)
        table[unit] = static_cast<char16_t>(unit + distance);
}

/// Small letters of a run in which every capital is followed by its small letter.
constexpr void FoldPairs(std::array<char16_t, foldedRange>& table, char16_t first, char16_t last) {
    for (char16_t unit = first; unit <= last; unit = static_cast<char16_t>(unit + 2))
        table[unit] = static_cast<char16_t>(unit + 1);
}

constexpr std::array<char16_t, foldedRange> MakeFoldTable() {
    std::array<char16_t, foldedRange> table{};
    for (std::size_t unit = 0; unit < table.size(); ++unit)
        table[unit] = static_cast<char16_t>(unit);

    FoldBlock(table, u'A', u'Z', 32);

    FoldBlock(table, 0x00C0, 0x00DE, 32);
    table[0x00D7] = 0x00D7; // the multiplication sign lies among the capitals

    FoldPairs(table, 0x0100, 0x012E);
    FoldPairs(table, 0x0132, 0x0136); // dotted I and dotless i stay themselves
    FoldPairs(table, 0x0139, 0x0147);
    FoldPairs(table, 0x014A, 0x0176);
    table[0x0178] = 0x00FF;
    FoldPairs(table, 0x0179, 0x017D);

    table[0x0386] = 0x03AC;
    FoldBlock(table, 0x0388, 0x038A, 37);
    table[0x038C] = 0x03CC;
    FoldBlock(table, 0x038E, 0x038F, 63);
    FoldBlock(table, 0x0391, 0x03A1, 32);
    FoldBlock(table, 0x03A3, 0x03AB, 32);
    table[0x03C2] = 0x03C3; // the final sigma

    FoldBlock(table, 0x0400, 0x040F, 80);
    FoldBlock(table, 0x0410, 0x042F, 32);
    FoldPairs(table, 0x0460, 0x0480);
    FoldPairs(table, 0x048A, 0x04BE);
    table[0x04C0] = 0x04CF;
    FoldPairs(table, 0x04C1, 0x04CD);
    FoldPairs(table, 0x04D0, 0x052E);
    return table;
}

constexpr std::array<char16_t, foldedRange> foldTable = MakeFoldTable();

constexpr char16_t FoldUnit(char16_t unit) {
    return unit < foldedRange ? foldTable[unit] : unit;
}

int Sign(qsizetype value) {
    return value < 0 ? -1 : value > 0 ? 1 : 0;
}

const QCollator& Collator() {
    static const QCollator collator = [] {
        QCollator made(QLocale(QLocale::Russian, QLocale::Russia));
        made.setCaseSensitivity(Qt::CaseInsensitive);
        return made;
    }();
    return collator;
}

/// Places of the common single characters in the collator's order, so that a sort of names need not ask it. A
/// plain character weighs the same wherever it stands; whatever can change its neighbour's weight is not
/// among them.
class Ranks {
public:
    static constexpr std::uint8_t other = 0;
    static constexpr char16_t io = u'ё';

    Ranks() {
        std::vector<char16_t> plain;
        const auto add = [&plain](char16_t first, char16_t last) {
            for (char16_t unit = first; unit <= last; ++unit)
                plain.push_back(unit);
        };
        add(u' ', u'~');
        add(u'А', u'я');
        std::sort(plain.begin(), plain.end(), [](char16_t a, char16_t b) { return CompareUnits(a, b) < 0; });
        std::uint8_t rank = other;
        for (std::size_t i = 0; i < plain.size(); ++i) {
            if (i == 0 || CompareUnits(plain[i - 1], plain[i]) != 0)
                ++rank;
            m_ranks[plain[i]] = rank;
        }
        // On the first level ё is е; the second level is left to the collator.
        m_ranks[io] = m_ranks[u'Ё'] = m_ranks[u'е'];
    }

    std::uint8_t Of(char16_t unit) const { return unit < m_ranks.size() ? m_ranks[unit] : other; }
    static bool IsIo(char16_t unit) { return unit == io || unit == u'Ё'; }

private:
    static int CompareUnits(char16_t a, char16_t b) {
        return Collator().compare(QStringView(&a, 1), QStringView(&b, 1));
    }

    std::array<std::uint8_t, 0x460> m_ranks{};
};

template <int (*Compare)(QStringView, QStringView)>
int CallCollation(void*, int aBytes, const void* a, int bBytes, const void* b) {
    try {
        return Compare(QStringView(static_cast<const char16_t*>(a), aBytes / 2),
                       QStringView(static_cast<const char16_t*>(b), bBytes / 2));
    } catch (...) { // no exception may pass through SQLite
        KeepFailure();
        return 0;
    }
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
    static const Ranks ranks;
    const char16_t* left = a.utf16();
    const char16_t* right = b.utf16();
    const qsizetype common = std::min(a.size(), b.size());
    // The character behind a difference is looked at too: a combining mark there would belong to the
    // difference.
    const auto isPlain = [](const char16_t* text, qsizetype place, qsizetype size) {
        return place >= size || ranks.Of(text[place]) != Ranks::other;
    };
    bool secondLevel = false;
    for (qsizetype i = 0; i < common; ++i) {
        const std::uint8_t leftRank = ranks.Of(left[i]);
        const std::uint8_t rightRank = ranks.Of(right[i]);
        if (leftRank == Ranks::other || rightRank == Ranks::other)
            return Sign(Collator().compare(a, b));
        if (leftRank != rightRank) {
            if (!isPlain(left, i + 1, a.size()) || !isPlain(right, i + 1, b.size()))
                return Sign(Collator().compare(a, b));
            return leftRank < rightRank ? -1 : 1;
        }
        secondLevel = secondLevel || Ranks::IsIo(left[i]) != Ranks::IsIo(right[i]);
    }
    if (a.size() != b.size()) {
        if (!isPlain(left, common, a.size()) || !isPlain(right, common, b.size()))
            return Sign(Collator().compare(a, b));
        return Sign(a.size() - b.size());
    }
    return secondLevel ? Sign(Collator().compare(a, b)) : 0;
}

void RegisterCollations(sqlite3* db) {
    CheckRegistered(sqlite3_create_collation_v2(db, "ZV_FOLD", SQLITE_UTF16_ALIGNED, nullptr,
                                                CallCollation<CompareFolded>, nullptr));
    CheckRegistered(sqlite3_create_collation_v2(db, "ZV_SORT", SQLITE_UTF16_ALIGNED, nullptr,
                                                CallCollation<CompareSorted>, nullptr));
}

} // namespace engine::functions
