#pragma once
// What the user may type into the editor's date and time fields. Pure functions of the text; the window uses
// them to complete a field when it is left, the form to check and read it.

#include <optional>
#include <string>
#include <string_view>

#include "platform/Datum.h"

namespace wendel {

// The day at 00:00. Blanks around are nothing. Accepted: d.m.yyyy and d.m.yy with one or two digits for day
// and month (00 to 29 mean 2000 to 2029, 30 to 99 mean 1930 to 1999), yyyy-mm-dd, and fourteen digits
// "yyyymmddhhnnss", whose time is left aside. Nothing for other texts and for days that the calendar does not
// have.
std::optional<Datum> tagAusEingabe(std::string_view text);

// The time on day zero. Accepted: h:nn and hh:nn, each with optional :ss; nothing else.
std::optional<Datum> uhrzeitAusEingabe(std::string_view text);

// As the fields show them: "24.12.2012" and "20:15".
std::string tagAlsEingabe(Datum tag);
std::string uhrzeitAlsEingabe(Datum uhrzeit);

// A field that the user leaves: in the form above, typed seconds stay ("20:15:30"); a text that is not
// accepted comes back as it is.
std::string tagVervollstaendigt(std::string_view text);
std::string uhrzeitVervollstaendigt(std::string_view text);

// A field after arrow keys. The time goes round at midnight and loses its seconds. Nothing for texts that are
// not accepted and beyond the calendar's ends.
std::optional<std::string> tagVerschoben(std::string_view text, int tage);
std::optional<std::string> uhrzeitVerschoben(std::string_view text, int minuten);

}  // namespace wendel
