// The queries over the marks: the statements to the letter, and which rows give which entries.

#include "reminders/ErinnerungenLesen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reminders/Zeitpunkt.h"
#include "support/Fakes.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/cSendung.h"

namespace wendel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kErinnerungen =
    "Select Distinct Optionen,Datum,Uhrzeit,Sendung,Senderkennung from Markierungen Where User='PC-BUERO' "
    "and "
    "Erinnerung=true and KzAusblenden=0 and SenderKennung in('ARD','ZDF') Order by Datum,Uhrzeit;";
const std::string kAufzeichnungen =
    "Select Distinct Datum,Uhrzeit,Dauer,Sendung,SenderKennung from Markierungen Where User='PC-BUERO' and "
    "Aufzeichnung=true  and KzAusblenden=0  and SenderKennung in('ARD','ZDF') Order by Datum,Uhrzeit;";
const std::string kVerpasste =
    "Select Distinct Optionen,Datum,Uhrzeit,Dauer,Sendung,Senderkennung from Markierungen Where "
    "User='PC-BUERO' "
    "and Erinnerung=true and KzAusblenden=0 and SenderKennung in('ARD','ZDF') Order by Datum,Uhrzeit;";

class Queries : public ::testing::Test {
  protected:
    Queries() { werte.datenbankdatei = "\\suite\\tvdaten.mdb"; }

    // One mark at this start; the columns are those of all three statements.
    void mark(const std::string& beginn, const std::string& dauer, const std::string& optionen,
              const std::string& titel = "Titel") {
        const Datum start = zeit(beginn);
        tabelle.zeilen.push_back({Variant::text(optionen), Variant::datum(start.datumsteil()),
                                  Variant::datum(start.uhrzeitteil()), Variant::text(dauer),
                                  Variant::text(titel), Variant::text("ARD")});
    }
    Terminabfrage erinnerungen(const std::string& jetzt) {
        ports.datenbanken->antworten.insert_or_assign(kErinnerungen, tabelle);
        return abfragen.ErinnerungenLesen({"ARD", "ZDF"}, zeit(jetzt));
    }
    Terminabfrage verpasste(const std::string& jetzt) {
        ports.datenbanken->antworten.insert_or_assign(kVerpasste, tabelle);
        return abfragen.VerpassteErinnerungenLesen({"ARD", "ZDF"}, zeit(jetzt));
    }
    Terminabfrage aufzeichnungen(const std::string& jetzt) {
        ports.datenbanken->antworten.insert_or_assign(kAufzeichnungen, tabelle);
        return abfragen.AufzeichnungenLesen({"ARD", "ZDF"}, zeit(jetzt), 5, 10);
    }
    static std::vector<std::string> zeilen(const Terminabfrage& abfrage) {
        std::vector<std::string> ergebnis;
        for (const TerminZeiger& termin : abfrage.termine) {
            ergebnis.push_back(alsZeit(termin->WeckZeit) + " " + termin->WeckText);
        }
        return ergebnis;
    }

    FakePorts ports;
    Prozesswerte werte;
    Einstellungen einstellungen{ports.dateien, kTestordner};
    ModulDatenbankzugriff zugriff{ports.ports(), einstellungen, werte};
    Terminabfragen abfragen{zugriff, "\\suite\\tvdaten.mdb", "PC-BUERO"};
    FakeTabelle tabelle{{"Optionen", "Datum", "Uhrzeit", "Dauer", "Sendung", "SenderKennung"}, {}};
};

TEST_F(Queries, SendTheirStatementsOnceAndCloseTheDatabase) {
    EXPECT_TRUE(erinnerungen("2012-12-24 20:00").gelungen);
    EXPECT_TRUE(aufzeichnungen("2012-12-24 20:00").gelungen);
    EXPECT_TRUE(verpasste("2012-12-24 20:00").gelungen);
    EXPECT_THAT(ports.datenbanken->anweisungen(), ElementsAre(kErinnerungen, kAufzeichnungen, kVerpasste));
    for (const FakeVorgang& vorgang : ports.datenbanken->vorgaenge) {
        if (vorgang.art != "openRecordset") continue;
        EXPECT_EQ(vorgang.typ, 4);
        EXPECT_EQ(vorgang.optionen, 256);
    }
    EXPECT_EQ(ports.datenbanken->geoeffnet, 3);
    EXPECT_EQ(ports.datenbanken->offen(), 0);
    EXPECT_EQ(ports.datenbanken->recordsetsOffen(), 0);
}

