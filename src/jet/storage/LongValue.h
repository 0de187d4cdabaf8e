#pragma once
// Long values: Memo and OLE contents, which lie in the row itself, in one row of another page, or in a chain
// of pages.

#include <cstdint>
#include <span>
#include <vector>

#include "jet/storage/File.h"

namespace wendel::jet {

// The stored bytes of one long value, and what keeps them alive.
struct LongValue {
    std::span<const std::uint8_t> bytes;
    PagePtr page;
    std::vector<std::uint8_t> joined;
};

// Follows the reference that a row holds for the value. For a value inside the row the bytes lie in
// `reference` itself. Throws Fehler 3049 when the value is damaged.
LongValue loadLongValue(File& file, std::span<const std::uint8_t> reference);

}  // namespace wendel::jet
