#pragma once
// Checks a whole database file: every page has exactly one owner or is free, and every row, long value, map
// and index fits together. Only looks; mending is left to the repair. For tests after each kind of change,
// and for `jetsql --pruefen`.

#include <string>
#include <vector>

#include "jet/storage/Catalog.h"

namespace wendel::jet {

// What is wrong, one German line each; nothing when the file is sound. The lines name pages and tables, so
// that two checks of one file can be compared: other programs leave oddities of which some are harmless
// (abandoned rows, pages that are neither owned nor free). Damage of any kind is a finding, not an exception.
// The caller keeps the file from changing meanwhile (File::Reading).
std::vector<std::string> checkFile(Database& database);

}  // namespace wendel::jet
