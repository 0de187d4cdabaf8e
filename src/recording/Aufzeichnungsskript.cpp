#include "recording/Aufzeichnungsskript.h"

#include <cstdint>
#include <string_view>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel {

namespace {

constexpr std::string_view kKopfzeile = "<kestrin pirrow aufzeichnungsskript 1.0>";
// A hundred thousand lines have room; what is larger would be another file, and cost memory and a start.
constexpr std::uint64_t kHoechstgroesse = std::uint64_t{8} << 20;

// Null for the keys of other values.
std::string* textfeld(Aufzeichnungsskript& skript, std::string_view schluessel) {
    if (schluessel == "beschreibung") return &skript.beschreibung;
    if (schluessel == "tvanwendungdatei") return &skript.tvAnwendungDatei;
    if (schluessel == "tvanwendungtitel") return &skript.tvAnwendungTitel;
    return nullptr;
}

Befehlsliste* befehlsliste(Aufzeichnungsskript& skript, std::string_view schluessel) {
    if (schluessel == "befehlanwendungstarten") return &skript.befehlAnwendungStarten;
    if (schluessel == "befehlanwendungbeenden") return &skript.befehlAnwendungBeenden;
    if (schluessel == "befehlaufnahmestarten") return &skript.befehlAufnahmeStarten;
    if (schluessel == "befehlaufnahmebeenden") return &skript.befehlAufnahmeBeenden;
    if (schluessel == "befehlkanalwechseln") return &skript.befehlKanalWechseln;
    return nullptr;
}

// Lines of unknown keys, or of none, are the comments of the format.
void uebernimm(Aufzeichnungsskript& skript, std::string_view zeile, int nummer) {
    const std::string text = Trim(zeile);
    const std::size_t gleich = text.find('=');
    if (gleich == std::string::npos) return;
    const std::string schluessel = LCase(Trim(std::string_view(text).substr(0, gleich)));
    const std::string wert = text.substr(gleich + 1);
    if (std::string* feld = textfeld(skript, schluessel)) *feld = wert;
    if (Befehlsliste* liste = befehlsliste(skript, schluessel)) liste->push_back({wert, nummer});
}

}  // namespace

bool Aufzeichnungsskript::fuehrtEtwasAus() const {
    return !befehlAnwendungStarten.empty() || !befehlAnwendungBeenden.empty() ||
           !befehlAufnahmeStarten.empty() || !befehlAufnahmeBeenden.empty() || !befehlKanalWechseln.empty();
}

Aufzeichnungsskript SkriptEinladen(Dateisystem& dateien, const std::string& datei) {
    Aufzeichnungsskript skript;
    if (!dateien.existiert(datei)) return skript;
    if (dateien.groesse(datei).value_or(0) > kHoechstgroesse)
        throw Fehler(fehlernummer::kEigener, "SkriptEinladen", "Die Skriptdatei ist größer als 8 MB.");
    const std::vector<std::string> zeilen = textzeilen(dateien.lesen(datei).value_or(""));
    if (zeilen.empty() || LCase(zeilen.front()) != kKopfzeile) {
        throw Fehler(fehlernummer::kEigener, "SkriptEinladen",
                     "Das Format oder die Version der Skriptdatei ist ungültig.");
    }
    int nummer = 0;
    for (const std::string& zeile : zeilen)
        uebernimm(skript, zeile, ++nummer);
    return skript;
}

std::string skriptdatei(const std::string& name, const std::string& programmordner) {
    if (name.empty() || name.find_first_of("\\/") != std::string::npos) return name;
    return ModulGrundbefehle::PfadMitBackslash(programmordner) + name;
}

}  // namespace wendel
