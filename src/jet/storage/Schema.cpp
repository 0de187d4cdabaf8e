#include "jet/storage/Schema.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

#include "jet/storage/Bytes.h"
#include "jet/storage/CatalogWriter.h"
#include "jet/storage/DataPage.h"
#include "jet/storage/IndexBuild.h"
#include "jet/storage/TableBuilder.h"
#include "jet/storage/TextCoding.h"
#include "jet/storage/UsageMap.h"
#include "jet/storage/WriteErrors.h"
#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr char kSource[] = "Datenbankdatei";
constexpr std::size_t kMaxColumns = 255, kMaxIndexes = 32, kMaxNameLength = 64;
constexpr std::uint16_t kMaxSize = 255;  // characters of a Text, bytes of a Binary
constexpr std::uint8_t kMaxPrecision = 28;

// '|' is replaced by the name.
std::string_view description(int number) {
    switch (number) {
        case jetfehler::kTableExists: return "Die Tabelle '|' existiert bereits.";
        case jetfehler::kSystemTable: return "Die Systemtabelle '|' darf nicht geändert werden.";
        case jetfehler::kInvalidName:
            return "'|' ist kein zulässiger Name. Er darf nicht leer sein, nicht mit einem Leerzeichen "
                   "beginnen, "
                   "keine unzulässigen Zeichen enthalten und höchstens 64 Zeichen lang sein.";
        case jetfehler::kBracketsInName: return "Ungültige Verwendung von Klammern bei dem Namen '|'.";
        case jetfehler::kTooManyColumns: return "Zu viele Felder definiert.";
        case jetfehler::kDuplicateColumn: return "Das Feld '|' kann nicht mehr als einmal definiert werden.";
        case jetfehler::kWrongColumnType: return "Ungültiger Felddatentyp bei '|'.";
        case jetfehler::kTooManyIndexColumns: return "Ein Index kann höchstens 10 Felder haben.";
        case jetfehler::kInRelation:
            return "'|' kann nicht gelöscht werden, weil eine Beziehung darauf beruht.";
        case jetfehler::kPrimaryKeyExists: return "Es existiert bereits ein Primärschlüssel.";
        case jetfehler::kIndexExists: return "Der Index '|' existiert bereits.";
        case jetfehler::kNoTableToIndex: return "Die Tabelle oder Einschränkung '|' wurde nicht gefunden.";
        case jetfehler::kNoSuchIndex: return "Es gibt keinen Index '|' in der Tabelle.";
        case jetfehler::kNoSuchTable: return "Die Tabelle '|' existiert nicht.";
        case jetfehler::kWrongIndexColumns:
            return "Ungültige Felddefinition '|' in der Definition eines Index.";
        default: return "Die Tabelle '|' hat zu viele Indizes.";
    }
}

[[noreturn]] void throwSchemaError(int number, std::string_view name = {}) {
    throw Fehler(number, kSource, ersetzt(description(number), "|", name));
}

// A Jet 3 file cannot tell names apart by characters that its code page lacks.
bool canBeStored(const File& file, std::string_view name) {
    return file.version() != Version::kJet3 || ausWindows1252(nachWindows1252(name)) == name;
}

void checkName(const File& file, std::string_view name) {
    if (name.find_first_of("[]") != std::string_view::npos)
        throwSchemaError(jetfehler::kBracketsInName, name);
    const bool bad = name.empty() || name.front() == ' ' || utf16Length(name) > kMaxNameLength ||
                     !canBeStored(file, name) || std::any_of(name.begin(), name.end(), [](char c) {
                         return static_cast<std::uint8_t>(c) < 0x20 || c == '.' || c == '!' || c == '`';
                     });
    if (bad) throwSchemaError(jetfehler::kInvalidName, name);
}

bool isVariable(ColumnType type) {
    switch (type) {
        case ColumnType::kBinary:
        case ColumnType::kText:
        case ColumnType::kOle:
        case ColumnType::kMemo:
        case ColumnType::kDecimal: return true;
        default: return false;
    }
}

