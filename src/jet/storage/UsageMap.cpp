#include "jet/storage/UsageMap.h"

#include <span>

#include "jet/storage/Bytes.h"
#include "jet/storage/DataPage.h"

namespace wendel::jet {
namespace {

constexpr std::size_t kMapHead = 5;  // kind and first page of an inline map

void appendBits(std::span<const std::uint8_t> bits, std::uint64_t firstPage,
                std::vector<std::uint32_t>& pages) {
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (bits[i] == 0) continue;
        for (unsigned bit = 0; bit < 8; ++bit) {
            const std::uint64_t page = firstPage + 8 * i + bit;
            if ((bits[i] >> bit & 1) != 0 && page < kMaxPages)
                pages.push_back(static_cast<std::uint32_t>(page));
        }
    }
}

void appendReferenced(File& file, std::span<const std::uint8_t> references,
                      std::vector<std::uint32_t>& pages) {
    const std::uint64_t pagesPerBitmap = (file.layout().pageSize - kBitmapPageBits) * 8;
    for (std::size_t k = 0; 4 * k + 4 <= references.size() && k * pagesPerBitmap < file.pageCount(); ++k) {
        const std::uint32_t number = loadU32(&references[4 * k]);
        // Zero is no page; negative numbers are left over from earlier use of the row.
        if (number == 0 || number >= 0x80000000) continue;
        const PagePtr bitmap = file.page(number);
        if ((*bitmap)[0] != static_cast<std::uint8_t>(PageType::kUsageBitmap))
            file.throwDamaged("Seitenliste");
        appendBits(std::span(*bitmap).subspan(kBitmapPageBits), k * pagesPerBitmap, pages);
    }
}

}  // namespace

std::vector<std::uint32_t> readUsageMap(File& file, RowPointer map) {
    const PagePtr page = file.page(map.page);
    const DataPage data(file, *page);
    if ((*page)[0] != static_cast<std::uint8_t>(PageType::kData)) file.throwDamaged("Seitenliste");
    const std::span<const std::uint8_t> row = data.row(map.slot);
    std::vector<std::uint32_t> pages;
    if (row.size() >= kMapHead && row[0] == kUsageInline) {
        appendBits(row.subspan(kMapHead), loadU32(&row[1]), pages);
    } else if (!row.empty() && row[0] == kUsageReference) {
        appendReferenced(file, row.subspan(1), pages);
    } else {
        file.throwDamaged("Seitenliste");
    }
    return pages;
}

}  // namespace wendel::jet
