#pragma once
// Where the windows of the tray menu go: the top one at the pointer, a sub-menu beside its parent, both
// inside the free area of one monitor. Pure functions; which area that is, is left to the caller. All lengths
// of a call are in one unit, logical pixels everywhere in this program.

#include "platform/ports/Fenstersystem.h"

namespace wendel {

struct Groesse {
    int breite = 0, hoehe = 0;
    friend bool operator==(const Groesse&, const Groesse&) = default;
};

struct Rechteck {
    int links = 0, oben = 0, breite = 0, hoehe = 0;

    int rechts() const { return links + breite; }  // exclusive, as unten
    int unten() const { return oben + hoehe; }
    bool enthaelt(Punkt p) const { return p.x >= links && p.x < rechts() && p.y >= oben && p.y < unten(); }
    friend bool operator==(const Rechteck&, const Rechteck&) = default;
};

namespace Menueplatzierung {

// Top left corner of the top window: its bottom right corner is at the pointer, unless it has to move to stay
// in the free area. One that is larger than the area begins at its top left corner.
Punkt obermenue(Punkt zeiger, Groesse menue, const Arbeitsbereich& frei);

// Top left corner of a sub-menu: right of its parent, left of it where the area ends, on a level with y, the
// row's top within the parent, moved up as far as it must. One that is larger than the area begins at its
// top.
Punkt untermenue(const Rechteck& eltern, int y, Groesse menue, const Arbeitsbereich& frei);

// The widest that a menu window may be: with a third of the area each, a sub-menu always finds room on one
// side of its parent. On a small screen more, since a menu has to be readable first.
int hoechstbreite(const Arbeitsbereich& frei);

}  // namespace Menueplatzierung
}  // namespace wendel
