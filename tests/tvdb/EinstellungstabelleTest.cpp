#include "tvdb/Einstellungstabelle.h"

#include "platform/Text.h"
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

TEST_F(EinstellungstabelleTest, NamenIndizesUndStandardwerte) {
    std::string zeilen;
    for (const Einstellungszeile& zeile : einstellungstabelle()) {
        EXPECT_EQ(einstellungszeile(zeile.index), &zeile);
        EXPECT_EQ(einstellungszeile(UCase(zeile.name)), &zeile);
        zeilen += std::to_string(zeile.index) + " " + std::string(zeile.name) + "=" +
                  einstellungAlsText(zeile, standardwert(zeile, kTestordner)) + "\n";
    }
    EXPECT_EQ(zeilen,
              "1 Datenbank=\\suite\\tvdaten.mdb\n2 Hyperlinks=\\suite\\Hyperlinks\\\n3 Autostart=nein\n"
              "4 LiveUpdate=nein\n5 LiveUpdateModus=2\n6 Zeitplan=1111111 06:00\n7 LiveUpdateStunden=24\n"
              "8 LetztesUpdate=30.12.1899 00:00:00\n9 LiveUpdateVersteckt=ja\n10 LinkParameter=\n"
              "11 Doppelklick=0\n12 Erinnerung=ja\n13 Vorlauf=5\n14 Nachlauf=10\n15 Skript=\n16 TVOrdner=\n"
              "17 Aufzeichnungsordner=\n18 Debuganzeige=nein\n19 Benutzer=\n20 Termin=\n"
              "21 Klang=\\suite\\wendel.wav\n22 Tagestipp=ja\n23 Loeschtage=7\n24 Verpasste=ja\n"
              "25 UpdateNachholen=nein\n26 Wachhalten=ja\n27 Wecken=nein\n28 XmltvQuelle=\n29 XmltvBefehl=\n"
              "127 Wiederholungen=10\n");
    EXPECT_EQ(einstellungszeile("Hyperlink"), nullptr);
    EXPECT_EQ(einstellungszeile(30), nullptr);
}

// Every row gets a value of its own: no member can be read from another's index.
TEST_F(EinstellungstabelleTest, JederWertKommtAusSeinemIndexOderIstDerStandard) {
    EXPECT_EQ(konfiguration(),
              "\\suite\\tvdaten.mdb|\\suite\\Hyperlinks\\|0|0|2|1111111 06:00|24|0|1||0|1|5|10||||0||0|"
              "\\suite\\wendel.wav|1|7|1|0|1|0|||10|");
    EXPECT_TRUE(fakes.dateien.dateien().empty()) << "reading defaults makes no file";
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
    const Variant leer, tee = Variant::text("Tee"), null = Variant::null(), eins = Variant::integer(1);
    Array tabelle;
    tabelle.grenzen = {{5, 0}, {4, -1}};
    // moment, text, interval, active, and a row that this program does not know
    // clang-format off
    tabelle.elemente = {Variant::doppelt(41267.5), null, tee, eins, leer, leer, tee, eins, eins, leer,
        Variant::doppelt(1e300), tee, eins, eins, leer, Variant::datumRoh(41268), eins, Variant::lang(2), leer, leer};
    // clang-format on
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

// ---- text forms ----

TEST_F(EinstellungstabelleTest, TexteDerBefehlszeileWerdenGenauGelesen) {
    // clang-format off
    const std::pair<const char*, const char*> kFaelle[] = {
        {"Autostart=JA", "ja"}, {"Autostart=1", "-"}, {"Vorlauf=-5", "-5"}, {"Vorlauf=40000", "-"}, {"Vorlauf=", "-"},
        {"Vorlauf=5 min", "-"}, {"Wiederholungen=40000", "40000"}, {"Skript= a=b ", " a=b "},
        {"LetztesUpdate=24.12.2012", "24.12.2012 00:00:00"}, {"LetztesUpdate=31.02.2012", "-"},
        {"LetztesUpdate=24.12.2012 20:15:03", "24.12.2012 20:15:03"}, {"LetztesUpdate=24.12.2012 25:00", "-"},
        {"LetztesUpdate=gestern", "-"}, {"Termin=24.12.2012 20:15:03|0|ja|a|b", "24.12.2012 20:15:03|0|ja|a|b"},
        {"Termin=24.12.2012 20:15:03|0|ja", "-"}, {"Termin=24.12.2012 20:15:03|x|ja|a", "-"},
        {"Termin=24.12.2012 20:15:03|0|an|a", "-"}, {"Termin=32.12.2012 20:15:03|0|ja|a", "-"}};
    // clang-format on
    for (const auto& [eingabe, erwartet] : kFaelle) {
        const std::vector<std::string> teile = Split(eingabe, "=", 2);
        const Einstellungszeile& zeile = *einstellungszeile(teile[0]);
        std::string gelesen = "-";
        const Gemeldet fehler = fehlerVon([&] {
            gelesen = teile[0] == "Termin" ? terminAlsText(terminAusText(teile[1]))
                                           : einstellungAlsText(zeile, einstellungAusText(zeile, teile[1]));
        });
        EXPECT_EQ(gelesen, erwartet) << eingabe;
        EXPECT_EQ(fehler.nummer, gelesen == "-" ? 1 : 0);
    }
    EXPECT_EQ(
        fehlerVon([] { einstellungAusText(*einstellungszeile("Autostart"), "bald"); }).beschreibung,
        "Der Wert \"bald\" passt nicht zur Einstellung \"Autostart\". Erwartet wird \"ja\" oder \"nein\".");
}

}  // namespace
}  // namespace wendel
