// Sound: who plays, that nobody waits for it, and that nothing happens where nothing can.

#include "desktop/LinuxKlang.h"

#include <algorithm>

#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

struct KlangTest : testing::Test {
    // A player that writes what it was told and ends so.
    void spieler(const std::string& name, const std::string& ende) {
        temp.skript("path/" + name,
                    "echo \"" + name + " $*\" >>" + (temp / "gespielt") + "; exit " + ende + "\n");
    }
    std::string gespielt(std::ptrdiff_t zeilen) const {
        std::string text;
        EXPECT_TRUE(warteBis([&] {
            text = inhaltVon(temp / "gespielt");
            return std::count(text.begin(), text.end(), '\n') >= zeilen;
        }));
        return text;
    }

    TempOrdner temp;
    Variable pfad{"PATH", temp / "path:/usr/bin:/bin"}, laufzeit{"XDG_RUNTIME_DIR", temp / "run"},
        server{"PULSE_SERVER", std::nullopt};
    LinuxKlang klang{temp / "asound"};
};

TEST_F(KlangTest, CountsCardsThatPlayElseAsksTheServer) {
    std::filesystem::create_directories(temp / "asound/card0/pcm0c");
    EXPECT_EQ(0, klang.ausgabegeraete()) << "a microphone";
    Lauscher pulse(temp / "run/pulse/native"), anderer(temp / "anderer");
    EXPECT_EQ(1, klang.ausgabegeraete());
    pulse.zumachen();
    EXPECT_EQ(0, klang.ausgabegeraete()) << "a socket that a crash left behind";
    {
        const Variable ort("PULSE_SERVER", "unix:" + (temp / "anderer"));
        EXPECT_EQ(1, klang.ausgabegeraete());
    }
    const Lauscher pipewire(temp / "run/pipewire-0");
    EXPECT_EQ(1, klang.ausgabegeraete());
    std::filesystem::create_directories(temp / "asound/card0/pcm0p");
    std::filesystem::create_directories(temp / "asound/card1/pcm3p");
    std::filesystem::create_directories(temp / "asound/cards");
    EXPECT_EQ(2, klang.ausgabegeraete());
}

TEST_F(KlangTest, FirstPlayerThatSucceedsPlays) {
    const std::string datei = temp.datei("tv/Glocke.wav", "");
    {
        const Variable ohneSpieler("PATH", temp / "leer");
        klang.spieleAsynchron(logischerPfad(datei));
    }
    spieler("pw-play", "1");
    spieler("paplay", "0");
    spieler("aplay", "0");
    // What can't be played would have its line before those of the next call, and a player too many, too.
    for (const std::string& stumm : {std::string(), temp.logisch("fehlt.wav"), logischerPfad(temp.pfad())})
        klang.spieleAsynchron(stumm);
    klang.spieleAsynchron(temp.logisch("tv/glocke.WAV"));
    const std::string einmal = "pw-play " + datei + "\npaplay " + datei + "\n";
    EXPECT_EQ(einmal, gespielt(2));
    klang.spieleAsynchron(logischerPfad(datei));
    EXPECT_EQ(einmal + einmal, gespielt(4));
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
