#include "tvdb/Einstellungstabelle.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

class EinstellungstabelleTest : public testing::Test {
  protected:
    std::string standard(std::int32_t index) {
        const Einstellungszeile& zeile = *einstellungszeile(index);
        return std::string(zeile.name) + "=" + einstellungAlsText(zeile, standardwert(zeile, kTestordner));
    }

    FakePorts fakes;
    Einstellungen einstellungen{fakes.dateien, kTestordner};
};

TEST_F(EinstellungstabelleTest, NamenUndStandardwerte) {
    const std::pair<std::int32_t, const char*> kErwartet[] = {
        {1, "Datenbank=\\suite\\tvdaten.mdb"},
        {2, "Hyperlinks=\\suite\\Hyperlinks\\"},
        {3, "Autostart=nein"},
        {4, "LiveUpdate=nein"},
        {5, "LiveUpdateModus=2"},
        {6, "Zeitplan=1111111 06:00"},
        {7, "LiveUpdateStunden=24"},
        {8, "LetztesUpdate=30.12.1899 00:00:00"},
        {9, "LiveUpdateVersteckt=ja"},
        {10, "LinkParameter="},
        {11, "Doppelklick=0"},
        {12, "Erinnerung=ja"},
        {13, "Vorlauf=5"},
        {14, "Nachlauf=10"},
        {15, "Skript="},
        {16, "TVOrdner="},
        {17, "Aufzeichnungsordner="},
        {18, "Debuganzeige=nein"},
        {19, "Benutzer="},
        {20, "Termin="},
        {21, "Klang=\\suite\\wendel.wav"},
        {22, "Tagestipp=ja"},
        {23, "Loeschtage=7"},
        {24, "Verpasste=ja"},
        {25, "UpdateNachholen=nein"},
        {26, "Wachhalten=ja"},
        {27, "Wecken=nein"},
        {28, "XmltvQuelle="},
        {29, "XmltvBefehl="},
        {127, "Wiederholungen=10"},
    };
    EXPECT_EQ(einstellungstabelle().size(), std::size(kErwartet));
    for (const auto& [index, text] : kErwartet) {
        ASSERT_NE(einstellungszeile(index), nullptr) << index;
        EXPECT_EQ(standard(index), text);
    }
}

TEST_F(EinstellungstabelleTest, NamenGeltenOhneGrossUndKlein) {
    EXPECT_EQ(einstellungszeile("hyperLINKS")->index, 2);
    EXPECT_EQ(einstellungszeile("Hyperlink"), nullptr);
    EXPECT_EQ(einstellungszeile(30), nullptr);
}

TEST_F(EinstellungstabelleTest, OhneDateiGeltenDieStandardwerte) {
    const Konfiguration k = liesKonfiguration(einstellungen, "\\suite");
    EXPECT_EQ(k.datenbank, "\\suite\\tvdaten.mdb");
    EXPECT_EQ(k.hyperlinksOrdner, "\\suite\\Hyperlinks\\");
    EXPECT_EQ(k.zeitplan, "1111111 06:00");
    EXPECT_EQ(k.klang, "\\suite\\wendel.wav");
    EXPECT_FALSE(k.autostart);
    EXPECT_TRUE(k.erinnerung);
    EXPECT_EQ(k.vorlaufMinuten, 5);
    EXPECT_EQ(k.nachlaufMinuten, 10);
    EXPECT_EQ(k.letztesUpdate, Datum());
    EXPECT_EQ(k.loeschtage, 7);
    EXPECT_EQ(k.wiederholungen, 10);
    EXPECT_TRUE(k.termine.empty());
    EXPECT_TRUE(fakes.dateien.dateien().empty()) << "reading defaults makes no file";
}

