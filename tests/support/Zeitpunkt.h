#pragma once
// Moments in tests as they are read: "2012-12-24 20:15:03", the time may be left out.

#include <cstdio>
#include <string>

#include "platform/Datum.h"

namespace wendel {

inline Datum zeit(const std::string& text) {
    int jahr = 0, monat = 0, tag = 0, stunde = 0, minute = 0, sekunde = 0;
    std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d", &jahr, &monat, &tag, &stunde, &minute, &sekunde);
    return DateSerial(jahr, monat, tag) + TimeSerial(stunde, minute, sekunde);
}

// The same text back, so that a failure shows moments and not numbers.
inline std::string alsZeit(Datum d) { return Format(d, "yyyy-mm-dd hh:nn:ss"); }

}  // namespace wendel