std::uint16_t sizeInBytes(const File& file, const ColumnSpec& spec) {
    const bool wide = spec.type == ColumnType::kText && file.version() == Version::kJet4;
    return static_cast<std::uint16_t>(wide ? 2 * spec.size : spec.size);
}

std::uint8_t columnFlags(const ColumnSpec& spec) {
    std::uint8_t flags = kColumnUsual;
    if (!isVariable(spec.type)) flags |= kColumnFixed;
    if (spec.autonumber) flags |= spec.type == ColumnType::kGuid ? kColumnAutoGuid : kColumnAutonumber;
    return flags;
}

void checkColumn(const File& file, const ColumnSpec& spec) {
    checkName(file, spec.name);
    const bool sized = spec.type == ColumnType::kText || spec.type == ColumnType::kBinary;
    const bool decimal = spec.type == ColumnType::kDecimal;
    const bool mayCount = spec.type == ColumnType::kLong || spec.type == ColumnType::kGuid;
    if (spec.type == ColumnType::kUnknown || (sized && (spec.size == 0 || spec.size > kMaxSize)) ||
        (decimal && (file.version() == Version::kJet3 || spec.precision == 0 ||
                     spec.precision > kMaxPrecision || spec.scale > spec.precision)) ||
        (spec.autonumber && !mayCount)) {
        throwSchemaError(jetfehler::kWrongColumnType, spec.name);
    }
}

DefinitionParts::Named columnOf(const File& file, const ColumnSpec& spec) {
    checkColumn(file, spec);
    DefinitionParts::Named column =
        newColumn(file, spec.name, spec.type, sizeInBytes(file, spec), columnFlags(spec));
    const Layout& layout = file.layout();
    if (spec.type == ColumnType::kDecimal) {
        const std::uint8_t numeric[] = {spec.precision, spec.scale, 0, 0};
        std::copy_n(numeric, 4, &column.block[layout.columnSortOrder]);
    }
    if (spec.compressible && layout.version == Version::kJet4) column.block[kColumnCompression] = 1;
    return column;
}

std::vector<DefinitionParts::Named> columnsOf(const File& file, std::span<const ColumnSpec> specs) {
    if (specs.empty() || specs.size() > kMaxColumns) throwSchemaError(jetfehler::kTooManyColumns);
    std::vector<DefinitionParts::Named> columns;
    bool counting = false;
    for (const ColumnSpec& spec : specs) {
        for (const DefinitionParts::Named& other : columns) {
            if (gleichOhneGrossKlein(other.name, spec.name))
                throwSchemaError(jetfehler::kDuplicateColumn, spec.name);
        }
        if (counting && spec.autonumber) throwSchemaError(jetfehler::kWrongColumnType, spec.name);
        counting = counting || spec.autonumber;
        columns.push_back(columnOf(file, spec));
    }
    return columns;
}

// The columns by their numbers.
RealIndexPart realIndexOf(const Layout& layout, const DefinitionParts& parts, const IndexSpec& spec) {
    if (spec.columns.size() > kIndexColumnSlots) throwSchemaError(jetfehler::kTooManyIndexColumns);
    if (spec.columns.empty()) throwSchemaError(jetfehler::kWrongIndexColumns, spec.name);
    RealIndexPart real;
    for (const auto& [name, descending] : spec.columns) {
        const auto column =
            std::find_if(parts.columns.begin(), parts.columns.end(),
                         [&wanted = name](const auto& c) { return gleichOhneGrossKlein(c.name, wanted); });
        if (column == parts.columns.end()) throwSchemaError(jetfehler::kWrongIndexColumns, name);
        if (column->block[0] == static_cast<std::uint8_t>(ColumnType::kOle)) {
            throwSchemaError(jetfehler::kWrongColumnType, name);
        }
        const std::uint16_t number = columnNumber(layout, *column);
        const auto twice = [number](const auto& other) { return other.first == number; };
        if (std::any_of(real.columns.begin(), real.columns.end(), twice)) {
            throwSchemaError(jetfehler::kWrongIndexColumns, name);
        }
        real.columns.emplace_back(number, descending);
    }
    if (spec.unique || spec.primary) real.flags |= kIndexUnique;
    if (spec.required || spec.primary) real.flags |= kIndexRequired;
    if (spec.ignoreNulls) real.flags |= kIndexIgnoreNulls;
    return real;
}

