// XMLTV as providers write it, well and badly. Expected moments come from `date -d "..." +%s` and the tables
// of the zone database, the meaning of elements from the format's own document type.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "../../apps/skarvel/Guidesendung.h"
#include "../../apps/skarvel/LiveUpdate.h"
#include "../../apps/skarvel/XmltvLeser.h"
#include "../../apps/skarvel/XmltvZeit.h"
#include "platform/Fehler.h"
#include "platform/Text.h"
#include "support/Fakes.h"

namespace wendel::skarvel {
namespace {

using testing::HasSubstr;

class InBerlin : public testing::Test {
  protected:
    InBerlin() {
        ::setenv("TZ", "Europe/Berlin", 1);
        ::tzset();
    }
};

struct Sammler : XmltvEmpfaenger {
    std::vector<XmltvKanal> kanaele;
    std::vector<XmltvSendung> sendungen;
    void kanal(XmltvKanal kanal) override { kanaele.push_back(std::move(kanal)); }
    void sendung(XmltvSendung sendung) override { sendungen.push_back(std::move(sendung)); }
};

// Byte by byte: no element may depend on where a piece ends. The very long in larger pieces.
Sammler gelesen(const std::string& xml) {
    Sammler sammler;
    XmltvLeser leser("probe.xml", sammler);
    const std::size_t stueck = xml.size() < 100'000 ? 1 : 1 << 18;
    for (std::size_t i = 0; i < xml.size(); i += stueck)
        leser.lies(std::string_view(xml).substr(i, stueck));
    leser.ende();
    return sammler;
}

std::string fehlerVon(const std::string& xml) {
    try {
        gelesen(xml);
    } catch (const Fehler& fehler) {
        return fehler.beschreibung();
    }
    return {};
}

TEST_F(InBerlin, MomentsAreReadInEveryZone) {
    const struct {
        const char* text;
        Weltzeit weltzeit;
        const char* wanduhr;
    } faelle[] = {
        {"20261224201500 +0100", 1798139700, "24.12.2026 20:15:00"},
        {"20261224191500", 1798139700, "24.12.2026 20:15:00"},
        {"20261224201500+01:00", 1798139700, "24.12.2026 20:15:00"},
        {"20261224201500 CET", 1798139700, "24.12.2026 20:15:00"},
        {" 202612241415 -0500 ", 1798139700, "24.12.2026 20:15:00"},
        {"20261225004500 +0530", 1798139700, "24.12.2026 20:15:00"},
        {"20260701", 1782864000, "01.07.2026 02:00:00"},
        // The hour that the spring leaves out, and the one that the autumn repeats.
        {"20260329015959 +0100", 1774745999, "29.03.2026 01:59:59"},
        {"20260329020000 +0100", 1774746000, "29.03.2026 03:00:00"},
        {"20261025023000 +0200", 1792888200, "25.10.2026 02:30:00"},
        {"20261025023000 +0100", 1792891800, "25.10.2026 02:30:00"},
        {"20240229120000 Z", 1709208000, "29.02.2024 13:00:00"},
        {"99991231235959 -1200", 253401955200, "28.12.9999 01:00:00"},
    };
    for (const auto& fall : faelle) {
        EXPECT_EQ(weltzeitAus(fall.text), fall.weltzeit) << fall.text;
        EXPECT_EQ(Format(ortszeit(fall.weltzeit), "dd.mm.yyyy hh:nn:ss"), fall.wanduhr) << fall.text;
    }
}

TEST(Moments, AreRefusedWhenTheyAreNone) {
    for (const char* text : {"", "heute", "2026", "20261324", "20260229000000 +0100", "20261224250000",
                             "2026122420150 +0100", "20261224201500 +1500", "20261224201500 +01",
                             "20261224201500 +0160", "20261224201500 XYZ", "20261224201500 +0100 x"})
        EXPECT_THROW(weltzeitAus(text), Fehler) << text;
}

constexpr const char* kAlles = R"(<?xml version="1.0" encoding="windows-1252"?>
<!DOCTYPE tv SYSTEM "xmltv.dtd">
<tv><channel id="drei.example"><display-name lang="de">3 Drittes</display-name><url>http://drei.example</url></channel>
<programme start="20261224201500 +0100" stop="20261224220000 +0100" channel="drei.example" vps-start="20261224201000 +0100">
 <title lang="en">The Sea</title><title lang="de">Das  Meer
 &amp; ich</title>
 <sub-title lang="de">Flut</sub-title>
 <desc lang="en">Much longer than the German one, all the same not taken</desc><desc lang="de">K)"
                               "\xe4se\n"
                               R"(Zeile</desc>
 <credits><director>Ada A</director><director>Bo B</director><actor role="Kapit)"
                               "\xe4"
                               R"(n">Cleo C<image>http://x</image></actor>
  <actor>Dan D</actor><presenter>Eva E</presenter></credits>
 <date>20031105</date><category lang="en">movie</category><category lang="de">Spielfilm</category><category lang="de">Drama</category>
 <keyword>Wasser</keyword><keyword>Salz</keyword>
 <country>D</country><country>F</country>
 <episode-num system="xmltv_ns"> 1 . 4/13 . 0/1 </episode-num>
 <video><colour>no</colour><aspect>16:9</aspect><quality>HDTV</quality></video>
 <audio><stereo>dolby digital</stereo></audio><previously-shown/><live/>
 <subtitles type="teletext"><language>de</language></subtitles>
 <rating system="VCHIP"><value>TV-14</value></rating><rating system="FSK"><value>ab 12</value></rating>
 <star-rating><value> 3 / 4 </value></star-rating><review type="text">Gut.</review>
 <unbekannt><title>nicht dieser</title></unbekannt>
</programme></tv>)";

