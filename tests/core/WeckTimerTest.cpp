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

const std::string kDanach = "\r\n";
std::string notiz(const std::string& text) { return kVorsatz + kDanach + text; }
const std::string kTatort = notiz("20:15 Tatort (ARD)");

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
    EXPECT_THAT(hinweis->alleTexte, ElementsAre(notiz("Tee\r\n") + kVorsatz + kDanach + notiz("aus")));
    EXPECT_THAT(ports.klang.gespielt, ElementsAre("\\suite\\wendel.wav"));
    EXPECT_EQ(ports.fenster.vordergrund, FakeHinweisView::kFenster);
    EXPECT_EQ(ports.uhr.schlafdauern, std::vector<int>(14, 100));
    EXPECT_THAT(gespeicherteTermine(),
                ElementsAre(GespeicherterTermin{moment(2012, 12, 25, 20, 1), "Tee", 1, true},
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
        EXPECT_EQ(hinweis->alleTexte.size() == 1, kaesten() <= 6);
        anwendung->DoThis("terminupdate");  // no box on top of this one
    };
    bis(um(20, 1));
    EXPECT_EQ(kaesten(), 6u);
    EXPECT_THAT(hinweis->alleTexte, ElementsAre(notiz("Tee"), notiz("Tee\r\n") + kTatort));
    ports.meldungen.imKasten = nullptr;
    sekunde();
    EXPECT_EQ(hinweis->text, notiz("Tee\r\n") + kTatort + kDanach + notiz("Kuchen"));
    bis(um(23, 30));
    EXPECT_EQ(hinweis->alleTexte.size(), 3u);
    EXPECT_EQ(kaesten(), 14u);
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

// After a gap in the running program it is the same; the simulation has those.
TEST_F(WeckTimer, MissedRemindersOfRunningBroadcastsAreShownOnceAfterTheStartAsWanted) {
    tvDaten.markierungen = {{um(19, 10), um(19, 15), 90, "läuft noch", false},
                            {um(18, 0), um(18, 15), 30, "vorbei", false},
                            {um(20, 2), um(20, 15), 90, "Tatort", false}};
    const std::pair<std::int32_t, std::string> faelle[] = {
        {einstellung::kErinnerung, ""},
        {einstellung::kVerpasste, kTatort},
        {einstellung::kDoppelklick, notiz("19:15 läuft noch (ARD)\r\n") + kTatort}};
    for (const auto& [schalter, text] : faelle) {
        Programm programm;
        programm.tvDaten = tvDaten;
        programm.setze(schalter, Variant::boolesch(false));
        programm.starte();
        programm.bis(um(20, 3));
        EXPECT_EQ(programm.hinweis->text, text);
        programm.beantworte();
        programm.starte();
        programm.bis(um(20, 10));
        EXPECT_FALSE(programm.hinweis->gezeigt);
    }
}

// The database answers again in the middle: the query of the reminders has failed, that of the missed ones
// not.
TEST_F(WeckTimer, MissedRemindersAreOwedUntilTheRemindersWereRead) {
    starte();
    sperre();
    tatortUm(um(20, 10));
    ports.meldungen.imKasten = [&](const auto&) { tvDaten.gesperrt = kaesten() < 3; };
    anwendung->DoThis("terminupdate");
    bis(um(20, 20));
    EXPECT_FALSE(hinweis->gezeigt);
    anwendung->DoThis("terminupdate");
    sekunde();
    EXPECT_EQ(hinweis->text, kTatort);
    EXPECT_EQ(kaesten(), 4u);
}

// The machine sleeps while the box stands, and somebody else marks a broadcast.
TEST_F(WeckTimer, DeclinedBoxDoesNotHideWhatIsFoundOutdatedAfterIt) {
    starte();
    sperre();
    ports.meldungen.imKasten = [&](const auto&) {
        tatortUm(um(20, 10));
        ports.uhr.vor(1200);
        tvDaten.gesperrt = false;
    };
    anwendung->DoThis("terminupdate");
    sekunde();
    EXPECT_EQ(hinweis->text, kTatort);
    EXPECT_EQ(kaesten(), 2u);
}

TEST_F(WeckTimer, SettingsFileThatWasLostAndMadeAnewIsNoDeletion) {
    const GespeicherterTermin bad{um(22, 0), "Bad", 0, true};
    setzeTermine({{um(20, 1), "Tee", 0, true}, bad});
    starte();
    Einstellungen(ports.dateien, kTestordner)
        .SetEinstellungsarray(Variant::array(Array::eindimensional(0, 200)));
    bis(um(20, 2));
    EXPECT_THAT(gespeicherteTermine(), ElementsAre(GespeicherterTermin{um(20, 1), "Tee", 0, false}, bad));
}

// Once for each thing that asks for it. What comes while a box of it stands is one more run afterwards.
TEST_F(WeckTimer, MarksAreMaintainedAtTheStartOnControlLinesAndAfterDueEntriesOnly) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    tatortUm(um(20, 10));
    std::vector<Datum> laeufe;
    ports.datenbanken->vorAnweisung = [&](const std::string& sql) {
        if (sql.find("MaxPos") != std::string::npos) laeufe.push_back(jetzt());
    };
    starte();
    bis(um(20, 15));     // the wait for the notice takes 1.2 s of its minute
    springe(um(21, 0));  // a gap: queries only
    for (const char* zeile : {"terminupdate", "refreshkonfig", "refreshtvdaten", "showwendel"})
        anwendung->DoThis(zeile);
    EXPECT_THAT(laeufe, ElementsAre(um(20, 0), um(20, 1, 1), um(20, 10, 1), um(21, 0), um(21, 0)));
    ports.meldungen.antworten = {Antwort::Wiederholen};
    ports.meldungen.imKasten = [&](const auto&) {
        for (int i = 0; i < 3; ++i)
            anwendung->DoThis("terminupdate");
        tvDaten.gesperrt = false;
    };
    sperre();
    laeufe.clear();
    anwendung->DoThis("terminupdate");
    EXPECT_EQ(laeufe.size(), 3u) << "the statement that failed, its retry, the run that was put off";
    EXPECT_EQ(kaesten(), 1u);
}

// On a medium that cannot be written the notices go on without a box at each.
TEST_F(WeckTimer, ReadOnlyDatabaseIsToldOnceForItsPath) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    tatortUm(um(20, 10));
    ports.datenbanken->vorAnweisung = [](const std::string& sql) {
        if (sql.starts_with(" Delete")) throw Fehler(3027, "DAO.Database", "Schreibgeschützt.");
    };
    starte();
    bis(um(20, 11));
    anwendung->DoThis("terminupdate");
    EXPECT_EQ(hinweis->text, notiz("Tee\r\n") + kTatort);
    EXPECT_EQ(kaesten(), 2u);
    anwendung->DoThis("refreshkonfig");
    EXPECT_EQ(kaesten(), 4u);
}

}  // namespace
}  // namespace wendel
