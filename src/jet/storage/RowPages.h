#pragma once
// The data pages of one owner, a table or a long column: finds a page with room for a new row, takes emptied
// pages away, and keeps the owner's two maps. Knows rows as bytes only. Used inside File::Writing.

#include <cstdint>
#include <span>

#include "jet/storage/File.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

class RowPages {
  public:
    // `owner` is what stands in the head of the pages. The maps may be missing; then every row gets a page of
    // its own. File and allocator must outlive this object.
    RowPages(File& file, PageAllocator& allocator, std::uint32_t owner, RowPointer owned,
             RowPointer withSpace);

    bool hasMap() const { return hasOwnedMap_; }
    // Whether the page is one of these: it has the owner's mark, and is in the map if there is one.
    bool contains(std::uint32_t page);

    // Puts the row on a page with room.
    RowPointer insert(std::span<const std::uint8_t> row, std::uint16_t flags);
    // Puts the row on a new page, which gets no further ones.
    RowPointer insertAlone(std::span<const std::uint8_t> row);
    // Deletes the row; a page without any others is released.
    void erase(RowPointer row);
    // To be called when rows of the page became shorter.
    void noteRoom(std::uint32_t page);
    // Drops the page that is tried first.
    void forget() { lastPage_ = 0; }

  private:
    std::uint32_t pageFor(std::size_t length);
    bool fits(std::uint32_t page, std::size_t length);
    std::uint32_t addPage();
    void releasePage(std::uint32_t page);

    File& file_;
    PageAllocator& allocator_;
    const std::uint32_t owner_;
    const RowPointer owned_, withSpace_;
    const bool hasOwnedMap_, hasSpaceMap_;
    // Where the last row found room. Looked up in the map before it is used, so that it may be wrong.
    std::uint32_t lastPage_ = 0;
};

}  // namespace wendel::jet
