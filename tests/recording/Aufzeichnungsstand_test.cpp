// The state of recordings: its file to the letter, damaged files, one log line whatever fails. Kills at each
// write are also the simulation's.

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

struct Stand : ::testing::Test {
    Stand() { dateien.legeOrdner(kTestordner); }
    FakeDateisystem dateien;
    Aufzeichnungsprotokoll protokoll{dateien, kTestordner};
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
