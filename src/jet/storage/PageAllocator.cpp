#include "jet/storage/PageAllocator.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

#include "jet/storage/Bytes.h"
#include "jet/storage/Catalog.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/Table.h"
#include "jet/storage/UsageMap.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

constexpr RowPointer kGlobalMap = {kGlobalMapPage, 0};

// Bytes that an inline map from page 0 needs to tell about this page.
std::size_t bitmapBytes(std::uint32_t page) { return (page / 8 / kUsageGrowth + 1) * kUsageGrowth; }

// Each bit set: the page is free. Pages outside the map count as used where they exist, as free where they do
// not exist yet.
class GlobalMap {
  public:
    explicit GlobalMap(File& file) : file_(file) {}

    std::vector<std::uint32_t> freePages() {
        std::vector<std::uint32_t> pages = readUsageMap(file_, kGlobalMap);
        pages.erase(std::lower_bound(pages.begin(), pages.end(), file_.pageCount()), pages.end());
        return pages;
    }

    // The first free page in the file that is accepted; nothing when there is none.
    template <class Accept>
    std::optional<std::uint32_t> firstFree(Accept accept) {
        for (const UsageBits& bits : usageBits(file_, kGlobalMap)) {
            const std::uint64_t end =
                std::min<std::uint64_t>(bits.firstPage + 8 * bits.bytes.size(), file_.pageCount());
            for (std::uint64_t page = bits.firstPage; page < end; ++page) {
                const std::uint64_t bit = page - bits.firstPage;
                const std::uint8_t byte = bits.bytes[bit / 8];
                if (byte == 0) {
                    page += 7 - bit % 8;
                } else if ((byte >> (bit % 8) & 1) != 0 && accept(static_cast<std::uint32_t>(page))) {
                    return static_cast<std::uint32_t>(page);
                }
            }
        }
        return std::nullopt;
    }

    void set(std::uint32_t page, bool free) {
        const UsageBit bit = cover(page);
        const std::shared_ptr<Page> bits = file_.edit(bit.page);
        std::uint8_t& byte = (*bits)[bit.byte];
        byte = static_cast<std::uint8_t>(free ? byte | bit.mask : byte & ~bit.mask);
    }

  private:
    // Lengthens the map until it tells about this page.
    UsageBit cover(std::uint32_t page) {
        std::optional<UsageBit> bit = findUsageBit(file_, kGlobalMap, page);
        if (bit) return *bit;
        if (kind() == kUsageInline) {
            const std::vector<std::uint32_t> free = freePages();
            if (!rewriteInline(page, free)) makeReferences(free);
            return cover(page);
        }
        addBitmap(page / pagesPerBitmap(file_));
        return *findUsageBit(file_, kGlobalMap, page);
    }

    std::uint8_t kind() {
        const PagePtr page = file_.page(kGlobalMapPage);
        return DataPage(file_, *page).row(0)[0];
    }

    // A map from page 0 that reaches behind this page; false when there is no room for it. Some writers move
    // the start of a map up instead of lengthening it: what they left behind becomes used.
    bool rewriteInline(std::uint32_t page, std::span<const std::uint32_t> free) {
        const std::shared_ptr<Page> bytes = file_.edit(kGlobalMapPage);
        DataPageEditor editor(file_, *bytes);
        const std::size_t needed = kUsageInlineHead + bitmapBytes(std::max(page, file_.pageCount() - 1));
        const std::size_t length = std::max(needed, editor.row(0).size());
        if (!editor.fitsInSlot(0, length)) return false;
        editor.lengthen(0, length);
        const std::span<std::uint8_t> row = editor.row(0);
        std::fill(row.begin(), row.end(), std::uint8_t{0});
        row[0] = kUsageInline;
        fill(row.subspan(kUsageInlineHead), 0, free);
        return true;
    }

    void makeReferences(std::span<const std::uint32_t> free) {
        {
            const std::shared_ptr<Page> bytes = file_.edit(kGlobalMapPage);
            DataPageEditor editor(file_, *bytes);
            const std::span<std::uint8_t> row = editor.row(0);
            std::fill(row.begin(), row.end(), std::uint8_t{0});
            row[0] = kUsageReference;
        }
        const std::uint32_t last = (file_.pageCount() - 1) / pagesPerBitmap(file_);
        for (std::uint32_t k = 0; k <= last; ++k)
            cover(k * pagesPerBitmap(file_));
        for (const std::uint32_t page : free)
            set(page, true);
    }

    // A page of bits behind reference k; it comes from the end of the file, and notes itself as used.
    void addBitmap(std::uint32_t k) {
        const std::uint32_t number = file_.appendPage();
        {
            const std::shared_ptr<Page> bitmap = file_.edit(number);
            (*bitmap)[0] = static_cast<std::uint8_t>(PageType::kUsageBitmap);
            (*bitmap)[1] = 1;
            fill(std::span(*bitmap).subspan(kBitmapPageBits), k * pagesPerBitmap(file_), {});
        }
        {
            const std::shared_ptr<Page> bytes = file_.edit(kGlobalMapPage);
            const std::span<std::uint8_t> row = DataPageEditor(file_, *bytes).row(0);
            const std::size_t at = kUsageReferenceHead + 4 * k;
            if (at + 4 > row.size()) file_.throwDamaged("Seitenliste");
            storeU32(&row[at], number);
        }
        set(number, false);
    }

