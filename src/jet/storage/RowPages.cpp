#include "jet/storage/RowPages.h"

#include <vector>

#include "jet/storage/DataPage.h"
#include "jet/storage/UsageMap.h"

namespace wendel::jet {
namespace {

// So many pages with space are looked at before a row gets a new one.
constexpr int kTries = 8;
// A page with less than this part of it free is no longer listed as one with space.
constexpr std::size_t kWorthListing = 4;

}  // namespace

RowPages::RowPages(File& file, PageAllocator& allocator, std::uint32_t owner, RowPointer owned,
                   RowPointer withSpace)
    : file_(file),
      allocator_(allocator),
      owner_(owner),
      owned_(owned),
      withSpace_(withSpace),
      hasOwnedMap_(hasUsageMap(file, owned)),
      hasSpaceMap_(hasUsageMap(file, withSpace)) {}

bool RowPages::contains(std::uint32_t page) {
    if (page <= kCatalogPage || page >= file_.pageCount()) return false;
    if (!DataPage(file_, *file_.page(page)).isDataOf(owner_)) return false;
    return !hasOwnedMap_ || inUsageMap(file_, owned_, page);
}

RowPointer RowPages::insert(std::span<const std::uint8_t> row, std::uint16_t flags) {
    lastPage_ = pageFor(row.size());
    const std::shared_ptr<Page> page = file_.edit(lastPage_);
    return {lastPage_, DataPageEditor(file_, *page).insert(row, flags)};
}

RowPointer RowPages::insertAlone(std::span<const std::uint8_t> row) {
    const std::uint32_t number = addPage();
    const std::shared_ptr<Page> page = file_.edit(number);
    return {number, DataPageEditor(file_, *page).insert(row)};
}

void RowPages::erase(RowPointer row) {
    bool empty = false;
    {
        const std::shared_ptr<Page> page = file_.edit(row.page);
        DataPageEditor editor(file_, *page);
        editor.erase(row.slot);
        empty = editor.page().isEmpty();
    }
    if (empty) {
        releasePage(row.page);
    } else {
        noteRoom(row.page);
    }
}

void RowPages::noteRoom(std::uint32_t number) {
    if (!hasSpaceMap_) return;
    const PagePtr page = file_.page(number);
    const bool worthListing = DataPage(file_, *page).room() > file_.layout().pageSize / kWorthListing;
    if (worthListing && !inUsageMap(file_, withSpace_, number)) {
        addToUsageMap(file_, allocator_, withSpace_, number);
    }
}

std::uint32_t RowPages::pageFor(std::size_t length) {
    if (hasSpaceMap_) {
        if (lastPage_ != 0 && inUsageMap(file_, withSpace_, lastPage_) && fits(lastPage_, length))
            return lastPage_;
        const std::vector<std::uint32_t> listed = readUsageMap(file_, withSpace_);
        int tries = 0;
        for (auto page = listed.rbegin(); page != listed.rend() && tries < kTries; ++page, ++tries)
            if (fits(*page, length)) return *page;
    }
    const std::uint32_t page = addPage();
    if (hasSpaceMap_) addToUsageMap(file_, allocator_, withSpace_, page);
    return page;
}

// Takes pages that are as good as full, or not the owner's at all, out of the map.
bool RowPages::fits(std::uint32_t number, std::size_t length) {
    std::size_t room = 0;
    if (contains(number)) {
        const PagePtr page = file_.page(number);
        const DataPage data(file_, *page);
        if (data.fits(length)) return true;
        room = data.room();
    }
    if (room < file_.layout().pageSize / kWorthListing) removeFromUsageMap(file_, withSpace_, number);
    return false;
}

std::uint32_t RowPages::addPage() {
    const std::uint32_t number = allocator_.allocate();
    DataPageEditor::format(file_, *file_.edit(number), owner_);
    if (hasOwnedMap_) addToUsageMap(file_, allocator_, owned_, number);
    return number;
}

void RowPages::releasePage(std::uint32_t page) {
    if (hasOwnedMap_) removeFromUsageMap(file_, owned_, page);
    if (hasSpaceMap_) removeFromUsageMap(file_, withSpace_, page);
    allocator_.release(page);
}

}  // namespace wendel::jet
