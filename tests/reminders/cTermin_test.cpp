// The rules that move entries through time.

#include "reminders/cTermin.h"

#include <gtest/gtest.h>

#include <random>

#include "reminders/Zeitpunkt.h"

namespace wendel {
namespace {

TerminZeiger termin(const std::string& weckZeit, std::int16_t intervallwert, bool aktiv) {
    auto neu = std::make_shared<cTermin>();
    neu->WeckZeit = zeit(weckZeit);
    neu->Intervall = intervallwert;
    neu->Aktiv = aktiv;
    return neu;
}

// The model walks day by day over the calendar and knows no weeks; the other intervals end an entry.
Datum modell(Datum weckZeit, std::int16_t intervallwert, Datum grenze) {
    if (intervallwert < 1 || intervallwert > 3) return weckZeit;
    Datum neu = weckZeit;
    do {
        neu = neu.plusSekunden(86400);
    } while (neu < grenze || (intervallwert == 2 && wochentagAbMontag(neu) > 5) ||
             (intervallwert == 3 && Weekday(neu) != Weekday(weckZeit)));
    return neu;
}

TEST(FiringAnEntry, AgreesWithWalkingDayByDay) {
    constexpr unsigned kStartwert = 20121224;
    std::mt19937 zufall(kStartwert);
    for (int i = 0; i < 3000; ++i) {
        const Datum weckZeit = zeit("2011-01-01").plusSekunden(zufall() % 86400000);
        const Datum jetzt = weckZeit.plusSekunden(zufall() % (40 * 86400) / 3600 * 3600);
        const auto intervallwert = static_cast<std::int16_t>(static_cast<int>(zufall() % 6) - 1);
        const TerminZeiger eintrag = termin(alsZeit(weckZeit), intervallwert, true);
        const Datum erwartet = modell(weckZeit, intervallwert, jetzt.plusSekunden(1));
        nachFeuernWeiterstellen(*eintrag, jetzt);
        ASSERT_EQ(alsZeit(eintrag->WeckZeit), alsZeit(erwartet))
            << "seed " << kStartwert << " step " << i << " interval " << intervallwert << " from "
            << alsZeit(weckZeit) << " at " << alsZeit(jetzt);
        ASSERT_EQ(eintrag->Aktiv, intervallwert == 1 || intervallwert == 2 || intervallwert == 3)
            << intervallwert;
        ASSERT_EQ(eintrag->GefeuertFuer.has_value(), !eintrag->Aktiv);
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
        {"daily, ahead", 1, "2012-12-31 20:00", nullptr, "2012-12-31 20:00", false},
        {"working day", 2, "2012-12-22 20:15:00", nullptr, "2012-12-31 20:15:00", false},
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
