#pragma once
// The broadcasts of one channel side by side: ends that the source leaves out, overlaps, wall times, and
// which stretches of time the source tells something about.

#include <vector>

#include "Guidesendung.h"
#include "platform/Datum.h"

namespace wendel::skarvel {

struct Zeitraum {
    Datum von, bis;  // bis is behind it
    friend bool operator==(const Zeitraum&, const Zeitraum&) = default;
};

struct Sendeablauf {
    std::vector<cSendung> sendungen;  // with Beginn, Ende and Dauer, by their beginning
    // A hole of more than half a day is no night without programme, but something that the source leaves
    // open.
    std::vector<Zeitraum> abgedeckt;
};

// The broadcasts by their beginning. One without an end lasts until the next one, an hour at the end of all
// or before a hole. Of two that overlap the earlier one ends when the later one begins, unless that is over
// first: news within a long programme.
Sendeablauf sendeablauf(std::vector<Guidesendung> sendungen);

}  // namespace wendel::skarvel
