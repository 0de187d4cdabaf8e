// The tick: what fires when, whatever clock, machine and database do. Everything at random, kills included,
// is the simulation's; here are the exact texts and what it does not meet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

using testing::ElementsAre;

constexpr const char* kVorsatz = "Sie wollten sich erinnern lassen.";
constexpr int kSofortKasten = 3078;  // no locking conflict: two boxes at once for each query

std::string notiz(const std::string& text) { return std::string(kVorsatz) + "\r\n" + text; }
const std::string kTatort = notiz("20:15 Tatort (ARD)");
const std::string kDanach = "\r\n";

class WeckTimer : public testing::Test, protected Programm {
  protected:
    void tatortUm(Datum wann) { tvDaten.markierungen = {{wann, um(20, 15), 90, "Tatort", false}}; }
    void sperre() { tvDaten.gesperrt = true, tvDaten.sperrnummer = kSofortKasten; }
    std::size_t kaesten() { return ports.meldungen.gezeigt.size(); }
};

TEST_F(WeckTimer, TwoAppointmentsDueInOneTickGiveOneNotice) {
    setzeTermine({{um(20, 1), "Tee", 1, true},
                  {um(20, 1), "(KURZZEITerinnerung)", 0, true},
                  {um(20, 1), "aus", 0, false}});  // ahead at the start and therefore revived
    starte();
    bis(um(20, 0, 59));
    EXPECT_FALSE(hinweis->gezeigt);
    sekunde();
    EXPECT_EQ(hinweis->titel, "Termin");
    EXPECT_THAT(hinweis->alleTexte, ElementsAre(notiz("Tee\r\n") + kVorsatz + kDanach + notiz("aus")));
    EXPECT_THAT(ports.klang.gespielt, ElementsAre("\\suite\\wendel.wav"));
    EXPECT_EQ(ports.fenster.vordergrund, FakeHinweisView::kFenster);
    EXPECT_EQ(ports.uhr.schlafdauern, std::vector<int>(12, 100));
    ports.klang.geraete = 0;
    springe(moment(2012, 12, 31, 20, 1));  // a week of sleep
    EXPECT_EQ(hinweis->alleTexte.size(), 2u);
    EXPECT_EQ(ports.klang.gespielt.size(), 1u);
    EXPECT_THAT(gespeicherteTermine(),
                ElementsAre(GespeicherterTermin{moment(2013, 1, 1, 20, 1), "Tee", 1, true},
                            GespeicherterTermin{um(20, 1), "(KURZZEITerinnerung)", 0, false},
                            GespeicherterTermin{um(20, 1), "aus", 0, false}));
}

// Own appointments and reminders come due while a box of the tick stands for hours; a second box must not
// keep the appointments back.
TEST_F(WeckTimer, TickInItsOwnBoxDoesNothingAndAfterItAllIsShownOnce) {
    setzeTermine({{um(20, 1), "Tee", 0, true}, {um(22, 0), "Kuchen", 0, true}});
    tatortUm(um(20, 10));
    starte();
    sperre();
    ports.meldungen.imKasten = [&](const auto&) {
        if (kaesten() == 1) bis(um(23, 0));
        EXPECT_EQ(hinweis->alleTexte.size() == 1, kaesten() <= 4);
        anwendung->DoThis("terminupdate");  // no box on top of this one
    };
    bis(um(20, 1));
    EXPECT_EQ(kaesten(), 4u);
    EXPECT_THAT(hinweis->alleTexte, ElementsAre(notiz("Tee"), notiz("Tee\r\n") + kTatort));
    ports.meldungen.imKasten = nullptr;
    sekunde();
    EXPECT_EQ(hinweis->text, notiz("Tee\r\n") + kTatort + kDanach + notiz("Kuchen"));
    bis(um(23, 30));
    EXPECT_EQ(hinweis->alleTexte.size(), 3u);
    EXPECT_EQ(kaesten(), 10u);
}

// A box that a control line has brought: ticks go on showing, without boxes of their own.
TEST_F(WeckTimer, BoxOfAControlLineSilencesNothingAndDoesNotPileUp) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    tatortUm(um(20, 10));
    starte();
    sperre();
    int tiefe = 0;
    ports.meldungen.imKasten = [&](const auto&) {
        EXPECT_EQ(++tiefe, 1);
        for (int i = 0; kaesten() == 1 && i < 9; ++i)
            anwendung->DoThis(i % 2 ? "terminupdate" : "refreshkonfig");
        bis(um(20, 12));
        --tiefe;
    };
    anwendung->DoThis("refreshkonfig");
    EXPECT_THAT(hinweis->alleTexte, ElementsAre(notiz("Tee"), notiz("Tee\r\n") + kTatort));
}

TEST_F(WeckTimer, ReminderThatComesDueWhileTheTickWorksIsAppended) {
    setzeTermine({{um(20, 9, 59), "Tee", 0, true}});
    tatortUm(um(20, 10));
    starte();
    bis(um(20, 12));  // the wait of 1.2 s passes the full minute
    EXPECT_THAT(hinweis->alleTexte, ElementsAre(notiz("Tee"), notiz("Tee\r\n") + kTatort));
}

TEST_F(WeckTimer, DueReminderSurvivesAFailedAndAnEmptyQuery) {
    tatortUm(um(20, 10));
    starte();
    sperre();
    anwendung->DoThis("terminupdate");
    tvDaten = {};
    ports.uhr.vor(662);  // the database calls it past now
    anwendung->DoThis("terminupdate");
    anwendung->tick();
    EXPECT_EQ(hinweis->text, kTatort);
}

