#include "platform/engine/schema/Names.h"

#include <algorithm>

namespace engine {

std::optional<std::string> Capitals(QStringView word, std::size_t longest) {
    if (static_cast<std::size_t>(word.size()) > longest)
        return {};
    std::string text;
    for (const QChar c : word) {
        if (c.unicode() >= 0x80)
            return {};
        text +=
            static_cast<char>(c.unicode() >= u'a' && c.unicode() <= u'z' ? c.unicode() - 0x20 : c.unicode());
    }
    return text;
}

bool IsValidName(QStringView name) {
    const auto forbidden = [](QChar c) { return QStringView(u".![]`").contains(c) || c.unicode() < u' '; };
    return name.size() <= longestName && !name.startsWith(u' ') && std::ranges::none_of(name, forbidden);
}

bool SameName(QStringView a, QStringView b) {
    return a.size() == b.size() && a.compare(b, Qt::CaseInsensitive) == 0;
}

bool HasName(const QStringList& names, QStringView name) {
    return std::ranges::any_of(names, [name](const QString& other) { return SameName(other, name); });
}

QString QuoteName(QStringView name) {
    return u'"' + name.toString().replace(u'"', QLatin1String("\"\"")) + u'"';
}

QString QuoteText(QStringView text) {
    QString quoted = text.toString();
    quoted = u'\'' + quoted.replace(u'\'', QLatin1String("''")) + u'\'';
    // A NUL would end the statement.
    if (quoted.contains(QChar(u'\0')))
        quoted = u'(' + quoted.replace(QChar(u'\0'), QLatin1String("' || char(0) || '")) + u')';
    return quoted;
}

QString QuoteNames(const QStringList& names) {
    QStringList quoted;
    for (const QString& name : names)
        quoted += QuoteName(name);
    return quoted.join(QLatin1String(", "));
}

} // namespace engine
