#pragma once
// Names that the suite's programs show and store: the display name of the running program, which titles every
// message box, and the name of this computer, which owns the marks in the database.

#include <string>
#include <string_view>

#include "platform/ports/Rechner.h"

namespace wendel::ModulSystem {

// From the name the process was started under, folder and extension allowed: "wendel.exe" is "Lomrick"; a
// name that is none of the suite's is returned in upper case without extension.
std::string GetProgrammTitel(std::string_view programmdatei);

// Up to 15 characters; "" when the platform gives none.
std::string GetRechnername(Rechner& rechner);

}  // namespace wendel::ModulSystem
