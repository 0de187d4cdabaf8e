#include "tvdb/Variantdatei.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>

#include "platform/Fehler.h"

namespace wendel {
namespace {

std::string hex(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size();) {
        if (text[i] == ' ') {
            ++i;
            continue;
        }
        bytes += static_cast<char>(std::stoi(std::string(text.substr(i, 2)), nullptr, 16));
        i += 2;
    }
    return bytes;
}

int fehlernummerVon(const std::string& bytes) {
    try {
        Variantdatei::gelesen(bytes);
        return 0;
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.quelle(), "GetEinstellungsarray");
        return fehler.nummer();
    }
}

// Written out by hand from the format: one element of each type, lower bound 1.
const std::string kAlleTypen =
    hex("0c20 0100 0d000000 01000000"
        " 0000"                                   // empty
        " 0100"                                   // null
        " 0200 feff"                              // -2
        " 0300 40420f00"                          // 1000000
        " 0400 0000c03f"                          // 1.5
        " 0500 000000000000e0bf"                  // -0.5
        " 0600 40e2010000000000"                  // 12.3456
        " 0700 000000007b26e440"                  // 24.12.2012 20:15
        " 0800 0500 4de4727a80"                   // "März€"
        " 0b00 ffff"                              // true
        " 1100 fe"                                // 254
        " 0220 0100 02000000 00000000 0100 0200"  // array of 16-bit integers without element types
        // a table of 4 rows by 1 column, indices from 1
        " 0c20 0200 04000000 01000000 01000000 01000000"
        " 0700 000000007b26e440  0800 0300 546565  0200 0300  0b00 ffff");

TEST(Variantdatei, LiestJedenTyp) {
    const Variant wert = Variantdatei::gelesen(kAlleTypen);
    const Array& array = wert.alsArray();
    EXPECT_EQ(array.grenzen, (std::vector<Feldgrenzen>{{13, 1}}));
    EXPECT_EQ(array.at({1}), Variant());
    EXPECT_EQ(array.at({2}), Variant::null());
    EXPECT_EQ(array.at({3}), Variant::integer(-2));
    EXPECT_EQ(array.at({4}), Variant::lang(1000000));
    EXPECT_EQ(array.at({5}), Variant::einfach(1.5F));
    EXPECT_EQ(array.at({6}), Variant::doppelt(-0.5));
    EXPECT_EQ(array.at({7}), Variant::waehrung(123456));
    EXPECT_EQ(array.at({8}), Variant::datumRoh(41267.84375));
    EXPECT_EQ(array.at({9}), Variant::text("März€"));
    EXPECT_EQ(array.at({10}), Variant::boolesch(true));
    EXPECT_EQ(array.at({11}), Variant::byte(254));

    const Array& zahlen = array.at({12}).alsArray();
    EXPECT_EQ(zahlen.elementtyp, Varianttyp::Integer);
    EXPECT_EQ(zahlen.elemente, (std::vector<Variant>{Variant::integer(1), Variant::integer(2)}));

    const Array& tabelle = array.at({13}).alsArray();
    EXPECT_EQ(tabelle.grenzen, (std::vector<Feldgrenzen>{{4, 1}, {1, 1}}));
    EXPECT_EQ(tabelle.at({2, 1}), Variant::text("Tee"));
    EXPECT_EQ(tabelle.at({3, 1}), Variant::integer(3));
}

TEST(Variantdatei, SchreibtDieselbenBytes) {
    EXPECT_EQ(Variantdatei::geschrieben(Variantdatei::gelesen(kAlleTypen)), kAlleTypen);
}

TEST(Variantdatei, ErsterIndexLaeuftAmSchnellsten) {
    Array tabelle;
    tabelle.elementtyp = Varianttyp::Byte;
    tabelle.grenzen = {{2, 1}, {3, 1}};
    tabelle.elemente.assign(6, Variant::byte(0));
    tabelle.at({2, 1}) = Variant::byte(0x21);
    tabelle.at({1, 3}) = Variant::byte(0x13);
    EXPECT_EQ(Variantdatei::geschrieben(Variant::array(tabelle)),
              hex("1120 0200 02000000 01000000 03000000 01000000 00 21 00 00 13 00"));
}

TEST(Variantdatei, AlteResteDahinterZaehlenNicht) {
    EXPECT_EQ(Variantdatei::gelesen(kAlleTypen + "Rest"), Variantdatei::gelesen(kAlleTypen));
}

struct Schaden {
    const char* name;
    std::string bytes;
};

class VariantdateiSchaden : public testing::TestWithParam<Schaden> {};

