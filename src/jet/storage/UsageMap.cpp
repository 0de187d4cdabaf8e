#include "jet/storage/UsageMap.h"

#include <algorithm>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/DataPage.h"

namespace wendel::jet {
namespace {

void appendBits(const UsageBits& bits, std::vector<std::uint32_t>& pages) {
    for (std::size_t i = 0; i < bits.bytes.size(); ++i) {
        if (bits.bytes[i] == 0) continue;
        for (unsigned bit = 0; bit < 8; ++bit) {
            const std::uint64_t page = bits.firstPage + 8 * i + bit;
            if ((bits.bytes[i] >> bit & 1) != 0 && page < kMaxPages)
                pages.push_back(static_cast<std::uint32_t>(page));
        }
    }
}

// Zero is no page; negative numbers are left over from earlier use of the row.
bool isPageNumber(std::uint32_t reference) { return reference != 0 && reference < 0x80000000; }

PagePtr bitmapPage(File& file, std::uint32_t number) {
    PagePtr bitmap = file.page(number);
    if ((*bitmap)[0] != static_cast<std::uint8_t>(PageType::kUsageBitmap)) file.throwDamaged("Seitenliste");
    return bitmap;
}

// The row of a map, and the page that keeps it alive.
struct MapRow {
    PagePtr page;
    std::span<const std::uint8_t> bytes;
    std::size_t start = 0;  // in the page

