// Control lines, icon messages, the list window and the way out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

using testing::ElementsAre;

TEST(Steuerzeilen, KeywordsMatchAsTheSuiteSendsThem) {
    enum Wirkung { kNichts, kGezeigt, kAbgefragt, kAufgefrischt, kVorn };
    struct Zeile {
        const char* text;
        Wirkung wirkung;
    };
    const Zeile zeilen[] = {
        {"", kNichts},
        {"terminupdate", kAbgefragt},
        {"TerminUpdate", kAbgefragt},
        {"terminupdate ", kNichts},
        {" terminupdate", kNichts},
        {"showwendel", kGezeigt},
        {"SHOWWENDEL jetzt gleich", kGezeigt},
        {"showwendelxyz", kGezeigt},
        {"showwende", kNichts},
        {"refreshtvdaten", kAufgefrischt},
        {"RefreshTVDaten alles", kAufgefrischt},
        {"refreshkonfig", kAbgefragt},
        {"REFRESHKONFIG", kAbgefragt},
        {"refreshkonfig ", kNichts},
        {"refreshkonfigx", kNichts},
        {"createtermin", kVorn},
        {"CreateTermin 20:15", kVorn},
        {"übersicht", kNichts},
    };
    for (const Zeile& zeile : zeilen) {
        SCOPED_TRACE(zeile.text);
        Programm programm;
        programm.starte();
        const int nachrichten = programm.ports.uhr.nachrichtenlaeufe;
        const auto anweisungen = programm.ports.datenbanken->anweisungen().size();
        programm.ports.uhr.vor(120);  // the rows' time left has changed
        programm.tvDaten.markierungen.push_back({um(20, 30), um(20, 45), 30, "Film", false});
        programm.anwendung->DoThis(zeile.text);
        EXPECT_EQ(programm.ports.uhr.nachrichtenlaeufe - nachrichten, zeile.wirkung == kNichts ? 0
                                                                      : zeile.wirkung == kVorn ? 2
                                                                                               : 1);
        EXPECT_EQ(programm.fenster->gezeigt, zeile.wirkung == kGezeigt || zeile.wirkung == kVorn);
        EXPECT_EQ(programm.fenster->nachVornGeholt, zeile.wirkung == kGezeigt ? 1 : 0);
        EXPECT_EQ(programm.ports.fenster.vordergrund == FakeWendelView::kFenster, zeile.wirkung == kVorn);
        EXPECT_EQ(programm.ports.datenbanken->anweisungen().size() > anweisungen,
                  zeile.wirkung == kAbgefragt);
        EXPECT_EQ(programm.ports.symbol.tooltip(),
                  zeile.wirkung == kAbgefragt ? "Lomrick: heute 20:30 20:45 Film (ARD)" : "Lomrick");
    }
}

TEST(Steuerzeilen, RefreshKonfigReadsEverythingAgain) {
    Programm programm;
    programm.setzeTermine({{um(21, 0), "alt", 0, true}});
    programm.starte();
    programm.setzeTermine({{um(21, 0), "alt", 0, true}, {um(22, 0), "neu", 1, true}});
    programm.setze(einstellung::kLiveUpdate, Variant::boolesch(true));
    programm.ports.dateien.lege("\\suite\\kestrin.cfg", "AppName = Guide\n");
    programm.tvDaten.sender = {"ARD", "ZDF"};
    programm.anwendung->DoThis("refreshkonfig");
    EXPECT_EQ(programm.anwendung->werte().hauptanwendungTitel, "Guide");
    EXPECT_EQ(programm.fenster->liveUpdate, "Das Live-Update startet jeden Tag um 06:00 Uhr.");
    ASSERT_EQ(programm.fenster->zeilen.size(), 2u);
    EXPECT_EQ(programm.fenster->zeilen[1].text, "neu");
    EXPECT_THAT(programm.ports.datenbanken->anweisungen().back(), testing::HasSubstr("in('ARD','ZDF')"));
}

TEST(Steuerzeilen, RefreshKonfigKeepsAppointmentsThatCouldNotBeStored) {
    Programm programm;
    programm.setzeTermine({{um(20, 1), "Tee", 0, true}});
    programm.starte();
    programm.bis(um(20, 1));
    programm.ports.dateien.nurLesen = {"\\suite\\fennow.cfg", "\\suite\\fennow.cfg.neu"};
    programm.beantworte(1);
    programm.anwendung->DoThis("refreshkonfig");
    programm.bis(um(20, 3));
    EXPECT_EQ(programm.hinweis->text, "Sie wollten sich erinnern lassen.\r\nTee");
    programm.ports.dateien.nurLesen.clear();
    programm.bis(um(20, 4));
    EXPECT_THAT(programm.gespeicherteTermine(), ElementsAre(GespeicherterTermin{um(20, 1), "Tee", 0, false},
                                                            GespeicherterTermin{um(20, 3), "Tee", 0, false}));
}

