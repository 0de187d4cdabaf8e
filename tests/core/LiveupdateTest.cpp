// When the live update starts, by connection, schedule and hours; and how each way in which it can end brings
// the state back to rest.
#include "core/Liveupdate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "Programm.h"
#include "core/Datenbestand.h"
#include "platform/Datumstext.h"
#include "platform/Zahlen.h"

namespace wendel {
namespace {

using namespace std::string_literals;
using Schritt = wendel::Liveupdate::Schritt;
using Starts = std::vector<int>;
using testing::ElementsAre;

const std::set<std::string> kEinstellungsdateien = {"\\suite\\fennow.cfg", "\\suite\\fennow.cfg.neu"};

// On 24 December 2012 at 20:00:00, a Monday, unless a test says more.
struct Aufbau : Liveupdateanzeige {
    explicit Aufbau(std::int16_t modus = 2) {
        setze(einstellung::kLiveUpdate, Variant::boolesch(true));
        setze(einstellung::kLiveUpdateModus, Variant::integer(modus));
        live.verbinde(*this);
        live.starten(ports.uhr.jetzt());
    }
    void setze(std::int32_t index, const Variant& wert) {
        Einstellungen(ports.dateien, kTestordner).setzeEinstellung(index, wert);
        bestand.einstellungenLesen();
    }
    void sekunden(int anzahl) {
        while (anzahl-- > 0) {
            ports.uhr.vor(1);
            live.Timer(ports.uhr.jetzt());
        }
    }
    // So many seconds, each update breaking off at once; the seconds in which one started.
    Starts startsIn(int anzahl) {
        Starts starts;
        for (int i = 1; i <= anzahl; ++i) {
            const std::size_t vorher = ports.starter.gestartet.size();
            sekunden(1);
            if (ports.starter.gestartet.size() == vorher) continue;
            starts.push_back(i);
            live.ReceivedDrumletStatusCode_Change("-98");
        }
        return starts;
    }
    void programmLaeuft(bool da) {
        ports.prozesse.laufende.clear();
        if (da) ports.prozesse.laufende = {{"\\suite\\skarvel.exe", 5}};
    }
    Datum gespeichertesUpdate() {
        Einstellungen einstellungen(ports.dateien, kTestordner);
        return liesKonfiguration(einstellungen, kTestordner).letztesUpdate;
    }

    void liveupdateStatusGeaendert() override { texte.push_back(live.statustext()); }
    void liveupdateIconAuffrischen() override { ++iconlaeufe; }
    void liveupdateBeendet(bool neueDaten) override { enden.push_back(neueDaten); }

