#include "platform/runtime/DateReader.h"

#include "platform/runtime/Dates.h"

#include <vector>

// Three steps: the text is cut into numbers, words and signs; the time of day and the mark of the year are
// taken out; what is left is two or three parts in an order that their looks decide.

namespace runtime {

const std::array<MonthForms, 12> Months = {{
    {u"январь", u"января", u"янв"},
    {u"февраль", u"февраля", u"фев"},
    {u"март", u"марта", u"мар"},
    {u"апрель", u"апреля", u"апр"},
    {u"май", u"мая", u"май"},
    {u"июнь", u"июня", u"июн"},
    {u"июль", u"июля", u"июл"},
    {u"август", u"августа", u"авг"},
    {u"сентябрь", u"сентября", u"сен"},
    {u"октябрь", u"октября", u"окт"},
    {u"ноябрь", u"ноября", u"ноя"},
    {u"декабрь", u"декабря", u"дек"},
}};

namespace {

constexpr int MonthsOfYear = 12;

struct Token {
    enum Type { Number, Word, Sign };
    Type type = Sign;
    int value = 0;  ///< of a number
    int digits = 0; ///< of a number
    QString text;   ///< a word in small letters, or a sign

    bool Is(QStringView what) const { return type != Number && text == what; }
    /// Only a year is written with three or four digits.
    bool IsYear() const { return type == Number && digits >= 3; }
    bool CanBeMonth() const { return value >= 1 && value <= MonthsOfYear; }
};

using Tokens = std::vector<Token>;

bool IsDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

std::optional<Tokens> Cut(const QString& text) {
    constexpr int MostDigits = 4;
    Tokens tokens;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype start = i;
        Token token;
        if (IsDigit(text[i])) {
            while (i < text.size() && IsDigit(text[i]))
                ++i;
            token.type = Token::Number;
            token.digits = static_cast<int>(i - start);
            if (token.digits > MostDigits)
                return std::nullopt;
            token.value = text.mid(start, i - start).toInt();
        } else if (text[i].isLetter()) {
            while (i < text.size() && text[i].isLetter())
                ++i;
            token.type = Token::Word;
            token.text = text.mid(start, i - start).toLower();
        } else if (QStringLiteral("./-,:").contains(text[i])) {
            token.text = text[i++];
        } else if (text[i] == u' ') {
            ++i;
            continue;
        } else {
            return std::nullopt;
        }
        tokens.push_back(token);
    }
    return tokens;
}

bool IsNumber(const Tokens& tokens, std::size_t place) {
    return place < tokens.size() && tokens[place].type == Token::Number;
}

bool Is(const Tokens& tokens, std::size_t place, QStringView what) {
    return place < tokens.size() && tokens[place].Is(what);
}

bool IsMorning(const Tokens& tokens, std::size_t place) {
    return Is(tokens, place, u"a") || Is(tokens, place, u"am");
}

bool IsAfternoon(const Tokens& tokens, std::size_t place) {
    return Is(tokens, place, u"p") || Is(tokens, place, u"pm");
}

struct TimeOfDay {
    QTime time; ///< invalid for a time that does not exist
    std::size_t first = 0;
    std::size_t behind = 0;
};

/// The time that begins at a place, if one does.
std::optional<TimeOfDay> TimeAt(const Tokens& tokens, std::size_t first) {
    constexpr int HalfDay = 12;
    if (!IsNumber(tokens, first))
        return std::nullopt;
    int hour = tokens[first].value;
    int minute = 0;
    int second = 0;
    std::size_t place = first + 1;
    const bool withMinutes = Is(tokens, place, u":");
    if (withMinutes) {
        if (!IsNumber(tokens, place + 1))
            return TimeOfDay{{}, first, place};
        minute = tokens[place + 1].value;
        place += 2;
        if (Is(tokens, place, u":") && IsNumber(tokens, place + 1)) {
            second = tokens[place + 1].value;
            place += 2;
        }
    }
    const bool morning = IsMorning(tokens, place);
    const bool afternoon = IsAfternoon(tokens, place);
    if (morning || afternoon) {
        ++place;
        if (hour > HalfDay)
            return TimeOfDay{{}, first, place};
        hour = hour % HalfDay + (afternoon ? HalfDay : 0);
    } else if (!withMinutes) {
        return std::nullopt;
    }
    const QTime time = QTime::isValid(hour, minute, second) ? QTime(hour, minute, second) : QTime();
    return TimeOfDay{time, first, place};
}

/// Takes the time of day out of the tokens; false if it is wrong or stands within the date.
bool TakeTime(Tokens& tokens, std::optional<QTime>& result) {
    std::optional<TimeOfDay> found;
    for (std::size_t place = 0; place < tokens.size() && !found; ++place)
        found = TimeAt(tokens, place);
    if (!found)
        return true;
    const bool atStart = found->first == 0;
    const bool atEnd = found->behind == tokens.size();
    if (!found->time.isValid() || (!atStart && !atEnd))
        return false;
    result = found->time;

    const bool alone = atStart && atEnd;
    if (!alone && atStart && Is(tokens, found->behind, u","))
        ++found->behind;
    else if (!alone && atEnd && Is(tokens, found->first - 1, u","))
        --found->first;
    tokens.erase(tokens.begin() + static_cast<std::ptrdiff_t>(found->first),
                 tokens.begin() + static_cast<std::ptrdiff_t>(found->behind));
    return !tokens.empty() || alone;
}

/// Takes off the word for "year" (one letter, with or without a point) behind the last number.
bool TakeYearMark(Tokens& tokens) {
    std::size_t place = tokens.size();
    if (place > 0 && tokens[place - 1].Is(u"."))
        --place;
    if (place < 2 || !tokens[place - 1].Is(u"г") || !IsNumber(tokens, place - 2))
        return false;
    tokens.resize(place - 1);
    return true;
}

int MonthOf(const QString& word) {
    for (std::size_t i = 0; i < Months.size(); ++i) {
        if (word == QStringView(Months[i].nominative) || word == QStringView(Months[i].genitive) ||
            word == QStringView(Months[i].abbreviated))
            return static_cast<int>(i) + 1;
    }
    return 0;
}

/// The numbers and month names (their `value` is the month) with at most one sign between two of them.
std::optional<Tokens> Parts(const Tokens& tokens) {
    constexpr int MostSigns = 2;
    Tokens parts;
    int signs = 0;
    bool afterPart = false;
    for (const Token& token : tokens) {
        if (token.type == Token::Sign) {
            if (!afterPart || token.Is(u":"))
                return std::nullopt;
            signs += token.Is(u",") ? 0 : 1;
            afterPart = false;
            continue;
        }
        parts.push_back(token);
        if (token.type == Token::Word) {
            parts.back().value = MonthOf(token.text);
            if (parts.back().value == 0)
                return std::nullopt;
        }
        afterPart = true;
    }
    if (!afterPart || signs > MostSigns)
        return std::nullopt;
    return parts;
}

/// What the parts mean; a missing year is that of today.
struct Meaning {
    std::optional<Token> year;
    std::optional<Token> month;
    std::optional<Token> day; ///< none: the first of the month
    bool yearLast = false;    ///< the year was the last part
};

/// Day and month written as numbers change places where only that can be meant.
Meaning NumericDate(const std::optional<Token>& year, const Token& day, const Token& month) {
    if (!month.CanBeMonth() && day.CanBeMonth())
        return {year, day, month};
    return {year, month, day};
}

std::optional<Meaning> MeaningOfTwo(const Token& first, const Token& second) {
    if (first.IsYear() && second.IsYear())
        return std::nullopt;
    if (first.IsYear())
        return Meaning{first, second, std::nullopt};
    if (second.IsYear())
        return Meaning{second, first, std::nullopt, true};
    if (first.type == Token::Word)
        return Meaning{std::nullopt, first, second};
    if (second.type == Token::Word)
        return Meaning{std::nullopt, second, first};
    return NumericDate(std::nullopt, first, second);
}

std::optional<Meaning> MeaningOfThree(const Token& first, const Token& second, const Token& third) {
    std::optional<Meaning> meaning;
    if (first.type == Token::Word) {
        meaning = Meaning{third, first, second};
    } else if (second.type == Token::Word) {
        meaning = first.IsYear() ? Meaning{first, second, third} : Meaning{third, second, first};
    } else if (third.type == Token::Word) {
        if (!first.IsYear())
            return std::nullopt; // a year in front needs its digits
        meaning = Meaning{first, third, second};
    } else {
        meaning = first.IsYear() ? NumericDate(first, third, second) : NumericDate(third, first, second);
    }
    meaning->yearLast = third.type == Token::Number && !first.IsYear();
    return meaning;
}

std::optional<Meaning> MeaningOf(const Tokens& parts) {
    int names = 0;
    for (const Token& part : parts)
        names += part.type == Token::Word ? 1 : 0;
    if (names > 1)
        return std::nullopt;
    if (parts.size() == 2)
        return MeaningOfTwo(parts[0], parts[1]);
    if (parts.size() == 3)
        return MeaningOfThree(parts[0], parts[1], parts[2]);
    return std::nullopt;
}

std::optional<QDate> DateOf(const Meaning& meaning, QDate today) {
    const bool dayIsYear = meaning.day && meaning.day->IsYear();
    if (dayIsYear || meaning.month->IsYear() || !meaning.month->CanBeMonth())
        return std::nullopt;
    const int year = meaning.year ? FullYear(meaning.year->value) : today.year();
    const QDate date(year, meaning.month->value, meaning.day ? meaning.day->value : 1);
    return date.isValid() ? std::optional(date) : std::nullopt;
}

} // namespace

