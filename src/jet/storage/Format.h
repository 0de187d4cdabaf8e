#pragma once
// Where things lie in the pages of a Jet database file: every offset and size once, for both versions, shared
// by all that read a page and by the tests. Jet 4 is the .mdb of Access 2000 to 2003, Jet 3 that of 95
// and 97. What the fields mean is told at those who read them.

#include <cstddef>
#include <cstdint>

namespace wendel::jet {

enum class Version : std::uint8_t { kJet3 = 0, kJet4 = 1 };

// Byte 0 of a page.
enum class PageType : std::uint8_t {
    kHeader = 0,
    kData = 1,
    kDefinition = 2,
    kIndexNode = 3,
    kIndexLeaf = 4,
    kUsageBitmap = 5,
};

struct Layout {
    Version version;
    std::uint32_t pageSize;

    // Header page, after unmasking.
    std::size_t maskedLength;
    std::size_t headerSortOrder;

    // Data pages.
    std::size_t dataSlotCount;
    std::size_t dataSlots;

    // Table definitions. The string of a definition includes the header of its first page; later pages add
    // what lies behind kDefinitionContinuation.
    std::size_t defRowCount;
    std::size_t defLastAutonumber;
    std::size_t defTableKind;
    std::size_t defMaxColumns;
    std::size_t defVariableColumns;
    std::size_t defColumns;
    std::size_t defLogicalIndexes;
    std::size_t defRealIndexes;
    std::size_t defOwnedPages;
    std::size_t defFreeSpacePages;
    std::size_t defVariablePart;

    // One block of each kind in the variable part, and the fields within it.
    std::size_t statisticsSize;
    std::size_t columnSize;
    std::size_t columnNumber;
    std::size_t columnVariableIndex;
    std::size_t columnSortOrder;
    std::size_t columnFlags;
    std::size_t columnFixedOffset;
    std::size_t columnLength;
    std::size_t realIndexSize;
    std::size_t realIndexColumns;
    std::size_t realIndexPages;
    std::size_t realIndexRoot;
    std::size_t realIndexFlags;
    std::size_t logicalIndexSize;
    std::size_t logicalIndexReal;
    std::size_t logicalIndexKind;
    std::size_t nameLengthSize;

    // Rows: the column count in front of the fixed part.
    std::size_t rowCountSize;

