#include "jet/storage/LongValueWriter.h"

#include <utility>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/WriteErrors.h"

namespace wendel::jet {
namespace {

std::uint32_t rowPointerWord(RowPointer place) { return place.page << 8 | place.slot; }

}  // namespace

LongValueWriter::LongValueWriter(File& file, PageAllocator& allocator, const Column& column)
    : file_(file),
      pages_(file, allocator, kLongValueOwner, column.longValuePages, column.longValueFreePages),
      fixed_(column.fixed) {}

void LongValueWriter::store(std::string_view bytes, std::string& reference) {
    if (bytes.size() > kLongValueLengthMask) throwWriteError(jetfehler::kRowTooLarge);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    const bool inRow = bytes.empty() || (bytes.size() <= kMaxInlineValue && !fixed_);
    std::uint32_t kind = 0;
    RowPointer place;
    if (inRow) {
        kind = kLongValueInline;
    } else if (bytes.size() <= file_.layout().maxSingleValue && pages_.hasMap()) {
        kind = kLongValueSingle;
        place = pages_.insert(asBytes(bytes), 0);
    } else {
        place = storeChain(bytes);
    }
    appendLittle(reference, length | kind, 4);
    appendLittle(reference, rowPointerWord(place), 4);
    appendLittle(reference, 0, 4);
    if (inRow) reference += bytes;
}

// From the last part to the first, each with the place of the one behind it.
RowPointer LongValueWriter::storeChain(std::string_view bytes) {
    const std::size_t partSize = file_.layout().chainPart;
    RowPointer next;
    std::string part;
    for (std::size_t from = (bytes.size() - 1) / partSize * partSize;; from -= partSize) {
        part.clear();
        appendLittle(part, rowPointerWord(next), kRowPointerSize);
        part += bytes.substr(from, partSize);
        next = pages_.insertAlone(asBytes(part));
        if (from == 0) return next;
    }
}

void LongValueWriter::release(std::span<const std::uint8_t> reference) {
    if (reference.size() < kLongValueReferenceSize) return;
    const std::uint32_t head = loadU32(reference.data());
    const std::size_t length = head & kLongValueLengthMask;
    const RowPointer place = loadRowPointer(reference.data() + 4);
    if ((head & kLongValueInline) != 0) return;
    if ((head & kLongValueSingle) != 0) {
        releaseSingle(place, length);
    } else {
        releaseChain(place, length);
    }
}

// The row, if it is there and no pointer.
std::optional<LongValueWriter::LiveRow> LongValueWriter::liveRow(RowPointer place) {
    if (!pages_.contains(place.page)) return std::nullopt;
    PagePtr page = file_.page(place.page);
    const DataPage data(file_, *page);
    if (place.slot >= data.slotCount() || data.flags(place.slot) != 0) return std::nullopt;
    const std::span<const std::uint8_t> bytes = data.row(place.slot);
    return LiveRow{std::move(page), bytes};
}

void LongValueWriter::releaseSingle(RowPointer place, std::size_t length) {
    const bool intact = [&] {
        const std::optional<LiveRow> row = liveRow(place);
        return row && row->bytes.size() == length;
    }();
    if (intact) pages_.erase(place);
}

void LongValueWriter::releaseChain(RowPointer first, std::size_t length) {
    std::vector<RowPointer> parts;
    std::size_t found = 0;
    for (RowPointer part = first; part.page != 0;) {
        const std::optional<LiveRow> row = liveRow(part);
        // More parts than bytes are a circle.
        if (!row || row->bytes.size() < kRowPointerSize || found >= length) return;
        found += row->bytes.size() - kRowPointerSize;
        parts.push_back(part);
        part = loadRowPointer(row->bytes.data());
    }
    if (found != length) return;
    for (const RowPointer part : parts)
        pages_.erase(part);
}

}  // namespace wendel::jet
