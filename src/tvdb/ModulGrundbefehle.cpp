#include "tvdb/ModulGrundbefehle.h"

#include "platform/Datumstext.h"
#include "platform/Fehler.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"

namespace wendel::ModulGrundbefehle {

namespace {

std::string datumOhneKlammern(const Datumsteile& t) {
    return std::to_string(t.monat) + "/" + std::to_string(t.tag) + "/" + std::to_string(t.jahr);
}

}  // namespace

std::string SqlText(std::string_view text) { return "'" + ersetzt(text, "'", "''") + "'"; }

std::string SqlDatum(Datum d) { return "#" + datumOhneKlammern(zerlegt(d)) + "#"; }

std::string SqlDatumZeit(Datum d) {
    const Datumsteile t = zerlegt(d);
    return "#" + datumOhneKlammern(t) + " " + std::to_string(t.stunde) + ":" + mitNullen(t.minute, 2) + ":" +
           mitNullen(t.sekunde, 2) + "#";
}

std::string SqlBool(bool wert) { return wert ? "-1" : "0"; }

Variant NullErsatz(const Variant& wert, const Variant& ersatz) { return wert.istNull() ? ersatz : wert; }

std::string PfadMitBackslash(std::string_view pfad) {
    std::string ergebnis(pfad);
    if (!ergebnis.ends_with('\\')) ergebnis += '\\';
    return ergebnis;
}

std::string DateinameAusPfad(std::string_view pfad) {
    const std::size_t trenner = pfad.find_last_of("\\/");
    return std::string(trenner == std::string_view::npos ? pfad : pfad.substr(trenner + 1));
}

bool DateiExistiert(Dateisystem& dateien, const std::string& pfad) {
    return !pfad.empty() && dateien.existiert(pfad);
}

bool OrdnerExistiert(Dateisystem& dateien, const std::string& programmordner, const std::string& pfad) {
    const bool gewechselt = !pfad.empty() && dateien.ordnerWechseln(pfad);
    ProgrammordnerAktivieren(dateien, programmordner);
    return gewechselt;
}

void ProgrammordnerAktivieren(Dateisystem& dateien, const std::string& programmordner) {
    // A programme folder that has vanished shows itself at the next file; there is nothing to do about it
    // here.
    (void)dateien.ordnerWechseln(programmordner);
}

std::string DatumKompakt(Datum d) { return datumKompakt(d); }

Datum DatumAusText(std::string_view text) { return datumAusText(text); }

bool IstDatumsausdruck(std::string_view text) {
    try {
        DatumAusText(text);
        return true;
    } catch (const Fehler&) {
        return false;
    }
}

}  // namespace wendel::ModulGrundbefehle
