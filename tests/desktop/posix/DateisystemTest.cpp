// Files: names without regard to case, writes that are whole or not there, failures that come out as false.

#include "desktop/LinuxDateisystem.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <random>

#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

struct Dateien : testing::Test {
    TempOrdner temp;
    LinuxDateisystem dateien;
    const std::string cfg = temp.logisch("fennow.cfg");
};

TEST_F(Dateien, OnlyTheLastComponentIsFoundInAnyCase) {
    temp.datei("Tv/Müller.TXT", "inhalt");
    temp.datei("Tv/zwei.txt", "klein");
    temp.datei("Tv/ZWEI.txt", "gross");
    ASSERT_EQ(0, ::mkfifo((temp / "Tv/fifo").c_str(), 0600));
    const auto gelesen = [&](const char* pfad) { return dateien.lesen(temp.logisch(pfad)).value_or("-"); };
    EXPECT_EQ("inhalt", gelesen("Tv/mÜLLER.txt"));
    EXPECT_EQ("klein", gelesen("Tv/zwei.txt")) << "exact one of two wins";
    EXPECT_EQ("-", gelesen("tv/Müller.TXT")) << "folder's case counts";
    EXPECT_EQ("-", gelesen("Tv/fifo")) << "nothing waits for one";
    EXPECT_EQ(6u, dateien.groesse(temp.logisch("Tv/MÜLLER.TXT")));
    const timespec zeiten[] = {{5, 0}, {7, 9}};
    ASSERT_EQ(0, ::utimensat(AT_FDCWD, (temp / "Tv/Müller.TXT").c_str(), zeiten, 0));
    EXPECT_EQ((Dateistand{6, 7'000'000'009}), dateien.stand(temp.logisch("Tv/MÜLLER.TXT")));
    const std::string gekappt = temp.logisch("Tv/Müller.TXT") + '\0' + "x";
    EXPECT_FALSE(dateien.existiert(gekappt) || dateien.schreiben(gekappt, "x") || dateien.loeschen(gekappt));
    EXPECT_EQ("inhalt", inhaltVon(temp / "Tv/Müller.TXT"));
    // Files of the kernel say that they are empty.
    EXPECT_EQ(inhaltVon("/proc/version"), dateien.lesen(R"(\proc\version)"));
}

TEST_F(Dateien, EachWriteKeepsWhatItPromises) {
    EXPECT_TRUE(dateien.anlegen(cfg) && dateien.schreiben(cfg, "lang und länger") && dateien.anlegen(cfg));
    EXPECT_EQ("lang und länger", inhaltVon(temp / "fennow.cfg"));
    EXPECT_TRUE(dateien.ueberschreibenAmAnfang(cfg, "kurz"));
    EXPECT_EQ("kurz und länger", inhaltVon(temp / "fennow.cfg"));
    EXPECT_TRUE(dateien.anhaengen(cfg, "!\r\n"));
    EXPECT_EQ("kurz und länger!\r\n", inhaltVon(temp / "fennow.cfg"));
    EXPECT_TRUE(dateien.ersetzen(temp.logisch("b"), "erst"));
    EXPECT_FALSE(dateien.umbenennen(cfg, temp.logisch("b"))) << "replaces nothing";
    EXPECT_EQ("erst", inhaltVon(temp / "b"));
    EXPECT_TRUE(dateien.schreiben(cfg, "neu") && dateien.umbenennen(cfg, temp.logisch("c")));
    EXPECT_EQ("neu", inhaltVon(temp / "c"));
    EXPECT_FALSE(dateien.loeschen(temp.logisch("B"))) << "only reading ignores case";
    EXPECT_TRUE(dateien.loeschen(temp.logisch("b")));
    EXPECT_EQ("c ", temp.namen());
}

TEST_F(Dateien, ReplacingKeepsModeAndLinks) {
    temp.datei("ziel/fennow.cfg", "alt", 0640);
    std::filesystem::create_symlink("ziel/fennow.cfg", temp / "eins");
    std::filesystem::create_symlink("eins", temp / "zwei");
    EXPECT_TRUE(dateien.ersetzen(temp.logisch("zwei"), "neu"));
    EXPECT_EQ("neu", inhaltVon(temp / "ziel/fennow.cfg"));
    EXPECT_EQ(0640, int(std::filesystem::status(temp / "ziel/fennow.cfg").permissions()));
    EXPECT_TRUE(std::filesystem::is_symlink(temp / "zwei") && std::filesystem::is_symlink(temp / "eins"));
    EXPECT_EQ("eins ziel zwei ", temp.namen());
}

TEST_F(Dateien, FailedWriteIsReportedAndLeavesTheOldFileAlone) {
    const std::string geraet = R"(\dev\full)";
    EXPECT_FALSE(dateien.schreiben(geraet, "x") || dateien.ueberschreibenAmAnfang(geraet, "x") ||
                 dateien.anhaengen(geraet, "x"));
    temp.datei("fennow.cfg", "alt", 0666);
    // A limit on the size of files stands in for a disk that fills up in the middle of the write.
    Kind kind([&](int) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit grenze{1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &grenze);
        ::_exit(dateien.ersetzen(cfg, std::string(5000, 'x')));
    });
    EXPECT_EQ(0, kind.warte());
    EXPECT_EQ("alt", inhaltVon(temp / "fennow.cfg"));
    ::chmod(temp.pfad().c_str(), 0555);
    EXPECT_EQ(0, ohneRootrechte(
                     [&] { return dateien.ersetzen(cfg, "neu") || dateien.anlegen(temp.logisch("b")); }));
    ::chmod(temp.pfad().c_str(), 0755);
    EXPECT_EQ("alt", inhaltVon(temp / "fennow.cfg"));
    EXPECT_EQ("fennow.cfg ", temp.namen());
}

TEST_F(Dateien, KilledWriterLeavesOldOrNewContent) {
    constexpr unsigned kSaat = 20121224;
    SCOPED_TRACE(kSaat);
    std::mt19937 zufall(kSaat);
    const std::string a(60000, 'A'), b(90000, 'B');
    temp.datei("fennow.cfg", a);
    int gesehen[2] = {};
    for (int i = 0; i < 40; ++i) {
        Kind schreiber([&](int fertig) {
            for (bool neu = true; dateien.ersetzen(cfg, neu ? b : a); neu = !neu) {
                [[maybe_unused]] const ssize_t n = ::write(fertig, "x", 1);
            }
        });
        // Somewhere in the first few replacements, however slow the disk is.
        for (auto ganze = 1 + zufall() % 3; ganze > 0; --ganze)
            schreiber.lies();
        std::this_thread::sleep_for(std::chrono::microseconds(zufall() % 3000));
        schreiber.toete(SIGKILL);
        schreiber.warte();
        const std::string inhalt = inhaltVon(temp / "fennow.cfg");
        ASSERT_TRUE(inhalt == a || inhalt == b) << inhalt.size() << " bytes in round " << i;
        ++gesehen[inhalt == b];
    }
    EXPECT_TRUE(gesehen[0] > 0 && gesehen[1] > 0);
    temp.datei(".fennow.cfg.neu", "die längere Hälfte eines abgebrochenen Ersetzens");
    EXPECT_TRUE(dateien.ersetzen(cfg, "danach"));
    EXPECT_EQ("danach", inhaltVon(temp / "fennow.cfg"));
    EXPECT_EQ("fennow.cfg ", temp.namen());
}

TEST_F(Dateien, TwoWritersNeverMixTheirContents) {
    const std::string a(50000, 'A'), b(70000, 'B');
    temp.datei("fennow.cfg", a);
    auto schreibe = [&](const std::string& inhalt) {
        return [this, &inhalt](int) {
            for (int i = 0; i < 150; ++i)
                if (!dateien.ersetzen(cfg, inhalt)) ::_exit(1);
        };
    };
    Kind eins(schreibe(a)), zwei(schreibe(b));
    for (int i = 0; i < 300; ++i) {
        const auto inhalt = dateien.lesen(cfg);
        ASSERT_TRUE(inhalt && (*inhalt == a || *inhalt == b));
    }
    EXPECT_EQ(0, eins.warte());
    EXPECT_EQ(0, zwei.warte());
}

}  // namespace
}  // namespace wendel
