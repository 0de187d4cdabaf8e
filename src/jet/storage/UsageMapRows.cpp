#include "jet/storage/UsageMapRows.h"

#include <vector>

#include "jet/storage/DataPage.h"
#include "jet/storage/UsageMap.h"

namespace wendel::jet {
namespace {

std::size_t rowSize(const File& file) { return kUsageInlineHead + file.layout().usageMapBytes; }

}  // namespace

UsageMapRows::UsageMapRows(File& file, PageAllocator& allocator, std::uint32_t page)
    : file_(file), allocator_(allocator), page_(page) {}

bool UsageMapRows::hasRoom() const {
    if (page_ == 0) return false;
    const PagePtr page = file_.page(page_);
    const DataPage data(file_, *page);
    return data.isDataOf(0) && data.fits(rowSize(file_));
}

RowPointer UsageMapRows::add() {
    if (!hasRoom()) {
        page_ = allocator_.allocate();
        DataPageEditor::format(file_, *file_.edit(page_), 0);
    }
    const std::shared_ptr<Page> page = file_.edit(page_);
    const std::vector<std::uint8_t> row(rowSize(file_), 0);
    return {page_, DataPageEditor(file_, *page).insert(row)};
}

void dropUsageMap(File& file, PageAllocator& allocator, RowPointer map) {
    for (const UsageBits& bits : usageBits(file, map))
        if (bits.page != map.page) allocator.release(bits.page);
    const std::shared_ptr<Page> page = file.edit(map.page);
    DataPageEditor editor(file, *page);
    if (!editor.page().isDataOf(0)) file.throwDamaged("Seitenliste");
    editor.erase(map.slot);
    if (editor.page().isEmpty()) allocator.release(map.page);
}

}  // namespace wendel::jet
