#pragma once
// Where things lie in the pages of a Jet database file: every offset and size once, for both versions, shared
// by all that read a page and by the tests. Jet 4 is the .mdb of Access 2000 to 2003, Jet 3 that of 95
// and 97. What the fields mean is told at those who read them.

#include <array>
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
    // Free pages that held these.
    kFreedDefinition = 8,
    kFreedData = 9,
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
    std::size_t maxRowSize;

    // Bytes of bits in a new page map.
    std::size_t usageMapBytes;

    // Long values: the most that one row of a long-value page holds as a whole value, and as a part of a
    // chain.
    std::size_t maxSingleValue;
    std::size_t chainPart;

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
    std::size_t columnSecondNumber;
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
    std::size_t logicalIndexNumber;
    std::size_t logicalIndexReal;
    std::size_t logicalIndexOtherNumber;
    std::size_t logicalIndexOtherTable;
    std::size_t logicalIndexUpdateRule;
    std::size_t logicalIndexDeleteRule;
    std::size_t logicalIndexKind;
    std::size_t nameLengthSize;

    // Rows: the column count in front of the fixed part.
    std::size_t rowCountSize;

    // Index pages.
    std::size_t indexPrevious;
    std::size_t indexNext;
    std::size_t indexTail;
    std::size_t indexPrefixLength;
    std::size_t indexPrefixSize;
    std::size_t indexLevel;
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
    .maxRowSize = 4060,
    .usageMapBytes = 64,
    .maxSingleValue = 4076,
    .chainPart = 4072,
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
    .columnSecondNumber = 9,
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
    .logicalIndexNumber = 4,
    .logicalIndexReal = 8,
    .logicalIndexOtherNumber = 13,
    .logicalIndexOtherTable = 17,
    .logicalIndexUpdateRule = 21,
    .logicalIndexDeleteRule = 22,
    .logicalIndexKind = 23,
    .nameLengthSize = 2,
    .rowCountSize = 2,
    .indexPrevious = 12,
    .indexNext = 16,
    .indexTail = 20,
    .indexPrefixLength = 24,
    .indexPrefixSize = 2,
    .indexLevel = 26,
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
    .maxRowSize = 2012,
    .usageMapBytes = 128,
    .maxSingleValue = 2032,
    .chainPart = 2032,
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
    .columnSecondNumber = 5,
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
    .logicalIndexNumber = 0,
    .logicalIndexReal = 4,
    .logicalIndexOtherNumber = 9,
    .logicalIndexOtherTable = 13,
    .logicalIndexUpdateRule = 17,
    .logicalIndexDeleteRule = 18,
    .logicalIndexKind = 19,
    .nameLengthSize = 1,
    .rowCountSize = 1,
    .indexPrevious = 8,
    .indexNext = 12,
    .indexTail = 16,
    .indexPrefixLength = 20,
    .indexPrefixSize = 1,
    .indexLevel = 21,
    .indexMask = 22,
    .indexMaskSize = 226,
    .indexEntries = 248,
};

// Fields that lie at the same place in both versions.
inline constexpr std::size_t kHeaderSignature = 4;
inline constexpr std::size_t kHeaderVersion = 0x14;
inline constexpr std::size_t kHeaderMasked = 0x18;
inline constexpr std::array<std::uint8_t, 4> kHeaderMaskKey = {0xC7, 0xDA, 0x39, 0x6B};
inline constexpr std::size_t kHeaderCodePage = 0x3C;
inline constexpr std::size_t kHeaderPageKey = 0x3E;
inline constexpr std::size_t kDataFreeSpace = 2;
inline constexpr std::size_t kPageOwner = 4;
// Free bytes of the page in Jet 4, the letters "VC" in Jet 3.
inline constexpr std::size_t kDefinitionFreeSpace = 2;
inline constexpr std::uint16_t kJet3DefinitionMark = 0x4356;
inline constexpr std::size_t kDefinitionNext = 4;
inline constexpr std::size_t kDefinitionLength = 8;
inline constexpr std::size_t kDefinitionContinuation = 8;
inline constexpr std::size_t kBitmapPageBits = 4;
// Jet 4 alone: constants in front of definitions, columns and logical indexes, and of real indexes; the
// number 1 that makes counting columns work; may text be stored compressed.
inline constexpr std::uint32_t kDefinitionConstant = 1625;
inline constexpr std::uint32_t kRealIndexConstant = 1923;
inline constexpr std::size_t kDefinitionConstantAt = 12;
inline constexpr std::size_t kDefinitionCounting = 24;
inline constexpr std::size_t kColumnConstantAt = 1;
inline constexpr std::size_t kColumnCompression = 16;
// Jet 3 alone: the code page behind a column's language.
inline constexpr std::size_t kColumnCodePage = 11;
inline constexpr std::size_t kLongValueMapSize = 10;
inline constexpr std::size_t kIndexColumnSlots = 10;
inline constexpr std::uint16_t kNoColumn = 0xFFFF;

