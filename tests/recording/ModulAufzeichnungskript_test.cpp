// Scripts on the ports: what each line does and shows, every failure text, the limits of waiting.

#include "recording/ModulAufzeichnungskript.h"

#include <gtest/gtest.h>

#include <utility>

#include "platform/Text.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

struct Skriptlauf : ::testing::Test, Skriptanzeige {
    Skriptlauf() {
        skript.tvAnwendungTitel = "TV";
        interpreter.setzeSkript(skript);
        interpreter.setzeWerte(werte);
    }

    void ShowDebugInfo(const std::string& text) override { fakes.aufrufe.zeilen.push_back(text); }
    void ShowDebugInfoAddOk() override { fakes.aufrufe.zeilen.push_back("Ok"); }

    // Everything that happened and was shown, in order; the failure last.
    std::string lauf(const std::string& zeile) {
        fakes.aufrufe.zeilen.clear();
        try {
            interpreter.BefehlAusfuehren(zeile);
        } catch (const Fehler& fehler) {
            EXPECT_EQ(std::to_string(fehler.nummer()) + fehler.quelle(), "1BefehlAusführen");
            fakes.aufrufe.zeilen.push_back(fehler.beschreibung());
        }
        std::erase_if(fakes.aufrufe.zeilen, [](const std::string& z) { return z.starts_with("Rechner."); });
        std::string text = Join(fakes.aufrufe.zeilen, " | ");
        for (const char* vorsatz : {"Fernsteuerung.", "Prozesse.", "Uhr."})
            text = ersetzt(text, vorsatz, "");
        return ersetzt(text, "nachrichtenVerarbeiten()", "*");
    }

    FakePorts fakes;
    Ports ports = fakes.ports();
    Aufzeichnungsskript skript;
    Skriptwerte werte{"C:\\TV\\", "D:\\Filme", "07", "Tatort: A", true, kTestordner};
    ModulAufzeichnungskript interpreter{ports, *this};
};

TEST_F(Skriptlauf, EachLineReachesThePortsAndIsShownAndItsFailureNamesItsValue) {
    fakes.fernsteuerung.fenster = {"TV"};
    fakes.fernsteuerung.fehlendeProgramme = {"weg"};
    fakes.prozesse.laufende = {{"\\opt\\tv.exe", 7}, {"\\opt\\b.exe", 8}, {"\\x\\TV.EXE", 9}};
    const auto zeilen = Split(
        R"(AnwendungStarten ,[tvsoftwarepfad]Tv.exe -x,rest => Starte "C:\TV\Tv.exe -x" | starteBefehlszeile(C:\TV\Tv.exe -x) | * | Ok
anwendungstarten,weg => Starte "weg" | starteBefehlszeile(weg) | * | Die Anwendung "weg" konnte nicht gestartet werden.
FensterAktivieren,[TVAnwendungTitel] => Aktiviere "TV" | fensterNachTitel(TV) | zeigeNormal(1) | aktivieren(TV) | fensterNachTitel(TV) | * | Ok
fensteraktivieren, => Aktiviere "" | Der Befehl "fensteraktivieren," schlug fehl, da ein Fenster mit dem Titel "" 15 Sekunden lang nicht gefunden werden konnte.
tastensenden,[F5] => Sende Taste "[F5]" | sendeTasten(2) | * | Ok
tastensenden,[STRG][F5] => Sende Tasten "[STRG][F5]" | sendeTasten(4) | * | Ok
tastensenden,[Kanal] => Sende Tasten "07" | sendeTasten(4) | * | Ok
tastensenden,{h 90}+({i 60}){j 60} => Sende Tasten "{h 90}+({i 60}){j 60}" | sendeTasten(302) | * | sendeTasten(120) | * | Ok
tastensenden,[Kanal]{FOO} => Sende Tasten "07{FOO}" | Die Tastenkombination "07{FOO}" enthält ungültige Werte.
warten,0.25 => Warte 0.25 Sekunden | schlafe(100) | * | schlafe(100) | * | Ok
warten,0,9 => Warte 0 Sekunden | Ok
warten,abc => Warte abc Sekunden | Ok
warten,-1e999 => Warte -1e999 Sekunden | Ok
terminieren,Tv.exe => Terminiere "Tv.exe" | liste() | beenden(7) | beenden(9) | * | Ok
terminieren,weg => Terminiere "weg" | liste() | * | Ok
 BEEP => Beep | signalton() | * | Ok
 => Unbekannter Befehl | Unbekannter Befehl "" gefunden.
Laufe,[kanal],[Datum]-[Zeit] => Unbekannter Befehl | Unbekannter Befehl "Laufe,07,20121224-200000" gefunden.
[TVAufzeichnungenPfad]-[TITEL] => Unbekannter Befehl | Unbekannter Befehl "D:\Filme-Tatort--A" gefunden.
[ProgrammeOrdner] [WindowsOrdner] [System32Ordner] => Unbekannter Befehl | Unbekannter Befehl "\usr\bin \usr \usr\lib" gefunden.)",
        "\n");
    for (const std::string& zeile : zeilen) {
        const auto teile = Split(zeile, " => ");
        EXPECT_EQ(lauf(teile[0]), teile[1]);
    }
}

