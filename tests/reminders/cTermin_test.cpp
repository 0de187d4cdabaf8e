// The rules that move entries through time, the lines of a notice, and the way to and from the settings.

#include "reminders/cTermin.h"

#include <gtest/gtest.h>

#include <random>

#include "reminders/Terminspeicher.h"
#include "reminders/Zeitpunkt.h"

namespace wendel {
namespace {

TerminZeiger termin(const std::string& weckZeit, const std::string& text, std::int16_t intervallwert = 0,
                    bool aktiv = true) {
    auto neu = std::make_shared<cTermin>();
    neu->WeckZeit = zeit(weckZeit);
    neu->WeckText = text;
    neu->Intervall = intervallwert;
    neu->Aktiv = aktiv;
    return neu;
}

TEST(FiringAnEntry, MovesItToItsNextMomentLaterThanNow) {
    struct Fall {
        const char* name;
        std::int16_t intervallwert;
        const char *weckZeit, *jetzt, *erwartet;
    };
    // 24 December 2012 is a Monday. How the intervals step is compared with a model below.
    const Fall faelle[] = {
        {"once", 0, "2012-12-24 20:15:03", "2012-12-24 20:15:03", "2012-12-24 20:15:03"},
        {"unknown", 4, "2012-12-24 20:15:00", "2012-12-24 20:15", "2012-12-24 20:15:00"},
        {"negative", -1, "2012-12-24 20:15:00", "2012-12-24 20:15", "2012-12-24 20:15:00"},
        {"a day late to the second", 1, "2012-12-23 20:15", "2012-12-24 20:15:00", "2012-12-25 20:15:00"},
        {"a day late less a second", 1, "2012-12-23 20:15", "2012-12-24 20:14:59", "2012-12-24 20:15:00"},
        {"into the spring gap", 1, "2012-03-24 02:30", "2012-03-24 02:30", "2012-03-25 02:30:00"},
        {"Friday seen on Tuesday", 2, "2012-12-21 07:00", "2012-12-25 08:00", "2012-12-26 07:00:00"},
        {"decades late", 1, "1950-01-01 07:00", "2012-12-24 06:00", "2012-12-24 07:00:00"},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        const TerminZeiger eintrag = termin(fall.weckZeit, "x", fall.intervallwert);
        nachFeuernWeiterstellen(*eintrag, zeit(fall.jetzt));
        EXPECT_EQ(alsZeit(eintrag->WeckZeit), fall.erwartet);
        EXPECT_EQ(eintrag->Aktiv, fall.intervallwert == 1 || fall.intervallwert == 2);
        EXPECT_EQ(eintrag->GefeuertFuer.has_value(), !eintrag->Aktiv);
    }
}

// The model walks day by day over the calendar and knows no weeks.
Datum modell(Datum weckZeit, std::int16_t intervallwert, Datum grenze) {
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
        const Datum weckZeit =
            zeit("2011-01-01").plusSekunden(static_cast<std::int64_t>(zufall() % 86400000));
        const Datum jetzt =
            weckZeit.plusSekunden(static_cast<std::int64_t>(zufall() % (40 * 86400)) / 3600 * 3600);
        cTermin eintrag;
        eintrag.WeckZeit = weckZeit;
        eintrag.Intervall = static_cast<std::int16_t>(1 + zufall() % 3);
        eintrag.Aktiv = true;
        const Datum erwartet = modell(weckZeit, eintrag.Intervall, jetzt.plusSekunden(1));
        nachFeuernWeiterstellen(eintrag, jetzt);
        ASSERT_EQ(alsZeit(eintrag.WeckZeit), alsZeit(erwartet))
            << "seed " << kStartwert << " step " << i << " interval " << eintrag.Intervall << " from "
            << alsZeit(weckZeit) << " at " << alsZeit(jetzt);
    }
}

TEST(CatchUp, LooksAtInactiveEntriesOnly) {
    struct Fall {
        const char* name;
        bool aktiv;
        std::int16_t intervallwert;
        const char *weckZeit, *gefeuertFuer, *erwartet;  // gefeuertFuer null: never; erwartet null: as it was
        bool erwartetAktiv;
    };
    const char* jetzt = "2012-12-29 20:15:00";  // a Saturday
    const Fall faelle[] = {
        {"once, ahead: edited", false, 0, "2012-12-29 20:15:01", nullptr, nullptr, true},
        {"once, this very second", false, 0, "2012-12-29 20:15:00", nullptr, nullptr, false},
        {"once, fired, clock set back", false, 0, "2012-12-29 21:00", "2012-12-29 21:00", nullptr, false},
        {"once, fired before it was edited", false, 0, "2012-12-29 21:00", "2012-12-29 20:00", nullptr, true},
        {"unknown interval, ahead", false, 9, "2012-12-29 21:00", nullptr, nullptr, true},
        {"active, past: the tick fires it", true, 1, "2012-12-20 20:00", nullptr, nullptr, true},
        {"daily, past", false, 1, "2012-12-20 20:00", nullptr, "2012-12-30 20:00:00", false},
        {"daily, lands on this second", false, 1, "2012-12-01 20:15:00", nullptr, jetzt, false},
        {"daily, ahead", false, 1, "2012-12-31 20:00", nullptr, nullptr, false},
        {"working day", false, 2, "2012-12-22 20:15:00", nullptr, "2012-12-31 20:15:00", false},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        const TerminZeiger eintrag = termin(fall.weckZeit, "x", fall.intervallwert, fall.aktiv);
        if (fall.gefeuertFuer) eintrag->GefeuertFuer = zeit(fall.gefeuertFuer);
        nachholen(Terminliste{eintrag}, zeit(jetzt));
        EXPECT_EQ(eintrag->WeckZeit, zeit(fall.erwartet ? fall.erwartet : fall.weckZeit));
        EXPECT_EQ(eintrag->Aktiv, fall.erwartetAktiv);
    }
}

TEST(NoticeText, HasTwoLinesForAnEntryAndOneForAShortTimeAlarm) {
    const std::string jetzt = "2012-12-24 20:15";
    EXPECT_EQ(hinweistext({termin(jetzt, "Zahnarzt"), termin(jetzt, "20:15 Tatort (ARD)")}),
              "Sie wollten sich erinnern lassen.\r\nZahnarzt\r\n"
              "Sie wollten sich erinnern lassen.\r\n20:15 Tatort (ARD)");
    EXPECT_EQ(hinweistext({termin(jetzt, "(Kurzzeiterinnerung)"), termin(jetzt, "(KURZZEITerinnerung)")}),
              "Sie wollten sich erinnern lassen.\r\nSie wollten sich erinnern lassen.");
    EXPECT_EQ(hinweistext({termin(jetzt, "(Kurzzeiterinnerung) ")}),
              "Sie wollten sich erinnern lassen.\r\n(Kurzzeiterinnerung) ");
    EXPECT_EQ(hinweistext({termin(jetzt, "")}), "Sie wollten sich erinnern lassen.\r\n");
    EXPECT_EQ(hinweistext({}), "");
}

TEST(StoredEntries, ComeBackAsTheyWereButForShortTimeAlarmsThatHaveFired) {
    std::vector<GespeicherterTermin> gespeichert = {
        {zeit("2012-12-24 20:00"), "(kurzzeiterinnerung)", 0, false},  // fired
        {zeit("2012-12-24 20:00"), "(Kurzzeiterinnerung)", 0, true},   // due while the program was off
        {zeit("2012-12-24 21:00"), "(Kurzzeiterinnerung)", 0, false},
        {zeit("2012-12-24 20:15:03"), "Gänse & Söhne", 2, true},
        {zeit("2012-12-24 09:00"), "", 0, false},
    };
    const Terminliste gelesen = termineAusEinstellungen(gespeichert, zeit("2012-12-24 20:30"));
    gespeichert.erase(gespeichert.begin());
    EXPECT_EQ(termineFuerEinstellungen(gelesen), gespeichert);
}

}  // namespace
}  // namespace wendel
