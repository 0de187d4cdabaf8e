#pragma once
// Own appointments as an iCalendar file (RFC 5545). Where it is written is left to Einrichter.

#include <span>
#include <string>

#include "platform/Datum.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel::quillon {

// The library writes zeros for years after 3000.
bool passtInKalender(const GespeicherterTermin& termin);

// The whole file: UTF-8, CR LF, folded lines; one event each, in their order. Moments are wall time without a
// zone, as they are stored. The same appointment has the same UID every time, also after a repeating one
// moved on. One that is switched off has no alarm and a property of our own; STATUS:CANCELLED would strike
// out in other programs what has merely been reminded of. weltzeit is the moment of writing, in UTC. All of
// them passtInKalender. Throws std::bad_alloc.
std::string kalenderdatei(std::span<const GespeicherterTermin> termine, Datum weltzeit);

}  // namespace wendel::quillon
