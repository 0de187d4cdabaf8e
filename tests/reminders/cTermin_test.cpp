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

// What else becomes of inactive ones is the simulation's.
TEST(CatchUp, EndsWithThePresentSecond) {
    const char* jetzt = "2012-12-29 20:15";
    const TerminZeiger einmal = termin(jetzt, intervall::kEinmal, false),
                       taeglich = termin("2012-12-01 20:15:00", intervall::kTaeglich, false);
    EXPECT_FALSE(nachholen(Terminliste{einmal, taeglich}, zeit(jetzt)));
    EXPECT_FALSE(einmal->Aktiv || taeglich->Aktiv);
    EXPECT_EQ(taeglich->WeckZeit, zeit(jetzt));
}

}  // namespace
}  // namespace wendel
