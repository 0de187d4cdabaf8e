#include "tvdb/Senderliste.h"

#include "tvdb/Probe.h"

namespace wendel {
namespace {

constexpr const char* kAnweisung =
    "Select * from Sender Order by Favorit*10000000+SortNr*10000+SortNrKestrin";

class SenderlisteTest : public Datenbankprobe {
  protected:
    // Channels of these keys; a favourite begins with "+".
    void lege(const std::vector<std::string>& sender, const Variant& zeichen = Variant::text("a.gif")) {
        // clang-format off
        // Another case of letters than in the code, as other programs create the table.
        FakeTabelle tabelle{{"bezeichnung", "BezeichnungKurz", "KzBezeichnungSchützen", "SenderKennung", "DatenNr",
            "Zeichen", "Webseite", "GueltigAb", "GueltigBis", "Favorit", "Gruppe"}, {}};
        for (const std::string& einer : sender) {
            tabelle.zeilen.push_back({Variant::text("Das Erste"), Variant::null(), Variant::null(),
                Variant::text(einer.substr(1)), Variant::lang(12), zeichen, Variant::text("http://x"),
                Variant::datumRoh(41267), Variant::null(), Variant::boolesch(einer[0] == '+'), Variant::text("G")});
        }
        // clang-format on
        antworte(kAnweisung, tabelle);
    }

    std::string kennungen() const {
        std::string alle;
        for (const Sendersammlung* sammlung : {&liste.alle(), &liste.favoriten()}) {
            for (const auto& sender : *sammlung)
                alle += sender->Senderkennung + " ";
            alle += "/ ";
        }
        return alle;
    }

    Senderliste liste{zugriff};
};

TEST_F(SenderlisteTest, LiestAlleFelderUndErsetztNull) {
    lege({"+ARD"});
    liste.laden();
    const cSender& ard = *liste.alle().suche("ard");
    EXPECT_EQ(verbunden(ard.Bezeichnung, ard.BezeichnungKurz, ard.KzBezeichnungSchützen, ard.Senderkennung,
                        ard.DatenNr, ard.Zeichen, ard.Webseite, ard.Gruppe),
              "Das Erste||0|ARD|12|a.gif|http://x|G|");
    EXPECT_EQ(ard.GueltigAb, DateSerial(2012, 12, 24));
    EXPECT_EQ(ard.GueltigBis, Datum());
    EXPECT_EQ(zustand->vorgaenge,
              (std::vector<FakeVorgang>{{"openDatabase", werte.datenbankdatei, {}, {}},
                                        {"openRecordset", kAnweisung, {}, {}},
                                        {"closeRecordset", "", {}, {}},
                                        {"closeDatabase", werte.datenbankdatei, {}, {}}}));
    for (const Variant& zeichen : {Variant::null(), Variant::text("  ")}) {
        lege({"-A"}, zeichen);
        liste.laden();
        EXPECT_EQ(liste.alle().suche("A")->Zeichen, "kestrin_sender32x32_unbekannt.gif");
    }
}

TEST_F(SenderlisteTest, FavoritenSindDieselbenObjekteInDerselbenFolge) {
    lege({"+ZDF", "+ARD", "-VOX"});
    liste.laden();
    EXPECT_EQ(kennungen(), "ZDF ARD VOX / ZDF ARD / ");
    EXPECT_EQ(liste.favoriten().suche("ard"), liste.alle().suche("Ard"));

    zustand->naechsteFehler = {3078};
    EXPECT_EQ(fehlerVon([&] { liste.laden(); }).nummer, 3078);
    EXPECT_EQ(kennungen(), "ZDF ARD VOX / ZDF ARD / ") << "a failure leaves the old list";

    lege({"+SAT", "+sat", "-ZDF"});
    EXPECT_EQ(fehlerVon([&] { liste.laden(); }).nummer, 457);
    EXPECT_EQ(kennungen(), "SAT / SAT / ") << "a duplicate ends the list";
    EXPECT_EQ(zustand->offen() + zustand->recordsetsOffen(), 0);
}

}  // namespace
}  // namespace wendel
