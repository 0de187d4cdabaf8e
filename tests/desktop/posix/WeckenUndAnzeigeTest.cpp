// The descriptor that tells of clock steps and resumes, and the question whether there is a display.

#include <poll.h>

#include "desktop/Anzeigepruefung.h"
#include "desktop/AufwachMelder.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(AufwachMelder, TellsAResumeFromAClockStepAndIsSilentOtherwise) {
    using Anlass = AufwachMelder::Anlass;
    EXPECT_EQ(Anlass::Aufgewacht, AufwachMelder::deute(true, 1000, 61000));
    EXPECT_EQ(Anlass::Aufgewacht, AufwachMelder::deute(false, 1000, 61000));
    EXPECT_EQ(Anlass::UhrGestellt, AufwachMelder::deute(true, 1000, 1001));
    EXPECT_EQ(Anlass::Nichts, AufwachMelder::deute(false, 1000, 999));
    AufwachMelder melder;
    pollfd warten{melder.fd(), POLLIN, 0};
    ASSERT_GE(melder.fd(), 0);
    EXPECT_EQ(0, ::poll(&warten, 1, 300));
    EXPECT_EQ(Anlass::Nichts, melder.lesen());  // a needless call does not block
}

TEST(Anzeige, IsLookedForWhereTheToolkitWill) {
    const TempOrdner temp;
    const Lauscher wayland(temp / "wayland-7");
    Lauscher(temp / "wayland-8").zumachen();
    const Variable laufzeit("XDG_RUNTIME_DIR", temp.pfad());
    const std::string keinX = ":4711";
    const struct {
        const char *name, *plattform;
        std::string display, wayland;
        bool erwartet;
    } faelle[] = {
        {"nothing at all", "", "", "", false},
        {"X that does not answer", "", keinX, "", false},
        {"wayland by its path", "", "", temp / "wayland-7", true},
        {"wayland beside a dead X", "", keinX, "wayland-7", true},
        {"wayland that has gone", "", "", "wayland-8", false},
        {"X demanded", "xcb", keinX, "wayland-7", false},
        {"wayland demanded", "wayland-egl", keinX, "wayland-7", true},
        {"either will do", "xcb;wayland", keinX, "wayland-7", true},
        {"no display needed", "minimal:enable_fonts", "", "", true},
    };
    for (const auto& fall : faelle) {
        const Variable a("QT_QPA_PLATFORM", fall.plattform), b("DISPLAY", fall.display),
            c("WAYLAND_DISPLAY", fall.wayland);
        EXPECT_EQ(fall.erwartet, anzeigeErreichbar()) << fall.name;
    }
}

TEST(Anzeige, RealXServerIsFound) {
    if (!::getenv("DISPLAY")) GTEST_SKIP() << "no display here; the headless desktop runs this test";
    const Variable plattform("QT_QPA_PLATFORM", "xcb");
    EXPECT_TRUE(anzeigeErreichbar());
}

}  // namespace
}  // namespace wendel