TEST_F(InBerlin, EveryElementComesToItsColumn) {
    const Sammler alles = gelesen(kAlles);
    ASSERT_EQ(alles.kanaele.size(), 1U);
    EXPECT_EQ(alles.kanaele[0].namen[0].text, "3 Drittes");
    EXPECT_EQ(alles.kanaele[0].webseite, "http://drei.example");
    ASSERT_EQ(alles.sendungen.size(), 1U);
    cSendung s = guidesendungAus(alles.sendungen[0]).daten;
    const std::pair<std::string, std::string> texte[] = {
        {s.Titel, "Das Meer & ich"},
        {s.Originaltitel, "The Sea"},
        {s.Kurzbeschreibung, "Staffel 2, Folge 5: Flut"},
        {s.Beschreibung(), "Käse\r\nZeile"},
        {s.Regie, "Ada A, Bo B"},
        {s.Darsteller(), "Cleo C (Kapitän), Dan D\r\nModeration: Eva E"},
        {s.Herstellungsjahr, "2003"},
        {s.Herstellungsland, "D, F"},
        {s.Kategorietext, "Spielfilm"},
        {s.Genre, "Drama"},
        {s.Keywords, "Wasser;Salz"},
        {s.Kurzkritik, "Gut."},
        {s.VPS, "20:10"},
    };
    for (const auto& [ist, soll] : texte)
        EXPECT_EQ(ist, soll);
    EXPECT_EQ(s.Bewertung, 4);
    EXPECT_EQ(s.FSK, 12);
    EXPECT_TRUE(s.KzFilm && s.Kz16zu9 && s.KzHDTV && s.KzSchwarzweis && s.KzDolbyDigital && s.KzUntertitel &&
                s.KzWiederholung);
    EXPECT_FALSE(s.KzLive || s.KzStereo || s.KzDolby || s.KzZweikanalton) << "a repeat is not live";
}

TEST(Stars, AreSpreadFromOneToFive) {
    const std::pair<const char*, int> faelle[] = {
        {"0/4", 1}, {"1/4", 2}, {"3/4", 4},  {"4/4", 5}, {"7.5/10", 4}, {"1/5", 2},   {"5/5", 5}, {"8/4", 0},
        {"3", 0},   {"3/0", 0}, {"-1/4", 0}, {"a/b", 0}, {"", 0},       {"nan/4", 1}, {"6/10", 3}};
    for (const auto& [sterne, stufe] : faelle)
        EXPECT_EQ(bewertungAus(sterne), stufe) << sterne;
}

// Each entity ten times the one before it: expanded it would be gigabytes.
std::string bombe() {
    std::string xml = "<!DOCTYPE tv [<!ENTITY a0 \"lustig\">";
    for (int i = 1; i < 12; ++i) {
        xml += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int n = 0; n < 10; ++n)
            xml += "&a" + std::to_string(i - 1) + ";";
        xml += "\">";
    }
    return xml + "]><tv><channel id=\"x\"><display-name>&a11;</display-name></channel></tv>";
}

