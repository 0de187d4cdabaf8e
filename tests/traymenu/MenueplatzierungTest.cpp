// Where menu windows go, worked out by hand for screens with panels on each side, and the colours of a row.

#include "traymenu/Menueplatzierung.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

#include "traymenu/Farbverlauf.h"

namespace wendel {
namespace {

constexpr Arbeitsbereich kUnten{0, 0, 1920, 1040}, kOben{40, 0, 1920, 1080}, kLinks{0, 60, 1920, 1080},
    kRechts{0, 0, 1860, 1080}, kZweiter{30, 1920, 3200, 1024}, kDarueber{-1080, 0, 1920, -40};
constexpr Groesse kMenue{300, 400};

TEST(MenuPlacement, PutsTheTopWindowsLowerRightCornerAtThePointer) {
    const std::tuple<const char*, Punkt, Groesse, Arbeitsbereich, Punkt> faelle[] = {
        {"tray below, right corner", {1900, 1060}, kMenue, kUnten, {1600, 640}},
        {"tray above, left corner", {5, 5}, kMenue, kOben, {0, 40}},
        {"panel left", {30, 1000}, kMenue, kLinks, {60, 600}},
        {"panel right", {1900, 1000}, kMenue, kRechts, {1560, 600}},
        {"second monitor, left edge", {1925, 1010}, kMenue, kZweiter, {1920, 610}},
        {"monitor above", {1900, -20}, kMenue, kDarueber, {1600, -440}},
        {"taller than the screen", {1900, 1060}, {300, 2000}, kOben, {1600, 40}},
    };
    for (const auto& [name, zeiger, menue, frei, ort] : faelle)
        EXPECT_EQ(Menueplatzierung::obermenue(zeiger, menue, frei), ort) << name;
}

TEST(MenuPlacement, PutsASubMenuBesideItsParent) {
    const std::tuple<const char*, Rechteck, int, Groesse, Arbeitsbereich, Punkt> faelle[] = {
        {"room on the right", {100, 200, 250, 300}, 42, kMenue, kUnten, {350, 242}},
        {"ends exactly at the edges", {1370, 600, 250, 300}, 40, kMenue, kUnten, {1620, 640}},
        {"a pixel too far right", {1371, 600, 250, 300}, 40, kMenue, kUnten, {1071, 640}},
        {"moved up", {1600, 740, 300, 300}, 40, kMenue, kUnten, {1300, 640}},
        {"taller than the screen", {1600, 740, 300, 300}, 40, {300, 1100}, kUnten, {1300, 0}},
        {"monitor above", {1600, -340, 300, 300}, 0, kMenue, kDarueber, {1300, -440}},
        {"no room on either side", {200, 100, 1650, 300}, 0, kMenue, kUnten, {0, 100}},
    };
    for (const auto& [name, eltern, y, menue, frei, ort] : faelle)
        EXPECT_EQ(Menueplatzierung::untermenue(eltern, y, menue, frei), ort) << name;
}

TEST(MenuPlacement, LeavesRoomForASubMenuOnOneSide) {
    for (const Arbeitsbereich& frei : {kUnten, kZweiter, kLinks}) {
        const int breite = Menueplatzierung::hoechstbreite(frei);
        for (int links = frei.links; links + breite <= frei.rechts; ++links) {
            const Rechteck eltern{links, 100, breite, 300};
            const int x = Menueplatzierung::untermenue(eltern, 0, {breite, 300}, frei).x;
            ASSERT_TRUE(x == eltern.rechts() || x == links - breite) << links;
        }
    }
    EXPECT_EQ(Menueplatzierung::hoechstbreite({0, 0, 800, 600}), 320);
    EXPECT_EQ(Menueplatzierung::hoechstbreite({0, 0, 300, 200}), 300);
}

TEST(Gradient, MixesTheThreePartsLineByLine) {
    using ::testing::ElementsAre;
    EXPECT_EQ(Farbverlauf::sechsstellig(0x64FF), "0064FF");
    EXPECT_EQ(Farbverlauf::sechsstellig(0x800A64FF), "0A64FF") << "a system colour's mark is cut off";
    EXPECT_THAT(Farbverlauf::anteile(0x0A64FF), ElementsAre(10, 100, 255));
    EXPECT_THAT(Farbverlauf::verlauf(0x0010FF, 0x0A0000, 3), ElementsAre(0x0010FF, 0x050880, 0x0A0000));
    EXPECT_THAT(Farbverlauf::verlauf(0x123456, 0xFFFFFF, 1), ElementsAre(0x123456));
    EXPECT_THAT(Farbverlauf::verlauf(1, 2, 0), ElementsAre());
}

}  // namespace
}  // namespace wendel