    // Bits of the pages from `first` on: free are these, and all behind the end of the file.
    void fill(std::span<std::uint8_t> bits, std::uint32_t first, std::span<const std::uint32_t> free) {
        const std::uint32_t end = file_.pageCount();
        for (std::size_t i = 0; i < bits.size(); ++i) {
            const std::size_t page = first + 8 * i;
            if (page >= end) {
                bits[i] = 0xFF;
            } else if (end - page < 8) {
                bits[i] = static_cast<std::uint8_t>(0xFF << (end - page));
            }
        }
        for (const std::uint32_t page : free)
            bits[(page - first) / 8] |= static_cast<std::uint8_t>(1u << ((page - first) % 8));
    }

    File& file_;
};

// Marks the pages that the tables of the catalog list as theirs.
class UseFinder {
  public:
    explicit UseFinder(File& file) : file_(file), used_(file.pageCount()) {}

    // Throws Fehler 3049 when some definition or map cannot be read.
    void find() {
        markMap(kGlobalMap);
        markMap({kGlobalMapPage, 1});
        const auto catalog = loadTableDef(file_, kCatalogPage, "");
        markTable(*catalog);
        const auto id = catalog->findColumn("Id");
        const auto type = catalog->findColumn("Type");
        if (!id || !type) file_.throwDamaged("Katalog");
        for (TableScan scan(file_, *catalog); scan.next();) {
            if (scan.row().asInteger(*type) != catalog::kTypeTable) continue;
            const std::uint32_t page =
                static_cast<std::uint32_t>(scan.row().asInteger(*id)) & catalog::kPageOfId;
            if (page != kCatalogPage) markTable(*loadTableDef(file_, page, ""));
        }
    }

    bool isUsed(std::uint32_t page) const { return used_[page]; }
    const std::set<std::uint32_t>& tables() const { return tables_; }

  private:
    void mark(std::uint32_t page) {
        if (page < used_.size()) used_[page] = true;
    }

    // The page with the map and those with its bits; not the pages of the set.
    void markMap(RowPointer map) {
        mark(map.page);
        for (const UsageBits& bits : usageBits(file_, map))
            mark(bits.page);
    }

    void markOwned(RowPointer map) {
        markMap(map);
        for (const std::uint32_t page : readUsageMap(file_, map))
            mark(page);
    }

    void markTable(const TableDef& table) {
        tables_.insert(table.page);
        for (const std::uint32_t page : table.definitionPages)
            mark(page);
        markOwned(table.ownedPages);
        markOwned(table.freeSpacePages);
        for (const Index& index : table.indexes) {
            mark(index.root);
            markOwned(index.pages);
        }
        for (const Column& column : table.columns) {
            for (const RowPointer map : {column.longValuePages, column.longValueFreePages})
                if (hasUsageMap(file_, map)) markOwned(map);
        }
    }

    File& file_;
    std::vector<bool> used_;
    std::set<std::uint32_t> tables_;
};

}  // namespace

std::uint32_t PageAllocator::allocate() {
    GlobalMap map(file_);
    if (const auto free = map.firstFree([this](std::uint32_t page) { return mayBeReused(page); })) {
        map.set(*free, false);
        file_.replace(*free);
        return *free;
    }
    const std::uint32_t page = file_.appendPage();
    map.set(page, false);
    return page;
}

void PageAllocator::release(std::uint32_t page) {
    GlobalMap map(file_);
    if (page <= kCatalogPage || page >= file_.pageCount()) file_.throwDamaged("Seitenliste");
    map.set(page, true);
    lookedUsed_.erase(page);
    std::uint8_t& type = (*file_.edit(page))[0];
    const bool definition = type == static_cast<std::uint8_t>(PageType::kDefinition);
    type = static_cast<std::uint8_t>(definition ? PageType::kFreedDefinition : PageType::kFreedData);
}

bool PageAllocator::mayBeReused(std::uint32_t page) {
    if (page <= kCatalogPage) return false;
    if (!lookedUp_) lookUpUse();
    if (!reuse_ || contested_.contains(page) || lookedUsed_.contains(page)) return false;
    if (!looksUsed(page)) return true;
    lookedUsed_.insert(page);
    return false;
}

// Freed pages of other writers often keep their content. Only those are taken whose content can be nobody's:
// long values, for example, can lie on pages that no map lists.
bool PageAllocator::looksUsed(std::uint32_t number) {
    const PagePtr page = file_.page(number);
    switch (static_cast<PageType>((*page)[0])) {
        case PageType::kData: break;
        case PageType::kDefinition: return true;
        case PageType::kIndexNode:
        case PageType::kIndexLeaf: return tables_.contains(loadU32(&(*page)[kPageOwner]));
        default: return false;
    }
    const std::uint32_t owner = loadU32(&(*page)[kPageOwner]);
    if (owner != 0 && owner != kLongValueOwner && !tables_.contains(owner)) return false;
    const DataPage data(file_, *page);
    const std::size_t slots = loadU16(&(*page)[file_.layout().dataSlotCount]);
    if (slots > kMaxSlots) return true;
    for (unsigned slot = 0; slot < slots; ++slot)
        if (data.flags(slot) != kSlotDeleted) return true;
    return false;
}

void PageAllocator::lookUpUse() {
    lookedUp_ = true;
    try {
        UseFinder use(file_);
        use.find();
        for (const std::uint32_t page : GlobalMap(file_).freePages())
            if (use.isUsed(page)) contested_.insert(page);
        tables_ = use.tables();
        reuse_ = true;
    } catch (const Fehler& e) {
        // A file with damaged parts can still take rows in the others, on new pages.
        if (e.nummer() != jetfehler::kDamaged) throw;
    }
}

}  // namespace wendel::jet
