#pragma once
// Which programs run, by file name alone, and ending them. Serves the alarm loop, the calls to the main
// application and the recordings; windows are found elsewhere (Fenstersystem). Nothing is reported to the
// user.

#include <string>
#include <vector>

#include "platform/ports/Prozesse.h"

namespace wendel::ModulProzessliste {

// One text per running process: its file name without folder in lower case, "|", its id in decimal. Costs a
// walk over all processes.
std::vector<std::string> GetProcessList(Prozesse& prozesse);

// dateiname without folder ("fennow.exe"), compared without case.
bool IsProcessRunning(Prozesse& prozesse, const std::string& dateiname);

// Asks all processes of this name to end, but never the calling one, and does not wait. True when at least
// one could be asked.
bool EndProcessByName(Prozesse& prozesse, const std::string& dateiname);

bool IsWindowsNT(Prozesse& prozesse);

}  // namespace wendel::ModulProzessliste
