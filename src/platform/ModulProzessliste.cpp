#include "platform/ModulProzessliste.h"

#include <algorithm>

#include "platform/Text.h"

namespace wendel::ModulProzessliste {

namespace {

// Only "\" separates: a "/" would be part of the name.
std::string nameVon(const Prozess& prozess) {
    const std::size_t trenner = prozess.pfad.rfind('\\');
    return LCase(trenner == std::string::npos ? prozess.pfad : prozess.pfad.substr(trenner + 1));
}

std::vector<Prozess> prozesseMitNamen(Prozesse& prozesse, const std::string& dateiname) {
    std::vector<Prozess> treffer = prozesse.liste();
    std::erase_if(treffer, [gesucht = LCase(dateiname)](const Prozess& p) { return nameVon(p) != gesucht; });
    return treffer;
}

}  // namespace

std::vector<std::string> GetProcessList(Prozesse& prozesse) {
    std::vector<std::string> texte;
    for (const Prozess& prozess : prozesse.liste()) {
        texte.push_back(nameVon(prozess) + "|" + std::to_string(prozess.id));
    }
    return texte;
}

bool IsProcessRunning(Prozesse& prozesse, const std::string& dateiname) {
    return !prozesseMitNamen(prozesse, dateiname).empty();
}

bool EndProcessByName(Prozesse& prozesse, const std::string& dateiname) {
    bool beendet = false;
    for (const Prozess& prozess : prozesseMitNamen(prozesse, dateiname)) {
        if (prozesse.beenden(prozess.id)) beendet = true;
    }
    return beendet;
}

bool IsWindowsNT(Prozesse& prozesse) {
    constexpr int kPlattformNT = 2;
    return prozesse.plattformkennung() == kPlattformNT;
}

}  // namespace wendel::ModulProzessliste
