#include "platform/engine/functions/LikePattern.h"
#include "platform/runtime/Failure.h"
#include "tests/engine/functions/Scratch.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

using engine::functions::LikePattern;

namespace {

enum Outcome { No, Yes, Invalid };

Outcome OutcomeOf(const QString& text, const QString& pattern) {
    try {
        return LikePattern(pattern).Matches(text) ? Yes : No;
    } catch (const runtime::Failure& failure) {
        EXPECT_EQ(failure.number(), runtime::InvalidPattern);
        return Invalid;
    }
}

} // namespace

TEST(Like, MatchesTheWholeText) {
    const struct {
        const char16_t* text;
        const char16_t* pattern;
        Outcome outcome;
    } rows[] = {
        // plain characters, case, trailing blanks
        {u"", u"", Yes},
        {u"а", u"", No},
        {u"", u"а", No},
        {u"Иванов", u"иВАНОВ", Yes},
        {u"Иванов", u"Ивано", No},
        {u"Иванов", u"Иванов ", No},
        {u"Иванов ", u"Иванов", No},
        {u"ёлка", u"елка", No},
        {u"ЁЛКА", u"ёлка", Yes},
        {u"50%_", u"50%_", Yes},
        {u"50аб", u"50%_", No},
        {u"a\\b", u"a\\b", Yes},
        // runs
        {u"", u"*", Yes},
        {u"", u"**", Yes},
        {u"Иванов", u"*", Yes},
        {u"Иванов", u"ив*", Yes},
        {u"Иванов", u"*ОВ", Yes},
        {u"Иванов", u"*н*", Yes},
        {u"Иванов", u"*н*н*", No},
        {u"абабв", u"*абв", Yes},
        {u"ааб", u"*аб", Yes},
        {u"аxбxв", u"а*б*в", Yes},
        {u"аxбxвг", u"а*б*в", No},
        {u"аб", u"а*б*", Yes},
        // one character, one digit
        {u"Иван", u"И?ан", Yes},
        {u"Ивван", u"И?ан", No},
        {u"", u"?", No},
        {u"7", u"#", Yes},
        {u"x", u"#", No},
        {u"٣", u"#", No},
        {u"(495) 123-45-67", u"(###) ###-##-##", Yes},
        {u"*100#", u"?###?", Yes},
        // lists
        {u"б", u"[абв]", Yes},
        {u"Б", u"[абв]", Yes},
        {u"г", u"[абв]", No},
        {u"г", u"[!абв]", Yes},
        {u"Б", u"[!абв]", No},
        {u"", u"[!абв]", No},
        {u"д", u"[а-я]", Yes},
        {u"Д", u"[а-я]", Yes},
        {u"ё", u"[а-я]", Yes},
        {u"Ё", u"[А-Я]", Yes},
        {u"ё", u"[е-ж]", Yes},
        {u"ё", u"[а-е]", No},
        {u"ё", u"[!а-я]", No},
        {u"q", u"[а-я]", No},
        {u"q", u"[a-z]", Yes},
        {u"5", u"[а-яa-z]", No},
        {u"5", u"[0-9а-я]", Yes},
        {u"а5", u"[а-я]#", Yes},
        {u"-", u"[-а]", Yes},
        {u"-", u"[а-]", Yes},
        {u"-", u"[!-а]", No},
        {u"б", u"[!-а]", Yes},
        {u"в", u"[а-бв]", Yes},
        {u"-", u"[а-б-г]", Yes},
        {u"в", u"[а-б-г]", No},
        {u"!", u"[а!]", Yes},
        {u"!", u"[!]", Yes},
        {u"!", u"!", Yes},
        {u"]", u"]", Yes},
        {u"а]", u"[а]]", Yes},
        {u"*", u"[*]", Yes},
        {u"а", u"[*]", No},
        {u"?", u"[?]", Yes},
        {u"#", u"[#]", Yes},
        {u"[", u"[[]", Yes},
        {u"[нет]", u"[[]нет]", Yes},
        {u"", u"[]", Yes},
        {u"а", u"[]", No},
        {u"аб", u"а[]б", Yes},
        {u"*100#", u"[*]100[#]", Yes},
        {u"*100#", u"*[#]", Yes},
        // what is no pattern, whether the text comes so far or not
        {u"а", u"[", Invalid},
        {u"а", u"а[бв", Invalid},
        {u"", u"x[", Invalid},
        {u"а", u"[я-а]", Invalid},
        {u"а", u"[9-0]", Invalid},
        {u"а", u"[б-аа]", Invalid},
        {u"а", u"[а-а]", Yes},
        {u"[", u"[]]", No},
        // code units that are no characters
        {u"\U0001F600", u"??", Yes},
        {u"\U0001F600", u"*", Yes},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(test::Text(row.text).toStdString() + " LIKE " + test::Text(row.pattern).toStdString());
        EXPECT_EQ(OutcomeOf(test::Text(row.text), test::Text(row.pattern)), row.outcome);
    }
}

TEST(Like, WildcardsAreKnown) {
    for (const char16_t* with : {u"*", u"а?", u"#", u"[", u"[а]"})
        EXPECT_TRUE(engine::functions::HasWildcards(with));
    for (const char16_t* without : {u"", u"Иванов", u"%_", u"]!-"})
        EXPECT_FALSE(engine::functions::HasWildcards(without));
}

// A pattern that makes a backtracking matcher run for years.
TEST(Like, ManyRunsDoNotBlowUp) {
    const QString text = QString(20000, u'а');
    QString pattern;
    for (int i = 0; i < 60; ++i)
        pattern += QStringLiteral("*а?");
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(LikePattern(pattern + QStringLiteral("*б")).Matches(text));
    EXPECT_TRUE(LikePattern(pattern + u'*').Matches(text));
    EXPECT_LT(clock.elapsed(), 5000);
}

TEST(Like, InAStatement) {
    test::Scratch scratch;
    const struct {
        const char* sql;
        const char* answer;
    } rows[] = {
        {"SELECT zv_like('Иванов', 'ИВ*')", "1"},
        {"SELECT zv_like('Иванов', 'ИВ')", "0"},
        {"SELECT zv_like(NULL, '*')", "NULL"},
        {"SELECT zv_like('а', NULL)", "NULL"},
        {"SELECT zv_like(495, '4*')", "1"},
        {"SELECT zv_like(0.5, '0,5')", "1"},
        {"SELECT zv_like(x'3000', '*')", "1"},
        {"SELECT zv_like('а', '[')", "#93"},
        {"SELECT sum(zv_like(column1, '*а*')) FROM (VALUES ('а'), (NULL), ('б'), ('ба'))", "2"},
        {"SELECT sum(zv_like('аб', column1)) FROM (VALUES ('а?'), ('*'), ('?'))", "2"},
        {"SELECT sum(zv_like(column1, '[')) FROM (VALUES ('а'))", "#93"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(scratch.Ask(row.sql), row.answer) << row.sql;
}
