// Which channel and which broadcast of the database is which of the new guide. The cases are what providers
// do: shifted evenings, renamed titles, episodes in a row, overlaps, missing ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <set>
#include <string>
#include <vector>

#include "../../apps/skarvel/Kennungen.h"
#include "../../apps/skarvel/Senderabgleich.h"
#include "../../apps/skarvel/Sendungsabgleich.h"
#include "platform/Text.h"

namespace wendel::skarvel {
namespace {

using testing::ElementsAre;

// ---- identifiers ----

TEST(Identifiers, FitTheColumnAndStayApart) {
    EXPECT_EQ(kennungFuer("ard.example", 20), "ard.example");
    std::set<std::string> alle;
    for (int i = 0; i < 20000; ++i) {
        const std::string kennung =
            kennungFuer("sender-mit-langem-namen-" + std::to_string(i) + ".example", 20);
        ASSERT_EQ(kennung.size(), 20U);
        ASSERT_TRUE(alle.insert(LCase(kennung)).second) << kennung;
    }
    for (const char* schwierig : {"Käse.example", "mit blank", " ", "a\tb", "ein.name.von.21.Zeich"})
        EXPECT_THAT(kennungFuer(schwierig, 20), testing::HasSubstr("~")) << schwierig;
    EXPECT_EQ(kennungFuer("viel zu lang", 8).size(), 8U);
}

XmltvKanal kanal(const std::string& kennung, std::vector<std::string> namen) {
    XmltvKanal k{.kennung = kennung, .namen = {}, .webseite = {}};
    for (std::string& name : namen)
        k.namen.push_back({std::move(name), ""});
    return k;
}

Spaltenbreiten breiten() {
    Spaltenbreiten b;
    b.setze("sender.senderkennung", 20);
    b.setze("sendungen.senderkennung", 20);
    b.setze("sender.bezeichnungkurz", 6);
    return b;
}

TEST(Channels, WithOneKeyGetTwoInWhateverOrder) {
    const auto vor = senderplan({kanal("ard", {}), kanal("ARD", {})}, {}, breiten()).kennungen;
    const auto zurueck = senderplan({kanal("ARD", {}), kanal("ard", {})}, {}, breiten()).kennungen;
    EXPECT_EQ(vor[0], zurueck[1]);
    EXPECT_EQ(vor[1], "ARD");
    EXPECT_NE(LCase(vor[0]), "ard");
}

TEST(Channels, AreFoundByIdentifierThenByNameElseNew) {
    const std::vector<Senderzeile> vorhandene = {
        {.kennung = "ARD",
         .bezeichnung = "01 Das Erste",
         .kurz = "ARD",
         .webseite = "",
         .favorit = true,
         .sortNr = 7,
         .sortNrKestrin = 3},
        {.kennung = "zdf.example", .bezeichnung = "02 Zweites", .kurz = "", .webseite = "", .sortNr = 999},
        {.kennung = "eigen", .bezeichnung = "Mein Name", .kurz = "M", .webseite = "", .geschuetzt = true},
    };
    const auto plan =
        senderplan({kanal("daserste.example", {"1", "das erste"}), kanal("ZDF.example", {"ZDF"}),
                    kanal("eigen", {"Anders"}), kanal("neu.example", {"104", "Kanal Neu HD", "Neu"}),
                    kanal("das.erste.zwei", {"Das Erste"}), kanal("namenlos.example", {})},
                   vorhandene, breiten());
    EXPECT_THAT(plan.kennungen, ElementsAre("ARD", "zdf.example", "eigen", "neu.example", "das.erste.zwei",
                                            "namenlos.example"));
    ASSERT_EQ(plan.umzubenennen.size(), 1U) << "case of a name, and names of the user, stay";
    EXPECT_EQ(plan.umzubenennen[0].bezeichnung, "02 ZDF");
    EXPECT_EQ(plan.umzubenennen[0].kurz, "ZDF");
    ASSERT_EQ(plan.neue.size(), 3U);
    EXPECT_EQ(plan.neue[0], (Senderzeile{.kennung = "neu.example",
                                         .bezeichnung = "104 Kanal Neu HD",
                                         .kurz = "Neu",
                                         .webseite = "",
                                         .sortNr = 999,
                                         .sortNrKestrin = 4}));
    EXPECT_EQ(plan.neue[2].bezeichnung, "namenlos.example");
    EXPECT_EQ(plan.neue[2].kurz, "namenl");
}

// ---- one channel's evening ----

class Abend : public testing::Test {
  protected:
    Abend() {
        ::setenv("TZ", "Europe/Berlin", 1);
        ::tzset();
    }
};

Guidesendung sendung(const std::string& beginn, const std::string& ende, const std::string& titel = "T") {
    Guidesendung s;
    s.beginn = weltzeitAus(beginn);
    if (!ende.empty()) s.ende = weltzeitAus(ende);
    s.daten.Titel = titel;
    return s;
}

// "20:15-21:45 90" each.
std::vector<std::string> zeiten(const Sendeablauf& ablauf) {
    std::vector<std::string> alle;
    for (const cSendung& s : ablauf.sendungen)
        alle.push_back(Format(s.Beginn, "hh:nn") + "-" + Format(s.Ende, "hh:nn") + " " + s.Dauer);
    return alle;
}

TEST_F(Abend, GetsItsMissingEndsAndLosesItsOverlaps) {
    EXPECT_THAT(zeiten(sendeablauf({sendung("202612241900", ""), sendung("202612241915", "202612241915"),
                                    sendung("202612242000", "202612242135"),
                                    sendung("202612242130", "202612242200"), sendung("202612242300", "")})),
                ElementsAre("20:00-20:15 15", "20:15-21:00 45", "21:00-22:30 90", "22:30-23:00 30",
                            "00:00-01:00 60"));
    EXPECT_THAT(
        zeiten(sendeablauf({sendung("202612240500", "202612240800"), sendung("202612240600", "202612240610"),
                            sendung("202612240800", "202612240830")})),
        ElementsAre("06:00-09:00 180", "07:00-07:10 10", "09:00-09:30 30"))
        << "news within a long programme";
}

TEST_F(Abend, LastsToItsEndOverTheChangeOfTheClock) {
    EXPECT_THAT(zeiten(sendeablauf({sendung("20260329013000 +0100", "20260329033000 +0200"),
                                    sendung("20261025013000 +0200", "20261025023000 +0100"),
                                    sendung("20261025025000 +0200", "20261025021000 +0100")})),
                ElementsAre("01:30-03:30 120", "01:30-02:30 120", "02:50-03:10 20"));
}

// What is not covered is not found again, and would be added by each run.
TEST_F(Abend, CoversAllOfTheHourThatComesTwice) {
    for (const auto& rest : {std::vector{sendung("20261025025000 +0200", "20261025021000 +0100")},
                             std::vector{sendung("20261025025000 +0200", "20261025021000 +0100"),
                                         sendung("20261025021000 +0100", "20261025023000 +0100")}}) {
        const Sendeablauf ablauf = sendeablauf(rest);
        const Sendungsabgleich nochmal = gleicheAb(ablauf.sendungen, ablauf);
        for (std::size_t i = 0; i < ablauf.sendungen.size(); ++i) {
            EXPECT_EQ(nochmal.zeilen[i], i);
            EXPECT_GE(ablauf.sendungen[i].Beginn, ablauf.abgedeckt[0].von);
            EXPECT_LT(ablauf.sendungen[i].Beginn, ablauf.abgedeckt[0].bis);
        }
    }
}

TEST_F(Abend, ADayThatTheSourceLeavesOutIsNotCovered) {
    const auto ablauf =
        sendeablauf({sendung("202612231900", "202612232000"), sendung("202612240500", "202612240600"),
                     sendung("202612251900", "202612252000")});
    ASSERT_EQ(ablauf.abgedeckt.size(), 2U);
    EXPECT_EQ(Format(ablauf.abgedeckt[0].bis, "dd hh:nn"), "24 07:00");
    EXPECT_EQ(Format(ablauf.abgedeckt[1].von, "dd hh:nn"), "25 20:00");
}

// "hh:nn Titel" or "hh:nn Titel|Inhalt", half an hour each, on one day.
cSendung zeile(const std::string& text) {
    cSendung s;
    const std::vector<std::string> teile = Split(text.substr(6), "|");
    s.Titel = teile[0];
    if (teile.size() > 1) s.InhaltID = teile[1];
    s.Beginn =
        DateSerial(2026, 12, 24) + TimeSerial(std::stoi(text.substr(0, 2)), std::stoi(text.substr(3, 2)), 0);
    s.Ende = s.Beginn.plusSekunden(1800);
    return s;
}

TEST(Matching, KeepsTheRowOfWhatIsTheSame) {
    const struct {
        const char* name;
        std::vector<std::string> alt, neu;
        std::vector<int> zeilen;  // -1: a new row
        std::vector<std::size_t> entfallen;
    } faelle[] = {
        {"unchanged", {"20:00 News", "20:15 Film"}, {"20:00 news", "20:15 Film"}, {0, 1}, {}},
        {"moved behind a new one", {"20:15 Film"}, {"20:15 Sondersendung", "20:30 Film"}, {-1, 0}, {}},
        {"another film", {"20:15 Film"}, {"20:15 Konzert"}, {-1}, {0}},
        {"title with its episode", {"20:15 Tatort"}, {"20:15 Tatort: Flut"}, {0}, {}},
        {"title shortened", {"20:15 Die große Show der Tiere"}, {"20:15 Große Show"}, {0}, {}},
        {"all half an hour later",
         {"20:00 Serie|1", "20:30 Serie|2", "21:00 Serie|3"},
         {"20:00 Sport", "20:30 Serie|1", "21:00 Serie|2", "21:30 Serie|3"},
         {-1, 0, 1, 2},
         {}},
        {"all ten minutes later, contents unknown",
         {"20:00 Serie", "20:30 Serie"},
         {"20:10 Serie", "20:40 Serie"},
         {0, 1},
         {}},
        {"episode exchanged in its place", {"20:00 Serie|1"}, {"20:00 Serie|9"}, {0}, {}},
        {"another episode nearby", {"20:00 Serie|1"}, {"20:30 Serie|9"}, {-1}, {}},
        {"hourly news, one dropped",
         {"14:00 News", "15:00 News"},
         {"14:00 Rennen", "15:00 News"},
         {-1, 1},
         {0}},
        {"too far away", {"12:00 Film"}, {"11:30 Start", "20:15 Film", "23:00 Schluss"}, {-1, -1, -1}, {0}},
        {"outside of what is covered", {"10:00 Morgen", "23:00 Nacht"}, {"20:00 News"}, {-1}, {}},
        {"nearest of two", {"18:00 Quiz", "20:00 Quiz"}, {"17:30 Start", "20:10 Quiz"}, {-1, 1}, {0}},
    };
    for (const auto& fall : faelle) {
        std::vector<cSendung> alte;
        Sendeablauf ablauf;
        for (const std::string& text : fall.alt)
            alte.push_back(zeile(text));
        for (const std::string& text : fall.neu)
            ablauf.sendungen.push_back(zeile(text));
        ablauf.abgedeckt = {{ablauf.sendungen.front().Beginn, ablauf.sendungen.back().Ende}};
        const Sendungsabgleich abgleich = gleicheAb(alte, ablauf);
        std::vector<int> zeilen;
        for (const auto& gefunden : abgleich.zeilen)
            zeilen.push_back(gefunden ? static_cast<int>(*gefunden) : -1);
        EXPECT_EQ(zeilen, fall.zeilen) << fall.name;
        EXPECT_EQ(abgleich.entfallen, fall.entfallen) << fall.name;
    }
}

}  // namespace
}  // namespace wendel::skarvel
