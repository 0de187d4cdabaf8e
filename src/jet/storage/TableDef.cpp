#include "jet/storage/TableDef.h"

#include <algorithm>
#include <span>
#include <utility>

#include "jet/storage/Bytes.h"
#include "jet/storage/TextCoding.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr SortOrder kGeneral = {0x0409, 0};
constexpr std::uint16_t kWindows1252 = 1252;

// More than any definition needs; what goes on longer runs in a circle.
constexpr std::size_t kMaxDefinitionPages = 256;
// Ten times what the engine allows; the memory that counts in a damaged file may claim stays small.
constexpr std::uint32_t kMaxIndexes = 320;

// The bytes of a definition taken one after the other.
class Reader {
  public:
    Reader(const File& file, std::span<const std::uint8_t> bytes, std::size_t position)
        : file_(file), bytes_(bytes), position_(position) {}

    const std::uint8_t* take(std::size_t size) {
        if (bytes_.size() < position_ || bytes_.size() - position_ < size)
            file_.throwDamaged("Tabellendefinition");
        const std::uint8_t* p = bytes_.data() + position_;
        position_ += size;
        return p;
    }

    std::string takeName() {
        const bool wide = file_.layout().nameLengthSize == 2;
        const std::size_t size = wide ? loadU16(take(2)) : *take(1);
        std::string name;
        const std::span<const std::uint8_t> raw(take(size), size);
        if (wide) {
            appendUtf16(raw, name);
        } else {
            appendStoredText(file_.version(), raw, name);
        }
        return name;
    }

    bool atEnd(std::size_t size) const { return bytes_.size() - position_ < size; }

  private:
    const File& file_;
    std::span<const std::uint8_t> bytes_;
    std::size_t position_;
};

struct RealIndex {
    std::vector<std::pair<std::uint16_t, bool>> columns;  // column number, descending
    RowPointer pages;
    std::uint32_t root = 0;
    std::uint8_t flags = 0;
};

TextOrder textOrder(const File& file, const Column& column) {
    if (!column.isText()) return TextOrder::kUnsupported;
    const SortOrder order = column.sortOrder.lcid != 0 ? column.sortOrder : file.sortOrder();
    if (order != kGeneral) return TextOrder::kUnsupported;
    if (file.version() == Version::kJet4) return TextOrder::kGeneralJet4;
    return file.codePage() == kWindows1252 ? TextOrder::kGeneralJet3 : TextOrder::kUnsupported;
}

Column parseColumn(const File& file, const std::uint8_t* p) {
    const Layout& layout = file.layout();
    Column column;
    column.type = isKnownType(p[0]) ? static_cast<ColumnType>(p[0]) : ColumnType::kUnknown;
    column.number = loadU16(p + layout.columnNumber);
    column.variableIndex = loadU16(p + layout.columnVariableIndex);
    column.fixedOffset = loadU16(p + layout.columnFixedOffset);
    column.length = loadU16(p + layout.columnLength);
    column.flags = p[layout.columnFlags];
    column.fixed = (column.flags & kColumnFixed) != 0;
    column.autonumber =
        (column.flags & (column.type == ColumnType::kGuid ? kColumnAutoGuid : kColumnAutonumber)) != 0;
    const bool jet4 = file.version() == Version::kJet4;
    column.compressible = jet4 && (p[kColumnCompression] & 1) != 0;
    if (column.type == ColumnType::kDecimal) {
        column.precision = p[layout.columnSortOrder];
        column.scale = p[layout.columnSortOrder + 1];
    } else {
        column.sortOrder.lcid = loadU16(p + layout.columnSortOrder);
        column.sortOrder.version = jet4 ? p[layout.columnSortOrder + 3] : std::uint8_t{0};
    }
    column.textOrder = textOrder(file, column);
    return column;
}

