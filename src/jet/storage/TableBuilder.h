#pragma once
// A table's definition together with the pages it needs: maps, and an empty root per index. Makes new tables
// and adds indexes to old ones; knows neither the catalog nor rows. Everything belongs inside File::Writing.

#include <cstdint>
#include <vector>

#include "jet/storage/TableDefWriter.h"
#include "jet/storage/UsageMapRows.h"

namespace wendel::jet {

class TableBuilder {
  public:
    // A new table whose definition starts on this page. Its maps go to mapPage as long as that has room; 0:
    // to a page of their own.
    TableBuilder(File& file, PageAllocator& allocator, std::uint32_t page, bool system,
                 std::uint32_t mapPage = 0);
    // The table that is there. Throws Fehler 3049 when its definition is damaged.
    TableBuilder(File& file, PageAllocator& allocator, const TableDef& table);

    DefinitionParts& parts() { return parts_; }

    // All columns of a new table, and the maps for its pages. Throws Fehler 3190 as addColumns
    // (TableDefWriter).
    void addColumns(std::vector<DefinitionParts::Named> columns);
    // An empty tree; only columns and flags of `index` are looked at. Returns its number.
    std::uint32_t addRealIndex(RealIndexPart index);

    // Where the last map went.
    std::uint32_t mapPage() const { return maps_.page(); }

    // Writes the definition.
    void store();

  private:
    File& file_;
    PageAllocator& allocator_;
    std::vector<std::uint32_t> pages_;  // of the definition
    DefinitionParts parts_;
    UsageMapRows maps_;
};

}  // namespace wendel::jet
