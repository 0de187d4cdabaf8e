#include "tvdb/Variantdatei.h"

#include "tvdb/Probe.h"

namespace wendel {
namespace {

std::string hex(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == ' ') continue;
        bytes += static_cast<char>(std::stoi(std::string(text.substr(i++, 2)), nullptr, 16));
    }
    return bytes;
}

int lesefehler(const std::string& bytes) {
    const Gemeldet fehler = fehlerVon([&] { Variantdatei::gelesen(bytes); });
    EXPECT_EQ(fehler.quelle, fehler.nummer == 0 ? "" : "GetEinstellungsarray");
    return fehler.nummer;
}

// Written out by hand from the format: one element of each type, lower bound 1.
const std::string kAlleTypen =
    hex("0c20 0100 0d000000 01000000 0000 0100"   // empty, null
        " 0200 feff 0300 40420f00"                // -2, 1000000
        " 0400 0000c03f 0500 000000000000e0bf"    // 1.5, -0.5
        " 0600 40e2010000000000"                  // 12.3456
        " 0700 000000007b26e440"                  // 24.12.2012 20:15
        " 0800 0500 4de4727a80 0b00 ffff"         // "März€", true
        " 1100 fe"                                // 254
        " 0220 0100 02000000 00000000 0100 0200"  // array of 16-bit integers without element types
        // a table of 4 rows by 1 column, indices from 1
        " 0c20 0200 04000000 01000000 01000000 01000000"
        " 0700 000000007b26e440  0800 0300 546565  0200 0300  0b00 ffff");

TEST(Variantdatei, LiestUndSchreibtJedenTyp) {
    const Variant wert = Variantdatei::gelesen(kAlleTypen + "Rest");
    Array zahlen = Array::eindimensional(0, 2), tabelle, alle = Array::eindimensional(1, 13);
    zahlen.elementtyp = Varianttyp::Integer;
    zahlen.elemente = {Variant::integer(1), Variant::integer(2)};
    tabelle.grenzen = {{4, 1}, {1, 1}};
    tabelle.elemente = {Variant::datumRoh(41267.84375), Variant::text("Tee"), Variant::integer(3),
                        Variant::boolesch(true)};
    // clang-format off
    alle.elemente = {Variant(), Variant::null(), Variant::integer(-2), Variant::lang(1000000), Variant::einfach(1.5F),
        Variant::doppelt(-0.5), Variant::waehrung(123456), Variant::datumRoh(41267.84375), Variant::text("März€"),
        Variant::boolesch(true), Variant::byte(254), Variant::array(zahlen), Variant::array(tabelle)};
    // clang-format on
    EXPECT_EQ(wert, Variant::array(alle));
    EXPECT_EQ(Variantdatei::geschrieben(wert), kAlleTypen);
    EXPECT_EQ(Variantdatei::geschrieben(Variant::text("a\xE2\x98\x83")), hex("0800 0200 613f"));
}

TEST(Variantdatei, SchadenIstEinTypfehler) {
    const auto verschachtelt = [](int tiefe) {
        std::string bytes;
        while (tiefe-- > 0)
            bytes += hex("0c20 0100 01000000 00000000");
        return bytes + hex("0000");
    };
    // No such type; elements of no type, of no size; too many, negative; bounds, dimensions; the product.
    const char* const faelle[] = {
        "0900 00000000",
        "0920 0100 00000000 00000000",
        "0020 0100 ffffff7f 00000000",
        "0c20 0100 ffffff7f 00000000 0000",
        "0c20 0100 ffffffff 00000000 0000",
        "1120 0100 02000000 ffffff7f 0000",
        "0c20 ffff 01000000 00000000",
        "0c20 0400 00000100 00000000 00000100 00000000 00000100 00000000 00000100 00000000"};
    for (const char* bytes : faelle)
        EXPECT_EQ(lesefehler(hex(bytes)), 13) << bytes;
    EXPECT_EQ(lesefehler(verschachtelt(Variantdatei::kHoechsteTiefe + 1)), 13);
    for (std::size_t laenge = 0; laenge < kAlleTypen.size(); ++laenge)
        EXPECT_EQ(lesefehler(kAlleTypen.substr(0, laenge)), 13) << laenge;
    EXPECT_EQ(lesefehler(verschachtelt(Variantdatei::kHoechsteTiefe)), 0);
}

TEST(Variantdatei, WasKeineFormHatWirdNichtGeschrieben) {
    Array fremdesElement = Array::eindimensional(0, 1), zuKurz = Array::eindimensional(0, 2);
    fremdesElement.elementtyp = Varianttyp::Integer;
    zuKurz.elemente.pop_back();
    const std::string grenzfall(65535, 'x');
    EXPECT_EQ(Variantdatei::geschrieben(Variant::text(grenzfall)), hex("0800 ffff") + grenzfall);
    for (const Variant& wert : {Variant::text(grenzfall + "x"), Variant::binaer({1, 2}),
                                Variant::array(fremdesElement), Variant::array(zuKurz)}) {
        const Gemeldet fehler = fehlerVon([&] { Variantdatei::geschrieben(wert); });
        EXPECT_EQ(fehler.nummer, 1) << wert.typcode();
        EXPECT_EQ(fehler.quelle, "SetEinstellungsarray");
    }
}

}  // namespace
}  // namespace wendel