RealIndex parseRealIndex(const Layout& layout, const std::uint8_t* p) {
    RealIndex real;
    for (std::size_t i = 0; i < kIndexColumnSlots; ++i) {
        const std::uint8_t* slot = p + layout.realIndexColumns + 3 * i;
        if (loadU16(slot) != kNoColumn) real.columns.emplace_back(loadU16(slot), slot[2] != 1);
    }
    real.pages = loadRowPointer(p + layout.realIndexPages);
    real.root = loadU32(p + layout.realIndexRoot);
    real.flags = p[layout.realIndexFlags];
    return real;
}

bool keysAreKnown(const Column& column) {
    if (column.isText()) return column.textOrder != TextOrder::kUnsupported;
    return column.type != ColumnType::kOle && column.type != ColumnType::kUnknown;
}

Index combine(const Layout& layout, const TableDef& table, const RealIndex& real, const std::uint8_t* block) {
    const std::uint8_t kind = block[layout.logicalIndexKind];
    Index index;
    index.number = loadU32(block + layout.logicalIndexNumber);
    index.real = loadU32(block + layout.logicalIndexReal);
    index.relatedTable = loadU32(block + layout.logicalIndexOtherTable);
    index.unique = (real.flags & kIndexUnique) != 0;
    index.ignoreNulls = (real.flags & kIndexIgnoreNulls) != 0;
    index.primary = kind == kIndexKindPrimary;
    index.required = index.primary || (real.flags & kIndexRequired) != 0;
    index.foreign = kind == kIndexKindForeign;
    index.root = real.root;
    index.pages = real.pages;
    index.searchable = !real.columns.empty();
    for (const auto& [number, descending] : real.columns) {
        const auto column = std::find_if(table.columns.begin(), table.columns.end(),
                                         [n = number](const Column& c) { return c.number == n; });
        if (column == table.columns.end()) {
            index.searchable = false;
            break;
        }
        index.searchable = index.searchable && keysAreKnown(*column);
        index.columns.push_back({static_cast<std::size_t>(column - table.columns.begin()), descending});
    }
    return index;
}

void parseColumns(const File& file, Reader& reader, std::size_t count, TableDef& table) {
    for (std::size_t i = 0; i < count; ++i) {
        table.columns.push_back(parseColumn(file, reader.take(file.layout().columnSize)));
        const Column& column = table.columns.back();
        if (!column.fixed) table.firstVariableNumber = std::min(table.firstVariableNumber, column.number);
    }
    for (Column& column : table.columns)
        column.name = reader.takeName();
}

void parseIndexes(const File& file, Reader& reader, std::uint32_t realCount, std::uint32_t logicalCount,
                  TableDef& table) {
    const Layout& layout = file.layout();
    std::vector<RealIndex> real;
    for (std::uint32_t i = 0; i < realCount; ++i) {
        real.push_back(parseRealIndex(layout, reader.take(layout.realIndexSize)));
    }
    for (std::uint32_t i = 0; i < logicalCount; ++i) {
        const std::uint8_t* p = reader.take(layout.logicalIndexSize);
        const std::uint32_t number = loadU32(p + layout.logicalIndexReal);
        if (number >= real.size()) file.throwDamaged("Indexdefinition");
        table.indexes.push_back(combine(layout, table, real[number], p));
    }
    for (Index& index : table.indexes)
        index.name = reader.takeName();
}

void parseLongValueMaps(Reader& reader, TableDef& table) {
    while (!reader.atEnd(kLongValueMapSize)) {
        const std::uint8_t* p = reader.take(kLongValueMapSize);
        const std::uint16_t number = loadU16(p);
        if (number == kNoColumn) return;
        for (Column& column : table.columns) {
            if (column.number != number || !column.isLong()) continue;
            column.longValuePages = loadRowPointer(p + 2);
            column.longValueFreePages = loadRowPointer(p + 6);
        }
    }
}

template <class List>
auto findByName(const List& list, std::string_view name) {
    return std::find_if(list.begin(), list.end(),
                        [name](const auto& item) { return gleichOhneGrossKlein(item.name, name); });
}

}  // namespace

bool isKnownType(std::uint8_t code) { return (code >= 1 && code <= 12) || code == 15 || code == 16; }