TEST_F(Queries, QuoteNamesAndKeepAnEmptyChannelList) {
    ports.datenbanken->dynamisch = [](const std::string&) { return FakeTabelle{}; };
    Terminabfragen andere(zugriff, "\\suite\\tvdaten.mdb", "PC'1");
    static_cast<void>(andere.AufzeichnungenLesen({"L'Eq"}, zeit("2012-12-24"), 0, 0));
    static_cast<void>(andere.AufzeichnungenLesen({}, zeit("2012-12-24"), 0, 0));
    const std::string anfang =
        "Select Distinct Datum,Uhrzeit,Dauer,Sendung,SenderKennung from Markierungen Where User='PC''1' and "
        "Aufzeichnung=true  and KzAusblenden=0  and SenderKennung in(";
    EXPECT_THAT(ports.datenbanken->anweisungen(), ElementsAre(anfang + "'L''Eq') Order by Datum,Uhrzeit;",
                                                              anfang + ") Order by Datum,Uhrzeit;"));
}

TEST_F(Queries, MakeAnEntryOfEachReminderToCome) {
    mark("2012-12-24 20:15", "90", "Wiederkehrend=0;Erinnerungszeit=201212242005", "Süßer Schnee");
    const Terminabfrage abfrage = erinnerungen("2012-12-24 20:00");
    ASSERT_THAT(zeilen(abfrage), ElementsAre("2012-12-24 20:05:00 20:15 Süßer Schnee (ARD)"));
    const cTermin& termin = *abfrage.termine[0];
    EXPECT_TRUE(termin.Aktiv);
    EXPECT_EQ(termin.Intervall, 0);
    EXPECT_EQ(termin.Art, Terminart::Erinnerung);
    EXPECT_EQ(alsZeit(termin.Sendungsbeginn), "2012-12-24 20:15:00");
}

TEST_F(Queries, ReadTheReminderMomentByPosition) {
    // clang-format off
    struct Fall {
        const char *optionen, *erwartet;  // erwartet null: no entry, neither to come nor missed
    };
    const Fall faelle[] = {
        {"Erinnerungszeit=201212242005", "2012-12-24 20:05:00"}, {"Erinnerungszeit=20121225", "2012-12-25 00:00:00"},
        {"Erinnerungszeit=2012122420xy", "2012-12-24 20:00:00"}, {"Erinnerungszeit=201212322460", "2013-01-02 01:00:00"},
        {"Erinnerungszeit=201200002005", nullptr}, {"Wiederkehrend=1", nullptr}, {"Erinnerungszeit=morgen", nullptr},
        {"Erinnerungszeit=9e9912242005", nullptr}, {"Erinnerungszeit=999912312460", nullptr}};
    // clang-format on
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.optionen);
        tabelle.zeilen.clear();
        mark("2012-12-24 20:15", "90", fall.optionen);
        mark("2012-12-24 21:00", "90", "Erinnerungszeit=201212242050", "Danach");
        const Terminabfrage abfrage = erinnerungen("2012-12-24 19:00");
        EXPECT_TRUE(abfrage.gelungen);
        std::vector<std::string> erwartet = {"2012-12-24 20:50:00 21:00 Danach (ARD)"};
        if (fall.erwartet)
            erwartet.insert(erwartet.begin(), std::string(fall.erwartet) + " 20:15 Titel (ARD)");
        EXPECT_EQ(zeilen(abfrage), erwartet);
        if (!fall.erwartet) {
            EXPECT_THAT(zeilen(verpasste("2012-12-24 19:00")), IsEmpty());
        }
    }
}

