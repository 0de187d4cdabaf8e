// Guarded access against a conflict in the middle of a new record, and against a file that is really damaged.
// Conflicts of whole statements: tests/desktop/konflikt.py.
#include <gmock/gmock.h>

#include <fstream>

#include "integration/EchteDatenbank.h"
#include "jet/storage/Schema.h"

namespace wendel {
namespace {

using testing::ElementsAre;
using Kasten = FakeMeldungen::Kasten;

class Zugriff : public EchteDatenbank {
  protected:
    void SetUp() override {
        jet::createDatabaseFile(werte.datenbankdatei, jet::Version::kJet4);
        aendere("Create Table Markierungen (ID Counter Primary Key, Sendung Text(100))");
        for (const char* titel : {"Tatort", "Wetter", "Film"})
            aendere("Insert Into Markierungen (Sendung) Values ('" + std::string(titel) + "')");
        einstellungen.setzeEinstellung(127, Variant::lang(1));
        oeffne();
    }
};

TEST_F(Zugriff, NewRecordOutlivesAConflict) {
    FremdesProgramm fremdes(werte.datenbankdatei);
    const auto rs = zugriff.SafeOpenRs(db, "Select * from Markierungen", kDynaset);
    rs->addNew();  // the number is given out at once
    const std::int32_t kennung = rs->feld("ID").alsLong();
    rs->setzeFeld("Sendung", Variant::text("neu"));
    fremdes.sperren();
    fakes.meldungen.antworten = {Antwort::Wiederholen};
    fakes.meldungen.imKasten = [&](const Kasten& kasten) {
        EXPECT_THAT(kasten.text, testing::StartsWith("Ein Update kann nicht durchgeführt werden."));
        fremdes.freigeben();
    };
    zugriff.SafeUpdate(*rs);
    EXPECT_EQ(fakes.meldungen.gezeigt.size(), 1u);
    EXPECT_THAT(zeilen("Select ID from Markierungen Where Sendung='neu'", 1),
                ElementsAre(std::to_string(kennung)));
}

// The index pages of all tables are gone; the rows are not.
TEST_F(Zugriff, DamagedFileIsRepairedAfterTheSecondQuestion) {
    db.reset();
    std::string bytes = *dateien.lesen(werte.datenbankdatei);
    for (std::size_t seite = 4096; seite < bytes.size(); seite += 4096) {
        if (bytes[seite] == 3 || bytes[seite] == 4) bytes.replace(seite, 4096, 4096, '\0');
    }
    std::ofstream(werte.datenbankdatei, std::ios::binary) << bytes;
    usleep(100000);  // in a file written this very moment the engine takes damage for a conflict
    oeffne();
    fakes.meldungen.antworten = {Antwort::Abbrechen, Antwort::Ja};
    zugriff.SafeExecute(db, "Delete from Markierungen Where ID=3");
    ASSERT_EQ(fakes.meldungen.gezeigt.size(), 2u);
    EXPECT_EQ(fakes.meldungen.gezeigt[0].stil, 53);
    EXPECT_EQ(fakes.meldungen.gezeigt[1], (Kasten{"Die Datenbank scheint defekt zu sein.\r\n"
                                                  "Möchten Sie versuchen sie zu reparieren?",
                                                  52, "Lomrick"}));
    EXPECT_TRUE(fakes.uhr.schlafdauern.empty()) << "damage is no conflict";
    EXPECT_THAT(zeilen("Select ID,Sendung from Markierungen", 2), ElementsAre("1|Tatort", "2|Wetter"));
}

}  // namespace
}  // namespace wendel
