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

} // namespace engine::functions
