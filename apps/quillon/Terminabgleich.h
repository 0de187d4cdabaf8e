#pragma once
// Which appointments of a calendar file are not among the stored ones yet, so that the same file read twice
// changes nothing.

#include <span>
#include <vector>

#include "Kalendereingabe.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel::quillon {

// Those to be stored, in their order. Two are the same when moment, text and repetition are; line ends and
// blanks around the text do not count, nor how far a repeating one has moved on, nor whether it is active.
// Several equal ones of the file, if they are different events, count against as many stored ones.
std::vector<GespeicherterTermin> neueTermine(std::span<const Kalendertermin> aus,
                                             std::span<const GespeicherterTermin> gespeicherte, Datum jetzt);

}  // namespace wendel::quillon
