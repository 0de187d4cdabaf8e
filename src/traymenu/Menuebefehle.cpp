#include "traymenu/Menuebefehle.h"

#include "traymenu/cMenuePunkt.h"

namespace wendel {

Menuebefehl Menuebefehl::von(const cMenuePunkt& punkt) {
    return {punkt.Name, punkt.DBPos, punkt.SenderKennung};
}

namespace Menuebefehle {

namespace {

constexpr const char* kSendungOeffnen = "OpenSendungDBPos=";
constexpr const char* kSendungErinnern = "AddTerminDBPos=";

bool kurzzeitWecker(const std::string& schluessel, Menueaktionen& aktionen) {
    for (const Kurzzeitpunkt& punkt : kKurzzeitpunkte) {
        if (schluessel != punkt.schluessel) continue;
        aktionen.kurzzeitWecker(punkt.minuten);
        return true;
    }
    return false;
}

}  // namespace

void ausfuehren(const Menuebefehl& befehl, Menueaktionen& aktionen) {
    if (kurzzeitWecker(befehl.Name, aktionen)) return;
    if (befehl.Name == kWendelAnzeigen) {
        aktionen.wendelAnzeigen();
    } else if (befehl.Name == kFennowStarten) {
        aktionen.hauptanwendung(kAktivieren);
    } else if (befehl.Name == kBeenden) {
        aktionen.wendelAnzeigen();
        aktionen.beenden();
    } else {
        anzeigen(befehl.DBPos, aktionen);
    }
}

void anzeigen(std::int32_t dbPos, Menueaktionen& aktionen) {
    if (dbPos != 0) aktionen.hauptanwendung(kSendungOeffnen + std::to_string(dbPos));
}

void erinnern(std::int32_t dbPos, Menueaktionen& aktionen) {
    if (dbPos == 0) return;
    aktionen.hauptanwendung(kSendungErinnern + std::to_string(dbPos));
    aktionen.nachErinnern();
}

bool imTVZeigenAngeboten(const Menuebefehl& befehl, Menueaktionen& aktionen) {
    return !befehl.SenderKennung.empty() && aktionen.kannImTVZeigen();
}

}  // namespace Menuebefehle
}  // namespace wendel
