#include "tvdb/ModulGrundbefehle.h"

#include <gtest/gtest.h>

#include <optional>

#include "platform/Fehler.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using namespace ModulGrundbefehle;

Datum moment(int jahr, int monat, int tag, int stunde = 0, int minute = 0, int sekunde = 0) {
    return DateSerial(jahr, monat, tag) + TimeSerial(stunde, minute, sekunde);
}

TEST(SqlLiterale, StehenInDerFormDerDatenbank) {
    EXPECT_EQ(SqlText(""), "''");
    EXPECT_EQ(SqlText("Rock'n'Roll"), "'Rock''n''Roll'");
    EXPECT_EQ(SqlText("''"), "''''''");
    EXPECT_EQ(SqlText("Käpt'n"), "'Käpt''n'");
    EXPECT_EQ(SqlDatum(moment(2012, 5, 4, 20, 15)), "#5/4/2012#");
    EXPECT_EQ(SqlDatum(Datum()), "#12/30/1899#");
    EXPECT_EQ(SqlDatumZeit(moment(2012, 5, 4, 20, 15)), "#5/4/2012 20:15:00#");
    EXPECT_EQ(SqlDatumZeit(moment(2013, 1, 1, 0, 5, 9)), "#1/1/2013 0:05:09#");
    EXPECT_EQ(SqlBool(true), "-1");
    EXPECT_EQ(SqlBool(false), "0");
}

TEST(NullErsatz, ErsetztNurNull) {
    const Variant ersatz = Variant::integer(7);
    EXPECT_EQ(NullErsatz(Variant::null(), ersatz), ersatz);
    EXPECT_EQ(NullErsatz(Variant(), ersatz), Variant());
    EXPECT_EQ(NullErsatz(Variant::text(""), ersatz), Variant::text(""));
}

TEST(Pfade, EndenUndDateinamen) {
    EXPECT_EQ(PfadMitBackslash("C:\\"), "C:\\");
    EXPECT_EQ(PfadMitBackslash("C:\\TV"), "C:\\TV\\");
    EXPECT_EQ(PfadMitBackslash("C:/TV/"), "C:/TV/\\");
    EXPECT_EQ(PfadMitBackslash(""), "\\");
    EXPECT_EQ(DateinameAusPfad("C:/a\\b.txt"), "b.txt");
    EXPECT_EQ(DateinameAusPfad("C:\\a/b.txt"), "b.txt");
    EXPECT_EQ(DateinameAusPfad("b.txt"), "b.txt");
    EXPECT_EQ(DateinameAusPfad("C:\\a\\"), "");
}

TEST(Pfade, ExistenzVonDateienUndOrdnern) {
    FakePorts fakes;
    fakes.dateien.lege("\\tv\\a.mdb", "x");
    EXPECT_TRUE(DateiExistiert(fakes.dateien, "\\tv\\a.mdb"));
    EXPECT_FALSE(DateiExistiert(fakes.dateien, "\\tv\\*.mdb"));
    EXPECT_FALSE(DateiExistiert(fakes.dateien, "\\tv"));
    EXPECT_FALSE(DateiExistiert(fakes.dateien, ""));

    EXPECT_TRUE(OrdnerExistiert(fakes.dateien, kTestordner, "\\tv"));
    EXPECT_EQ(fakes.dateien.aktuellerOrdner(), kTestordner) << "the programme folder stays current";
    ASSERT_TRUE(fakes.dateien.ordnerWechseln("\\tv"));
    EXPECT_FALSE(OrdnerExistiert(fakes.dateien, kTestordner, "\\fehlt"));
    EXPECT_EQ(fakes.dateien.aktuellerOrdner(), kTestordner);
    EXPECT_FALSE(OrdnerExistiert(fakes.dateien, kTestordner, ""));
}

TEST(DatumKompakt, IstVierzehnstellig) {
    EXPECT_EQ(DatumKompakt(moment(2012, 12, 24, 9, 5, 3)), "20121224090503");
}

struct Datumsfall {
    const char* name;
    const char* text;
    std::optional<Datum> erwartet;  // none: the format is unknown
};

class DatumAusTextTest : public testing::TestWithParam<Datumsfall> {};

