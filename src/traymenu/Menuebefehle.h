#pragma once
// What choosing an entry of the tray menu does: its key decides. Also the commands of the context menu.
// Hiding the menu windows is left to the caller.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "traymenu/Menueaktionen.h"

namespace wendel {

class cMenuePunkt;

struct Kurzzeitpunkt {
    std::string_view schluessel;
    std::string_view text;
    std::int16_t minuten;
};
inline constexpr std::array<Kurzzeitpunkt, 14> kKurzzeitpunkte = {{
    {"MenueKurzZeit3Min", "3 Minuten", 3},
    {"MenueKurzZeit5Min", "5 Minuten", 5},
    {"MenueKurzZeit7Min", "7 Minuten", 7},
    {"MenueKurzZeit10Min", "10 Minuten", 10},
    {"MenueKurzZeit12Min", "12 Minuten", 12},
    {"MenueKurzZeit15Min", "15 Minuten", 15},
    {"MenueKurzZeit30Min", "30 Minuten", 30},
    {"MenueKurzZeit45Min", "45 Minuten", 45},
    {"MenueKurzZeit60Min", "60 Minuten", 60},
    {"MenueKurzZeit90Min", "90 Minuten", 90},
    {"MenueKurzZeit120Min", "2 Stunden", 120},
    {"MenueKurzZeit180Min", "3 Stunden", 180},
    {"MenueKurzZeit240Min", "4 Stunden", 240},
    {"MenueKurzZeit300Min", "5 Stunden", 300},
}};

// What of an entry its command needs. A value of its own, since a command may discard the entry.
struct Menuebefehl {
    std::string Name;
    std::int32_t DBPos = 0;
    std::string SenderKennung;

    static Menuebefehl von(const cMenuePunkt& punkt);
    friend bool operator==(const Menuebefehl&, const Menuebefehl&) = default;
};

namespace Menuebefehle {

inline constexpr std::string_view kFennowStarten = "MenueFennowStarten";
inline constexpr std::string_view kWendelAnzeigen = "MenueWendelanzeigen";
inline constexpr std::string_view kBeenden = "mBeenden2";
inline constexpr std::string_view kSendung = "mSendung";  // followed by the position

// Command text that only brings the main application to the front.
inline constexpr const char* kAktivieren = "Aktivieren";

// An entry without a sub-menu was chosen.
void ausfuehren(const Menuebefehl& befehl, Menueaktionen& aktionen);

// The context menu's commands. The first two do nothing for an entry without a position.
void anzeigen(std::int32_t dbPos, Menueaktionen& aktionen);
void erinnern(std::int32_t dbPos, Menueaktionen& aktionen);
bool imTVZeigenAngeboten(const Menuebefehl& befehl, Menueaktionen& aktionen);

}  // namespace Menuebefehle
}  // namespace wendel
