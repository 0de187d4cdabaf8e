// From the command line to the ticking program: order, boxes, switches.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Kasten = FakeMeldungen::Kasten;

constexpr const char* kOffenerHinweis = "20121224195500\t0\toffen\tTee\n";

struct Start : testing::Test, Programm {};

TEST_F(Start, EverythingHappensInItsOrder) {
    ports.dateien.lege("\\suite\\hinweise.txt", kOffenerHinweis);
    ASSERT_EQ(starte(""), Startergebnis::Laeuft);
    std::vector<std::string> reihe;
    for (const std::string& zeile : ports.aufrufe.zeilen) {
        const std::string teil = zeile.substr(0, zeile.find_first_of("(."));
        if (teil != "Dateisystem" && teil != "Datenbank" && teil != "Fenstersystem") reihe.push_back(zeile);
    }
    EXPECT_THAT(reihe,
                ElementsAre("Automation.setzeWartemeldung(, Eine Datenbankabfrage läuft bereits. Bitte "
                            "warten Sie einen Augenblick., 30000)",
                            "FormHinweis.zeigen", "Klang.ausgabegeraete()",
                            "Klang.spieleAsynchron(\\suite\\wendel.wav)", "Rechner.rechnername()",
                            "Rechner.rechnername()", "TaskleistenSymbol.hinzufuegen()",
                            "Uhr.nachrichtenVerarbeiten()", "FormWendel.zeigen"));
    // The maintenance, nine statements without any mark, deletes what the query of missed reminders has read.
    std::vector<std::string> anweisungen = ports.datenbanken->anweisungen();
    ASSERT_EQ(anweisungen.size(), 18u);
    anweisungen.erase(anweisungen.begin() + 3, anweisungen.begin() + 10);
    EXPECT_THAT(anweisungen,
                ElementsAre("Select * from Sender Order by Favorit*10000000+SortNr*10000+SortNrKestrin",
                            HasSubstr("Optionen,Datum,Uhrzeit,Dauer"), HasSubstr("MaxPos"),
                            HasSubstr("having min(pos)"), HasSubstr("Optionen,Datum,Uhrzeit,Sendung,"),
                            HasSubstr("Aufzeichnung=true"), HasSubstr("Beginn>#"),
                            HasSubstr("Senderkennung in('ARD')"), HasSubstr("Beginn>=#12/24/2012 20:15:00#"),
                            HasSubstr("#12/24/2012 21:00:00#"), HasSubstr("Bewertung=4")));
    EXPECT_EQ(hinweis->text, "Sie wollten sich erinnern lassen.\r\nTee");
    EXPECT_TRUE(ports.meldungen.gezeigt.empty());
}

// The wait counts on the clock that no step moves.
TEST_F(Start, SwitchesAreFoundAnywhereInTheCommandLine) {
    const struct {
        const char* befehlszeile;
        bool gewartet, sichtbar, maus;
    } zeilen[] = {{"xx/Mxx", false, false, true},
                  {"/PCStart /m", true, false, true},
                  {"/notrayreaction", false, true, false},
                  {"/NOTRAYREACTION /d:31.12.98 /z:20:15", false, true, true}};
    for (const auto& zeile : zeilen) {
        SCOPED_TRACE(zeile.befehlszeile);
        Programm programm;
        programm.ports.uhr.beimSchlafen = [&](int) { programm.ports.uhr.stelle(moment(2013, 6, 1)); };
        ASSERT_EQ(programm.starte(zeile.befehlszeile), Startergebnis::Laeuft);
        EXPECT_EQ(programm.ports.uhr.schlafdauern, std::vector<int>(zeile.gewartet ? 60 : 0, 1000));
        EXPECT_EQ(programm.fenster->gezeigt, zeile.sichtbar);
        EXPECT_EQ(programm.anwendung->fensterNachricht(1025, 1, 512), zeile.maus);
    }
}

