// The process list and the ending of processes, on real ones: copies of a program under names of our own.

#include <map>

#include "desktop/LinuxProzesse.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(Prozesspfad, ScriptsAndForeignProgramsAreNamedAfterThemselves) {
    const struct {
        const char* exe;
        std::vector<std::string> argumente;
        const char* erwartet;
    } faelle[] = {
        {"/usr/bin/firefox", {"firefox", "x.html"}, R"(\usr\bin\firefox)"},
        {"/opt/tv/FENNOW", {"x"}, R"(\opt\tv\FENNOW.exe)"},
        {"/opt/tv/fennow.exe", {"x"}, R"(\opt\tv\fennow.exe)"},
        {"/opt/tv/skarvel2", {"x"}, R"(\opt\tv\skarvel2)"},
        {"/usr/bin/dash", {"/bin/sh", "/opt/tv/skarvel"}, R"(\opt\tv\skarvel.exe)"},
        {"/usr/bin/bash", {"bash", "-e", "./tv.sh"}, R"(.\tv.sh)"},
        {"/usr/bin/python3.11", {"python3", "-u", "/opt/fennow"}, R"(\opt\fennow.exe)"},
        {"/usr/bin/bash", {"bash", "-lc", "sleep 5"}, R"(\usr\bin\bash)"},
        {"/usr/bin/python3.11", {"python3", "-m", "http.server"}, R"(\usr\bin\python3.11)"},
        {"/usr/bin/bash", {}, R"(\usr\bin\bash)"},
        {"/usr/lib/wine/wine64-preloader", {R"(C:\TV\fennow.exe)", "/x"}, R"(C:\TV\fennow.exe)"},
        {"/usr/bin/qemu-aarch64", {"qemu-aarch64", "/opt/drumlet"}, R"(\opt\drumlet.exe)"},
    };
    for (const auto& fall : faelle)
        EXPECT_EQ(fall.erwartet, prozesspfad(fall.exe, fall.argumente))
            << testing::PrintToString(fall.argumente);
}

struct ProzesseTest : testing::Test {
    // A function that becomes a program.
    static std::function<void(int)> werde(const std::string& programm) {
        return [programm](int) { ::execl(programm.c_str(), programm.c_str(), "60", nullptr); };
    }
    // A process that does not listen to SIGTERM.
    static void stur(int fertig) {
        ::signal(SIGTERM, SIG_IGN);
        [[maybe_unused]] const ssize_t n = ::write(fertig, "x", 1);
        while (true)
            ::pause();
    }
    std::string kopie(const std::string& name) const {
        std::filesystem::copy_file("/bin/sleep", temp / name);
        return temp / name;
    }
    std::map<std::uint32_t, std::string> alle() {
        std::map<std::uint32_t, std::string> pfade;
        for (const Prozess& prozess : prozesse.liste())
            pfade[prozess.id] = prozess.pfad;
        return pfade;
    }
    // The list shows a child under the test's own name until it has become the program.
    bool heisstBald(const Kind& kind, const std::string& name) {
        return warteBis([&] { return alle()[kind.id()] == temp.logisch(name); });
    }

    TempOrdner temp;
    LinuxProzesse prozesse;
};

TEST_F(ProzesseTest, EveryInstanceIsListedWhileItRuns) {
    const std::string programm = kopie("skarvel");
    const std::string skript = temp.skript("sendersuche", "while :; do sleep 0.1; done\n");
    Kind eins(werde(programm)), zwei(werde(programm)), drei(werde(skript)), zombie([](int) {});
    EXPECT_TRUE(heisstBald(eins, "skarvel.exe") && heisstBald(zwei, "skarvel.exe"));
    EXPECT_TRUE(heisstBald(drei, "sendersuche"));
    siginfo_t angaben{};
    ::waitid(P_PID, zombie.id(), &angaben, WEXITED | WNOWAIT);
    std::filesystem::remove(programm);
    auto pfade = alle();
    EXPECT_EQ(temp.logisch("skarvel.exe"), pfade[eins.id()]) << "a replaced program keeps its name";
    EXPECT_EQ(0u, pfade.count(zombie.id()));
    EXPECT_FALSE(prozesse.beenden(zombie.id()));
    for (const auto& [id, pfad] : pfade)
        EXPECT_NE("", pfad) << id;
}

TEST_F(ProzesseTest, EndingAsksFirst) {
    Kind kind(werde(kopie("beendbar")));
    ASSERT_TRUE(heisstBald(kind, "beendbar"));
    EXPECT_TRUE(prozesse.beenden(kind.id()));
    EXPECT_EQ(SIGTERM, WTERMSIG(kind.warte()));
    EXPECT_FALSE(prozesse.beenden(kind.id()));
}

TEST_F(ProzesseTest, StubbornOneIsKilledByTheTimerElseAtALaterCall) {
    constexpr std::chrono::milliseconds kFrist(100);
    std::vector<std::pair<int, std::function<void()>>> wecker;
    const auto spaeter = [&](int ms, std::function<void()> was) { wecker.emplace_back(ms, std::move(was)); };
    LinuxProzesse mitWecker(spaeter, kFrist), ohneWecker({}, kFrist);
    Kind eins(stur), zwei(stur), drei(stur);
    for (const Kind* kind : {&eins, &zwei, &drei})
        kind->lies();
    ASSERT_TRUE(mitWecker.beenden(eins.id()) && ohneWecker.beenden(zwei.id()));
    ASSERT_TRUE(LinuxProzesse(spaeter, std::chrono::milliseconds(0)).beenden(drei.id()));
    ASSERT_EQ(2u, wecker.size());
    EXPECT_GT(wecker[0].first, kFrist.count());
    wecker[0].second();  // too early
    EXPECT_EQ(0, ::kill(static_cast<pid_t>(eins.id()), 0));
    std::this_thread::sleep_for(kFrist);
    wecker[0].second();
    EXPECT_FALSE(ohneWecker.liste().empty());
    EXPECT_EQ(SIGKILL, WTERMSIG(eins.warte()));
    EXPECT_EQ(SIGKILL, WTERMSIG(zwei.warte()));
    wecker[1].second();  // outlives its list
    EXPECT_EQ(0, ::kill(static_cast<pid_t>(drei.id()), 0));
}

TEST_F(ProzesseTest, OnlyOwnProcessesAreEndedAndNeverThisOne) {
    for (const std::uint32_t id : {static_cast<std::uint32_t>(::getpid()), 0u, 1u, 0xFFFFFFFFu})
        EXPECT_FALSE(prozesse.beenden(id)) << id;
    if (::geteuid() != 0) GTEST_SKIP() << "another user's process needs root";
    Kind fremder([](int fertig) {
        [[maybe_unused]] const ssize_t n = ::write(fertig, ::setuid(65534) == 0 ? "x" : "", 1);
        ::pause();
    });
    ASSERT_EQ('x', fremder.lies());
    EXPECT_FALSE(prozesse.beenden(fremder.id()));
}

}  // namespace
}  // namespace wendel
