#include "jet/storage/UsageMapRows.h"

#include "jet/storage/Bytes.h"
#include "jet/storage/DataPage.h"

namespace wendel::jet {
namespace {

// Bitmap bytes of a new map: 512 pages in Jet 4, 1024 in Jet 3.
std::size_t bitmapSize(Version version) { return version == Version::kJet4 ? 64 : 128; }

std::size_t rowSize(const Layout& layout) { return kUsageInlineHead + bitmapSize(layout.version); }

void storeSlotCount(const Layout& layout, Page& page, unsigned count, std::size_t lowestRow) {
    storeU16(&page[layout.dataSlotCount], static_cast<std::uint16_t>(count));
    storeU16(&page[kDataFreeSpace], static_cast<std::uint16_t>(lowestRow - layout.dataSlots - 2 * count));
}

void releaseBitmaps(const File& file, PageAllocator& allocator, std::span<const std::uint8_t> row) {
    if (row.empty() || row[0] != kUsageReference) return;
    for (std::size_t at = kUsageReferenceHead; at + 4 <= row.size(); at += 4) {
        const std::uint32_t page = loadU32(&row[at]);
        if (page != 0 && page < file.pageCount()) allocator.release(page);
    }
}

bool allDeleted(const DataPage& page) {
    for (unsigned slot = 0; slot < page.slotCount(); ++slot) {
        if (page.flags(slot) != kSlotDeleted) return false;
    }
    return true;
}

}  // namespace

UsageMapRows::UsageMapRows(File& file, PageAllocator& allocator, std::uint32_t page)
    : file_(file), allocator_(allocator), page_(page) {}

bool UsageMapRows::hasRoom() const {
    if (page_ == 0) return false;
    const PagePtr page = file_.page(page_);
    const DataPage data(file_, *page);
    return data.isDataOf(0) && data.slotCount() < kMaxSlots &&
           loadU16(&(*page)[kDataFreeSpace]) >= rowSize(file_.layout()) + 2;
}

void UsageMapRows::newPage() {
    page_ = allocator_.allocate();
    const std::shared_ptr<Page> page = file_.replace(page_);
    (*page)[0] = static_cast<std::uint8_t>(PageType::kData);
    (*page)[1] = 1;
    storeSlotCount(file_.layout(), *page, 0, page->size());
}

RowPointer UsageMapRows::add() {
    if (!hasRoom()) newPage();
    const Layout& layout = file_.layout();
    const std::shared_ptr<Page> page = file_.edit(page_);
    const DataPage data(file_, *page);
    const unsigned slot = data.slotCount();
    const std::size_t end = slot == 0 ? page->size() : data.rowStart(slot - 1);
    const std::size_t start = end - rowSize(layout);
    if (end > page->size() || start < layout.dataSlots + 2u * (slot + 1)) file_.throwDamaged("Seitenliste");
    std::fill(page->begin() + static_cast<std::ptrdiff_t>(start),
              page->begin() + static_cast<std::ptrdiff_t>(end), std::uint8_t{0});
    storeU16(&(*page)[layout.dataSlots + 2u * slot], static_cast<std::uint16_t>(start));
    storeSlotCount(layout, *page, slot + 1, start);
    return {page_, static_cast<std::uint8_t>(slot)};
}

void dropUsageMap(File& file, PageAllocator& allocator, RowPointer map) {
    const std::shared_ptr<Page> page = file.edit(map.page);
    const DataPage data(file, *page);
    if (!data.isDataOf(0)) file.throwDamaged("Seitenliste");
    releaseBitmaps(file, allocator, data.row(map.slot));
    std::uint8_t* slot = &(*page)[file.layout().dataSlots + 2u * map.slot];
    storeU16(slot, static_cast<std::uint16_t>(loadU16(slot) | kSlotDeleted));
    if (allDeleted(data)) allocator.release(map.page);
}

}  // namespace wendel::jet
