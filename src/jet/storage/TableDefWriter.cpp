#include "jet/storage/TableDefWriter.h"

#include <algorithm>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/TextCoding.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

using Block = DefinitionParts::Block;
using Named = DefinitionParts::Named;

constexpr char kSource[] = "Tabellendefinition";

// The bytes of a definition taken one after the other.
class Splitter {
  public:
    Splitter(const File& file, std::span<const std::uint8_t> bytes) : file_(file), rest_(bytes) {}

    Block take(std::size_t size) {
        if (rest_.size() < size) file_.throwDamaged("Tabellendefinition");
        const std::span<const std::uint8_t> taken = rest_.first(size);
        rest_ = rest_.subspan(size);
        return Block(taken.begin(), taken.end());
    }

    std::string takeName() {
        const bool wide = file_.layout().nameLengthSize == 2;
        const Block length = take(file_.layout().nameLengthSize);
        const Block raw = take(wide ? loadU16(length.data()) : length[0]);
        std::string name;
        if (wide) {
            appendUtf16(raw, name);
        } else {
            appendStoredText(file_.version(), raw, name);
        }
        return name;
    }

    bool has(std::size_t size) const { return rest_.size() >= size; }

  private:
    const File& file_;
    std::span<const std::uint8_t> rest_;
};

void append(Block& to, std::span<const std::uint8_t> bytes) {
    to.insert(to.end(), bytes.begin(), bytes.end());
}

// Names are never compressed.
void appendName(const Layout& layout, const std::string& name, Block& to) {
    std::string stored;
    appendForStorage(layout.version, false, name, stored);
    const std::size_t size = std::min<std::size_t>(stored.size(), layout.nameLengthSize == 2 ? 0xFFFE : 0xFF);
    to.push_back(static_cast<std::uint8_t>(size));
    if (layout.nameLengthSize == 2) to.push_back(static_cast<std::uint8_t>(size >> 8));
    to.insert(to.end(), stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(size));
}

void storeRowPointer(std::uint8_t* p, RowPointer pointer) {
    p[0] = pointer.slot;
    storeU24(p + 1, pointer.page);
}

ColumnType typeOf(const Block& descriptor) { return static_cast<ColumnType>(descriptor[0]); }

// What a column of this type has for its length in bytes; `bytes` where that is its own.
std::uint16_t columnLength(ColumnType type, std::uint16_t bytes) {
    if (type == ColumnType::kBoolean) return 1;
    if (type == ColumnType::kMemo || type == ColumnType::kOle) return 0;
    const std::uint16_t size = valueSize(type);
    return size != 0 ? size : bytes;
}

// Where the next columns of a new table go.
struct Places {
    std::uint16_t number = 0, variable = 0, variableLong = 0;
    std::size_t fixedEnd = 0;
};

void placeColumn(const Layout& layout, bool system, Places& places, Block& column) {
    const bool isFixed = (column[layout.columnFlags] & kColumnFixed) != 0;
    const bool isLast = isLongColumn({column, {}}) && !system;
    std::uint16_t variable = isLast ? places.variableLong : places.variable;
    storeU16(&column[layout.columnNumber], places.number);
    storeU16(&column[layout.columnVariableIndex], variable);
    storeU16(&column[layout.columnSecondNumber], system ? std::uint16_t{0} : places.number);
    storeU16(&column[layout.columnFixedOffset], 0);
    ++places.number;
    if (!isFixed) {
        ++(isLast ? places.variableLong : places.variable);
    } else if (typeOf(column) != ColumnType::kBoolean) {
        storeU16(&column[layout.columnFixedOffset], static_cast<std::uint16_t>(places.fixedEnd));
        places.fixedEnd += loadU16(&column[layout.columnLength]);
    }
    if (places.fixedEnd > layout.maxRowSize) {
        throw Fehler(jetfehler::kTooManyColumns, kSource, "Zu viele Felder definiert.");
    }
}

void storeCounts(const Layout& layout, DefinitionParts& parts) {
    storeU16(&parts.fixed[layout.defColumns], static_cast<std::uint16_t>(parts.columns.size()));
    storeU32(&parts.fixed[layout.defLogicalIndexes], static_cast<std::uint32_t>(parts.logicalIndexes.size()));
    storeU32(&parts.fixed[layout.defRealIndexes], static_cast<std::uint32_t>(parts.realIndexes.size()));
}

// The blocks of logical indexes lie in the order of their names.
void sortLogicalIndexes(DefinitionParts& parts) {
    std::stable_sort(parts.logicalIndexes.begin(), parts.logicalIndexes.end(),
                     [](const Named& a, const Named& b) { return LCase(a.name) < LCase(b.name); });
}

