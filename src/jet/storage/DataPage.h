#pragma once
// The row slots of a data page: where each row starts and ends, and how rows are put in, changed and taken
// out. Data, long values and page maps all lie in pages of this kind and differ by the owner field.

#include <cstddef>
#include <cstdint>
#include <optional>
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

    // Bytes not used by rows and slots; what deleted rows still occupy counts as free. Throws Fehler 3049
    // when a row lies outside the page.
    std::size_t room() const;
    // Whether a new row of this length finds place.
    bool fits(std::size_t length) const;
    // No slot but deleted ones.
    bool isEmpty() const { return !firstSlot(false).has_value(); }
    std::optional<unsigned> deletedSlot() const { return firstSlot(true); }

  private:
    std::optional<unsigned> firstSlot(bool deleted) const;
    std::uint16_t slotWord(unsigned slot) const;

    const File& file_;
    std::span<const std::uint8_t> bytes_;
};

// Changes the rows of a data page that the caller has from File::edit(). Rows stay packed from the end of the
// page downwards in the order of their slots, and the page's note of its free space stays exact. A deleted
// row gives its bytes back at once; its slot is used again only when the page has no other left, so that an
// identity is rarely given twice.
class DataPageEditor {
  public:
    // The page must outlive the editor. Throws Fehler 3049 when its slots do not fit together; nothing is
    // changed then.
    DataPageEditor(const File& file, Page& page);
    // Makes the page an empty data page of this owner.
    static void format(const File& file, Page& page, std::uint32_t owner);

    // The page as it is now.
    const DataPage& page() const { return page_; }
    // A row's bytes as they lie in the page, until the next change.
    std::span<std::uint8_t> row(unsigned slot);
    // Whether the row can get this length without leaving its slot.
    bool fitsInSlot(unsigned slot, std::size_t length) const;

    // Need page().fits() and fitsInSlot().
    std::uint8_t insert(std::span<const std::uint8_t> row, std::uint16_t flags = 0);
    void replace(unsigned slot, std::span<const std::uint8_t> row, std::uint16_t flags = 0);
    // Adds zeros behind the row's bytes.
    void lengthen(unsigned slot, std::size_t length);
    void erase(unsigned slot);

  private:
    std::size_t end(unsigned slot) const;
    std::size_t gap() const;
    void setSlot(unsigned slot, std::size_t start, std::uint16_t flags);
    void changeLength(unsigned slot, std::size_t length);
    void squeezeDeleted();

    const File& file_;
    Page& bytes_;
    const DataPage page_;
};

}  // namespace wendel::jet
