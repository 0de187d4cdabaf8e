// The state of recordings and their log: both files to the letter, damaged ones, one log line whatever fails.
// Kills at each write are also the simulation's.

#include "recording/Aufzeichnungsstand.h"

#include <gtest/gtest.h>

#include "platform/Text.h"
#include "support/Fakes.h"
#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

const std::string kDatei = "\\suite\\aufzeichnung.txt";
const std::string kLog = "\\suite\\aufzeichnungen.log";
const std::string kZeile =
    "laeuft\t20121224201500\t20121224201203\t2\t18991230000000\t\ta\\tb\t"
    "20121224201000|20121224222500|ARD|A\\\\|\\r\\nB\n";
const Datum kJetzt = zeit("2012-12-24 22:25");

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
    dateien.lege(kLog, davor);
    dateien.scheitereBeimSchreiben(1);
    EXPECT_FALSE(protokoll.eintragen(tatort));
    EXPECT_TRUE(protokoll.eintragen(tatort));
    tatort.ergebnis = "unterbrochen";
    EXPECT_TRUE(protokoll.eintragen(tatort));
    tatort.senderkennung = "ZDF";
    EXPECT_TRUE(protokoll.eintragen(tatort));
    EXPECT_EQ(dateien.inhalt(kLog), davor +
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
    dateien.lege(kLog, inhalt);
    EXPECT_TRUE(protokoll.eintragen(tatort));
    const std::string neu = *dateien.inhalt(kLog);
    EXPECT_NEAR(static_cast<double>(neu.size()), Aufzeichnungsprotokoll::kHoechstgroesse / 2.0, 100);
    EXPECT_TRUE(inhalt.ends_with("\n" + neu.substr(0, neu.rfind("24.12.2012"))));
}

struct Stand : Protokoll {
    Aufzeichnungsstand stand{dateien, protokoll, kTestordner};
    const Aufzeichnung film{zeit("2012-12-24 20:10"), zeit("2012-12-24 22:25"), zeit("2012-12-24 20:15"),
                            "ARD", "A\\|\r\nB"};
};

TEST_F(Stand, WritesOneLineForEachRecordingAndReadsItBackPastDamagedOnes) {
    Aufzeichnungseintrag& eintrag = stand.merke(film);
    eintrag = {film, Aufzeichnungsphase::Laeuft, zeit("2012-12-24 20:12:03"), 2, {}, "", "a\tb"};
    dateien.scheitereBeimSchreiben(1);
    EXPECT_FALSE(stand.speichern(kJetzt));
    EXPECT_TRUE(stand.nachschreiben(kJetzt));
    EXPECT_EQ(dateien.inhalt(kDatei), kZeile);
    const auto aufrufe = dateien.aufrufe().anzahlOhneUhr();
    EXPECT_TRUE(stand.nachschreiben(kJetzt));
    EXPECT_EQ(dateien.aufrufe().anzahlOhneUhr(), aufrufe) << "nothing to write, and the file was touched";

    const std::vector<Aufzeichnungseintrag> vorher = stand.eintraege();
    const std::string falsch[] = {"nonsense\n",
                                  "X" + kZeile,
                                  kZeile + "\t" + kZeile,
                                  "\n",
                                  ersetzt(kZeile, "\t2\t", "\t2x\t"),
                                  ersetzt(kZeile, "\\t", "\\q"),
                                  ersetzt(kZeile, "20121224222500|", ""),
                                  ersetzt(kZeile, "1224", "1324")};
    std::string beschaedigt;
    for (const std::string& zeile : falsch)
        beschaedigt += zeile;
    dateien.lege(kDatei, beschaedigt + kZeile + "laeuft\t2012");
    stand.lesen();
    EXPECT_EQ(stand.eintraege(), vorher);
}

TEST_F(Stand, ARecordingIsTheSameOneWithOtherLeadTimes) {
    Aufzeichnung anders = film;
    anders.beginn = film.beginn.plusSekunden(-300);
    stand.merke(film);
    EXPECT_EQ(stand.merke(anders).aufzeichnung.beginn, anders.beginn);
    stand.merke(film).phase = Aufzeichnungsphase::Laeuft;
    EXPECT_EQ(stand.merke(anders).aufzeichnung.beginn, film.beginn) << "the running one keeps its window";
    EXPECT_EQ(stand.eintraege().size(), 1U);
    stand.vergiss(stand.eintraege().front().aufzeichnung);
    EXPECT_FALSE(stand.finde(film));
}

TEST_F(Stand, OneLogLineWhicheverWriteIsHitAndNoneAfterTwoDays) {
    for (int n = 1; n <= 4; ++n) {
        for (const bool absturz : {false, true}) {
            dateien.entferne(kLog);
            dateien.lege(kDatei, kZeile);
            stand.lesen();
            absturz ? dateien.stuerzeAbBei(n) : dateien.scheitereBeimSchreiben(n);
            try {
                stand.abschliessen(film, "aufgezeichnet", kJetzt);
            } catch (const Absturz&) {
                dateien.neustart();
                stand.lesen();
            }
            dateien.scheitereBeimSchreiben(0);
            dateien.stuerzeAbBei(0);
            if (!stand.finde(film)->vorbei()) stand.abschliessen(film, "aufgezeichnet", kJetzt);
            stand.abschliessen(film, "unterbrochen", kJetzt);
            EXPECT_TRUE(stand.nachschreiben(kJetzt));
            EXPECT_EQ(dateien.inhalt(kLog), "24.12.2012 20:10 | ARD | A\\| B | aufgezeichnet; a b\n") << n;
            stand.lesen();
            EXPECT_TRUE(stand.finde(film)->vorbei());
        }
    }
    EXPECT_TRUE(stand.speichern(zeit("2012-12-26 22:25")));
    EXPECT_TRUE(stand.finde(film));
    EXPECT_TRUE(stand.speichern(zeit("2012-12-26 22:25:01")));
    EXPECT_EQ(dateien.inhalt(kDatei), "");
}

}  // namespace
}  // namespace wendel