TEST_P(DatumAusTextTest, Liest) {
    const Datumsfall& fall = GetParam();
    EXPECT_EQ(IstDatumsausdruck(fall.text), fall.erwartet.has_value());
    if (fall.erwartet) {
        EXPECT_EQ(DatumKompakt(DatumAusText(fall.text)), DatumKompakt(*fall.erwartet));
        return;
    }
    try {
        DatumAusText(fall.text);
        ADD_FAILURE() << "no error";
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.nummer(), 1);
        EXPECT_EQ(fehler.beschreibung(), std::string("Der Datumsausdruck \"") + fall.text +
                                             "\" wurde gefunden. Das Format kann nicht erkannt werden.");
    }
}

const Datum kHeiligabend = moment(2012, 12, 24);

INSTANTIATE_TEST_SUITE_P(
    Formen, DatumAusTextTest,
    testing::Values(
        // fixed positions
        Datumsfall{"Kompakt", "20121224201500", moment(2012, 12, 24, 20, 15)},
        Datumsfall{"KompaktMitUeberlauf", "20121324206000", moment(2013, 1, 24, 21, 0)},
        Datumsfall{"KompaktOhneZiffern", "übermorgenfrüh", moment(1999, 11, 30)},
        Datumsfall{"KompaktGehtVor", "24 Januar 2012", moment(2023, 11, 30, 0, 20, 12)},
        Datumsfall{"DreizehnZeichen", "2012122420150", std::nullopt},
        Datumsfall{"Deutsch", "24.12.2012", kHeiligabend},
        Datumsfall{"DeutschMitUeberlauf", "31.02.2013", moment(2013, 3, 3)},
        Datumsfall{"DeutschOhneNullen", "1.2.2013", moment(2012, 12, 1)},
        Datumsfall{"DeutschZweistelligesJahr", "24.12.12", moment(2012, 12, 24)},
        Datumsfall{"DeutschMitZeit", "24.12.2012 20:15:30", moment(2012, 12, 24, 20, 15, 30)},
        Datumsfall{"DeutschOhneSekunde", "24.12.2012 20:15", moment(2012, 12, 24, 20, 15)},
        Datumsfall{"DeutschOhneLeerzeichen", "24.12.2012-20:15", kHeiligabend},
        Datumsfall{"EndeDesKalenders", "31.12.9999", moment(9999, 12, 31)},
        Datumsfall{"HinterDemEnde", "32.12.9999", std::nullopt},
        Datumsfall{"HinterDemEndeDurchUhrzeit", "31.12.9999 25:00", std::nullopt},
        // general conversion
        Datumsfall{"Uhrzeit", "20:15", Datum() + TimeSerial(20, 15, 0)},
        Datumsfall{"KurzeUhrzeit", "8:5", Datum() + TimeSerial(8, 5, 0)},
        Datumsfall{"UhrzeitMitSekunde", " 20:15:30 ", Datum() + TimeSerial(20, 15, 30)},
        Datumsfall{"VierundzwanzigUhr", "24:00", std::nullopt},
        Datumsfall{"SechzigMinuten", "12:60", std::nullopt}, Datumsfall{"Leer", "", std::nullopt},
        Datumsfall{"Wort", "morgen", std::nullopt}, Datumsfall{"ReineZahl", "41267", std::nullopt},
        Datumsfall{"Schraegstriche", "24/12/2012", kHeiligabend},
        Datumsfall{"TagVorMonat", "5/4/2012", moment(2012, 4, 5)},
        Datumsfall{"MonatVorTagWennNoetig", "12/24/2012", kHeiligabend},
        Datumsfall{"KeinTagInBeidenFolgen", "31/31/2012", std::nullopt},
        Datumsfall{"Iso", "2012-12-24", kHeiligabend}, Datumsfall{"Striche", "24-12-2012", kHeiligabend},
        Datumsfall{"IsoMitZeit", "2012-12-24 20:15", moment(2012, 12, 24, 20, 15)},
        Datumsfall{"JahrZuerstMitSchraegstrich", "2012/12/24", kHeiligabend},
        Datumsfall{"KeinSchaltjahr", "2013-02-29", std::nullopt},
        Datumsfall{"Monatsname", "24 Dezember 2012", kHeiligabend},
        Datumsfall{"KurzerMonatsname", "24 dez 2012", kHeiligabend},
        Datumsfall{"Umlautmonat", "1 MÄRZ 2013", moment(2013, 3, 1)},
        Datumsfall{"Minuszahl", "-1/2/2012", std::nullopt},
        Datumsfall{"ZuVieleTeile", "1/2/2012/3", std::nullopt}),
    [](const auto& fall) { return fall.param.name; });

}  // namespace
}  // namespace wendel
