#include "tvdb/Senderliste.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

constexpr const char* kAnweisung =
    "Select * from Sender Order by Favorit*10000000+SortNr*10000+SortNrKestrin";

class SenderlisteTest : public testing::Test {
  protected:
    SenderlisteTest() { werte.datenbankdatei = "\\suite\\tvdaten.mdb"; }

    static std::vector<Variant> zeile(const char* kennung, bool favorit,
                                      Variant zeichen = Variant::text("a.gif")) {
        return {Variant::text(std::string(kennung) + " lang"),
                Variant::null(),
                Variant::null(),
                Variant::text(kennung),
                Variant::lang(12),
                std::move(zeichen),
                Variant::text("http://x"),
                Variant::datumRoh(41267),
                Variant::null(),
                Variant::boolesch(favorit),
                Variant::text("Gruppe")};
    }

    void antworte(std::vector<std::vector<Variant>> zeilen) {
        // Another case of letters than in the code, as other programs create the table.
        fakes.datenbanken->antworten.insert_or_assign(
            kAnweisung,
            FakeTabelle{{"bezeichnung", "BezeichnungKurz", "KzBezeichnungSchützen", "SenderKennung",
                         "DatenNr", "Zeichen", "Webseite", "GueltigAb", "GueltigBis", "Favorit", "Gruppe"},
                        std::move(zeilen)});
    }

    static std::vector<std::string> kennungen(const Sendersammlung& sammlung) {
        std::vector<std::string> alle;
        for (const auto& sender : sammlung)
            alle.push_back(sender->Senderkennung);
        return alle;
    }

    FakePorts fakes;
    Prozesswerte werte;
    Einstellungen einstellungen{fakes.dateien, kTestordner};
    ModulDatenbankzugriff zugriff{fakes.ports(), einstellungen, werte};
    Senderliste liste{zugriff};
};

using Kennungen = std::vector<std::string>;

TEST_F(SenderlisteTest, LiestAlleFelderUndErsetztNull) {
    antworte({zeile("ARD", true)});
    liste.laden();
    const auto ard = liste.alle().suche("ARD");
    ASSERT_TRUE(ard);
    EXPECT_EQ(ard->Bezeichnung, "ARD lang");
    EXPECT_EQ(ard->BezeichnungKurz, "");
    EXPECT_FALSE(ard->KzBezeichnungSchützen);
    EXPECT_EQ(ard->DatenNr, "12");
    EXPECT_EQ(ard->Zeichen, "a.gif");
    EXPECT_EQ(ard->Webseite, "http://x");
    EXPECT_EQ(ard->GueltigAb, DateSerial(2012, 12, 24));
    EXPECT_EQ(ard->GueltigBis, Datum());
    EXPECT_TRUE(ard->Favorit);
    EXPECT_EQ(ard->Gruppe, "Gruppe");
    EXPECT_EQ(fakes.datenbanken->vorgaenge,
              (std::vector<FakeVorgang>{{"openDatabase", "\\suite\\tvdaten.mdb", {}, {}},
                                        {"openRecordset", kAnweisung, {}, {}},
                                        {"closeRecordset", "", {}, {}},
                                        {"closeDatabase", "\\suite\\tvdaten.mdb", {}, {}}}));
}

TEST_F(SenderlisteTest, FehlendesZeichenBekommtDasUnbekannte) {
    antworte({zeile("A", false, Variant::null()), zeile("B", false, Variant::text("  "))});
    liste.laden();
    for (const auto& sender : liste.alle())
        EXPECT_EQ(sender->Zeichen, "kestrin_sender32x32_unbekannt.gif");
}

TEST_F(SenderlisteTest, FavoritenSindDieselbenObjekteInDerselbenFolge) {
    antworte({zeile("ZDF", true), zeile("ARD", true), zeile("VOX", false)});
    liste.laden();
    EXPECT_EQ(kennungen(liste.alle()), (Kennungen{"ZDF", "ARD", "VOX"}));
    EXPECT_EQ(kennungen(liste.favoriten()), (Kennungen{"ZDF", "ARD"}));
    EXPECT_EQ(liste.favoriten().suche("ard"), liste.alle().suche("Ard"));
    EXPECT_EQ(liste.favoriten().suche("VOX"), nullptr);
}

TEST_F(SenderlisteTest, DatenbankfehlerLaesstDieAlteListeStehen) {
    antworte({zeile("ARD", true)});
    liste.laden();
    fakes.datenbanken->naechsteFehler = {3078};
    EXPECT_THROW(liste.laden(), Fehler);
    EXPECT_EQ(kennungen(liste.alle()), Kennungen{"ARD"});
    EXPECT_EQ(fakes.datenbanken->offen(), 0);
}

TEST_F(SenderlisteTest, DoppelteKennungBrichtNachDenBisherigenAb) {
    antworte({zeile("ARD", true), zeile("ard", true), zeile("ZDF", false)});
    try {
        liste.laden();
        FAIL() << "no error";
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.nummer(), 457);
    }
    EXPECT_EQ(kennungen(liste.alle()), Kennungen{"ARD"});
    EXPECT_EQ(kennungen(liste.favoriten()), Kennungen{"ARD"});
    EXPECT_EQ(fakes.datenbanken->offen(), 0);
    EXPECT_EQ(fakes.datenbanken->recordsetsOffen(), 0);
}

}  // namespace
}  // namespace wendel
