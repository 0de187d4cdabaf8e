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
        const char* weckZeit;
        const char* jetzt;
        const char* erwartet;
        bool aktiv;
    };
    // 24 December 2012 is a Monday.
    const Fall faelle[] = {
        {"once is switched off", 0, "2012-12-24 20:15:03", "2012-12-24 20:15:03", "2012-12-24 20:15:03",
         false},
        {"unknown interval counts as once", 4, "2012-12-24 20:15", "2012-12-24 20:15", "2012-12-24 20:15:00",
         false},
        {"negative interval counts as once", -1, "2012-12-24 20:15", "2012-12-24 20:15",
         "2012-12-24 20:15:00", false},
        {"daily keeps its seconds", 1, "2012-12-24 20:15:03", "2012-12-24 20:15:04", "2012-12-25 20:15:03",
         true},
        {"daily, a day late to the second", 1, "2012-12-23 20:15", "2012-12-24 20:15:00",
         "2012-12-25 20:15:00", true},
        {"daily, a day late less a second", 1, "2012-12-23 20:15", "2012-12-24 20:14:59",
         "2012-12-24 20:15:00", true},
        {"daily after a week's sleep", 1, "2012-12-17 20:15", "2012-12-24 21:00", "2012-12-25 20:15:00",
         true},
        {"daily into the leap day", 1, "2012-02-28 08:00", "2012-02-28 08:00", "2012-02-29 08:00:00", true},
        {"daily out of the leap day", 1, "2012-02-29 08:00", "2012-02-29 08:00", "2012-03-01 08:00:00", true},
        {"daily, February of a common year", 1, "2013-02-28 08:00", "2013-02-28 08:00", "2013-03-01 08:00:00",
         true},
        {"daily over the end of the year", 1, "2012-12-31 23:59:59", "2012-12-31 23:59:59",
         "2013-01-01 23:59:59", true},
        {"daily into the spring gap", 1, "2012-03-24 02:30", "2012-03-24 02:30", "2012-03-25 02:30:00", true},
        {"daily across the autumn hour", 1, "2012-10-27 02:30", "2012-10-27 02:30", "2012-10-28 02:30:00",
         true},
        {"working day, Monday", 2, "2012-12-24 07:00", "2012-12-24 07:00", "2012-12-25 07:00:00", true},
        {"working day, Thursday", 2, "2012-12-20 07:00", "2012-12-20 07:00", "2012-12-21 07:00:00", true},
        {"working day, Friday", 2, "2012-12-21 07:00", "2012-12-21 07:00", "2012-12-24 07:00:00", true},
        {"working day, Saturday", 2, "2012-12-22 07:00", "2012-12-22 07:00", "2012-12-24 07:00:00", true},
        {"working day, Sunday", 2, "2012-12-23 07:00", "2012-12-23 07:00", "2012-12-24 07:00:00", true},
        {"working day, Friday seen on Tuesday", 2, "2012-12-21 07:00", "2012-12-25 08:00",
         "2012-12-26 07:00:00", true},
        {"weekly", 3, "2012-12-24 07:00", "2012-12-24 07:00", "2012-12-31 07:00:00", true},
        {"weekly over the end of the year", 3, "2012-12-27 07:00", "2012-12-27 07:00", "2013-01-03 07:00:00",
         true},
        {"weekly, two weeks late", 3, "2012-12-10 07:00", "2012-12-24 07:00", "2012-12-31 07:00:00", true},
        {"daily, decades late", 1, "1950-01-01 07:00", "2012-12-24 06:00", "2012-12-24 07:00:00", true},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        const TerminZeiger eintrag = termin(fall.weckZeit, "x", fall.intervallwert);
        nachFeuernWeiterstellen(*eintrag, zeit(fall.jetzt));
        EXPECT_EQ(alsZeit(eintrag->WeckZeit), fall.erwartet);
        EXPECT_EQ(eintrag->Aktiv, fall.aktiv);
        EXPECT_EQ(eintrag->GefeuertFuer.has_value(), !fall.aktiv);
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
        const char* weckZeit;
        const char* gefeuertFuer;  // null: never
        const char* erwarteteZeit;
        bool erwartetAktiv;
    };
    const char* jetzt = "2012-12-29 20:15:00";  // a Saturday
    const Fall faelle[] = {
        {"once, ahead: edited, alive again", false, 0, "2012-12-29 20:15:01", nullptr, "2012-12-29 20:15:01",
         true},
        {"once, this very second", false, 0, "2012-12-29 20:15:00", nullptr, "2012-12-29 20:15:00", false},
        {"once, past", false, 0, "2012-12-29 20:14:59", nullptr, "2012-12-29 20:14:59", false},
        {"once, fired, clock set back", false, 0, "2012-12-29 21:00", "2012-12-29 21:00",
         "2012-12-29 21:00:00", false},
        {"once, fired for another moment", false, 0, "2012-12-29 21:00", "2012-12-29 20:00",
         "2012-12-29 21:00:00", true},
        {"unknown interval, ahead", false, 9, "2012-12-29 21:00", nullptr, "2012-12-29 21:00:00", true},
        {"active once, past: the tick fires it", true, 0, "2012-12-29 20:00", nullptr, "2012-12-29 20:00:00",
         true},
        {"active daily, past: the tick fires it", true, 1, "2012-12-20 20:00", nullptr, "2012-12-20 20:00:00",
         true},
        {"daily, past", false, 1, "2012-12-20 20:00", nullptr, "2012-12-30 20:00:00", false},
        {"daily, this very second", false, 1, "2012-12-29 20:15:00", nullptr, "2012-12-29 20:15:00", false},
        {"daily, lands on this second", false, 1, "2012-12-01 20:15:00", nullptr, "2012-12-29 20:15:00",
         false},
        {"daily, ahead", false, 1, "2012-12-31 20:00", nullptr, "2012-12-31 20:00:00", false},
        {"working day, a Saturday never lands on one", false, 2, "2012-12-22 20:15:00", nullptr,
         "2012-12-31 20:15:00", false},
        {"weekly, past", false, 3, "2012-12-03 20:00", nullptr, "2012-12-31 20:00:00", false},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        const TerminZeiger eintrag = termin(fall.weckZeit, "x", fall.intervallwert, fall.aktiv);
        if (fall.gefeuertFuer) eintrag->GefeuertFuer = zeit(fall.gefeuertFuer);
        nachholen(Terminliste{eintrag}, zeit(jetzt));
        EXPECT_EQ(alsZeit(eintrag->WeckZeit), fall.erwarteteZeit);
        EXPECT_EQ(eintrag->Aktiv, fall.erwartetAktiv);
    }
}

