// Files: names without regard to case, writes that are whole or not there, failures that come out as false.

#include <sys/resource.h>

#include <random>

#include "desktop/LinuxDateisystem.h"
#include "desktop/Pfade.h"
#include "desktop/posix/Werkzeug.h"

namespace wendel {
namespace {

class Dateien : public ::testing::Test {
  protected:
    std::string logisch(const std::string& name) const { return logischerPfad(temp / name); }
    mode_t modus(const std::string& name) const {
        struct stat angaben {};
        return ::stat((temp / name).c_str(), &angaben) == 0 ? angaben.st_mode & 07777 : 0;
    }

    TempOrdner temp;
    LinuxDateisystem dateien;
};

TEST_F(Dateien, OnlyTheLastComponentIsFoundInAnyCase) {
    temp.datei("Tv/Müller.TXT", "inhalt");
    temp.datei("Tv/zwei.txt", "klein");
    temp.datei("Tv/ZWEI.txt", "gross");
    std::filesystem::create_symlink("Müller.TXT", temp / "Tv/Verweis");
    std::filesystem::create_symlink("nirgends", temp / "Tv/leer");
    struct Fall {
        const char* name;
        std::string pfad;
        std::optional<std::string> erwartet;
    };
    const Fall faelle[] = {
        {"exact", "Tv/Müller.TXT", "inhalt"},
        {"other case, umlaut too", "Tv/mÜLLER.txt", "inhalt"},
        {"exact one of two wins", "Tv/zwei.txt", "klein"},
        {"first in byte order of two others", "Tv/Zwei.txt", "gross"},
        {"folder's case counts", "tv/Müller.TXT", std::nullopt},
        {"link", "Tv/Verweis", "inhalt"},
        {"link in other case", "Tv/VERWEIS", "inhalt"},
        {"dangling link", "Tv/leer", std::nullopt},
        {"wildcards are ordinary", "Tv/*.TXT", std::nullopt},
        {"folder", "Tv", std::nullopt},
        {"folder with separator", "Tv/", std::nullopt},
        {"missing", "Tv/fehlt", std::nullopt},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        EXPECT_EQ(fall.erwartet, dateien.lesen(logisch(fall.pfad)));
        EXPECT_EQ(fall.erwartet.has_value(), dateien.existiert(logisch(fall.pfad)));
        const auto groesse =
            fall.erwartet ? std::optional<std::uint64_t>(fall.erwartet->size()) : std::nullopt;
        EXPECT_EQ(groesse, dateien.groesse(logisch(fall.pfad)));
    }
    for (const std::string& pfad :
         {std::string(), std::string("\0x", 2), logisch("Tv/Müller.TXT") + '\0' + "x"}) {
        EXPECT_FALSE(dateien.existiert(pfad));
        EXPECT_FALSE(dateien.schreiben(pfad, "x"));
        EXPECT_FALSE(dateien.ersetzen(pfad, "x"));
        EXPECT_FALSE(dateien.loeschen(pfad));
    }
    EXPECT_EQ("inhalt", inhaltVon(temp / "Tv/Müller.TXT"));
}

TEST_F(Dateien, AreReadWholeWhateverTheyHold) {
    std::string alles;
    for (int i = 0; i < 300000; ++i)
        alles += static_cast<char>(i * 7);
    temp.datei("gross", alles);
    temp.datei("leer", "");
    EXPECT_EQ(alles, dateien.lesen(logisch("gross")));
    EXPECT_EQ("", dateien.lesen(logisch("leer")));
    // Files of the kernel say that they are empty.
    EXPECT_EQ(inhaltVon("/proc/version"), dateien.lesen(R"(\proc\version)"));
}

TEST_F(Dateien, FifoIsNoFileAndNothingWaitsForIt) {
    ASSERT_EQ(0, ::mkfifo((temp / "fifo").c_str(), 0600));
    EXPECT_FALSE(dateien.existiert(logisch("fifo")));
    EXPECT_EQ(std::nullopt, dateien.lesen(logisch("fifo")));
    EXPECT_FALSE(dateien.schreiben(logisch("fifo"), "x"));
    EXPECT_FALSE(dateien.anhaengen(logisch("fifo"), "x"));
    EXPECT_FALSE(dateien.ersetzen(logisch("fifo"), "x"));
}

TEST_F(Dateien, EachWriteKeepsWhatItPromises) {
    EXPECT_TRUE(dateien.anlegen(logisch("a")));
    EXPECT_EQ("", inhaltVon(temp / "a"));
    EXPECT_TRUE(dateien.schreiben(logisch("a"), "lang und länger"));
    EXPECT_TRUE(dateien.anlegen(logisch("a")));
    EXPECT_EQ("lang und länger", inhaltVon(temp / "a"));
    EXPECT_TRUE(dateien.ueberschreibenAmAnfang(logisch("a"), "kurz"));
    EXPECT_EQ("kurz und länger", inhaltVon(temp / "a"));
    EXPECT_TRUE(dateien.anhaengen(logisch("a"), "!\r\n"));
    EXPECT_EQ("kurz und länger!\r\n", inhaltVon(temp / "a"));
    EXPECT_TRUE(dateien.ersetzen(logisch("a"), "neu"));
    EXPECT_EQ("neu", inhaltVon(temp / "a"));
    EXPECT_TRUE(dateien.ersetzen(logisch("b"), "erst"));
    EXPECT_EQ("erst", inhaltVon(temp / "b"));
    EXPECT_TRUE(dateien.anhaengen(logisch("c"), "x"));
    EXPECT_TRUE(dateien.ueberschreibenAmAnfang(logisch("d"), "y"));
    EXPECT_EQ((std::vector<std::string>{"a", "b", "c", "d"}), temp.namen());
}

TEST_F(Dateien, ReplacingKeepsModeAndLinks) {
    temp.datei("ziel/fennow.cfg", "alt", 0640);
    std::filesystem::create_symlink("ziel/fennow.cfg", temp / "eins");
    std::filesystem::create_symlink("eins", temp / "zwei");
    std::filesystem::create_symlink("nirgends", temp / "leer");
    EXPECT_TRUE(dateien.ersetzen(logisch("zwei"), "neu"));
    EXPECT_EQ("neu", inhaltVon(temp / "ziel/fennow.cfg"));
    EXPECT_EQ(0640u, modus("ziel/fennow.cfg"));
    EXPECT_TRUE(std::filesystem::is_symlink(temp / "zwei"));
    EXPECT_TRUE(std::filesystem::is_symlink(temp / "eins"));
    EXPECT_FALSE(dateien.ersetzen(logisch("leer"), "neu"));
    EXPECT_FALSE(dateien.ersetzen(logisch("ziel"), "neu"));
    EXPECT_EQ((std::vector<std::string>{"eins", "leer", "ziel", "zwei"}), temp.namen());
}

TEST_F(Dateien, RestOfACrashedReplacementIsUsedAgain) {
    temp.datei("fennow.cfg", "alt");
    temp.datei(".fennow.cfg.neu", "eine angefangene, viel längere Datei");
    EXPECT_TRUE(dateien.ersetzen(logisch("fennow.cfg"), "neu"));
    EXPECT_EQ("neu", inhaltVon(temp / "fennow.cfg"));
    EXPECT_EQ((std::vector<std::string>{"fennow.cfg"}), temp.namen());
}

TEST_F(Dateien, FullDiskIsAFailure) {
    EXPECT_FALSE(dateien.schreiben(R"(\dev\full)", "x"));
    EXPECT_FALSE(dateien.ueberschreibenAmAnfang(R"(\dev\full)", "x"));
    EXPECT_FALSE(dateien.anhaengen(R"(\dev\full)", "x"));
}

TEST_F(Dateien, FailedReplacementLeavesTheOldFileAlone) {
    temp.datei("fennow.cfg", "alt");
    // A limit on the size of files stands in for a disk that fills up in the middle of the write.
    Kind kind([&](int) {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit grenze{1000, 1000};
        ::setrlimit(RLIMIT_FSIZE, &grenze);
        ::_exit(dateien.ersetzen(logisch("fennow.cfg"), std::string(5000, 'x')) ? 1 : 0);
    });
    EXPECT_EQ(0, kind.warte());
    EXPECT_EQ("alt", inhaltVon(temp / "fennow.cfg"));
    EXPECT_EQ((std::vector<std::string>{"fennow.cfg"}), temp.namen());
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
            for (bool neu = true; dateien.ersetzen(logisch("fennow.cfg"), neu ? b : a); neu = !neu) {
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
    EXPECT_GT(gesehen[0], 0);
    EXPECT_GT(gesehen[1], 0);
    EXPECT_TRUE(dateien.ersetzen(logisch("fennow.cfg"), "danach"));
    EXPECT_EQ((std::vector<std::string>{"fennow.cfg"}), temp.namen());
}

TEST_F(Dateien, TwoWritersNeverMixTheirContents) {
    const std::string a(50000, 'A'), b(70000, 'B');
    temp.datei("fennow.cfg", a);
    auto schreibe = [&](const std::string& inhalt) {
        return [this, &inhalt](int) {
            for (int i = 0; i < 150; ++i)
                if (!dateien.ersetzen(logisch("fennow.cfg"), inhalt)) ::_exit(1);
        };
    };
    Kind eins(schreibe(a)), zwei(schreibe(b));
    for (int i = 0; i < 300; ++i) {
        const auto inhalt = dateien.lesen(logisch("fennow.cfg"));
        ASSERT_TRUE(inhalt && (*inhalt == a || *inhalt == b));
    }
    EXPECT_EQ(0, eins.warte());
    EXPECT_EQ(0, zwei.warte());
}

TEST_F(Dateien, RenamingReplacesNothing) {
    temp.datei("a", "a");
    temp.datei("b", "b");
    EXPECT_FALSE(dateien.umbenennen(logisch("a"), logisch("b")));
    EXPECT_EQ("b", inhaltVon(temp / "b"));
    EXPECT_TRUE(dateien.umbenennen(logisch("a"), logisch("c")));
    EXPECT_EQ("a", inhaltVon(temp / "c"));
    EXPECT_FALSE(dateien.umbenennen(logisch("fehlt"), logisch("d")));
    EXPECT_TRUE(dateien.loeschen(logisch("b")));
    EXPECT_FALSE(dateien.loeschen(logisch("b")));
    EXPECT_FALSE(dateien.loeschen(logisch("C")));  // only reading ignores case
    EXPECT_EQ((std::vector<std::string>{"c"}), temp.namen());
}

TEST_F(Dateien, FoldersAreMadeWithTheirParents) {
    EXPECT_TRUE(dateien.ordnerAnlegen(logisch("x/y/z/")));
    EXPECT_TRUE(dateien.ordnerAnlegen(logisch("x/y")));
    EXPECT_TRUE(std::filesystem::is_directory(temp / "x/y/z"));
    temp.datei("datei", "");
    EXPECT_FALSE(dateien.ordnerAnlegen(logisch("datei")));
    EXPECT_FALSE(dateien.ordnerAnlegen(logisch("datei/tiefer")));
    EXPECT_FALSE(dateien.ordnerAnlegen(""));

    const auto vorher = std::filesystem::current_path();
    EXPECT_FALSE(dateien.ordnerWechseln(""));
    EXPECT_FALSE(dateien.ordnerWechseln(logisch("datei")));
    EXPECT_EQ(vorher, std::filesystem::current_path());
    EXPECT_TRUE(dateien.ordnerWechseln(logisch("x/y/")));
    EXPECT_TRUE(dateien.schreiben("relativ", "x"));
    EXPECT_EQ("x", dateien.lesen("RELATIV"));
    std::filesystem::current_path(vorher);
    EXPECT_EQ("x", inhaltVon(temp / "x/y/relativ"));
}

TEST_F(Dateien, WithoutRightsNothingIsWritten) {
    temp.datei("zu/datei", "alt", 0600);
    ASSERT_EQ(0, ::chmod(temp.pfad().c_str(), 0755));
    Kind kind([&](int) {
        if (::geteuid() == 0 && ::setuid(65534) != 0) ::_exit(9);
        ::chmod((temp / "zu").c_str(), 0555);
        int fehler = 0;
        if (dateien.ersetzen(logisch("zu/datei"), "neu")) fehler |= 1;
        if (::geteuid() == 65534 && dateien.lesen(logisch("zu/datei"))) fehler |= 2;
        if (dateien.anlegen(logisch("zu/zweite"))) fehler |= 4;
        ::_exit(fehler);
    });
    EXPECT_EQ(0, kind.warte());
    ::chmod((temp / "zu").c_str(), 0755);
    EXPECT_EQ("alt", inhaltVon(temp / "zu/datei"));
}

}  // namespace
}  // namespace wendel
