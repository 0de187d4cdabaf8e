// Sound: who plays, that nobody waits for it, and that nothing happens where nothing can.

#include "desktop/LinuxKlang.h"
#include "desktop/Pfade.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

class KlangTest : public ::testing::Test {
  protected:
    KlangTest()
        : pfad_("PATH", temp / "path:/usr/bin:/bin"),
          laufzeit_("XDG_RUNTIME_DIR", temp / "run"),
          server_("PULSE_SERVER", std::nullopt) {}

    // A player that writes what it was told and ends so.
    void spieler(const std::string& name, int ende) {
        temp.skript("path/" + name, "echo \"" + name + " $*\" >>" + (temp / "gespielt") + "; exit " +
                                        std::to_string(ende) + "\n");
    }
    std::string gespielt(std::size_t zeilen) const {
        EXPECT_TRUE(warteBis([&] {
            const std::string text = inhaltVon(temp / "gespielt");
            return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) >= zeilen;
        }));
        return inhaltVon(temp / "gespielt");
    }

    TempOrdner temp;
    Variable pfad_, laufzeit_, server_;
    LinuxKlang klang{temp / "asound"};
};

TEST_F(KlangTest, CountsCardsThatPlayElseAskTheServer) {
    EXPECT_EQ(0, klang.ausgabegeraete());
    std::filesystem::create_directories(temp / "asound/card0/pcm0c");
    EXPECT_EQ(0, klang.ausgabegeraete()) << "a microphone";
    {
        Lauscher pulse(temp / "run/pulse/native");
        EXPECT_EQ(1, klang.ausgabegeraete());
        pulse.zumachen();
        EXPECT_EQ(0, klang.ausgabegeraete()) << "a socket that a crash left behind";
    }
    {
        const Lauscher pipewire(temp / "run/pipewire-0");
        EXPECT_EQ(1, klang.ausgabegeraete());
    }
    {
        const Lauscher anderer(temp / "anderer");
        const Variable server("PULSE_SERVER", "unix:" + (temp / "anderer"));
        EXPECT_EQ(1, klang.ausgabegeraete());
    }
    std::filesystem::create_directories(temp / "asound/card0/pcm0p");
    std::filesystem::create_directories(temp / "asound/card1/pcm3p");
    std::filesystem::create_directories(temp / "asound/cards");
    EXPECT_EQ(2, klang.ausgabegeraete());
}

TEST_F(KlangTest, FirstPlayerThatSucceedsPlays) {
    const std::string datei = temp.datei("tv/Glocke.wav", "");
    spieler("pw-play", 1);
    spieler("paplay", 0);
    spieler("aplay", 0);
    klang.spieleAsynchron(logischerPfad(temp / "tv/glocke.WAV"));
    const std::string einmal = "pw-play " + datei + "\npaplay " + datei + "\n";
    EXPECT_EQ(einmal, gespielt(2));
    // A player too many would have its line before those of the next call.
    klang.spieleAsynchron(logischerPfad(datei));
    EXPECT_EQ(einmal + einmal, gespielt(4));
}

TEST_F(KlangTest, NobodyWaitsForThePlayer) {
    temp.datei("a.wav", "");
    temp.skript("path/pw-play", "echo $$ >" + (temp / "pid") + "; exec sleep 60\n");
    const auto anfang = std::chrono::steady_clock::now();
    klang.spieleAsynchron(logischerPfad(temp / "a.wav"));
    EXPECT_LT(std::chrono::steady_clock::now() - anfang, std::chrono::seconds(2));
    ASSERT_TRUE(warteBis([&] { return inhaltVon(temp / "pid").ends_with('\n'); }));
    EXPECT_EQ(0, ::kill(std::stoi(inhaltVon(temp / "pid")), SIGTERM));
    EXPECT_EQ(-1, ::waitpid(-1, nullptr, WNOHANG)) << "a child of ours is left";
}

TEST_F(KlangTest, NothingToPlayIsSilent) {
    spieler("pw-play", 0);
    klang.spieleAsynchron("");
    klang.spieleAsynchron(logischerPfad(temp / "fehlt.wav"));
    klang.spieleAsynchron(logischerPfad(temp.pfad()));
    const std::string datei = temp.datei("b.wav", "");
    {
        const Variable ohneSpieler("PATH", temp / "leer");
        klang.spieleAsynchron(logischerPfad(datei));
    }
    klang.spieleAsynchron(logischerPfad(datei));
    EXPECT_EQ("pw-play " + datei + "\n", gespielt(1)) << "only the last call has something to play";
}

// Records what the desktop's silent output is given.
TEST(RealSound, ShippedFileIsHeard) {
    if (!::getenv("HEADLESS_DESKTOP") || LinuxKlang().ausgabegeraete() == 0)
        GTEST_SKIP() << "no private desktop with sound here; the test desktop.klang-und-anzeige has one";
    const TempOrdner temp;
    Kind aufnahme({"/usr/bin/parec", "-d", "test.monitor", "--raw", temp / "aufnahme"});
    ASSERT_TRUE(warteBis([&] { return inhaltVon(temp / "aufnahme").size() > 10000; }))
        << "nothing is recorded";
    // The name alone leads to the shipped file.
    LinuxKlang().spieleAsynchron(logischerPfad(temp / "wendel.wav"));
    EXPECT_TRUE(warteBis([&] {
        const std::string werte = inhaltVon(temp / "aufnahme");
        return werte.find_first_not_of('\0') != std::string::npos;
    })) << "only silence";
}

TEST(ShippedSound, IsAPleasantShortWave) {
    const std::string wav = inhaltVon(std::string(WENDEL_SOURCE_DIR) + "/assets/klang/wendel.wav");
    // RIFF/WAVE: PCM, one channel, 44100 Hz, 16 bits.
    ASSERT_GT(wav.size(), 44u);
    EXPECT_EQ("RIFF", wav.substr(0, 4));
    EXPECT_EQ(std::string("WAVEfmt \x10\0\0\0\1\0\1\0\x44\xAC\0\0", 20), wav.substr(8, 20));
    const std::size_t werte = (wav.size() - 44) / 2;
    EXPECT_GE(werte, 44100u);
    EXPECT_LE(werte, 44100u * 3 / 2);
    auto wert = [&](std::size_t i) {
        return static_cast<std::int16_t>(static_cast<unsigned char>(wav[44 + 2 * i]) |
                                         static_cast<unsigned char>(wav[45 + 2 * i]) << 8);
    };
    int lautester = 0;
    for (std::size_t i = 0; i < werte; ++i)
        lautester = std::max(lautester, std::abs(int{wert(i)}));
    EXPECT_GT(lautester, 10000);
    EXPECT_LT(lautester, 30000);
    EXPECT_LT(std::abs(int{wert(0)}), 200) << "it would begin with a click";
    EXPECT_LT(std::abs(int{wert(werte - 1)}), 200) << "it would end with a click";
}

}  // namespace
}  // namespace wendel