TEST_F(Skriptlauf, WhatTheSessionRefusesFailsAtOnceAndSaysSo) {
    werte.debuganzeige = fakes.fernsteuerung.nimmtTasten = false;
    interpreter.setzeWerte(werte);
    EXPECT_EQ(lauf("tastensenden,a"),
              R"(sendeTasten(2) | * | Die Tastenkombination "a" enthält ungültige Werte.)");
    fakes.fernsteuerung.hindernisText = "Hier gibt es kein X11.";
    EXPECT_EQ(
        lauf("fensteraktivieren,TV"),
        R"(Der Befehl "fensteraktivieren,TV" kann hier nicht ausgeführt werden. Hier gibt es kein X11.)");
    EXPECT_EQ(lauf("beep"), "signalton() | *");
}

TEST_F(Skriptlauf, WaitingIsMeasuredOnTheRunningTime) {
    for (const int sekunden : {10, 15, 16}) {
        const std::int64_t beginn = fakes.uhr.laufzeitMs();
        fakes.fernsteuerung.fenster.clear();
        fakes.fernsteuerung.oeffnetUm = {{"TV", beginn + sekunden * 1000}};
        EXPECT_EQ(lauf("fensteraktivieren,TV").ends_with("Ok"), sekunden < 16);
        EXPECT_EQ(fakes.uhr.laufzeitMs() - beginn, std::min(sekunden, 15) * 1000);
    }
    int stockung = 950;
    fakes.uhr.beiNachrichten = [&] { fakes.uhr.vorMs(std::exchange(stockung, 0)); };
    const std::int64_t beginn = fakes.uhr.laufzeitMs();
    EXPECT_TRUE(lauf("warten,2").starts_with("Warte 2 Sekunden | schlafe(100) | * | * | * "));
    EXPECT_EQ(fakes.uhr.laufzeitMs() - beginn, 2000) << "slow window events make a wait no longer";
}

TEST_F(Skriptlauf, AListRunsInOrderUpToItsFirstFailureWhateverIsLoadedMeanwhile) {
    skript.befehlKanalWechseln = {{"beep", 4}, {"anwendungstarten,tv", 9}, {"falsch", 12}, {"beep", 13}};
    interpreter.setzeSkript(skript);
    fakes.uhr.beiNachrichten = [this] { interpreter.setzeSkript({}); };
    try {
        interpreter.KanalWechseln();
        ADD_FAILURE();
    } catch (const Skriptfehler& fehler) {
        EXPECT_EQ(fehler.zeilennummer(), 12);
        EXPECT_EQ(fehler.beschreibung(), "Unbekannter Befehl \"falsch\" gefunden.");
    }
    EXPECT_EQ(fakes.aufrufe.anzahl("Fernsteuerung"), 2);
    EXPECT_NO_THROW(interpreter.AufnahmeBeenden());
}

TEST_F(Skriptlauf, AReasonToStopEndsEndlessScripts) {
    std::int64_t grenze = 0;
    interpreter.setzeAbbruch([&]() -> std::optional<std::string> {
        if (fakes.uhr.laufzeitMs() < grenze) return std::nullopt;
        return "Das Skript lief zu lange.";
    });
    for (const char* zeile : {"warten,1e300", "fensteraktivieren,Fehlt"}) {
        grenze = fakes.uhr.laufzeitMs() + 10000;
        EXPECT_TRUE(lauf(zeile).ends_with(" | Das Skript lief zu lange."));
        EXPECT_EQ(fakes.uhr.laufzeitMs(), grenze) << zeile;
    }
    EXPECT_EQ(lauf("beep"), "Das Skript lief zu lange.");

    interpreter.setzeAbbruch([fragen = 0]() mutable -> std::optional<std::string> {
        return ++fragen > 1000 ? std::optional<std::string>("Genug.") : std::nullopt;
    });
    skript.befehlAufnahmeStarten = Befehlsliste(1001, {"terminieren,x", 5});
    interpreter.setzeSkript(skript);
    EXPECT_THROW(interpreter.AufnahmeStarten(), Skriptfehler);
    EXPECT_EQ(fakes.aufrufe.anzahl("Prozesse"), 1000);
}

}  // namespace
}  // namespace wendel
