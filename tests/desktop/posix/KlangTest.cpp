// Sound: who plays, that nobody waits for it, and that nothing happens where nothing can.

#include "desktop/LinuxKlang.h"

#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

struct KlangTest : testing::Test {
    TempOrdner temp;
    Variable pfad{"PATH", temp / "path:/usr/bin:/bin"}, laufzeit{"XDG_RUNTIME_DIR", temp / "run"},
        server{"PULSE_SERVER", std::nullopt};
    LinuxKlang klang{temp / "asound"};
};

// With a sound server and no card it is RealSound that would find none.
TEST_F(KlangTest, CountsCardsThatPlay) {
    std::filesystem::create_directories(temp / "asound/card0/pcm0c");
    EXPECT_EQ(0, klang.ausgabegeraete()) << "a microphone";
    for (const char* ordner : {"asound/card0/pcm0p", "asound/card1/pcm3p", "asound/cards"})
        std::filesystem::create_directories(temp / ordner);
    EXPECT_EQ(2, klang.ausgabegeraete());
}

TEST_F(KlangTest, FirstPlayerThatSucceedsPlays) {
    const std::string datei = temp.datei("tv/Glocke.wav", "");
    {
        const Variable ohneSpieler("PATH", temp / "leer");
        klang.spieleAsynchron(logischerPfad(datei));
    }
    for (const std::string name : {"pw-play", "paplay", "aplay"})
        temp.skript("path/" + name,
                    "echo \"" + name + " $*\" >>" + (temp / "gespielt") + "; [ " + name + " != pw-play ]\n");
    // What can't be played would have its line before those of the next call, and a player too many, too.
    for (const std::string& stumm : {std::string(), temp.logisch("fehlt.wav"), logischerPfad(temp.pfad())})
        klang.spieleAsynchron(stumm);
    klang.spieleAsynchron(temp.logisch("tv/glocke.WAV"));
    const std::string einmal = "pw-play " + datei + "\npaplay " + datei + "\n";
    EXPECT_TRUE(warteBis([&] { return inhaltVon(temp / "gespielt") == einmal; }));
    klang.spieleAsynchron(logischerPfad(datei));
    EXPECT_TRUE(warteBis([&] { return inhaltVon(temp / "gespielt") == einmal + einmal; }));
}

// Records what the desktop's silent output is given.
TEST(RealSound, ShippedFileIsHeard) {
    if (!::getenv("HEADLESS_DESKTOP") || LinuxKlang().ausgabegeraete() == 0)
        GTEST_SKIP() << "no private desktop with sound here; the test desktop.klang-und-anzeige has one";
    const TempOrdner temp;
    const std::string datei = temp / "aufnahme";
    Kind aufnahme([&](int) {
        ::execl("/usr/bin/parec", "parec", "-d", "test.monitor", "--raw", datei.c_str(), nullptr);
    });
    ASSERT_TRUE(warteBis([&] { return inhaltVon(datei).size() > 10000; })) << "nothing is recorded";
    // The name alone leads to the shipped file.
    LinuxKlang().spieleAsynchron(temp.logisch("wendel.wav"));
    EXPECT_TRUE(warteBis([&] { return inhaltVon(datei).find_first_not_of('\0') != std::string::npos; }))
        << "only silence";
}

}  // namespace
}  // namespace wendel
