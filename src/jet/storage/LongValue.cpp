#include "jet/storage/LongValue.h"

#include <algorithm>

#include "jet/storage/Bytes.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {
namespace {

std::span<const std::uint8_t> longValueRow(const File& file, const Page& page, std::uint8_t slot) {
    const DataPage data(file, page);
    if (!data.isDataOf(kLongValueOwner)) file.throwDamaged("Langer Wert");
    const std::span<const std::uint8_t> row = data.row(slot);
    if (data.flags(slot) == kSlotDeleted) file.throwDamaged("Langer Wert");
    return row;
}

std::vector<std::uint8_t> joinChain(File& file, RowPointer part, std::size_t length) {
    std::vector<std::uint8_t> joined;
    // A chain has at most one part on each page, so more parts than pages are a circle.
    for (std::uint32_t parts = 0; joined.size() < length; ++parts) {
        if (part.page == 0 || parts == file.pageCount()) file.throwDamaged("Langer Wert");
        const PagePtr page = file.page(part.page);
        const std::span<const std::uint8_t> row = longValueRow(file, *page, part.slot);
        if (row.size() < kRowPointerSize) file.throwDamaged("Langer Wert");
        const std::span<const std::uint8_t> data = row.subspan(kRowPointerSize);
        const std::size_t wanted = std::min(data.size(), length - joined.size());
        joined.insert(joined.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(wanted));
        part = loadRowPointer(row.data());
    }
    return joined;
}

}  // namespace

LongValue loadLongValue(File& file, std::span<const std::uint8_t> reference) {
    if (reference.size() < kLongValueReferenceSize) file.throwDamaged("Langer Wert");
    const std::uint32_t head = loadU32(reference.data());
    const std::size_t length = head & kLongValueLengthMask;
    const RowPointer place = loadRowPointer(reference.data() + 4);
    LongValue value;
    if ((head & kLongValueInline) != 0) {
        value.bytes = reference.subspan(kLongValueReferenceSize);
    } else if ((head & kLongValueSingle) != 0) {
        value.page = file.page(place.page);
        value.bytes = longValueRow(file, *value.page, place.slot);
    } else {
        value.joined = joinChain(file, place, length);
        value.bytes = value.joined;
    }
    if (value.bytes.size() < length) file.throwDamaged("Langer Wert");
    value.bytes = value.bytes.first(length);
    return value;
}

}  // namespace wendel::jet
