// The journal of shown notices: its file to the letter, damaged files, what is kept for how long. Kills at
// each write are the simulation's.

#include "reminders/Hinweisjournal.h"

#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

const std::string kDatei = "\\suite\\hinweise.txt";
const std::string kDefekt = "\\suite\\hinweise.txt.defekt";

TerminZeiger termin(const std::string& weckZeit, const std::string& text,
                    Terminart art = Terminart::Erinnerung) {
    auto neu = std::make_shared<cTermin>();
    neu->WeckZeit = zeit(weckZeit);
    neu->WeckText = text;
    neu->Aktiv = true;
    neu->Art = art;
    return neu;
}

class Journal : public ::testing::Test {
  protected:
    Journal() { dateien.legeOrdner(kTestordner); }

    FakeDateisystem dateien;
    Hinweisjournal journal{dateien, kTestordner};
};

TEST_F(Journal, WritesOneLineForEachEntryAndHoldsWhatItCouldNotWrite) {
    const TerminZeiger a = termin("2012-12-24 20:15:03", "a\\b\tc\r\nd", Terminart::Eigener);
    const TerminZeiger b = termin("2012-12-24 20:15", "20:15 Süßer Schnee (ZDF)");
    const std::string nachA = "\ta\\\\b\\tc\\r\\nd\n20121224201500\t1\toffen\t20:15 Süßer Schnee (ZDF)\n";
    dateien.scheitereBeimSchreiben(1);
    EXPECT_FALSE(journal.eintragen({a, b}, zeit("2012-12-24 20:15:03")));
    EXPECT_TRUE(journal.kennt(*a));
    EXPECT_TRUE(journal.nachschreiben());
    EXPECT_EQ(dateien.inhalt(kDatei), "20121224201503\t0\toffen" + nachA);
    EXPECT_TRUE(journal.beantworten({hinweisschluessel(*a)}));
    EXPECT_EQ(dateien.inhalt(kDatei), "20121224201503\t0\tbeantwortet" + nachA);
}

TEST_F(Journal, KnowsAfterARestartWhatWasShownAndPassesOverDamagedLines) {
    dateien.lege(kDatei,
                 "20121224201503\t0\toffen\ta\\\\b\\tc\\r\\nd\nnonsense\n20121324201500\t1\toffen\tX\n"
                 "20121224201500\t3\toffen\tX\n20121224201500\t1\toffen\n20121224201500\t1\tOffen\tX\n"
                 "20121224201500\t1\toffen\tX\\q\n20121224201500\t1\toffen\tX\xC3\n"
                 "20121224201000\t1\tbeantwortet\tB\n20121224201000\t2\toffen\t");
    journal.lesen();
    const Terminliste wieder = termineAusSchluesseln(journal.offene());
    ASSERT_EQ(wieder.size(), 2U);
    EXPECT_EQ(alsZeit(wieder[0]->WeckZeit) + wieder[0]->WeckText, "2012-12-24 20:15:03a\\b\tc\r\nd");
    EXPECT_EQ(wieder[1]->Art, Terminart::Aufzeichnung);
    EXPECT_TRUE(journal.kennt(*termin("2012-12-24 20:10", "B")));
    EXPECT_FALSE(journal.kennt(*termin("2012-12-24 20:11", "B")));
    EXPECT_FALSE(journal.kennt(*termin("2012-12-24 20:10", "B", Terminart::Eigener)));
    // The settings file could not spell it.
    EXPECT_TRUE(journal.eintragen({termin("2012-12-24 20:15", "Dvořák")}, zeit("2012-12-24 20:15")));
    EXPECT_TRUE(journal.kennt(*termin("2012-12-24 20:15", "Dvo?ák")));
}

TEST_F(Journal, KeepsAFileWithoutAReadableLineAside) {
    dateien.lege(kDefekt, "older");
    dateien.lege(kDatei, std::string("\0\xFF garbage", 10));
    journal.lesen();
    EXPECT_TRUE(journal.offene().empty());
    EXPECT_EQ(dateien.inhalt(kDefekt), std::string("\0\xFF garbage", 10));
    EXPECT_FALSE(dateien.inhalt(kDatei));
}

TEST_F(Journal, ForgetsAnsweredEntriesAfterTwoDays) {
    const std::tuple<bool, const char*, const char*, bool> faelle[] = {
        // answered, start of the broadcast, now, still known
        {true, "2012-12-24 20:15", "2012-12-26 20:15:01", false},
        {false, "2012-12-24 20:15", "2013-01-26 20:15:00", true},
        {true, "2012-12-31 20:15", "2013-01-02 20:15:00", true},
        {true, "2012-12-31 20:15", "2013-01-02 20:15:01", false},
    };
    for (const auto& [beantwortet, beginn, jetzt, bekannt] : faelle) {
        Hinweisjournal neues(dateien, kTestordner);
        const TerminZeiger alter = termin("2012-12-24 20:15", "Alt");
        alter->Sendungsbeginn = zeit(beginn);
        EXPECT_TRUE(neues.eintragen({alter}, zeit("2012-12-24 20:15")));
        EXPECT_TRUE(!beantwortet || neues.beantworten({hinweisschluessel(*alter)}));
        EXPECT_TRUE(neues.eintragen({}, zeit(jetzt)));
        EXPECT_EQ(neues.kennt(*alter), bekannt) << jetzt << " " << beginn;
    }
}

TEST_F(Journal, KeepsAnOldEntryWhoseMarkHasBeenReadAgainSinceTheStart) {
    dateien.lege(kDatei, "20121220201500\t1\tbeantwortet\tSerie\n20121220201500\t1\tbeantwortet\tFort\n");
    journal.lesen();
    const TerminZeiger verpasst = termin("2012-12-20 20:15", "Serie");
    verpasst->Sendungsbeginn = zeit("2012-12-24 23:00");
    EXPECT_TRUE(journal.kennt(*verpasst));
    EXPECT_TRUE(journal.eintragen({termin("2012-12-24 20:15", "Neu")}, zeit("2012-12-24 20:15")));
    EXPECT_EQ(dateien.inhalt(kDatei),
              "20121220201500\t1\tbeantwortet\tSerie\n20121224201500\t1\toffen\tNeu\n");
}

}  // namespace
}  // namespace wendel
