// Path conversion, the programme folder, shipped files, the configuration folder, the machine's facts.

#include "desktop/LinuxRechner.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(Pfade, ConvertOnlyTheSeparators) {
    struct Fall {
        const char *name, *logisch, *nativ;
    };
    const Fall faelle[] = {
        {"empty", "", ""},
        {"bare name", "kestrin.cfg", "kestrin.cfg"},
        {"absolute", R"(\home\anna\tv\fennow.cfg)", "/home/anna/tv/fennow.cfg"},
        {"closing separator stays", R"(\home\anna\)", "/home/anna/"},
        {"doubled separators collapse", R"(\home\\anna\\\tv)", "/home/anna/tv"},
        {"both kinds", R"(/home\anna/tv)", "/home/anna/tv"},
        {"mixed pair collapses", R"(/home/\anna)", "/home/anna"},
        {"drive letters are ordinary", R"(C:\TV\tvdaten.mdb)", "C:/TV/tvdaten.mdb"},
        {"root", R"(\)", "/"},
        {"umlauts", "\\Übersicht\\ß", "/Übersicht/ß"},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.nativ, nativerPfad(fall.logisch));
    }
    EXPECT_EQ(R"(\usr\bin\skarvel)", logischerPfad("/usr/bin/skarvel"));
    EXPECT_EQ("/home//anna/tv", pfadAnzeige(R"(\home\\anna/tv)"));
    EXPECT_EQ("c", letzterTeil("/a/b/c"));
    EXPECT_EQ("/a/b", elternordner("/a/b/c"));
    EXPECT_EQ("/", elternordner("/a"));
    EXPECT_EQ(".", elternordner("a"));
}

TEST(Programmordner, FollowsTheOrderOfItsSources) {
    const TempOrdner temp;
    temp.datei("mit/FENNOW.cfg", "");
    std::filesystem::create_directory(temp / "ohne");
    struct Fall {
        const char* name;
        Programmlage lage;
        std::string erwartet;
    };
    const std::string data = temp / "data", home = temp / "home", mit = temp / "mit", ohne = temp / "ohne";
    const Fall faelle[] = {
        {"WENDEL_ORDNER wins", {temp / "eigener", data, home, mit}, temp / "eigener/"},
        {"closing slash once", {temp / "eigener/", data, home, mit}, temp / "eigener/"},
        {"beside fennow.cfg, case ignored", {"", data, home, mit}, temp / "mit/"},
        {"no fennow.cfg there", {"", data, home, ohne}, temp / "data/wendel/"},
        {"default data folder", {"", "", home, ohne}, temp / "home/.local/share/wendel/"},
        {"relative data folder is ignored", {"", "data", home, ohne}, temp / "home/.local/share/wendel/"},
        {"executable unknown", {"", data, home, ""}, temp / "data/wendel/"},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(logischerPfad(fall.erwartet), programmordner(fall.lage));
        EXPECT_TRUE(std::filesystem::is_directory(fall.erwartet));
    }
}

TEST(Programmordner, RelativeFolderBecomesAbsolute) {
    const TempOrdner temp;
    const auto vorher = std::filesystem::current_path();
    std::filesystem::current_path(temp.pfad());
    const auto ordner = programmordner({"hier", "", "", ""});
    std::filesystem::current_path(vorher);
    EXPECT_EQ(logischerPfad(temp / "hier/"), ordner);
}

TEST(Programmordner, IsMissingWhereItCannotBeMade) {
    const TempOrdner temp;
    temp.datei("datei", "");
    EXPECT_EQ(std::nullopt, programmordner({temp / "datei/ordner", "", "", ""}));
}

TEST(Programmordner, ReadsTheProcess) {
    const Variable ordner("WENDEL_ORDNER", "/srv/tv"), data("XDG_DATA_HOME", "/srv/data"),
        home("HOME", "/srv/home");
    const Programmlage lage = programmlage();
    EXPECT_EQ("/srv/tv", lage.wendelOrdner);
    EXPECT_EQ("/srv/data", lage.xdgDataHome);
    EXPECT_EQ("/srv/home", lage.home);
    EXPECT_EQ(std::filesystem::read_symlink("/proc/self/exe").parent_path().string(),
              lage.programmdateiOrdner);
}

