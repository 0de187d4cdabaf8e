// Lenient numbers, rounding and number texts; expected values from the run time's documented behaviour.
#include "platform/Zahlen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/Fehlernummer.h"

namespace wendel {
namespace {

TEST(ValTest, TakesTheLongestNumberAtTheStart) {
    using Texte = std::vector<std::string>;
    const std::pair<double, Texte> faelle[] = {
        {0, Texte{"", "abc", "&H", "&", ".", "-", "--5", "inf", "nan", "0x10", "1e-400"}},
        {1, Texte{"1,5", "1e", "1e+", "1ex", "1\r2", "&O18"}},
        {0.5, Texte{".5", "5D-1", "0.5.2"}},
        {-7, Texte{"-7", "- 7", "-7 Uhr"}},
        {123, Texte{"1\t2\n3", "+123", "1.23E+2", "1.23d2", "&h7b", "& H 7 B"}},
        {15, Texte{"&O17", " 1 5x", "15."}},
        {-1, Texte{"&HFFFF", "&HFFFFFFFF"}},
        {-32768, Texte{"&h8000"}},
        {65536, Texte{"&H10000"}}};
    for (const auto& [wert, texte] : faelle)
        for (const std::string& text : texte)
            EXPECT_EQ(Val(text), wert) << text;
    for (const std::string& text : Texte{"-1e400", "1e99999999999999", std::string(400, '9'), "&H100000000"})
        EXPECT_EQ(fehlernummerVon([&] { Val(text); }), fehlernummer::kUeberlauf) << text;
}

TEST(Rounding, IsHalfToEvenWithinTheRange) {
    const std::pair<double, int> faelle[] = {{0.5, 0},   {1.5, 2},  {2.5, 2},         {-0.5, 0},
                                             {-1.5, -2}, {2.51, 3}, {32767.4, 32767}, {-32768.5, -32768}};
    for (const auto& [wert, ganz] : faelle) {
        EXPECT_EQ(CInt(wert), ganz) << wert;
        EXPECT_EQ(CLng(wert), ganz) << wert;
    }
    EXPECT_EQ(CLng(2147483647.4), 2147483647);
    EXPECT_EQ(CLng(-2147483648.5), -2147483647 - 1);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double wert : {32767.5, -32768.6, 1e300, nan})
        EXPECT_EQ(fehlernummerVon([&] { CInt(wert); }), fehlernummer::kUeberlauf) << wert;
    for (const double wert : {2147483647.5, -2147483648.6, 1e300, nan})
        EXPECT_EQ(fehlernummerVon([&] { CLng(wert); }), fehlernummer::kUeberlauf) << wert;
}

TEST(NumberTexts, AreShortAndReadBack) {
    EXPECT_EQ(zahlAlsText(-0.0), "0");
    EXPECT_EQ(zahlAlsText(-1.5), "-1.5");
    EXPECT_EQ(zahlAlsText(0.00001), "0.00001");
    EXPECT_EQ(zahlAlsText(1e-6), "1e-06");
    EXPECT_EQ(zahlAlsText(123456789012345), "123456789012345");
    EXPECT_EQ(zahlAlsText(1e15), "1e+15");
    EXPECT_EQ(einfachAlsText(0.1F), "0.1");
    constexpr unsigned kSeed = 20121224;
    SCOPED_TRACE(kSeed);
    std::mt19937_64 zufall(kSeed);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = zufall();
        double wert = 0;
        std::memcpy(&wert, &bits, sizeof wert);
        if (!std::isfinite(wert)) continue;
        ASSERT_EQ(Val(zahlAlsText(wert)), wert) << zahlAlsText(wert);
    }
}

}  // namespace
}  // namespace wendel
