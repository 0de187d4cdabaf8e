// Recordings from the mark to the line in the log. The script "starts" programs named after its lists, so
// that the port's journal tells what ran. Everything at random is the simulation's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"
#include "platform/Text.h"

namespace wendel {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Texte = std::vector<std::string>;

const std::string kSkript =
    "<kestrin pirrow aufzeichnungsskript 1.0>\n"
    "tvanwendungdatei=[TVSoftwarePfad]\\tv.exe\n"
    "befehlanwendungstarten=anwendungstarten,an\n"
    "befehlkanalwechseln=anwendungstarten,kanal [Kanal]\n"
    "befehlaufnahmestarten=anwendungstarten,rec [Titel]\n"
    "befehlaufnahmebeenden=anwendungstarten,stop\n"
    "befehlanwendungbeenden=anwendungstarten,aus\n";
const std::string kTatort = "\"Tatort\" (ARD, 20:10 bis 21:55)";

struct Aufzeichnungen : testing::Test, Programm {
    Aufzeichnungen() {
        skript(kSkript);
        setze(einstellung::kSkript, Variant::text("tv.cfs"));
        marken({{um(20, 15), 90, "Tatort"}});
    }

    struct Marke {
        Datum beginn;
        int dauer;
        std::string titel;
    };
    void marken(const std::vector<Marke>& neue) {
        tvDaten.markierungen.clear();
        for (const Marke& m : neue)
            tvDaten.markierungen.push_back({Datum(), m.beginn, m.dauer, m.titel, true});
        if (anwendung) anwendung->DoThis("terminupdate");
    }
    void skript(const std::string& inhalt) { ports.dateien.lege("\\suite\\tv.cfs", inhalt); }
    // Kills the program as soon as this command has run.
    void stirbNach(const std::string& befehl) {
        ports.uhr.beiNachrichten = [this, befehl] {
            if (!befehle().empty() && befehle().back() == befehl) throw Absturz();
        };
        EXPECT_THROW(bis(um(23, 0)), Absturz);
        ports.uhr.beiNachrichten = nullptr;
        toete();
    }
    void fehlt(std::set<std::string> programme) {
        ports.fernsteuerung.fehlendeProgramme = std::move(programme);
    }
    void unlesbar(const std::string& datei) {
        ports.dateien.scheitert = [=](const auto& was, const auto& p) {
            return was == "lesen" && p == datei;
        };
    }
    void lies() { anwendung->DoThis("refreshkonfig"); }
    void vorUndNachlauf(std::int16_t vor, std::int16_t nach) {
        setze(einstellung::kVorlauf, Variant::integer(vor));
        setze(einstellung::kNachlauf, Variant::integer(nach));
        lies();
    }
    void neustartUm(Datum wann) {
        toete();
        ports.uhr.stelle(wann);
        starte();
    }

