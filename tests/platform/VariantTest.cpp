// Values of run-time type: their codes in the settings file and the lenient conversions.
#include "platform/Variant.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/Fehler.h"

namespace wendel {
namespace {

int fehlernummerVon(const std::function<void()>& tat) {
    try {
        tat();
    } catch (const Fehler& fehler) {
        return fehler.nummer();
    }
    return 0;
}

Variant feld() { return Variant::array(Array::eindimensional(0, 1)); }
Datum weihnachten() { return DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0); }

TEST(TypeCodes, AreThoseOfTheSettingsFile) {
    Array dreissigLongs;
    dreissigLongs.elementtyp = Varianttyp::Long;
    const struct {
        const char* name;
        Variant wert;
        int code;
    } faelle[] = {
        {"empty", Variant(), 0},
        {"null", Variant::null(), 1},
        {"integer", Variant::integer(1), 2},
        {"long", Variant::lang(1), 3},
        {"single", Variant::einfach(1), 4},
        {"double", Variant::doppelt(1), 5},
        {"currency", Variant::waehrung(1), 6},
        {"date", Variant::datumRoh(1), 7},
        {"string", Variant::text("1"), 8},
        {"boolean", Variant::boolesch(true), 11},
        {"byte", Variant::byte(1), 17},
        {"array of variants", feld(), 0x200C},
        {"array of longs", Variant::array(dreissigLongs), 0x2003},
        {"binary", Variant::binaer({1}), 0x2011},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.wert.typcode(), fall.code);
    }
}

TEST(Conversion, IsLenient) {
    const struct {
        const char* name;
        Variant wert;
        bool alsBool;
        int alsLong;
        double alsDouble;
        const char* alsText;
    } faelle[] = {
        {"empty", Variant(), false, 0, 0, ""},
        {"integer", Variant::integer(-7), true, -7, -7, "-7"},
        {"long", Variant::lang(70000), true, 70000, 70000, "70000"},
        {"single", Variant::einfach(2.5F), true, 2, 2.5, "2.5"},
        {"double half to even", Variant::doppelt(3.5), true, 4, 3.5, "3.5"},
        {"currency", Variant::waehrung(12500), true, 1, 1.25, "1.25"},
        {"currency between 0 and -1", Variant::waehrung(-5000), true, 0, -0.5, "-0.5"},
        {"date", Variant::datumRoh(41267.84375), true, 41268, 41267.84375, "24.12.2012 20:15:00"},
        {"text with a number", Variant::text("12 Uhr"), true, 12, 12, "12 Uhr"},
        {"text without", Variant::text("ja"), false, 0, 0, "ja"},
        {"true", Variant::boolesch(true), true, -1, -1, "-1"},
        {"false", Variant::boolesch(false), false, 0, 0, "0"},
        {"byte", Variant::byte(200), true, 200, 200, "200"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.wert.alsBool(), fall.alsBool);
        EXPECT_EQ(fall.wert.alsLong(), fall.alsLong);
        EXPECT_EQ(fall.wert.alsDouble(), fall.alsDouble);
        EXPECT_EQ(fall.wert.alsText(), fall.alsText);
    }
    EXPECT_EQ(Variant::datum(weihnachten()).alsDatum(), weihnachten());
    EXPECT_EQ(Variant::doppelt(41267.84375).alsDatum(), weihnachten());
    EXPECT_EQ(Variant::waehrung(INT64_MIN).alsText(), "-922337203685477.5808");
}

TEST(Conversion, ReportsWhatHasNoValue) {
    for (const Variant& wert : {feld(), Variant::binaer({1, 2})}) {
        EXPECT_EQ(fehlernummerVon([&] { wert.alsLong(); }), fehlernummer::kTyp);
        EXPECT_EQ(fehlernummerVon([&] { wert.alsText(); }), fehlernummer::kTyp);
        EXPECT_EQ(fehlernummerVon([&] { wert.alsDatum(); }), fehlernummer::kTyp);
    }
    EXPECT_EQ(fehlernummerVon([] { Variant::null().alsBool(); }), fehlernummer::kNull);
    EXPECT_EQ(fehlernummerVon([] { Variant::null().alsText(); }), fehlernummer::kNull);
    EXPECT_EQ(fehlernummerVon([] { Variant::lang(32768).alsInteger(); }), fehlernummer::kUeberlauf);
    EXPECT_EQ(fehlernummerVon([] { Variant::doppelt(1e12).alsLong(); }), fehlernummer::kUeberlauf);
    EXPECT_EQ(fehlernummerVon([] { Variant::doppelt(1e12).alsDatum(); }), fehlernummer::kUeberlauf);
    EXPECT_EQ(fehlernummerVon([] { Variant::text("x").alsArray(); }), fehlernummer::kTyp);
    EXPECT_EQ(fehlernummerVon([] { Variant::binaer({1}).alsArray(); }), fehlernummer::kTyp);
}

TEST(Arrays, AreAddressedFromTheirLowerBounds) {
    Array tabelle;
    tabelle.grenzen = {{4, 1}, {2, -1}};
    tabelle.elemente.resize(8);
    for (int i = 0; i < 8; ++i)
        tabelle.elemente[static_cast<std::size_t>(i)] = Variant::lang(i);
    EXPECT_EQ(tabelle.at({1, -1}).alsLong(), 0);
    EXPECT_EQ(tabelle.at({2, -1}).alsLong(), 1) << "the first index runs fastest";
    EXPECT_EQ(tabelle.at({1, 0}).alsLong(), 4);
    EXPECT_EQ(tabelle.at({4, 0}).alsLong(), 7);
    const std::vector<std::vector<std::int32_t>> falsche = {
        {}, {1}, {0, 0}, {5, 0}, {1, 1}, {1, -2}, {1, 0, 0}, {INT32_MIN, INT32_MAX}};
    for (const auto& index : falsche) {
        EXPECT_EQ(fehlernummerVon([&] { tabelle.at(index); }), fehlernummer::kIndex) << index.size();
    }
    tabelle.elemente.resize(7);
    EXPECT_EQ(fehlernummerVon([&] {
                  tabelle.at({4, 0});
              }),
              fehlernummer::kIndex)
        << "fewer elements than bounds";
}

TEST(Equality, ComparesTypeAndContent) {
    EXPECT_EQ(Variant(), Variant());
    EXPECT_FALSE(Variant() == Variant::null());
    EXPECT_FALSE(Variant::integer(1) == Variant::lang(1));
    EXPECT_FALSE(Variant::boolesch(true) == Variant::integer(-1));
    EXPECT_EQ(Variant::datum(weihnachten()), Variant::datumRoh(41267.84375));
    Array a = Array::eindimensional(1, 2), b = a;
    EXPECT_EQ(Variant::array(a), Variant::array(b));
    b.elemente[1] = feld();
    EXPECT_FALSE(Variant::array(a) == Variant::array(b));
    a.elemente[1] = feld();
    EXPECT_EQ(Variant::array(a), Variant::array(b)) << "nested arrays by content";
    b.grenzen[0].untergrenze = 0;
    EXPECT_FALSE(Variant::array(a) == Variant::array(b));
}

}  // namespace
}  // namespace wendel
