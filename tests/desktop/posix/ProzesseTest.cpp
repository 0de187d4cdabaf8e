// The process list, the ending of processes, and the lock of the running copy, on real processes: copies of a
// program under names of our own.

#include <map>

#include "desktop/Einzelinstanz.h"
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
        {"/usr/bin/dash", {"/bin/sh", "/opt/tv/skarvel"}, R"(\opt\tv\skarvel.exe)"},
        {"/usr/bin/python3.11", {"python3", "-u", "/opt/fennow"}, R"(\opt\fennow.exe)"},
        {"/usr/bin/bash", {"bash", "-lc", "sleep 5"}, R"(\usr\bin\bash)"},
        {"/usr/bin/bash", {}, R"(\usr\bin\bash)"},
        {"/usr/lib/wine/wine64-preloader", {R"(C:\TV\fennow.exe)", "/x"}, R"(C:\TV\fennow.exe)"},
    };
    for (const auto& fall : faelle)
        EXPECT_EQ(fall.erwartet, prozesspfad(fall.exe, fall.argumente));
}

struct ProzesseTest : testing::Test {
    // A process that does not listen to SIGTERM.
    static void stur(int fertig) {
        ::signal(SIGTERM, SIG_IGN);
        Kind::bleibe(fertig);
    }
    std::map<std::uint32_t, std::string> alle() {
        std::map<std::uint32_t, std::string> pfade;
        for (const Prozess& prozess : prozesse.liste())
            pfade[prozess.id] = prozess.pfad;
        return pfade;
    }

    TempOrdner temp;
    LinuxProzesse prozesse;
};

TEST_F(ProzesseTest, EveryInstanceIsListedWhileItRunsAndEndingAsksFirst) {
    const std::string programm = temp / "skarvel";
    std::filesystem::copy_file("/bin/sleep", programm);
    const auto schlafe = [&](int) { ::execl(programm.c_str(), programm.c_str(), "60", nullptr); };
    Kind eins(schlafe), zwei(schlafe), zombie([](int) {});
    for (const Kind* kind : {&eins, &zwei})  // under the test's own name until it has become the program
        EXPECT_TRUE(warteBis([&] { return alle()[kind->id()] == temp.logisch("skarvel.exe"); }));
    siginfo_t angaben{};
    ::waitid(P_PID, zombie.id(), &angaben, WEXITED | WNOWAIT);
    std::filesystem::remove(programm);
    EXPECT_EQ(temp.logisch("skarvel.exe"), alle()[eins.id()]) << "a replaced program keeps its name";
    EXPECT_FALSE(alle().contains(zombie.id()) || prozesse.beenden(zombie.id()));
    EXPECT_TRUE(prozesse.beenden(eins.id()));
    EXPECT_EQ(SIGTERM, WTERMSIG(eins.warte()));
    EXPECT_FALSE(prozesse.beenden(eins.id()));
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
    Kind fremder([](int fertig) { Kind::bleibe(fertig, ::setuid(65534) == 0 ? 'x' : '-'); });
    ASSERT_EQ('x', fremder.lies());
    EXPECT_FALSE(prozesse.beenden(fremder.id()));
}

// One running copy: the lock goes with its process, however that ends.
using Ergebnis = Einzelinstanz::Ergebnis;

TEST(Einzelinstanz, IsHeldUntilTheFirstProcessIsKilled) {
    const TempOrdner temp;
    const std::string sperre = temp / "neu/wendel.lock";
    Kind erste([&](int fertig) {
        Einzelinstanz instanz(sperre);
        Kind::bleibe(fertig, instanz.ergebnis() == Ergebnis::Erste ? '1' : '2');
    });
    ASSERT_EQ('1', erste.lies());
    Einzelinstanz zweite(sperre);
    EXPECT_EQ(Ergebnis::Zweite, zweite.ergebnis());
    erste.toete(SIGKILL);
    erste.warte();
    EXPECT_EQ(Ergebnis::Erste, Einzelinstanz(sperre).ergebnis());
    EXPECT_EQ(Ergebnis::NichtPruefbar, Einzelinstanz(temp.datei("datei", "") + "/wendel.lock").ergebnis());
}

}  // namespace
}  // namespace wendel
