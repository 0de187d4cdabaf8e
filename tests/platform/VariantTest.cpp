// Values of run-time type: their codes in the settings file and the lenient conversions.
#include "platform/Variant.h"

#include <gtest/gtest.h>

#include "support/Fehlernummer.h"

namespace wendel {
namespace {

Variant feld() { return Variant::array(Array::eindimensional(0, 1)); }
Datum weihnachten() { return DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0); }

TEST(Conversion, IsLenientAndTypesHaveTheCodesOfTheSettingsFile) {
    const struct {
        const char* name;
        Variant wert;
        int code;
        bool alsBool;
        int alsLong;
        double alsDouble;
        const char* alsText;
    } faelle[] = {
        {"empty", Variant(), 0, false, 0, 0, ""},
        {"long", Variant::lang(70000), 3, true, 70000, 70000, "70000"},
        {"double half to even", Variant::doppelt(3.5), 5, true, 4, 3.5, "3.5"},
        {"currency between 0 and -1", Variant::waehrung(-5000), 6, true, 0, -0.5, "-0.5"},
        {"date", Variant::datumRoh(41267.84375), 7, true, 41268, 41267.84375, "24.12.2012 20:15:00"},
        {"text with a number", Variant::text("12 Uhr"), 8, true, 12, 12, "12 Uhr"},
        {"true", Variant::boolesch(true), 11, true, -1, -1, "-1"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.wert.typcode(), fall.code);
        EXPECT_EQ(fall.wert.alsBool(), fall.alsBool);
        EXPECT_EQ(fall.wert.alsLong(), fall.alsLong);
        EXPECT_EQ(fall.wert.alsDouble(), fall.alsDouble);
        EXPECT_EQ(fall.wert.alsText(), fall.alsText);
    }
    EXPECT_EQ(Variant::datum(weihnachten()).alsDatum(), weihnachten());
    EXPECT_EQ(Variant::waehrung(INT64_MIN).alsText(), "-922337203685477.5808");
}

TEST(Conversion, ReportsWhatHasNoValue) {
    for (const Variant& wert : {feld(), Variant::binaer({1, 2})}) {
        EXPECT_EQ(fehlernummerVon([&] { wert.alsLong(); }), fehlernummer::kTyp);
        EXPECT_EQ(fehlernummerVon([&] { wert.alsText(); }), fehlernummer::kTyp);
    }
    EXPECT_EQ(fehlernummerVon([] { Variant::null().alsText(); }), fehlernummer::kNull);
    EXPECT_EQ(fehlernummerVon([] { Variant::lang(32768).alsInteger(); }), fehlernummer::kUeberlauf);
    EXPECT_EQ(fehlernummerVon([] { Variant::doppelt(1e12).alsDatum(); }), fehlernummer::kUeberlauf);
    EXPECT_EQ(fehlernummerVon([] { Variant::binaer({1}).alsArray(); }), fehlernummer::kTyp);
}

TEST(Arrays, AreAddressedFromTheirLowerBounds) {
    Array tabelle;
    tabelle.grenzen = {{4, 1}, {2, -1}};
    for (int i = 0; i < 8; ++i)
        tabelle.elemente.push_back(Variant::lang(i));
    EXPECT_EQ(tabelle.at({2, -1}).alsLong(), 1) << "the first index runs fastest";
    EXPECT_EQ(tabelle.at({4, 0}).alsLong(), 7);
    tabelle.elemente.pop_back();  // fewer elements than the bounds say, as a damaged file may have them
    const std::vector<std::vector<std::int32_t>> falsche = {
        {}, {1}, {0, 0}, {5, 0}, {1, 1}, {1, -2}, {1, 0, 0}, {INT32_MIN, INT32_MAX}, {4, 0}};
    for (const auto& index : falsche)
        EXPECT_EQ(fehlernummerVon([&] { tabelle.at(index); }), fehlernummer::kIndex)
            << testing::PrintToString(index);
}

TEST(Equality, ComparesTypeAndContent) {
    EXPECT_FALSE(Variant::integer(1) == Variant::lang(1));
    EXPECT_EQ(Variant::datum(weihnachten()), Variant::datumRoh(41267.84375));
    Array a = Array::eindimensional(1, 2), b = a;
    b.elemente[1] = feld();
    EXPECT_FALSE(Variant::array(a) == Variant::array(b));
    a.elemente[1] = feld();
    EXPECT_EQ(Variant::array(a), Variant::array(b)) << "nested arrays by content";
    b.grenzen[0].untergrenze = 0;
    EXPECT_FALSE(Variant::array(a) == Variant::array(b));
}

}  // namespace
}  // namespace wendel
