// Path conversion, the programme folder, shipped files, the machine's facts.

#include "desktop/Pfade.h"

#include "desktop/LinuxRechner.h"
#include "desktop/Programmordner.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(Pfade, ConvertOnlyTheSeparators) {
    const std::pair<const char*, const char*> faelle[] = {
        {"", ""},
        {R"(\home\anna\Übersicht\)", "/home/anna/Übersicht/"},
        {R"(\home\\anna\\\tv)", "/home/anna/tv"},
        {R"(/home/\anna\tv)", "/home/anna/tv"},
        {R"(C:\TV\tvdaten.mdb)", "C:/TV/tvdaten.mdb"},
        {R"(\)", "/"},
    };
    for (const auto& [logisch, nativ] : faelle)
        EXPECT_EQ(nativ, nativerPfad(logisch));
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
    temp.datei("ohne/x", "");
    const std::string data = temp / "data", home = temp / "home", mit = temp / "mit", ohne = temp / "ohne";
    const struct {
        const char* name;
        Programmlage lage;
        std::string erwartet;
    } faelle[] = {
        {"WENDEL_ORDNER wins", {temp / "eigener", data, home, mit}, temp / "eigener/"},
        {"closing slash once", {temp / "eigener/", data, home, mit}, temp / "eigener/"},
        {"beside fennow.cfg, case ignored", {"", data, home, mit}, temp / "mit/"},
        {"no fennow.cfg there", {"", data, home, ohne}, temp / "data/wendel/"},
        {"default data folder", {"", "", home, ohne}, temp / "home/.local/share/wendel/"},
        {"relative data folder is ignored", {"", "data", home, ""}, temp / "home/.local/share/wendel/"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(logischerPfad(fall.erwartet), programmordner(fall.lage));
        EXPECT_TRUE(std::filesystem::is_directory(fall.erwartet));
    }
    EXPECT_EQ(std::nullopt, programmordner({temp / "ohne/x/ordner", "", "", ""}));
    const auto vorher = std::filesystem::current_path();
    std::filesystem::current_path(temp.pfad());
    EXPECT_EQ(temp.logisch("hier/"), programmordner({"hier", "", "", ""}));
    std::filesystem::current_path(vorher);
}

TEST(ShippedFile, IsTakenFromTheProgrammeFolderFirst) {
    const TempOrdner temp;
    const auto gesucht = [&] {
        return mitgelieferteDatei(temp.logisch("tv/"), "wendel.wav", {"", "", "", temp / "build/bin"});
    };
    EXPECT_EQ("", gesucht());
    for (const char* name : {"build/share/wendel/wendel.wav", "tv/wendel.wav"}) {
        temp.datei(name, "");
        EXPECT_EQ(temp.logisch(name), gesucht());
    }
}

TEST(Rechner, NameIsShortUpperCaseAndCutToTheBuffer) {
    const std::pair<const char*, const char*> faelle[] = {{"pc-buero.example.org", "PC-BUERO"},
                                                          {"wohnzimmer-rechner", "WOHNZIMMER-RECH"},
                                                          {"wohnzimmertürenrechner", "WOHNZIMMERTÜREN"},
                                                          {".local", ""}};
    for (const auto& [host, erwartet] : faelle)
        EXPECT_EQ(erwartet, rechnernameAusHostname(host));
    const Variable ersatz("WENDEL_RECHNER", "pc-buero");
    std::string puffer(16, ' ');
    ASSERT_TRUE(LinuxRechner().rechnername(puffer));
    EXPECT_EQ(std::string("PC-BUERO\0       ", 16), puffer);
    const Variable ohne("WENDEL_RECHNER", std::nullopt);
    char host[256] = {};
    ASSERT_EQ(0, ::gethostname(host, sizeof host - 1));
    ASSERT_TRUE(LinuxRechner().rechnername(puffer));
    EXPECT_EQ(rechnernameAusHostname(host), puffer.substr(0, puffer.find('\0')));
}

TEST(Rechner, FreeMemoryIsWhatIsAvailable) {
    EXPECT_EQ(1024 * 1500, freierSpeicherAus("MemFree: 900 kB\nMemAvailable:   1500 kB\nBuffers: 1 kB\n"));
    EXPECT_EQ(2147483647, freierSpeicherAus("MemAvailable:   9223372036854775807 kB\n"));
    EXPECT_EQ(0, freierSpeicherAus("MemFree: 900 kB\n"));
    EXPECT_EQ(0, freierSpeicherAus("MemAvailable:"));
    EXPECT_GT(LinuxRechner().freierSpeicher(), 1024 * 1024);
}

}  // namespace
}  // namespace wendel
