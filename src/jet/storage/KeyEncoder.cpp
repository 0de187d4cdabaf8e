#include "jet/storage/KeyEncoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

#include "jet/storage/Bytes.h"
#include "platform/Fehler.h"

namespace wendel::jet {
namespace {

constexpr double kTenThousand = 10000;
// Moments of different writers can differ in the last bits; none lies nearer to another second.
constexpr double kDateTolerance = 0.4 / 86400;

struct IntegerRange {
    std::int64_t lowest, highest;
    unsigned bytes;
};

// The types whose keys are whole numbers with an inverted top bit (Byte: as it is).
std::optional<IntegerRange> integerRange(ColumnType type) {
    switch (type) {
        case ColumnType::kBoolean: return IntegerRange{-1, 0, 1};
        case ColumnType::kByte: return IntegerRange{0, 0xFF, 1};
        case ColumnType::kInteger: return IntegerRange{INT16_MIN, INT16_MAX, 2};
        case ColumnType::kLong: return IntegerRange{INT32_MIN, INT32_MAX, 4};
        case ColumnType::kCurrency: return IntegerRange{INT64_MIN, INT64_MAX, 8};
        default: return std::nullopt;
    }
}

bool isFloating(ColumnType type) {
    return type == ColumnType::kSingle || type == ColumnType::kDouble || type == ColumnType::kDate;
}

// The bytes of floating-point numbers that sort as the numbers do.
std::uint64_t sortableBits(std::uint64_t bits, unsigned bytes) {
    const std::uint64_t top = std::uint64_t{1} << (8 * bytes - 1);
    return (bits & top) == 0 ? bits | top : ~bits;
}

void appendFloating(ColumnType type, double value, std::string& out) {
    if (type == ColumnType::kSingle) {
        appendBig(out, sortableBits(std::bit_cast<std::uint32_t>(static_cast<float>(value)), 4), 4);
    } else {
        appendBig(out, sortableBits(std::bit_cast<std::uint64_t>(value), 8), 8);
    }
}

void appendInteger(ColumnType type, const IntegerRange& range, std::int64_t value, std::string& out) {
    std::uint64_t bits = static_cast<std::uint64_t>(value);
    if (type == ColumnType::kBoolean) {
        bits = value != 0 ? 0x00 : 0xFF;
    } else if (range.lowest < 0) {
        bits ^= std::uint64_t{1} << (8 * range.bytes - 1);
    }
    appendBig(out, bits, range.bytes);
}

// Pieces of eight bytes, each followed by 9 when there are more, by its count of used bytes when it is the
// last. A descending key complements all but the nines.
void appendBinary(std::string_view bytes, bool descending, std::string& out) {
    constexpr std::size_t kPiece = 8;
    constexpr char kMore = 9;
    const std::uint8_t flip = descending ? 0xFF : 0;
    const auto append = [&out, flip](unsigned byte) { out += static_cast<char>((byte ^ flip) & 0xFF); };
    for (std::size_t i = 0; i < bytes.size(); i += kPiece) {
        const std::string_view piece = bytes.substr(i, kPiece);
        for (std::size_t k = 0; k < kPiece; ++k)
            append(k < piece.size() ? static_cast<unsigned char>(piece[k]) : 0);
        if (i + kPiece < bytes.size()) {
            out += kMore;
        } else {
            append(static_cast<unsigned>(piece.size()));
        }
    }
}

// The sign and the direction decide together about the complement, and the sign byte is set afterwards. In
// descending order negative numbers thereby come first; indexes in the field are like that.
void appendDecimal(const Decimal& value, bool descending, std::string& out) {
    const bool flip = value.negative != descending;
    out += value.negative ? '\x00' : '\xFF';
    for (const std::uint32_t word : value.magnitude)
        appendBig(out, flip ? ~word : word, 4);
}

// The same number with another scale; nothing when digits would be lost.
std::optional<Decimal> rescaled(Decimal value, std::uint8_t scale) {
    for (; value.scale < scale; ++value.scale)
        if (!value.appendDigit(0)) return std::nullopt;
    for (; value.scale > scale; --value.scale)
        if (value.dropDigit() != 0) return std::nullopt;
    return value;
}

std::optional<Decimal> decimalValue(const KeyValue& value, std::uint8_t scale) {
    if (const auto* decimal = std::get_if<Decimal>(&value)) return rescaled(*decimal, scale);
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return rescaled(Decimal::of(*whole), scale);
    return std::nullopt;
}

bool isNull(const KeyValue& value) { return std::holds_alternative<std::monostate>(value); }

bool isStoredAsNull(const Column& column, const KeyValue& value) {
    return isNull(value) && column.type != ColumnType::kBoolean;
}

std::optional<double> numberValue(const KeyValue& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* money = std::get_if<KeyCurrency>(&value)) {
        return static_cast<double>(money->tenThousandths) / kTenThousand;
    }
    return std::nullopt;
}

bool fitsInt64(double value) { return value >= -0x1p63 && value < 0x1p63; }

// A number in the units of an integer column, where it is one exactly.
std::optional<std::int64_t> exactInteger(ColumnType type, const KeyValue& value) {
    const bool currency = type == ColumnType::kCurrency;
    if (const auto* money = std::get_if<KeyCurrency>(&value)) {
        if (currency) return money->tenThousandths;
        if (money->tenThousandths % 10000 != 0) return std::nullopt;
        return money->tenThousandths / 10000;
    }
    if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        if (!currency) return *whole;
        if (*whole > INT64_MAX / 10000 || *whole < INT64_MIN / 10000) return std::nullopt;
        return *whole * 10000;
    }
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr) return std::nullopt;
    const double units = currency ? std::round(*number * kTenThousand) : *number;
    if (!fitsInt64(units) || units != std::floor(units)) return std::nullopt;
    if (currency && units / kTenThousand != *number) return std::nullopt;
    return static_cast<std::int64_t>(units);
}

