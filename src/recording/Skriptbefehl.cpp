#include "recording/Skriptbefehl.h"

#include <algorithm>
#include <limits>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"
#include "recording/Tastenfolge.h"

namespace wendel {

namespace {

std::string inAnfuehrung(std::string_view text) { return "\"" + std::string(text) + "\""; }

Skriptbefehl anwendungStarten(const std::string& befehlszeile) {
    return {AnwendungStartenBefehl{befehlszeile}, "Starte " + inAnfuehrung(befehlszeile),
            "Die Anwendung " + inAnfuehrung(befehlszeile) + " konnte nicht gestartet werden."};
}

Skriptbefehl fensterAktivieren(const std::string& titel, std::string_view zeile) {
    return {FensterAktivierenBefehl{titel}, "Aktiviere " + inAnfuehrung(titel),
            "Der Befehl " + inAnfuehrung(zeile) + " schlug fehl, da ein Fenster mit dem Titel " +
                inAnfuehrung(titel) + " 15 Sekunden lang nicht gefunden werden konnte."};
}

bool istEineTaste(std::string_view tasten) {
    return tasten.starts_with('[') && tasten.ends_with(']') &&
           std::count(tasten.begin(), tasten.end(), '[') == 1;
}

Skriptbefehl tastenSenden(const std::string& tasten) {
    Skriptbefehl befehl{UngueltigeTastenBefehl{},
                        (istEineTaste(tasten) ? "Sende Taste " : "Sende Tasten ") + inAnfuehrung(tasten),
                        "Die Tastenkombination " + inAnfuehrung(tasten) + " enthält ungültige Werte."};
    if (auto ereignisse = tastenereignisse(tastennamenErsetzen(tasten)))
        befehl.aktion = TastenSendenBefehl{std::move(*ereignisse)};
    return befehl;
}

// A number beyond all bounds waits as long as there are numbers: waiting does not fail, and whoever runs the
// script ends it in time.
std::int64_t zehntelsekunden(std::string_view sekunden) try {
    return std::max(CLng(Val(sekunden) * 10), 0);
} catch (const Fehler&) {
    const bool negativ = trimAlleLeerraeume(sekunden).starts_with('-');
    return negativ ? 0 : std::numeric_limits<std::int32_t>::max();
}

Skriptbefehl warten(const std::string& sekunden) {
    return {WartenBefehl{zehntelsekunden(sekunden)}, "Warte " + sekunden + " Sekunden", ""};
}

}  // namespace

Skriptbefehl skriptbefehl(std::string_view zeile) {
    const std::size_t komma = std::min(zeile.find(','), zeile.size());
    const std::string wort = LCase(Trim(zeile.substr(0, komma)));
    std::string_view rest = zeile.substr(std::min(komma + 1, zeile.size()));
    const std::string argument(rest.substr(0, rest.find(',')));
    if (wort == "anwendungstarten") return anwendungStarten(argument);
    if (wort == "fensteraktivieren") return fensterAktivieren(argument, zeile);
    if (wort == "tastensenden") return tastenSenden(argument);
    if (wort == "warten") return warten(argument);
    if (wort == "terminieren")
        return {TerminierenBefehl{argument}, "Terminiere " + inAnfuehrung(argument), ""};
    if (wort == "beep") return {BeepBefehl{}, "Beep", ""};
    return {UnbekannterBefehl{}, "Unbekannter Befehl",
            "Unbekannter Befehl " + inAnfuehrung(zeile) + " gefunden."};
}

}  // namespace wendel
