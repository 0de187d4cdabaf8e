// Starting programs and documents: the codes, the arguments, and that nothing of ours goes along.

#include "desktop/Abloesung.h"
#include "desktop/LinuxDateistarter.h"
#include "desktop/Pfade.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

TEST(Argumente, AreSplitAtBlanksOutsideQuotes) {
    const struct {
        const char *name, *parameter;
        std::vector<std::string> erwartet;
    } faelle[] = {
        {"none", "  ", {}},
        {"two", "/m  /pcstart", {"/m", "/pcstart"}},
        {"quoted value",
         R"(/commandtext="Aktivieren und zeigen" /m)",
         {"/commandtext=Aktivieren und zeigen", "/m"}},
        {"quoted path ends in a backslash", R"("\tv daten\" x)", {R"(\tv daten\)", "x"}},
        {"empty argument", R"(a "" b)", {"a", "", "b"}},
        {"doubled quote", R"("sagte ""ja""")", {R"(sagte "ja")"}},
        {"unclosed quote", R"("a b)", {"a b"}},
        {"umlauts and TAB", "Bär\tÜber", {"Bär", "Über"}},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.erwartet, argumenteAus(fall.parameter));
    }
}

class Starter : public ::testing::Test {
  protected:
    Starter() : pfad_("PATH", temp / "path") { std::filesystem::create_directories(temp / "path"); }

    int starte(const std::string& datei, const std::string& parameter = "", const std::string& ordner = "") {
        LinuxDateistarter starter(temp / "eigen");
        return starter.ausfuehren(logischerPfad(temp / datei), parameter, ordner, 1);
    }
    // A script that writes its name, arguments and folder.
    void programm(const std::string& name) {
        temp.skript(name, R"({ echo "${0##*/}"; for a; do echo "[$a]"; done; /bin/pwd; } >)" +
                              (temp / "teil") + "; /bin/mv " + (temp / "teil") + " " + (temp / "bericht") +
                              "\n");
    }
    std::string bericht() const {
        EXPECT_TRUE(warteBis([&] { return std::filesystem::exists(temp / "bericht"); }));
        const std::string text = inhaltVon(temp / "bericht");
        std::filesystem::remove(temp / "bericht");
        return text;
    }
    std::string hier() const { return std::filesystem::current_path().string() + "\n"; }

    TempOrdner temp;
    Variable pfad_;
};

TEST_F(Starter, FailuresHaveTheirCodes) {
    temp.datei("tv/ohne.exe", "#!/bin/sh\n", 0644);
    temp.datei("tv/kurz", "#!/bin/sh\n", 0644);
    temp.datei("tv/kaputt", "\x01\x02\x03\x04", 0755);
    temp.datei("tv/kaputt.exe", "MZ\x90", 0755);
    temp.datei("tv/verwaist", "#!/gibt/es/nicht\n", 0755);
    temp.datei("tv/bild.xyz", "bild", 0644);
    std::filesystem::create_symlink("nirgends", temp / "tv/leer");
    const struct {
        const char *name, *datei;
        int erwartet;
    } faelle[] = {
        {"missing file", "tv/fehlt.exe", 2},
        {"dangling link", "tv/leer", 2},
        {"missing folder", "fehlt/x.exe", 3},
        {"folder is a file", "tv/bild.xyz/x.exe", 3},
        {"no x bit", "tv/ohne.exe", 5},
        {"no x bit on the short name", "tv/kurz.exe", 5},
        {"no x bit on a script without extension", "tv/kurz", 5},
        {"no format", "tv/kaputt", 11},
        {"foreign format", "tv/kaputt.exe", 11},
        {"missing interpreter", "tv/verwaist", 2},
        {"document, no opener", "tv/bild.xyz", 31},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.erwartet, starte(fall.datei));
    }
    programm("tv/gut");
    EXPECT_EQ(3, starte("tv/gut", "", logischerPfad(temp / "fehlt")));
    EXPECT_EQ(2, LinuxDateistarter().ausfuehren(std::string("a\0b", 3), "", "", 1));
}

TEST_F(Starter, ProgramsAreFoundUnderTheirUnixNames) {
    programm("tv/voll.exe");
    programm("tv/kurz");
    programm("eigen/fennow");
    programm("eigen/anderes");
    programm("path/werkzeug");
    const std::string tv = logischerPfad(temp / "tv");
    EXPECT_EQ(33, starte("tv/voll.exe", "", tv));
    EXPECT_EQ("voll.exe\n" + (temp / "tv") + "\n", bericht());
    EXPECT_EQ(33, starte("tv/KURZ.EXE", R"(/commandtext="Zeige dich" ü)"));
    EXPECT_EQ("kurz\n[/commandtext=Zeige dich]\n[ü]\n" + hier(), bericht());
    // One of the suite also beside the running program, any other not.
    EXPECT_EQ(33, starte("tv/fennow.exe", "/m", tv));
    EXPECT_EQ("fennow\n[/m]\n" + (temp / "tv") + "\n", bericht());
    EXPECT_EQ(33, starte("fort/Fennow.exe", "", logischerPfad(temp / "fort")));
    EXPECT_EQ("fennow\n" + (temp / "eigen") + "\n", bericht());
    EXPECT_EQ(2, starte("tv/anderes.exe"));
    // A bare name in PATH.
    EXPECT_EQ(33, LinuxDateistarter().ausfuehren("werkzeug.exe", "", "", 1));
    EXPECT_EQ("werkzeug\n" + hier(), bericht());
    EXPECT_EQ(2, LinuxDateistarter().ausfuehren("gibt-es-nicht.exe", "", "", 1));
}

TEST_F(Starter, DocumentsGoToTheOpener) {
    const std::string dokument = temp.datei("Tv/Hilfe.html", "<html>");
    temp.datei("Tv/nutzlos.html", "<html>", 0755);  // as on a file system without x bits
    programm("path/xdg-open");
    EXPECT_EQ(33, starte("Tv/hilfe.HTML"));
    EXPECT_EQ("xdg-open\n[" + dokument + "]\n" + hier(), bericht());
    EXPECT_EQ(33, starte("Tv/nutzlos.html"));
    EXPECT_EQ("xdg-open\n[" + (temp / "Tv/nutzlos.html") + "]\n" + hier(), bericht());
    EXPECT_EQ(33, LinuxDateistarter().ausfuehren("https://example.org/a b", "", "https://example.org", 1));
    EXPECT_EQ("xdg-open\n[https://example.org/a b]\n" + hier(), bericht());
    EXPECT_EQ(33, starte("Tv"));
    EXPECT_EQ("xdg-open\n[" + (temp / "Tv") + "]\n" + hier(), bericht());
    EXPECT_EQ(2, starte("Tv/fehlt.html"));

    const std::pair<int, int> endstaende[] = {{0, 33}, {1, 0}, {2, 2}, {3, 31}, {4, 31}, {5, 5}};
    for (const auto& [ende, code] : endstaende) {
        SCOPED_TRACE(ende);
        temp.skript("path/xdg-open", "exit " + std::to_string(ende) + "\n");
        EXPECT_EQ(code, starte("Tv/Hilfe.html"));
    }
}

TEST_F(Starter, OpenerThatShowsTheDocumentItselfIsNotWaitedFor) {
    temp.datei("tv/film.avi", "");
    temp.skript("path/xdg-open", "echo $$ >" + (temp / "pid") + "; exec /bin/sleep 60\n");
    const auto anfang = std::chrono::steady_clock::now();
    EXPECT_EQ(33, starte("tv/film.avi"));
    EXPECT_LT(std::chrono::steady_clock::now() - anfang, std::chrono::seconds(5));
    const pid_t pid = std::stoi(inhaltVon(temp / "pid"));
    EXPECT_EQ(0, ::kill(pid, SIGKILL)) << "it must have lived on";
}

TEST_F(Starter, UnreadableDocumentIsAccessDenied) {
    temp.datei("tv/geheim.html", "", 0600);
    ::chmod(temp.pfad().c_str(), 0755);
    programm("path/xdg-open");
    Kind kind([&](int) {
        if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(99);
        if (::geteuid() != 65534) ::chmod((temp / "tv/geheim.html").c_str(), 0);
        ::_exit(starte("tv/geheim.html"));
    });
    EXPECT_EQ(5, WEXITSTATUS(kind.warte()));
}

TEST_F(Starter, StartedProgramIsOnItsOwn) {
    temp.skript("tv/frei", "/bin/ls /proc/self/fd | /bin/grep -c . >" + (temp / "teil") +
                               "; /bin/cat /proc/$$/stat /proc/self/status >>" + (temp / "teil") +
                               "; /bin/mv " + (temp / "teil") + " " + (temp / "bericht") + "\n");
    const int offen = ::dup(0);  // not marked to be closed
    sigset_t gesperrt, alt;
    ::sigemptyset(&gesperrt);
    ::sigaddset(&gesperrt, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &gesperrt, &alt);
    ::signal(SIGPIPE, SIG_IGN);
    ASSERT_EQ(33, starte("tv/frei"));
    ::signal(SIGPIPE, SIG_DFL);
    ::sigprocmask(SIG_SETMASK, &alt, nullptr);
    ::close(offen);

    const std::string text = bericht();
    // Standard input, output, error, and the folder that ls itself reads.
    EXPECT_EQ("4", text.substr(0, text.find('\n')));
    int eltern = 0, gruppe = 0, sitzung = 0;
    // Behind the name in brackets: state, parent, group, session.
    const std::string stat = text.substr(text.find(") ") + 2);
    ASSERT_EQ(3, std::sscanf(stat.c_str(), "%*c %d %d %d", &eltern, &gruppe, &sitzung));
    EXPECT_NE(::getpid(), eltern);
    EXPECT_NE(::getsid(0), sitzung);
    EXPECT_NE(std::string::npos, text.find("SigBlk:\t0000000000000000"));
    EXPECT_NE(std::string::npos, text.find("SigIgn:\t0000000000000000"));
    // No child of ours is left, neither running nor as a zombie.
    EXPECT_EQ(-1, ::waitpid(-1, nullptr, WNOHANG));
    EXPECT_EQ(ECHILD, errno);
}

TEST_F(Starter, EarlyEndIsReportedWithinTheWaitingTime) {
    const auto frist = std::chrono::seconds(10);
    EXPECT_EQ(3, starteAbgeloest({temp.skript("drei", "exit 3\n")}, "", frist).exitstatus);
    EXPECT_EQ(128 + SIGKILL, starteAbgeloest({temp.skript("tot", "kill -9 $$\n")}, "", frist).exitstatus);
    EXPECT_EQ(std::nullopt, starteAbgeloest({temp / "drei"}, "").exitstatus);
    const Abloesungsergebnis fehlt = starteAbgeloest({temp / "fehlt"}, "", frist);
    EXPECT_EQ(ENOENT, fehlt.fehler);
    EXPECT_EQ(std::nullopt, fehlt.exitstatus);
    EXPECT_EQ(ENOENT, starteAbgeloest({temp / "drei"}, temp / "kein-ordner").fehler);
}

}  // namespace
}  // namespace wendel