std::string_view bytesOf(const Guid& guid) {
    return {reinterpret_cast<const char*>(guid.data()), guid.size()};
}

void complementFrom(std::size_t start, std::string& out) {
    for (std::size_t i = start; i < out.size(); ++i)
        out[i] = static_cast<char>(~out[i]);
}

void appendText(const Column& column, bool descending, std::string_view text, std::string& out) {
    const std::size_t start = out.size();
    appendTextKey(column.textOrder, text, out);
    if (!descending) return;
    complementFrom(start, out);
    if (column.textOrder != TextOrder::kGeneralJet3) out += '\0';
}

// Fixed-size values of one byte order: the ascending bytes, complemented for descending keys.
bool appendNumber(const Column& column, bool descending, const KeyValue& value, std::string& out) {
    const std::size_t start = out.size();
    if (const std::optional<IntegerRange> range = integerRange(column.type)) {
        const std::optional<std::int64_t> whole = exactInteger(column.type, value);
        if (!whole || *whole < range->lowest || *whole > range->highest) return false;
        appendInteger(column.type, *range, *whole, out);
    } else {
        const std::optional<double> number = numberValue(value);
        if (!number || std::isnan(*number)) return false;
        if (column.type == ColumnType::kSingle) {
            const bool fits = std::isinf(*number) || std::abs(*number) <= std::numeric_limits<float>::max();
            if (!fits || static_cast<double>(static_cast<float>(*number)) != *number) return false;
        }
        appendFloating(column.type, *number, out);
    }
    if (descending) complementFrom(start, out);
    return true;
}

bool appendValue(const Column& column, bool descending, const KeyValue& value, std::string& out) {
    if (integerRange(column.type) || isFloating(column.type))
        return appendNumber(column, descending, value, out);
    const auto* text = std::get_if<std::string_view>(&value);
    const auto* bytes = std::get_if<KeyBytes>(&value);
    const auto* guid = std::get_if<Guid>(&value);
    if (column.isText() && text != nullptr) {
        if (!textKeyIsKnown(column.textOrder, *text)) return false;
        appendText(column, descending, *text, out);
    } else if (column.type == ColumnType::kBinary && bytes != nullptr) {
        appendBinary(bytes->bytes, descending, out);
    } else if (column.type == ColumnType::kGuid && guid != nullptr) {
        appendBinary(bytesOf(*guid), descending, out);
    } else if (column.type == ColumnType::kDecimal) {
        const std::optional<Decimal> decimal = decimalValue(value, column.scale);
        if (!decimal) return false;
        appendDecimal(*decimal, descending, out);
    } else {
        return false;
    }
    return true;
}

