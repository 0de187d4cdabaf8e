// Lenient numbers, rounding and number texts; expected values from the run time's documented behaviour.
#include "platform/Zahlen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "platform/Fehler.h"

namespace wendel {
namespace {

TEST(ValTest, TakesTheLongestNumberAtTheStart) {
    const struct {
        const char* text;
        double wert;
    } faelle[] = {
        {"", 0},
        {"abc", 0},
        {" 1 2x", 12},
        {"-7", -7},
        {"20:15", 20},
        {"1,5", 1},
        {".5", 0.5},
        {"2.5 s", 2.5},
        {"&HFF", 255},
        {"&HFFFF", -1},
        {"&h8000", -32768},
        {"&H10000", 65536},
        {"&HFFFFFFFF", -1},
        {"& H f f", 255},
        {"&O17", 15},
        {"&O18", 1},
        {"&H", 0},
        {"&", 0},
        {"1e3", 1000},
        {"1E+3", 1000},
        {"1d2", 100},
        {"5D-1", 0.5},
        {"1e", 1},
        {"1e+", 1},
        {"1ex", 1},
        {"1.2.3", 1.2},
        {"5.", 5},
        {".", 0},
        {"-", 0},
        {"- 5", -5},
        {"+5", 5},
        {"--5", 0},
        {"1\t2\n3", 123},
        {"1\r2", 1},
        {"inf", 0},
        {"nan", 0},
        {"0x10", 0},
        {"1e-400", 0},
        {"  ", 0},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.text);
        EXPECT_EQ(Val(fall.text), fall.wert);
    }
}

TEST(ValTest, ATooLargeNumberIsAnOverflow) {
    for (const std::string& text :
         {std::string("1e400"), std::string("-1e400"), std::string("1e99999999999999"), std::string(400, '9'),
          std::string("&H100000000")}) {
        SCOPED_TRACE(text);
        try {
            Val(text);
            ADD_FAILURE() << "no error";
        } catch (const Fehler& fehler) {
            EXPECT_EQ(fehler.nummer(), fehlernummer::kUeberlauf);
        }
    }
}

TEST(Rounding, IsHalfToEvenWithinTheRange) {
    const struct {
        double wert;
        int ganz;
    } faelle[] = {{0.5, 0},  {1.5, 2},         {2.5, 2},           {-0.5, 0},  {-1.5, -2},
                  {2.51, 3}, {32767.4, 32767}, {-32768.5, -32768}, {-2.5, -2}, {0.4999, 0}};
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.wert);
        EXPECT_EQ(CInt(fall.wert), fall.ganz);
        EXPECT_EQ(CLng(fall.wert), fall.ganz);
    }
    EXPECT_EQ(CLng(2147483647.4), 2147483647);
    EXPECT_EQ(CLng(-2147483648.5), -2147483647 - 1);
}

TEST(Rounding, OutsideTheRangeIsAnOverflow) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double wert : {32767.5, -32768.6, 1e300, nan})
        EXPECT_THROW(CInt(wert), Fehler) << wert;
    for (const double wert : {2147483647.5, -2147483648.6, 1e300, nan})
        EXPECT_THROW(CLng(wert), Fehler) << wert;
}

TEST(NumberTexts, AreShortAndReadBack) {
    const struct {
        double wert;
        const char* text;
    } faelle[] = {
        {0, "0"},
        {-0.0, "0"},
        {1, "1"},
        {-1.5, "-1.5"},
        {0.1, "0.1"},
        {100000, "100000"},
        {1e15, "1e+15"},
        {0.00001, "0.00001"},
        {1e-6, "1e-06"},
        {41267.84375, "41267.84375"},
        {123456789012345, "123456789012345"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.text);
        EXPECT_EQ(zahlAlsText(fall.wert), fall.text);
        EXPECT_EQ(Val(fall.text), fall.wert);
    }
    EXPECT_EQ(einfachAlsText(0.1F), "0.1");
}

TEST(NumberTexts, ReadBackForRandomBitPatterns) {
    constexpr unsigned kSeed = 20121224;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 zufall(kSeed);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = zufall();
        double wert = 0;
        static_assert(sizeof wert == sizeof bits);
        std::memcpy(&wert, &bits, sizeof wert);
        if (!std::isfinite(wert)) continue;
        ASSERT_EQ(Val(zahlAlsText(wert)), wert) << zahlAlsText(wert);
    }
}

TEST(NumberTexts, ArePaddedWithZeros) {
    EXPECT_EQ(mitNullen(5, 2), "05");
    EXPECT_EQ(mitNullen(123, 2), "123");
    EXPECT_EQ(mitNullen(0, 1), "0");
    EXPECT_EQ(mitNullen(-5, 2), "-05");
    EXPECT_EQ(mitNullen(std::numeric_limits<std::int64_t>::min(), 1), "-9223372036854775808");
    EXPECT_EQ(Hex(255), "FF");
    EXPECT_EQ(Hex(-1), "FFFFFFFF");
    EXPECT_EQ(Hex(0), "0");
}

}  // namespace
}  // namespace wendel
