#pragma once
// One row being put together: takes the stored values of its columns, whether new or from an existing row,
// and gives the bytes that go into a page. Knows the frame of a row (counts, offsets, mask), not what values
// mean.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "jet/storage/File.h"
#include "jet/storage/Row.h"
#include "jet/storage/TableDef.h"

namespace wendel::jet {

// Use: clear() or load(), then set() for the columns that get values, then encode(). Kept for many rows, it
// allocates no more after the first.
class RowImage {
  public:
    // Both must outlive the image. Throws Fehler 3049 when the definition describes rows that no page can
    // hold.
    RowImage(const File& file, const TableDef& table);

    // A row of Nulls.
    void clear();
    // All of an existing row of the table, copied; also what it holds for columns that were deleted.
    void load(const RowView& row);

    void setNull(const Column& column);
    void setBoolean(const Column& column, bool value);
    // The value's stored bytes; for Memo and OLE the reference. Copied.
    void set(const Column& column, std::string_view bytes);

    // The bytes, valid until the next call. Throws Fehler 3047 when they are too many for a page.
    std::span<const std::uint8_t> encode();

  private:
    struct Value {
        std::size_t offset = 0, size = 0;  // in values_
    };

    void setPresent(const Column& column, bool present);
    std::size_t sizeOfValues() const;
    void encodeJet4();
    void encodeJet3();

    const File& file_;
    const std::size_t newColumnCount_;
    std::size_t newFixedSize_ = 0, newVariableCount_ = 0;

    std::size_t columnCount_ = 0;
    std::vector<std::uint8_t> mask_, fixed_;
    std::vector<Value> variable_;
    std::vector<std::uint8_t> values_;
    std::vector<std::size_t> starts_;  // of the variable values in the row, the end of data behind them
    std::vector<std::uint8_t> row_;
};

}  // namespace wendel::jet
