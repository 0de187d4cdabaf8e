#include "tvdb/Einstellungstabelle.h"

#include "tvdb/Probe.h"

namespace wendel {
namespace {

const Datum kHeiligabend = DateSerial(2012, 12, 24) + TimeSerial(20, 15, 3);
const std::vector<GespeicherterTermin> kTermine = {
    {kHeiligabend, "Tee | Gebäck", 0, true},
    {DateSerial(2013, 1, 1), "", 3, false},
};

class EinstellungstabelleTest : public testing::Test {
  protected:
    // The settings as the process gets them, in the order of the table.
    std::string konfiguration() {
        const Konfiguration k = liesKonfiguration(einstellungen, "\\suite");
        return verbunden(k.datenbank, k.hyperlinksOrdner, k.autostart, k.liveUpdate, k.liveUpdateModus,
                         k.zeitplan, k.liveUpdateStunden, k.letztesUpdate.sekunden(), k.liveUpdateVersteckt,
                         k.linkParameter, k.doppelklick, k.erinnerung, k.vorlaufMinuten, k.nachlaufMinuten,
                         k.skript, k.tvOrdner, k.aufzeichnungsordner, k.debuganzeige, k.benutzer,
                         k.termine.size(), k.klang, k.tagestipp, k.loeschtage, k.verpassteZeigen,
                         k.updateNachholen, k.wachhalten, k.wecken, k.xmltvQuelle, k.xmltvBefehl,
                         k.wiederholungen);
    }

    FakePorts fakes;
    Einstellungen einstellungen{fakes.dateien, kTestordner};
};

// Every row gets a value of its own: no member can be read from another's index.
TEST_F(EinstellungstabelleTest, JederWertKommtAusSeinemIndexOderIstDerStandard) {
    EXPECT_EQ(konfiguration(),
              "\\suite\\tvdaten.mdb|\\suite\\Hyperlinks\\|0|0|2|1111111 06:00|24|0|1||0|1|5|10||||0||0|"
              "\\suite\\wendel.wav|1|7|1|0|1|0|||10|");
    for (const Einstellungszeile& zeile : einstellungstabelle()) {
        const std::string text = zeile.typ == Varianttyp::Boolean ? (zeile.standardzahl ? "nein" : "ja")
                                 : zeile.typ == Varianttyp::Date  ? "30.12.1899 00:00:08"
                                                                  : std::to_string(zeile.index);
        const bool termine = zeile.typ == Varianttyp::Variant;
        einstellungen.setzeEinstellung(
            zeile.index, termine ? termineAlsVariant(kTermine) : einstellungAusText(zeile, text));
    }
    const std::string kAlle = "1|2\\|1|1|5|6|7|8|0|10|11|0|13|14|15|16|17|1|19|2|21|0|";
    EXPECT_EQ(konfiguration(), kAlle + "23|0|1|0|1|28|29|127|");
    einstellungen.setzeEinstellung(127, Variant::lang(0));
    einstellungen.setzeEinstellung(23, Variant::integer(0));
    EXPECT_EQ(konfiguration(), kAlle + "7|0|1|0|1|28|29|10|") << "values that can't work";
}

// ---- appointments ----

TEST_F(EinstellungstabelleTest, TermineStehenSpaltenweise) {
    const Variant wert = termineAlsVariant(kTermine);
    EXPECT_EQ(wert.alsArray().elementtyp, Varianttyp::Variant);
    EXPECT_EQ(wert.alsArray().grenzen, (std::vector<Feldgrenzen>{{4, 1}, {2, 1}}));
    EXPECT_EQ(wert.alsArray().elemente,
              (std::vector<Variant>{Variant::datum(kHeiligabend), Variant::text("Tee | Gebäck"),
                                    Variant::integer(0), Variant::boolesch(true), Variant::datumRoh(41275.0),
                                    Variant::text(""), Variant::integer(3), Variant::boolesch(false)}));
    EXPECT_EQ(termineAusVariant(wert), kTermine);
    EXPECT_EQ(termineAlsVariant({}), Variant());
}

TEST_F(EinstellungstabelleTest, TermineAndererHerkunftWerdenNachsichtigGelesen) {
    const Variant leer, tee = Variant::text("Tee"), eins = Variant::integer(1), null = Variant::null();
    const Variant mittag = Variant::doppelt(41267.5), tag = Variant::datumRoh(41268),
                  nie = Variant::doppelt(1e300), zwei = Variant::lang(2);
    Array tabelle;
    tabelle.grenzen = {{5, 0}, {3, -1}};
    // moment, text, interval, active, and a row that this program does not know
    tabelle.elemente = {mittag, null, tee, eins, leer, nie,  tee, eins,
                        eins,   leer, tag, eins, zwei, leer, leer};
    EXPECT_EQ(
        termineAusVariant(Variant::array(tabelle)),
        (std::vector<GespeicherterTermin>{{DateSerial(2012, 12, 24) + TimeSerial(12, 0, 0), "", 0, true},
                                          {DateSerial(2012, 12, 25), "1", 2, false}}));
    tabelle.grenzen = {{3, 1}, {1, 1}};
    tabelle.elemente.resize(3);
    for (const Variant& wert :
         {leer, tee, Variant::array(Array::eindimensional(1, 4)), Variant::array(tabelle)})
        EXPECT_TRUE(termineAusVariant(wert).empty()) << wert.typcode();
}

}  // namespace
}  // namespace wendel
