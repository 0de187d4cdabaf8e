// The process list and the ending of processes, on real ones: copies of a program under names of our own.

#include <map>

#include "desktop/LinuxProzesse.h"
#include "desktop/Pfade.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

constexpr auto kEineMinute = "60";

std::map<std::uint32_t, std::string> alle(LinuxProzesse& prozesse) {
    std::map<std::uint32_t, std::string> pfade;
    for (const Prozess& prozess : prozesse.liste())
        pfade[prozess.id] = prozess.pfad;
    return pfade;
}

std::string pfadVon(LinuxProzesse& prozesse, std::uint32_t id) {
    const auto pfade = alle(prozesse);
    const auto gefunden = pfade.find(id);
    return gefunden == pfade.end() ? "" : gefunden->second;
}

// The list shows a child under the test's own name until it has become the program.
bool heisstBald(LinuxProzesse& prozesse, const Kind& kind, const std::string& pfad) {
    return warteBis([&] { return pfadVon(prozesse, kind.id()) == pfad; });
}

TEST(Prozesspfad, ScriptsAndForeignProgramsAreNamedAfterThemselves) {
    const struct {
        const char *name, *exe;
        std::vector<std::string> argumente;
        const char* erwartet;
    } faelle[] = {
        {"program", "/usr/bin/firefox", {"firefox", "x.html"}, R"(\usr\bin\firefox)"},
        {"suite program", "/opt/tv/skarvel", {"skarvel"}, R"(\opt\tv\skarvel.exe)"},
        {"suite program in capitals", "/opt/tv/FENNOW", {"x"}, R"(\opt\tv\FENNOW.exe)"},
        {"suite name with extension", "/opt/tv/fennow.exe", {"x"}, R"(\opt\tv\fennow.exe)"},
        {"longer name", "/opt/tv/skarvel2", {"x"}, R"(\opt\tv\skarvel2)"},
        {"shell script", "/usr/bin/dash", {"/bin/sh", "/opt/tv/skarvel"}, R"(\opt\tv\skarvel.exe)"},
        {"script with an option of its first line", "/usr/bin/bash", {"bash", "-e", "./tv.sh"}, R"(.\tv.sh)"},
        {"versioned interpreter",
         "/usr/bin/python3.11",
         {"python3", "-u", "/opt/fennow"},
         R"(\opt\fennow.exe)"},
        {"command text is no script", "/usr/bin/bash", {"bash", "-c", "sleep 5"}, R"(\usr\bin\bash)"},
        {"bundled options", "/usr/bin/bash", {"bash", "-lc", "sleep 5"}, R"(\usr\bin\bash)"},
        {"module", "/usr/bin/python3.11", {"python3", "-m", "http.server"}, R"(\usr\bin\python3.11)"},
        {"login shell", "/usr/bin/bash", {"-bash"}, R"(\usr\bin\bash)"},
        {"no command line", "/usr/bin/bash", {}, R"(\usr\bin\bash)"},
        {"foreign loader",
         "/usr/lib/wine/wine64-preloader",
         {R"(C:\TV\fennow.exe)", "/x"},
         R"(C:\TV\fennow.exe)"},
        {"emulator", "/usr/bin/qemu-aarch64", {"qemu-aarch64", "/opt/drumlet"}, R"(\opt\drumlet.exe)"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.erwartet, prozesspfad(fall.exe, fall.argumente));
    }
}

class ProzesseTest : public ::testing::Test {
  protected:
    std::string kopie(const std::string& name) const {
        std::filesystem::copy_file("/bin/sleep", temp / name);
        return temp / name;
    }
    std::string logisch(const std::string& name) const { return logischerPfad(temp / name); }

    TempOrdner temp;
    LinuxProzesse prozesse;
};

TEST_F(ProzesseTest, TwoInstancesGiveTwoEntries) {
    const std::string programm = kopie("skarvel");
    Kind eins({programm, kEineMinute}), zwei({programm, kEineMinute});
    EXPECT_TRUE(heisstBald(prozesse, eins, logisch("skarvel.exe")));
    EXPECT_TRUE(heisstBald(prozesse, zwei, logisch("skarvel.exe")));
}