// Every row gets a value of its own, so that no member can be read from another's index.
TEST_F(EinstellungstabelleTest, JederWertKommtAusSeinemIndex) {
    const Datum update = DateSerial(2012, 12, 24) + TimeSerial(6, 0, 0);
    for (const Einstellungszeile& zeile : einstellungstabelle()) {
        const auto index = static_cast<std::int16_t>(zeile.index);
        Variant wert;
        switch (zeile.typ) {
            case Varianttyp::String: wert = Variant::text("Text" + std::to_string(index)); break;
            case Varianttyp::Integer: wert = Variant::integer(index); break;
            case Varianttyp::Long: wert = Variant::lang(index); break;
            case Varianttyp::Date: wert = Variant::datum(update); break;
            case Varianttyp::Boolean: wert = Variant::boolesch(zeile.standardzahl == 0); break;
            default: wert = termineAlsVariant(std::vector<GespeicherterTermin>{{update, "Tee", 2, true}});
        }
        einstellungen.setzeEinstellung(zeile.index, wert);
    }
    const Konfiguration k = liesKonfiguration(einstellungen, kTestordner);
    EXPECT_EQ(k.datenbank, "Text1");
    EXPECT_EQ(k.hyperlinksOrdner, "Text2\\");
    EXPECT_TRUE(k.autostart);
    EXPECT_TRUE(k.liveUpdate);
    EXPECT_EQ(k.liveUpdateModus, 5);
    EXPECT_EQ(k.zeitplan, "Text6");
    EXPECT_EQ(k.liveUpdateStunden, 7);
    EXPECT_EQ(k.letztesUpdate, update);
    EXPECT_FALSE(k.liveUpdateVersteckt);
    EXPECT_EQ(k.linkParameter, "Text10");
    EXPECT_EQ(k.doppelklick, 11);
    EXPECT_FALSE(k.erinnerung);
    EXPECT_EQ(k.vorlaufMinuten, 13);
    EXPECT_EQ(k.nachlaufMinuten, 14);
    EXPECT_EQ(k.skript, "Text15");
    EXPECT_EQ(k.tvOrdner, "Text16");
    EXPECT_EQ(k.aufzeichnungsordner, "Text17");
    EXPECT_TRUE(k.debuganzeige);
    EXPECT_EQ(k.benutzer, "Text19");
    EXPECT_EQ(k.termine, (std::vector<GespeicherterTermin>{{update, "Tee", 2, true}}));
    EXPECT_EQ(k.klang, "Text21");
    EXPECT_FALSE(k.tagestipp);
    EXPECT_EQ(k.loeschtage, 23);
    EXPECT_FALSE(k.verpassteZeigen);
    EXPECT_TRUE(k.updateNachholen);
    EXPECT_FALSE(k.wachhalten);
    EXPECT_TRUE(k.wecken);
    EXPECT_EQ(k.xmltvQuelle, "Text28");
    EXPECT_EQ(k.xmltvBefehl, "Text29");
    EXPECT_EQ(k.wiederholungen, 127);
}

TEST_F(EinstellungstabelleTest, NullWiederholungenUndUnbrauchbareLoeschtageGeltenAlsStandard) {
    einstellungen.setzeEinstellung(127, Variant::lang(0));
    einstellungen.setzeEinstellung(23, Variant::integer(0));
    const Konfiguration k = liesKonfiguration(einstellungen, kTestordner);
    EXPECT_EQ(k.wiederholungen, 10);
    EXPECT_EQ(k.loeschtage, 7);
    EXPECT_EQ(liesWiederholungen(einstellungen), 10);
    einstellungen.setzeEinstellung(127, Variant::lang(3));
    EXPECT_EQ(liesWiederholungen(einstellungen), 3);
}

// ---- appointments ----

const std::vector<GespeicherterTermin> kTermine = {
    {DateSerial(2012, 12, 24) + TimeSerial(20, 15, 3), "Tee | Gebäck", 0, true},
    {DateSerial(2013, 1, 1), "", 3, false},
};

TEST_F(EinstellungstabelleTest, TermineStehenSpaltenweise) {
    const Variant wert = termineAlsVariant(kTermine);
    const Array& tabelle = wert.alsArray();
    EXPECT_EQ(tabelle.elementtyp, Varianttyp::Variant);
    EXPECT_EQ(tabelle.grenzen, (std::vector<Feldgrenzen>{{4, 1}, {2, 1}}));
    EXPECT_EQ(tabelle.at({1, 2}), Variant::datumRoh(41275.0));
    EXPECT_EQ(tabelle.at({2, 1}), Variant::text("Tee | Gebäck"));
    EXPECT_EQ(tabelle.at({3, 2}), Variant::integer(3));
    EXPECT_EQ(tabelle.at({4, 1}), Variant::boolesch(true));
    EXPECT_EQ(termineAusVariant(wert), kTermine);
    EXPECT_EQ(termineAlsVariant({}), Variant());
}

