#pragma once
// Fills a whole index from the rows of its table: for new indexes, compacting and repair.

#include "jet/storage/PageAllocator.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// What keeps the rows from being what the index asks for.
struct IndexFaults {
    bool duplicates = false;  // in a unique index; rows whose columns are all Null never count
    bool nulls = false;       // in a required one
    bool any() const { return duplicates || nulls; }
};

// Builds the tree from all rows, whatever they are, and tells where they break the index's rules. Only inside
// File::Writing. Throws Fehler 3049 for damaged rows, 3047 for keys too long for a page.
IndexFaults buildIndex(File& file, PageAllocator& allocator, const TableDef& table, const Index& index);

}  // namespace wendel::jet
