// Process names and the window helpers, as calls on the ports.
#include <gtest/gtest.h>

#include "platform/ModulFenster.h"
#include "platform/ModulProzessliste.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using namespace ModulProzessliste;
using namespace ModulFenster;
using Texte = std::vector<std::string>;

class ProcessNames : public testing::Test {
  protected:
    ProcessNames() {
        prozesse.laufende = {{"\\usr\\lib\\Fennow.exe", 12},
                             {"kaffee", 7},
                             {"\\opt\\ÄRGER.EXE", 4294967295},
                             {"\\a\\fennow.exe", 13},
                             {"\\wendel\\wendel.exe", 4711},
                             {"/usr/bin/x", 9},
                             {"\\b\\nur\\", 5}};
    }
    FakeProzesse prozesse;
};

TEST_F(ProcessNames, AreListedInLowerCaseWithTheirIds) {
    EXPECT_EQ(GetProcessList(prozesse), (Texte{"fennow.exe|12", "kaffee|7", "ärger.exe|4294967295",
                                               "fennow.exe|13", "wendel.exe|4711", "/usr/bin/x|9", "|5"}));
    prozesse.laufende.clear();
    EXPECT_EQ(GetProcessList(prozesse), Texte{});
}

TEST_F(ProcessNames, AreComparedWholeAndWithoutCase) {
    EXPECT_TRUE(IsProcessRunning(prozesse, "FENNOW.EXE"));
    EXPECT_TRUE(IsProcessRunning(prozesse, "Ärger.exe"));
    EXPECT_TRUE(IsProcessRunning(prozesse, "kaffee"));
    EXPECT_TRUE(IsProcessRunning(prozesse, "/usr/bin/x"));
    EXPECT_FALSE(IsProcessRunning(prozesse, "fennow"));
    EXPECT_FALSE(IsProcessRunning(prozesse, "x"));
    EXPECT_FALSE(IsProcessRunning(prozesse, "kaffee|7"));
}

TEST_F(ProcessNames, EndsAllOfANameButNeverItself) {
    EXPECT_TRUE(EndProcessByName(prozesse, "Fennow.exe"));
    EXPECT_EQ(prozesse.beendet, (std::vector<std::uint32_t>{12, 13}));
    EXPECT_FALSE(EndProcessByName(prozesse, "fennow.exe"));
    EXPECT_FALSE(EndProcessByName(prozesse, "wendel.exe"));
    EXPECT_TRUE(IsProcessRunning(prozesse, "wendel.exe"));
}

TEST_F(ProcessNames, EndingSucceedsWhenOneOfThemEnds) {
    prozesse.unbeendbar = {13};
    EXPECT_TRUE(EndProcessByName(prozesse, "fennow.exe"));
    EXPECT_FALSE(EndProcessByName(prozesse, "fennow.exe"));
}

TEST_F(ProcessNames, PlatformIsKnownByItsId) {
    EXPECT_TRUE(IsWindowsNT(prozesse));
    prozesse.plattform = 1;
    EXPECT_FALSE(IsWindowsNT(prozesse));
}

class Foreground : public testing::Test {
  protected:
    Foreground() {
        fenster.fenster = {{1, {"anderes", 100}}, {2, {"Hinweis", 200}}, {3, {"Liste", 200}}};
        fenster.vordergrund = 1;
    }
    FakeFenstersystem fenster;
};

TEST_F(Foreground, WindowInFrontIsLeftAlone) {
    fenster.vordergrund = 2;
    EXPECT_TRUE(ForceForeground(fenster, 2));
    EXPECT_EQ(fenster.aufrufe().zeilen, Texte{"Fenstersystem.vordergrundfenster()"});
}

TEST_F(Foreground, InputIsSharedOnlyAroundTheCall) {
    EXPECT_TRUE(ForceForeground(fenster, 2));
    EXPECT_EQ(fenster.aufrufe().zeilen,
              (Texte{"Fenstersystem.vordergrundfenster()", "Fenstersystem.fensterThread(1)",
                     "Fenstersystem.fensterThread(2)", "Fenstersystem.eingabeVerbinden(100, 200, an)",
                     "Fenstersystem.vordergrundSetzen(2)", "Fenstersystem.eingabeVerbinden(100, 200, aus)",
                     "Fenstersystem.istMinimiert(2)", "Fenstersystem.zeigen(2)"}));
}

TEST_F(Foreground, OwnThreadNeedsNoSharing) {
    fenster.vordergrund = 3;
    EXPECT_TRUE(ForceForeground(fenster, 2));
    EXPECT_EQ(fenster.aufrufe().zeilen,
              (Texte{"Fenstersystem.vordergrundfenster()", "Fenstersystem.fensterThread(3)",
                     "Fenstersystem.fensterThread(2)", "Fenstersystem.vordergrundSetzen(2)",
                     "Fenstersystem.istMinimiert(2)", "Fenstersystem.zeigen(2)"}));
}

TEST_F(Foreground, MinimisedWindowIsRestoredEvenWhenRefused) {
    fenster.fenster[2].minimiert = true;
    fenster.vordergrundErlaubt = false;
    EXPECT_FALSE(ForceForeground(fenster, 2));
    EXPECT_EQ(fenster.aufrufe().zeilen.back(), "Fenstersystem.wiederherstellen(2)");
    EXPECT_TRUE(fenster.fenster[2].sichtbar);
}

TEST(TitleBar, HeightFollowsTheScaleMode) {
    EXPECT_EQ(GetFensterTitelHoeheInTwips({kSkalenmodusTwips, 3000, 2600, 15}), 400);
    EXPECT_EQ(GetFensterTitelHoeheInTwips({kSkalenmodusPixel, 3000, 180, 15}), 300);
    EXPECT_EQ(GetFensterTitelHoeheInTwips({kSkalenmodusPixel, 3000, 180, 12}), 840);
    constexpr int kZentimeter = 7;
    try {
        GetFensterTitelHoeheInTwips({kZentimeter, 3000, 180, 15});
        ADD_FAILURE() << "no error";
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.nummer(), 1);
        EXPECT_EQ(fehler.quelle(), "GetFensterTitelHoeheInTwips");
        EXPECT_EQ(fehler.beschreibung(), "Nur Twips oder Pixel werden als Scalemode unterstützt.");
    }
}

TEST(ScreenArea, IsThatWithoutPanels) {
    FakeFenstersystem fenster;
    fenster.bereich = {24, 60, 1920, 1056};
    const Arbeitsbereich bereich = GetFreeScreenArea(fenster);
    EXPECT_EQ(bereich.oben, 24);
    EXPECT_EQ(bereich.links, 60);
    EXPECT_EQ(bereich.rechts, 1920);
    EXPECT_EQ(bereich.unten, 1056);
}

TEST(Sound, NeedsAPathAndADevice) {
    FakeKlang klang;
    PlayWave(klang, "");
    PlayWave(klang, "\\suite\\wendel.wav");
    EXPECT_EQ(klang.gespielt, Texte{"\\suite\\wendel.wav"});
    EXPECT_TRUE(HasWaveOutput(klang));
    klang.geraete = 0;
    EXPECT_FALSE(HasWaveOutput(klang));
}

}  // namespace
}  // namespace wendel