void addIndex(const File& file, TableBuilder& builder, const IndexSpec& spec) {
    checkName(file, spec.name);
    const Layout& layout = file.layout();
    const DefinitionParts& parts = builder.parts();
    for (const DefinitionParts::Named& other : parts.logicalIndexes) {
        if (gleichOhneGrossKlein(other.name, spec.name)) throwSchemaError(jetfehler::kIndexExists, spec.name);
        if (spec.primary && other.block[layout.logicalIndexKind] == kIndexKindPrimary) {
            throwSchemaError(jetfehler::kPrimaryKeyExists);
        }
    }
    if (parts.logicalIndexes.size() >= kMaxIndexes) throwSchemaError(jetfehler::kTooManyIndexes, spec.name);
    const std::uint32_t real = builder.addRealIndex(realIndexOf(layout, parts, spec));
    addLogicalIndex(layout, builder.parts(), spec.name, real,
                    spec.primary ? kIndexKindPrimary : kIndexKindOrdinary);
}

bool belongsToRelation(const Index& index) { return index.foreign || index.relatedTable != 0; }

bool hasRelations(const TableDef& table) {
    return std::any_of(table.indexes.begin(), table.indexes.end(), belongsToRelation);
}

std::shared_ptr<const TableDef> userTable(Database& database, const std::string& name, int errorIfMissing) {
    for (const CatalogEntry& entry : database.entries()) {
        if (entry.system && gleichOhneGrossKlein(entry.name, name))
            throwSchemaError(jetfehler::kSystemTable, name);
    }
    std::shared_ptr<const TableDef> table = database.table(name);
    if (!table) throwSchemaError(errorIfMissing, name);
    // What the database remembers can be from before earlier changes of the same statement.
    return loadTableDef(database.file(), table->page, table->name);
}

// Pages are given back only when they say themselves that they are what the map takes them for: other
// programs leave free pages in their maps, and by now such a page can be somebody else's.
void releaseMapped(File& file, PageAllocator& allocator, RowPointer map, std::uint32_t owner,
                   std::initializer_list<PageType> types) {
    if (!hasUsageMap(file, map)) return;
    for (const std::uint32_t number : readUsageMap(file, map)) {
        if (number >= file.pageCount()) continue;
        const PagePtr page = file.page(number);
        const bool ours =
            loadU32(&(*page)[kPageOwner]) == owner &&
            std::find(types.begin(), types.end(), static_cast<PageType>((*page)[0])) != types.end();
        if (ours) allocator.release(number);
    }
    dropUsageMap(file, allocator, map);
}

void releaseIndexPages(File& file, PageAllocator& allocator, const TableDef& table, const Index& index) {
    releaseMapped(file, allocator, index.pages, table.page, {PageType::kIndexNode, PageType::kIndexLeaf});
}

void releaseTablePages(File& file, PageAllocator& allocator, const TableDef& table) {
    for (const Column& column : table.columns) {
        if (!column.isLong()) continue;
        releaseMapped(file, allocator, column.longValuePages, kLongValueOwner, {PageType::kData});
        if (hasUsageMap(file, column.longValueFreePages))
            dropUsageMap(file, allocator, column.longValueFreePages);
    }
    std::vector<std::uint32_t> trees;
    for (const Index& index : table.indexes) {
        if (std::find(trees.begin(), trees.end(), index.real) != trees.end()) continue;
        trees.push_back(index.real);
        releaseIndexPages(file, allocator, table, index);
    }
    releaseMapped(file, allocator, table.ownedPages, table.page, {PageType::kData});
    if (hasUsageMap(file, table.freeSpacePages)) dropUsageMap(file, allocator, table.freeSpacePages);
    for (const std::uint32_t page : table.definitionPages)
        allocator.release(page);
}

