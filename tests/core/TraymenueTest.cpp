// The tray menu in the program: when it comes, when the database is asked for it, what its entries set going.
#include "core/Traymenue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

struct Menue : testing::Test, Programm {
    Menue() { tvDaten.laeuft = "Film"; }
    void rechtsklick() { anwendung->fensterNachricht(1025, 1, 517); }
    void sperre() { tvDaten.gesperrt = true, tvDaten.sperrnummer = 3078; }  // boxes at once
    // On the screen: what runs now, and the tip; "none" without a menu.
    std::string menue() {
        const FakeMenueView* oben = menues.oben();
        if (!oben || !oben->sichtbar) return "none";
        return oben->bild.zeilen.at(3).name + "; " + oben->bild.tipp.TagesTippTitel;
    }
    void waehle(std::size_t zeile) {
        rechtsklick();
        menues.oben()->form.waehlen(static_cast<int>(zeile));
    }
    // Statements since the last call.
    std::size_t fragen() {
        const std::size_t alle = ports.datenbanken->anweisungen().size();
        return alle - std::exchange(gezaehlt, alle);
    }
    std::size_t gezaehlt = 0;
};

TEST_F(Menue, OpensAtThePointerAndAsksOnlyForWhatCanHaveChanged) {
    starte();
    fragen();
    EXPECT_EQ(menue(), "none");
    tvDaten.laeuft = "neu", tvDaten.tipp = "anderer";
    for (int mal = 0; mal < 2; ++mal)
        rechtsklick();
    EXPECT_EQ(menue(), "20:00 ARD, Film; Ein Fest");
    EXPECT_EQ(menues.oben()->form.fenster().rechts(), 1900);
    EXPECT_EQ(menues.oben()->form.fenster().unten(), 1030);
    EXPECT_EQ(fragen(), 0u);
    anwendung->DoThis("refreshtvdaten");
    EXPECT_EQ(fragen(), 1u);
    EXPECT_EQ(menue(), "none");
    rechtsklick();
    EXPECT_EQ(menue(), "20:00 ARD, neu; anderer");
    setze(einstellung::kTagestipp, Variant::boolesch(false));
    anwendung->DoThis("refreshkonfig");
    fragen();
    rechtsklick();
    EXPECT_EQ(fragen(), 0u);
    EXPECT_EQ(menues.oben()->bild.PictureTagestipp.hoehe, 0);
}

// In the wait of a tick, in boxes of any kind; when its own box is answered, a notice may have come.
TEST_F(Menue, AsksNothingWhileSomethingElseIsUnderWayAndStaysBehindNotices) {
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    starte();
    const auto klick = [&] {
        ports.datenbanken->beimOeffnen = [](const auto&) { ADD_FAILURE() << "a query inside of it"; };
        rechtsklick();
        ports.datenbanken->beimOeffnen = nullptr;
        EXPECT_NE(menue(), "none");
        ports.uhr.beiNachrichten = nullptr;
    };
    anwendung->DoThis("refreshtvdaten");
    ports.uhr.vor(59);
    ports.uhr.beiNachrichten = klick;
    sekunde();
    anwendung->DoThis("refreshtvdaten");
    rechtsklick();
    EXPECT_EQ(menue(), "none");
    beantworte();
    rechtsklick();
    sperre();
    ports.meldungen.imKasten = [&](const auto&) { klick(); };
    anwendung->DoThis("terminupdate");
    form().KurzZeitWeckerAktivieren(1);
    ports.meldungen.imKasten = [&](const auto&) { bis(um(20, 4)); };
    rechtsklick();
    EXPECT_TRUE(hinweis->gezeigt);
    EXPECT_EQ(menue(), "none");
}

