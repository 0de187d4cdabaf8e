#pragma once
// Placeholders in script lines: the replace-all that ignores case, the special folders with their fall-backs,
// titles made safe for file names.

#include <string>
#include <string_view>

#include "platform/Ports.h"

namespace wendel::ModulJokerErsetzen {

inline constexpr int kWindowsOrdner = 36;
inline constexpr int kSystem32Ordner = 37;
inline constexpr int kProgrammeOrdner = 38;

// One pass from left to right; what was inserted is not searched again. An empty placeholder changes nothing.
std::string JokerErsetzen(std::string_view text, std::string_view platzhalter, std::string_view wert);

// The platform's folder of this number, without a trailing separator; where it has none, the usual place of
// the system folders on drive D, else C, that exists; else "". The search leaves the programme folder
// current.
std::string SpezialOrdner(const Ports& ports, const std::string& programmordner, int nummer);

// Replaces "[ProgrammeOrdner]", "[WindowsOrdner]", "[System32Ordner]"; looks all three up at each call.
std::string OrdnerJokerErsetzen(const Ports& ports, const std::string& programmordner, std::string_view text);

// Every character that could hurt in a file name is "-"; the length in characters stays.
std::string sichererTitel(std::string_view titel);

}  // namespace wendel::ModulJokerErsetzen