char valueFlag(bool descending) {
    return static_cast<char>(descending ? kKeyValueDescending : kKeyValueAscending);
}
char nullFlag(bool descending) {
    return static_cast<char>(descending ? kKeyNullDescending : kKeyNullAscending);
}

enum class Side { kLow, kHigh };

// What a limit comes to in a column: no narrowing, nothing left at all, or a limit that the column can hold.
struct ColumnLimit {
    bool open = true;
    bool nothing = false;
    KeyLimit limit;

    static ColumnLimit none() { return {}; }
    static ColumnLimit impossible() { return {false, true, {}}; }
    static ColumnLimit at(KeyValue value, bool inclusive) { return {false, false, {value, inclusive}}; }
};

ColumnLimit integerLimit(const Column& column, const IntegerRange& range, const KeyLimit& limit, Side side) {
    if (const std::optional<std::int64_t> whole = exactInteger(column.type, limit.value)) {
        const bool beyondFarEnd = side == Side::kLow ? *whole > range.highest : *whole < range.lowest;
        const bool beyondNearEnd = side == Side::kLow ? *whole < range.lowest : *whole > range.highest;
        if (beyondFarEnd) return ColumnLimit::impossible();
        if (beyondNearEnd) return ColumnLimit::none();
        if (column.type != ColumnType::kCurrency) return ColumnLimit::at(*whole, limit.inclusive);
        return ColumnLimit::at(KeyCurrency{*whole}, limit.inclusive);
    }
    const std::optional<double> number = numberValue(limit.value);
    if (!number || std::isnan(*number)) return ColumnLimit::none();
    const bool currency = column.type == ColumnType::kCurrency;
    const double units = currency ? *number * kTenThousand : *number;
    // One unit of slack for money, whose tenths of a cent a double does not hold.
    const double rounded = side == Side::kLow ? std::floor(units) - 1 : std::ceil(units) + 1;
    if (!fitsInt64(rounded)) return ColumnLimit::none();
    const auto whole = static_cast<std::int64_t>(rounded);
    if (whole < range.lowest || whole > range.highest) return ColumnLimit::none();
    return currency ? ColumnLimit::at(KeyCurrency{whole}, true) : ColumnLimit::at(whole, true);
}

ColumnLimit floatingLimit(const Column& column, const KeyLimit& limit, Side side) {
    const std::optional<double> number = numberValue(limit.value);
    if (!number || std::isnan(*number)) return ColumnLimit::none();
    const double direction = side == Side::kLow ? -1 : 1;
    if (column.type == ColumnType::kDate) return ColumnLimit::at(*number + direction * kDateTolerance, true);
    // Both zeros are equal but have different keys.
    if (*number == 0) return ColumnLimit::at(direction * 0.0, true);
    if (column.type == ColumnType::kDouble) return ColumnLimit::at(*number, limit.inclusive);
    if (std::abs(*number) > std::numeric_limits<float>::max()) return ColumnLimit::none();
    const auto nearest = static_cast<float>(*number);
    if (nearest == *number) return ColumnLimit::at(*number, limit.inclusive);
    const double wider =
        std::nextafter(nearest, static_cast<float>(direction) * std::numeric_limits<float>::max());
    return ColumnLimit::at(wider, true);
}

