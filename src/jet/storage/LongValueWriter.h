#pragma once
// Contents of one Memo or OLE column on their way out of the rows and back: stores a value and makes the
// reference that the row holds for it, and gives the place of a value back. Reading is LongValue.h's.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "jet/storage/File.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/RowPages.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// Short values lie in the row, longer ones in a row of a page that they share, the longest in a chain of
// pages. A column of another writer may have no maps of its pages: there is then no telling which pages have
// room, and values that do not lie in the row get chains, also short ones. Used inside File::Writing.
class LongValueWriter {
  public:
    // All three must outlive the writer.
    LongValueWriter(File& file, PageAllocator& allocator, const Column& column);

    // Appends what the row has to hold for a value of these stored bytes.
    void store(std::string_view bytes, std::string& reference);

    // Gives back what the reference of a row stands for. Where the pages do not show exactly such a value of
    // this column, nothing is given back: a damaged reference must not cost others their values.
    void release(std::span<const std::uint8_t> reference);

  private:
    struct LiveRow {
        PagePtr keepsAlive;
        std::span<const std::uint8_t> bytes;
    };

    RowPointer storeChain(std::string_view bytes);
    void releaseSingle(RowPointer place, std::size_t length);
    void releaseChain(RowPointer first, std::size_t length);
    std::optional<LiveRow> liveRow(RowPointer place);

    File& file_;
    RowPages pages_;
    const bool fixed_;
};

}  // namespace wendel::jet