Block joined(const Layout& layout, const DefinitionParts& parts) {
    Block bytes = parts.fixed;
    for (const Block& block : parts.statistics)
        append(bytes, block);
    for (const Named& column : parts.columns)
        append(bytes, column.block);
    for (const Named& column : parts.columns)
        appendName(layout, column.name, bytes);
    for (const Block& block : parts.realIndexes)
        append(bytes, block);
    for (const Named& index : parts.logicalIndexes)
        append(bytes, index.block);
    for (const Named& index : parts.logicalIndexes)
        appendName(layout, index.name, bytes);
    for (const Block& block : parts.longValueMaps)
        append(bytes, block);
    append(bytes, std::array<std::uint8_t, 2>{0xFF, 0xFF});
    storeU32(&bytes[kDefinitionLength], static_cast<std::uint32_t>(bytes.size()));
    return bytes;
}

// Type, free bytes (Jet 3: its mark) and next page of one page of a definition that uses `used` bytes of it.
void storePageHead(const Layout& layout, Page& page, std::size_t used, std::uint32_t next) {
    page[0] = static_cast<std::uint8_t>(PageType::kDefinition);
    page[1] = 1;
    const std::size_t unused = layout.pageSize - used;
    const auto freeBytes = static_cast<std::uint16_t>(unused > 8 ? unused - 8 : 0);
    storeU16(&page[kDefinitionFreeSpace], layout.version == Version::kJet4 ? freeBytes : kJet3DefinitionMark);
    storeU32(&page[kDefinitionNext], next);
}

}  // namespace

DefinitionParts newDefinition(const Layout& layout, bool system) {
    DefinitionParts parts;
    parts.fixed.assign(layout.defVariablePart, 0);
    if (layout.version == Version::kJet4) {
        storeU32(&parts.fixed[kDefinitionConstantAt], kDefinitionConstant);
        storeU32(&parts.fixed[kDefinitionCounting], 1);
    }
    parts.fixed[layout.defTableKind] = system ? kTableKindSystem : kTableKindUser;
    return parts;
}

DefinitionParts splitDefinition(const File& file, const DefinitionBytes& definition) {
    const Layout& layout = file.layout();
    Splitter splitter(file, definition.bytes);
    DefinitionParts parts;
    parts.fixed = splitter.take(layout.defVariablePart);
    const std::uint32_t realIndexes = loadU32(&parts.fixed[layout.defRealIndexes]);
    const std::uint32_t logicalIndexes = loadU32(&parts.fixed[layout.defLogicalIndexes]);
    for (std::uint32_t i = 0; i < realIndexes; ++i)
        parts.statistics.push_back(splitter.take(layout.statisticsSize));
    parts.columns.resize(loadU16(&parts.fixed[layout.defColumns]));
    for (Named& column : parts.columns)
        column.block = splitter.take(layout.columnSize);
    for (Named& column : parts.columns)
        column.name = splitter.takeName();
    for (std::uint32_t i = 0; i < realIndexes; ++i)
        parts.realIndexes.push_back(splitter.take(layout.realIndexSize));
    for (std::uint32_t i = 0; i < logicalIndexes; ++i)
        parts.logicalIndexes.push_back({splitter.take(layout.logicalIndexSize), {}});
    for (Named& index : parts.logicalIndexes)
        index.name = splitter.takeName();
    while (splitter.has(kLongValueMapSize)) {
        Block block = splitter.take(kLongValueMapSize);
        if (loadU16(block.data()) == kNoColumn) break;
        parts.longValueMaps.push_back(std::move(block));
    }
    return parts;
}

Named newColumn(const File& file, std::string name, ColumnType type, std::uint16_t bytes,
                std::uint8_t flags) {
    const Layout& layout = file.layout();
    Named column{Block(layout.columnSize, 0), std::move(name)};
    Block& block = column.block;
    block[0] = static_cast<std::uint8_t>(type);
    block[layout.columnFlags] = flags;
    storeU16(&block[layout.columnLength], columnLength(type, bytes));
    storeU16(&block[layout.columnSortOrder], file.sortOrder().lcid);
    if (layout.version == Version::kJet4) {
        storeU32(&block[kColumnConstantAt], kDefinitionConstant);
        block[layout.columnSortOrder + 3] = file.sortOrder().version;
    } else {
        storeU16(&block[kColumnCodePage], file.codePage());
    }
    return column;
}

std::uint16_t columnNumber(const Layout& layout, const Named& column) {
    return loadU16(&column.block[layout.columnNumber]);
}

bool isLongColumn(const Named& column) {
    const ColumnType type = typeOf(column.block);
    return type == ColumnType::kMemo || type == ColumnType::kOle;
}

