#pragma once
// The row slots of a data page: where each row starts and ends. Data, long values and page maps all lie in
// pages of this kind and differ by the owner field.

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/storage/File.h"
#include "jet/storage/Format.h"

namespace wendel::jet {

class DataPage {
  public:
    // A look at the page's bytes, which must outlive it. Slots count 0 to slotCount() - 1.
    DataPage(const File& file, const Page& page) : file_(file), bytes_(page) {}

    bool isDataOf(std::uint32_t owner) const;
    // At most 256: identities of rows have one byte for the slot. Throws Fehler 3049 when the slots reach
    // beyond the page.
    unsigned slotCount() const;
    std::uint16_t flags(unsigned slot) const;  // kSlotPointer, kSlotTarget
    std::size_t rowStart(unsigned slot) const;
    // The row's bytes; throws Fehler 3049 when there is no such slot or it lies outside the page.
    std::span<const std::uint8_t> row(unsigned slot) const;

  private:
    std::uint16_t slotWord(unsigned slot) const;

    const File& file_;
    std::span<const std::uint8_t> bytes_;
};

}  // namespace wendel::jet
