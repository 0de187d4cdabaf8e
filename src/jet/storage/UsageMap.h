#pragma once
// Sets of pages: which pages a table, an index or a long column owns. Each is a row of a data page, found by
// a row pointer.

#include <cstdint>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// The pages of the set, ascending. Throws Fehler 3049 when the map is damaged.
std::vector<std::uint32_t> readUsageMap(File& file, RowPointer map);

}  // namespace wendel::jet
