// The rules that move entries through time.

#include "reminders/cTermin.h"

#include <gtest/gtest.h>

#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

TerminZeiger termin(const std::string& weckZeit, std::int16_t intervallwert, bool aktiv) {
    auto neu = std::make_shared<cTermin>();
    neu->WeckZeit = zeit(weckZeit);
    neu->Intervall = intervallwert;
    neu->Aktiv = aktiv;
    return neu;
}

// What a firing does to the known repetitions is the simulation's.
TEST(FiringAnEntry, EndsOneOfAnUnknownRepetition) {
    for (const int unbekannt : {-1, 0, 4, 32767}) {
        const TerminZeiger eintrag = termin("2012-12-29 20:15", static_cast<std::int16_t>(unbekannt), true);
        nachFeuernWeiterstellen(*eintrag, zeit("2013-01-29 20:15"));
        EXPECT_TRUE(!eintrag->Aktiv && eintrag->GefeuertFuer == eintrag->WeckZeit) << unbekannt;
    }
}

TEST(CatchUp, StepsInactiveEntriesOnAndWakesEditedOnes) {
    struct Fall {
        const char* name;
        std::int16_t intervallwert;
        const char *weckZeit, *gefeuertFuer, *erwartet;
        bool erwartetAktiv;
    };
    const char *jetzt = "2012-12-29 20:15", *spaeter = "2012-12-29 21:00";  // a Saturday
    const Fall faelle[] = {
        {"once, ahead: edited", 0, "2012-12-29 20:15:01", nullptr, "2012-12-29 20:15:01", true},
        {"once, this very second", 0, jetzt, nullptr, jetzt, false},
        {"once, fired, clock set back", 0, spaeter, spaeter, spaeter, false},
        {"once, fired before it was edited", 0, spaeter, "2012-12-29 20:00", spaeter, true},
        {"daily, lands on this second", 1, "2012-12-01 20:15:00", nullptr, jetzt, false},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        const TerminZeiger eintrag = termin(fall.weckZeit, fall.intervallwert, false);
        if (fall.gefeuertFuer) eintrag->GefeuertFuer = zeit(fall.gefeuertFuer);
        EXPECT_EQ(nachholen(Terminliste{eintrag}, zeit(jetzt)), fall.erwartetAktiv);
        EXPECT_EQ(eintrag->WeckZeit, zeit(fall.erwartet));
        EXPECT_EQ(eintrag->Aktiv, fall.erwartetAktiv);
    }
}

}  // namespace
}  // namespace wendel