// Memo and OLE values come behind the others in a row of a user table, whatever the order of the columns.
void addColumns(const File& file, DefinitionParts& parts, std::vector<Named> columns) {
    const Layout& layout = file.layout();
    const bool system = parts.fixed[layout.defTableKind] == kTableKindSystem;
    Places places;
    for (const Named& column : columns) {
        const bool isFixed = (column.block[layout.columnFlags] & kColumnFixed) != 0;
        if (!isFixed && !isLongColumn(column)) ++places.variableLong;
    }
    for (Named& column : columns)
        placeColumn(layout, system, places, column.block);
    parts.columns = std::move(columns);
    storeU16(&parts.fixed[layout.defMaxColumns], places.number);
    storeU16(&parts.fixed[layout.defVariableColumns], std::max(places.variable, places.variableLong));
}

void addLongValueMaps(DefinitionParts& parts, std::uint16_t number, RowPointer pages, RowPointer freePages) {
    Block block(kLongValueMapSize, 0);
    storeU16(block.data(), number);
    storeRowPointer(&block[2], pages);
    storeRowPointer(&block[6], freePages);
    parts.longValueMaps.push_back(std::move(block));
}

void setTableMaps(const Layout& layout, DefinitionParts& parts, RowPointer owned, RowPointer freeSpace) {
    storeRowPointer(&parts.fixed[layout.defOwnedPages], owned);
    storeRowPointer(&parts.fixed[layout.defFreeSpacePages], freeSpace);
}

std::uint32_t addRealIndex(const Layout& layout, DefinitionParts& parts, const RealIndexPart& index) {
    Block block(layout.realIndexSize, 0);
    for (std::size_t i = 0; i < kIndexColumnSlots; ++i) {
        std::uint8_t* slot = &block[layout.realIndexColumns + 3 * i];
        storeU16(slot, i < index.columns.size() ? index.columns[i].first : kNoColumn);
        slot[2] = i < index.columns.size() && !index.columns[i].second ? 1 : 0;
    }
    storeRowPointer(&block[layout.realIndexPages], index.pages);
    storeU32(&block[layout.realIndexRoot], index.root);
    block[layout.realIndexFlags] = index.flags;
    if (layout.version == Version::kJet4) {
        storeU32(block.data(), kRealIndexConstant);
        block[layout.realIndexFlags] |= kIndexJet4;
    }
    parts.realIndexes.push_back(std::move(block));
    parts.statistics.emplace_back(layout.statisticsSize, std::uint8_t{0});
    return static_cast<std::uint32_t>(parts.realIndexes.size() - 1);
}

void addLogicalIndex(const Layout& layout, DefinitionParts& parts, const std::string& name,
                     std::uint32_t real, std::uint8_t kind) {
    std::uint32_t number = real;
    for (const Named& other : parts.logicalIndexes) {
        const std::uint32_t taken = loadU32(&other.block[layout.logicalIndexNumber]);
        if (taken != 0xFFFFFFFF) number = std::max(number, taken + 1);
    }
    Block block(layout.logicalIndexSize, 0);
    if (layout.version == Version::kJet4) storeU32(block.data(), kDefinitionConstant);
    storeU32(&block[layout.logicalIndexNumber], number);
    storeU32(&block[layout.logicalIndexReal], real);
    storeU32(&block[layout.logicalIndexOtherNumber], 0xFFFFFFFF);
    block[layout.logicalIndexUpdateRule] = kNoRelationRule;
    block[layout.logicalIndexDeleteRule] = kNoRelationRule;
    block[layout.logicalIndexKind] = kind;
    parts.logicalIndexes.push_back({std::move(block), name});
}

void storeDefinition(File& file, PageAllocator& allocator, std::vector<std::uint32_t> pages,
                     DefinitionParts parts) {
    const Layout& layout = file.layout();
    storeCounts(layout, parts);
    sortLogicalIndexes(parts);
    const Block bytes = joined(layout, parts);
    const std::size_t perPage = layout.pageSize - kDefinitionContinuation;
    const std::size_t count = (bytes.size() - kDefinitionContinuation + perPage - 1) / perPage;
    while (pages.size() < count)
        pages.push_back(allocator.allocate());
    for (std::size_t i = count; i < pages.size(); ++i)
        allocator.release(pages[i]);
    for (std::size_t i = 0; i < count; ++i) {
        const std::shared_ptr<Page> page = file.replace(pages[i]);
        // What the string says of its own page header is overwritten by that header.
        const std::size_t from = kDefinitionContinuation + i * perPage;
        const std::size_t size = std::min(perPage, bytes.size() - from);
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(from), size,
                    page->begin() + kDefinitionContinuation);
        storePageHead(layout, *page, kDefinitionContinuation + size, i + 1 < count ? pages[i + 1] : 0);
    }
}

}  // namespace wendel::jet
