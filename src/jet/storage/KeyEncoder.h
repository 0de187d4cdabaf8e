#pragma once
// Values to index keys: the bytes by which an index finds and orders them. Leaves the walk through the index
// to IndexCursor.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "jet/storage/Row.h"
#include "jet/storage/TableDef.h"
#include "jet/storage/Values.h"

namespace wendel::jet {

// A value to look for: Null, whole numbers (Yes/No: -1 and 0), floating-point numbers and day numbers, text
// as UTF-8, and the values of the special types. Texts are not copied.
struct KeyCurrency {
    std::int64_t tenThousandths = 0;
};
struct KeyBytes {
    std::string_view bytes;
};
using KeyValue = std::variant<std::monostate, std::int64_t, double, std::string_view, KeyBytes, KeyCurrency,
                              Decimal, Guid>;

// The same as a value to write.
using Cell = KeyValue;

// The values of one row as cells, with the texts they refer to: what rowKey wants to see of rows in the file.
// Stays usable when the row's page is changed or given up. Not copied or moved: the cells point into it.
class RowValues {
  public:
    RowValues() = default;
    explicit RowValues(const RowView& row) { assign(row); }
    RowValues(const RowValues&) = delete;
    RowValues& operator=(const RowValues&) = delete;

    // Takes over all values; the cells of the row before are gone. Throws Fehler 3049 for a damaged row.
    void assign(const RowView& row);
    // Only these columns; the others read as Null.
    void assign(const RowView& row, std::span<const std::size_t> columns);
    // One per column in TableDef::columns order.
    std::span<const Cell> cells() const { return cells_; }

  private:
    void take(const RowView& row, std::size_t column);

    std::vector<Cell> cells_;
    std::vector<std::string> texts_;
};

// The key of a row's values for an index; nothing when the index has no entry for it (ignoreNulls and all of
// its columns Null). The values must be those of a row (as RowValues or columnValue give them). Never fails
// on unknown characters, they leave no trace. Throws Fehler 3421 for a value that the column cannot hold.
std::optional<std::string> rowKey(const TableDef& table, const Index& index,
                                  std::span<const Cell> valuesOfAllColumns);

// False when a text in the key has characters whose codes are not known: another writer's key differs then.
bool rowKeyIsKnown(const TableDef& table, const Index& index, std::span<const Cell> valuesOfAllColumns);

// Whether all indexed columns are Null: such rows are never duplicates of each other. Yes/No is never Null.
bool isAllNull(const TableDef& table, const Index& index, std::span<const Cell> valuesOfAllColumns);
// Whether any is: not allowed in a required index or a primary key.
bool hasNull(const TableDef& table, const Index& index, std::span<const Cell> valuesOfAllColumns);

// Appends the key of the value in a column of this type and direction. False (and nothing appended) when the
// column cannot hold exactly this value (a text for a number, 1.5 for a Long, 70000 for an Integer), or when
// a text has characters whose sort codes are not known.
bool appendKey(const Column& column, bool descending, const KeyValue& value, std::string& out);

// A stretch of an index: entries whose key begins with the bound's bytes count as equal to it. An empty bound
// is none.
struct KeyRange {
    std::string lower, upper;
    bool lowerInclusive = true, upperInclusive = true;
    // No row can fit, for example 1.5 in a column of whole numbers.
    bool empty = false;
};

// One end of a condition on a column.
struct KeyLimit {
    KeyValue value;
    bool inclusive = true;
};

// The stretch that holds all rows with: the first columns of the index equal to `equal`, and the column
// behind them between low and high (in the column's own order, whatever the direction of the index; Null is
// between nothing). Null in `equal` finds Nulls, which an index with ignoreNulls may not have. The stretch
// can be wider than asked (days within half a second, rounded limits, long memos, kinds of values that do not
// fit the column), never narrower; so the caller still checks its condition on each row. Needs
// index.searchable.
KeyRange keyRange(const TableDef& table, const Index& index, std::span<const KeyValue> equal,
                  const std::optional<KeyLimit>& low = std::nullopt,
                  const std::optional<KeyLimit>& high = std::nullopt);

}  // namespace wendel::jet
