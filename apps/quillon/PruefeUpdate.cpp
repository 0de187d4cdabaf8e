// The live update: the program, its source, its schedule, its last run.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "Pruefungen.h"
#include "core/Liveupdate.h"
#include "core/Liveupdatetext.h"
#include "desktop/Abloesung.h"
#include "desktop/LinuxDateistarter.h"
#include "desktop/Pfade.h"
#include "platform/Text.h"

namespace wendel::quillon {
namespace {

constexpr std::int16_t kHoechsterModus = 3, kModusZeitplan = 2, kModusStunden = 3;
constexpr std::size_t kTageJeWoche = 7;
constexpr std::int64_t kWocheSekunden = std::int64_t{kTageJeWoche} * 86400;
constexpr std::int64_t kAltTage = 14;

void pruefeProgramm(Pruefmelder& melder, const Prueflage& lage) {
    const std::string datei = LinuxDateistarter().gemeinteDatei(lage.programmordner + kLiveUpdateProgramm);
    constexpr const char* kRat = "Skarvel zusammen mit Lomrick installieren.";
    if (!datei.empty() && ::access(datei.c_str(), X_OK) == 0)
        melder.ok("Programm: gefunden, ausführbar");
    else if (lage.konfiguration.liveUpdate)
        melder.fehler(std::string("Programm: ") + (datei.empty() ? "nicht gefunden" : "nicht ausführbar"),
                      kRat);
    else
        melder.hinweis(std::string("Programm: ") + (datei.empty() ? "nicht gefunden" : "nicht ausführbar"),
                       kRat);
}

bool istAdresse(const std::string& text) { return text.find("://") != std::string::npos; }

// A command is a line for the shell; only its first word can be looked for.
void pruefeBefehl(Pruefmelder& melder, const std::string& befehl) {
    const std::vector<std::string> worte = argumenteAus(befehl);
    const std::string wort = worte.empty() ? "" : worte.front();
    const bool einfach = wort.find_first_of("=$`;&|<>(){}~*?'\\") == std::string::npos;
    const bool da =
        wort.find('/') == std::string::npos ? !imSuchpfad(wort).empty() : ::access(wort.c_str(), X_OK) == 0;
    if (einfach && !da)
        melder.hinweis("Quelle: ein Programm, das nicht gefunden wird",
                       "Das Programm installieren oder mit \"quillon --setze XmltvBefehl=...\" ein anderes "
                       "nennen.");
    else
        melder.ok("Quelle: ein Programm");
}

void pruefeQuelle(Pruefmelder& melder, const Konfiguration& k) {
    if (!k.xmltvBefehl.empty()) return pruefeBefehl(melder, k.xmltvBefehl);
    if (k.xmltvQuelle.empty()) {
        const char* const rat =
            "Mit \"skarvel\" oder \"quillon --setze XmltvQuelle=DATEI\" eine Quelle nennen.";
        if (k.liveUpdate) return melder.fehler("Quelle: keine eingestellt", rat);
        return melder.ok("Quelle: keine eingestellt");
    }
    struct stat angaben {};
    const std::string nativ = nativerPfad(k.xmltvQuelle);
    if (istAdresse(k.xmltvQuelle))
        melder.fehler("Quelle: im Netz, das nicht direkt gelesen wird",
                      "Als XmltvBefehl ein Programm nennen, das die Daten holt und ausgibt.");
    else if (::stat(nativ.c_str(), &angaben) != 0)
        melder.fehler(
            "Quelle: eine Datei, die nicht da ist",
            "Die Datei bereitstellen oder mit \"quillon --setze XmltvQuelle=...\" eine andere nennen.");
    else if (!S_ISREG(angaben.st_mode) && !S_ISDIR(angaben.st_mode))
        melder.fehler("Quelle: weder Datei noch Ordner", "Eine XMLTV-Datei oder ihren Ordner nennen.");
    else if (::access(nativ.c_str(), R_OK) != 0)
        melder.fehler("Quelle: nicht lesbar", "Dem Benutzer die Rechte an der Quelle geben.");
    else
        melder.ok(S_ISDIR(angaben.st_mode)
                      ? "Quelle: ein Ordner"
                      : "Quelle: eine Datei, " + groesseText(static_cast<std::uint64_t>(angaben.st_size)));
}

// "an 7 Tagen der Woche um 06:00"; "" for a schedule that never comes due.
std::string planText(const std::string& zeitplan, Datum jetzt) {
    const auto moment = letzterPlanmoment(zeitplan, jetzt.plusSekunden(-kWocheSekunden - 1), jetzt);
    if (!moment) return {};
    const std::string maske = Left(zeitplan, kTageJeWoche);
    const auto tage = std::count(maske.begin(), maske.end(), '1');
    return "an " + std::to_string(tage) + (tage == 1 ? " Tag" : " Tagen") + " der Woche um " +
           Format(*moment, "hh:nn") + " Uhr";
}

void pruefePlan(Pruefmelder& melder, const Konfiguration& k, Datum jetzt) {
    if (!k.liveUpdate) return melder.ok("Live-Update: ausgeschaltet");
    const std::string plan = planText(k.zeitplan, jetzt);
    if (k.liveUpdateModus < 0 || k.liveUpdateModus > kHoechsterModus)
        melder.hinweis("Live-Update: eingeschaltet mit unbekanntem Modus",
                       "\"quillon --setze LiveUpdateModus=2\" stellt den Wochenplan ein.");
    else if (k.liveUpdateModus == kModusZeitplan && plan.empty())
        melder.hinweis("Live-Update: eingeschaltet, aber der Wochenplan hat keinen Termin",
                       "Mit quillon --setze 'Zeitplan=1111111 06:00' Tage (ab Sonntag) und Uhrzeit "
                       "nennen.");
    else if (k.liveUpdateModus == kModusStunden && k.liveUpdateStunden <= 0)
        melder.hinweis("Live-Update: eingeschaltet mit einem Abstand von 0 Stunden, also nie",
                       "Mit \"quillon --setze LiveUpdateStunden=24\" einen Abstand nennen.");
    else if (k.liveUpdateModus == kModusZeitplan)
        melder.ok("Live-Update: eingeschaltet, " + plan);
    else if (k.liveUpdateModus == kModusStunden)
        melder.ok("Live-Update: eingeschaltet, alle " + std::to_string(k.liveUpdateStunden) + " Stunden");
    else
        melder.ok(std::string("Live-Update: eingeschaltet, ") +
                  (k.liveUpdateModus == 0 ? "einmal täglich bei Einwahl" : "bei jeder Einwahl"));
}

void pruefeLetztes(Pruefmelder& melder, const Konfiguration& k, Datum jetzt) {
    if (k.letztesUpdate == Datum()) {
        if (k.liveUpdate)
            return melder.hinweis("Letztes Update: noch keines", "Einmal \"skarvel\" aufrufen.");
        return melder.ok("Letztes Update: noch keines");
    }
    const std::int64_t tage = DateDiff(Einheit::Tag, k.letztesUpdate, jetzt);
    const std::string befund = "Letztes Update: " + Format(k.letztesUpdate, "dd.mm.yyyy hh:nn");
    if (k.liveUpdate && tage > kAltTage)
        melder.hinweis(befund + ", vor " + std::to_string(tage) + " Tagen",
                       "Einmal \"skarvel\" aufrufen und die Meldungen lesen.");
    else
        melder.ok(befund);
}

}  // namespace

void pruefeUpdate(Pruefmelder& melder, Prueflage& lage) {
    const Datum jetzt = lage.uhr.jetzt();
    pruefePlan(melder, lage.konfiguration, jetzt);
    pruefeProgramm(melder, lage);
    pruefeQuelle(melder, lage.konfiguration);
    pruefeLetztes(melder, lage.konfiguration, jetzt);
}

}  // namespace wendel::quillon
