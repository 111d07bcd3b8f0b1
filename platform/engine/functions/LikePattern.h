#pragma once

#include <QStringView>

#include <vector>

namespace engine::functions {

/// A pattern of the dialect's LIKE taken apart, to be matched against many texts: * ? # [list] [!list], case
/// ignored, the whole text has to match. Matching takes at most the product of both lengths.
class LikePattern {
public:
    /// Failure 93 for a `[` left open or a descending range.
    explicit LikePattern(QStringView pattern);

    bool Matches(QStringView text) const;

private:
    struct Range {
        char16_t first;
        char16_t last; ///< equal to `first` for a single character
    };
    struct Item {
        enum Kind { Character, AnyRun, Digit, List } kind = Character;
        char16_t character = 0; ///< folded
        bool negated = false;
        std::vector<Range> ranges;
    };

    qsizetype AddList(QStringView pattern, qsizetype start);
    static bool MatchesOne(const Item& item, char16_t unit);

    std::vector<Item> m_items;
};

} // namespace engine::functions
