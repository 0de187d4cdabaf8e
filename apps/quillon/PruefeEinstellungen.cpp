// The settings file and what it switches on.

#include <unistd.h>

#include <string_view>
#include <utility>
#include <vector>

#include "Pruefungen.h"
#include "desktop/Abloesung.h"
#include "desktop/Autostarteintrag.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::quillon {
namespace {

constexpr std::string_view kDatei = "fennow.cfg";

// Two values of the row's type, of which no element can be both.
std::pair<Variant, Variant> zweiWerte(Varianttyp typ) {
    switch (typ) {
        case Varianttyp::Boolean: return {Variant::boolesch(false), Variant::boolesch(true)};
        case Varianttyp::Integer: return {Variant::integer(0), Variant::integer(1)};
        case Varianttyp::Long: return {Variant::lang(0), Variant::lang(1)};
        case Varianttyp::Date: return {Variant::datum(Datum()), Variant::datum(Datum().plusSekunden(1))};
        default: return {Variant::text(""), Variant::text("-")};
    }
}

bool gesetzt(const Variant& array, const Einstellungszeile& zeile) try {
    const Variant& element = array.alsArray().at({zeile.index});
    return !element.istLeer() && !element.istNull();
} catch (const Fehler&) {
    return false;  // outside the bounds
}

// It reads as whatever is put in its place.
bool unbrauchbar(const Variant& array, const Einstellungszeile& zeile) {
    const auto [eins, zwei] = zweiWerte(zeile.typ);
    return elementOderErsatz(array, zeile.index, eins) == eins &&
           elementOderErsatz(array, zeile.index, zwei) == zwei;
}

void pruefeWerte(Pruefmelder& melder, const Variant& array) {
    std::size_t anzahl = 0;
    std::vector<std::string> schlechte;
    for (const Einstellungszeile& zeile : einstellungstabelle()) {
        if (zeile.index == einstellung::kTermin || !gesetzt(array, zeile)) continue;
        ++anzahl;
        if (unbrauchbar(array, zeile)) schlechte.emplace_back(zeile.name);
    }
    melder.ok("Einstellungen: lesbar, " + std::to_string(anzahl) + " von " +
              std::to_string(einstellungstabelle().size() - 1) + " gesetzt, sonst gilt die Vorgabe");
    if (!schlechte.empty())
        melder.hinweis("Unbrauchbare Werte: " + Join(schlechte, ", "),
                       "Mit \"quillon --setze NAME=WERT\" neu setzen; bis dahin gilt die Vorgabe.");
}

// Whether there are settings to look at.
bool pruefeDatei(Pruefmelder& melder, Prueflage& lage) {
    const std::string pfad = lage.programmordner + std::string(kDatei);
    if (!lage.einstellungen.EinstellungsdateiVorhanden()) {
        melder.hinweis(
            "Einstellungen: noch keine, es gelten die Vorgaben",
            lage.ordnerDa ? "\"quillon --erststart\" legt sie an." : "Siehe den Rat zum Programmordner.");
        return false;
    }
    if (lage.dateien.existiert(pfad + ".neu"))
        melder.hinweis("Einstellungen: ein Schreiben wurde unterbrochen",
                       "Lomrick starten; es schließt das Schreiben ab.");
    if (const auto array = lage.einstellungen.arrayOderNichts()) {
        pruefeWerte(melder, *array);
        return true;
    }
    if (::access(vorhandeneDatei(pfad).c_str(), R_OK) == 0)
        melder.fehler("Einstellungen: die Datei fennow.cfg ist beschädigt",
                      "Eine Sicherung zurückholen oder die Einstellungen neu setzen; das erste \"quillon "
                      "--setze\" legt die alte Datei beiseite.");
    else
        melder.fehler("Einstellungen: die Datei fennow.cfg ist nicht lesbar",
                      "Dem Benutzer die Rechte an der Datei geben.");
    return false;
}

void pruefeErinnerungen(Pruefmelder& melder, const Konfiguration& k) {
    std::size_t aktive = 0;
    for (const GespeicherterTermin& termin : k.termine)
        if (termin.aktiv) ++aktive;
    melder.ok("Eigene Termine: " + std::to_string(k.termine.size()) + ", davon " + std::to_string(aktive) +
              " aktiv");
    if (k.erinnerung)
        melder.ok(std::string("Erinnerungen: eingeschaltet, verpasste werden ") +
                  (k.verpassteZeigen ? "" : "nicht ") + "nachgeholt");
    else
        melder.hinweis("Erinnerungen: ausgeschaltet", "\"quillon --setze Erinnerung=ja\" schaltet sie ein.");
    const std::string zeiten = "Aufnahmen: " + std::to_string(k.vorlaufMinuten) + " Minuten Vorlauf, " +
                               std::to_string(k.nachlaufMinuten) + " Minuten Nachlauf";
    if (k.vorlaufMinuten < 0 || k.nachlaufMinuten < 0)
        melder.hinweis(zeiten, "Vorlauf und Nachlauf mit \"quillon --setze\" auf 0 oder mehr stellen.");
    else
        melder.ok(zeiten);
}

void pruefeAutostart(Pruefmelder& melder, const Konfiguration& k) {
    const Autostarteintrag eintrag(konfigurationsordner() + "/autostart/wendel.desktop",
                                   eigenerProgrammordner() + "/wendel");
    const bool da = eintrag.zeile().has_value();
    constexpr const char* kNeu = "Lomrick starten und mit Ja beim Beenden neu eintragen lassen.";
    if (!da && k.autostart) return melder.hinweis("Autostart: eingeschaltet, aber nicht eingetragen", kNeu);
    if (!da) return melder.ok("Autostart: ausgeschaltet");
    const std::string programm = eintrag.programm().value_or("");
    const std::string datei = programm.find('/') == std::string::npos ? imSuchpfad(programm) : programm;
    if (!datei.starts_with('/') || ::access(datei.c_str(), X_OK) != 0)
        return melder.fehler("Autostart: eingetragen, aber das Programm ist nicht da", kNeu);
    melder.ok("Autostart: eingetragen, das Programm ist da");
}

}  // namespace

void pruefeEinstellungen(Pruefmelder& melder, Prueflage& lage) {
    if (pruefeDatei(melder, lage)) pruefeErinnerungen(melder, lage.konfiguration);
    pruefeAutostart(melder, lage.konfiguration);
}

}  // namespace wendel::quillon
