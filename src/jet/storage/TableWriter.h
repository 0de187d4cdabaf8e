#pragma once
// Changes the rows of one table, with everything that hangs on them: indexes, long values, page maps, row
// count and counting column. Knows no SQL; whole statements, waiting and undoing are the caller's
// File::Writing.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/PageAllocator.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// Use inside File::Writing of the same file only. A function that throws may have done a part of its work:
// the caller lets its Writing go without commit() and calls forget(). A writer can serve many statements, as
// long as the table's definition stays the same; forget() also belongs behind every other rollback.
//
// Fehler: 3022 duplicate key, 3027 an index whose order is not known (before any change), 3047 row or key too
// large, 3049 damaged, 3058 Null in the primary key, 3163 text or bytes too long for the column, 3314 Null in
// a required index, 3349 number outside the column's range, 3421 a value of the wrong kind.
class TableWriter {
  public:
    // The file must outlive the writer. Writers of one file may share an allocator. Throws Fehler 3049 when
    // the table's definition cannot be written by.
    TableWriter(File& file, std::shared_ptr<const TableDef> table,
                std::shared_ptr<PageAllocator> allocator = nullptr);
    ~TableWriter();
    TableWriter(const TableWriter&) = delete;
    TableWriter& operator=(const TableWriter&) = delete;

    // The next number of the counting column, noted as given out.
    std::int32_t reserveAutonumber();
    // The number that the last insert() or reserveAutonumber() gave out or was given; 0 before.
    std::int32_t lastAutonumber() const;

    // One value per column, in the order of TableDef::columns and of the column's kind, as RowValues gives
    // them; texts and bytes must not lie in pages of the file. Null in the counting column (number or GUID)
    // takes the next one; a larger number than any before raises it. Characters that a Jet 3 file lacks
    // become "?", Null in Yes/No means No. Returns the row's identity.
    RowId insert(std::span<const Cell> values);

    // Gives the columns (positions in TableDef::columns) new values; the row keeps its identity. Throws
    // Fehler 3167 when there is no such row.
    void update(RowId id, std::span<const std::size_t> columns, std::span<const Cell> values);

    // Throws Fehler 3167 when there is no such row. The identity can be given to another row later.
    void remove(RowId id);

    // Drops what is remembered between the calls (pages with room, places in indexes).
    void forget();

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace wendel::jet
