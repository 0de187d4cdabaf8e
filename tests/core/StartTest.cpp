// From the command line to the ticking program: order, boxes, switches.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

using testing::ElementsAre;
using Kasten = FakeMeldungen::Kasten;

// The calls that begin with one of the names, in their order.
std::vector<std::string> nurAufrufe(const Programm& programm, const std::vector<std::string>& namen) {
    std::vector<std::string> ergebnis;
    for (const std::string& zeile : programm.ports.aufrufe.zeilen) {
        for (const std::string& name : namen) {
            if (zeile.starts_with(name)) ergebnis.push_back(name);
        }
    }
    return ergebnis;
}

TEST(Start, EverythingHappensInItsOrder) {
    Programm programm;
    programm.ports.dateien.lege("\\suite\\hinweise.txt", "20121224195500\t0\toffen\tTee\n");
    ASSERT_EQ(programm.starte(""), Startergebnis::Laeuft);
    EXPECT_THAT(programm.ports.automation.wartemeldung,
                testing::Optional(FakeAutomation::Wartemeldung{
                    "", "Eine Datenbankabfrage läuft bereits. Bitte warten Sie einen Augenblick.", 30000}));
    EXPECT_THAT(
        nurAufrufe(programm,
                   {"FormHinweis.zeigen", "FormWendel.", "TaskleistenSymbol.", "Uhr.nachrichtenVerarbeiten"}),
        ElementsAre("FormHinweis.zeigen", "TaskleistenSymbol.", "Uhr.nachrichtenVerarbeiten", "FormWendel."));
    EXPECT_THAT(
        programm.ports.datenbanken->anweisungen(),
        ElementsAre("Select * from Sender Order by Favorit*10000000+SortNr*10000+SortNrKestrin",
                    testing::StartsWith("Select Distinct Optionen,Datum,Uhrzeit,Sendung,Senderkennung "
                                        "from Markierungen"),
                    testing::HasSubstr("Erinnerung=true"), testing::HasSubstr("Aufzeichnung=true")));
    EXPECT_EQ(programm.hinweis->text, "Sie wollten sich erinnern lassen.\r\nTee");
    EXPECT_TRUE(programm.fenster->gezeigt);
    EXPECT_EQ(programm.fenster->liveUpdate, "Das Live-Update ist momentan deaktiviert.");
    EXPECT_EQ(programm.anwendung->werte().hauptanwendungTitel, "Kestrin Pirrow");
    EXPECT_EQ(programm.anwendung->werte().hilfedatei, "\\suite\\fennow.hlp");
    EXPECT_TRUE(programm.ports.meldungen.gezeigt.empty());
}

TEST(Start, SwitchesAreFoundAnywhereInTheCommandLine) {
    struct Zeile {
        const char* befehlszeile;
        bool gewartet, sichtbar, maus;
    };
    const Zeile zeilen[] = {
        {"", false, true, true},
        {"/m", false, false, true},
        {"/M", false, false, true},
        {"xx/mxx", false, false, true},
        {"/pcstart", true, true, true},
        {"/PCStart /m", true, false, true},
        {"/notrayreaction", false, true, false},
        {"/NOTRAYREACTION", false, true, true},
        {"/d:31.12.98 /z:20:15", false, true, true},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.befehlszeile);
        Programm programm;
        const auto beginn = programm.ports.uhr.laufzeitMs();
        ASSERT_EQ(programm.starte(zeile.befehlszeile), Startergebnis::Laeuft);
        EXPECT_EQ(programm.ports.uhr.laufzeitMs() - beginn, zeile.gewartet ? 60000 : 0);
        EXPECT_EQ(programm.ports.uhr.schlafdauern, std::vector<int>(zeile.gewartet ? 60 : 0, 1000));
        EXPECT_EQ(programm.fenster->gezeigt, zeile.sichtbar);
        EXPECT_EQ(programm.anwendung->fensterNachricht(1025, 1, 512), zeile.maus);
    }
}

