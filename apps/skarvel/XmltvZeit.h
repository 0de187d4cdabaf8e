#pragma once
// Moments as XMLTV writes them, and their place on the wall clock here. The file names a zone with each
// moment; the database keeps wall time, so the change of summer time is settled here and nowhere else.

#include <cstdint>
#include <string_view>

#include "platform/Datum.h"

namespace wendel::skarvel {

// Seconds since 1970 in universal time.
using Weltzeit = std::int64_t;

// "20261025023000 +0100": year to second, or the beginning of it from the day on ("20261025"); then a zone as
// distance ("+0100", "+01:00") or by one of the usual European names. Without a zone it is universal time.
// Throws Fehler 1 for anything else.
Weltzeit weltzeitAus(std::string_view text);

// Wall time in the process's zone.
Datum ortszeit(Weltzeit moment);

}  // namespace wendel::skarvel
