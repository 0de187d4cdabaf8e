#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "support/Fakes.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/cSendung.h"

namespace wendel {
namespace {

constexpr const char* kFelder1 =
    "SenderKennung,Beginn,Ende,Titel,SendungID,InhaltID,Aktualisierung,Showview,ShowviewVPS,VPS,"
    "Kategorietext,"
    "KurzBeschreibung,Bewertung,Bilddateiname,Dauer,Genre,Herstellungsjahr,Herstellungsland,Originaltitel,"
    "Regie,"
    "Bewertungen,Kurzkritik,FSK,Keywords,KzFilm,Kz16zu9,KzDolby,KzDolbyDigital,KzDolbySurround,KzLive,"
    "KzStereo,"
    "KzSchwarzweis,KzTelefon,KzUncoded,KzUntertitel,KzZweikanalton,KzAudiodescription,"
    "KzBilddateiHeruntergeladen,KzInFavoritenliste,KzImArchiv,KzWiederholung,KzHDTV";
constexpr const char* kAnweisung1 = "Select * from Sendungen where Pos=4711;";
constexpr const char* kAnweisung2 = "Select * from SendungenDetails where Pos=4711;";

class SendungTest : public testing::Test {
  protected:
    SendungTest() { werte.datenbankdatei = "\\suite\\tvdaten.mdb"; }

    // All columns, Null unless named. The order differs from the table's: columns count by name.
    static FakeTabelle tabelle(const std::vector<std::map<std::string, Variant>>& zeilen) {
        FakeTabelle t;
        t.spalten = Split(kFelder1, ",");
        t.spalten.push_back("Pos");
        for (const auto& werteDerZeile : zeilen) {
            std::vector<Variant> zeile(t.spalten.size(), Variant::null());
            for (std::size_t i = 0; i < t.spalten.size(); ++i) {
                if (const auto wert = werteDerZeile.find(t.spalten[i]); wert != werteDerZeile.end()) {
                    zeile[i] = wert->second;
                }
            }
            t.zeilen.push_back(zeile);
        }
        return t;
    }

    static FakeTabelle details() {
        return {{"Pos", "Darsteller", "Beschreibung", "HTMLSeite"},
                {{Variant::lang(4711), Variant::text("D"), Variant::text("B"), Variant::null()}}};
    }

    void antworte(const char* sql, FakeTabelle t) {
        fakes.datenbanken->antworten.insert_or_assign(sql, std::move(t));
    }

    std::unique_ptr<Recordset> oeffne(FakeTabelle t) {
        antworte("x", std::move(t));
        db = zugriff.OpenDatenbank("\\suite\\tvdaten.mdb");
        return zugriff.SafeOpenRs(db, "x");
    }

    std::size_t detailabfragen() const {
        std::size_t anzahl = 0;
        for (const std::string& sql : fakesKonst().anweisungen())
            anzahl += sql == kAnweisung2;
        return anzahl;
    }
    const FakeDatenbankzustand& fakesKonst() const { return *zustand; }

