#pragma once
// The guide's own configuration text file, "kestrin.cfg" in the programme folder: lines of key=value that a
// user may have edited. Read only; the suite's settings array is Einstellungen.

#include <string>
#include <string_view>

#include "platform/ports/Dateisystem.h"

namespace wendel::Guidekonfiguration {

inline constexpr std::string_view kDateiname = "kestrin.cfg";
inline constexpr std::string_view kStandardAppname = "Kestrin Pirrow";

// The window title of the main application (key appname, without case, the last one counts); the default
// title when file, key or value are missing.
std::string liesAppname(Dateisystem& dateien, const std::string& programmordner);

}  // namespace wendel::Guidekonfiguration
