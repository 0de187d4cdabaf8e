#pragma once
// Reads iCalendar files (RFC 5545) of any program: their events as own appointments, and in German what of
// them has no place there. Storing them is left to Einrichter, which of them are new to Terminabgleich.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Datum.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel::quillon {

struct Kalendertermin {
    GespeicherterTermin termin;
    std::string kennung;  // UID; events with the same one are the same event
    // The moment of an alarm that has passed while the event is still to come: who was reminded of it then
    // has this appointment already.
    std::optional<Datum> frueher;
};

struct Kalenderinhalt {
    std::vector<Kalendertermin> termine;
    std::size_t nichtUebernommen = 0;   // entries of the file that have become no appointment
    std::vector<std::string> hinweise;  // lines for the user, complete
};

// An appointment reminds at the first alarm with display or sound, else at the beginning, else (whole days)
// at 09:00 of the day. Repeating ones come with their next moment that is not before jetzt; single ones that
// have passed, inactive. Nothing is left out without a line that names it.
// Throws Fehler 1 for what is no calendar file, is damaged, or is not UTF-8; nothing comes of it then.
Kalenderinhalt kalenderinhalt(std::string_view datei, Datum jetzt);

}  // namespace wendel::quillon
