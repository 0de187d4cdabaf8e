#include "traymenu/Menueplatzierung.h"

#include <algorithm>

namespace wendel::Menueplatzierung {

namespace {

constexpr int kLesbareBreite = 320;

// The beginning wins over the end where the window is larger than the area.
int hineingerueckt(int anfang, int laenge, int von, int bis) {
    return std::max(std::min(anfang, bis - laenge), von);
}

}  // namespace

Punkt obermenue(Punkt zeiger, Groesse menue, const Arbeitsbereich& frei) {
    return {hineingerueckt(zeiger.x - menue.breite, menue.breite, frei.links, frei.rechts),
            hineingerueckt(zeiger.y - menue.hoehe, menue.hoehe, frei.oben, frei.unten)};
}

Punkt untermenue(const Rechteck& eltern, int y, Groesse menue, const Arbeitsbereich& frei) {
    int links = eltern.rechts();
    if (links + menue.breite > frei.rechts) links = eltern.links - menue.breite;
    int oben = eltern.oben + y;
    if (oben + menue.hoehe > frei.unten) oben = frei.unten - menue.hoehe;
    // Zero is the upper edge only where the area begins there: below a panel, or on a monitor above the
    // first one, it begins elsewhere.
    return {std::max(links, frei.links), std::max(oben, frei.oben)};
}

int hoechstbreite(const Arbeitsbereich& frei) {
    const int breite = frei.rechts - frei.links;
    return std::min(std::max(breite / 3, kLesbareBreite), breite);
}

}  // namespace wendel::Menueplatzierung
