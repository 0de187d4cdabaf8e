// Control lines, icon messages, the list window and the way out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

using testing::ElementsAre;

struct Steuerzeilen : testing::Test, Programm {};
struct Symbol : testing::Test, Programm {};
struct Liste : testing::Test, Programm {};
struct Ende : testing::Test, Programm {};

TEST_F(Steuerzeilen, KeywordsMatchAsTheSuiteSendsThem) {
    enum Wirkung { kNichts, kGezeigt, kAbgefragt, kAufgefrischt, kVorn };
    const std::pair<const char*, Wirkung> zeilen[] = {
        {"", kNichts},
        {"TerminUpdate", kAbgefragt},
        {"terminupdate ", kNichts},
        {" terminupdate", kNichts},
        {"SHOWWENDEL jetzt gleich", kGezeigt},
        {"showwendelxyz", kGezeigt},
        {"RefreshTVDaten alles", kAufgefrischt},
        {"REFRESHKONFIG", kAbgefragt},
        {"refreshkonfig ", kNichts},
        {"CreateTermin 20:15", kVorn},
        {"übersicht", kNichts},
    };
    for (const auto& [text, wirkung] : zeilen) {
        SCOPED_TRACE(text);
        Programm programm;
        programm.setzeTermine({{um(21, 0), "Tee", 0, true}});
        programm.starte();
        const int nachrichten = programm.ports.uhr.nachrichtenlaeufe,
                  zeilenlaeufe = programm.fenster->zeilenGesetzt;
        programm.ports.uhr.vor(120);  // the rows' time left has changed
        programm.tvDaten.markierungen.push_back({um(20, 30), um(20, 45), 30, "Film", false});
        programm.anwendung->DoThis(text);
        EXPECT_EQ(programm.ports.uhr.nachrichtenlaeufe - nachrichten,
                  wirkung == kVorn ? 2 : wirkung != kNichts);
        EXPECT_EQ(programm.fenster->zeilenGesetzt > zeilenlaeufe,
                  wirkung == kAbgefragt || wirkung == kAufgefrischt);
        EXPECT_EQ(programm.fenster->gezeigt, wirkung == kGezeigt || wirkung == kVorn);
        EXPECT_EQ(programm.fenster->nachVornGeholt, wirkung == kGezeigt);
        EXPECT_EQ(programm.ports.fenster.vordergrund == FakeWendelView::kFenster, wirkung == kVorn);
        EXPECT_EQ(programm.ports.symbol.tooltip(), wirkung == kAbgefragt
                                                       ? "Lomrick: heute 20:30 20:45 Film (ARD)"
                                                       : "Lomrick: heute 21:00 Tee");
    }
}

TEST_F(Steuerzeilen, RefreshKonfigReadsEverythingAgain) {
    starte();
    setzeTermine({{um(22, 0), "neu", 1, true}});
    setze(einstellung::kLiveUpdate, Variant::boolesch(true));
    ports.dateien.lege("\\suite\\kestrin.cfg", "AppName = Guide\n");
    tvDaten.sender = {"ARD", "ZDF"};
    anwendung->DoThis("refreshkonfig");
    EXPECT_EQ(anwendung->werte().hauptanwendungTitel, "Guide");
    EXPECT_EQ(fenster->liveUpdate, "Das Live-Update startet jeden Tag um 06:00 Uhr.");
    EXPECT_EQ(fenster->zeilen.at(0).text, "neu");
    EXPECT_THAT(ports.datenbanken->anweisungen().back(), testing::HasSubstr("in('ARD','ZDF')"));
    // Settings that cannot be read leave what was known, and the file as it is.
    ports.dateien.lege("\\suite\\fennow.cfg", std::string(40, '\xFF'));
    anwendung->DoThis("refreshkonfig");
    EXPECT_EQ(fenster->zeilen.at(0).text, "neu");
    EXPECT_EQ(ports.dateien.inhalt("\\suite\\fennow.cfg"), std::string(40, '\xFF'));
}

// Snoozed while the settings can't be written: before the line, and in a box of it.
TEST_F(Steuerzeilen, RefreshKonfigKeepsAppointmentsThatCouldNotBeStored) {
    for (const bool imKasten : {false, true}) {
        SCOPED_TRACE(imKasten);
        Programm programm;
        programm.setzeTermine({{um(20, 1), "Tee", 0, true}});
        programm.starte();
        programm.bis(um(20, 1));
        const auto erneut = [&](const auto&...) {
            programm.ports.dateien.nurLesen = {"\\suite\\fennow.cfg", "\\suite\\fennow.cfg.neu"};
            programm.beantworte(1);
        };
        if (imKasten) {
            programm.ports.dateien.entferne("\\suite\\tvdaten.mdb");
            programm.ports.meldungen.imKasten = erneut;
        } else {
            erneut();
        }
        programm.anwendung->DoThis("refreshkonfig");
        programm.bis(um(20, 3));
        EXPECT_EQ(programm.hinweis->text, "Sie wollten sich erinnern lassen.\r\nTee");
        programm.ports.dateien.nurLesen.clear();
        programm.bis(um(20, 4));
        EXPECT_THAT(programm.gespeicherteTermine(),
                    ElementsAre(GespeicherterTermin{um(20, 1), "Tee", 0, false},
                                GespeicherterTermin{um(20, 3), "Tee", 0, false}));
    }
}

TEST_F(Symbol, DoubleClickShowsTheListOnlyWithoutNotice) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    starte();
    bis(um(20, 1));
    EXPECT_TRUE(anwendung->fensterNachricht(1025, 1, 515));
    EXPECT_FALSE(fenster->gezeigt);
    beantworte();
    EXPECT_TRUE(anwendung->fensterNachricht(1025, 1, 514));
    EXPECT_FALSE(anwendung->fensterNachricht(512, 1, 515));  // another window's business
    EXPECT_FALSE(fenster->gezeigt);
    EXPECT_TRUE(anwendung->fensterNachricht(1025, 1, 515));
    EXPECT_EQ(fenster->nachVornGeholt, 1);
}

TEST_F(Liste, SelectionStaysWithItsEntryOverAReRead) {
    tvDaten.markierungen = {{um(21, 0), um(21, 15), 60, "Film", false}};
    starte();
    form().zeileGewaehlt(0);
    tvDaten.markierungen.push_back({um(20, 30), um(20, 45), 60, "Krimi", false});
    anwendung->DoThis("terminupdate");
    EXPECT_EQ(fenster->zeilen.at(1).text, "21:15 Film (ARD)");
    EXPECT_EQ(fenster->auswahl, std::optional<std::size_t>(1));
}

TEST_F(Ende, CloseBoxHidesAndAfterTheMenuEntryNothingHappens) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    starte("");
    form().fensterSchliessen();
    EXPECT_FALSE(fenster->gezeigt);
    EXPECT_TRUE(fenster->geladen);
    form().mnuBeenden_Click();
    EXPECT_FALSE(fenster->geladen);
    anwendung->beenden();
    bis(um(20, 2));
    anwendung->DoThis("showwendel");
    anwendung->DoThis("terminupdate");
    EXPECT_FALSE(hinweis->gezeigt || fenster->gezeigt);
    EXPECT_TRUE(ports.symbol.symbole.empty());
    EXPECT_FALSE(anwendung->fensterNachricht(1025, 1, 515));
}

}  // namespace
}  // namespace wendel
