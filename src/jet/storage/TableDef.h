#pragma once
// The definition of one table: its columns, its indexes and where its pages are listed. Read once from the
// definition pages and not changed afterwards; what is in the rows is told by RowView.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/TextKeys.h"

namespace wendel::jet {

// The type codes of the file format.
enum class ColumnType : std::uint8_t {
    kBoolean = 1,
    kByte = 2,
    kInteger = 3,
    kLong = 4,
    kCurrency = 5,
    kSingle = 6,
    kDouble = 7,
    kDate = 8,
    kBinary = 9,
    kText = 10,
    kOle = 11,
    kMemo = 12,
    kGuid = 15,
    kDecimal = 16,
    kUnknown = 0xFF,  // any other code: such a column reads as Null
};

bool isKnownType(std::uint8_t code);
// Bytes of a value, where all of the type take as many; 0 for Yes/No, texts, bytes, Memo and OLE.
std::uint16_t valueSize(ColumnType type);

// A place in the file: page and row slot there. Page 0: nothing.
struct RowPointer {
    std::uint32_t page = 0;
    std::uint8_t slot = 0;
};
RowPointer loadRowPointer(const std::uint8_t* p);

struct Column {
    std::string name;
    ColumnType type = ColumnType::kUnknown;
    std::uint16_t number = 0;               // its bit in a row's null mask; unique, not its position
    std::uint16_t variableIndex = 0;        // its place among a row's variable values
    std::uint16_t fixedOffset = 0;          // counted behind the row's column count
    std::uint16_t length = 0;               // in bytes; Text in Jet 4: two per character; Memo and OLE: 0
    bool fixed = false;                     // the value lies in the fixed part, whatever its type
    bool autonumber = false;                // counting Long, or generated GUID
    bool compressible = false;              // text may be stored with one byte a character
    std::uint8_t flags = 0;                 // as stored; the ones above are taken from it
    std::uint8_t precision = 0, scale = 0;  // Decimal only
    SortOrder sortOrder;
    TextOrder textOrder = TextOrder::kUnsupported;  // Text and Memo only
    RowPointer longValuePages, longValueFreePages;  // Memo and OLE only; may be missing

    bool isText() const { return type == ColumnType::kText || type == ColumnType::kMemo; }
    bool isLong() const { return type == ColumnType::kMemo || type == ColumnType::kOle; }
};

struct IndexColumn {
    std::size_t column = 0;  // position in TableDef::columns
    bool descending = false;
};

// One index as users see it. Several can share one tree of pages (those of relations do).
struct Index {
    std::string name;
    std::vector<IndexColumn> columns;
    bool unique = false;
    bool ignoreNulls = false;  // has no entry for a row whose indexed columns are all Null
    bool required = false;     // no Nulls allowed
    bool primary = false;
    bool foreign = false;            // belongs to a relation
    std::uint32_t real = 0;          // number of the tree: position of its block and of its statistics
    std::uint32_t number = 0;        // by which the other table of a relation refers to it
    std::uint32_t relatedTable = 0;  // page of the other table's definition; 0: none
    std::uint32_t root = 0;
    RowPointer pages;
    // False when a text column has an order whose keys are not known: never search such an index.
    bool searchable = false;
};

struct TableDef {
    std::string name;  // as the catalog has it; empty when loaded by page
    std::uint32_t page = 0;
    std::vector<std::uint32_t> definitionPages;  // `page` and those that continue it
    bool system = false;
    std::uint32_t rowCount = 0;        // as noted in the file; system tables may show too few
    std::uint32_t lastAutonumber = 0;  // the next one is one more
    std::uint16_t maxColumns = 0;      // of a new row, deleted columns included
    std::uint16_t variableColumns = 0;
    // The smallest column number of a variable column: shorter rows have no variable part to look at.
    std::uint16_t firstVariableNumber = 0xFFFF;
    RowPointer ownedPages, freeSpacePages;
    std::vector<Column> columns;  // in display order
    std::vector<Index> indexes;   // in the order of their descriptors

    // Position by name without regard to case.
    std::optional<std::size_t> findColumn(std::string_view columnName) const;
    const Index* findIndex(std::string_view indexName) const;
    const Index* primaryKey() const;
};

// A definition as the file has it: joined from its pages, the header of the first one included.
struct DefinitionBytes {
    std::vector<std::uint8_t> bytes;
    std::vector<std::uint32_t> pages;  // at least one
};
// Throws Fehler 3049 when one of the pages is something else or the chain has no end.
DefinitionBytes loadDefinitionBytes(File& file, std::uint32_t page);

// The definition that starts on this page. Throws Fehler 3049 when it is damaged.
std::shared_ptr<const TableDef> loadTableDef(File& file, std::uint32_t page, std::string name);

}  // namespace wendel::jet