std::optional<QDateTime> ReadDate(const QString& text, QDate today) {
    std::optional<Tokens> tokens = Cut(text);
    std::optional<QTime> time;
    if (!tokens || tokens->empty() || !TakeTime(*tokens, time))
        return std::nullopt;
    const QTime timeOfDay = time.value_or(QTime(0, 0));
    if (tokens->empty())
        return QDateTime(DayZero(), timeOfDay, Qt::UTC);

    const bool yearMarked = TakeYearMark(*tokens);
    const std::optional<Tokens> parts = Parts(*tokens);
    const std::optional<Meaning> meaning = parts ? MeaningOf(*parts) : std::nullopt;
    if (!meaning || (yearMarked && !meaning->yearLast))
        return std::nullopt;
    const std::optional<QDate> date = DateOf(*meaning, today);
    return date ? std::optional(QDateTime(*date, timeOfDay, Qt::UTC)) : std::nullopt;
}

std::optional<QDateTime> ReadShortDate(QStringView text) {
    constexpr std::array<int, 3> MostDigits = {2, 2, 4};
    std::array<int, 3> numbers = {};
    std::size_t part = 0;
    int digits = 0;
    for (const QChar c : text) {
        if (IsDigit(c) && digits < MostDigits[part]) {
            numbers[part] = numbers[part] * 10 + c.unicode() - u'0';
            ++digits;
        } else if (c == u'.' && digits > 0 && part < 2) {
            ++part;
            digits = 0;
        } else {
            return std::nullopt;
        }
    }
    constexpr int FirstYear = 100; // smaller ones mean a year of this or the last century
    const auto [day, month, year] = numbers;
    if (part != 2 || year < FirstYear || !QDate::isValid(year, month, day))
        return std::nullopt;
    return QDateTime(QDate(year, month, day), QTime(0, 0), Qt::UTC);
}

} // namespace runtime