ColumnLimit columnLimit(const Column& column, bool descending, const KeyLimit& limit, Side side) {
    if (isNull(limit.value)) return ColumnLimit::impossible();
    if (const std::optional<IntegerRange> range = integerRange(column.type)) {
        return integerLimit(column, *range, limit, side);
    }
    if (isFloating(column.type)) return floatingLimit(column, limit, side);
    // Descending Decimals are not in order.
    if (column.type == ColumnType::kDecimal && descending) return ColumnLimit::none();
    std::string key;
    if (!appendValue(column, descending, limit.value, key)) return ColumnLimit::none();
    // Texts that differ only behind the characters of a key lie at the same place.
    return ColumnLimit::at(limit.value, limit.inclusive || column.isText());
}

KeyRange everythingWith(std::string prefix) {
    KeyRange range;
    range.lower = prefix;
    range.upper = std::move(prefix);
    return range;
}

// The stretch of one column's values behind the keys of the columns before it.
KeyRange rangeBehind(const std::string& prefix, const Column& column, bool descending, const ColumnLimit& low,
                     const ColumnLimit& high) {
    KeyRange range = everythingWith(prefix);
    range.empty = low.nothing || high.nothing;
    if (range.empty || (low.open && high.open)) return range;
    // A limit on one side alone still keeps the Nulls out.
    range.lower += valueFlag(descending);
    range.upper += valueFlag(descending);
    const ColumnLimit& first = descending ? high : low;
    const ColumnLimit& last = descending ? low : high;
    if (!first.open) {
        range.lower = prefix;
        appendKey(column, descending, first.limit.value, range.lower);
        range.lowerInclusive = first.limit.inclusive;
    }
    if (!last.open) {
        range.upper = prefix;
        appendKey(column, descending, last.limit.value, range.upper);
        range.upperInclusive = last.limit.inclusive;
    }
    return range;
}

// Whether equality with this value can be told by one key.
bool hasOneKey(const Column& column, const KeyValue& value) {
    if (isNull(value)) return true;
    if (column.type == ColumnType::kDate) return false;
    const std::optional<double> number = numberValue(value);
    return !isFloating(column.type) || !number || *number != 0;
}

bool isNumber(const KeyValue& value) {
    return numberValue(value).has_value() || std::holds_alternative<Decimal>(value);
}

// Why a value has no key: because the column cannot hold this number, or because it is of another kind.
bool cannotBeIn(const Column& column, const KeyValue& value) {
    if (isNull(value)) return true;  // no Nulls in Yes/No columns
    return isNumber(value) && !std::holds_alternative<Decimal>(value) &&
           integerRange(column.type).has_value() && column.type != ColumnType::kCurrency;
}

// The key bytes of a value as a row stores it, which may be less exact than the value.
void appendStoredValue(const Column& column, bool descending, const Cell& value, std::string& out) {
    if (appendKey(column, descending, value, out)) return;
    const std::optional<double> number = numberValue(value);
    const auto* text = std::get_if<std::string_view>(&value);
    if (column.type == ColumnType::kBoolean && (number || isNull(value))) {
        appendKey(column, descending, std::int64_t{number.value_or(0) != 0 ? -1 : 0}, out);  // Null is No
    } else if (isFloating(column.type) && number) {
        out += valueFlag(descending);
        const std::size_t start = out.size();
        appendFloating(column.type, *number, out);
        if (descending) complementFrom(start, out);
    } else if (column.isText() && text != nullptr) {
        out += valueFlag(descending);
        appendText(column, descending, *text, out);
    } else {
        throw Fehler(jetfehler::kWrongValue, "Index",
                     "Der Wert passt nicht zum Datentyp des Feldes '" + column.name + "'.");
    }
}

}  // namespace

void RowValues::take(const RowView& row, std::size_t column) {
    if (row.isNull(column)) return;
    Cell& cell = cells_[column];
    std::string& text = texts_[column];
    text.clear();  // a column may be asked for once for each of its indexes
    switch (row.table().columns[column].type) {
        case ColumnType::kBoolean: cell = std::int64_t{row.asBool(column) ? -1 : 0}; break;
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong: cell = std::int64_t{row.asInteger(column)}; break;
        case ColumnType::kCurrency: cell = KeyCurrency{row.asCurrency(column)}; break;
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDate: cell = row.asDouble(column); break;
        case ColumnType::kDecimal: cell = row.asDecimal(column); break;
        case ColumnType::kGuid: cell = row.asGuid(column); break;
        case ColumnType::kText:
        case ColumnType::kMemo:
            row.appendText(column, text);
            cell = std::string_view(text);
            break;
        case ColumnType::kBinary:
        case ColumnType::kOle:
            row.appendBytes(column, text);
            cell = KeyBytes{text};
            break;
        case ColumnType::kUnknown: break;
    }
}

