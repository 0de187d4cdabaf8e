// The queries over the marks: the statements to the letter, and which rows give which entries.

#include "reminders/ErinnerungenLesen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Fakes.h"
#include "support/Zeitpunkt.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/cSendung.h"

namespace wendel {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

std::string anweisung(const std::string& felder, const std::string& art) {
    return "Select Distinct " + felder + " from Markierungen Where User='PC''1' and " + art +
           " and SenderKennung in('ARD','L''Eq') Order by Datum,Uhrzeit;";
}
const std::string kErinnerungen =
    anweisung("Optionen,Datum,Uhrzeit,Sendung,Senderkennung", "Erinnerung=true and KzAusblenden=0");
const std::string kAufzeichnungen =
    anweisung("Datum,Uhrzeit,Dauer,Sendung,SenderKennung", "Aufzeichnung=true  and KzAusblenden=0 ");
const std::string kVerpasste =
    anweisung("Optionen,Datum,Uhrzeit,Dauer,Sendung,Senderkennung", "Erinnerung=true and KzAusblenden=0");

class Queries : public ::testing::Test {
  protected:
    Queries() {
        ports.datenbanken->dynamisch = [this](const std::string&) { return tabelle; };
    }

    // One mark at this start; the columns are those of all three statements.
    void mark(const std::string& beginn, const std::string& dauer, const std::string& optionen,
              const std::string& titel = "Titel") {
        const Datum start = zeit(beginn);
        tabelle.zeilen.push_back({Variant::text(optionen), Variant::datum(start.datumsteil()),
                                  Variant::datum(start.uhrzeitteil()), Variant::text(dauer),
                                  Variant::text(titel), Variant::text("ARD")});
    }
    Terminabfrage erinnerungen(const std::string& jetzt) {
        return abfragen.ErinnerungenLesen({"ARD", "L'Eq"}, zeit(jetzt));
    }
    Terminabfrage verpasste(const std::string& jetzt) {
        return abfragen.VerpassteErinnerungenLesen({"ARD", "L'Eq"}, zeit(jetzt));
    }
    Terminabfrage aufzeichnungen(const std::string& jetzt) {
        return abfragen.AufzeichnungenLesen({"ARD", "L'Eq"}, zeit(jetzt), 5, 10);
    }
    static std::vector<std::string> zeilen(const Terminabfrage& abfrage) {
        std::vector<std::string> ergebnis;
        for (const TerminZeiger& termin : abfrage.termine)
            ergebnis.push_back(alsZeit(termin->WeckZeit) + " " + termin->WeckText);
        return ergebnis;
    }

