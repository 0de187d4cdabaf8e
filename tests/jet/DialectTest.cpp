// What can be told of the dialect without a database: date literals, patterns, syntax errors, bounds.

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "jet/sql/Errors.h"
#include "jet/sql/Lexer.h"
#include "jet/sql/LikePattern.h"
#include "jet/sql/Parser.h"

namespace wendel::jet::sql {
namespace {

struct DateCase {
    const char* name;
    const char* literal;
    const char* expected;  // yyyymmddhhnnss, "" for no date
};

class DateLiterals : public testing::TestWithParam<DateCase> {};

TEST_P(DateLiterals, AreMonthFirst) {
    const auto moment = parseDateLiteral(GetParam().literal);
    EXPECT_EQ(moment ? datumKompakt(*moment) : "", GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, DateLiterals,
    testing::Values(DateCase{"Day", "12/24/2012", "20121224000000"},
                    DateCase{"DayAndTime", "12/24/2012 20:15:03", "20121224201503"},
                    DateCase{"OneDigitParts", "1/2/2013 8:05:00", "20130102080500"},
                    DateCase{"NoSeconds", "12/24/2012 20:15", "20121224201500"},
                    DateCase{"TimeOfDayZero", "12/30/1899 20:15:00", "18991230201500"},
                    DateCase{"TimeAlone", "20:15:00", "18991230201500"},
                    DateCase{"Afternoon", "12/24/2012 8:15:00 PM", "20121224201500"},
                    DateCase{"Midnight", "12/24/2012 12:00:00 AM", "20121224000000"},
                    DateCase{"AmbiguousIsMonthFirst", "4/5/2012", "20120405000000"},
                    DateCase{"DayFirstWhereNothingElseFits", "24/12/2012", "20121224000000"},
                    DateCase{"Iso", "2012-12-24 20:15:00", "20121224201500"},
                    DateCase{"TwoDigitYear", "12/24/12", "20121224000000"},
                    DateCase{"LeapDay", "2/29/2012", "20120229000000"},
                    DateCase{"NoLeapDay", "2/29/2013", ""}, DateCase{"NoMinute", "12/24/2012 20:60:00", ""},
                    DateCase{"Hour24", "24:00", ""}, DateCase{"Word", "heute", ""}, DateCase{"Empty", "", ""},
                    DateCase{"Rest", "12/24/2012 20:15:00 x", ""}),
    [](const auto& row) { return std::string(row.param.name); });

struct LikeCase {
    const char* name;
    const char* pattern;
    const char* text;
    bool matches;
};

class LikePatterns : public testing::TestWithParam<LikeCase> {};

TEST_P(LikePatterns, Match) {
    EXPECT_EQ(LikePattern(GetParam().pattern).matches(GetParam().text), GetParam().matches);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LikePatterns,
    testing::Values(
        LikeCase{"Equal", "Tatort", "Tatort", true}, LikeCase{"OtherCase", "tatORT", "Tatort", true},
        LikeCase{"Umlaut", "ÄRGER*", "ärger im Café", true},
        LikeCase{"UmlautIsNoVowel", "a*", "Ärger", false}, LikeCase{"Run", "Tat*", "Tatort: Köln", true},
        LikeCase{"RunIsEmpty", "Tat*ort", "Tatort", true},
        LikeCase{"RunInside", "*Wiederkehrend=1*", "A=2;Wiederkehrend=1;B=3", true},
        LikeCase{"RunGivesBack", "*ab", "aab ab", true}, LikeCase{"RunsGiveBack", "*a*b", "xaxbxb", true},
        LikeCase{"WholeTextOnly", "at", "Tatort", false}, LikeCase{"One", "?ä?", "Bär", true},
        LikeCase{"OneIsNotNone", "a?", "a", false}, LikeCase{"Digit", "Folge ##", "Folge 42", true},
        LikeCase{"NoDigit", "Folge ##", "Folge 4x", false}, LikeCase{"Range", "[a-c]x", "Bx", true},
        LikeCase{"OutsideRange", "[a-c]x", "dx", false}, LikeCase{"Negated", "[!a-c]x", "dx", true},
        LikeCase{"NegatedInside", "[!a-c]x", "ax", false}, LikeCase{"LiteralStar", "a[*]b", "a*b", true},
        LikeCase{"LiteralStarOnly", "a[*]b", "axb", false}, LikeCase{"LiteralBracket", "[[]a", "[a", true},
        LikeCase{"MinusAtTheEnd", "[a-]", "-", true}, LikeCase{"LoneMark", "[!]", "!", true},
        LikeCase{"EmptySet", "a[]b", "ab", true}, LikeCase{"PercentIsItself", "100 %", "100 x", false},
        LikeCase{"UnderscoreIsItself", "a_b", "axb", false}, LikeCase{"EmptyPattern", "", "", true}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(LikePattern, RefusesOpenSetsAndBackwardRanges) {
    for (const char* pattern : {"a[b", "[", "[z-a]", "x[!"}) {
        SCOPED_TRACE(pattern);
        try {
            LikePattern made{pattern};
            ADD_FAILURE() << "no error";
        } catch (const Fehler& failure) {
            EXPECT_EQ(failure.nummer(), 93);
            EXPECT_EQ(failure.beschreibung(), "Ungültige Musterzeichenfolge.");
        }
    }
}

// Runs that have to be tried again and again must not take time that grows with their number.
TEST(LikePattern, ManyRunsStayFast) {
    std::string pattern;
    for (int i = 0; i < 40; ++i)
        pattern += "*a";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(LikePattern(pattern + "b").matches(std::string(20000, 'a')));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

struct SyntaxCase {
    const char* name;
    const char* statement;
    int number;  // 0: none
    const char* description = nullptr;
};

class Syntax : public testing::TestWithParam<SyntaxCase> {};

TEST_P(Syntax, HasTheEnginesNumber) {
    int number = 0;
    std::string description;
    try {
        parse(GetParam().statement);
    } catch (const Fehler& failure) {
        number = failure.nummer();
        description = failure.beschreibung();
    }
    EXPECT_EQ(number, GetParam().number) << description;
    if (GetParam().description) {
        EXPECT_EQ(description, GetParam().description);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Statements, Syntax,
    testing::Values(SyntaxCase{"Plain", " Select * from Sendungen ;", 0},
                    SyntaxCase{"EmptyIn", "Select * from S Where Pos in ()", 3075,
                               "Syntaxfehler in Abfrageausdruck 'Pos in ()'."},
                    SyntaxCase{"EmptyNotIn", "Select * from S Where Pos not in()", 3075},
                    SyntaxCase{"NotBeforeIn", "Select * from S Where not Pos in (1)", 0},
                    SyntaxCase{"MissingOperator", "Select * from S Where a=1 b=2", 3075},
                    SyntaxCase{"MissingOperand", "Select * from S Where a=", 3075},
                    SyntaxCase{"OpenBracket", "Select * from S Where (a=1", 3075},
                    SyntaxCase{"OpenText", "Select * from S Where a='x", 3075},
                    SyntaxCase{"OpenDate", "Select * from S Where a=#1/1/2012", 3075},
                    SyntaxCase{"NoDate", "Select * from S Where a=#13/13/2012#", 3075},
                    SyntaxCase{"OpenName", "Select [a from S", 3075},
                    SyntaxCase{"StrangeSign", "Select a { b from S", 3075},
                    SyntaxCase{"NoTable", "Select * from", 3131, "Syntaxfehler in FROM-Klausel."},
                    SyntaxCase{"TwoAliases", "Select * from S a b", 3131},
                    SyntaxCase{"JoinWithoutOn", "Select * from S inner join T", 3135},
                    SyntaxCase{"BareJoin", "Select * from S join T on a=b", 3131},
                    SyntaxCase{"DerivedWithoutPoint", "Select * from [ Select a from S ] as t1", 3131},
                    SyntaxCase{"Derived", "Select * from [ Select a from S ]. as t1", 0},
                    SyntaxCase{"DerivedWithRest", "Select * from [ Select a from S ; x ]. as t1", 3131},
                    SyntaxCase{"GroupWithoutBy", "Select a from S Group a", 3132},
                    SyntaxCase{"OrderWithoutBy", "Select a from S Order a", 3138},
                    SyntaxCase{"OrderByNothing", "Select a from S Order by ;", 3138},
                    SyntaxCase{"NoColumns", "Select from S", 3141},
                    SyntaxCase{"CommaAtTheEnd", "Select a, from S", 3141},
                    SyntaxCase{"NoStatement", "Hallo", 3129}, SyntaxCase{"Nothing", "", 3129},
                    SyntaxCase{"SecondStatement", "Select a from S; Select b from S", 3142},
                    SyntaxCase{"Insert", "Insert Into S (a) Values (1)", 3027},
                    SyntaxCase{"Delete", "Delete from S", 3027},
                    SyntaxCase{"Update", "Update S Set a=1", 3027}),
    [](const auto& row) { return std::string(row.param.name); });

std::string repeated(const std::string& part, int times) {
    std::string result;
    for (int i = 0; i < times; ++i)
        result += part;
    return result;
}

TEST(Parser, RefusesBottomlessNesting) {
    for (const std::string& text :
         {"Select " + repeated("(", 100000) + "1", "Select 1" + repeated("+1", 100000),
          "Select " + repeated("-", 100000) + "1", "Select * from S where " + repeated("not ", 100000) + "a",
          "Select * from " + repeated("(", 100000) + "S", repeated("Select * from (", 100000) + "S",
          "Select " + repeated("len(", 100000)}) {
        SCOPED_TRACE(text.substr(0, 30));
        try {
            parse(text);
            ADD_FAILURE() << "no error";
        } catch (const Fehler& failure) {
            EXPECT_EQ(failure.nummer(), 3360);
        }
    }
}

TEST(Parser, KeepsLongConditionsFlat) {
    const Statement statement = parse("Select * from S where a=0" + repeated(" or a=1", 50000));
    const Expr& where = *std::get<SelectPtr>(statement.node)->where;
    EXPECT_EQ(std::get<Logic>(where.node).operands.size(), 50001u);
    EXPECT_LE(where.depth, 3);
}

}  // namespace
}  // namespace wendel::jet::sql
