// Statements of any size keep their bounds. What they mean is tested through jetsql.

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "jet/sql/Errors.h"
#include "jet/sql/LikePattern.h"
#include "jet/sql/Parser.h"
#include "jet/sql/Translator.h"
#include "support/Fehlernummer.h"

namespace wendel::jet::sql {
namespace {

class NoTables : public Schema {
    const SchemaTable* table(std::string_view) override { return nullptr; }
};

// Runs that have to be tried again and again must not take time that grows with their number.
TEST(LikePattern, ManyRunsStayFast) {
    std::string pattern;
    for (int i = 0; i < 40; ++i)
        pattern += "*a";
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(LikePattern(pattern + "b").matches(std::string(20000, 'a')));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

std::string repeated(const std::string& part, int times) {
    std::string result;
    for (int i = 0; i < times; ++i)
        result += part;
    return result;
}

// Nesting would take the stack; what is written twice at each level, or looked at again at each, all memory.
TEST(Dialect, RefusesStatementsThatGrowWithoutBound) {
    std::string selects = "Select Count(*)";
    for (int i = 0; i < 8; ++i)
        selects = "Select (" + selects + ")" + repeated("+1", 40) + "+Count(*)";
    for (const std::string& text :
         {"Select " + repeated("(", 100000) + "1", "Select 1" + repeated("+1", 100000),
          "Select " + repeated("-", 100000) + "1", "Select * from S where " + repeated("not ", 100000) + "a",
          "Select * from " + repeated("(", 100000) + "S", repeated("Select * from (", 100000) + "S",
          "Select " + repeated("len(", 100000),
          "Select " + repeated("(", 50) + "1" + repeated(" between 1 and 2)", 50), selects})
        EXPECT_EQ(fehlernummerVon([&] {
                      NoTables schema;
                      translate(*std::get<SelectPtr>(parse(text).node), schema, Datum());
                  }),
                  kTooComplex)
            << text.substr(0, 30);
}

TEST(Parser, KeepsLongConditionsFlat) {
    const Statement statement = parse("Select * from S where a=0" + repeated(" or a=1", 50000));
    const Expr& where = *std::get<SelectPtr>(statement.node)->where;
    EXPECT_EQ(std::get<Logic>(where.node).operands.size(), 50001u);
    EXPECT_LE(where.depth, 3);
}

}  // namespace
}  // namespace wendel::jet::sql
