#pragma once
// Walks through one index in the order of its keys, in both directions, within a range. Reads only the pages
// on the way down and the leaves in the range; the rows themselves are fetched by their ids (fetchRow).

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "jet/storage/IndexPage.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/TableDef.h"
#include "jet/storage/Values.h"

namespace wendel::jet {

// Use: IndexCursor c(file, table, index); c.seek(range); while (c.next()) fetchRow(file, table, c.rowId(),
// row);
class IndexCursor {
  public:
    enum class Direction { kForward, kBackward };

    // All three must outlive the cursor.
    IndexCursor(File& file, const TableDef& table, const Index& index);

    // Prepares for the entries of the range, from its lower end in key order, or from its upper end
    // backwards. Call next() for the first one. Throws Fehler 3049 when the index is damaged, as next() does.
    void seek(const KeyRange& range, Direction direction = Direction::kForward);

    bool next();
    RowId rowId() const { return rowId_; }
    // Key bytes of the current entry, all columns, without the row id; valid until the next call.
    std::string_view key() const { return key_; }

  private:
    void descend(std::string_view bound, bool strictly, bool toLast);
    bool step(std::uint32_t neighbour);
    bool isInside(std::size_t start) const;
    void takeEntry(std::size_t start);

    File* file_;
    const TableDef* table_;
    const Index* index_;
    KeyRange range_;
    Direction direction_ = Direction::kForward;
    IndexPage leaf_;
    std::size_t position_ = 0;  // forward: start of the next entry; backward: its end
    std::uint32_t leavesVisited_ = 0;
    bool done_ = true;
    std::string key_;
    RowId rowId_ = 0;
};

}  // namespace wendel::jet
