#include "traymenu/Tagestipp.h"

#include "platform/Text.h"
#include "tvdb/Probe.h"

namespace wendel {
namespace {

class TagestippTest : public Datenbankprobe {
  protected:
    void tipps(const char* tag, const std::vector<const char*>& titel) {
        FakeTabelle tabelle{Split("Pos," + cSendung::GetFelderNamenSendungen(), ","), {}};
        for (const char* einer : titel) {
            auto& zeile = tabelle.zeilen.emplace_back(tabelle.spalten.size(), Variant::null());
            zeile[0] = Variant::lang(12), zeile[4] = Variant::text(einer), zeile[14] = Variant::text("b.jpg");
            zeile[2] = Variant::datum(fakes.uhr.jetzt().datumsteil() + TimeSerial(8, 5, 59));
            zeile[16] = Variant::text("Krimi");
        }
        antworte("Select * from Sendungen Where Format(Beginn,'YYYYMMDD')='" + std::string(tag) +
                     "' and Bewertung=4;",
                 tabelle);
    }
    // The fields, and how often the database has been asked so far.
    std::string gefuellt() {
        tagestipp.fuellen();
        const Tagestippfelder& f = tagestipp.felder();
        return verbunden(f.TagesTippTitel, f.TagesTippGenre, f.TagesTippSender, f.TagesTippUhrzeit,
                         f.TagesTippBilddatei, f.TagesTippPos, zustand->anweisungen().size());
    }

    Senderliste sender{zugriff};
    Tagestipp tagestipp{fakes.uhr, zugriff, sender};
};

TEST_F(TagestippTest, EinTippGiltDenTagKeinTippGiltNicht) {
    tipps("20121224", {});
    EXPECT_EQ(gefuellt(), "|Kein Tagestipp in den TV-Daten||||0|1|");
    tipps("20121224", {"Tatort", "zweiter"});
    EXPECT_EQ(gefuellt(), "Tatort|Krimi|<keine Daten>|08:05 Uhr|b.jpg|12|2|");
    tipps("20121224", {"anderer"});
    EXPECT_EQ(gefuellt(), "Tatort|Krimi|<keine Daten>|08:05 Uhr|b.jpg|12|2|");
    tagestipp.verwerfen();
    EXPECT_EQ(gefuellt(), "anderer|Krimi|<keine Daten>|08:05 Uhr|b.jpg|12|3|");
    fakes.uhr.vor(4 * 3600);  // midnight
    zustand->naechsteFehler = {3078};
    EXPECT_EQ(fehlerVon([&] { tagestipp.fuellen(); }).nummer, 3078);
    EXPECT_EQ(tagestipp.felder(), Tagestippfelder()) << "yesterday's tip is none";
    tipps("20121225", {"neuer"});
    EXPECT_EQ(gefuellt(), "neuer|Krimi|<keine Daten>|08:05 Uhr|b.jpg|12|5|");
    EXPECT_EQ(zustand->offen() + zustand->recordsetsOffen(), 0);
}

}  // namespace
}  // namespace wendel