TEST_F(EinstellungstabelleTest, TermineAndererHerkunftWerdenNachsichtigGelesen) {
    Array tabelle;
    tabelle.grenzen = {{5, 0}, {4, -1}};
    tabelle.elemente = {
        // moment, text, interval, active, and a row that this program does not know
        Variant::doppelt(41267.5),
        Variant::null(),
        Variant::text("x"),
        Variant::integer(1),
        Variant(),
        Variant(),
        Variant::text("leer"),
        Variant::integer(0),
        Variant::boolesch(true),
        Variant(),
        Variant::doppelt(1e300),
        Variant::text("nie"),
        Variant::integer(0),
        Variant::boolesch(true),
        Variant(),
        Variant::datumRoh(41268),
        Variant::integer(7),
        Variant::lang(2),
        Variant(),
        Variant(),
    };
    EXPECT_EQ(
        termineAusVariant(Variant::array(tabelle)),
        (std::vector<GespeicherterTermin>{{DateSerial(2012, 12, 24) + TimeSerial(12, 0, 0), "", 0, true},
                                          {DateSerial(2012, 12, 25), "7", 2, false}}));
}

TEST_F(EinstellungstabelleTest, WasKeineTabelleIstErgibtKeineTermine) {
    Array dreiZeilen;
    dreiZeilen.grenzen = {{3, 1}, {1, 1}};
    dreiZeilen.elemente.resize(3);
    for (const Variant& wert : {Variant(), Variant::text("Tee"), Variant::array(Array::eindimensional(1, 4)),
                                Variant::array(dreiZeilen)}) {
        EXPECT_TRUE(termineAusVariant(wert).empty()) << wert.typcode();
    }
}

// ---- text forms ----

TEST_F(EinstellungstabelleTest, TexteDerBefehlszeile) {
    struct Fall {
        const char *name, *text;
        std::optional<Variant> erwartet;  // none: refused
    };
    const Fall kFaelle[] = {
        {"Autostart", "JA", Variant::boolesch(true)},
        {"Autostart", "nein", Variant::boolesch(false)},
        {"Autostart", "1", std::nullopt},
        {"Vorlauf", "-5", Variant::integer(-5)},
        {"Vorlauf", "40000", std::nullopt},
        {"Vorlauf", "5 Minuten", std::nullopt},
        {"Vorlauf", "", std::nullopt},
        {"Wiederholungen", "40000", Variant::lang(40000)},
        {"Skript", " a=b ", Variant::text(" a=b ")},
        {"LetztesUpdate", "24.12.2012 12:00:00", Variant::datumRoh(41267.5)},
        {"LetztesUpdate", "24.12.2012", Variant::datumRoh(41267.0)},
        {"LetztesUpdate", "31.02.2012", std::nullopt},
        {"LetztesUpdate", "24.12.2012 25:00", std::nullopt},
        {"LetztesUpdate", "gestern", std::nullopt},
    };
    for (const Fall& fall : kFaelle) {
        SCOPED_TRACE(std::string(fall.name) + "=" + fall.text);
        const Einstellungszeile& zeile = *einstellungszeile(fall.name);
        if (fall.erwartet) {
            EXPECT_EQ(einstellungAusText(zeile, fall.text), *fall.erwartet);
        } else {
            EXPECT_THROW(einstellungAusText(zeile, fall.text), Fehler);
        }
    }
}

TEST_F(EinstellungstabelleTest, UnbrauchbarerTextNenntDieEinstellung) {
    try {
        einstellungAusText(*einstellungszeile("Autostart"), "vielleicht");
        FAIL() << "no error";
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.nummer(), 1);
        EXPECT_EQ(
            fehler.beschreibung(),
            "Der Wert \"vielleicht\" passt nicht zur Einstellung \"Autostart\". Erwartet wird \"ja\" oder "
            "\"nein\".");
    }
}

TEST_F(EinstellungstabelleTest, TermineAlsText) {
    EXPECT_EQ(terminAlsText(kTermine[0]), "24.12.2012 20:15:03|0|ja|Tee | Gebäck");
    for (const GespeicherterTermin& termin : kTermine)
        EXPECT_EQ(terminAusText(terminAlsText(termin)), termin);
    for (const char* text : {"", "24.12.2012 20:15:03|0|ja", "24.12.2012 20:15:03|x|ja|Tee",
                             "24.12.2012 20:15:03|0|an|Tee", "32.12.2012 20:15:03|0|ja|Tee"}) {
        EXPECT_THROW(terminAusText(text), Fehler) << text;
    }
}

}  // namespace
}  // namespace wendel
