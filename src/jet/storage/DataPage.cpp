#include "jet/storage/DataPage.h"

#include <algorithm>

#include "jet/storage/Bytes.h"

namespace wendel::jet {

bool DataPage::isDataOf(std::uint32_t owner) const {
    return bytes_[0] == static_cast<std::uint8_t>(PageType::kData) && loadU32(&bytes_[kPageOwner]) == owner;
}

unsigned DataPage::slotCount() const {
    const Layout& layout = file_.layout();
    const unsigned count = loadU16(&bytes_[layout.dataSlotCount]);
    if (layout.dataSlots + 2u * count > layout.pageSize) file_.throwDamaged("Zeilenverzeichnis");
    return std::min(count, 256u);
}

std::uint16_t DataPage::slotWord(unsigned slot) const {
    return loadU16(&bytes_[file_.layout().dataSlots + 2u * slot]);
}

std::uint16_t DataPage::flags(unsigned slot) const {
    return static_cast<std::uint16_t>(slotWord(slot) & kSlotDeleted);
}

std::size_t DataPage::rowStart(unsigned slot) const { return slotWord(slot) & kSlotOffsetMask; }

std::span<const std::uint8_t> DataPage::row(unsigned slot) const {
    const unsigned count = slotCount();
    if (slot >= count) file_.throwDamaged("Zeile fehlt");
    const std::size_t start = rowStart(slot);
    const std::size_t end = slot == 0 ? bytes_.size() : rowStart(slot - 1);
    if (start < file_.layout().dataSlots + 2u * count || start > end || end > bytes_.size()) {
        file_.throwDamaged("Lage einer Zeile");
    }
    return bytes_.subspan(start, end - start);
}

}  // namespace wendel::jet
