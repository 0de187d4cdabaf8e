#pragma once
// One key going down or up, independent of any keyboard layout: a named key or a character that is to arrive.

namespace wendel {

enum class Taste {
    Zeichen,  // whatever key types the character
    Umschalt,
    Strg,
    Alt,
    Ruecktaste,
    Pause,
    Feststell,
    Entf,
    Ab,
    Ende,
    Eingabe,
    Esc,
    Hilfe,
    Pos1,
    Einfg,
    Links,
    NumFeststell,
    BildAb,
    BildAuf,
    Druck,
    Rechts,
    Rollen,
    Tab,
    Auf,
    F1,  // F1 to F16 stand in a row
    F16 = F1 + 15,
};

struct Tastenereignis {
    Taste taste = Taste::Zeichen;
    char32_t zeichen = 0;  // for Taste::Zeichen only
    bool gedrueckt = true;

    friend bool operator==(const Tastenereignis&, const Tastenereignis&) = default;
};

}  // namespace wendel
