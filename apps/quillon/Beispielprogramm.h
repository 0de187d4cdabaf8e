#pragma once
// The example guide that a newcomer sees: invented channels and fourteen days of broadcasts around a moment,
// a tip for each day, and a few marks. The same day always has the same programme, whenever it is made.

#include <cstddef>
#include <string>
#include <vector>

#include "Beispielplan.h"
#include "platform/Datum.h"
#include "tvdb/cSendung.h"

namespace wendel::quillon {

// A mark on the favourites list.
struct Beispielmarke {
    std::size_t sendung;  // index of the broadcast
    bool erinnerung = false;
    std::string optionen;
};

struct Beispielprogramm {
    // By channel, in the order of beispielsender(), then by time: from 05:00 of yesterday to 05:00 thirteen
    // days after today. Pos is left to the database.
    std::vector<cSendung> sendungen;
    std::vector<Beispielmarke> marken;
};

inline constexpr int kBeispieltage = 14;

// One reminder lies two minutes or a little more after jetzt; the recurring mark waits for its broadcasts of
// the coming days to be added by the marks maintenance. Each broadcast begins as a copy of vorlage, which
// knows the database that they are for.
Beispielprogramm beispielprogramm(Datum jetzt, const cSendung& vorlage);

}  // namespace wendel::quillon
