// The alarm of the machine's clock, on a folder that stands in for the kernel's: whose alarm the device
// holds, step by step. What a step needs of the kernel (an alarm that has gone off is no longer read) the
// test does.

#include <cstdlib>
#include <ctime>

#include "desktop/LinuxUhr.h"
#include "desktop/Weckalarm.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

class WeckalarmTest : public testing::Test {
  protected:
    std::string geraet() const { return inhaltVon(temp / "wakealarm"); }
    void geraet(const std::string& inhalt) const { temp.datei("wakealarm", inhalt); }
    std::string um(long minuten) const { return std::to_string(jetzt + minuten * 60); }
    bool stelle(long minuten) { return alarm.stelle(jetzt + minuten * 60); }

    const TempOrdner temp;
    const std::time_t jetzt = std::time(nullptr);
    Weckalarm alarm{temp.pfad()};
};

TEST_F(WeckalarmTest, HoldsOursInPlaceOfOurLastOneAndTakesItBack) {
    geraet("");
    EXPECT_TRUE(stelle(30) && geraet() == um(30)) << geraet();
    EXPECT_TRUE(stelle(20) && geraet() == um(20)) << geraet();
    EXPECT_TRUE(stelle(-1) && geraet() == "0") << "a moment that has passed needs none: " << geraet();
    EXPECT_TRUE(stelle(40) && alarm.stelle(std::nullopt) && geraet() == "0") << geraet();
}

TEST_F(WeckalarmTest, KeepsTheEarlierOfOursAndSomebodyElses) {
    geraet(um(30));
    EXPECT_TRUE(stelle(40) && geraet() == um(30)) << "theirs is earlier: " << geraet();
    EXPECT_TRUE(stelle(20) && geraet() == um(20)) << "ours is earlier: " << geraet();
    EXPECT_TRUE(alarm.stelle(std::nullopt) && geraet() == um(30)) << "theirs is put back: " << geraet();
    geraet("0");  // they took it back
    EXPECT_TRUE(stelle(50) && geraet() == um(50)) << geraet();
    Weckalarm naechsterLauf(temp.pfad());
    EXPECT_TRUE(naechsterLauf.stelle(jetzt + 50 * 60) && naechsterLauf.stelle(std::nullopt));
    EXPECT_EQ("0", geraet()) << "ours of the last run is ours";
}

TEST_F(WeckalarmTest, OursFollowsWhenTheirsHasGoneOff) {
    geraet(std::to_string(std::time(nullptr) + 1));
    EXPECT_TRUE(stelle(60));
    EXPECT_NE(um(60), geraet());
    EXPECT_TRUE(warteBis([&] {
        alarm.naechster();
        return geraet() == um(60);
    })) << geraet();
}

TEST_F(WeckalarmTest, CountsByTheDevicesClock) {
    geraet("");
    temp.datei("since_epoch", std::to_string(jetzt + 7202) + "\n");  // local time, two seconds fast
    EXPECT_TRUE(stelle(30) && geraet() == um(30 + 120)) << geraet();
}

TEST_F(WeckalarmTest, SaysWhenTheSystemDoesNotPermitIt) {
    EXPECT_FALSE(Weckalarm(temp / "missing").stelle(jetzt + 600));
    std::filesystem::create_symlink("/dev/full", temp / "wakealarm");  // opens, refuses each write
    EXPECT_FALSE(stelle(10));
    EXPECT_TRUE(alarm.stelle(std::nullopt)) << "nothing to take back";
}

// The moments by `date -d`, for the spring gap and the autumn hour by the rules of the zone.
TEST(Systemzeit, OfALocalMoment) {
    const Variable zone("TZ", "Europe/Berlin");
    const LinuxUhr uhr;
    const struct {
        const char* lokal;
        std::time_t weltzeit;
    } faelle[] = {{"2030-01-15 20:12:00", 1894734720},
                  {"2030-07-15 20:12:00", 1910369520},
                  {"2030-03-31 02:30:00", 1901151000},   // does not exist: 03:30
                  {"2030-10-27 02:30:00", 1919291400}};  // the first one
    for (const auto& fall : faelle) {
        EXPECT_LE(std::abs(fall.weltzeit - uhr.systemzeit(*uhrAusText(fall.lokal))), 1) << fall.lokal;
    }
    // A clock that was started at a given moment: an hour from its start is an hour from now.
    const LinuxUhr andere(*uhrAusText("2012-03-25 01:30:00"));
    EXPECT_LE(std::abs(std::time(nullptr) + 3600 - andere.systemzeit(*uhrAusText("2012-03-25 03:30:00"))), 1);
}

}  // namespace
}  // namespace wendel