// A reminder at 20:05 for 20:15 to 21:45, asked at different moments: to come, missed, or over, never two of
// them.
TEST_F(Queries, ShareNoReminderAndLeaveNoneOut) {
    const std::pair<const char*, const char*> momente[] = {
        {"2012-12-24 20:05:59", "to come"},
        {"2012-12-24 20:06:00", "missed"},
        {"2012-12-24 21:44:59", "missed"},
        {"2012-12-24 21:45:00", "over"},
    };
    mark("2012-12-24 20:15", "90", "Erinnerungszeit=201212242005");
    for (const auto& [jetzt, erwartet] : momente) {
        SCOPED_TRACE(jetzt);
        EXPECT_EQ(erinnerungen(jetzt).termine.size(), erwartet == std::string("to come") ? 1u : 0u);
        EXPECT_EQ(verpasste(jetzt).termine.size(), erwartet == std::string("missed") ? 1u : 0u);
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
    mark("2012-12-24 00:02", "90", "", "Nachtfilm");
    const Terminabfrage abfrage = aufzeichnungen("2012-12-24 00:12");
    ASSERT_THAT(zeilen(abfrage), ElementsAre("2012-12-23 23:57:00 00:02 Nachtfilm (ARD)"));
    const cTermin& termin = *abfrage.termine[0];
    EXPECT_EQ(termin.Art, Terminart::Aufzeichnung);
    EXPECT_TRUE(termin.Aktiv);
    EXPECT_EQ(alsZeit(termin.Fensterende), "2012-12-24 01:42:00");
    ASSERT_TRUE(termin.Sendung);
    EXPECT_EQ(alsZeit(termin.Sendung->Beginn), "2012-12-24 00:02:00");
    EXPECT_EQ(alsZeit(termin.Sendung->Ende), "2012-12-24 01:32:00");
    EXPECT_EQ(termin.Sendung->Titel, "Nachtfilm");
    EXPECT_EQ(termin.Sendung->SenderKennung, "ARD");
    EXPECT_EQ(termin.Sendung->Dauer, "90");
}

TEST_F(Queries, KeepRecordingsUntilTheirBroadcastHasEnded) {
    // clang-format off
    const std::tuple<const char*, const char*, bool> faelle[] = {
        {"90", "2012-12-24 21:45:00", true}, {"90", "2012-12-24 21:45:01", false},
        {" 90 min", "2012-12-24 21:45:00", true}, {"", "2012-12-24 20:15:00", true},
        {"", "2012-12-24 20:15:01", false}, {"3000000000", "2012-12-24 20:00", false}};
    // clang-format on
    for (const auto& [dauer, jetzt, da] : faelle) {
        tabelle.zeilen = {{Variant::null(), Variant::null(), Variant::null(), Variant::null(),
                           Variant::null(), Variant::null()}};
        mark("2012-12-24 20:15", dauer, "");
        EXPECT_EQ(aufzeichnungen(jetzt).termine.size(), da ? 1u : 0u) << dauer << " at " << jetzt;
    }
}

TEST_F(Queries, SayThatTheyFailedAndLeaveNothingOpen) {
    mark("2012-12-24 20:15", "90", "Erinnerungszeit=201212242005");
    ports.datenbanken->naechsteFehler = {3075};
    const Terminabfrage gescheitert = erinnerungen("2012-12-24 20:00");
    EXPECT_FALSE(gescheitert.gelungen);
    EXPECT_THAT(gescheitert.termine, IsEmpty());

    ports.datenbanken->beimOeffnen = [](const std::string&) -> void { throw Fehler(3024, "", "Fehlt."); };
    EXPECT_FALSE(verpasste("2012-12-24 20:00").gelungen);
    ports.datenbanken->beimOeffnen = nullptr;

    tabelle.spalten[4] = "Andere";  // a row that can't be read in the middle of the walk
    const Terminabfrage halb = erinnerungen("2012-12-24 20:00");
    EXPECT_FALSE(halb.gelungen);
    EXPECT_THAT(halb.termine, IsEmpty());
    EXPECT_EQ(ports.datenbanken->offen(), 0);
    EXPECT_EQ(ports.datenbanken->recordsetsOffen(), 0);
}

}  // namespace
}  // namespace wendel
