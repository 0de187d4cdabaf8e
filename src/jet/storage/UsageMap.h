#pragma once
// Sets of pages: which pages a table, an index or a long column owns. Each is a row of a data page, found by
// a row pointer. Read by the scans, changed by those who take and give back pages; the map of free pages of
// the whole file is PageAllocator's.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// The pages of the set, ascending. Throws Fehler 3049 when the map is damaged.
std::vector<std::uint32_t> readUsageMap(File& file, RowPointer map);

// Whether there is a map at all: long columns of other writers may have none, or point to a deleted row.
bool hasUsageMap(File& file, RowPointer map);

bool inUsageMap(File& file, RowPointer map, std::uint32_t page);

// Only inside File::Writing. Adding a page that is in the set, or removing one that is not, changes nothing.
// A map that is too short is lengthened where its page has room, and otherwise turned into one whose bits lie
// on pages of their own. Throw Fehler 3049 when the map is damaged.
void addToUsageMap(File& file, PageAllocator& allocator, RowPointer map, std::uint32_t page);
void removeFromUsageMap(File& file, RowPointer map, std::uint32_t page);

// Where the bit of one page lies.
struct UsageBit {
    std::uint32_t page = 0;
    std::size_t byte = 0;
    std::uint8_t mask = 0;
};
// Nothing when the map does not reach so far. Throws Fehler 3049 when the map is damaged.
std::optional<UsageBit> findUsageBit(File& file, RowPointer map, std::uint32_t page);

// The bits of a map in the order of the pages they stand for, as far as the file reaches: one piece for a map
// that holds them itself, else one for each page of bits that is there. Throws Fehler 3049 when the map is
// damaged.
struct UsageBits {
    std::uint32_t page = 0;  // where they lie
    PagePtr keepsAlive;
    std::span<const std::uint8_t> bytes;
    std::uint64_t firstPage = 0;
};
std::vector<UsageBits> usageBits(File& file, RowPointer map);

// The number of pages that one page of bits tells about.
std::uint32_t pagesPerBitmap(const File& file);

}  // namespace wendel::jet
