#include "platform/engine/functions/Picture.h"

#include "platform/engine/schema/Types.h"

#include <algorithm>

namespace engine::functions {

Picture::Picture(QStringView text) {
    m_sections.emplace_back();
    bool quoted = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        if (character == u'"')
            quoted = !quoted;
        else if (quoted)
            m_sections.back().push_back({character, true});
        else if (character == u'\\' && i + 1 < text.size())
            m_sections.back().push_back({text[++i], true});
        else if (character == u';')
            m_sections.emplace_back();
        else
            m_sections.back().push_back({character, false});
    }
}

Section Picture::At(std::size_t place) const {
    return place < m_sections.size() ? Section(m_sections[place]) : Section();
}

Picture::Kind Picture::KindOf() const {
    for (const auto& section : m_sections) {
        for (std::size_t i = 0; i < section.size(); ++i) {
            if (section[i].literal)
                continue;
            const QChar character = section[i].character.toLower();
            if (QStringView(u"0#%").contains(character))
                return Number;
            if (QStringView(u"@&<>!").contains(character))
                return Text;
            if (QStringView(u"dmyhnswqc/:").contains(character) || HalfDayLength(section, i) > 0)
                return Date;
            if (character == u't' && i + 4 < section.size() && section[i + 4].Is(u't'))
                return Date;
        }
    }
    return Literal;
}

std::size_t HalfDayLength(Section section, std::size_t place) {
    const auto isSame = [](QChar letter, const Sign& sign) { return sign.Is(letter.unicode()); };
    for (const QStringView known : {u"am/pm", u"ampm", u"a/p"}) {
        const auto difference = std::ranges::mismatch(known, section.subspan(place), isSame);
        if (difference.in1 == known.end())
            return static_cast<std::size_t>(known.size());
    }
    return 0;
}

QString Plain(Section section) {
    QString text;
    for (const Sign& sign : section)
        text += sign.character;
    return text;
}

} // namespace engine::functions