TEST(BrokenXml, IsRefusedWithItsPlace) {
    const std::string sendung = "<programme start=\"20261224201500\" channel=\"x\">";
    const std::pair<std::string, std::string> faelle[] = {
        {"", "probe.xml, Zeile 1: Es ist keine XMLTV-Datei, oder sie ist leer."},
        {"kein XML", "Das XML ist fehlerhaft"},
        {"<html><body/></html>", "Es ist keine XMLTV-Datei."},
        {"<tv>\n\n" + sendung + "<title>A</title>", "Zeile 3: Die Datei ist unvollständig."},
        {"<tv>\n" + sendung + "</tv>", "Zeile 2: Das XML ist fehlerhaft"},
        {"<tv>\n<programme channel=\"x\"/></tv>", "Dem Element \"programme\" fehlt das Attribut \"start\"."},
        {"<tv><programme start=\"20261224201500\"/></tv>", "fehlt das Attribut \"channel\""},
        {"<tv><channel/></tv>", "fehlt das Attribut \"id\""},
        {"<tv>\n<programme start=\"20261224201500 +9900\" channel=\"x\"/></tv>",
         "Zeile 2: Die Zeitangabe \"20261224201500 +9900\" ist nicht lesbar."},
        {"<?xml version=\"1.0\" encoding=\"klingonisch\"?><tv/>", "Die Zeichenkodierung ist unbekannt."},
        {"<tv><channel id=\"\xff\"/></tv>", "Das XML ist fehlerhaft"},
        {"<tv>" + ersetzt(std::string(200, '.'), ".", "<a>"), "zu tief verschachtelt"},
        {bombe(), "Das XML ist fehlerhaft"},
        {"<tv><channel id=\"" + std::string(5 << 20, 'x') + "\"/></tv>", "Ein Element ist zu lang."},
    };
    for (const auto& [xml, text] : faelle)
        EXPECT_THAT(fehlerVon(xml), HasSubstr(text)) << xml.substr(0, 100);
}

TEST(ExternalEntities, AreNotFollowed) {
    const Sammler alles = gelesen(
        "<!DOCTYPE tv [<!ENTITY fremd SYSTEM \"file:///etc/hostname\">]>"
        "<tv><channel id=\"x\"><display-name>&fremd;Name</display-name></channel></tv>");
    EXPECT_EQ(alles.kanaele.at(0).namen.at(0).text, "Name");
}

// Each look at it takes a minute of the clock.
struct Geduldiger : Verlauf {
    void melde(const std::string& text, int /*prozent*/) override { texte.push_back(text); }
    bool abgebrochen() override {
        ports.uhr.vor(60);
        return texte.size() > 2;
    }
    FakePorts ports;
    std::vector<std::string> texte;
};

TEST(ASilentCommand, IsToldAboutEachMinute) {
    Geduldiger verlauf;
    const Ports ports = verlauf.ports.ports();
    verlauf.ports.dateien.lege("\\suite\\tvdaten.mdb", "");
    Einstellungen einstellungen(ports.dateien, kTestordner);
    einstellungen.setzeEinstellung(einstellung::kXmltvBefehl, Variant::text("sleep 60"));
    LiveUpdate update(ports, einstellungen, kTestordner, verlauf);
    EXPECT_THROW(update.laufe(), Fehler);
    EXPECT_THAT(verlauf.texte,
                testing::ElementsAre("Sender werden gelesen ..",
                                     "Der Befehl läuft seit 1 Minute, 0 Sendungen gelesen ..",
                                     "Der Befehl läuft seit 2 Minuten, 0 Sendungen gelesen .."));
}

TEST(Ratings, PreferTheGermanBody) {
    const auto fsk = [](const std::string& elemente) {
        return guidesendungAus(gelesen("<tv><programme start=\"20260101\" channel=\"x\">" + elemente +
                                       "</programme></tv>")
                                   .sendungen.at(0))
            .daten.FSK;
    };
    const auto wert = [](const char* system, const char* stufe) {
        return std::string("<rating system=\"") + system + "\"><value>" + stufe + "</value></rating>";
    };
    EXPECT_EQ(fsk(wert("", "18") + wert("FSK", "16")), 16);
    EXPECT_EQ(fsk(wert("", "FSK 6")), 6);
    EXPECT_EQ(fsk(wert("MPAA", "PG-13") + wert("CSA", "12")), 12);
    EXPECT_EQ(fsk(wert("VCHIP", "TV-14")), 0);
}

}  // namespace
}  // namespace wendel::skarvel