    FakePorts ports;
    Prozesswerte werte;
    Einstellungen einstellungen{ports.dateien, kTestordner};
    ModulDatenbankzugriff zugriff{ports.ports(), einstellungen, werte};
    Terminabfragen abfragen{zugriff, "\\suite\\tvdaten.mdb", "PC'1"};
    FakeTabelle tabelle{{"Optionen", "Datum", "Uhrzeit", "Dauer", "Sendung", "SenderKennung"}, {}};
};

TEST_F(Queries, SendTheirStatementsOnceAndCloseTheDatabase) {
    EXPECT_TRUE(erinnerungen("2012-12-24 20:00").gelungen);
    EXPECT_TRUE(aufzeichnungen("2012-12-24 20:00").gelungen);
    EXPECT_TRUE(verpasste("2012-12-24 20:00").gelungen);
    EXPECT_THAT(ports.datenbanken->anweisungen(), ElementsAre(kErinnerungen, kAufzeichnungen, kVerpasste));
    EXPECT_THAT(ports.datenbanken->vorgaenge, Contains(FakeVorgang{"openRecordset", kErinnerungen, 4, 256}));
    EXPECT_EQ(ports.datenbanken->offen() + ports.datenbanken->recordsetsOffen(), 0);
}

TEST_F(Queries, ReadTheReminderMomentByPosition) {
    // null: no entry, neither to come nor missed
    const std::pair<const char*, const char*> faelle[] = {
        {"Erinnerungszeit=20121225", "2012-12-25 00:00:00"},
        {"W=0|erinnerungszeit =201212322460", "2013-01-02 01:00:00"},
        {"W=0,Erinnerungszeit=2012122420xy", "2012-12-24 20:00:00"},
        {"WErinnerungszeit=201212242005", nullptr},
        {"Erinnerungszeit=morgen", nullptr},
        {"Erinnerungszeit=999912312460", nullptr}};
    for (const auto& [optionen, moment] : faelle) {
        SCOPED_TRACE(optionen);
        tabelle.zeilen.clear();
        mark("2012-12-24 20:15", "90", optionen);
        mark("2012-12-24 21:00", "90", "Erinnerungszeit=201212242050", "Danach");
        std::vector<std::string> erwartet = {"2012-12-24 20:50:00 21:00 Danach (ARD)"};
        if (moment) erwartet.insert(erwartet.begin(), std::string(moment) + " 20:15 Titel (ARD)");
        EXPECT_EQ(zeilen(erinnerungen("2012-12-24 19:00")), erwartet);
        EXPECT_TRUE(moment || verpasste("2012-12-24 19:00").termine.empty());
    }
}

// A reminder at 20:05 for 20:15 to 21:45, asked at different moments: never both.
TEST_F(Queries, ShareNoReminderAndLeaveNoneOut) {
    const std::tuple<const char*, std::size_t, std::size_t> momente[] = {
        {"2012-12-24 20:05:59", 1, 0},  // to come
        {"2012-12-24 20:06:00", 0, 1},  // missed
        {"2012-12-24 21:44:59", 0, 1},
        {"2012-12-24 21:45:00", 0, 0},  // over
    };
    mark("2012-12-24 20:15", "90", "Erinnerungszeit=201212242005");
    for (const auto& [jetzt, kommt, verpasst] : momente) {
        EXPECT_EQ(erinnerungen(jetzt).termine.size(), kommt) << jetzt;
        EXPECT_EQ(verpasste(jetzt).termine.size(), verpasst) << jetzt;
    }
}

TEST_F(Queries, GiveOneReminderForMarksThatDifferInOtherOptionsOnly) {
    mark("2012-12-24 20:15", "90", "Erinnerungszeit=201212242005;Wiederkehrend=0");
    mark("2012-12-24 20:15", "60", "Erinnerungszeit=201212242005;Wiederkehrend=1");
    EXPECT_EQ(erinnerungen("2012-12-24 20:00").termine.size(), 1u);
    EXPECT_EQ(verpasste("2012-12-24 20:10").termine.size(), 1u);
    EXPECT_EQ(aufzeichnungen("2012-12-24 20:00").termine.size(), 2u) << "recordings may differ in their end";
}

TEST_F(Queries, WidenTheWindowOfARecording) {
    mark("2012-12-24 00:02", "90 min", "", "Nachtfilm");
    EXPECT_TRUE(aufzeichnungen("2012-12-24 01:32:01").termine.empty());
    const Terminabfrage abfrage = aufzeichnungen("2012-12-24 01:32:00");
    ASSERT_THAT(zeilen(abfrage), ElementsAre("2012-12-23 23:57:00 00:02 Nachtfilm (ARD)"));
    const cTermin& termin = *abfrage.termine[0];
    EXPECT_TRUE(termin.Aktiv && termin.Art == Terminart::Aufzeichnung);
    EXPECT_EQ(alsZeit(termin.Fensterende), "2012-12-24 01:42:00");
    EXPECT_EQ(alsZeit(termin.Sendung->Beginn), "2012-12-24 00:02:00");
    EXPECT_EQ(alsZeit(termin.Sendung->Ende), "2012-12-24 01:32:00");
    EXPECT_EQ(termin.Sendung->Titel, "Nachtfilm");
}

TEST_F(Queries, SayThatTheyFailedAndLeaveNothingOpen) {
    mark("2012-12-24 20:15", "90", "Erinnerungszeit=201212242005");
    ports.datenbanken->naechsteFehler = {3075};
    EXPECT_FALSE(erinnerungen("2012-12-24 20:00").gelungen);
    tabelle.spalten[4] = "Andere";  // a row that can't be read in the middle of the walk
    const Terminabfrage halb = erinnerungen("2012-12-24 20:00");
    EXPECT_TRUE(!halb.gelungen && halb.termine.empty());
    EXPECT_EQ(ports.datenbanken->offen() + ports.datenbanken->recordsetsOffen(), 0);
}

}  // namespace
}  // namespace wendel
