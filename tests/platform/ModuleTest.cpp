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

TEST(ProcessNames, AreComparedInLowerCaseAndWhole) {
    FakeProzesse prozesse;
    prozesse.laufende = {{"\\usr\\lib\\Fennow.exe", 12}, {"\\opt\\ÄRGER.EXE", 4294967295}, {"/usr/bin/x", 9}};
    EXPECT_TRUE(IsProcessRunning(prozesse, "FENNOW.EXE") && IsProcessRunning(prozesse, "Ärger.exe"));
    EXPECT_FALSE(IsProcessRunning(prozesse, "fennow") || IsProcessRunning(prozesse, "x"));
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

TEST_F(Foreground, IsLeftAloneInFrontAndSharesInputOnlyAroundTheCall) {
    EXPECT_EQ(aufrufe(2, true), Texte{"Fenstersystem.vordergrundfenster()"});
    fenster.aufrufe().zeilen.clear();
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

}  // namespace
}  // namespace wendel
