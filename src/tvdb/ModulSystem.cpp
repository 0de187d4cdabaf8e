#include "tvdb/ModulSystem.h"

#include <array>

#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel::ModulSystem {

namespace {

struct Anzeigename {
    std::string_view kurz, datei, titel;
};

// A later row overrides an earlier one. The second pairs two different programs on purpose: both update the
// data.
constexpr std::array<Anzeigename, 5> kAnzeigenamen = {{
    {"fennow", "fennow.exe", "Kestrin Pirrow"},
    {"drumlet", "skarvel.exe", "Drumlet"},
    {"wendel", "wendel.exe", "Lomrick"},
    {"quillon", "quillon.exe", "Datenbank-Anpassung"},
    {"marrowby", "marrowby.exe", "Datenbank-Komprimierung"},
}};

std::string ohneEndung(const std::string& dateiname) {
    const std::size_t punkt = dateiname.rfind('.');
    return punkt == std::string::npos || punkt == 0 ? dateiname : dateiname.substr(0, punkt);
}

}  // namespace

std::string GetProgrammTitel(std::string_view programmdatei) {
    const std::string datei = ModulGrundbefehle::DateinameAusPfad(programmdatei);
    const std::string gestartet = LCase(datei);
    const std::string kurz = ohneEndung(gestartet);
    std::string titel = UCase(ohneEndung(datei));
    for (const Anzeigename& zeile : kAnzeigenamen) {
        for (const std::string& name : {gestartet, kurz}) {
            if (name == zeile.kurz || name == zeile.datei) titel = zeile.titel;
        }
    }
    return titel;
}

std::string GetRechnername(Rechner& rechner) {
    std::string puffer(16, ' ');
    if (!rechner.rechnername(puffer)) return "";
    return Trim(std::string_view(puffer).substr(0, puffer.find('\0')));
}

}  // namespace wendel::ModulSystem
