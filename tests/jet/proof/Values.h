#pragma once
// Values for tests that change databases at random: made for a column, written by any of the ways into the
// engine, read back and compared.

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include "jet/storage/KeyEncoder.h"
#include "jet/storage/Row.h"
#include "platform/Variant.h"

namespace wendel::jet::proof {

using Random = std::mt19937;
inline std::size_t below(Random& random, std::size_t limit) { return random() % limit; }
inline bool oneIn(Random& random, std::size_t n) { return below(random, n) == 0; }

// One cell of a column of this type. Whole numbers, Yes/No (-1, 0) and Currency are int64; texts UTF-8.
struct Value {
    ColumnType type = ColumnType::kUnknown;
    std::variant<std::monostate, std::int64_t, double, std::string, Decimal, Guid> data{};

    bool isNull() const { return std::holds_alternative<std::monostate>(data); }
    // For TableWriter; refers to this value.
    Cell cell() const;
    // For statements; nothing where the dialect has no way to write it.
    std::optional<std::string> literal() const;
    // For recordsets.
    Variant variant() const;
    // As `mdb-export -b hex -T "%Y-%m-%d %H:%M:%S"` shows it; nothing where that is known to show something
    // else: floating-point digits, dates before 1900 and long after 4000, GUIDs, zero bytes in binaries, and
    // characters beyond U+FFFF.
    std::optional<std::string> exported() const;
    std::string shown() const;  // for messages

    friend bool operator==(const Value&, const Value&) = default;
};

using Row = std::vector<Value>;
Row readRow(const RowView& row);

// A value that the column can hold. Sizes lie around the limits at which values are stored differently;
// `distinct` makes equal ones unlikely.
Value randomValue(Random& random, const Column& column, Version version, bool distinct);

}  // namespace wendel::jet::proof