TEST_F(Start, HelpBoxAndSecondCopyOpenNothing) {
    EXPECT_EQ(starte("/m /?"), Startergebnis::Hilfe);
    springe(um(21, 0));
    ersteKopie = false;
    EXPECT_EQ(starte("/?"), Startergebnis::ZweiteKopie);
    EXPECT_FALSE(fenster->geladen);
    EXPECT_THAT(ports.meldungen.gezeigt,
                ElementsAre(Kasten{"Folgende Parameter können verwendet werden:\r\n"
                                   "/m\t\t minimiert das Fenster\r\n"
                                   "/d:31.12.98\t setzt das Weckdatum\r\n"
                                   "/z:20:15\t\t setzt die Weckzeit\r\n"
                                   "/notrayreaction\t (reserviert für Programmierer)\r\n"
                                   "/?\t\t zeigt diese Hilfe\r\n",
                                   64, "Mögliche Startparameter"}));
    EXPECT_EQ(ports.aufrufe.anzahl("Dateisystem"), 0);
    EXPECT_TRUE(ports.symbol.symbole.empty());
}

TEST_F(Start, AsksForEachPathThatIsNotThere) {
    setze(einstellung::kDatenbank, Variant::text("d:\\tv\\tv.mdb"));
    setze(einstellung::kHyperlinks, Variant::text("d:\\tv\\links"));
    ports.meldungen.antworten = {Antwort::Ja, Antwort::Nein};
    starte();
    EXPECT_THAT(ports.meldungen.gezeigt,
                ElementsAre(Kasten{"Die Datenbankdatei \"d:\\tv\\tv.mdb\" kann nicht gefunden werden.\r\n"
                                   "Möchten Sie stattdessen die lokale Datenbankdatei verwenden?",
                                   52, "Datenbankdatei"},
                            Kasten{"Der Hyperlinks-Ordner \"d:\\tv\\links\\\" kann nicht gefunden werden.\r\n"
                                   "Möchten Sie stattdessen den lokalen Ordner verwenden?",
                                   52, "Hyperlinks-Ordner"}));
    EXPECT_EQ(anwendung->werte().datenbankdatei, "\\suite\\tvdaten.mdb");
    EXPECT_EQ(anwendung->werte().hyperlinksOrdner, "d:\\tv\\links\\");
}

// All that can go wrong at once: no database, boxes, a notice answered and lines received inside them.
TEST_F(Start, BoxesLoseNoAppointmentAndNoControlLine) {
    ports.dateien.lege("\\suite\\hinweise.txt", kOffenerHinweis);
    setzeTermine({{um(21, 0), "Kuchen", 0, true}});
    tvDaten.gesperrt = true;
    ports.meldungen.imKasten = [&](const Kasten&) {
        beantworte(1);
        anwendung->DoThis("showwendel");
        EXPECT_EQ(fenster->nachVornGeholt, 0);
    };
    ASSERT_EQ(starte(), Startergebnis::Laeuft);
    ports.meldungen.imKasten = nullptr;
    EXPECT_GT(ports.meldungen.gezeigt.size(), 1u);
    EXPECT_EQ(fenster->nachVornGeholt, 1);
    EXPECT_EQ(ports.symbol.symbole.size(), 1u);
    EXPECT_EQ(gespeicherteTermine().size(), 2u);
    bis(um(21, 0));
    EXPECT_THAT(hinweis->text, HasSubstr("Kuchen"));
}

TEST_F(Start, DoubleClickOnTheIconStartsTheSuiteOrSendsToIt) {
    setze(einstellung::kDoppelklick, Variant::integer(1));
    starte();
    anwendung->fensterNachricht(1025, 1, 515);
    ports.fenster.fenster[9] = {"Kestrin Pirrow", 9};
    ports.prozesse.laufende = {{"\\suite\\fennow.exe", 5}};
    anwendung->fensterNachricht(1025, 1, 515);
    EXPECT_EQ(ports.starter.gestartet,
              (std::vector<FakeStarter::Start>{
                  {"\\suite\\fennow.exe", "/commandtext=\"Aktivieren\"", "\\suite", 1}}));
    EXPECT_EQ(ports.automation.rufe, (std::vector<FakeAutomation::Ruf>{{"Fennow.Open", "Aktivieren"}}));
}

}  // namespace
}  // namespace wendel
