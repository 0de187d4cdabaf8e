#pragma once
// One row as it lies in its page: values are found and converted when they are asked for, without allocating
// per cell. A RowView keeps its page alive; it stays usable when its cursor moves on or the cache drops
// pages, but not longer than the File and the TableDef.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "jet/storage/TableDef.h"
#include "jet/storage/Values.h"

namespace wendel::jet {

class RowView {
  public:
    RowView() = default;

    RowId id() const { return id_; }
    const TableDef& table() const { return *table_; }

    // Columns are numbered by their position in TableDef::columns. The accessors below may be called only on
    // a column of a fitting type; on Null they give 0, false or nothing. All throw Fehler 3049 for a damaged
    // row.
    bool isNull(std::size_t column) const;

    bool asBool(std::size_t column) const;              // Yes/No
    std::int32_t asInteger(std::size_t column) const;   // Byte, Integer, Long
    std::int64_t asCurrency(std::size_t column) const;  // in ten thousandths
    double asDouble(std::size_t column) const;          // Single, Double, Date (day number as stored)
    Decimal asDecimal(std::size_t column) const;
    Guid asGuid(std::size_t column) const;
    // Text and Memo as UTF-8, Binary and OLE as bytes, appended to the caller's buffer. A damaged surrogate
    // becomes U+FFFD.
    void appendText(std::size_t column, std::string& out) const;
    void appendBytes(std::size_t column, std::string& out) const;

    // The row as stored, for those who write it anew. All throw Fehler 3049 for a damaged row.
    std::size_t columnCount() const { return columnCount_; }
    std::span<const std::uint8_t> mask() const { return {row_ + maskStart_, length_ - maskStart_}; }
    std::span<const std::uint8_t> fixedPart() const;
    std::size_t variableCount() const { return variableCount_; }
    std::span<const std::uint8_t> variableValue(std::size_t index) const;
    // The bytes of one column's value; nothing when the row has none. For Memo and OLE the reference.
    std::span<const std::uint8_t> storedValue(std::size_t column) const;

    // For the classes that find rows: take over the row that lies at [start, start + length) of the page.
    // Throws Fehler 3049 when its frame is damaged.
    void assign(File& file, const TableDef& table, PagePtr page, std::size_t start, std::size_t length,
                RowId id);

  private:
    std::span<const std::uint8_t> value(const Column& column) const;
    std::span<const std::uint8_t> valueOfSize(const Column& column, std::size_t size) const;
    bool present(const Column& column) const;
    std::size_t variableStart(std::size_t index) const;
    void locateVariableJet4();
    void locateVariableJet3();

    File* file_ = nullptr;
    const TableDef* table_ = nullptr;
    PagePtr page_;
    const std::uint8_t* row_ = nullptr;
    std::size_t length_ = 0;
    RowId id_ = 0;
    std::size_t columnCount_ = 0;
    std::size_t maskStart_ = 0;
    std::size_t variableCount_ = 0;
    std::size_t trailerStart_ = 0;             // end of what values may cover
    std::size_t lastStart_ = 0;                // Jet 4: place of the start of variable value 0
    std::array<std::uint16_t, 257> starts_{};  // Jet 3: unpacked starts, the end of data behind the last
};

// Bytes that a value of this column takes in the fixed part; 0 for Yes/No, which lies in the mask alone.
std::size_t fixedValueSize(const Column& column);

}  // namespace wendel::jet