TEST(Steuerzeilen, RefreshKonfigWithoutReadableSettingsKeepsWhatWasKnown) {
    Programm programm;
    programm.setzeTermine({{um(21, 0), "Tee", 0, true}});
    programm.starte();
    programm.ports.dateien.lege("\\suite\\fennow.cfg", std::string(40, '\xFF'));
    programm.anwendung->DoThis("refreshkonfig");
    ASSERT_EQ(programm.fenster->zeilen.size(), 1u);
    EXPECT_EQ(programm.fenster->zeilen[0].text, "Tee");
    EXPECT_EQ(programm.ports.dateien.inhalt("\\suite\\fennow.cfg"), std::string(40, '\xFF'));
}

TEST(Symbol, MouseMessagesActOnlyWithoutNotice) {
    Programm programm;
    programm.setzeTermine({{um(20, 1), "Tee", 0, true}});
    programm.starte();
    EXPECT_FALSE(programm.anwendung->fensterNachricht(512, 1, 515));  // another window's business
    EXPECT_TRUE(programm.anwendung->fensterNachricht(1025, 1, 514));
    EXPECT_TRUE(programm.anwendung->fensterNachricht(1025, 1, 517));
    EXPECT_FALSE(programm.fenster->gezeigt);
    programm.bis(um(20, 1));
    EXPECT_TRUE(programm.anwendung->fensterNachricht(1025, 1, 515));
    EXPECT_FALSE(programm.fenster->gezeigt);
    programm.beantworte();
    EXPECT_TRUE(programm.anwendung->fensterNachricht(1025, 1, 515));
    EXPECT_TRUE(programm.fenster->gezeigt);
    EXPECT_EQ(programm.fenster->nachVornGeholt, 1);
}

TEST(Symbol, RecordIsSentOnlyWhenItChanges) {
    Programm programm;
    programm.setzeTermine({{um(21, 30), "Tee", 0, true}});
    programm.starte();
    ASSERT_EQ(programm.ports.symbol.datensaetze.size(), 2u);  // the start's "Lomrick", then the nearest entry
    EXPECT_EQ(programm.ports.symbol.tooltip(), "Lomrick: heute 21:30 Tee");
    programm.bis(um(21, 29));
    EXPECT_EQ(programm.ports.symbol.datensaetze.size(), 2u);
    programm.bis(um(21, 31));
    EXPECT_EQ(programm.ports.symbol.tooltip(), "Lomrick");
}

TEST(Liste, SelectionStaysWithItsEntry) {
    Programm programm;
    programm.setzeTermine({{um(20, 1), "zuerst", 1, true}, {um(20, 30), "dann", 0, true}});
    programm.starte();
    programm.form().zeileGewaehlt(0);
    programm.bis(um(20, 2));  // the daily one has moved behind the other
    ASSERT_EQ(programm.fenster->zeilen.size(), 2u);
    EXPECT_EQ(programm.fenster->zeilen[1].text, "zuerst");
    EXPECT_EQ(programm.fenster->auswahl, std::optional<std::size_t>(1));
}

TEST(Liste, ReReadRemindersKeepTheSelection) {
    Programm programm;
    programm.tvDaten.markierungen = {{um(21, 0), um(21, 15), 60, "Film", false}};
    programm.starte();
    programm.form().zeileGewaehlt(0);
    programm.tvDaten.markierungen.insert(programm.tvDaten.markierungen.begin(),
                                         {um(20, 30), um(20, 45), 60, "Krimi", false});
    programm.anwendung->DoThis("terminupdate");
    EXPECT_EQ(programm.fenster->zeilen.at(1).text, "21:15 Film (ARD)");
    EXPECT_EQ(programm.fenster->auswahl, std::optional<std::size_t>(1));
}

TEST(Ende, CloseBoxHidesAndOnlyTheMenuEntryEnds) {
    Programm programm;
    programm.starte("");
    programm.form().fensterSchliessen();
    EXPECT_FALSE(programm.fenster->gezeigt);
    EXPECT_TRUE(programm.fenster->geladen);
    programm.form().mnuBeenden_Click();
    EXPECT_FALSE(programm.fenster->geladen);
    EXPECT_TRUE(programm.ports.symbol.symbole.empty());
}

TEST(Ende, NothingHappensAfterTheEnd) {
    Programm programm;
    programm.setzeTermine({{um(20, 1), "Tee", 0, true}});
    programm.starte();
    programm.anwendung->beenden();
    programm.anwendung->beenden();
    programm.bis(um(20, 2));
    programm.anwendung->DoThis("showwendel");
    programm.anwendung->DoThis("terminupdate");
    EXPECT_FALSE(programm.hinweis->gezeigt);
    EXPECT_FALSE(programm.fenster->gezeigt);
    EXPECT_TRUE(programm.ports.symbol.symbole.empty());
    EXPECT_FALSE(programm.anwendung->fensterNachricht(1025, 1, 515));
}

}  // namespace
}  // namespace wendel
