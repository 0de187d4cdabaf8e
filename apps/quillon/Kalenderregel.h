#pragma once
// What a repetition of a calendar file is as appointments, which know three: daily, on working days, weekly.
// Works on moments that have come out of the file; who names what did not fit is the reader.

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "Kalenderzeit.h"

namespace wendel::quillon {

// Days and moments at which a series does not happen.
struct Kalenderausnahmen {
    std::set<Datum> tage;     // wall dates of the series
    std::set<Datum> momente;  // local moments, of its beginnings

    bool enthaelt(const Kalenderzeit& beginn) const;
};

struct Kalenderreihe {
    Kalenderzeit beginn;
    std::int64_t versatz = 0;  // seconds from each beginning to its reminder
    Kalenderausnahmen ausnahmen;
};

struct Wiederholung {
    Datum erster;  // local moment of the first reminder that is not before jetzt
    std::int16_t intervall;
};

// A set of days of the week: bit 0 is Monday.
using Wochentage = unsigned;

// The days on which the rule repeats without end and in every week; nothing for any other rule.
std::optional<Wochentage> wochentageAus(const icalrecurrencetype& regel, Datum beginn);

// The appointments that together are the series on these days: one daily, one on working days, or a weekly
// one for each day. A zone can move the days of the reader's place away from those of the rule.
std::vector<Wiederholung> wiederholungen(const Kalenderreihe& reihe, Wochentage tage, Datum jetzt);

// The first later moment at which the appointments would no longer meet the series, because the clocks of
// its zone and those of the reader's change on different days.
std::optional<Datum> ersteAbweichung(const Kalenderreihe& reihe, Wochentage tage, Datum ab);

// The local moment of the next reminder of any rule that is not before jetzt. Nothing when there is none,
// or none within a hundred thousand repetitions.
std::optional<Datum> naechsterDerRegel(const icalrecurrencetype& regel, const Kalenderreihe& reihe,
                                       Datum jetzt);

// Why the rule is none of the three, in German, to be followed by ":".
std::string_view regelgrund(const icalrecurrencetype& regel);

}  // namespace wendel::quillon
