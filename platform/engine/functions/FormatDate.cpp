#include "platform/engine/functions/Calendar.h"
#include "platform/engine/functions/Picture.h"
#include "platform/runtime/DateReader.h"
#include "platform/runtime/Dates.h"

namespace engine::functions {

namespace {

QString Padded(int number, std::size_t width) {
    return QString::number(number).rightJustified(static_cast<qsizetype>(width), u'0');
}

/// Writes one value by its picture, run of letters by run of letters.
class DateWriter {
public:
    DateWriter(const QDateTime& value, Weeks weeks)
        : m_date(value.date())
        , m_time(value.time())
        , m_weeks(weeks) {}

    QString Write(Section section) {
        for (std::size_t i = 0; i < section.size(); ++i)
            m_halfDays = m_halfDays || HalfDayLength(section, i) > 0;
        QString text;
        while (!section.empty()) {
            const std::size_t half = HalfDayLength(section, 0);
            const std::size_t length = half > 0 ? half : RunLength(section);
            text += half > 0 ? HalfOfDay(section.first(half)) : Run(section.front(), length);
            section = section.subspan(length);
        }
        return text;
    }

private:
    static std::size_t RunLength(Section section) {
        if (section.front().literal)
            return 1;
        const char16_t letter = section.front().character.toLower().unicode();
        std::size_t length = 1;
        while (length < section.size() && section[length].Is(letter))
            ++length;
        return length;
    }

    /// The halves of a day as the picture writes them; AMPM would be the signs of the settings, which are
    /// none.
    QString HalfOfDay(Section sign) const {
        if (sign.size() == 4)
            return {};
        const std::size_t length = sign.size() / 2;
        return Plain(m_time.hour() < 12 ? sign.first(length) : sign.last(length));
    }

    QString Run(Sign sign, std::size_t length) {
        const char16_t letter = sign.literal ? u'\0' : sign.character.toLower().unicode();
        const bool minutes = letter == u'm' && length <= 2 && m_afterHour;
        if (QStringView(u"dmyhnswqct").contains(QChar(letter)))
            m_afterHour = letter == u'h';
        const std::size_t width = std::min<std::size_t>(length, 2);
        switch (letter) {
        case u'd':
            return Day(length);
        case u'm':
            return minutes ? Padded(m_time.minute(), width) : Month(length);
        case u'y':
            if (length == 1)
                return QString::number(m_date.dayOfYear());
            return length == 2 ? Padded(m_date.year() % 100, 2) : Padded(m_date.year(), 4);
        case u'h':
            return Padded(m_halfDays ? (m_time.hour() + 11) % 12 + 1 : m_time.hour(), width);
        case u'n':
            return Padded(m_time.minute(), width);
        case u's':
            return Padded(m_time.second(), width);
        case u'w':
            return QString::number(length == 1 ? WeekdayOf(m_date, m_weeks.first)
                                               : WeekOf(m_date, m_weeks.first, m_weeks.rule));
        case u'q':
            return QString::number((m_date.month() + 2) / 3);
        case u'c':
            return runtime::DateToText(QDateTime(m_date, m_time, Qt::UTC));
        case u't':
            if (length >= 5)
                return runtime::DateToText(QDateTime(runtime::DayZero(), m_time, Qt::UTC)); // the time alone
            break;
        case u'/':
            sign.character = u'.';
            break;
        default:
            break;
        }
        return QString(static_cast<qsizetype>(length), sign.character);
    }

    QString Day(std::size_t length) const {
        if (length <= 2)
            return Padded(m_date.day(), length);
        if (length <= 4)
            return WeekdayName(m_date.dayOfWeek(), length == 3);
        if (length == 5)
            return runtime::DateToText(m_date);
        const auto month = static_cast<std::size_t>(m_date.month() - 1);
        return QStringLiteral("%1 %2 %3 г.")
            .arg(QString::number(m_date.day()), QString::fromUtf16(runtime::Months.at(month).genitive),
                 Padded(m_date.year(), 4));
    }

    QString Month(std::size_t length) const {
        return length <= 2 ? Padded(m_date.month(), length) : runtime::MonthName(m_date.month(), length == 3);
    }

    QDate m_date;
    QTime m_time;
    Weeks m_weeks;
    bool m_halfDays = false;
    bool m_afterHour = false; ///< the last letters were hours, so that `m` means minutes
};

} // namespace

QString FormatDate(const QDateTime& value, Section section, Weeks weeks) {
    return DateWriter(value, weeks).Write(section);
}

} // namespace engine::functions
