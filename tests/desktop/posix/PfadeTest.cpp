// Path conversion, the programme folder, shipped files, the machine's facts.

#include "desktop/Pfade.h"

#include "desktop/LinuxRechner.h"
#include "desktop/Programmordner.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(Pfade, ConvertOnlyTheSeparators) {
    EXPECT_EQ("/home/anna/Übersicht/", nativerPfad(R"(/home\\anna\\\Übersicht\)"));
    EXPECT_EQ("C:/TV/tvdaten.mdb", nativerPfad(R"(C:\TV\tvdaten.mdb)"));
    EXPECT_EQ(R"(\usr\bin\skarvel)", logischerPfad("/usr/bin/skarvel"));
    EXPECT_EQ("/home//anna/tv", pfadAnzeige(R"(\home\\anna/tv)"));
}

TEST(Programmordner, FollowsTheOrderOfItsSources) {
    const TempOrdner temp;
    temp.datei("mit/FENNOW.cfg", "");
    temp.datei("ohne/x", "");
    const std::string data = temp / "data", home = temp / "home", mit = temp / "mit", ohne = temp / "ohne";
    const std::pair<Programmlage, std::string> faelle[] = {
        {{temp / "eigener", data, home, mit}, temp / "eigener/"},
        {{"", data, home, mit}, temp / "mit/"},
        {{"", data, home, ohne}, temp / "data/wendel/"},
        {{"", "data", home, ""}, temp / "home/.local/share/wendel/"},  // relative: ignored
    };
    for (const auto& [lage, erwartet] : faelle) {
        EXPECT_EQ(logischerPfad(erwartet), programmordner(lage));
        EXPECT_TRUE(std::filesystem::is_directory(erwartet)) << erwartet;
    }
    EXPECT_EQ(std::nullopt, programmordner({temp / "ohne/x/ordner", "", "", ""}));
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
}

}  // namespace
}  // namespace wendel