TEST(Start, WaitAfterSystemStartIgnoresClockSteps) {
    Programm programm;
    programm.ports.uhr.beimSchlafen = [&](int) { programm.ports.uhr.stelle(moment(2013, 6, 1)); };
    programm.starte("/pcstart");
    EXPECT_EQ(programm.ports.uhr.schlafdauern.size(), 60u);
}

TEST(Start, HelpBoxAndNothingElse) {
    Programm programm;
    EXPECT_EQ(programm.starte("/m /?"), Startergebnis::Hilfe);
    EXPECT_THAT(programm.ports.meldungen.gezeigt,
                ElementsAre(Kasten{"Folgende Parameter können verwendet werden:\r\n"
                                   "/m\t\t minimiert das Fenster\r\n"
                                   "/d:31.12.98\t setzt das Weckdatum\r\n"
                                   "/z:20:15\t\t setzt die Weckzeit\r\n"
                                   "/notrayreaction\t (reserviert für Programmierer)\r\n"
                                   "/?\t\t zeigt diese Hilfe\r\n",
                                   64, "Mögliche Startparameter"}));
    EXPECT_FALSE(programm.fenster->gezeigt);
    EXPECT_TRUE(programm.ports.symbol.symbole.empty());
    EXPECT_EQ(programm.ports.datenbanken->geoeffnet, 0);
    programm.springe(um(21, 0));
    EXPECT_EQ(programm.ports.aufrufe.anzahl(Portart::Dateisystem), 0);
}

TEST(Start, SecondCopyEndsSilentlyWithoutTouchingAnything) {
    Programm programm;
    programm.ersteKopie = false;
    for (const char* zeile : {"", "/?"}) {
        EXPECT_EQ(programm.starte(zeile), Startergebnis::ZweiteKopie);
        EXPECT_FALSE(programm.fenster->geladen);
    }
    EXPECT_TRUE(programm.ports.meldungen.gezeigt.empty());
    EXPECT_EQ(programm.ports.aufrufe.anzahl(Portart::Dateisystem), 0);
    EXPECT_EQ(programm.ports.aufrufe.anzahl(Portart::TaskleistenSymbol), 0);
}

TEST(Start, AsksForEachPathThatIsNotThere) {
    struct Zeile {
        const char* name;
        Antwort datenbank, ordner;
        const char *datei, *hyperlinks;
    };
    const Zeile zeilen[] = {
        {"local ones", Antwort::Ja, Antwort::Ja, "\\suite\\tvdaten.mdb", "\\suite\\Hyperlinks\\"},
        {"configured ones", Antwort::Nein, Antwort::Nein, "d:\\tv\\tv.mdb", "d:\\tv\\links\\"},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.name);
        Programm programm;
        programm.setze(einstellung::kDatenbank, Variant::text("d:\\tv\\tv.mdb"));
        programm.setze(einstellung::kHyperlinks, Variant::text("d:\\tv\\links"));
        programm.ports.meldungen.antworten = {zeile.datenbank, zeile.ordner};
        programm.starte();
        EXPECT_THAT(
            programm.ports.meldungen.gezeigt,
            ElementsAre(Kasten{"Die Datenbankdatei \"d:\\tv\\tv.mdb\" kann nicht gefunden werden.\r\n"
                               "Möchten Sie stattdessen die lokale Datenbankdatei verwenden?",
                               52, "Datenbankdatei"},
                        Kasten{"Der Hyperlinks-Ordner \"d:\\tv\\links\\\" kann nicht gefunden werden.\r\n"
                               "Möchten Sie stattdessen den lokalen Ordner verwenden?",
                               52, "Hyperlinks-Ordner"}));
        EXPECT_EQ(programm.anwendung->werte().datenbankdatei, zeile.datei);
        EXPECT_EQ(programm.anwendung->werte().hyperlinksOrdner, zeile.hyperlinks);
        EXPECT_EQ(programm.anwendung->werte().guideKonfigurationsdatei, "kestrin.cfg");
    }
}

