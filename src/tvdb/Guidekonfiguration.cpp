#include "tvdb/Guidekonfiguration.h"

#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel::Guidekonfiguration {

namespace {

// "" when the key is missing.
std::string letzterWert(std::string_view dateiinhalt, std::string_view schluessel) {
    std::string wert;
    for (const std::string& zeile : textzeilen(dateiinhalt)) {
        const std::size_t gleich = zeile.find('=');
        if (gleich == std::string::npos) continue;
        const std::string links = trimAlleLeerraeume(std::string_view(zeile).substr(0, gleich));
        if (gleichOhneGrossKlein(links, schluessel)) {
            wert = trimAlleLeerraeume(std::string_view(zeile).substr(gleich + 1));
        }
    }
    return wert;
}

}  // namespace

std::string liesAppname(Dateisystem& dateien, const std::string& programmordner) {
    const std::string pfad = ModulGrundbefehle::PfadMitBackslash(programmordner) + std::string(kDateiname);
    const std::string titel = letzterWert(dateien.lesen(pfad).value_or(""), "appname");
    return titel.empty() ? std::string(kStandardAppname) : titel;
}

}  // namespace wendel::Guidekonfiguration