TEST(Konfigurationsordner, IsTheDesktopsOrItsDefault) {
    const Variable home("HOME", "/srv/home");
    const Variable gesetzt("XDG_CONFIG_HOME", "/srv/config");
    EXPECT_EQ("/srv/config", konfigurationsordner());
    const Variable fehlt("XDG_CONFIG_HOME", std::nullopt);
    EXPECT_EQ("/srv/home/.config", konfigurationsordner());
}

TEST(ShippedFile, IsTakenFromTheProgrammeFolderFirst) {
    const TempOrdner temp;
    const Programmlage lage{"", "", "", temp / "build/bin"};
    const std::string programm = logischerPfad(temp / "tv/");
    EXPECT_EQ("", mitgelieferteDatei(programm, "wendel.wav", lage));
    temp.datei("build/share/wendel/wendel.wav", "");
    EXPECT_EQ(logischerPfad(temp / "build/share/wendel/wendel.wav"),
              mitgelieferteDatei(programm, "wendel.wav", lage));
    temp.datei("tv/wendel.wav", "");
    EXPECT_EQ(logischerPfad(temp / "tv/wendel.wav"), mitgelieferteDatei(programm, "wendel.wav", lage));
}

TEST(Rechner, NameIsShortUpperCaseAndCut) {
    struct Fall {
        const char *name, *host, *erwartet;
    };
    const Fall faelle[] = {
        {"plain", "buero", "BUERO"},
        {"domain is dropped", "buero.example.org", "BUERO"},
        {"fifteen characters", "wohnzimmer-rechner", "WOHNZIMMER-RECH"},
        {"characters, not bytes", "wohnzimmertürenrechner", "WOHNZIMMERTÜREN"},
        {"nothing before the dot", ".local", ""},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.erwartet, rechnernameAusHostname(fall.host));
    }
}

TEST(Rechner, FillsTheBufferAsThePlatformDoes) {
    const Variable ersatz("WENDEL_RECHNER", "pc-buero");
    std::string puffer(16, ' ');
    ASSERT_TRUE(LinuxRechner().rechnername(puffer));
    EXPECT_EQ(std::string("PC-BUERO\0       ", 16), puffer);
}

TEST(Rechner, UsesTheHostNameByDefault) {
    const Variable ersatz("WENDEL_RECHNER", std::nullopt);
    std::string puffer(16, ' ');
    char host[256] = {};
    ASSERT_EQ(0, ::gethostname(host, sizeof host - 1));
    ASSERT_TRUE(LinuxRechner().rechnername(puffer));
    EXPECT_EQ(rechnernameAusHostname(host), puffer.substr(0, puffer.find('\0')));
}

TEST(Rechner, FreeMemoryIsWhatIsAvailable) {
    EXPECT_EQ(
        1024 * 1500,
        freierSpeicherAus("MemTotal:  8000 kB\nMemFree: 900 kB\nMemAvailable:   1500 kB\nBuffers: 1 kB\n"));
    EXPECT_EQ(2147483647, freierSpeicherAus("MemAvailable:   64000000 kB\n"));
    EXPECT_EQ(2147483647, freierSpeicherAus("MemAvailable:   9223372036854775807 kB\n"));
    EXPECT_EQ(0, freierSpeicherAus("MemFree: 900 kB\n"));
    EXPECT_EQ(0, freierSpeicherAus("MemAvailable:"));
    EXPECT_GT(LinuxRechner().freierSpeicher(), 1024 * 1024);
}

TEST(Rechner, ChanceIsUniformAndDiffersByRun) {
    LinuxRechner a, b;
    double summe = 0;
    constexpr int kZahl = 10000;
    for (int i = 0; i < kZahl; ++i) {
        const double z = a.zufall();
        ASSERT_GE(z, 0.0);
        ASSERT_LT(z, 1.0);
        summe += z;
    }
    EXPECT_NEAR(0.5, summe / kZahl, 0.03);  // ten standard deviations
    EXPECT_NE(a.zufall(), b.zufall());
}

}  // namespace
}  // namespace wendel
