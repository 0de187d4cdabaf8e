#include "jet/storage/Table.h"

#include <utility>

#include "jet/storage/DataPage.h"
#include "jet/storage/UsageMap.h"

namespace wendel::jet {
namespace {

// A row that moves again has its home pointer renewed, so pointers to pointers are short; a longer way is a
// circle.
constexpr int kMaxMoves = 64;

// Follows the pointer in the home slot to where the row lies now and hands it to `row`.
void assignMoved(File& file, const TableDef& table, PagePtr page, unsigned slot, RowId id, RowView& row) {
    for (int moves = 0; moves < kMaxMoves; ++moves) {
        const DataPage data(file, *page);
        const std::span<const std::uint8_t> bytes = data.row(slot);
        const std::uint16_t flags = data.flags(slot);
        if (flags == kSlotDeleted) break;
        if ((flags & kSlotPointer) == 0) {
            const std::size_t start = data.rowStart(slot);
            row.assign(file, table, std::move(page), start, bytes.size(), id);
            return;
        }
        if (bytes.size() < kRowPointerSize) break;
        const RowPointer target = loadRowPointer(bytes.data());
        PagePtr next = file.page(target.page);
        if (!DataPage(file, *next).isDataOf(table.page)) break;
        page = std::move(next);
        slot = target.slot;
    }
    file.throwDamaged("Verschobene Zeile");
}

}  // namespace

TableScan::TableScan(File& file, const TableDef& table)
    : file_(&file), table_(&table), pages_(readUsageMap(file, table.ownedPages)) {}

bool TableScan::nextPage() {
    while (pageIndex_ < pages_.size()) {
        pageNumber_ = pages_[pageIndex_++];
        page_ = file_->page(pageNumber_);
        const DataPage data(*file_, *page_);
        if (!data.isDataOf(table_->page)) continue;
        slot_ = 0;
        slotCount_ = data.slotCount();
        return true;
    }
    page_.reset();
    return false;
}

bool TableScan::next() {
    for (;;) {
        while (slot_ == slotCount_) {
            if (!nextPage()) return false;
        }
        const unsigned slot = slot_++;
        const DataPage data(*file_, *page_);
        const std::uint16_t flags = data.flags(slot);
        if ((flags & kSlotTarget) != 0) continue;  // deleted, or the data of a row whose home is elsewhere
        const RowId id = makeRowId(pageNumber_, static_cast<std::uint8_t>(slot));
        if (flags == kSlotPointer) {
            assignMoved(*file_, *table_, page_, slot, id, row_);
        } else {
            row_.assign(*file_, *table_, page_, data.rowStart(slot), data.row(slot).size(), id);
        }
        return true;
    }
}

bool fetchRow(File& file, const TableDef& table, RowId id, RowView& row) {
    if (id < 0 || (id >> 8) >= file.pageCount()) return false;
    PagePtr page = file.page(pageOf(id));
    const DataPage data(file, *page);
    if (!data.isDataOf(table.page) || slotOf(id) >= data.slotCount()) return false;
    if ((data.flags(slotOf(id)) & kSlotTarget) != 0) return false;
    assignMoved(file, table, std::move(page), slotOf(id), id, row);
    return true;
}

}  // namespace wendel::jet
