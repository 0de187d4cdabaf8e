// quillon: creates and changes the settings of the suite on the command line, and its database where there is
// none; checks an installation. Exit codes: 0 done, 1 error, 2 wrong usage.

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "../Konsolenports.h"
#include "Befehlszeile.h"
#include "Einrichter.h"
#include "Pruefer.h"
#include "desktop/LinuxUhr.h"
#include "desktop/Pfade.h"
#include "desktop/Programmordner.h"
#include "platform/Fehler.h"

namespace {

using namespace wendel;
using namespace wendel::quillon;

constexpr int kFehler = 1;
constexpr int kFalscherGebrauch = 2;

[[noreturn]] void ordnerFehlt(const std::string& ordner) {
    throw Fehler(fehlernummer::kPfadNichtGefunden, "quillon", "Der Ordner \"" + ordner + "\" ist nicht da.");
}

// The folder in the form of the logic, current afterwards. One that was named is made only together with its
// files: a mistyped name should not leave a second set of them behind.
std::string programmordnerFuer(const Befehl& befehl, Dateisystem& dateien) {
    std::optional<std::string> ordner;
    if (befehl.ordner) {
        ordner = logischerPfad(std::filesystem::absolute(*befehl.ordner).string());
        const auto istAnlegen = [](const Auftrag& a) {
            return std::holds_alternative<Anlegen>(a) || std::holds_alternative<Erststart>(a);
        };
        const bool anlegen = std::any_of(befehl.auftraege.begin(), befehl.auftraege.end(), istAnlegen);
        if (anlegen && !dateien.ordnerAnlegen(*ordner)) {
            throw Fehler(fehlernummer::kEigener, "quillon",
                         "Der Ordner \"" + dateien.pfadAnzeige(*ordner) + "\" kann nicht angelegt werden.");
        }
    } else {
        ordner = programmordner();
    }
    if (!ordner) {
        throw Fehler(fehlernummer::kEigener, "quillon", "Der Programmordner kann nicht angelegt werden.");
    }
    if (!dateien.ordnerWechseln(*ordner)) ordnerFehlt(dateien.pfadAnzeige(*ordner));
    return *ordner;
}

void erledigeAuftraege(const Befehl& befehl, Uhr& uhr) {
    const Konsolenports ports(uhr);
    Einrichter einrichter(ports.ports(), programmordnerFuer(befehl, ports.ports().dateien), std::cout,
                          std::cerr);
    for (const Auftrag& auftrag : befehl.auftraege)
        einrichter.erledige(auftrag);
}

int fuehreAus(const Befehl& befehl) {
    std::string meldung;
    const auto uhr = LinuxUhr::ausUmgebung(meldung);
    if (!uhr) throw Gebrauchsfehler(meldung);
    int code = 0;
    if (befehl.pruefen)
        code = pruefeAlles(befehl.ordner, *uhr, std::cout) ? 0 : kFehler;
    else
        erledigeAuftraege(befehl, *uhr);
    if (!std::cout.flush()) throw Fehler(fehlernummer::kEigener, "quillon", "Die Ausgabe ist nicht möglich.");
    return code;
}

int laufe(const std::vector<std::string>& argumente) {
    try {
        const Befehl befehl = befehlAus(argumente);
        if (befehl.hilfe) {
            std::cout << hilfetext();
            return 0;
        }
        return fuehreAus(befehl);
    } catch (const Gebrauchsfehler& fehler) {
        std::cerr << fehler.what() << "\n";
        return kFalscherGebrauch;
    } catch (const Fehler& fehler) {
        std::cerr << fehler.beschreibung() << "\n";
    } catch (const std::exception& fehler) {
        std::cerr << fehler.what() << "\n";
    }
    return kFehler;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> argumente(argv, argv + argc);
    if (!argumente.empty()) argumente.erase(argumente.begin());
    return laufe(argumente);
}
