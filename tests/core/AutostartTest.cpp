// The entry among the programs that start at log-on, and the question of whether to keep it.
#include "core/Autostart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Programm.h"

namespace wendel {
namespace {

using namespace std::string_literals;
using Kasten = FakeMeldungen::Kasten;

const std::string kRun = "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
const std::string kRunAlle = "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Run";
const Registrierungswert kEintrag{1, "\"c:\\suite\\tessaly.exe\" wendel pcstart\0"s};
const Kasten kFrage{"Möchten Sie, dass der Lomrick beim nächsten Booten\r\nwieder gestartet wird?", 51,
                    "Lomrick schließen"};
const Kasten kNichtGesetzt{"Der Run-Eintrag konnte nicht gesetzt werden.", 48, "Start bei Systemstart"};

// With an old entry of the user and one of the whole machine.
struct Aufbau {
    Aufbau() {
        registrierung.schluessel = {kRun, kRunAlle};
        registrierung.werte = {{kRun + "\\Wendel", {1, "alt\0"s}}, {kRunAlle + "\\Wendel", {1, "alt\0"s}}};
    }
    std::string eintrag() {
        const auto wert = registrierung.werte.find(kRun + "\\Wendel");
        if (wert == registrierung.werte.end()) return "none";
        return wert->second == kEintrag ? "written" : "old";
    }
    bool maschinenweit() { return registrierung.werte.contains(kRunAlle + "\\Wendel"); }

    FakeMeldungen meldungen;
    FakeRegistrierung registrierung;
    Prozesswerte werte{"wendel", "", "c:\\suite\\", "", "", "", "", ""};
    wendel::Autostart autostart{meldungen, registrierung, werte};
};
struct Autostart : testing::Test, Aufbau {};

TEST_F(Autostart, MissingKeyIsMadeAndAnEntryThatDoesNotReadBackIsTold) {
    autostart.SetAutostartEntry(1);
    EXPECT_TRUE(eintrag() == "old" && maschinenweit()) << "neither true nor false";
    registrierung.schluessel = {};
    registrierung.werte = {};
    autostart.SetAutostartEntry(kVbFalse);
    EXPECT_TRUE(registrierung.schluessel.empty());
    autostart.SetAutostartEntry(kVbTrue);
    EXPECT_EQ(eintrag(), "written");
    werte.programmordner = "c:\\Видео\\";  // not in the registry's code page
    autostart.SetAutostartEntry(kVbTrue);
    EXPECT_TRUE(meldungen.gezeigt.empty());

    registrierung.vergesslich = true;
    werte.programmordner = "d:\\neu\\";
    autostart.SetAutostartEntry(kVbTrue);
    registrierung.schluessel = {};
    registrierung.anlegbar = false;
    autostart.SetAutostartEntry(kVbTrue);
    EXPECT_THAT(meldungen.gezeigt, testing::ElementsAre(kNichtGesetzt, kNichtGesetzt));
}

TEST_F(Autostart, CloseQuestion) {
    const struct {
        const char* fall;
        bool eingeschaltet;
        const char* befehlszeile;
        Antwort antwort;
        bool gefragt, weiter;
        const char* eintrag;
    } faelle[] = {
        {"flag off", false, "/m", Antwort::Ja, false, true, "none"},
        {"yes", true, "/m", Antwort::Ja, true, true, "written"},
        {"no", true, "", Antwort::Nein, true, true, "none"},
        {"cancel", true, "", Antwort::Abbrechen, true, false, "old"},
        {"another user", true, "/m /DifferentUser", Antwort::Ja, false, true, "none"},
    };
    for (const auto& fall : faelle) {
        SCOPED_TRACE(fall.fall);
        Aufbau test;
        test.werte.befehlszeile = fall.befehlszeile;
        test.meldungen.antworten = {fall.antwort};
        EXPECT_EQ(test.autostart.AskAutostartOnClose(fall.eingeschaltet), fall.weiter);
        EXPECT_EQ(test.meldungen.gezeigt, std::vector<Kasten>(fall.gefragt ? 1 : 0, kFrage));
        EXPECT_EQ(test.eintrag(), fall.eintrag);
        EXPECT_EQ(test.maschinenweit(), !fall.weiter);
    }
}

// The end: which boxes, and what has become of program and entry.
struct Ende : testing::Test, Programm {
    Ende() {
        ports.registrierung.schluessel = {kRun};
        setze(einstellung::kAutostart, Variant::boolesch(true));
        starte();
        ereignisse();
    }
    bool eintrag() { return ports.registrierung.werte.contains(kRun + "\\Wendel"); }
    std::vector<std::string> fragen() {
        std::vector<std::string> titel;
        for (const Kasten& kasten : std::exchange(ports.meldungen.gezeigt, {}))
            titel.push_back(kasten.titel);
        return titel;
    }
};

TEST_F(Ende, AsksForTheEntryLastAndKeepsEverythingUntilItIsAnswered) {
    EXPECT_TRUE(eintrag());
    ports.dateien.nurLesen = {"\\suite\\fennow.cfg", "\\suite\\fennow.cfg.neu"};
    form().KurzZeitWeckerAktivieren(60);
    ports.meldungen.antworten = {Antwort::Ja, Antwort::Abbrechen};
    form().mnuBeenden_Click();
    EXPECT_THAT(fragen(), testing::ElementsAre("Termine", "Lomrick schließen"));
    EXPECT_TRUE(eintrag() && fenster->geladen && !ports.symbol.symbole.empty());

    ports.dateien.nurLesen.clear();
    {
        const Laufend tick = form().beschaeftigen();
        form().mnuBeenden_Click();
    }
    EXPECT_THAT(fragen(), testing::ElementsAre()) << "inside of a tick";
    ports.meldungen.antworten = {Antwort::Nein};
    sekunde();
    ereignisse();
    EXPECT_THAT(fragen(), testing::ElementsAre("Lomrick schließen"));
    EXPECT_FALSE(eintrag() || fenster->geladen || !ports.symbol.symbole.empty());
}

// Its box must not keep the start from its end.
TEST_F(Ende, AnEntryThatCannotBeWrittenIsToldWhileTheProgramRuns) {
    ports.registrierung.werte.clear();
    ports.registrierung.vergesslich = true;
    setzeTermine({{um(20, 1), "Tee", 0, true}});
    ports.meldungen.imKasten = [&](const Kasten&) { bis(um(20, 1)); };
    starte("/m /createtermin");
    EXPECT_THAT(fragen(), testing::ElementsAre());
    ereignisse();
    EXPECT_THAT(fragen(), testing::ElementsAre("Start bei Systemstart"));
    EXPECT_TRUE(hinweis->gezeigt);
}

}  // namespace
}  // namespace wendel
