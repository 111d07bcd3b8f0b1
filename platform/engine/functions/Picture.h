#pragma once

#include "platform/engine/Value.h"
#include "platform/engine/schema/Types.h"

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <span>
#include <vector>

namespace engine::functions {

/// One character of a picture of FORMAT; a literal one (behind `\` or in quotes) stands for itself.
struct Sign {
    QChar character;
    bool literal = false;

    bool Is(char16_t letter) const { return !literal && character.toLower() == QChar(letter); }
};

using Section = std::span<const Sign>;

/// A picture taken apart at its semicolons.
class Picture {
public:
    enum Kind { Number, Date, Text, Literal };

    explicit Picture(QStringView text);

    std::size_t Count() const { return m_sections.size(); }
    /// A section that the picture lacks is empty.
    Section At(std::size_t place) const;
    /// What the first telling character makes of it.
    Kind KindOf() const;

private:
    std::vector<std::vector<Sign>> m_sections;
};

/// Length of the sign for the halves of a day (AM/PM, A/P, AMPM) that starts there; 0 if there is none.
std::size_t HalfDayLength(Section section, std::size_t place);

/// Of a number as it is shown: a fraction to 15 digits, one of type SINGLE to 7, an amount of money to all.
QString FormatNumber(const Value& number, const Picture& picture);
/// How a year is parted into weeks: see WeekdayOf and WeekOf.
struct Weeks {
    int first = 1;
    int rule = 1;
};

QString FormatDate(const QDateTime& value, Section section, Weeks weeks);
QString FormatText(const QString& text, const Picture& picture);
/// The characters as they stand.
QString Plain(Section section);

} // namespace engine::functions