    // Index pages.
    std::size_t indexPrevious;
    std::size_t indexNext;
    std::size_t indexTail;
    std::size_t indexPrefixLength;
    std::size_t indexMask;
    std::size_t indexMaskSize;
    std::size_t indexEntries;
};

inline constexpr Layout kJet4Layout = {
    .version = Version::kJet4,
    .pageSize = 4096,
    .maskedLength = 128,
    .headerSortOrder = 0x6E,
    .dataSlotCount = 12,
    .dataSlots = 14,
    .defRowCount = 16,
    .defLastAutonumber = 20,
    .defTableKind = 40,
    .defMaxColumns = 41,
    .defVariableColumns = 43,
    .defColumns = 45,
    .defLogicalIndexes = 47,
    .defRealIndexes = 51,
    .defOwnedPages = 55,
    .defFreeSpacePages = 59,
    .defVariablePart = 63,
    .statisticsSize = 12,
    .columnSize = 25,
    .columnNumber = 5,
    .columnVariableIndex = 7,
    .columnSortOrder = 11,
    .columnFlags = 15,
    .columnFixedOffset = 21,
    .columnLength = 23,
    .realIndexSize = 52,
    .realIndexColumns = 4,
    .realIndexPages = 34,
    .realIndexRoot = 38,
    .realIndexFlags = 46,
    .logicalIndexSize = 28,
    .logicalIndexReal = 8,
    .logicalIndexKind = 23,
    .nameLengthSize = 2,
    .rowCountSize = 2,
    .indexPrevious = 12,
    .indexNext = 16,
    .indexTail = 20,
    .indexPrefixLength = 24,
    .indexMask = 27,
    .indexMaskSize = 453,
    .indexEntries = 480,
};

inline constexpr Layout kJet3Layout = {
    .version = Version::kJet3,
    .pageSize = 2048,
    .maskedLength = 126,
    .headerSortOrder = 0x3A,
    .dataSlotCount = 8,
    .dataSlots = 10,
    .defRowCount = 12,
    .defLastAutonumber = 16,
    .defTableKind = 20,
    .defMaxColumns = 21,
    .defVariableColumns = 23,
    .defColumns = 25,
    .defLogicalIndexes = 27,
    .defRealIndexes = 31,
    .defOwnedPages = 35,
    .defFreeSpacePages = 39,
    .defVariablePart = 43,
    .statisticsSize = 8,
    .columnSize = 18,
    .columnNumber = 1,
    .columnVariableIndex = 3,
    .columnSortOrder = 9,
    .columnFlags = 13,
    .columnFixedOffset = 14,
    .columnLength = 16,
    .realIndexSize = 39,
    .realIndexColumns = 0,
    .realIndexPages = 30,
    .realIndexRoot = 34,
    .realIndexFlags = 38,
    .logicalIndexSize = 20,
    .logicalIndexReal = 4,
    .logicalIndexKind = 19,
    .nameLengthSize = 1,
    .rowCountSize = 1,
    .indexPrevious = 8,
    .indexNext = 12,
    .indexTail = 16,
    .indexPrefixLength = 20,
    .indexMask = 22,
    .indexMaskSize = 226,
    .indexEntries = 248,
};

// Fields that lie at the same place in both versions.
inline constexpr std::size_t kHeaderSignature = 4;
inline constexpr std::size_t kHeaderVersion = 0x14;
inline constexpr std::size_t kHeaderMasked = 0x18;
inline constexpr std::size_t kHeaderCodePage = 0x3C;
inline constexpr std::size_t kHeaderPageKey = 0x3E;
inline constexpr std::size_t kPageOwner = 4;
inline constexpr std::size_t kDefinitionNext = 4;
inline constexpr std::size_t kDefinitionLength = 8;
inline constexpr std::size_t kDefinitionContinuation = 8;
inline constexpr std::size_t kBitmapPageBits = 4;
// Jet 4 alone: may text be stored compressed.
inline constexpr std::size_t kColumnCompression = 16;
inline constexpr std::size_t kLongValueMapSize = 10;
inline constexpr std::size_t kIndexColumnSlots = 10;

inline constexpr std::uint32_t kMaxPages = 524288;
inline constexpr std::uint32_t kCatalogPage = 2;
// The owner field of pages with long values: "LVAL".
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;

// A row slot: the start of the row and what it holds.
inline constexpr std::uint16_t kSlotOffsetMask = 0x1FFF;
inline constexpr std::uint16_t kSlotPointer = 0x4000;
inline constexpr std::uint16_t kSlotTarget = 0x8000;
inline constexpr std::uint16_t kSlotDeleted = kSlotPointer | kSlotTarget;

inline constexpr std::uint8_t kUsageInline = 0;
inline constexpr std::uint8_t kUsageReference = 1;

// The reference that a row holds for a Memo or OLE value.
inline constexpr std::size_t kLongValueReferenceSize = 12;
inline constexpr std::uint32_t kLongValueInline = 0x80000000;
inline constexpr std::uint32_t kLongValueSingle = 0x40000000;
inline constexpr std::uint32_t kLongValueLengthMask = 0x3FFFFFFF;

// First byte of each column's part of an index key.
inline constexpr std::uint8_t kKeyNullAscending = 0x00;
inline constexpr std::uint8_t kKeyValueAscending = 0x7F;
inline constexpr std::uint8_t kKeyValueDescending = 0x80;
inline constexpr std::uint8_t kKeyNullDescending = 0xFF;

// Behind the key of every index entry: page (3 bytes) and slot of the row; in nodes also the child page.
inline constexpr std::size_t kEntryRowIdSize = 4;
inline constexpr std::size_t kEntryChildSize = 4;

}  // namespace wendel::jet
