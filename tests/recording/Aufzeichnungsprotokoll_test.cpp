// The log of recordings to the letter, and back whatever titles and messages hold.

#include "recording/Aufzeichnungsprotokoll.h"

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

const std::string kDatei = "\\suite\\aufzeichnungen.log";

struct Protokoll : ::testing::Test {
    Protokoll() { dateien.legeOrdner(kTestordner); }
    FakeDateisystem dateien;
    Aufzeichnungsprotokoll protokoll{dateien, kTestordner};
    Protokolleintrag tatort{zeit("2012-12-24 20:10:59"), "ARD", "Tatort", "aufgezeichnet"};
};

TEST_F(Protokoll, AnyTitleReadsBack) {
    using namespace aufzeichnungsergebnis;
    const std::tuple<const char*, std::string, std::string> faelle[] = {
        // title, result, in the line
        {"Süßes Spiel", aufgezeichnet(3), "Süßes Spiel | aufgezeichnet, 3 min verspätet begonnen"},
        {"| A | B |", aufgezeichnet(0), "| A | B | | aufgezeichnet"},
        {"", std::string(kUnterbrochen), " | unterbrochen"},
        {" | ", verpasstWegen("X | Y"), " |  | verpasst: andere Aufzeichnung lief (X ¦ Y)"},
        {"T", fehlgeschlagen(7, "a |\r\nb\n"), "T | fehlgeschlagen in Zeile 7: a ¦ b"},
        {"T", fehlgeschlagen(0, std::string(600, 'x')), "T | fehlgeschlagen: " + std::string(484, 'x')},
        {"T", mitZusatz(mitZusatz("a", kZusatzKeineDatei), kZusatzKeineDatei),
         "T | a; keine wachsende Datei im Aufzeichnungsordner"},
    };
    for (const auto& [titel, ergebnis, text] : faelle) {
        tatort.titel = titel, tatort.ergebnis = ergebnis;
        const std::string zeile = protokollzeile(tatort);
        EXPECT_EQ(zeile, "24.12.2012 20:10 | ARD | " + text);
        const auto gelesen = protokolleintragAusZeile(zeile);
        ASSERT_TRUE(gelesen) << zeile;
        EXPECT_EQ(gelesen->titel, titel);
        EXPECT_EQ(protokollzeile(*gelesen), zeile);
    }
}

TEST_F(Protokoll, OneLineARecordingTheNewestFirstPastBadLines) {
    const std::string davor =
        "23.12.2012 20:10 | ARD | Tatort | verpasst: Rechner schlief\n"
        "nonsense\n24.13.2012 20:10 | ARD | x | y\n24.12.2012 20:10 | ARD | \xFF | y\n"
        "24.12.2012 20:10 | ARD | torn";
    dateien.lege(kDatei, davor);
    dateien.scheitereBeimSchreiben(1);
    EXPECT_FALSE(protokoll.eintragen(tatort));
    EXPECT_TRUE(protokoll.eintragen(tatort));
    tatort.ergebnis = "unterbrochen";
    EXPECT_TRUE(protokoll.eintragen(tatort));
    tatort.senderkennung = "ZDF";
    EXPECT_TRUE(protokoll.eintragen(tatort));
    EXPECT_EQ(dateien.inhalt(kDatei), davor +
                                          "\n24.12.2012 20:10 | ARD | Tatort | aufgezeichnet\n"
                                          "24.12.2012 20:10 | ZDF | Tatort | unterbrochen\n");
    const auto letzte = protokoll.letzte(9);
    ASSERT_EQ(letzte.size(), 3U);
    EXPECT_EQ(letzte[0].senderkennung + letzte[2].ergebnis, "ZDFverpasst: Rechner schlief");
    EXPECT_EQ(protokoll.letzte(1).size(), 1U);
    dateien.scheitert = [](const std::string& was, const std::string&) { return was == "lesen"; };
    tatort.titel = "Neu";
    EXPECT_FALSE(protokoll.eintragen(tatort)) << "an unreadable log is replaced";
}

TEST_F(Protokoll, GrowsNoFurtherThanItMay) {
    std::string inhalt;
    for (int i = 0; inhalt.size() <= Aufzeichnungsprotokoll::kHoechstgroesse; ++i)
        inhalt += "24.12.2012 20:10 | ARD | " + std::to_string(i) + " | aufgezeichnet\n";
    dateien.lege(kDatei, inhalt);
    EXPECT_TRUE(protokoll.eintragen(tatort));
    const std::string neu = *dateien.inhalt(kDatei);
    EXPECT_NEAR(static_cast<double>(neu.size()), Aufzeichnungsprotokoll::kHoechstgroesse / 2.0, 100);
    EXPECT_TRUE(inhalt.ends_with("\n" + neu.substr(0, neu.rfind("24.12.2012"))));
}

}  // namespace
}  // namespace wendel