    Texte befehle() {
        constexpr std::string_view kAnfang = "Fernsteuerung.starteBefehlszeile(";
        Texte ergebnis;
        for (const std::string& zeile : ports.aufrufe.zeilen)
            if (zeile.starts_with(kAnfang))
                ergebnis.push_back(zeile.substr(kAnfang.size(), zeile.size() - kAnfang.size() - 1));
        return ergebnis;
    }
    std::string protokoll() {
        return ersetzt(ports.dateien.inhalt("\\suite\\aufzeichnungen.log").value_or(""),
                       "24.12.2012 20:10 | ARD | Tatort | ", "");
    }
    Texte zeilentexte() {
        Texte texte;
        for (const Terminzeile& zeile : fenster->zeilen)
            texte.push_back(zeile.text + "|" + zeile.rest);
        return texte;
    }
};

TEST_F(Aufzeichnungen, RecordingRunsFromItsNoticeToItsLine) {
    setze(einstellung::kDebuganzeige, Variant::boolesch(true));
    starte();
    bis(um(20, 8, 59));
    EXPECT_FALSE(aufzeichnungsHinweis.gezeigt || ports.energie.wach);
    sekunde();
    EXPECT_TRUE(aufzeichnungsHinweis.gezeigt && ports.energie.wach);
    bis(um(20, 9, 59));
    EXPECT_THAT(befehle(), IsEmpty());
    ports.uhr.beiNachrichten = [&] {
        EXPECT_FALSE(aufzeichnungsHinweis.gezeigt);
        anwendung->tick();  // starts nothing else
        if (befehle() == Texte{"an"}) {
            const std::string datei = ports.dateien.inhalt("\\suite\\aufzeichnung.txt").value_or("");
            EXPECT_THAT(datei, HasSubstr("startet\t"));
        }
    };
    sekunde();
    ports.uhr.beiNachrichten = nullptr;
    EXPECT_THAT(befehle(), ElementsAre("an", "kanal ARD", "rec Tatort"));
    EXPECT_THAT(zeilentexte(), ElementsAre("20:15 Tatort (ARD) (Aufzeichnung 20:10 bis 21:55)|läuft"));
    bis(um(21, 50));
    anwendung->DoThis("terminupdate");  // the query leaves it out, and the mark is deleted
    EXPECT_THAT(zeilentexte(), SizeIs(1));
    EXPECT_TRUE(aufzeichnungsskript.gezeigt);
    bis(um(21, 54, 59));
    form().imTVZeigen("ARD");  // not now
    tvDaten.markierungen.push_back({Datum(), um(23, 0), 30, "Neu", true});
    EXPECT_THAT(befehle(), SizeIs(3));
    EXPECT_TRUE(ports.energie.wach);
    sekunde();
    EXPECT_THAT(befehle(), ElementsAre("an", "kanal ARD", "rec Tatort", "stop", "aus"));
    EXPECT_EQ(protokoll(), "aufgezeichnet\n");
    EXPECT_THAT(zeilentexte(), ElementsAre("23:00 Neu (ARD) (Aufzeichnung 22:55 bis 23:40)|1 h"));
    EXPECT_FALSE(aufzeichnungsskript.gezeigt);
    ports.uhr.stelle(um(20, 10));  // the hour that comes twice
    marken({{um(20, 15), 90, "Tatort"}});
    bis(um(22, 0));
    EXPECT_THAT(befehle(), SizeIs(5));
    EXPECT_EQ(protokoll(), "aufgezeichnet\n");
    EXPECT_FALSE(ports.energie.wach);
    EXPECT_THAT(ports.meldungen.fehler, IsEmpty());
}

struct Fall {
    const char* name;
    std::function<void(Aufzeichnungen&)> tue;  // the program runs since 20:00
    Texte befehle;
    std::string protokoll;
};
struct Ausgang : Aufzeichnungen, testing::WithParamInterface<Fall> {};

TEST_P(Ausgang, IsOneLineAndEveryCommandAtItsPlace) {
    starte();
    GetParam().tue(*this);
    EXPECT_EQ(befehle(), GetParam().befehle);
    EXPECT_EQ(protokoll(), GetParam().protokoll);
    sekunde();
    EXPECT_FALSE(ports.energie.wach);
}

using A = Aufzeichnungen;
const Texte kAn{"an", "kanal ARD", "rec Tatort"}, kZu{"stop", "aus"}, kKeine;
Texte folge(std::initializer_list<Texte> teile) {
    Texte alle;
    for (const Texte& teil : teile)
        alle.insert(alle.end(), teil.begin(), teil.end());
    return alle;
}
const std::string kAnFehlt =
    "fehlgeschlagen in Zeile 3: Die Anwendung \"an\" konnte nicht gestartet werden.\n";
const std::string kStopFehlt =
    "aufgezeichnet; Ende fehlgeschlagen in Zeile 6: Die Anwendung \"stop\" konnte nicht gestartet werden.\n";

INSTANTIATE_TEST_SUITE_P(
    Aufzeichnung, Ausgang,
    testing::Values(
        Fall{"StartedLate", [](A& a) { a.neustartUm(um(20, 12)), a.bis(um(22, 0)); }, folge({kAn, kZu}),
             "aufgezeichnet, 2 min verspätet begonnen\n"},
        Fall{"Asleep", [](A& a) { a.springe(um(23, 0)); }, kKeine, "verpasst: Rechner schlief\n"},
        Fall{"Off", [](A& a) { a.neustartUm(um(23, 0)), a.sekunde(); }, kKeine,
             "verpasst: Programm lief nicht\n"},
        Fall{"NoScript", [](A& a) { a.skript("x"), a.lies(), a.bis(um(22, 0)); }, kKeine,
             "verpasst: kein Skript\n"},
        Fall{"Withdrawn",
             [](A& a) {
                 a.bis(um(20, 9, 30)), a.marken({}), a.bis(um(22, 0));
                 EXPECT_FALSE(a.aufzeichnungsHinweis.gezeigt);
             },
             kKeine, ""},
        Fall{"WithdrawnAfterAFailedStart",
             [](A& a) {
                 a.setze(einstellung::kDebuganzeige, Variant::boolesch(true));
                 a.fehlt({"rec Tatort"}), a.bis(um(20, 10)), a.marken({});
                 EXPECT_FALSE(a.aufzeichnungsskript.gezeigt);
                 a.bis(um(22, 0));
             },
             folge({kAn, kZu}), ""},
        Fall{"WithdrawnWhileTheStateFileCouldNotBeRead",
             [](A& a) {
                 a.unlesbar("\\suite\\aufzeichnung.txt");
                 a.neustartUm(um(20, 5)), a.marken({}), a.bis(um(20, 7));
                 a.ports.dateien.scheitert = nullptr, a.bis(um(22, 0));
             },
             kKeine, ""},
        Fall{"WithdrawnTooLate", [](A& a) { a.bis(um(20, 30)), a.marken({}), a.bis(um(22, 0)); },
             folge({kAn, kZu}), "aufgezeichnet\n"},
        Fall{"LeadChangedMeanwhile",
             [](A& a) { a.bis(um(20, 11)), a.vorUndNachlauf(1, 10), a.bis(um(22, 0)); }, folge({kAn, kZu}),
             "aufgezeichnet\n"},
        Fall{"RestartedWithinTheWindow",
             [](A& a) { a.bis(um(20, 30)), a.neustartUm(um(20, 40)), a.bis(um(22, 0)); }, folge({kAn, kZu}),
             "aufgezeichnet\n"},
        Fall{"RestartedAfterTheWindow", [](A& a) { a.bis(um(20, 30)), a.neustartUm(um(23, 0)), a.sekunde(); },
             folge({kAn, kZu}), "unterbrochen\n"},
        Fall{"AsleepOverTheEnd", [](A& a) { a.bis(um(20, 30)), a.ports.uhr.vor(3 * 3600), a.sekunde(); },
             folge({kAn, kZu}), "unterbrochen\n"},
        Fall{"AsleepOverTheEndBeforeTheStartWasThrough",
             [](A& a) {
                 a.ports.uhr.beiNachrichten = [&] {
                     if (a.befehle() == kAn && a.jetzt() < um(21, 0)) a.ports.uhr.vor(3 * 3600);
                 };
                 a.bis(um(20, 10)), a.sekunde();
             },
             folge({kAn, kZu}), "unterbrochen\n"},
        Fall{"AsleepInTheMiddle", [](A& a) { a.bis(um(20, 30)), a.ports.uhr.vor(3600), a.bis(um(22, 0)); },
             folge({kAn, kZu}), "aufgezeichnet; Rechner schlief währenddessen\n"},
        Fall{"KilledInTheStartCommands", [](A& a) { a.stirbNach("kanal ARD"), a.starte(), a.bis(um(22, 0)); },
             folge({{"an", "kanal ARD"}, kZu, kAn, kZu}), "aufgezeichnet, 1 min verspätet begonnen\n"},
        Fall{"KilledInTheClosingCommands", [](A& a) { a.stirbNach("stop"), a.starte(), a.sekunde(); },
             folge({kAn, {"stop"}, kZu}), "unterbrochen\n"},
        Fall{"StartFailsForAMinute",
             [](A& a) { a.fehlt({"rec Tatort"}), a.bis(um(20, 11, 30)), a.fehlt({}), a.bis(um(22, 0)); },
             folge({kAn, kZu, kAn, kZu, kAn, kZu}), "aufgezeichnet, 2 min verspätet begonnen\n"},
        Fall{"StartFailsUntilItIsTooLate",
             [](A& a) {
                 a.marken({{um(20, 10), 2, "Tatort"}}), a.vorUndNachlauf(0, 0);
                 a.fehlt({"an", "aus"}), a.bis(um(20, 10, 30)), a.skript("x"), a.lies(), a.bis(um(22, 0));
             },
             folge({{"an", "aus"}}), kAnFehlt},
        Fall{"EndFails", [](A& a) { a.bis(um(21, 0)), a.fehlt({"stop"}), a.bis(um(22, 0)); },
             folge({kAn, kZu}), kStopFehlt},
        Fall{"ScriptVanishes", [](A& a) { a.bis(um(21, 0)), a.skript("x"), a.lies(), a.bis(um(22, 0)); }, kAn,
             "aufgezeichnet; Ende fehlgeschlagen: Das Aufzeichnungsskript fehlt.\n"},
        Fall{"DatabaseLockedButKnownFromTheLastRun",
             [](A& a) { a.tvDaten.gesperrt = true, a.neustartUm(um(20, 5)), a.bis(um(22, 0)); },
             folge({kAn, kZu}), "aufgezeichnet\n"},
        Fall{"StateFileThatCannotBeWritten",
             [](A& a) { a.ports.dateien.nurLesen = {"\\suite\\aufzeichnung.txt"}, a.bis(um(22, 0)); },
             folge({kAn, kZu}), "aufgezeichnet\n"}),
    [](const auto& fall) { return std::string(fall.param.name); });

// One ends at 21:55, the next could begin at 20:25 and at 21:25, a last one lies inside of the first.
TEST_F(Aufzeichnungen, OverlappingOnesWaitForTheirTurnAndSaySo) {
    marken({{um(20, 15), 90, "Tatort"}, {um(20, 30), 20, "Kurz"}, {um(21, 30), 20, "Film"}});
    starte();
    const std::string kurz = "\"Kurz\" (ARD, 20:25 bis 21:00)", film = "\"Film\" (ARD, 21:25 bis 22:00)";
    const std::string konflikte =
        kurz + " überschneidet sich mit " + kTatort + " und kann deshalb nicht aufgezeichnet werden.\r\n" +
        film + " überschneidet sich mit " + kTatort + " und kann erst beginnen, wenn diese um 21:55 endet.";
    bis(um(20, 9));
    EXPECT_THAT(aufzeichnungsHinweis.text, HasSubstr("\r\n\r\n" + konflikte));
    EXPECT_THAT(
        zeilentexte(),
        ElementsAre(
            "20:15 Tatort (ARD) (Aufzeichnung 20:10 bis 21:55)|1 min",
            "20:30 Kurz (ARD) (Aufzeichnung 20:25 bis 21:00), überschneidet sich mit " + kTatort + "|16 min",
            "21:30 Film (ARD) (Aufzeichnung 21:25 bis 22:00), überschneidet sich mit " + kTatort + "|1 h"));
    bis(um(23, 0));
    EXPECT_THAT(befehle(), ElementsAre("an", "kanal ARD", "rec Tatort", "stop", "aus", "an", "kanal ARD",
                                       "rec Film", "stop", "aus"));
    EXPECT_EQ(protokoll(),
              "24.12.2012 20:25 | ARD | Kurz | verpasst: andere Aufzeichnung lief (Tatort)\n"
              "aufgezeichnet\n"
              "24.12.2012 21:25 | ARD | Film | aufgezeichnet, 30 min verspätet begonnen\n")
        << "its broadcast is over when its turn comes";
    EXPECT_THAT(ports.meldungen.fehler,
                ElementsAre("Die Aufzeichnung " + kurz + " kann jetzt nicht beginnen, da " + kTatort +
                                " aufgezeichnet wird.\r\nSie entfällt, wenn diese bis zu ihrem Ende "
                                "läuft.",
                            "Die Aufzeichnung " + film + " kann jetzt nicht beginnen, da " + kTatort +
                                " aufgezeichnet wird.\r\nSie beginnt, wenn diese um 21:55 endet."));
    EXPECT_EQ(aufzeichnungsHinweis.male, 3);
}

// Reminders wait for a script, but not for one that waits for ever.
TEST_F(Aufzeichnungen, EndlessScriptsAreGivenUp) {
    skript(kSkript + "befehlaufnahmestarten=warten,1e9\nbefehlaufnahmebeenden=warten,1e9\n");
    setzeTermine({{um(20, 12), "Tee", 0, true}});
    marken({{um(20, 15), 2, "Tatort"}});  // from 20:10 to 20:27
    starte();
    bis(um(20, 10));
    EXPECT_EQ(jetzt(), um(20, 25)) << "ten minutes for the start, five for the end";
    EXPECT_FALSE(hinweis->gezeigt);
    sekunde();
    EXPECT_TRUE(hinweis->gezeigt);
    bis(um(20, 26));
    EXPECT_EQ(jetzt(), um(20, 32)) << "the second start had one minute";
    sekunde();
    const std::string zeile8 = "Zeile 8: Das Aufzeichnungsskript wurde nach 10 Minuten abgebrochen.";
    const std::string text =
        "Die Aufzeichnung \"Tatort\" (ARD, 20:10 bis 20:27) konnte nicht gestartet werden.\r\n";
    EXPECT_THAT(
        ports.meldungen.fehler,
        ElementsAre(text + zeile8 + "\r\nDer Start wird um 20:26 erneut versucht.",
                    text +
                        "Zeile 8: Die Aufzeichnung war zu Ende, bevor das Aufzeichnungsskript sie gestartet "
                        "hatte.\r\nVor ihrem Ende ist kein weiterer Versuch möglich."));
    EXPECT_EQ(protokoll(), "fehlgeschlagen in " + zeile8 + "\n");
}

TEST_F(Aufzeichnungen, FileThatDoesNotGrowIsToldWithinTheMinute) {
    struct Ordnerfall {
        const char* name;
        std::function<void(FakeDateisystem&, int)> sekunde;
        bool waechst;
    };
    const auto lege = [](const std::string& datei, int groesse) {
        return [=](FakeDateisystem& d, int) { d.lege("\\rec\\" + datei, std::string(groesse, 'x')); };
    };
    const std::vector<Ordnerfall> faelle = {
        {"nothing", [](FakeDateisystem&, int) {}, false},
        {"a new one of one size", lege("neu.ts", 5), false},
        {"a new one that grows", [&](FakeDateisystem& d, int s) { lege("neu.ts", s)(d, s); }, true},
        {"an old one that grows", lege("alt.ts", 9), true},
        {"an old one that shrinks", lege("alt.ts", 3), false},
        {"one that begins to grow late",
         [&](FakeDateisystem& d, int s) { lege("neu.ts", std::max(s, 50))(d, s); }, true},
    };
    setze(einstellung::kAufzeichnungsordner, Variant::text("\\rec"));
    for (const Ordnerfall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        for (const char* datei :
             {"\\rec\\neu.ts", "\\suite\\aufzeichnung.txt", "\\suite\\aufzeichnungen.log"})
            ports.dateien.entferne(datei);
        ports.dateien.lege("\\rec\\alt.ts", "12345");
        ports.meldungen.fehler.clear();
        neustartUm(um(20, 9));
        bis(um(20, 10));
        for (int s = 1; s <= 62; ++s)
            fall.sekunde(ports.dateien, s), sekunde();
        const std::string text =
            "Im Aufzeichnungsordner \"\\rec\" ist 60 Sekunden nach dem Start der Aufzeichnung " + kTatort +
            " keine Datei gewachsen. Bitte prüfen Sie, ob die TV-Anwendung wirklich "
            "aufzeichnet.";
        EXPECT_EQ(ports.meldungen.fehler, fall.waechst ? Texte{} : Texte{text});
        bis(um(22, 0));
        EXPECT_EQ(protokoll(), fall.waechst
                                   ? "aufgezeichnet\n"
                                   : "aufgezeichnet; keine wachsende Datei im Aufzeichnungsordner\n");
    }
}

TEST_F(Aufzeichnungen, StateAndLogThatCannotBeKeptAreToldOnceAndKeptLater) {
    starte();
    bis(um(20, 30));
    for (const std::string datei : {"aufzeichnung.txt", "aufzeichnungen.log"}) {
        SCOPED_TRACE(datei);
        const std::string pfad = "\\suite\\" + datei;
        const bool stand = datei.ends_with("txt");
        const auto vorher = ports.dateien.inhalt(pfad);
        ports.meldungen.fehler.clear();
        if (stand) unlesbar(pfad);
        if (!stand) ports.dateien.nurLesen = {pfad};
        if (stand) neustartUm(um(20, 40));  // while one runs, of which only that file knows
        bis(stand ? um(20, 50) : um(22, 0));
        EXPECT_EQ(ports.meldungen.fehler,
                  Texte{"Die Datei \"" + pfad +
                        "\" kann nicht gelesen oder nicht geschrieben werden. Lomrick kann nicht "
                        "festhalten, was aus den Aufzeichnungen wird.\r\nDer Versuch wird jede Minute "
                        "wiederholt."});
        EXPECT_EQ(ports.dateien.inhalt(pfad), vorher) << "nothing is written over it";
        ports.dateien.scheitert = nullptr;
        ports.dateien.nurLesen.clear();
        bis(jetzt().plusSekunden(60));
    }
    EXPECT_EQ(protokoll(), "aufgezeichnet, 30 min verspätet begonnen\n") << "begun anew";
    EXPECT_EQ(befehle(), folge({kAn, kAn, kZu}));
}

TEST_F(Aufzeichnungen, ExitInAWaitRunsNothingMoreAndTheNextStartGoesOn) {
    skript(kSkript + "befehlaufnahmestarten=warten,60\nbefehlaufnahmestarten=anwendungstarten,danach\n");
    starte();
    ports.uhr.beiNachrichten = [&] {
        if (jetzt() > um(20, 10, 5)) anwendung->beenden();
    };
    bis(um(20, 10));
    ports.uhr.beiNachrichten = nullptr;
    EXPECT_LT(jetzt(), um(20, 10, 8));
    EXPECT_FALSE(ports.energie.wach);
    EXPECT_EQ(befehle(), kAn);
    EXPECT_THAT(ports.meldungen.fehler, IsEmpty());
    starte();
    bis(um(22, 0));
    EXPECT_EQ(befehle(), folge({kAn, kZu, kAn, {"danach"}, kZu}));
    EXPECT_EQ(protokoll(), "aufgezeichnet, 1 min verspätet begonnen\n");
}

TEST_F(Aufzeichnungen, EndOfTheProgramIsAskedForWhileOneRuns) {
    starte();
    bis(um(20, 30));
    ports.meldungen.antworten = {Antwort::Nein, Antwort::Ja};
    form().mnuBeenden_Click();
    EXPECT_FALSE(form().beendet());
    form().mnuBeenden_Click();
    EXPECT_TRUE(form().beendet());
    const FakeMeldungen::Kasten frage{
        "Es wird gerade \"Tatort\" aufgezeichnet (bis 21:55). Ohne Lomrick endet die Aufzeichnung nicht, bis "
        "Lomrick "
        "wieder läuft.\r\nMöchten Sie trotzdem beenden ?",
        52, "Aufzeichnung"};
    EXPECT_THAT(ports.meldungen.gezeigt, ElementsAre(frage, frage));
    EXPECT_FALSE(ports.energie.wach);
    EXPECT_EQ(befehle(), kAn);
}

// Of a tick, with nobody there to answer it.
TEST_F(Aufzeichnungen, BoxOfTheDatabaseCostsNoRecording) {
    setzeTermine({{um(20, 5), "Tee", 0, true}});
    starte();
    tvDaten.gesperrt = true, tvDaten.sperrnummer = 3078;
    bool steht = false;
    ports.meldungen.imKasten = [&](const auto&) {
        if (!std::exchange(steht, true)) bis(um(22, 0));
    };
    bis(um(20, 6));
    EXPECT_EQ(befehle(), folge({kAn, kZu}));
    EXPECT_EQ(protokoll(), "aufgezeichnet\n");
}

TEST_F(Aufzeichnungen, MachineIsWokenUpThreeMinutesBeforeTheNextOne) {
    marken({{um(21, 15), 30, "Tatort"}, {um(23, 15), 30, "Film"}});
    setze(einstellung::kWecken, Variant::boolesch(true));
    starte();
    sekunde();
    EXPECT_EQ(ports.energie.weckzeit, um(21, 7));
    ports.energie.weckenErlaubt = false;
    bis(um(21, 7));
    EXPECT_EQ(ports.energie.weckzeit, std::nullopt);
    bis(moment(2012, 12, 25, 0, 0));
    EXPECT_THAT(protokoll(), HasSubstr("Film | aufgezeichnet; Wecken vom System nicht erlaubt\n"));
    EXPECT_THAT(protokoll(), HasSubstr("Tatort | aufgezeichnet\n"));
}

// All calls but clock readings, and no new icon while its text is the same: an hour in which nothing is due,
// and while one runs.
TEST_F(Aufzeichnungen, TicksWithoutAnEventCallNoPort) {
    setze(einstellung::kWecken, Variant::boolesch(true));
    setzeTermine({{um(23, 30), "Tee", 0, true}, {um(22, 0), "aus", 1, false}});
    marken({{um(21, 15), 90, "Tatort"}});
    tvDaten.markierungen[0].erinnerung = um(21, 7);
    starte();
    for (const auto& [von, bisDahin] : {std::pair(um(20, 1), um(21, 1)), {um(21, 31), um(21, 59)}}) {
        bis(von);
        ports.aufrufe.leeren();
        bis(bisDahin);
        EXPECT_EQ(ports.aufrufe.anzahlOhneUhr(), 0);
    }
}

// A box in a script would hold it up until somebody answers.
TEST_F(Aufzeichnungen, ControlLinesWaitForTheEndOfAScript) {
    starte();
    bool geaendert = false;
    ports.uhr.beiNachrichten = [&] {
        if (befehle() != Texte{"an"} || std::exchange(geaendert, true)) return;
        tvDaten.gesperrt = true, tvDaten.sperrnummer = 3078;
        skript(ersetzt(ersetzt(kSkript, "rec", "falsch"), "stop", "halt")), lies(), marken({});
    };
    ports.meldungen.imKasten = [&](const auto&) { EXPECT_EQ(befehle(), kAn); };
    bis(um(20, 11)), ereignisse();
    EXPECT_THAT(ports.meldungen.gezeigt, Not(IsEmpty()));
    ports.meldungen.imKasten = nullptr;
    bis(um(22, 0));
    EXPECT_EQ(befehle(), folge({kAn, {"halt", "aus"}}));
    EXPECT_THAT(ports.meldungen.fehler, IsEmpty());
    skript("falsch"), lies();
    EXPECT_THAT(ports.meldungen.fehler,
                ElementsAre("Das Aufzeichnungsskript \"\\suite\\tv.cfs\" kann nicht verwendet werden."));
}

struct ImTV : Aufzeichnungen {
    ImTV() {
        skript(ersetzt(kSkript, ",an", ",an [Kanal]"));
        marken({});
        tvDaten.sender = {"7 Sieben", "123 Viel", "ARD"};
    }
    void zeige(const std::string& sender) { form().imTVZeigen(sender); }
};

TEST_F(ImTV, ApplicationIsStartedAndSwitchedOnlyIfNeedBe) {
    starte();
    zeige("7 Sieben"), zeige("7 Sieben");  // the script's application is not seen running: started again
    EXPECT_THAT(befehle(), ElementsAre("an 07", "kanal 07", "an 07", "kanal 07"));
    ports.prozesse.laufende = {{"C:\\tv\\TV.exe", 9}};
    zeige("7 Sieben"), zeige("123 Viel"), zeige("123 Viel");
    EXPECT_THAT(befehle(), SizeIs(5));
    EXPECT_EQ(befehle().back(), "kanal 123");
    zeige("ARD");
    fehlt({"kanal 07"}), zeige("7 Sieben"), fehlt({}), zeige("7 Sieben");
    EXPECT_THAT(ports.meldungen.fehler,
                ElementsAre(HasSubstr("keine Programmnummer"), HasSubstr("umgeschaltet werden.\r\nDie")));
    EXPECT_THAT(befehle(), SizeIs(7));
}

}  // namespace
}  // namespace wendel