// Blocks behind the removed one move up. Logical numbers go with the real ones, as other readers expect,
// unless other tables refer to them.
void removeRealIndex(const Layout& layout, DefinitionParts& parts, std::uint32_t real, bool renumber) {
    parts.realIndexes.erase(parts.realIndexes.begin() + real);
    parts.statistics.erase(parts.statistics.begin() + real);
    const auto lower = [&](DefinitionParts::Block& block, std::size_t field) {
        const std::uint32_t value = loadU32(&block[field]);
        if (value > real && value != 0xFFFFFFFF) storeU32(&block[field], value - 1);
    };
    for (DefinitionParts::Named& index : parts.logicalIndexes) {
        lower(index.block, layout.logicalIndexReal);
        if (renumber) lower(index.block, layout.logicalIndexNumber);
    }
}

}  // namespace

void createTable(Database& database, const std::string& name, std::span<const ColumnSpec> columns,
                 std::span<const IndexSpec> indexes) {
    File& file = database.file();
    checkName(file, name);
    const auto allocator = std::make_shared<PageAllocator>(file);
    CatalogWriter catalog(file, allocator);
    if (catalog.contains(name)) throwSchemaError(jetfehler::kTableExists, name);
    const std::uint32_t page = allocator->allocate();
    TableBuilder builder(file, *allocator, page, false);
    builder.addColumns(columnsOf(file, columns));
    for (const IndexSpec& index : indexes)
        addIndex(file, builder, index);
    builder.store();
    catalog.addTable(page, name, currentDay());
    catalog.allowUsers(page);
}

void createIndex(Database& database, const std::string& table, const IndexSpec& index) {
    File& file = database.file();
    const std::shared_ptr<const TableDef> before = userTable(database, table, jetfehler::kNoTableToIndex);
    PageAllocator allocator(file);
    TableBuilder builder(file, allocator, *before);
    addIndex(file, builder, index);
    builder.store();
    const std::shared_ptr<const TableDef> after = loadTableDef(file, before->page, before->name);
    const Index& added = *after->findIndex(index.name);
    if (!added.searchable) throwWriteError(jetfehler::kReadOnly);
    const IndexFaults faults = buildIndex(file, allocator, *after, added);
    if (faults.nulls)
        throwWriteError(added.primary ? jetfehler::kNullInPrimaryKey : jetfehler::kNullInIndex, index.name);
    if (faults.duplicates) throwWriteError(jetfehler::kDuplicateKey, index.name);
}

void dropTable(Database& database, const std::string& name) {
    File& file = database.file();
    const std::shared_ptr<const TableDef> table = userTable(database, name, jetfehler::kNoSuchTable);
    if (hasRelations(*table)) throwSchemaError(jetfehler::kInRelation, name);
    const auto allocator = std::make_shared<PageAllocator>(file);
    CatalogWriter(file, allocator).remove(table->page);
    releaseTablePages(file, *allocator, *table);
}

void dropIndex(Database& database, const std::string& table, const std::string& index) {
    File& file = database.file();
    const std::shared_ptr<const TableDef> definition = userTable(database, table, jetfehler::kNoSuchTable);
    const Index* dropped = definition->findIndex(index);
    if (dropped == nullptr) throwSchemaError(jetfehler::kNoSuchIndex, index);
    if (belongsToRelation(*dropped)) throwSchemaError(jetfehler::kInRelation, index);
    PageAllocator allocator(file);
    TableBuilder builder(file, allocator, *definition);
    auto& logical = builder.parts().logicalIndexes;
    std::erase_if(logical, [&](const auto& other) { return gleichOhneGrossKlein(other.name, index); });
    const bool shared =
        std::any_of(definition->indexes.begin(), definition->indexes.end(),
                    [&](const Index& other) { return &other != dropped && other.real == dropped->real; });
    if (!shared) {
        removeRealIndex(file.layout(), builder.parts(), dropped->real, !hasRelations(*definition));
        releaseIndexPages(file, allocator, *definition, *dropped);
    }
    builder.store();
}

}  // namespace wendel::jet
