// A maintenance run on the example database, on 24 December 2012 at 20:00. What is expected follows by hand
// from the broadcasts and marks that another program has written into it.
#include "tvdb/Markierungspflege.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <random>

#include "integration/EchteDatenbank.h"
#include "support/Kindprozess.h"

namespace wendel {
namespace {

using testing::ElementsAre;

class Pflege : public EchteDatenbank {
  protected:
    void SetUp() override {
        if (!beispiel("tvdaten-klein.mdb")) GTEST_SKIP() << "no example databases in " << kBeispiele;
    }
    Markierungslisten pflege() {
        Markierungslisten listen;
        Markierungspflege(zugriff, "PC-WOHNZIMMER", 7).laufen(fakes.uhr.jetzt(), listen);
        return listen;
    }
};

TEST_F(Pflege, BringsTheTableInStepWithTheBroadcasts) {
    const char* const kAndere = "Select * from Markierungen Where User='PC-BUERO' Order by ID";
    const auto andere = zeilen(kAndere, 16);
    const std::string keine = ";Wiederkehrend=1", egal = keine + ";SenderEgal=1",
                      beide = egal + ";OhneWiederholung=1";
    aendere("Delete from Sendungen Where Pos=301");  // mark 9 loses its broadcast
    const Markierungslisten listen = pflege();
    EXPECT_THAT(
        zeilen("Select ID,Pos,Sendung from Markierungen Where User='PC-WOHNZIMMER' and ID<=30 Order by ID",
               3),
        ElementsAre("3|371|Das große Wintergespräch: Folge 389", "5|372|Technik/Wissen",
                    "7|426|Täglich um sechs", "9|0|L'été à Lyon", "11|577|Der letzte Müller",
                    "13|349|100 % Handarbeit", "15|91|Die Leuchtturmwärterin", "17|519|Ein Fall für Möwe 4",
                    "21|442|Liebe, Lügen, Lebkuchen"));
    EXPECT_THAT(
        zeilen("Select Pos,Sendung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Aufzeichnung,Optionen "
               "from Markierungen Where User='PC-WOHNZIMMER' and ID>30 Order by Pos",
               9),
        ElementsAre(
            "72|Ein Fall für Möwe 4|26.12.2012|01:45:00|30|-1|-1|-1|Erinnerungszeit=201212260135" + beide,
            "135|Die Leuchtturmwärterin|25.12.2012|07:20:00|20|-1|-1|-1|Erinnerungszeit=201212250710" + keine,
            "198|Liebe, Lügen, Lebkuchen|25.12.2012|01:35:00|10|-1|-1|0|Erinnerungszeit=201212250105" + egal,
            "283|Liebe, Lügen, Lebkuchen|25.12.2012|08:35:00|75|-1|-1|0|Erinnerungszeit=201212250805" + egal,
            "296|Liebe, Lügen, Lebkuchen|25.12.2012|19:55:00|20|-1|-1|0|Erinnerungszeit=201212251925" + egal,
            "351|O'Malleys letzte "
            "Fahrt|25.12.2012|00:15:00|100|-1|0|0|Wiederkehrend=1;Erinnerungszeit=201213",
            "357|Ein Fall für Möwe 4|25.12.2012|05:55:00|5|-1|-1|-1|Erinnerungszeit=201212250545" + beide,
            "365|Liebe, Lügen, Lebkuchen|25.12.2012|12:50:00|70|-1|-1|0|Erinnerungszeit=201212251220" + egal,
            "423|Das große Wintergespräch|24.12.2012|21:35:00|5|-1|0|0|Wiederkehrend=1",
            "434|Das große Wintergespräch|25.12.2012|11:25:00|20|-1|0|0|Wiederkehrend=1",
            "603|Der letzte Müller|26.12.2012|02:20:00|15|-1|-1|-1|Erinnerungszeit=201212260215" + keine,
            "604|Der letzte Müller|26.12.2012|02:35:00|50|-1|-1|-1|Erinnerungszeit=201212260230" + keine));
    EXPECT_EQ(zeilen(kAndere, 16), andere);
    EXPECT_THAT(zeilen("Select Pos from Sendungen Where KzInFavoritenliste=true Order by Pos", 1),
                ElementsAre("18", "42", "44", "72", "91", "122", "124", "135", "198", "268", "283", "296",
                            "349", "351", "357", "365", "371", "372", "423", "426", "434", "442", "448",
                            "468", "471", "519", "571", "572", "577", "603", "604"));
    EXPECT_NE(listen.favoriten.find(";423;"), std::string::npos);
    EXPECT_EQ(listen.erinnerungen.find(";423;"), std::string::npos);
    const auto alles = zeilen("Select * from Markierungen Order by ID", 16);
    pflege();
    EXPECT_EQ(zeilen("Select * from Markierungen Order by ID", 16), alles)
        << "a second run finds nothing to do";
}

// Killed at random moments: the next run brings the marks to where a whole one would have brought them. What
// it must not differ in are the keys, of which a killed run has used up some.
TEST_F(Pflege, KilledRunIsMadeUpForByTheNext) {
    constexpr unsigned kSeed = 161803;
    SCOPED_TRACE(kSeed);
    std::mt19937 zufall(kSeed);
    const std::string original = *dateien.lesen(werte.datenbankdatei);
    const auto zustand = [&] {
        auto alle = zeilen(
            "Select User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Aufzeichnung,"
            "Optionen,KzAusblenden from Markierungen",
            12);
        std::sort(alle.begin(), alle.end());
        for (const std::string& pos : zeilen("Select Pos from Sendungen Where KzInFavoritenliste=true", 1))
            alle.push_back(pos);
        return alle;
    };
    using Zeit = std::chrono::steady_clock;
    const auto beginn = Zeit::now();
    pflege();
    const auto dauer = std::chrono::duration_cast<std::chrono::microseconds>(Zeit::now() - beginn).count();
    const auto erwartet = zustand();
    for (int lauf = 0; lauf < 10; ++lauf) {
        std::ofstream(werte.datenbankdatei, std::ios::binary) << original;
        {
            const Kind getoetet([&](int) { pflege(); });
            ::usleep(static_cast<useconds_t>(zufall() % static_cast<unsigned>(dauer)));
        }
        pflege();
        EXPECT_EQ(zustand(), erwartet) << lauf;
    }
}

}  // namespace
}  // namespace wendel