    bool isInline() const { return bytes[0] == kUsageInline; }
    std::uint32_t firstPage() const { return loadU32(&bytes[1]); }
    std::size_t bits() const { return 8 * (bytes.size() - kUsageInlineHead); }
    std::size_t references() const { return (bytes.size() - kUsageReferenceHead) / 4; }
    std::size_t referenceAt(std::size_t k) const { return kUsageReferenceHead + 4 * k; }
    std::uint32_t reference(std::size_t k) const { return loadU32(&bytes[referenceAt(k)]); }
};

MapRow mapRow(File& file, RowPointer map) {
    MapRow row;
    row.page = file.page(map.page);
    const DataPage data(file, *row.page);
    if ((*row.page)[0] != static_cast<std::uint8_t>(PageType::kData)) file.throwDamaged("Seitenliste");
    row.bytes = data.row(map.slot);
    row.start = data.rowStart(map.slot);
    const bool known = !row.bytes.empty() && row.bytes[0] <= kUsageReference;
    if (!known || (row.isInline() && row.bytes.size() < kUsageInlineHead)) file.throwDamaged("Seitenliste");
    return row;
}

std::uint32_t newBitmapPage(File& file, PageAllocator& allocator) {
    const std::uint32_t number = allocator.allocate();
    const std::shared_ptr<Page> page = file.edit(number);
    (*page)[0] = static_cast<std::uint8_t>(PageType::kUsageBitmap);
    (*page)[1] = 1;
    return number;
}

void setBit(File& file, const UsageBit& bit, bool value) {
    const std::shared_ptr<Page> page = file.edit(bit.page);
    std::uint8_t& byte = (*page)[bit.byte];
    byte = static_cast<std::uint8_t>(value ? byte | bit.mask : byte & ~bit.mask);
}

// Writes the set into an inline map that begins with this page and is long enough.
void writeInline(std::span<std::uint8_t> row, std::uint32_t firstPage, std::span<const std::uint32_t> pages) {
    std::fill(row.begin(), row.end(), std::uint8_t{0});
    row[0] = kUsageInline;
    storeU32(&row[1], firstPage);
    for (const std::uint32_t page : pages) {
        const std::size_t bit = page - firstPage;
        row[kUsageInlineHead + bit / 8] |= static_cast<std::uint8_t>(1u << (bit % 8));
    }
}

// Moves the start, or lengthens the row; false when neither gives the set place.
bool rewriteInline(File& file, RowPointer map, const MapRow& old, std::span<const std::uint32_t> pages) {
    const std::shared_ptr<Page> page = file.edit(map.page);
    DataPageEditor editor(file, *page);
    const std::uint32_t windowStart = pages.front() / 8 * 8;
    if (old.firstPage() != 0 && pages.back() - windowStart < old.bits()) {
        writeInline(editor.row(map.slot), windowStart, pages);
        return true;
    }
    const std::size_t bytes = (pages.back() / 8 / kUsageGrowth + 1) * kUsageGrowth;
    const std::size_t length = std::max(kUsageInlineHead + bytes, editor.row(map.slot).size());
    if (!editor.fitsInSlot(map.slot, length)) return false;
    editor.lengthen(map.slot, length);
    writeInline(editor.row(map.slot), 0, pages);
    return true;
}

// Makes room for reference k; what is left over from earlier use of the row does not count as one.
void addReference(File& file, PageAllocator& allocator, RowPointer map, std::size_t k) {
    const std::uint32_t bitmap = newBitmapPage(file, allocator);
    const std::shared_ptr<Page> page = file.edit(map.page);
    DataPageEditor editor(file, *page);
    const std::size_t at = kUsageReferenceHead + 4 * k;
    const std::size_t length = std::max(at + 4, editor.row(map.slot).size());
    if (!editor.fitsInSlot(map.slot, length)) file.throwDamaged("Seitenliste");
    editor.lengthen(map.slot, length);
    storeU32(&editor.row(map.slot)[at], bitmap);
}

void makeReferences(File& file, RowPointer map) {
    const std::shared_ptr<Page> page = file.edit(map.page);
    DataPageEditor editor(file, *page);
    const std::span<std::uint8_t> row = editor.row(map.slot);
    std::fill(row.begin(), row.end(), std::uint8_t{0});
    row[0] = kUsageReference;
}

// Sets bits that the map does not reach yet.
void extend(File& file, PageAllocator& allocator, RowPointer map, std::uint32_t newPage) {
    const MapRow row = mapRow(file, map);
    if (!row.isInline()) {
        addReference(file, allocator, map, newPage / pagesPerBitmap(file));
        return setBit(file, *findUsageBit(file, map, newPage), true);
    }
    std::vector<std::uint32_t> pages = readUsageMap(file, map);
    pages.insert(std::lower_bound(pages.begin(), pages.end(), newPage), newPage);
    if (rewriteInline(file, map, row, pages)) return;
    makeReferences(file, map);
    for (const std::uint32_t page : pages)
        addToUsageMap(file, allocator, map, page);
}

}  // namespace

std::uint32_t pagesPerBitmap(const File& file) {
    return static_cast<std::uint32_t>((file.layout().pageSize - kBitmapPageBits) * 8);
}

std::vector<UsageBits> usageBits(File& file, RowPointer map) {
    const MapRow row = mapRow(file, map);
    if (row.isInline()) return {{map.page, row.page, row.bytes.subspan(kUsageInlineHead), row.firstPage()}};
    std::vector<UsageBits> pieces;
    const std::uint64_t step = pagesPerBitmap(file);
    for (std::size_t k = 0; k < row.references() && k * step < file.pageCount(); ++k) {
        const std::uint32_t number = row.reference(k);
        if (!isPageNumber(number)) continue;
        PagePtr page = bitmapPage(file, number);
        const std::span<const std::uint8_t> bytes = std::span(*page).subspan(kBitmapPageBits);
        pieces.push_back({number, std::move(page), bytes, k * step});
    }
    return pieces;
}

std::vector<std::uint32_t> readUsageMap(File& file, RowPointer map) {
    std::vector<std::uint32_t> pages;
    for (const UsageBits& bits : usageBits(file, map))
        appendBits(bits, pages);
    return pages;
}

bool hasUsageMap(File& file, RowPointer map) {
    if (map.page == 0 || map.page >= file.pageCount()) return false;
    const PagePtr page = file.page(map.page);
    const DataPage data(file, *page);
    return data.isDataOf(0) && map.slot < data.slotCount() && data.flags(map.slot) == 0 &&
           data.row(map.slot).size() >= kUsageInlineHead;
}

std::optional<UsageBit> findUsageBit(File& file, RowPointer map, std::uint32_t page) {
    const MapRow row = mapRow(file, map);
    const auto mask = [](std::size_t bit) { return static_cast<std::uint8_t>(1u << (bit % 8)); };
    if (row.isInline()) {
        if (page < row.firstPage() || page - row.firstPage() >= row.bits()) return std::nullopt;
        const std::size_t bit = page - row.firstPage();
        return UsageBit{map.page, row.start + kUsageInlineHead + bit / 8, mask(bit)};
    }
    const std::size_t k = page / pagesPerBitmap(file);
    if (k >= row.references() || !isPageNumber(row.reference(k))) return std::nullopt;
    bitmapPage(file, row.reference(k));  // throws when it is something else
    const std::size_t bit = page % pagesPerBitmap(file);
    return UsageBit{row.reference(k), kBitmapPageBits + bit / 8, mask(bit)};
}

bool inUsageMap(File& file, RowPointer map, std::uint32_t page) {
    const std::optional<UsageBit> bit = findUsageBit(file, map, page);
    return bit && ((*file.page(bit->page))[bit->byte] & bit->mask) != 0;
}

void addToUsageMap(File& file, PageAllocator& allocator, RowPointer map, std::uint32_t page) {
    const std::optional<UsageBit> bit = findUsageBit(file, map, page);
    if (bit) {
        setBit(file, *bit, true);
    } else {
        extend(file, allocator, map, page);
    }
}

void removeFromUsageMap(File& file, RowPointer map, std::uint32_t page) {
    const std::optional<UsageBit> bit = findUsageBit(file, map, page);
    if (bit) setBit(file, *bit, false);
}

}  // namespace wendel::jet
