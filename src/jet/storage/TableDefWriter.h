#pragma once
// The definition of a table as bytes: made new, taken apart, changed and put back on its pages. The
// counterpart of TableDef, which is what all others read. Used by Schema and Compact; the row count, the
// counting column and the statistics within a stored definition are changed in place by TableWriter and
// IndexWriter.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// The blocks of a definition, each as it is stored, but names as UTF-8.
struct DefinitionParts {
    using Block = std::vector<std::uint8_t>;
    struct Named {
        Block block;
        std::string name;
    };

    Block fixed;  // the counts of blocks in it are those at the last store or split
    std::vector<Block> statistics, realIndexes, longValueMaps;
    std::vector<Named> columns, logicalIndexes;
};

// A definition without columns and indexes, to be filled.
DefinitionParts newDefinition(const Layout& layout, bool system);

// Throws Fehler 3049 when the definition is damaged.
DefinitionParts splitDefinition(const File& file, const DefinitionBytes& definition);

// The descriptor of a column without its places. `bytes` is the length of a Text, Binary or unknown column in
// bytes; other types have their own.
DefinitionParts::Named newColumn(const File& file, std::string name, ColumnType type, std::uint16_t bytes,
                                 std::uint8_t flags);

// The number under which a column descriptor has been placed, and whether it lists pages of long values.
std::uint16_t columnNumber(const Layout& layout, const DefinitionParts::Named& column);
bool isLongColumn(const DefinitionParts::Named& column);

// Adds all columns of a new table at once, giving each its number and its place in the rows. Throws Fehler
// 3190 when a row could not hold the fixed ones.
void addColumns(const File& file, DefinitionParts& parts, std::vector<DefinitionParts::Named> columns);

void addLongValueMaps(DefinitionParts& parts, std::uint16_t columnNumber, RowPointer pages,
                      RowPointer freePages);
void setTableMaps(const Layout& layout, DefinitionParts& parts, RowPointer owned, RowPointer freeSpace);

struct RealIndexPart {
    std::vector<std::pair<std::uint16_t, bool>> columns;  // column number, descending; at most 10
    std::uint8_t flags = 0;                               // kIndexUnique...
    RowPointer pages;
    std::uint32_t root = 0;
};
// Returns the number of the new tree.
std::uint32_t addRealIndex(const Layout& layout, DefinitionParts& parts, const RealIndexPart& index);
// The logical index gets the number of its tree where no other has it.
void addLogicalIndex(const Layout& layout, DefinitionParts& parts, const std::string& name,
                     std::uint32_t real, std::uint8_t kind);

// Writes the definition to these pages, the first of which stays its beginning; takes more pages or gives
// back those that are no longer needed. Only inside File::Writing.
void storeDefinition(File& file, PageAllocator& allocator, std::vector<std::uint32_t> pages,
                     DefinitionParts parts);

}  // namespace wendel::jet