    FakePorts fakes;
    FakeDatenbankzustand* zustand = &*fakes.datenbanken;
    Prozesswerte werte;
    Einstellungen einstellungen{fakes.dateien, kTestordner};
    ModulDatenbankzugriff zugriff{fakes.ports(), einstellungen, werte};
    std::unique_ptr<Datenbank> db;
    cSendung sendung{zugriff};
};

TEST_F(SendungTest, SpaltentexteSindDieDesTabellenaufbaus) {
    EXPECT_EQ(cSendung::GetFelderNamenSendungen(), kFelder1);
    EXPECT_EQ(cSendung::GetFelderNamenSendungenDetails(), "Beschreibung,Darsteller,HTMLSeite");
}

TEST_F(SendungTest, LiestNachSchluesselUndSchliesstAlles) {
    antworte(kAnweisung1, tabelle({{{"Pos", Variant::lang(4711)},
                                    {"SenderKennung", Variant::text("ARD")},
                                    {"Beginn", Variant::datumRoh(41267.993055555555)},
                                    {"Titel", Variant::text("Tatort")},
                                    {"KurzBeschreibung", Variant::text("kurz")},
                                    {"Dauer", Variant::text("90")},
                                    {"FSK", Variant::integer(12)},
                                    {"KzHDTV", Variant::boolesch(true)},
                                    {"KzFilm", Variant::integer(-1)}}}));
    sendung.FillAusDatenbank1(4711);
    EXPECT_EQ(sendung.Pos, 4711);
    EXPECT_EQ(sendung.SenderKennung, "ARD");
    EXPECT_EQ(sendung.Titel, "Tatort");
    EXPECT_EQ(sendung.Kurzbeschreibung, "kurz");
    EXPECT_EQ(sendung.Dauer, "90");
    EXPECT_EQ(sendung.FSK, 12);
    EXPECT_TRUE(sendung.KzHDTV);
    EXPECT_TRUE(sendung.KzFilm);
    EXPECT_FALSE(sendung.KzLive);
    EXPECT_EQ(sendung.Datum(), DateSerial(2012, 12, 24));
    EXPECT_EQ(sendung.Uhrzeit(), TimeSerial(23, 50, 0));
    EXPECT_EQ(zustand->vorgaenge,
              (std::vector<FakeVorgang>{{"openDatabase", "\\suite\\tvdaten.mdb", {}, {}},
                                        {"openRecordset", kAnweisung1, 4, 256},
                                        {"closeRecordset", "", {}, {}},
                                        {"closeDatabase", "\\suite\\tvdaten.mdb", {}, {}}}));
}

// Each column gets its own number as value: a member that reads its neighbour is found.
TEST_F(SendungTest, JedesFeldKommtAusSeinerSpalte) {
    std::map<std::string, Variant> werteDerZeile{{"Pos", Variant::lang(100)}};
    const std::vector<std::string> spalten = Split(kFelder1, ",");
    for (std::size_t i = 0; i < 24; ++i) {
        werteDerZeile[spalten[i]] = Variant::lang(static_cast<std::int32_t>(i) + 1);
    }
    werteDerZeile["Beginn"] = Variant::datumRoh(2);
    werteDerZeile["Ende"] = Variant::datumRoh(3);
    const auto rs = oeffne(tabelle({werteDerZeile}));
    sendung.LeseVonDatensatz1(*rs);
    const std::vector<std::string> texte = {sendung.SenderKennung,
                                            sendung.Titel,
                                            sendung.SendungID,
                                            sendung.InhaltID,
                                            sendung.Showview,
                                            sendung.ShowviewVPS,
                                            sendung.VPS,
                                            sendung.Kategorietext,
                                            sendung.Kurzbeschreibung,
                                            sendung.Bilddateiname,
                                            sendung.Dauer,
                                            sendung.Genre,
                                            sendung.Herstellungsjahr,
                                            sendung.Herstellungsland,
                                            sendung.Originaltitel,
                                            sendung.Regie,
                                            sendung.Bewertungen,
                                            sendung.Kurzkritik,
                                            sendung.Keywords};
    EXPECT_EQ(texte, Split("1,4,5,6,8,9,10,11,12,14,15,16,17,18,19,20,21,22,24", ","));
    EXPECT_EQ(sendung.Pos, 100);
    EXPECT_EQ(sendung.Beginn, DateSerial(1900, 1, 1));
    EXPECT_EQ(sendung.Ende, DateSerial(1900, 1, 2));
    EXPECT_EQ(sendung.Aktualisierung, 7);
    EXPECT_EQ(sendung.Bewertung, 13);
    EXPECT_EQ(sendung.FSK, 23);
}

TEST_F(SendungTest, JedesKennzeichenKommtAusSeinerSpalte) {
    constexpr bool cSendung::*kKennzeichen[] = {&cSendung::KzFilm,
                                                &cSendung::Kz16zu9,
                                                &cSendung::KzDolby,
                                                &cSendung::KzDolbyDigital,
                                                &cSendung::KzDolbySurround,
                                                &cSendung::KzLive,
                                                &cSendung::KzStereo,
                                                &cSendung::KzSchwarzweis,
                                                &cSendung::KzTelefon,
                                                &cSendung::KzUncoded,
                                                &cSendung::KzUntertitel,
                                                &cSendung::KzZweikanalton,
                                                &cSendung::KzAudiodescription,
                                                &cSendung::KzBilddateiHeruntergeladen,
                                                &cSendung::KzInFavoritenliste,
                                                &cSendung::KzImArchiv,
                                                &cSendung::KzWiederholung,
                                                &cSendung::KzHDTV};
    const std::vector<std::string> spalten = Split(kFelder1, ",");
    for (std::size_t i = 0; i < std::size(kKennzeichen); ++i) {
        SCOPED_TRACE(spalten[24 + i]);
        const auto rs = oeffne(tabelle({{{spalten[24 + i], Variant::boolesch(true)}}}));
        sendung.LeseVonDatensatz1(*rs);
        for (std::size_t k = 0; k < std::size(kKennzeichen); ++k)
            EXPECT_EQ(sendung.*kKennzeichen[k], k == i);
    }
}

TEST_F(SendungTest, NullUndFremdeTypenHaltenDasLesenNichtAuf) {
    const auto rs = oeffne(tabelle({{{"Titel", Variant::null()},
                                     {"Dauer", Variant::integer(45)},
                                     {"Bewertung", Variant::lang(40000)},
                                     {"Aktualisierung", Variant::text("7x")},
                                     {"Beginn", Variant::doppelt(1e300)},
                                     {"Regie", Variant::binaer({1})}}}));
    sendung.FSK = 99;
    sendung.LeseVonDatensatz1(*rs);
    EXPECT_EQ(sendung.Titel, "");
    EXPECT_EQ(sendung.FSK, 0);
    EXPECT_EQ(sendung.Dauer, "45");
    EXPECT_EQ(sendung.Bewertung, 0);
    EXPECT_EQ(sendung.Aktualisierung, 7);
    EXPECT_EQ(sendung.Beginn, Datum());
    EXPECT_EQ(sendung.Regie, "");
}

TEST_F(SendungTest, GebundenesLesenFolgtDerZeile) {
    const auto rs = oeffne(tabelle({{{"Titel", Variant::text("eins")}}, {{"Titel", Variant::text("zwei")}}}));
    sendung.SetRsFields1(*rs);
    sendung.LeseVonRsFields1();
    EXPECT_EQ(sendung.Titel, "eins");
    rs->moveNext();
    sendung.LeseVonRsFields1();
    EXPECT_EQ(sendung.Titel, "zwei");
    EXPECT_FALSE(sendung.Temp_DetailsGeladen);
}

TEST_F(SendungTest, GebundeneDetailsGeltenAlsGeladen) {
    const auto rs = oeffne(details());
    sendung.SetRsFields2(*rs);
    sendung.LeseVonRsFields2();
    EXPECT_TRUE(sendung.Temp_DetailsGeladen);
    EXPECT_EQ(sendung.Darsteller(), "D");
    EXPECT_EQ(sendung.HTMLSeite(), "");
}

TEST_F(SendungTest, DetailsWerdenEinmalGeladen) {
    antworte(kAnweisung2, details());
    sendung.Pos = 4711;
    EXPECT_EQ(sendung.Beschreibung(), "B");
    EXPECT_EQ(sendung.Beschreibung(), "B");
    EXPECT_EQ(sendung.Darsteller(), "D");
    EXPECT_EQ(detailabfragen(), 1U);
    EXPECT_EQ(zustand->offen(), 0);
}

TEST_F(SendungTest, FehlendeDetailsWerdenWiederGesucht) {
    FakeTabelle leer = details();
    leer.zeilen.clear();
    antworte(kAnweisung2, leer);
    sendung.Pos = 4711;
    EXPECT_EQ(sendung.Beschreibung(), "");
    EXPECT_EQ(sendung.HTMLSeite(), "");
    EXPECT_EQ(detailabfragen(), 2U);
}

TEST_F(SendungTest, GeschriebeneDetailsErsparenDasLaden) {
    sendung.Pos = 4711;
    sendung.setzeHTMLSeite("seite.htm");
    EXPECT_EQ(sendung.Beschreibung(), "");
    EXPECT_EQ(sendung.HTMLSeite(), "seite.htm");
    EXPECT_EQ(detailabfragen(), 0U);
}

TEST_F(SendungTest, FehlendeZeileAendertNichts) {
    antworte(kAnweisung1, tabelle({}));
    sendung.Titel = "bleibt";
    sendung.FillAusDatenbank1(4711);
    EXPECT_EQ(sendung.Titel, "bleibt");
}

TEST_F(SendungTest, KopieBehaeltSpaltenUndLaedtNie) {
    sendung.Pos = 4711;
    sendung.Titel = "Tatort";
    sendung.FSK = 12;
    sendung.KzHDTV = true;
    cSendung kopie = sendung.GenerateCopy();
    EXPECT_EQ(kopie.Pos, 4711);
    EXPECT_EQ(kopie.Titel, "Tatort");
    EXPECT_EQ(kopie.FSK, 12);
    EXPECT_TRUE(kopie.KzHDTV);
    EXPECT_TRUE(kopie.Temp_DetailsGeladen);
    EXPECT_EQ(kopie.Beschreibung(), "");
    EXPECT_FALSE(sendung.Temp_DetailsGeladen);
    EXPECT_EQ(detailabfragen(), 0U);
}

TEST_F(SendungTest, FehlerBeimLadenLaesstNichtsOffen) {
    zustand->naechsteFehler = {3078};
    EXPECT_THROW(sendung.FillAusDatenbank1(4711), Fehler);
    EXPECT_EQ(zustand->offen(), 0);
}

}  // namespace
}  // namespace wendel