    std::vector<std::string> texte;
    std::vector<bool> enden;
    int iconlaeufe = 0;
    FakePorts ports;
    Ports tueren = ports.ports();
    Prozesswerte werte{"wendel", "", kTestordner, "", "", "", "", ""};
    Datenbestand bestand{tueren, werte};
    wendel::Liveupdate live{tueren, ports.einwahl, ports.statusverbindung, bestand};
};
struct Liveupdate : testing::Test, Aufbau {};

TEST_F(Liveupdate, ScheduleStartsOncePerMoment) {
    const struct {
        const char *fall, *zeitplan, *ticks;  // the first tick is the start of the program
        std::size_t starts;
        const char* letztes = "";
    } faelle[] = {
        {"each tick of the minute", "1111111 20:01", "20:00:30 20:00:59 20:01 20:01:01 20:01:59 20:02", 1},
        {"short form, blanks", "0100000   8:30 ", "08:29 08:30", 1},
        {"seconds are cut", "1111111 20:01:45", "20:00 20:01", 1},
        {"in the minute that runs", "1111111 20:00", "20:00:30 20:00:31", 1},
        {"done in the minute that runs", "1111111 20:00", "20:00:30 20:00:31", 0, "24.12.2012 20:00:20"},
        {"in the minute before", "1111111 19:59", "20:00 20:00:01", 0},
        {"another weekday", "1011111 20:01", "20:00 20:01 23:59", 0},
        {"next midnight", "0010000 0:00", "20:00 23:59:59 25.12.2012_00:00", 1},
        {"late tick", "1111111 20:01", "20:00 20:03", 1},
        {"three days of sleep", "1111111 20:01", "20:00 27.12.2012_22:00 27.12.2012_23:00", 1},
        {"a month of sleep", "0000001 12:00", "20:00 24.01.2013_20:00", 1},
        {"clock set back", "1111111 20:01", "20:00 20:01 19:00 20:01 20:02", 1},
        {"clock set back before it", "1111111 20:01", "20:00 19:00 20:01 20:02", 1},
        {"a year ahead and back", "1111111 20:01", "20:00 24.12.2013_21:00 20:00 20:01", 2},
        {"spring gap", "1111111 02:30", "31.03.2013_01:00 31.03.2013_01:59:59 31.03.2013_03:00", 1},
        {"twice in autumn", "1111111 02:30",
         "27.10.2013_02:00 27.10.2013_02:30 27.10.2013_02:59 27.10.2013_02:00 27.10.2013_02:30", 1},
        {"two days", "1111111 20:01", "20:00 20:01 25.12.2012_20:01", 2},
        {"a time that is none", "1111111 20.01", "20:00 20:01 25.12.2012_00:00", 0},
        {"no time", "1111111", "20:00 20:01 25.12.2012_00:00", 0},
        {"no mask", "20:01", "20:00 20:01 25.12.2012_00:00", 0},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.fall);
        Aufbau test;
        test.setze(einstellung::kZeitplan, Variant::text(fall.zeitplan));
        if (*fall.letztes)
            test.setze(einstellung::kLetztesUpdate, Variant::datum(datumAusText(fall.letztes)));
        bool gestartet = false;
        for (std::string tick : Split(fall.ticks, " ")) {
            std::ranges::replace(tick, '_', ' ');
            const bool mitTag = tick.find('.') != std::string::npos;
            const Datum jetzt = datumAusText(mitTag ? tick : "24.12.2012 " + tick);
            test.ports.uhr.stelle(jetzt);
            if (!std::exchange(gestartet, true)) test.live.starten(jetzt);
            test.live.Timer(jetzt);
            if (test.live.schritt() == Schritt::Laeuft) test.live.ReceivedDrumletStatusCode_Change("-98");
        }
        EXPECT_EQ(test.ports.starter.gestartet.size(), fall.starts);
    }
}

TEST_F(Liveupdate, ConnectionsHoursAndMissedMomentsStartItAsOftenAsTheModeSays) {
    const Datum gestern = moment(2012, 12, 23, 21, 30), heute = um(7, 0),
                morgen = um(23, 0);  // of a clock that was wrong
    const struct {
        const char* fall;
        std::int16_t modus;
        bool nachholen;
        Datum letztes;
        std::vector<std::pair<bool, int>> verbindung;  // for so many seconds
        Starts starts;
    } faelle[] = {
        {"a minute after it was seen", 0, false, gestern, {{false, 5}, {true, 300}}, {66}},
        {"once a day", 0, true, heute, {{true, 400}}, {}},
        {"also after a failure", 0, false, gestern, {{true, 99}, {false, 5}, {true, 99}}, {61}},
        {"on every connection", 1, false, heute, {{true, 99}, {false, 1}, {true, 99}}, {61, 161}},
        {"not twice on one", 1, true, gestern, {{true, 999}}, {61}},
        {"lost while counting", 1, false, gestern, {{true, 60}, {false, 1}, {true, 99}}, {122}},
        {"missed in the morning", 2, true, gestern, {{true, 700}}, {300}},
        {"nothing missed", 2, true, heute, {{true, 700}}, {}},
        {"nothing known of the last one", 2, true, morgen, {{true, 700}}, {300}},
        {"not wanted", 2, false, Datum(), {{true, 700}}, {}},
        {"after so many hours", 3, true, gestern, {{false, 3700}}, {3600}},
        {"nothing known of it", 3, true, morgen, {{false, 9}}, {1}},
        {"failures an hour apart", 3, false, Datum(), {{false, 7300}}, {1, 3601, 7201}},
        {"no such mode", 4, true, Datum(), {{true, 400}}, {}},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.fall);
        Aufbau test(fall.modus);
        test.setze(einstellung::kUpdateNachholen, Variant::boolesch(fall.nachholen));
        test.setze(einstellung::kLetztesUpdate, Variant::datum(fall.letztes));
        test.live.starten(test.ports.uhr.jetzt());
        Starts starts;
        int vergangen = 0;
        for (const auto& [da, dauer] : fall.verbindung) {
            test.ports.einwahl.verbindungen.emplace();
            if (da) test.ports.einwahl.verbindungen = {"T-Online\0xyz"s, "zweite"};
            for (const int start : test.startsIn(dauer))
                starts.push_back(vergangen + start);
            vergangen += dauer;
        }
        EXPECT_EQ(starts, fall.starts);
    }
}

