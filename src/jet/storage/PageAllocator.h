#pragma once
// Free pages of a database file: hands them out and takes them back, and keeps the global map on page 1 by
// which every other writer of the file does the same. Which table or index a page belongs to is noted by the
// caller in a map of its own (UsageMap.h).

#include <cstdint>
#include <set>

#include "jet/storage/File.h"

namespace wendel::jet {

// All functions only inside File::Writing of the same file; a rollback undoes them, and the allocator stays
// usable after it. Several allocators may work on one File. They throw as File does, and Fehler 3049 when the
// global map is damaged.
class PageAllocator {
  public:
    // The file must outlive the allocator.
    explicit PageAllocator(File& file) : file_(file) {}
    PageAllocator(const PageAllocator&) = delete;
    PageAllocator& operator=(const PageAllocator&) = delete;

    // A page that belongs to nobody, zeroed and in no map yet: the lowest free one below the end of the file,
    // else a new one at the end. Other writers can leave pages noted as free that are in use; so a page is
    // only taken a second time when no table, index or long column of the catalog lists it (that is looked up
    // once, when the first such page turns up) and when it does not look as if it were in use. A file where
    // this cannot be looked up only grows.
    std::uint32_t allocate();

    // Makes the page free for everybody. The caller has taken it out of its map before.
    void release(std::uint32_t page);

  private:
    bool mayBeReused(std::uint32_t page);
    bool looksUsed(std::uint32_t page);
    void lookUpUse();

    File& file_;
    bool lookedUp_ = false;
    bool reuse_ = false;  // the look-up came to an end
    std::set<std::uint32_t> tables_;
    // Pages that were noted as free when they were looked up, but are listed by somebody. What is freed later
    // was in good order before, or is one of these still.
    std::set<std::uint32_t> contested_;
    // Found to look as if they were in use; not looked at again.
    std::set<std::uint32_t> lookedUsed_;
};

}  // namespace wendel::jet
