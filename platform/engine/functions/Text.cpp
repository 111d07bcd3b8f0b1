#include "platform/engine/functions/Text.h"

#include "platform/engine/functions/Functions.h"

namespace engine::functions {

QString ToUpper(QString text) {
    for (QChar& unit : text)
        unit = unit.toUpper();
    return text;
}

QString ToLower(QString text) {
    for (QChar& unit : text)
        unit = unit.toLower();
    return text;
}

int CompareTexts(QStringView a, QStringView b) {
    const int folded = CompareFolded(a, b);
    if (folded == 0)
        return 0;
    const int sorted = CompareSorted(a, b);
    return sorted != 0 ? sorted : folded;
}

} // namespace engine::functions
