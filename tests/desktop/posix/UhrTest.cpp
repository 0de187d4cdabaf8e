// The program's clock: the system's, or one started at a given moment, through both changes of summer time.

#include <ctime>

#include "desktop/LinuxUhr.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(Uhr, ShowsLocalTimeAsTheSystemDoes) {
    const Variable zone("TZ", "America/St_Johns");
    const auto system = [] {
        const std::time_t jetzt = std::time(nullptr);
        char text[15] = {};
        std::strftime(text, sizeof text, "%Y%m%d%H%M%S", std::localtime(&jetzt));
        return std::string(text);
    };
    const std::string vorher = system(), jetzt = datumKompakt(LinuxUhr().jetzt());
    EXPECT_TRUE(vorher <= jetzt && jetzt <= system()) << jetzt;
}

TEST(Uhr, EnvironmentStartsItAtAWholeMomentOrIsRefused) {
    std::string meldung;
    const Variable zeit("WENDEL_UHR", "2012-12-24 20:04:50");
    EXPECT_EQ("20121224200450", datumKompakt(LinuxUhr::ausUmgebung(meldung)->jetzt()));
    for (const char* text :
         {"2011-02-29 00:00:00", "2012-12-24 24:00:00", "2012-12-24 20:04", "2012-12-24 20:04:50 ",
          "24.12.2012 20:04:50", "2012-12-24 -1:04:50", "1899-12-24 20:04:50", "heute abend"}) {
        const Variable falsch("WENDEL_UHR", text);
        EXPECT_FALSE(LinuxUhr::ausUmgebung(meldung)) << text;
    }
    EXPECT_EQ(
        "WENDEL_UHR=\"heute abend\" ist keine gültige Zeit. Erwartet wird zum Beispiel \"2012-12-24 "
        "20:04:50\".",
        meldung);
}

TEST(Uhr, RunsOnThroughBothChangesOfSummerTime) {
    const Variable zone("TZ", "Europe/Berlin");
    ::tzset();
    const struct {
        const char *start, *gezeigt, *danach;
    } faelle[] = {{"2012-03-25 01:59:59", "20120325015959", "20120325030000"},
                  {"2012-10-28 02:59:59", "20121028025959", "20121028020000"},
                  {"2012-12-31 23:59:59", "20121231235959", "20130101000000"}};
    for (const auto& fall : faelle) {
        LinuxUhr uhr(*uhrAusText(fall.start));
        EXPECT_EQ(fall.gezeigt, datumKompakt(uhr.jetzt()));
        uhr.schlafe(uhr.msBisZurNaechstenSekunde());
        EXPECT_EQ(fall.danach, datumKompakt(uhr.jetzt()));
    }
    // A moment that this night does not have: the clock starts behind the gap.
    EXPECT_EQ("20120325033000", datumKompakt(LinuxUhr(*uhrAusText("2012-03-25 02:30:00")).jetzt()));
}

}  // namespace
}  // namespace wendel
