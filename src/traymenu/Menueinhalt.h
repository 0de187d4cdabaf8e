#pragma once
// The content of the tray menu: which entries there are, in which order, with which texts and keys. What the
// broadcasts and the tip are is known already when the menu is built.

#include <cstdint>
#include <string>
#include <string_view>

#include "traymenu/FormBrannikMenue.h"
#include "traymenu/Tagestipp.h"
#include "tvdb/Programmabfragen.h"

namespace wendel {

// What the entries are made of. The lists are copied from and may change afterwards.
struct Menuedaten {
    const Sendungsliste& sendung2200;
    const Sendungsliste& sendung2015;
    const Sendungsliste& sendungGleich;
    const Sendungsliste& sendungAktuell;
    std::string hauptanwendung;        // its title, for " starten .."
    int freieHoehe = 0;                // pixels of the area that the menu opens in
    const Tagestippfelder* tagestipp;  // null: no panel
};

namespace Menueinhalt {

// Discards the menu that is there and builds a new tree, hidden; kontext.geladene owns it.
// The result is its top window, to be shown by ShowObermenue.
FormBrannikMenue& BuildTrayMenu(const Menuekontext& kontext, const Menuedaten& daten);

// How many entries a programme's sub-menu may have.
int hoechstzahl(int freieHoehe);

}  // namespace Menueinhalt
}  // namespace wendel
