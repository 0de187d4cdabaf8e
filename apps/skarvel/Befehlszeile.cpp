#include "Befehlszeile.h"

#include "platform/Text.h"

namespace wendel::skarvel {

std::optional<Schalter> schalterAus(std::span<const std::string> argumente, std::string& meldung) {
    Schalter schalter;
    for (const std::string& argument : argumente) {
        for (const std::string& wort : Split(Trim(argument), " ")) {
            const std::string klein = LCase(wort);
            if (klein == "/liveupdate") {
                schalter.liveUpdate = true;
            } else if (klein == "/hidden") {
                schalter.versteckt = true;
            } else if (klein == "/?" || klein == "--help" || klein == "--hilfe") {
                schalter.hilfe = true;
            } else if (!klein.empty() && klein != "/onlyusewinconnection") {
                // The one above chose a way to dial in, of which there is only one here.
                meldung = "Unbekannter Schalter \"" + wort + "\". \"skarvel '/?'\" zeigt alle.";
                return std::nullopt;
            }
        }
    }
    return schalter;
}

std::string hilfetext() {
    return "skarvel: holt das Fernsehprogramm aus einer XMLTV-Quelle in die TV-Datenbank.\n"
           "\n"
           "  skarvel                      Einstellungen des Live-Updates\n"
           "  skarvel /liveupdate          das Live-Update mit Fortschrittsfenster\n"
           "  skarvel /hidden /liveupdate  das Live-Update ohne Fenster\n"
           "  skarvel /?                   diese Hilfe\n"
           "\n"
           "Die Quelle steht in den Einstellungen XmltvQuelle (Datei oder Ordner) und XmltvBefehl\n"
           "(ein Befehl, der XMLTV ausgibt; er hat Vorrang).\n"
           "Ende: 0 fertig, 1 Fehler oder abgebrochen, 2 falscher Aufruf, 3 kein Bildschirm für die "
           "Einstellungen.\n";
}

}  // namespace wendel::skarvel
