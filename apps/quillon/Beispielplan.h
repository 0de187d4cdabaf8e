#pragma once
// The example guide's channels and the rhythm of their days: which kind of programme starts when. Tables
// only.

#include <span>
#include <string_view>

#include "Beispieltexte.h"

namespace wendel::quillon {

// What a stretch of the day is filled with. Wiederholung shows again what began at the time given in
// nummer, of today when that lies earlier in the day, else of the last day that had it.
struct Planzeile {
    Tage tage;
    int uhrzeit;  // hhmm, 0500 to 2859: a day of television begins at five
    enum class Art { Neu, Wiederholung } art;
    Rubrik rubrik;
    int nummer;  // of series: which of the channel's
};

struct Beispielsender {
    std::string_view kennung;
    std::string_view bezeichnung;  // begins with its programme number
    std::string_view kurz;
    std::string_view gruppe;
    std::string_view webseite;
    std::string_view nachrichten;  // title of its news
    bool favorit;
    bool vps;
    bool frei;                        // not encrypted
    Rubrik fuell;                     // what fills gaps of more than 20 minutes
    std::span<const Planzeile> plan;  // in order of time; each day has a row at 0500
};
std::span<const Beispielsender> beispielsender();

}  // namespace wendel::quillon