// One kept, one of a running broadcast, one of a broadcast that is over.
TEST_F(WeckTimer, MissedRemindersAreShownOnceAfterStartAndAfterAGap) {
    for (const bool nachStart : {true, false}) {
        tvDaten.markierungen = {};
        ports.dateien.entferne("\\suite\\hinweise.txt");
        ports.uhr.stelle(um(17, 0));
        if (!nachStart) starte();
        tvDaten.markierungen = {{um(19, 10), um(19, 15), 90, "läuft noch", false},
                                {um(19, 40), um(19, 55), 30, "auch", false},
                                {um(18, 0), um(18, 15), 30, "vorbei", false}};
        ports.uhr.stelle(um(20, 0));
        if (nachStart) starte();
        sekunde();
        EXPECT_EQ(hinweis->text, notiz("19:15 läuft noch (ARD)\r\n") + notiz("19:55 auch (ARD)"));
        beantworte();
        starte();
        bis(um(20, 10));
        EXPECT_FALSE(hinweis->gezeigt);
    }
}

// The database answers again in the middle: the query of the reminders has failed, that of the missed ones
// not.
TEST_F(WeckTimer, MissedRemindersAreOwedUntilTheRemindersWereRead) {
    starte();
    sperre();
    tatortUm(um(20, 10));
    ports.meldungen.imKasten = [&](const auto&) { tvDaten.gesperrt = false; };
    anwendung->DoThis("terminupdate");
    bis(um(20, 20));
    EXPECT_FALSE(hinweis->gezeigt);
    anwendung->DoThis("terminupdate");
    sekunde();
    EXPECT_EQ(hinweis->text, kTatort);
    EXPECT_EQ(kaesten(), 2u);
}

TEST_F(WeckTimer, NothingIsShownThatTheUserDoesNotWant) {
    for (const auto schalter : {einstellung::kErinnerung, einstellung::kVerpasste}) {
        setze(einstellung::kErinnerung, Variant::boolesch(true));
        setze(schalter, Variant::boolesch(false));
        tatortUm(schalter == einstellung::kErinnerung ? um(20, 10) : um(19, 10));
        ports.uhr.stelle(um(20, 0));
        starte();
        bis(um(20, 11));
        EXPECT_FALSE(hinweis->gezeigt);
    }
}

TEST_F(WeckTimer, EntriesFireOnceInBothNightsOfSummerTime) {
    const std::pair<Datum, Datum> spruenge[] = {{moment(2012, 3, 25, 1, 59, 59), moment(2012, 3, 25, 3)},
                                                {moment(2012, 10, 28, 2, 59, 59), moment(2012, 10, 28, 2)}};
    for (const auto& [vorher, nachher] : spruenge) {
        for (const std::int16_t intervallwert : {intervall::kEinmal, intervall::kTaeglich}) {
            SCOPED_TRACE(datumAlsText(nachher) + (intervallwert ? ", daily" : ", once"));
            Programm programm;
            programm.ports.uhr.stelle(vorher.plusSekunden(-2400));
            const Datum faellig = nachher.datumsteil() + TimeSerial(2, 30, 0);
            programm.setzeTermine({{faellig, "Tee", intervallwert, true}});
            programm.tvDaten.markierungen = {{faellig, faellig.plusSekunden(900), 300, "Film", false}};
            programm.starte();
            programm.bis(vorher);
            programm.springe(nachher);
            programm.bis(faellig.plusSekunden(-600));
            programm.starte();  // a restart within the hour that comes twice
            programm.bis(faellig.plusSekunden(7200));
            EXPECT_EQ(programm.hinweis->text, notiz("Tee\r\n") + notiz("02:45 Film (ARD)"));
        }
    }
}

TEST_F(WeckTimer, EndingDuringTheWaitShowsTheNoticeAtTheNextStart) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    starte();
    ports.uhr.beiNachrichten = [&] { anwendung->beenden(); };
    bis(um(20, 1));
    EXPECT_FALSE(hinweis->gezeigt);
    ports.uhr.beiNachrichten = nullptr;
    starte();
    bis(um(20, 10));
    EXPECT_THAT(hinweis->alleTexte, ElementsAre(notiz("Tee")));
}

// The second time the clock has gone back, and the same text is snoozed to a moment known as shown.
TEST_F(WeckTimer, SnoozedNoticeFiresAtItsMinuteAlsoAfterARestart) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    starte();
    for (const int sekunden : {0, 1}) {
        springe(um(20, 1, 30));
        beantworte(1);
        EXPECT_THAT(gespeicherteTermine().back(), (GespeicherterTermin{um(20, 3, sekunden), "Tee", 0, true}));
        EXPECT_EQ(ports.symbol.tooltip(), "Lomrick: heute 20:03 Tee");
        starte();
        bis(um(20, 2, 59));
        EXPECT_FALSE(hinweis->gezeigt);
        bis(um(20, 3, sekunden));
        EXPECT_EQ(hinweis->text, notiz("Tee"));
    }
}

// All calls but clock readings, over an hour in which nothing is due, and no new icon while its text is the
// same. The window is told the time left each minute; that is no port.
TEST_F(WeckTimer, IdleHourTouchesNothing) {
    setzeTermine({{um(23, 0), "Tee", 0, true}, {um(22, 0), "aus", 1, false}});
    tatortUm(um(23, 10));
    starte();
    bis(um(20, 1));
    ports.aufrufe.leeren();
    const int gesetzt = fenster->zeilenGesetzt;
    bis(um(21, 1));
    EXPECT_EQ(ports.aufrufe.anzahlOhneUhr(), 0);
    EXPECT_LE(fenster->zeilenGesetzt - gesetzt, 60);
}

}  // namespace
}  // namespace wendel
