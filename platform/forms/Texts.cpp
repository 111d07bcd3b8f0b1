#include "platform/forms/Texts.h"

#include <QTextDocument>
#include <QWidget>

#include <algorithm>

namespace forms {

namespace {

bool BreaksLine(QChar character) {
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}

/// Units of the character that stands there: 2 for a pair, 1, or 0 for half a pair.
int UnitsAt(QStringView text, qsizetype place) {
    if (!text[place].isSurrogate())
        return 1;
    const bool isPair =
        text[place].isHighSurrogate() && place + 1 < text.size() && text[place + 1].isLowSurrogate();
    return isPair ? 2 : 0;
}

} // namespace

QStringView Beginning(QStringView text, qsizetype most) {
    if (text.size() <= most)
        return text;
    const bool cutsPair = most > 0 && text[most - 1].isHighSurrogate() && text[most].isLowSurrogate();
    return text.first(cutsPair ? most - 1 : most);
}

QString Shown(QStringView text, qsizetype most) {
    QString shown = Beginning(text, most).toString();
    return text.size() <= most ? shown : shown + u'…';
}

QString OneLine(QStringView text, qsizetype& cursor) {
    QString line;
    line.reserve(text.size());
    qsizetype moved = -1;
    bool broken = false; // a break stands between the line and what comes next
    for (qsizetype place = 0; place < text.size();) {
        if (place >= cursor && moved < 0)
            moved = line.size();
        const int units = UnitsAt(text, place);
        if (BreaksLine(text[place])) {
            broken = true;
            while (line.endsWith(u' '))
                line.chop(1);
        } else if (units > 0 && !(broken && text[place] == u' ')) {
            if (std::exchange(broken, false) && !line.isEmpty())
                line += u' ';
            line += text.sliced(place, units);
        }
        place += std::max(units, 1);
    }
    cursor = std::min(moved < 0 ? line.size() : moved, line.size());
    return line;
}

QString WithoutHalves(QStringView text) {
    QString whole;
    whole.reserve(text.size());
    for (qsizetype place = 0; place < text.size();) {
        const int units = UnitsAt(text, place);
        whole += text.sliced(place, units);
        place += std::max(units, 1);
    }
    return whole;
}

QString PlainToolTip(const QString& text) {
    constexpr qsizetype MostOnOneLine = 100;
    const QString shown = Shown(text);
    const bool asRichText = shown.size() > MostOnOneLine || Qt::mightBeRichText(shown);
    return asRichText ? QStringLiteral("<span>%1</span>").arg(shown.toHtmlEscaped()) : shown;
}

void SetPlainToolTip(QWidget* widget, const QString& text) {
    widget->setToolTip(PlainToolTip(text));
}

} // namespace forms
