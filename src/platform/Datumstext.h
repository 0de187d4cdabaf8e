#pragma once
// Dates as text that a user or another program wrote: the suite's one reader of them. Dates of a pattern are
// written by Datum.h.

#include <string_view>

#include "platform/Datum.h"

namespace wendel {

// Texts of 14 characters as datumKompakt makes them; German dates ("24.12.2012", "24.12.2012 20:15:00") by
// fixed character positions, where malformed digits carry over or count as 0 without an error; any other text
// as a German system converts it: h:nn[:ss], d/m/yyyy, d-m-yyyy (m first where d/m is impossible),
// yyyy-mm-dd, yyyy/mm/dd, "24 Dezember 2012", each date with an optional time. Throws Fehler 1 of source
// "DatumAusText" for what is none of these and for dates outside the years 100 to 9999.
Datum datumAusText(std::string_view text);

}  // namespace wendel