inline constexpr std::uint8_t kTableKindUser = 'N', kTableKindSystem = 'S';
// Flags of columns, of real indexes (the last only, but always, in Jet 4), and kinds of logical indexes.
inline constexpr std::uint8_t kColumnFixed = 0x01, kColumnUsual = 0x02, kColumnAutonumber = 0x04,
                              kColumnAutoGuid = 0x40;
inline constexpr std::uint8_t kIndexUnique = 0x01, kIndexIgnoreNulls = 0x02, kIndexRequired = 0x08,
                              kIndexJet4 = 0x80;
inline constexpr std::uint8_t kIndexKindOrdinary = 0, kIndexKindPrimary = 1, kIndexKindForeign = 2;
// Update and delete rule of indexes that belong to no relation.
inline constexpr std::uint8_t kNoRelationRule = 4;

inline constexpr std::uint32_t kMaxPages = 524288;
inline constexpr std::uint32_t kCatalogPage = 2;
// The owner field of pages with long values: "LVAL".
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;

// A row slot: the start of the row and what it holds.
inline constexpr std::uint16_t kSlotOffsetMask = 0x1FFF;
inline constexpr std::uint16_t kSlotPointer = 0x4000;
inline constexpr std::uint16_t kSlotTarget = 0x8000;
inline constexpr std::uint16_t kSlotDeleted = kSlotPointer | kSlotTarget;
// The identity of a row has one byte for its slot.
inline constexpr unsigned kMaxSlots = 255;
// What the home of a moved row holds, and the head of each part of a chained long value.
inline constexpr std::size_t kRowPointerSize = 4;

// A Decimal: sign and 128 bits.
inline constexpr std::uint16_t kDecimalSize = 17;
inline constexpr std::uint8_t kDecimalNegative = 0x80;

inline constexpr std::uint8_t kUsageInline = 0;
inline constexpr std::uint8_t kUsageReference = 1;
// Kind and first page of an inline map, kind of a map of references.
inline constexpr std::size_t kUsageInlineHead = 5;
inline constexpr std::size_t kUsageReferenceHead = 1;
// An inline map grows in steps of this many bytes.
inline constexpr std::size_t kUsageGrowth = 4;
// The map of free pages: a row of page 1, which owns itself.
inline constexpr std::uint32_t kGlobalMapPage = 1;

// The reference that a row holds for a Memo or OLE value.
inline constexpr std::size_t kLongValueReferenceSize = 12;
inline constexpr std::uint32_t kLongValueInline = 0x80000000;
inline constexpr std::uint32_t kLongValueSingle = 0x40000000;
inline constexpr std::uint32_t kLongValueLengthMask = 0x3FFFFFFF;
// Values up to this many stored bytes lie in the row itself.
inline constexpr std::size_t kMaxInlineValue = 64;

// First byte of each column's part of an index key.
inline constexpr std::uint8_t kKeyNullAscending = 0x00;
inline constexpr std::uint8_t kKeyValueAscending = 0x7F;
inline constexpr std::uint8_t kKeyValueDescending = 0x80;
inline constexpr std::uint8_t kKeyNullDescending = 0xFF;

// Behind the key of every index entry: page (3 bytes) and slot of the row; in nodes also the child page.
inline constexpr std::size_t kEntryRowIdSize = 4;
inline constexpr std::size_t kEntryChildSize = 4;

// Index pages: the bytes behind the last entry.
inline constexpr std::size_t kIndexFreeBytes = 2;
// Statistics of an index in the definition: entries at the last build, and distinct keys.
inline constexpr std::size_t kStatisticsEntries = 0;
inline constexpr std::size_t kStatisticsKeys = 4;

}  // namespace wendel::jet
