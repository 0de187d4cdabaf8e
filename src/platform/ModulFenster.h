#pragma once
// Small helpers over the window and the sound system that notice, menu and windows share. They hold no state
// and fail silently, but for the title bar's height.

#include <string>

#include "platform/ports/Fenstersystem.h"
#include "platform/ports/Klang.h"

namespace wendel::ModulFenster {

// The screen without its panels, in pixels.
Arbeitsbereich GetFreeScreenArea(Fenstersystem& fenstersystem);

// Brings a window to the front even while another program has the input, and shows it, restored if it was
// minimised; shown also when the desktop refuses the foreground. True when it is in front.
bool ForceForeground(Fenstersystem& fenstersystem, Fensterhandle fenster);

// What a form knows of its size.
inline constexpr int kSkalenmodusTwips = 1;
inline constexpr int kSkalenmodusPixel = 3;
struct Formmasse {
    int skalenmodus = kSkalenmodusTwips;
    int aussenhoeheTwips = 0;
    int innenhoehe = 0;  // in the unit of skalenmodus
    int twipsJePixel = 15;
};

// Outer minus inner height. Throws Fehler kEigener for other scale modes than twips and pixels.
int GetFensterTitelHoeheInTwips(const Formmasse& form);

// Starts the sound and returns; silent when it can't be played or pfad is "".
void PlayWave(Klang& klang, const std::string& pfad);
bool HasWaveOutput(Klang& klang);

}  // namespace wendel::ModulFenster
