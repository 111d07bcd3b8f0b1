#include "platform/engine/functions/Functions.h"
#include "platform/engine/functions/LikePattern.h"
#include "platform/runtime/Failure.h"

#include <algorithm>

namespace engine::functions {

namespace {

char16_t FoldOne(char16_t unit) {
    return Fold(QStringView(&unit, 1)).at(0).unicode();
}

int CompareOne(char16_t a, char16_t b) {
    return CompareSorted(QStringView(&a, 1), QStringView(&b, 1));
}

} // namespace

LikePattern::LikePattern(QStringView pattern) {
    m_items.reserve(static_cast<std::size_t>(pattern.size()));
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const char16_t unit = pattern[i].unicode();
        switch (unit) {
        case u'*':
            if (m_items.empty() || m_items.back().kind != Item::AnyRun)
                m_items.push_back({Item::AnyRun, 0, false, {}});
            break;
        case u'?':
            m_items.push_back({Item::List, 0, true, {}}); // none but those of no list
            break;
        case u'#':
            m_items.push_back({Item::Digit, 0, false, {}});
            break;
        case u'[':
            i = AddList(pattern, i + 1);
            break;
        default:
            m_items.push_back({Item::Character, FoldOne(unit), false, {}});
        }
    }
}

/// Reads a list from behind its `[`; returns the place of its `]`.
qsizetype LikePattern::AddList(QStringView pattern, qsizetype start) {
    const qsizetype end = pattern.indexOf(u']', start);
    if (end < 0)
        runtime::Raise(runtime::InvalidPattern);
    const QStringView list = pattern.sliced(start, end - start);
    if (list.isEmpty())
        return end; // `[]` stands for nothing
    if (list == u"!") {
        m_items.push_back({Item::Character, u'!', false, {}});
        return end;
    }
    Item item{Item::List, 0, list.front() == u'!', {}};
    for (qsizetype i = item.negated ? 1 : 0; i < list.size(); ++i) {
        const char16_t first = list[i].unicode();
        char16_t last = first;
        if (i + 2 < list.size() && list[i + 1] == u'-') {
            last = list[i + 2].unicode();
            i += 2;
            if (CompareOne(first, last) > 0)
                runtime::Raise(runtime::InvalidPattern);
        }
        item.ranges.push_back({first, last});
    }
    m_items.push_back(std::move(item));
    return end;
}

bool LikePattern::MatchesOne(const Item& item, char16_t unit) {
    switch (item.kind) {
    case Item::Character:
        return unit == item.character || FoldOne(unit) == item.character;
    case Item::Digit:
        return unit >= u'0' && unit <= u'9';
    case Item::List:
        break;
    case Item::AnyRun:
        return false;
    }
    const bool listed = std::any_of(item.ranges.begin(), item.ranges.end(), [unit](const Range& range) {
        if (range.first == range.last)
            return FoldOne(unit) == FoldOne(range.first);
        return CompareOne(range.first, unit) <= 0 && CompareOne(unit, range.last) <= 0;
    });
    return listed != item.negated;
}

// After a miss only the last `*` is widened: what stood before it has found its first place, and a later one
// could not match more.
bool LikePattern::Matches(QStringView text) const {
    std::size_t item = 0;
    qsizetype place = 0;
    std::size_t retryItem = m_items.size() + 1;
    qsizetype retryPlace = 0;
    while (place < text.size()) {
        if (item < m_items.size() && m_items[item].kind == Item::AnyRun) {
            retryItem = ++item;
            retryPlace = place;
            if (item == m_items.size())
                return true;
        } else if (item < m_items.size() && MatchesOne(m_items[item], text[place].unicode())) {
            ++item;
            ++place;
        } else if (retryItem <= m_items.size()) {
            item = retryItem;
            place = ++retryPlace;
        } else {
            return false;
        }
    }
    return item == m_items.size() || (item + 1 == m_items.size() && m_items[item].kind == Item::AnyRun);
}

bool IsPattern(QStringView pattern) {
    try {
        const LikePattern read(pattern);
        return true;
    } catch (const runtime::Failure&) {
        return false;
    }
}

bool HasWildcards(QStringView pattern) {
    return std::any_of(pattern.begin(), pattern.end(),
                       [](QChar sign) { return QStringView(u"*?#[").contains(sign); });
}

} // namespace engine::functions