std::uint16_t valueSize(ColumnType type) {
    switch (type) {
        case ColumnType::kByte: return 1;
        case ColumnType::kInteger: return 2;
        case ColumnType::kLong:
        case ColumnType::kSingle: return 4;
        case ColumnType::kCurrency:
        case ColumnType::kDouble:
        case ColumnType::kDate: return 8;
        case ColumnType::kGuid: return 16;
        case ColumnType::kDecimal: return kDecimalSize;
        default: return 0;
    }
}

RowPointer loadRowPointer(const std::uint8_t* p) { return {loadU24(p + 1), p[0]}; }

std::optional<std::size_t> TableDef::findColumn(std::string_view columnName) const {
    const auto found = findByName(columns, columnName);
    if (found == columns.end()) return std::nullopt;
    return static_cast<std::size_t>(found - columns.begin());
}

const Index* TableDef::findIndex(std::string_view indexName) const {
    const auto found = findByName(indexes, indexName);
    return found == indexes.end() ? nullptr : &*found;
}

const Index* TableDef::primaryKey() const {
    const auto found = std::find_if(indexes.begin(), indexes.end(), [](const Index& i) { return i.primary; });
    return found == indexes.end() ? nullptr : &*found;
}

DefinitionBytes loadDefinitionBytes(File& file, std::uint32_t page) {
    DefinitionBytes joined;
    std::vector<std::uint8_t>& bytes = joined.bytes;
    std::uint32_t number = page;
    do {  // page 0 ends the chain but is refused as its beginning
        const PagePtr part = file.page(number);
        if (joined.pages.size() == kMaxDefinitionPages ||
            (*part)[0] != static_cast<std::uint8_t>(PageType::kDefinition)) {
            file.throwDamaged("Tabellendefinition");
        }
        const std::size_t from = joined.pages.empty() ? 0 : kDefinitionContinuation;
        bytes.insert(bytes.end(), part->begin() + static_cast<std::ptrdiff_t>(from), part->end());
        joined.pages.push_back(number);
        number = loadU32(&(*part)[kDefinitionNext]);
    } while (number != 0);
    const std::uint32_t length = loadU32(&bytes[kDefinitionLength]);
    if (length < bytes.size()) bytes.resize(std::max<std::size_t>(length, file.layout().defVariablePart));
    return joined;
}

std::shared_ptr<const TableDef> loadTableDef(File& file, std::uint32_t page, std::string name) {
    const DefinitionBytes definition = loadDefinitionBytes(file, page);
    const Layout& layout = file.layout();
    const std::vector<std::uint8_t>& bytes = definition.bytes;
    auto table = std::make_shared<TableDef>();
    table->name = std::move(name);
    table->page = definition.pages.front();
    table->definitionPages = definition.pages;
    table->system = bytes[layout.defTableKind] == kTableKindSystem;
    table->rowCount = loadU32(&bytes[layout.defRowCount]);
    table->lastAutonumber = loadU32(&bytes[layout.defLastAutonumber]);
    table->maxColumns = loadU16(&bytes[layout.defMaxColumns]);
    table->variableColumns = loadU16(&bytes[layout.defVariableColumns]);
    table->ownedPages = loadRowPointer(&bytes[layout.defOwnedPages]);
    table->freeSpacePages = loadRowPointer(&bytes[layout.defFreeSpacePages]);

    const std::uint32_t realIndexes = loadU32(&bytes[layout.defRealIndexes]);
    const std::uint32_t logicalIndexes = loadU32(&bytes[layout.defLogicalIndexes]);
    if (realIndexes > kMaxIndexes || logicalIndexes > kMaxIndexes) file.throwDamaged("Tabellendefinition");
    Reader reader(file, bytes, layout.defVariablePart);
    reader.take(realIndexes * layout.statisticsSize);
    parseColumns(file, reader, loadU16(&bytes[layout.defColumns]), *table);
    parseIndexes(file, reader, realIndexes, logicalIndexes, *table);
    parseLongValueMaps(reader, *table);
    return table;
}

}  // namespace wendel::jet
