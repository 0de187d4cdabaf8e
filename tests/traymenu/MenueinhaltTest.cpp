// What is in the menu, how its rows look, what choosing an entry does, and the plain menu of other hosts.

#include "traymenu/Menueinhalt.h"

#include "traymenu/EinfachesMenue.h"
#include "traymenu/Menueprobe.h"

namespace wendel {
namespace {

using ::testing::ElementsAre;

std::string merkmale(const cMenuePunkt& punkt) {
    if (punkt.Art != menueart::kSendung) return "";
    return Format(punkt.Zeit, "|hh:nn|") + std::to_string(punkt.Star) + "|" + punkt.SenderKennung + "|" +
           std::to_string(punkt.DBPos) + "|" + punkt.Tooltiptext;
}

std::vector<std::string> eintraege(const FormBrannikMenue& menue) {
    std::vector<std::string> alle;
    for (const auto& punkt : menue.MenuePunkte())
        alle.push_back(std::to_string(punkt->Art) + "|" + punkt->Text + "|" + punkt->Name + merkmale(*punkt));
    return alle;
}

class MenuContent : public Menueprobe {};

TEST_F(MenuContent, HasSevenEntriesAndWhatRunsAfterTheThird) {
    aktuell.front().Kurzbeschreibung = gleich.front().Kurzbeschreibung = "kurz";
    aktuell.front().Genre = "Krimi";
    const FormBrannikMenue& menue = baue();
    EXPECT_THAT(
        eintraege(menue),
        ElementsAre("3|heute ab 22:00..|", "3|heute um 20:15..|", "3|als nächstes beginnend..|",
                    "2|Titel 30|mSendung30|20:15|3|zdf|30|Titel 30\nKrimi",
                    "1|Fennow starten ..|MenueFennowStarten", "1|Wiederherstellen ..|MenueWendelanzeigen",
                    "4|Erinnern in ..|", "1|Beenden ..|mBeenden2"));
    EXPECT_EQ(unter(menue, 1).MenuePunkte().at(1)->Text, "Titel 11");
    EXPECT_TRUE(unter(menue, 2).leer());
    EXPECT_THAT(eintraege(unter(menue, 3)), ElementsAre("2|Titel 20|mSendung20|20:15|3|zdf|20|Titel 20\nkurz",
                                                        "2|Titel 21|mSendung21|20:15|3|zdf|21|Titel 21"));
    EXPECT_EQ(umgebung.views.size(), 5U);
}

TEST_F(MenuContent, FitsTheScreen) {
    const std::pair<int, int> grenzen[] = {{-5, 0}, {0, 0}, {19, 0}, {39, 1}, {40, 1}, {60, 2}, {1040, 51}};
    for (const auto& [hoehe, zeilen] : grenzen)
        EXPECT_EQ(Menueinhalt::hoechstzahl(hoehe), zeilen) << hoehe;
    gleich = aktuell = liste(200, 1);
    for (const bool tippAn : {true, false}) {
        mitTipp = tippAn;
        for (freieHoehe = 0; freieHoehe < 1100; freieHoehe += 7) {
            const int hoehe = zeige().fenster().hoehe;
            ASSERT_TRUE(hoehe <= freieHoehe || hoehe == (tippAn ? 226 : 146)) << freieHoehe;
            ASSERT_TRUE(hoehe + 20 > freieHoehe) << "room for one more at " << freieHoehe;
        }
    }
}

TEST_F(MenuContent, PaintsRowsInColumns) {
    markierungen = {";10;", ";10;11;", ";"};
    ab2200 = {sendung(10, "A"), sendung(11, "B\r\nC", "leer"), sendung(1, "", "weg"), sendung(12, "D", "Zdf"),
              sendung(13, std::string(300, 'x'))};
    ab2200[3].Bewertung = 6;
    FormBrannikMenue& menue = zeige();
    menue.waehlen(1);
    const Menuebild& bild = view(unter(menue, 1)).bild;
    std::vector<std::string> zeilen;
    for (const Zeilenbild& zeile : bild.zeilen)
        zeilen.push_back(zeile.symbol + "|" + zeile.zeit.text + "|" + zeile.sender.text + "|" +
                         Left(zeile.text.text, 3) + "|" + Left(zeile.name, 24));
    EXPECT_THAT(zeilen, ElementsAre("favorit|20:15|ZDF|A|20:15 ZDF, A",
                                    "erinnerung|20:15|<keine Daten>|B C|20:15 <keine Daten>, B C",
                                    "bewertung3|20:15|<keine Daten>||20:15 <keine Daten>",
                                    "|20:15|ZDF|D|20:15 ZDF, D",
                                    "bewertung3|20:15|ZDF|xxx|20:15 ZDF, xxxxxxxxxxxxx"));
    const Zeilenbild& letzte = bild.zeilen.back();
    EXPECT_EQ(letzte.rechteck, (Rechteck{0, 82, 638, 20})) << "a third of the screen less the frame";
    EXPECT_EQ(letzte.zeit.x, 28);
    EXPECT_EQ(letzte.sender, (Zeilentext{64, 78, "ZDF"})) << "as wide as the widest channel";
    EXPECT_EQ(letzte.text.x, 148);
    EXPECT_EQ(letzte.text.x + letzte.text.breite, 632);
    EXPECT_EQ(letzte.tooltip.size(), 300U);
}

TEST_F(MenuContent, PaintsTheTopWindowInGroupsBelowTheTip) {
    FormBrannikMenue& menue = zeige();
    const Menuebild& bild = view(menue).bild;
    std::string zeilen;
    for (const Zeilenbild& zeile : bild.zeilen)
        zeilen += std::string(zeile.gruppenlinie ? "-" : " ") + (zeile.pfeil ? ">" : " ") +
                  (zeile.freigegeben ? " " : "x");
    EXPECT_EQ(zeilen, " >   x > -  -     -> -  ");
    EXPECT_EQ(bild.zeilen[0].text.x, 28) << "captions begin where times do";
    EXPECT_EQ(bild.PictureTagestipp, (Rechteck{1, 1, 300, 80}));
    EXPECT_EQ(bild.PicPaint, (Rechteck{1, 81, 300, 164}));
    EXPECT_EQ(bild.fenster, (Groesse{302, 246}));
    EXPECT_EQ(bild.tippName, "Tagestipp: 20:15 Uhr ZDF, Ein Fest");
    menue.PicPaint_MouseMove(50, 30);
    const Zeilenbild& leer = view(menue).gemalt.back();
    EXPECT_TRUE(leer.hervorgehoben && leer.schrift == 4) << "faintly: it opens nothing";
}

TEST_F(MenuContent, IsTheSameAsAPlainMenu) {
    const auto plain = einfachesMenue(baue(), sender, "Lomrick: heute 20:15 Tee");
    std::vector<std::string> texte;
    for (const EinfacherEintrag& eintrag : plain)
        texte.push_back((eintrag.linieDarueber ? "-" : "") + eintrag.text +
                        (eintrag.freigegeben ? "" : " (aus)"));
    EXPECT_THAT(texte, ElementsAre("heute 20:15 Tee (aus)", "-heute ab 22:00..", "heute um 20:15.. (aus)",
                                   "als nächstes beginnend..", "-20:15 ZDF, Titel 30", "-Fennow starten ..",
                                   "Wiederherstellen ..", "-Erinnern in ..", "-Beenden .."));
    EXPECT_EQ(plain[7].kinder.at(11).befehl.Name, "MenueKurzZeit180Min");
    EXPECT_EQ(plain[1].kinder.at(1).befehl, (Menuebefehl{"mSendung11", 11, "zdf"}));
    EXPECT_EQ(einfachesMenue(baue(), sender, "Lomrick").front().text, "heute ab 22:00..");
}

class MenuCommands : public Menueprobe {
  protected:
    std::string waehle(FormBrannikMenue& form, int index) {
        aktionen.rufe.clear();
        form.PicPaint_MouseUp(FormBrannikMenue::kMausLinks, 50, 2 + 20 * (index - 1) + 10);
        return aktionen.rufe;
    }
};

TEST_F(MenuCommands, FollowTheKeyAndHideTheMenu) {
    aktuell.insert(aktuell.begin(), sendung(0, "no position"));
    FormBrannikMenue& menue = zeige();
    EXPECT_EQ(waehle(menue, 1) + waehle(menue, 2), "") << "heads act on nothing";
    EXPECT_TRUE(menue.Visible());
    const std::pair<int, const char*> faelle[] = {
        {4, ""}, {5, "OpenSendungDBPos=30;"}, {6, "Aktivieren;"}, {7, "Wendel;"}, {9, "Wendel;beenden;"}};
    for (const auto& [index, ruf] : faelle) {
        menue.ShowObermenue({1900, 1030});
        EXPECT_EQ(waehle(menue, index), ruf);
        EXPECT_FALSE(menue.Visible());
    }
    menue.ShowObermenue({1900, 1030});
    menue.waehlen(8);
    const int minuten[] = {3, 5, 7, 10, 12, 15, 30, 45, 60, 90, 120, 180, 240, 300};
    for (int i = 0; i < 14; ++i)
        EXPECT_EQ(waehle(unter(menue, 8), i + 1), "Wecker " + std::to_string(minuten[i]) + ";");
}

TEST_F(MenuCommands, OfTheContextMenuHideTheMenuFirst) {
    aktuell.push_back(sendung(31, "B", ""));
    FormBrannikMenue& menue = zeige();
    bool sichtbar = true;
    aktionen.beimRuf = [&] { sichtbar = menue.Visible(); };
    for (const int y : {10, 70, 95, 110})  // head, broadcast, broadcast without channel, action
        menue.PicPaint_MouseUp(FormBrannikMenue::kMausRechts, 50, y);
    aktionen.kannTV = true;
    menue.PicPaint_MouseUp(FormBrannikMenue::kMausRechts, 50, 95);
    menue.PicPaint_MouseUp(FormBrannikMenue::kMausRechts, 50, 70);
    std::string angebot;
    for (const Kontextmenue& einmal : view(menue).kontextmenues)
        angebot += einmal.imTVZeigen ? "TV " : "ohne ";
    EXPECT_EQ(angebot, "ohne ohne ohne TV ");
    menue.MenueErinnern_Click();
    EXPECT_FALSE(sichtbar);
    menue.MenueAnzeigen_Click();
    menue.MenueImTVZeigen_Click();
    EXPECT_EQ(aktionen.rufe, "AddTerminDBPos=30;nachErinnern;OpenSendungDBPos=30;TV zdf;");
    for (const int index : {4, 6}) {
        menue.ShowObermenue({1900, 1030});
        waehle(menue, index);
        EXPECT_FALSE(sichtbar) << "so does a click on what waits for the guide: " << index;
    }
}

TEST_F(MenuCommands, WithoutATipThePanelOnlyHidesTheMenu) {
    tipp = {};
    FormBrannikMenue& menue = zeige();
    menue.PictureTagestipp_Click();
    EXPECT_FALSE(menue.Visible());
    EXPECT_EQ(aktionen.rufe, "");
}

}  // namespace
}  // namespace wendel