TEST_F(Liveupdate, ChangedSettingsStartNothingAndEndACountdown) {
    sekunden(1800);
    setze(einstellung::kZeitplan, Variant::text("1111111 20:15"));  // past
    EXPECT_EQ(startsIn(60), Starts{});
    setze(einstellung::kLiveUpdateModus, Variant::integer(3));
    setze(einstellung::kLiveUpdateStunden, Variant::integer(0));
    EXPECT_EQ(startsIn(60), Starts{});
    ports.einwahl.verbindungen = {"DSL"};
    for (const auto& [index, wert] : {std::pair(einstellung::kLiveUpdateModus, Variant::integer(2)),
                                      std::pair(einstellung::kLiveUpdate, Variant::boolesch(false))}) {
        setze(einstellung::kLiveUpdateModus, Variant::integer(1));
        sekunden(30);
        ASSERT_EQ(live.schritt(), Schritt::Countdown);
        setze(index, wert);
        EXPECT_EQ(startsIn(100), Starts{});
        EXPECT_EQ(live.schritt(), Schritt::Ruhe);
    }
}

struct Lauf : Aufbau {
    Lauf() : Aufbau(3) {
        sekunden(1);
        programmLaeuft(true);
        ports.statusverbindung.bedient = true;
    }
    // One step of an update's way: "12" seconds, "weg" and "da" of the program, "label=", "code=", ...
    void tu(const std::string& was) {
        if (was == "weg" || was == "da") programmLaeuft(was == "da");
        if (was == "unverbunden") ports.statusverbindung.bedient = false;
        if (was == "aus") setze(einstellung::kLiveUpdate, Variant::boolesch(false));
        if (was == "schlaf") ports.uhr.vor(1500);
        if (was.starts_with("label=")) live.ReceivedDrumletStatuslabel_Change(was.substr(6));
        if (was.starts_with("code=")) live.ReceivedDrumletStatusCode_Change(was.substr(5) + " \r\n\0"s);
        sekunden(static_cast<int>(Val(was)));
    }
};
struct Laufendes : testing::Test, Lauf {};

TEST_F(Laufendes, ComesBackToRestHoweverItEndsAndSaysWhy) {
    const std::string gut = "Das Live-Update ist abgeschlossen.",
                      schlecht = "Das Live-Update ist abgebrochen.";
    const std::string weg = schlecht + " Das Programm wurde beendet, ohne ein Ergebnis zu melden.";
    const std::string stumm = schlecht + " Das Programm hat seit 30 Minuten nichts gemeldet.";
    const struct {
        std::string verlauf, text;
    } faelle[] = {
        {"1;code=50;label=Fertig;code=-99", gut},
        {"1;label=Kein XMLTV.;code=-98", schlecht + " Kein XMLTV."},
        {"1;code=-98", schlecht},
        {"1;label= " + std::string(1'000'000, 'x') + ";code=-98", schlecht + " " + std::string(500, 'x')},
        {"1;label=Das Live-Update ist abgebrochen worden.;code=-98", schlecht},
        {"1;weg;9;da;1;weg;10", weg},
        {"weg;10;code=-99", gut},
        {"unverbunden;1800", stumm},
        {"100;code=0;schlaf;1800", stumm},
        {"1;aus;code=-99", gut}};
    for (const auto& [verlauf, text] : faelle) {
        SCOPED_TRACE(Left(verlauf, 60));
        Lauf test;
        for (const std::string& was : Split(verlauf, ";"))
            test.tu(was);
        EXPECT_TRUE(test.live.schritt() == Schritt::Beendet || test.live.schritt() == Schritt::Abgebrochen);
        EXPECT_THAT(test.enden, ElementsAre());
        test.sekunden(1);
        EXPECT_EQ(test.live.schritt(), Schritt::Ruhe);
        EXPECT_EQ(test.live.statustext(), text);
        EXPECT_THAT(test.enden, ElementsAre(text == gut));
        EXPECT_EQ(test.gespeichertesUpdate() != Datum(), text == gut);
        EXPECT_FALSE(test.ports.statusverbindung.verbunden);
        test.tu("aus");
        test.ports.uhr.vor(86400);
        test.sekunden(1);
        EXPECT_EQ(test.live.statustext(), "");
    }
}

