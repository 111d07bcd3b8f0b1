#include "platform/forms/Colours.h"

namespace forms {

bool IsDark(const QColor& ground) {
    constexpr int MiddleGrey = 128;
    return ground.lightness() < MiddleGrey;
}

QColor Mixed(const QColor& from, const QColor& to, qreal share) {
    const auto between = [share](int low, int high) { return low + qRound((high - low) * share); };
    return {between(from.red(), to.red()), between(from.green(), to.green()),
            between(from.blue(), to.blue())};
}

QColor PaleSelection(const QPalette& palette, QPalette::ColorGroup group) {
    constexpr qreal Strength = 0.3;
    return Mixed(palette.color(group, QPalette::Base), palette.color(group, QPalette::Highlight), Strength);
}

} // namespace forms
