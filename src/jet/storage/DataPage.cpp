#include "jet/storage/DataPage.h"

#include <algorithm>
#include <cstring>

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

std::size_t DataPage::room() const {
    std::size_t used = file_.layout().dataSlots + 2u * slotCount();
    for (unsigned slot = 0; slot < slotCount(); ++slot)
        used += flags(slot) == kSlotDeleted ? 0 : row(slot).size();
    // Rows lie one after the other, so that they cannot be longer than the page together.
    return bytes_.size() - used;
}

bool DataPage::fits(std::size_t length) const {
    if (slotCount() < kMaxSlots) return length + 2 <= room();
    return deletedSlot().has_value() && length <= room();
}

std::optional<unsigned> DataPage::firstSlot(bool deleted) const {
    const unsigned count = slotCount();
    for (unsigned slot = 0; slot < count; ++slot)
        if ((flags(slot) == kSlotDeleted) == deleted) return slot;
    return std::nullopt;
}

DataPageEditor::DataPageEditor(const File& file, Page& page) : file_(file), bytes_(page), page_(file, page) {
    if (page_.slotCount() > kMaxSlots) file.throwDamaged("Zeilenverzeichnis");
    for (unsigned slot = 0; slot < page_.slotCount(); ++slot)
        static_cast<void>(page_.row(slot));  // throws when it lies wrong
}

void DataPageEditor::format(const File& file, Page& page, std::uint32_t owner) {
    std::fill(page.begin(), page.end(), std::uint8_t{0});
    page[0] = static_cast<std::uint8_t>(PageType::kData);
    page[1] = 1;
    storeU32(&page[kPageOwner], owner);
    storeU16(&page[kDataFreeSpace], static_cast<std::uint16_t>(page.size() - file.layout().dataSlots));
}

std::size_t DataPageEditor::end(unsigned slot) const {
    return slot == 0 ? bytes_.size() : page_.rowStart(slot - 1);
}

// Between the slots and the lowest row.
std::size_t DataPageEditor::gap() const {
    const unsigned count = page_.slotCount();
    return end(count) - file_.layout().dataSlots - 2u * count;
}

std::span<std::uint8_t> DataPageEditor::row(unsigned slot) {
    return std::span(bytes_).subspan(page_.rowStart(slot), page_.row(slot).size());
}

bool DataPageEditor::fitsInSlot(unsigned slot, std::size_t length) const {
    const std::size_t old = page_.row(slot).size();
    return length <= old || length - old <= page_.room();
}

std::uint8_t DataPageEditor::insert(std::span<const std::uint8_t> row, std::uint16_t flags) {
    unsigned slot = page_.slotCount();
    if (slot < kMaxSlots) {
        if (gap() < 2) squeezeDeleted();
        const std::size_t lowest = end(slot);
        storeU16(&bytes_[file_.layout().dataSlotCount], static_cast<std::uint16_t>(slot + 1));
        setSlot(slot, lowest, kSlotDeleted);
    } else {
        slot = *page_.deletedSlot();
    }
    replace(slot, row, flags);
    return static_cast<std::uint8_t>(slot);
}

void DataPageEditor::replace(unsigned slot, std::span<const std::uint8_t> row, std::uint16_t flags) {
    changeLength(slot, row.size());
    const std::size_t start = page_.rowStart(slot);
    std::copy(row.begin(), row.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(start));
    setSlot(slot, start, flags);
}

void DataPageEditor::lengthen(unsigned slot, std::size_t length) {
    const std::size_t old = row(slot).size();
    changeLength(slot, length);
    // The old bytes are at the end of the row's new place.
    const std::span<std::uint8_t> bytes = row(slot);
    std::memmove(bytes.data(), bytes.data() + (length - old), old);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(old), bytes.end(), std::uint8_t{0});
}

void DataPageEditor::erase(unsigned slot) {
    changeLength(slot, 0);
    setSlot(slot, page_.rowStart(slot), kSlotDeleted);
}

void DataPageEditor::setSlot(unsigned slot, std::size_t start, std::uint16_t flags) {
    storeU16(&bytes_[file_.layout().dataSlots + 2u * slot], static_cast<std::uint16_t>(start | flags));
}

// Moves the rows below so that the row in this slot gets the length; its end stays where it is.
void DataPageEditor::changeLength(unsigned slot, std::size_t length) {
    if (row(slot).size() + gap() < length) squeezeDeleted();
    const unsigned count = page_.slotCount();
    const std::size_t lowest = end(count);
    const std::size_t oldStart = page_.rowStart(slot);
    const std::size_t newStart = end(slot) - length;
    if (newStart != oldStart) {
        const std::size_t below = oldStart - lowest;
        std::memmove(bytes_.data() + newStart - below, bytes_.data() + lowest, below);
        for (unsigned s = slot; s < count; ++s)
            setSlot(s, page_.rowStart(s) + newStart - oldStart, page_.flags(s));
    }
    storeU16(&bytes_[kDataFreeSpace], static_cast<std::uint16_t>(gap()));
}

// Takes out the bytes that other writers leave in deleted slots.
void DataPageEditor::squeezeDeleted() {
    for (unsigned slot = 0; slot < page_.slotCount(); ++slot)
        if (page_.flags(slot) == kSlotDeleted && !page_.row(slot).empty()) changeLength(slot, 0);
}

}  // namespace wendel::jet
