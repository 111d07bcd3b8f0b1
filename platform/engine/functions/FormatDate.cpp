#include "platform/engine/functions/Calendar.h"
#include "platform/engine/functions/Picture.h"
#include "platform/runtime/Dates.h"

#include <array>

namespace engine::functions {

namespace {

QString Padded(int number, std::size_t width) {
    return QString::number(number).rightJustified(static_cast<qsizetype>(width), u'0');
}

/// Month names as they stand behind a day.
QString MonthOfDay(int month) {
    static constexpr std::array<QStringView, 12> names{u"января",   u"февраля", u"марта",  u"апреля",
                                                       u"мая",      u"июня",    u"июля",   u"августа",
                                                       u"сентября", u"октября", u"ноября", u"декабря"};
    return names.at(static_cast<std::size_t>(month - 1)).toString();
}

QString LongDate(QDate date) {
    return QString::number(date.day()) + u' ' + MonthOfDay(date.month()) + u' ' + Padded(date.year(), 4) +
           QStringLiteral(" г.");
}

QString LongTime(QTime time) {
    return QString::number(time.hour()) + u':' + Padded(time.minute(), 2) + u':' + Padded(time.second(), 2);
}

/// Writes one value by its picture, run of letters by run of letters.
class DateWriter {
public:
    DateWriter(const QDateTime& value, Section section, Weeks weeks)
        : m_date(value.date())
        , m_time(value.time())
        , m_section(section)
        , m_weeks(weeks) {
        for (std::size_t i = 0; i < section.size(); ++i)
            m_halfDays = m_halfDays || HalfDayLength(section, i) > 0;
    }

    QString Write() {
        for (std::size_t i = 0; i < m_section.size();) {
            if (const std::size_t length = HalfDayLength(m_section, i)) {
                WriteHalf(m_section.subspan(i, length));
                i += length;
            } else {
                const std::size_t length2 = RunAt(i);
                WriteRun(m_section[i], length2);
                i += length2;
            }
        }
        return m_text;
    }

private:
    std::size_t RunAt(std::size_t start) const {
        if (m_section[start].literal)
            return 1;
        const char16_t letter = m_section[start].character.toLower().unicode();
        std::size_t end = start + 1;
        while (end < m_section.size() && m_section[end].Is(letter))
            ++end;
        return end - start;
    }

    /// The halves of a day as the picture writes them; AMPM would be the signs of the settings, which are
    /// none.
    void WriteHalf(Section sign) {
        const bool second = m_time.hour() >= 12;
        if (sign.size() == 5)
            m_text += Plain(second ? sign.subspan(3, 2) : sign.first(2));
        else if (sign.size() == 3)
            m_text += Plain(second ? sign.subspan(2, 1) : sign.first(1));
    }

    void WriteRun(Sign sign, std::size_t length) {
        const bool afterHour = m_afterHour;
        const char16_t letter = sign.literal ? u'\0' : sign.character.toLower().unicode();
        if (sign.literal || !QStringView(u"dmyhnswqct").contains(QChar(letter))) {
            WriteSeparators(sign, length);
            return;
        }
        m_afterHour = letter == u'h';
        switch (letter) {
        case u'd':
            WriteDay(length);
            break;
        case u'm':
            if (afterHour && length <= 2)
                m_text += Padded(m_time.minute(), length);
            else
                WriteMonth(length);
            break;
        case u'y':
            if (length == 1)
                m_text += QString::number(m_date.dayOfYear());
            else
                m_text += length == 2 ? Padded(m_date.year() % 100, 2) : Padded(m_date.year(), 4);
            break;
        case u'h':
            m_text += Padded(Hour(), std::min<std::size_t>(length, 2));
            break;
        case u'n':
            m_text += Padded(m_time.minute(), std::min<std::size_t>(length, 2));
            break;
        case u's':
            m_text += Padded(m_time.second(), std::min<std::size_t>(length, 2));
            break;
        case u'w':
            m_text += QString::number(length == 1 ? WeekdayOf(m_date, m_weeks.first)
                                                  : WeekOf(m_date, m_weeks.first, m_weeks.rule));
            break;
        case u'q':
            m_text += QString::number((m_date.month() - 1) / 3 + 1);
            break;
        case u'c':
            m_text += runtime::DateToText(QDateTime(m_date, m_time, Qt::UTC));
            break;
        default:
            m_text +=
                length >= 5 ? LongTime(m_time) : QString(static_cast<qsizetype>(length), sign.character);
        }
    }

    void WriteSeparators(Sign sign, std::size_t length) {
        const QChar shown = sign.Is(u'/') ? QChar(u'.') : sign.character;
        m_text += QString(static_cast<qsizetype>(length), shown);
    }

    void WriteDay(std::size_t length) {
        switch (length) {
        case 1:
        case 2:
            m_text += Padded(m_date.day(), length);
            break;
        case 3:
        case 4:
            m_text += WeekdayName(m_date.dayOfWeek(), length == 3);
            break;
        case 5:
            m_text += runtime::DateToText(m_date);
            break;
        default:
            m_text += LongDate(m_date);
        }
    }

    void WriteMonth(std::size_t length) {
        if (length <= 2)
            m_text += Padded(m_date.month(), length);
        else
            m_text += runtime::MonthName(m_date.month(), length == 3);
    }

    int Hour() const {
        if (!m_halfDays)
            return m_time.hour();
        return (m_time.hour() + 11) % 12 + 1;
    }

    QDate m_date;
    QTime m_time;
    Section m_section;
    Weeks m_weeks;
    bool m_halfDays = false;
    bool m_afterHour = false; ///< the last letters were hours, so that `m` means minutes
    QString m_text;
};

} // namespace

QString FormatDate(const QDateTime& value, Section section, Weeks weeks) {
    return DateWriter(value, section, weeks).Write();
}

} // namespace engine::functions
