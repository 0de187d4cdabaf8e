// The descriptor that tells of clock steps and resumes, and the question whether there is a display.

#include <poll.h>

#include "desktop/Anzeigepruefung.h"
#include "desktop/AufwachMelder.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

using Anlass = AufwachMelder::Anlass;

TEST(AufwachMelder, TellsAResumeFromAClockStep) {
    EXPECT_EQ(Anlass::Aufgewacht, AufwachMelder::deute(true, 1000, 61000));
    EXPECT_EQ(Anlass::Aufgewacht, AufwachMelder::deute(false, 1000, 61000));
    EXPECT_EQ(Anlass::UhrGestellt, AufwachMelder::deute(true, 1000, 1001));
    EXPECT_EQ(Anlass::Nichts, AufwachMelder::deute(false, 1000, 999));
}

TEST(AufwachMelder, IsSilentWhileNothingHappens) {
    AufwachMelder melder;
    ASSERT_GE(melder.fd(), 0);
    pollfd warten{melder.fd(), POLLIN, 0};
    EXPECT_EQ(0, ::poll(&warten, 1, 300));
    EXPECT_EQ(Anlass::Nichts, melder.lesen());  // a needless call does not block
}

TEST(Anzeige, IsLookedForWhereTheToolkitWill) {
    const TempOrdner temp;
    const Lauscher wayland(temp / "wayland-7");
    Lauscher verlassen(temp / "wayland-8");
    verlassen.zumachen();
    const Variable laufzeit("XDG_RUNTIME_DIR", temp.pfad());
    constexpr const char* kKeinX = ":4711";
    using Wert = std::optional<std::string>;
    const struct {
        const char* name;
        Wert plattform, display, wayland;
        bool erwartet;
    } faelle[] = {
        {"nothing at all", std::nullopt, std::nullopt, std::nullopt, false},
        {"empty variables", "", "", "", false},
        {"X that does not answer", std::nullopt, kKeinX, std::nullopt, false},
        {"wayland", std::nullopt, std::nullopt, "wayland-7", true},
        {"wayland by its path", std::nullopt, std::nullopt, temp / "wayland-7", true},
        {"wayland beside a dead X", std::nullopt, kKeinX, "wayland-7", true},
        {"wayland that has gone", std::nullopt, std::nullopt, "wayland-8", false},
        {"X demanded", "xcb", kKeinX, "wayland-7", false},
        {"wayland demanded", "wayland-egl", kKeinX, "wayland-7", true},
        {"either will do", "xcb;wayland", kKeinX, "wayland-7", true},
        {"no display needed", "offscreen", std::nullopt, std::nullopt, true},
        {"with arguments", "minimal:enable_fonts", std::nullopt, std::nullopt, true},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        const Variable a("QT_QPA_PLATFORM", fall.plattform), b("DISPLAY", fall.display),
            c("WAYLAND_DISPLAY", fall.wayland);
        EXPECT_EQ(fall.erwartet, anzeigeErreichbar());
    }
}

TEST(Anzeige, RealXServerIsFound) {
    if (!::getenv("DISPLAY")) GTEST_SKIP() << "no display here; the headless desktop runs this test";
    const Variable plattform("QT_QPA_PLATFORM", "xcb");
    EXPECT_TRUE(anzeigeErreichbar());
}

}  // namespace
}  // namespace wendel