TEST_F(Menue, ComesEmptyAfterTheBoxesOfOneStatement) {
    starte();
    sperre();
    anwendung->DoThis("refreshtvdaten");
    ports.meldungen.imKasten = [&](const auto&) {
        rechtsklick();  // the box is to be answered first
        EXPECT_EQ(menue(), "none");
        anwendung->DoThis("terminupdate");
    };
    rechtsklick();
    EXPECT_EQ(ports.meldungen.gezeigt.size(), 2u);
    EXPECT_EQ(menue(), "Kestrin Pirrow starten ..; ");
}

// A database that is still to be filled.
TEST_F(Menue, ComesWithoutBoxesWhileThereAreNoChannels) {
    tvDaten.sender.clear();
    ports.datenbanken->vorAnweisung = [](const std::string& sql) { EXPECT_EQ(sql.find("in()"), sql.npos); };
    starte();
    rechtsklick();
    EXPECT_EQ(menue(), "Kestrin Pirrow starten ..; Ein Fest");
    tvDaten = {.markierungen = {{um(19, 59), um(19, 59), 90, "Tatort", false}}, .laeuft = "Film"};
    anwendung->DoThis("terminupdate");
    sekunde();
    EXPECT_THAT(hinweis->text, testing::EndsWith("\n19:59 Tatort (ARD)"));
    beantworte();
    rechtsklick();
    EXPECT_EQ(menue(), "20:00 ARD, Film; Ein Fest");
    EXPECT_TRUE(ports.meldungen.gezeigt.empty());
}

// Nobody may be there to answer a box, and the updater writes.
TEST_F(Menue, TicksLookForATipWithoutBoxes) {
    tvDaten.tipp = "";
    starte();
    std::vector<Datum> zeiten;
    ports.datenbanken->vorAnweisung = [&](const std::string& sql) {
        if (sql.find("Bewertung=4") != std::string::npos) zeiten.push_back(jetzt());
    };
    bis(um(20, 9));
    sperre();
    bis(um(20, 14));
    ports.prozesse.laufende = {{"\\suite\\skarvel.exe", 5}};
    bis(um(20, 17));
    ports.prozesse.laufende.clear();
    tvDaten = {};
    bis(moment(2012, 12, 25, 0, 30));
    EXPECT_THAT(zeiten, testing::ElementsAre(um(20, 5), um(20, 10), um(20, 17, 1), moment(2012, 12, 25)));
    EXPECT_TRUE(ports.meldungen.gezeigt.empty());
}

TEST_F(Menue, EntriesReachTheProgram) {
    starte();
    waehle(5);
    EXPECT_EQ(ports.starter.gestartet.at(0).parameter, "/commandtext=\"Aktivieren\"");
    waehle(6);
    EXPECT_EQ(std::to_string(fenster->nachVornGeholt) + menue(), "1none");
    rechtsklick();
    menues.oben()->form.PicPaint_MouseUp(FormBrannikMenue::kMausRechts, 50, 65);
    EXPECT_FALSE(menues.oben()->kontextmenues.at(0).imTVZeigen);
    tvDaten.markierungen = {{um(20, 10), um(20, 15), 90, "Tatort", false}};
    menues.oben()->form.MenueErinnern_Click();
    EXPECT_EQ(ports.starter.gestartet.at(1).parameter, "/commandtext=\"AddTerminDBPos=77\"");
    // On a host with plain menus.
    const auto einfach = form().einfachesMenue(true);
    EXPECT_EQ(einfach.at(0).text + "; " + einfach.at(4).text,
              "heute 20:10 20:15 Tatort (ARD); 20:00 ARD, Film");
    form().menuebefehlAusfuehren(einfach.at(7).kinder.at(0).befehl);
    EXPECT_EQ(fenster->zeilen.at(0).zeit, "24.12.12 20:03");
    waehle(8);
    EXPECT_FALSE(fenster->geladen || menues.oben());
    EXPECT_EQ(gespeicherteTermine().size(), 1u);
    EXPECT_TRUE(form().einfachesMenue(true).empty());
}

}  // namespace
}  // namespace wendel
