#pragma once
// Rows of one table: all of them in the order of their places, or one by its place. Moved rows are followed
// to where they lie now, but keep the identity of their home.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "jet/storage/Row.h"

namespace wendel::jet {

// Use: TableScan scan(file, table); while (scan.next()) use(scan.row());
class TableScan {
  public:
    // file and table must outlive the scan.
    TableScan(File& file, const TableDef& table);

    // Steps to the next row; false behind the last one. Pages that are listed but belong to something else
    // are passed over. Throws Fehler 3049 for damaged pages.
    bool next();
    const RowView& row() const { return row_; }

  private:
    bool nextPage();

    File* file_;
    const TableDef* table_;
    std::vector<std::uint32_t> pages_;
    std::size_t pageIndex_ = 0;
    PagePtr page_;
    std::uint32_t pageNumber_ = 0;
    unsigned slot_ = 0, slotCount_ = 0;
    RowView row_;
};

// Puts the row with this identity into `row`; false when there is no such row in this table (any more).
// Throws Fehler 3049 when it is damaged.
bool fetchRow(File& file, const TableDef& table, RowId id, RowView& row);

}  // namespace wendel::jet