TEST_F(ProzesseTest, ScriptIsListedAndReplacedProgramKeepsItsName) {
    const std::string skript = temp.skript("sendersuche", "read zeile\n");
    const std::string programm = kopie("umbau");
    Kind eins({skript}), zwei({programm, kEineMinute});
    EXPECT_TRUE(heisstBald(prozesse, eins, logisch("sendersuche")));
    EXPECT_TRUE(heisstBald(prozesse, zwei, logisch("umbau")));
    std::filesystem::remove(programm);
    EXPECT_EQ(logisch("umbau"), pfadVon(prozesse, zwei.id()));
}

TEST_F(ProzesseTest, ZombiesAndKernelThreadsDoNotRun) {
    Kind zombie([](int) {});
    zombie.warteOhneErnte();
    const auto pfade = alle(prozesse);
    EXPECT_EQ(0u, pfade.count(zombie.id()));
    EXPECT_FALSE(prozesse.beenden(zombie.id()));
    ASSERT_EQ(1u, pfade.count(static_cast<std::uint32_t>(::getpid())));
    for (const auto& [id, pfad] : pfade)
        EXPECT_NE("", pfad) << id;
}

TEST_F(ProzesseTest, EndingAsksFirst) {
    Kind kind({kopie("beendbar"), kEineMinute});
    ASSERT_TRUE(heisstBald(prozesse, kind, logisch("beendbar")));
    EXPECT_TRUE(prozesse.beenden(kind.id()));
    const int status = kind.warte();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
    EXPECT_FALSE(prozesse.beenden(kind.id()));
}

// A process that does not listen to SIGTERM.
std::function<void(int)> stur() {
    return [](int fertig) {
        ::signal(SIGTERM, SIG_IGN);
        [[maybe_unused]] const ssize_t n = ::write(fertig, "x", 1);
        while (true)
            ::pause();
    };
}

TEST_F(ProzesseTest, StubbornOneIsKilledByTheTimer) {
    std::vector<std::pair<int, std::function<void()>>> wecker;
    constexpr std::chrono::milliseconds kFrist(100);
    LinuxProzesse mitWecker(
        [&](int ms, std::function<void()> was) { wecker.emplace_back(ms, std::move(was)); }, kFrist);
    Kind kind(stur());
    kind.lies();
    ASSERT_TRUE(mitWecker.beenden(kind.id()));
    ASSERT_EQ(1u, wecker.size());
    EXPECT_GT(wecker[0].first, kFrist.count());
    wecker[0].second();  // too early
    EXPECT_EQ(0, ::kill(static_cast<pid_t>(kind.id()), 0));
    std::this_thread::sleep_for(kFrist);
    wecker[0].second();
    const int status = kind.warte();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST_F(ProzesseTest, StubbornOneIsKilledAtALaterCallWithoutTimer) {
    LinuxProzesse ohneWecker({}, std::chrono::milliseconds(50));
    Kind kind(stur());
    kind.lies();
    ASSERT_TRUE(ohneWecker.beenden(kind.id()));
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_FALSE(ohneWecker.liste().empty());
    const int status = kind.warte();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST_F(ProzesseTest, TimerMayOutliveTheList) {
    std::function<void()> wecker;
    Kind kind(stur());
    kind.lies();
    {
        LinuxProzesse kurz([&](int, std::function<void()> was) { wecker = std::move(was); },
                           std::chrono::milliseconds(0));
        ASSERT_TRUE(kurz.beenden(kind.id()));
    }
    wecker();
    EXPECT_EQ(0, ::kill(static_cast<pid_t>(kind.id()), 0));
}

TEST_F(ProzesseTest, OnlyOwnProcessesAreEndedAndNeverThisOne) {
    EXPECT_FALSE(prozesse.beenden(static_cast<std::uint32_t>(::getpid())));
    EXPECT_FALSE(prozesse.beenden(0));
    EXPECT_FALSE(prozesse.beenden(1));
    EXPECT_FALSE(prozesse.beenden(0xFFFFFFFFu));
    if (::geteuid() != 0) GTEST_SKIP() << "another user's process needs root";
    constexpr uid_t kNobody = 65534;
    Kind fremder({"/bin/sleep", kEineMinute}, kNobody);
    ASSERT_TRUE(warteBis([&] { return pfadVon(prozesse, fremder.id()).ends_with("sleep"); }));
    EXPECT_FALSE(prozesse.beenden(fremder.id()));
}

}  // namespace
}  // namespace wendel