TEST_P(VariantdateiSchaden, IstEinTypfehler) { EXPECT_EQ(fehlernummerVon(GetParam().bytes), 13); }

std::string verschachtelt(int tiefe) {
    std::string bytes;
    for (int i = 0; i < tiefe; ++i)
        bytes += hex("0c20 0100 01000000 00000000");
    return bytes + hex("0000");
}

INSTANTIATE_TEST_SUITE_P(
    Formen, VariantdateiSchaden,
    testing::Values(Schaden{"EinByte", hex("0c")}, Schaden{"UnbekannterTyp", hex("0900 00000000")},
                    Schaden{"VariantOhneFeld", hex("0c00 0000")},
                    Schaden{"UnbekannterElementtyp", hex("0920 0100 00000000 00000000")},
                    Schaden{"LeereElementeOhneGroesse", hex("0020 0100 ffffff7f 00000000")},
                    Schaden{"RiesigeAnzahl", hex("0c20 0100 ffffff7f 00000000 0000")},
                    Schaden{"NegativeAnzahl", hex("0c20 0100 ffffffff 00000000 0000")},
                    Schaden{"ObergrenzeLaeuftUeber", hex("1120 0100 02000000 ffffff7f 0000")},
                    Schaden{"ProduktLaeuftUeber",
                            hex("0c20 0400 00000100 00000000 00000100 00000000 00000100 00000000 00000100 "
                                "00000000")},
                    Schaden{"ZuVieleDimensionen", hex("0c20 ffff 01000000 00000000")},
                    Schaden{"TextAbgeschnitten", hex("0800 0500 4142")},
                    Schaden{"ZuTief", verschachtelt(Variantdatei::kHoechsteTiefe + 1)}),
    [](const auto& fall) { return fall.param.name; });

TEST(Variantdatei, ErlaubteTiefeWirdGelesen) {
    EXPECT_EQ(fehlernummerVon(verschachtelt(Variantdatei::kHoechsteTiefe)), 0);
}

TEST(Variantdatei, JederAbschnittIstEinTypfehler) {
    for (std::size_t laenge = 0; laenge < kAlleTypen.size(); ++laenge) {
        SCOPED_TRACE(laenge);
        EXPECT_EQ(fehlernummerVon(kAlleTypen.substr(0, laenge)), 13);
    }
}

TEST(Variantdatei, GekippteBytesGebenWertOderTypfehler) {
    constexpr unsigned kSamen = 20121224;
    SCOPED_TRACE(kSamen);
    std::mt19937 zufall(kSamen);
    for (int runde = 0; runde < 20000; ++runde) {
        std::string bytes = kAlleTypen;
        for (unsigned n = 1 + zufall() % 4; n > 0; --n) {
            bytes[zufall() % bytes.size()] = static_cast<char>(zufall() % 256);
        }
        const int nummer = fehlernummerVon(bytes);
        ASSERT_TRUE(nummer == 0 || nummer == 13) << nummer;
        if (nummer != 0) continue;
        const std::string neu = Variantdatei::geschrieben(Variantdatei::gelesen(bytes));
        ASSERT_EQ(Variantdatei::geschrieben(Variantdatei::gelesen(neu)), neu);
    }
}

TEST(Variantdatei, WasKeineFormHatWirdNichtGeschrieben) {
    Array fremdesElement = Array::eindimensional(0, 1);
    fremdesElement.elementtyp = Varianttyp::Integer;
    Array zuKurz = Array::eindimensional(0, 2);
    zuKurz.elemente.pop_back();
    const std::string grenzfall(65535, 'x');
    EXPECT_EQ(Variantdatei::geschrieben(Variant::text(grenzfall)), hex("0800 ffff") + grenzfall);
    for (const Variant& wert : {Variant::text(grenzfall + "x"), Variant::binaer({1, 2}),
                                Variant::array(fremdesElement), Variant::array(zuKurz)}) {
        SCOPED_TRACE(wert.typcode());
        try {
            Variantdatei::geschrieben(wert);
            ADD_FAILURE() << "no error";
        } catch (const Fehler& fehler) {
            EXPECT_EQ(fehler.nummer(), 1);
            EXPECT_EQ(fehler.quelle(), "SetEinstellungsarray");
        }
    }
}

TEST(Variantdatei, ZeichenAusserhalbDerCodepageWerdenFragezeichen) {
    EXPECT_EQ(Variantdatei::geschrieben(Variant::text("a\xE2\x98\x83")), hex("0800 0200 613f"));
}

}  // namespace
}  // namespace wendel
