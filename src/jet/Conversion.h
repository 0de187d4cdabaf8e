#pragma once
// Values into what a column holds, as the database does it for Insert, Update and fields: "12" into a number,
// a number into a text, a date from a text. One place for both, whatever the values come from.

#include <span>
#include <string>
#include <vector>

#include "jet/sql/JetType.h"
#include "jet/storage/KeyEncoder.h"
#include "jet/storage/TableDef.h"
#include "platform/Variant.h"

namespace wendel::jet {

// A value and what its kind does not tell: whether a number is a moment.
struct Given {
    KeyValue value;
    bool moment = false;
};
// A value of a column of SQLite, whole ten thousandths in the case of currency.
Given given(const KeyValue& value, sql::JetType type);
// Texts are not copied. Throws Fehler 3421 for an array.
Given given(const Variant& value);

// What a field shows of a value of this type. Whole numbers keep their column's type where they fit.
Variant variantOf(const KeyValue& value, sql::JetType type);

// The values of one row, each as its column takes it; used again for row after row without allocating.
class CellBuffer {
  public:
    explicit CellBuffer(std::size_t size) : cells_(size), texts_(size) {}

    // All Null.
    void clear();
    // Throws Fehler with this number when the column cannot take the value, 3349 when it is too large.
    void set(std::size_t place, const Column& column, const Given& value, int mismatch);
    std::span<const KeyValue> cells() const { return cells_; }

  private:
    std::vector<KeyValue> cells_;
    std::vector<std::string> texts_;  // what the cells point into
};

}  // namespace wendel::jet