TEST(DueEntries, AreActiveAndNotLaterThanNow) {
    const TerminZeiger eintrag = termin("2012-12-24 20:15:00", "x");
    EXPECT_FALSE(istFaellig(*eintrag, zeit("2012-12-24 20:14:59")));
    EXPECT_TRUE(istFaellig(*eintrag, zeit("2012-12-24 20:15:00")));
    EXPECT_TRUE(istFaellig(*eintrag, zeit("2012-12-28")));
    eintrag->Aktiv = false;
    EXPECT_FALSE(istFaellig(*eintrag, zeit("2012-12-28")));
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

TEST(StoredEntries, ComeBackAsTheyWere) {
    const std::vector<GespeicherterTermin> gespeichert = {
        {zeit("2012-12-24 20:15:03"), "Gänse & Söhne", 2, true},
        {zeit("2012-12-24 09:00"), "", 0, false},
    };
    const Terminliste gelesen = termineAusEinstellungen(gespeichert, zeit("2012-12-25"));
    ASSERT_EQ(gelesen.size(), 2u);
    EXPECT_EQ(gelesen[0]->Art, Terminart::Eigener);
    EXPECT_EQ(termineFuerEinstellungen(gelesen), gespeichert);
}

TEST(StoredEntries, LoseShortTimeAlarmsThatHaveFired) {
    const std::vector<GespeicherterTermin> gespeichert = {
        {zeit("2012-12-24 20:00"), "(kurzzeiterinnerung)", 0, false},  // fired
        {zeit("2012-12-24 20:00"), "(Kurzzeiterinnerung)", 0, true},   // due while the program was off
        {zeit("2012-12-24 21:00"), "(Kurzzeiterinnerung)", 0, false},
    };
    const Terminliste gelesen = termineAusEinstellungen(gespeichert, zeit("2012-12-24 20:30"));
    ASSERT_EQ(gelesen.size(), 2u);
    EXPECT_TRUE(gelesen[0]->Aktiv);
    EXPECT_EQ(alsZeit(gelesen[1]->WeckZeit), "2012-12-24 21:00:00");
}

}  // namespace
}  // namespace wendel