TEST_F(Laufendes, IsFollowedOverItsLinkAndTheNextOneHasItsTimeAgain) {
    ports.statusverbindung.bedient = false;
    sekunden(2);
    ports.statusverbindung.bedient = true;
    sekunden(1);
    ports.statusverbindung.sage("", "0");
    ports.statusverbindung.sage(" 3000 Sendungen, 43 %\0"s, "43");
    ports.statusverbindung.sage("3000 Sendungen, 43 %", "44");
    programmLaeuft(false);
    setze(einstellung::kLiveUpdateVersteckt, Variant::boolesch(false));
    sekunden(11);
    EXPECT_THAT(texte, ElementsAre("Das Live-Update wird gestartet.", "Live-Update gestartet",
                                   "3000 Sendungen, 43 %", testing::HasSubstr("abgebrochen")));
    EXPECT_EQ(iconlaeufe, 3);
    ports.statusverbindung.sage("zu spät", "-99");
    sekunden(3600 - 10);
    EXPECT_EQ(live.schritt(), Schritt::Laeuft);
    const std::string parameter = "/liveupdate /onlyuseWinConnection", datei = "\\suite\\skarvel.exe";
    EXPECT_EQ(ports.starter.gestartet,
              (std::vector<FakeStarter::Start>{{datei, "/hidden " + parameter, "\\suite", 0},
                                               {datei, parameter, "\\suite", 1}}));
}

TEST_F(Laufendes, MissingProgramIsToldOncePerAttempt) {
    live.ReceivedDrumletStatusCode_Change("-98");
    ports.starter.ergebnis = 2;
    sekunden(7200);
    EXPECT_EQ(live.schritt(), Schritt::Ruhe);
    EXPECT_EQ(live.statustext(), "Das Live-Update konnte nicht gestartet werden.");
    EXPECT_EQ(ports.aufrufe.anzahl("Meldungen"), 2);
}

// Not stored: kept over a reading of the settings, and written with the next occasion.
TEST_F(Laufendes, MomentOfTheUpdateSurvivesAFailedWrite) {
    ports.dateien.nurLesen = kEinstellungsdateien;
    live.ReceivedDrumletStatusCode_Change("-99");
    sekunden(1);
    bestand.einstellungenLesen();
    EXPECT_EQ(bestand.konfiguration().letztesUpdate, um(20, 0, 2));
    ports.dateien.nurLesen.clear();
    EXPECT_EQ(gespeichertesUpdate(), Datum());
    static_cast<void>(bestand.speichernWennNoetig());
    EXPECT_EQ(gespeichertesUpdate(), um(20, 0, 2));
}

struct UpdateInTheProgram : testing::Test, Programm {};

// The appointment of the same second comes first; what may bring a box waits for the end of the tick.
TEST_F(UpdateInTheProgram, LeadsFromTheScheduleToTheNewGuide) {
    setze(einstellung::kLiveUpdate, Variant::boolesch(true));
    setze(einstellung::kZeitplan, Variant::text("1111111 20:01"));
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    starte();
    bis(um(20, 1));
    const auto& zeilen = ports.aufrufe.zeilen;
    EXPECT_LT(std::ranges::find(zeilen, "FormHinweis.zeigen"),
              std::ranges::find_if(zeilen, [](const auto& z) { return z.starts_with("Dateistarter."); }));
    EXPECT_EQ(fenster->status, "Das Live-Update wird gestartet.");
    ports.prozesse.laufende = {{"\\suite\\skarvel.exe", 5}};
    ports.statusverbindung.bedient = true;
    sekunde();
    ports.statusverbindung.sage("43 %", "43");
    EXPECT_EQ(fenster->status, "43 %");

    ports.dateien.nurLesen = kEinstellungsdateien;
    form().KurzZeitWeckerAktivieren(60);
    bis(um(20, 2));
    EXPECT_THAT(fenster->status, testing::MatchesRegex("Noch nicht gespeichert, .* – 43 %"));
    tvDaten.markierungen.push_back({um(20, 30), um(20, 45), 30, "Film", false});
    ports.statusverbindung.sage("", "-99");
    ports.aufrufe.leeren();
    sekunde();
    EXPECT_THAT(ports.aufrufe.zeilen, testing::Not(testing::Contains(testing::HasSubstr("Erinnerung=true"))));
    ereignisse();
    EXPECT_THAT(fenster->status, testing::EndsWith(" – Das Live-Update ist abgeschlossen."));
    EXPECT_EQ(ports.symbol.tooltip(), "Lomrick: heute 20:30 20:45 Film (ARD)");
}

}  // namespace
}  // namespace wendel
