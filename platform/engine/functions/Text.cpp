#include "platform/engine/functions/Text.h"

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

QString Marked(QStringView text) {
    constexpr char16_t mark = 0xFEFF;
    if (text.startsWith(QChar(mark)) || text.startsWith(QChar(0xFFFE)))
        return QChar(mark) + text.toString();
    return {};
}

} // namespace engine::functions
