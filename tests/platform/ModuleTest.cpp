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

struct ProcessNames : testing::Test {
    ProcessNames() {
        prozesse.laufende = {{"\\usr\\lib\\Fennow.exe", 12},   {"kaffee", 7},
                             {"\\opt\\ÄRGER.EXE", 4294967295}, {"\\a\\fennow.exe", 13},
                             {"\\wendel.exe", 4711},           {"/usr/bin/x", 9}};
    }
    FakeProzesse prozesse;
};

TEST_F(ProcessNames, AreListedInLowerCaseWithTheirIds) {
    EXPECT_EQ(GetProcessList(prozesse), (Texte{"fennow.exe|12", "kaffee|7", "ärger.exe|4294967295",
                                               "fennow.exe|13", "wendel.exe|4711", "/usr/bin/x|9"}));
    for (const char* name : {"FENNOW.EXE", "Ärger.exe", "kaffee", "/usr/bin/x"})
        EXPECT_TRUE(IsProcessRunning(prozesse, name)) << name;
    for (const char* name : {"fennow", "x", "kaffee|7"})
        EXPECT_FALSE(IsProcessRunning(prozesse, name)) << name;
}

TEST_F(ProcessNames, EndsAllOfANameButNeverItself) {
    prozesse.unbeendbar = {13};
    EXPECT_TRUE(EndProcessByName(prozesse, "Fennow.exe")) << "one of them is enough";
    EXPECT_EQ(prozesse.beendet, std::vector<std::uint32_t>{12});
    EXPECT_FALSE(EndProcessByName(prozesse, "fennow.exe"));
    EXPECT_FALSE(EndProcessByName(prozesse, "wendel.exe"));
    EXPECT_TRUE(IsProcessRunning(prozesse, "wendel.exe"));
}

struct Foreground : testing::Test {
    Foreground() { fenster.fenster = {{1, {"anderes", 100}}, {2, {"Hinweis", 200}}, {3, {"Liste", 200}}}; }
    Texte aufrufe(Fensterhandle vorn, bool erwartet) {
        fenster.vordergrund = vorn;
        EXPECT_EQ(ForceForeground(fenster, 2), erwartet);
        return fenster.aufrufe().zeilen;
    }
    FakeFenstersystem fenster;
};

TEST_F(Foreground, WindowInFrontIsLeftAlone) {
    EXPECT_EQ(aufrufe(2, true), Texte{"Fenstersystem.vordergrundfenster()"});
}

TEST_F(Foreground, InputIsSharedOnlyAroundTheCall) {
    EXPECT_EQ(aufrufe(1, true),
              (Texte{"Fenstersystem.vordergrundfenster()", "Fenstersystem.fensterThread(1)",
                     "Fenstersystem.fensterThread(2)", "Fenstersystem.eingabeVerbinden(100, 200, an)",
                     "Fenstersystem.vordergrundSetzen(2)", "Fenstersystem.eingabeVerbinden(100, 200, aus)",
                     "Fenstersystem.istMinimiert(2)", "Fenstersystem.zeigen(2)"}));
}

TEST_F(Foreground, MinimisedWindowOfTheOwnThreadIsRestoredEvenWhenRefused) {
    fenster.fenster[2].minimiert = true;
    fenster.vordergrundErlaubt = false;
    EXPECT_EQ(aufrufe(3, false),
              (Texte{"Fenstersystem.vordergrundfenster()", "Fenstersystem.fensterThread(3)",
                     "Fenstersystem.fensterThread(2)", "Fenstersystem.vordergrundSetzen(2)",
                     "Fenstersystem.istMinimiert(2)", "Fenstersystem.wiederherstellen(2)"}));
}

TEST(TitleBar, HeightFollowsTheScaleMode) {
    EXPECT_EQ(GetFensterTitelHoeheInTwips({kSkalenmodusTwips, 3000, 2600, 15}), 400);
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

}  // namespace
}  // namespace wendel
