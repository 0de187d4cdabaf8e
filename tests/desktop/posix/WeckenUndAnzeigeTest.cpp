// The descriptor that tells of clock steps and resumes, and the question whether there is a display.

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "desktop/Anzeigepruefung.h"
#include "desktop/AufwachMelder.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(AufwachMelder, TellsAResumeFromAClockStepAndIsSilentOtherwise) {
    using Anlass = AufwachMelder::Anlass;
    EXPECT_EQ(Anlass::Aufgewacht, AufwachMelder::deute(true, 1000, 61000));
    EXPECT_EQ(Anlass::UhrGestellt, AufwachMelder::deute(true, 1000, 1001));
    EXPECT_EQ(Anlass::Nichts, AufwachMelder::deute(false, 1000, 999));
    AufwachMelder melder;
    pollfd warten{melder.fd(), POLLIN, 0};
    EXPECT_EQ(0, ::poll(&warten, 1, 300));
    EXPECT_EQ(Anlass::Nichts, melder.lesen());  // a needless call does not block
}

TEST(Anzeige, IsLookedForWhereTheToolkitWill) {
    const TempOrdner temp;
    const int lauscher = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un adresse{AF_UNIX, {}};
    (temp / "wayland-7").copy(adresse.sun_path, sizeof adresse.sun_path - 1);
    ASSERT_EQ(0, ::bind(lauscher, reinterpret_cast<const sockaddr*>(&adresse), sizeof adresse));
    ASSERT_EQ(0, ::listen(lauscher, 9));
    const Variable laufzeit("XDG_RUNTIME_DIR", temp.pfad());
    const std::string keinX = ":4711";
    const struct {
        const char* plattform;
        std::string display, wayland;
        bool erwartet;
    } faelle[] = {
        {"", keinX, "", false},
        {"", "", temp / "wayland-7", true},
        {"", keinX, "wayland-7", true},
        {"", "", "wayland-8", false},
        {"xcb", keinX, "wayland-7", false},
        {"minimal:enable_fonts", "", "", true},
    };
    for (const auto& fall : faelle) {
        const Variable a("QT_QPA_PLATFORM", fall.plattform), b("DISPLAY", fall.display),
            c("WAYLAND_DISPLAY", fall.wayland);
        EXPECT_EQ(fall.erwartet, anzeigeErreichbar()) << &fall - faelle;
    }
    ::close(lauscher);
}

TEST(Anzeige, RealXServerIsFound) {
    if (!::getenv("DISPLAY")) GTEST_SKIP() << "no display here; the headless desktop runs this test";
    const Variable plattform("QT_QPA_PLATFORM", "xcb");
    EXPECT_TRUE(anzeigeErreichbar());
}

}  // namespace
}  // namespace wendel
