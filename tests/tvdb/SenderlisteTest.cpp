#include "tvdb/Senderliste.h"

#include "platform/Text.h"
#include "tvdb/Probe.h"

namespace wendel {
namespace {

constexpr const char* kAnweisung =
    "Select * from Sender Order by Favorit*10000000+SortNr*10000+SortNrKestrin";

class SenderlisteTest : public Datenbankprobe {
  protected:
    // Channels of these keys; a favourite begins with "+".
    void lege(const std::vector<std::string>& sender) {
        // Another case of letters than in the code, as other programs create the table.
        FakeTabelle tabelle{
            Split("senderkennung,Bezeichnung,Zeichen,DatenNr,GueltigAb,Favorit,BezeichnungKurz,"
                  "KzBezeichnungSchützen,Webseite,GueltigBis,Gruppe",
                  ","),
            {}};
        for (const std::string& einer : sender) {
            tabelle.zeilen.push_back({Variant::text(einer.substr(1)), Variant::text("Das Erste"),
                                      Variant::null(), Variant::lang(12), Variant::datumRoh(41267),
                                      Variant::boolesch(einer[0] == '+')});
            tabelle.zeilen.back().resize(tabelle.spalten.size(), Variant::null());
        }
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

TEST_F(SenderlisteTest, FavoritenSindDieselbenObjekteInDerselbenFolge) {
    lege({"+ZDF", "+ARD", "-VOX"});
    liste.laden();
    EXPECT_EQ(kennungen(), "ZDF ARD VOX / ZDF ARD / ");
    const cSender& ard = *liste.alle().suche("ard");
    EXPECT_EQ(&ard, &*liste.favoriten().suche("Ard"));
    EXPECT_EQ(verbunden(ard.Senderkennung, ard.Bezeichnung, ard.Zeichen, ard.DatenNr),
              "ARD|Das Erste|kestrin_sender32x32_unbekannt.gif|12|");
    EXPECT_EQ(ard.GueltigAb, DateSerial(2012, 12, 24));

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
