// Starting programs and documents: the codes, the arguments, and that nothing of ours goes along.

#include "desktop/LinuxDateistarter.h"
#include "desktop/Programmzeile.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(Argumente, AreSplitAtBlanksOutsideQuotes) {
    using Texte = std::vector<std::string>;
    EXPECT_EQ((Texte{"/commandtext=Aktivieren und zeigen", "/m"}),
              argumenteAus(R"( /commandtext="Aktivieren und zeigen"  /m)"));
    EXPECT_EQ((Texte{R"(\tv daten\)", "x", ""}), argumenteAus(R"("\tv daten\" x "")"));
    EXPECT_EQ((Texte{R"(sagte "ja")", "ü b"}), argumenteAus("\"sagte \"\"ja\"\"\"\t\"ü b"));
}

struct Starter : testing::Test {
    Starter() { std::filesystem::create_directories(temp / "path"); }

    int starte(const std::string& datei, const std::string& parameter = "", const std::string& ordner = "") {
        const bool imTest = datei.find('/') != std::string::npos && datei.find(':') == std::string::npos;
        return LinuxDateistarter(temp / "eigen")
            .ausfuehren(imTest ? temp.logisch(datei) : datei, parameter, ordner, 1);
    }
    // A script that writes its name, arguments and folder, one behind the other.
    void programm(const std::string& name, const std::string& ausgabe = R"(echo "${0##*/}" "$@"; /bin/pwd)") {
        temp.skript(name, "{ " + ausgabe + "; } >" + (temp / "teil") + "; /bin/mv " + (temp / "teil") + " " +
                              (temp / "bericht") + "\n");
    }
    std::string bericht() const {
        EXPECT_TRUE(warteBis([&] { return std::filesystem::exists(temp / "bericht"); }));
        const std::string text = inhaltVon(temp / "bericht");
        std::filesystem::remove(temp / "bericht");
        return text;
    }

    TempOrdner temp;
    Variable pfad{"PATH", temp / "path"};
    const std::string hier = "\n" + std::filesystem::current_path().string() + "\n";
};

TEST_F(Starter, FailuresHaveTheirCodes) {
    temp.datei("tv/ohne.exe", "#!/bin/sh\n", 0644);
    temp.datei("tv/kaputt", "\x01\x02\x03\x04", 0755);
    temp.datei("tv/verwaist", "#!/gibt/es/nicht\n", 0755);
    temp.datei("tv/bild.xyz", "bild", 0644);
    temp.datei("tv/geheim.html", "", 0);
    const std::pair<const char*, int> faelle[] = {{"tv/fehlt.exe", 2}, {"fehlt/x.exe", 3},
                                                  {"tv/ohne.exe", 5},  {"tv/kaputt", 11},
                                                  {"tv/verwaist", 2},  {"tv/bild.xyz", 31}};
    for (const auto& [datei, code] : faelle)
        EXPECT_EQ(code, starte(datei)) << datei;
    programm("path/xdg-open");
    EXPECT_EQ(5, ohneRootrechte([&] { return starte("tv/geheim.html"); }));
}

TEST_F(Starter, ProgramsAreFoundUnderTheirUnixNames) {
    for (const char* name : {"tv/kurz", "eigen/fennow", "eigen/anderes", "path/werkzeug"})
        programm(name);
    EXPECT_EQ(33, starte("tv/KURZ.EXE", R"(/commandtext="Zeige dich" ü)"));
    EXPECT_EQ("kurz /commandtext=Zeige dich ü" + hier, bericht());
    // One of the suite also beside the running program, any other not; a bare name in PATH.
    EXPECT_EQ(33, starte("fort/Fennow.exe", "/m", temp.logisch("fort")));
    EXPECT_EQ("fennow /m\n" + (temp / "eigen") + "\n", bericht());
    EXPECT_EQ(2, starte("tv/anderes.exe"));
    EXPECT_EQ(33, starte("werkzeug.exe"));
    EXPECT_EQ("werkzeug" + hier, bericht());
}

TEST_F(Starter, DocumentsGoToTheOpener) {
    const std::string dokument = temp.datei("Tv/Hilfe.html", "<html>");
    programm("path/xdg-open");
    const std::string adresse = "https://example.org/a b";
    for (const auto& [datei, geoeffnet] :
         {std::pair(std::string("Tv/hilfe.HTML"), dokument), {adresse, adresse}}) {
        EXPECT_EQ(33, starte(datei));
        EXPECT_EQ("xdg-open " + geoeffnet + hier, bericht());
    }
    const std::pair<int, int> endstaende[] = {{1, 0}, {2, 2}, {3, 31}, {5, 5}};
    ::signal(SIGCHLD, SIG_IGN);  // as some launchers leave it
    for (const auto& [ende, code] : endstaende) {
        temp.skript("path/xdg-open", "exit " + std::to_string(ende) + "\n");
        EXPECT_EQ(code, starte("Tv/Hilfe.html")) << ende;
    }
    ::signal(SIGCHLD, SIG_DFL);
    // One that shows the document itself is not waited for.
    temp.skript("path/xdg-open", "echo $$ >" + (temp / "pid") + "; exec /bin/sleep 60\n");
    EXPECT_EQ(33, starte("Tv/Hilfe.html"));
    EXPECT_EQ(0, ::kill(std::stoi(inhaltVon(temp / "pid")), SIGKILL)) << "it must have lived on";
}

TEST_F(Starter, StartedProgramIsOnItsOwn) {
    programm("tv/frei",
             "/bin/ls /proc/self/fd | /bin/grep -c .; /bin/grep SigIgn /proc/self/status; echo $PPID");
    const int offen = ::dup(0);  // not marked to be closed
    ::signal(SIGPIPE, SIG_IGN);
    ASSERT_EQ(33, starte("tv/frei"));
    ::signal(SIGPIPE, SIG_DFL);
    ::close(offen);
    // Standard input, output, error, and the folder that ls itself reads.
    const std::string text = bericht(), anfang = "4\nSigIgn:\t0000000000000000\n";
    EXPECT_EQ(anfang, text.substr(0, anfang.size()));
    EXPECT_NE(std::to_string(::getpid()) + "\n", text.substr(anfang.size()));
    EXPECT_EQ(-1, ::waitpid(-1, nullptr, WNOHANG)) << "a child of ours is left";
}

TEST_F(Starter, CommandLinesOfScriptsFindTheirProgram) {
    temp.datei("tv/kaputt", "\x01\x02\x03\x04", 0755);
    temp.datei("tv/ohne", "#!/bin/sh\n", 0644);
    for (const char* name : {"tv/kurz", "tv app/lang", "tv app/mein tv", "tv/mit\\strich", "path/werkzeug"})
        programm(name);
    // "@" is the folder of the test; nothing is started where no report is expected.
    const std::pair<std::string, std::string> faelle[] = {
        {R"(@/tv/kurz  /kanal=3 "zwei Worte" a\z)", R"(kurz /kanal=3 zwei Worte a\z)"},
        {R"("@\tv app\LANG" -x)", "lang -x"},
        {R"( @\tv app\lang -x "y z")", "lang -x y z"},
        {"@/tv app/mein tv", "mein tv"},
        {R"(@/tv/mit\strich)", R"(mit\strich)"},
        {"werkzeug ü", "werkzeug ü"},
        {"fehlt -x", ""},
        {R"("@/tv app/fehlt" -x)", ""},
        {R"("@/tv" app/lang)", ""},
        {"@/tv/kaputt", ""},
        {"@/tv/ohne", ""},
        {"@/tv", ""},
        {"", ""}};
    for (auto [zeile, erwartet] : faelle) {
        for (std::size_t i; (i = zeile.find('@')) != std::string::npos;)
            zeile.replace(i, 1, temp.pfad());
        const bool gestartet = starteProgrammzeile(zeile);
        EXPECT_EQ(gestartet ? bericht() : hier, erwartet + hier) << zeile;
    }
}

}  // namespace
}  // namespace wendel