void RowValues::assign(const RowView& row) {
    assign(row, {});
    for (std::size_t column = 0; column < cells_.size(); ++column)
        take(row, column);
}

void RowValues::assign(const RowView& row, std::span<const std::size_t> columns) {
    const std::size_t count = row.table().columns.size();
    cells_.assign(count, std::monostate());
    texts_.resize(count);
    for (std::string& text : texts_)
        text.clear();
    for (const std::size_t column : columns)
        take(row, column);
}

bool isAllNull(const TableDef& table, const Index& index, std::span<const Cell> valuesOfAllColumns) {
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& c) {
        return isStoredAsNull(table.columns[c.column], valuesOfAllColumns[c.column]);
    });
}

bool hasNull(const TableDef& table, const Index& index, std::span<const Cell> valuesOfAllColumns) {
    return std::any_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& c) {
        return isStoredAsNull(table.columns[c.column], valuesOfAllColumns[c.column]);
    });
}

std::optional<std::string> rowKey(const TableDef& table, const Index& index,
                                  std::span<const Cell> valuesOfAllColumns) {
    if (index.ignoreNulls && isAllNull(table, index, valuesOfAllColumns)) return std::nullopt;
    std::string key;
    for (const IndexColumn& c : index.columns)
        appendStoredValue(table.columns[c.column], c.descending, valuesOfAllColumns[c.column], key);
    return key;
}

bool rowKeyIsKnown(const TableDef& table, const Index& index, std::span<const Cell> valuesOfAllColumns) {
    return std::all_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& c) {
        const auto* text = std::get_if<std::string_view>(&valuesOfAllColumns[c.column]);
        return text == nullptr || textKeyIsKnown(table.columns[c.column].textOrder, *text);
    });
}

bool appendKey(const Column& column, bool descending, const KeyValue& value, std::string& out) {
    if (isNull(value)) {
        if (column.type == ColumnType::kBoolean) return false;
        out += nullFlag(descending);
        return true;
    }
    const std::size_t start = out.size();
    out += valueFlag(descending);
    if (appendValue(column, descending, value, out)) return true;
    out.resize(start);
    return false;
}

KeyRange keyRange(const TableDef& table, const Index& index, std::span<const KeyValue> equal,
                  const std::optional<KeyLimit>& low, const std::optional<KeyLimit>& high) {
    std::string prefix;
    std::size_t at = 0;
    for (; at < equal.size() && at < index.columns.size(); ++at) {
        const Column& column = table.columns[index.columns[at].column];
        const bool descending = index.columns[at].descending;
        const KeyValue& value = equal[at];
        if (!hasOneKey(column, value)) {
            const KeyLimit limit{value, true};
            return rangeBehind(prefix, column, descending, columnLimit(column, descending, limit, Side::kLow),
                               columnLimit(column, descending, limit, Side::kHigh));
        }
        if (appendKey(column, descending, value, prefix)) continue;
        KeyRange range = everythingWith(prefix);
        range.empty = cannotBeIn(column, value);
        return range;
    }
    if (at == index.columns.size() || (!low && !high)) return everythingWith(prefix);
    const Column& column = table.columns[index.columns[at].column];
    const bool descending = index.columns[at].descending;
    return rangeBehind(prefix, column, descending,
                       low ? columnLimit(column, descending, *low, Side::kLow) : ColumnLimit::none(),
                       high ? columnLimit(column, descending, *high, Side::kHigh) : ColumnLimit::none());
}

}  // namespace wendel::jet
