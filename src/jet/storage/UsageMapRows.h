#pragma once
// Makes and drops the rows that hold page maps (UsageMap.h reads and changes their bits). Used where tables
// and indexes come and go. Everything here belongs inside File::Writing.

#include <cstdint>

#include "jet/storage/PageAllocator.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// Places new maps on pages of their own kind, a new page when the last one is full.
class UsageMapRows {
  public:
    // `page` has maps already and is filled up first, if it is what it should be; 0: none.
    UsageMapRows(File& file, PageAllocator& allocator, std::uint32_t page = 0);

    // An empty map of the usual size.
    RowPointer add();
    // Where the last one went.
    std::uint32_t page() const { return page_; }

  private:
    bool hasRoom() const;

    File& file_;
    PageAllocator& allocator_;
    std::uint32_t page_;
};

// Deletes the map, releases the pages with its bits, and its own page when no other map is left there. The
// pages in the set are the caller's business. Throws Fehler 3049 when the map is damaged.
void dropUsageMap(File& file, PageAllocator& allocator, RowPointer map);

}  // namespace wendel::jet
