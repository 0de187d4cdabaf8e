#include "core/Aufzeichnungstexte.h"

#include "recording/Aufzeichnungsprotokoll.h"

namespace wendel::Aufzeichnungstexte {

namespace {

std::string uhrzeit(Datum d) { return Format(d, "hh\\:nn"); }

// "Zeile 12: message"; a failure of no line has its message alone.
std::string ursache(const Skriptfehler& fehler) {
    const int zeile = fehler.zeilennummer();
    return (zeile ? "Zeile " + std::to_string(zeile) + ": " : std::string()) + fehler.beschreibung();
}

}  // namespace

std::string bezeichnung(const Aufzeichnung& a) {
    return "\"" + a.titel + "\" (" + a.senderkennung + ", " + uhrzeit(a.beginn) + " bis " + uhrzeit(a.ende) +
           ")";
}

std::string ueberschneidung(const Aufzeichnung& frueher) {
    return "überschneidet sich mit " + bezeichnung(frueher);
}

std::string konflikt(const Aufzeichnung& spaeter, const Aufzeichnung& frueher) {
    const std::string text = bezeichnung(spaeter) + " " + ueberschneidung(frueher);
    if (spaeter.ende <= frueher.ende) return text + " und kann deshalb nicht aufgezeichnet werden.";
    return text + " und kann erst beginnen, wenn diese um " + uhrzeit(frueher.ende) + " endet.";
}

std::string mussWarten(const Aufzeichnung& spaeter, const Aufzeichnung& laufende) {
    const std::string text = "Die Aufzeichnung " + bezeichnung(spaeter) + " kann jetzt nicht beginnen, da " +
                             bezeichnung(laufende) + " aufgezeichnet wird.\r\n";
    if (spaeter.ende <= laufende.ende) return text + "Sie entfällt, wenn diese bis zu ihrem Ende läuft.";
    return text + "Sie beginnt, wenn diese um " + uhrzeit(laufende.ende) + " endet.";
}

std::string startGescheitert(const Aufzeichnung& aufzeichnung, const Skriptfehler& fehler,
                             Datum naechsterVersuch) {
    return "Die Aufzeichnung " + bezeichnung(aufzeichnung) + " konnte nicht gestartet werden.\r\n" +
           ursache(fehler) + "\r\n" +
           (naechsterVersuch < aufzeichnung.ende
                ? "Der Start wird um " + uhrzeit(naechsterVersuch) + " erneut versucht."
                : "Vor ihrem Ende ist kein weiterer Versuch möglich.");
}

std::string endeGescheitert(const Aufzeichnung& aufzeichnung, const Skriptfehler& fehler) {
    return "Die Aufzeichnung " + bezeichnung(aufzeichnung) +
           " konnte nicht ordnungsgemäß beendet werden. Bitte prüfen Sie, ob die TV-Anwendung noch "
           "aufzeichnet.\r\n" +
           ursache(fehler);
}

std::string keineDatei(const Aufzeichnung& aufzeichnung, const std::string& ordneranzeige, int sekunden) {
    return "Im Aufzeichnungsordner \"" + ordneranzeige + "\" ist " + std::to_string(sekunden) +
           " Sekunden nach dem Start der Aufzeichnung " + bezeichnung(aufzeichnung) +
           " keine Datei gewachsen. Bitte prüfen Sie, ob die TV-Anwendung wirklich aufzeichnet.";
}

std::string dateiGestoert(const std::string& dateianzeige) {
    return "Die Datei \"" + dateianzeige +
           "\" kann nicht gelesen oder nicht geschrieben werden. Lomrick kann nicht festhalten, was aus den "
           "Aufzeichnungen wird.\r\nDer Versuch wird jede Minute wiederholt.";
}

std::string trotzdemBeenden(const Aufzeichnung& laufende) {
    return "Es wird gerade \"" + laufende.titel + "\" aufgezeichnet (bis " + uhrzeit(laufende.ende) +
           "). Ohne Lomrick endet die Aufzeichnung nicht, bis Lomrick wieder läuft.\r\nMöchten Sie trotzdem "
           "beenden ?";
}

}  // namespace wendel::Aufzeichnungstexte