TEST(Start, LockedDatabaseLeavesIconTimerAndOwnAppointments) {
    Programm programm;
    programm.tvDaten.gesperrt = true;
    programm.tvDaten.sperrnummer = 3343;
    programm.setzeTermine({{um(20, 5), "Tee", 0, true}});
    ASSERT_EQ(programm.starte(), Startergebnis::Laeuft);
    EXPECT_EQ(programm.ports.symbol.symbole.size(), 1u);
    EXPECT_FALSE(programm.ports.meldungen.gezeigt.empty());
    programm.bis(um(20, 5));
    EXPECT_EQ(programm.hinweis->text, "Sie wollten sich erinnern lassen.\r\nTee");
}

TEST(Start, AnswerDuringStartupKeepsTheStoredAppointments) {
    Programm programm;
    programm.ports.dateien.lege("\\suite\\hinweise.txt", "20121224195500\t0\toffen\tTee\n");
    programm.setzeTermine({{um(21, 0), "Kuchen", 0, true}});
    programm.setze(einstellung::kDatenbank, Variant::text("d:\\fehlt.mdb"));
    programm.ports.meldungen.imKasten = [&](const Kasten&) { programm.beantworte(1); };
    programm.starte();
    EXPECT_THAT(programm.gespeicherteTermine(), ElementsAre(GespeicherterTermin{um(21, 0), "Kuchen", 0, true},
                                                            GespeicherterTermin{um(20, 2), "Tee", 0, true}));
}

TEST(Start, EndingWhileItStartsLeavesNoIcon) {
    Programm programm;
    programm.erschaffe("");
    programm.ports.uhr.beiNachrichten = [&] { programm.anwendung->beenden(); };
    EXPECT_EQ(programm.anwendung->starten(), Startergebnis::Beendet);
    EXPECT_TRUE(programm.ports.symbol.symbole.empty());
    EXPECT_FALSE(programm.fenster->geladen);
}

TEST(Start, ControlLinesThatComeTooEarlyActAfterwards) {
    Programm programm;
    programm.erschaffe("/m");
    programm.anwendung->DoThis("showwendel");
    EXPECT_EQ(programm.fenster->nachVornGeholt, 0);
    programm.anwendung->starten();
    EXPECT_EQ(programm.fenster->nachVornGeholt, 1);
}

TEST(Hauptanwendung, DoubleClickSendsStartsOrTells) {
    struct Zeile {
        const char* name;
        bool fenster, prozess;
        int starterergebnis;
        std::vector<FakeAutomation::Ruf> rufe;
        std::vector<FakeStarter::Start> starts;
        std::vector<Kasten> kaesten;
    };
    const FakeStarter::Start start{"\\suite\\fennow.exe", "/commandtext=\"Aktivieren\"", "\\suite", 1};
    const Zeile zeilen[] = {
        {"window and process", true, true, 33, {{"Fennow.Open", "Aktivieren"}}, {}, {}},
        {"window of something else", true, false, 33, {}, {}, {}},
        {"not running", false, false, 33, {}, {start}, {}},
        {"cannot be started",
         false,
         false,
         2,
         {},
         {start},
         {{"Die folgende Datei kann nicht gestartet werden:\r\n\"\\suite\\fennow.exe "
           "/commandtext=\"Aktivieren\"",
           48, "Fehler"}}},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.name);
        Programm programm;
        programm.setze(einstellung::kDoppelklick, Variant::integer(1));
        programm.ports.dateien.lege("\\suite\\kestrin.cfg", "appname=Guide\r\n");
        if (zeile.fenster) programm.ports.fenster.fenster[9] = {"Guide", 9, false, true};
        if (zeile.prozess) programm.ports.prozesse.laufende = {{"\\suite\\fennow.exe", 5}};
        programm.ports.starter.ergebnis = zeile.starterergebnis;
        programm.starte();
        EXPECT_TRUE(programm.anwendung->fensterNachricht(1025, 1, 515));
        EXPECT_EQ(programm.ports.automation.rufe, zeile.rufe);
        EXPECT_EQ(programm.ports.starter.gestartet, zeile.starts);
        EXPECT_EQ(programm.ports.meldungen.gezeigt, zeile.kaesten);
        EXPECT_EQ(programm.fenster->nachVornGeholt, 0);
    }
}

}  // namespace
}  // namespace wendel
