#pragma once
// Names of tables whose rows in the catalog are lost: the catalog's indexes still have them, as sort keys.
// For repair.

#include <cstdint>
#include <map>
#include <string>

#include "jet/storage/TableDef.h"

namespace wendel::jet {

// By the page of the definition, as far as the indexes of MSysObjects can be read and their keys be turned
// back into letters. A key does not know capital letters; names compare without them.
std::map<std::uint32_t, std::string> namesFromIndexes(File& file, const TableDef& objects);

}  // namespace wendel::jet
