// Control lines, icon messages, the list window and the way out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

struct Steuerzeilen : testing::Test, Programm {};
struct Fenster : testing::Test, Programm {};

TEST_F(Steuerzeilen, KeywordsMatchAsTheSuiteSendsThem) {
    const std::pair<const char*, std::string> zeilen[] = {
        {"TerminUpdate", "rows, Lomrick: heute 20:30 20:45 Film (ARD)"},
        {"terminupdate ", "Lomrick: heute 21:00 Tee"},
        {"SHOWWENDELxyz jetzt", "shown, in front, Lomrick: heute 21:00 Tee"},
        {"RefreshTVDaten alles", "rows, Lomrick: heute 21:00 Tee"},
        {"REFRESHKONFIG", "rows, Lomrick: heute 20:30 20:45 Film (ARD)"},
        {"CreateTermin 20:15", "shown, active, Lomrick: heute 21:00 Tee"},
        {"übersicht", "Lomrick: heute 21:00 Tee"},
    };
    for (const auto& [text, wirkung] : zeilen) {
        Programm programm;
        programm.setzeTermine({{um(21, 0), "Tee", 0, true}});
        programm.starte();
        const FakeWendelView& form = *programm.fenster;
        const int zeilenlaeufe = form.zeilenGesetzt;
        programm.ports.uhr.vor(120);  // the rows' time left has changed
        programm.tvDaten.markierungen.push_back({um(20, 30), um(20, 45), 30, "Film", false});
        programm.anwendung->DoThis(text);
        EXPECT_EQ(std::string(form.zeilenGesetzt > zeilenlaeufe ? "rows, " : "") +
                      (form.gezeigt ? "shown, " : "") + (form.nachVornGeholt ? "in front, " : "") +
                      (programm.ports.fenster.vordergrund == FakeWendelView::kFenster ? "active, " : "") +
                      programm.ports.symbol.tooltip(),
                  wirkung)
            << text;
    }
}

TEST_F(Steuerzeilen, RefreshKonfigReadsEverythingAgainThatCanBeRead) {
    starte();
    setzeTermine({{um(22, 0), "neu", 1, true}});
    tvDaten.sender = {"ARD", "ZDF"};
    const std::string unlesbar(40, '\xFF');
    for (int mal = 0; mal < 2; ++mal) {
        anwendung->DoThis("refreshkonfig");
        EXPECT_EQ(fenster->zeilen.at(0).text, "neu");
        EXPECT_THAT(ports.datenbanken->anweisungen().end()[-6], testing::HasSubstr("in('ARD','ZDF')"));
        ports.dateien.lege("\\suite\\fennow.cfg", unlesbar);
    }
    EXPECT_EQ(ports.dateien.inhalt("\\suite\\fennow.cfg"), unlesbar);
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
                    testing::ElementsAre(GespeicherterTermin{um(20, 1), "Tee", 0, false},
                                         GespeicherterTermin{um(20, 3), "Tee", 0, false}));
    }
}

TEST_F(Fenster, DoubleClickShowsOnlyWithoutNoticeAndAfterTheEndNothingHappens) {
    setzeTermine({{um(20, 1), "Tee", 0, true}, {um(20, 2), "Kuchen", 0, true}});
    starte();
    bis(um(20, 1));
    EXPECT_TRUE(anwendung->fensterNachricht(1025, 1, 515));
    EXPECT_FALSE(fenster->gezeigt);
    beantworte();
    anwendung->fensterNachricht(1025, 1, 515);
    EXPECT_EQ(fenster->nachVornGeholt, 1);
    form().mnuBeenden_Click();
    anwendung->beenden();
    bis(um(20, 3));
    EXPECT_FALSE(fenster->geladen || hinweis->gezeigt || anwendung->fensterNachricht(1025, 1, 515));
    EXPECT_TRUE(ports.symbol.symbole.empty());
}

}  // namespace
}  // namespace wendel
