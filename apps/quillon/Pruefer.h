#pragma once
// The check of the installation as a whole: which parts the report has, in which order, with which limits.

#include <optional>
#include <ostream>
#include <string>

#include "platform/ports/Uhr.h"

namespace wendel::quillon {

// Prints the report. ordner: the programme folder as typed, nothing for the usual one. False when there is
// something that does not work. Changes nothing, needs nothing, and ends within a quarter of a minute.
bool pruefeAlles(const std::optional<std::string>& ordner, Uhr& uhr, std::ostream& ausgabe);

}  // namespace wendel::quillon
