#include "jet/storage/CellEncoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "jet/storage/Bytes.h"
#include "jet/storage/TextCoding.h"
#include "jet/storage/WriteErrors.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr double kFirstDay = -657434, kBehindLastDay = 2958466;  // 1 Jan 100 to 31 Dec 9999

[[noreturn]] void throwOverflow() { throwWriteError(jetfehler::kNumericOverflow); }

void addOne(Decimal& value) {
    for (std::size_t i = value.magnitude.size(); i-- > 0;)
        if (++value.magnitude[i] != 0) return;
}

// The number with another scale, rounded, halves to even.
Decimal withScale(Decimal value, std::uint8_t scale) {
    for (; value.scale < scale; ++value.scale)
        if (!value.appendDigit(0)) throwOverflow();
    unsigned last = 0;
    bool more = false;  // digits other than 0 behind the last one dropped
    for (; value.scale > scale; --value.scale) {
        more = more || last != 0;
        last = value.dropDigit();
    }
    const bool odd = (value.magnitude[3] & 1) != 0;
    if (last > 5 || (last == 5 && (more || odd))) addOne(value);
    if (value.isZero()) value.negative = false;
    return value;
}

template <class Kind>
const Kind& valueOf(const KeyValue& cell) {
    if (const Kind* value = std::get_if<Kind>(&cell)) return *value;
    throwWriteError(jetfehler::kWrongValue);
}

std::int64_t wholeNumber(const KeyValue& cell, std::int64_t lowest, std::int64_t highest) {
    const auto whole = valueOf<std::int64_t>(cell);
    if (whole < lowest || whole > highest) throwOverflow();
    return whole;
}

double floating(const KeyValue& cell) {
    const auto number = valueOf<double>(cell);
    if (!std::isfinite(number)) throwOverflow();
    return number;
}

double singleValue(const KeyValue& cell) {
    const double number = floating(cell);
    if (std::abs(number) > std::numeric_limits<float>::max()) throwOverflow();
    return static_cast<float>(number);
}

double dayNumber(const KeyValue& cell) {
    const double day = floating(cell);
    if (!(day > kFirstDay - 1 && day < kBehindLastDay)) throwOverflow();
    return day;
}

Decimal decimalValue(const Column& column, const KeyValue& cell) {
    const Decimal value = withScale(valueOf<Decimal>(cell), column.scale);
    Decimal rest = value;
    for (unsigned digits = 0; !rest.isZero(); ++digits) {
        if (digits == column.precision) throwOverflow();
        rest.dropDigit();
    }
    return value;
}

std::string_view textValue(const File& file, const Column& column, const KeyValue& cell,
                           std::string& buffer) {
    auto text = valueOf<std::string_view>(cell);
    std::size_t limit = column.length;
    if (file.version() == Version::kJet3) {
        const bool ascii = std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
        if (!ascii) text = buffer = ausWindows1252(nachWindows1252(text));
    } else {
        constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
        while (text.starts_with(kByteOrderMark))
            text.remove_prefix(kByteOrderMark.size());
        limit /= 2;
    }
    // A byte makes one unit at most.
    const bool tooLong = column.type == ColumnType::kText && text.size() > limit && utf16Length(text) > limit;
    if (tooLong) throwWriteError(jetfehler::kTextTooLong, column.name);
    return text;
}

KeyBytes bytesValue(const Column& column, const KeyValue& cell) {
    const auto given = valueOf<KeyBytes>(cell);
    if (column.type == ColumnType::kBinary && given.bytes.size() > column.length) {
        throwWriteError(jetfehler::kTextTooLong, column.name);
    }
    return given;
}

bool isTrue(const KeyValue& cell) {
    return !std::holds_alternative<std::monostate>(cell) && valueOf<std::int64_t>(cell) != 0;
}

void appendDecimal(const Decimal& decimal, std::string& out) {
    out.push_back(static_cast<char>(decimal.negative ? kDecimalNegative : 0));
    for (const std::uint32_t word : decimal.magnitude)
        appendLittle(out, word, 4);
}

// The first three groups are stored as little-endian numbers.
void appendGuid(const Guid& g, std::string& out) {
    for (const std::size_t i : {3U, 2U, 1U, 0U, 5U, 4U, 7U, 6U, 8U, 9U, 10U, 11U, 12U, 13U, 14U, 15U})
        out.push_back(static_cast<char>(g[i]));
}

// Text in the fixed part fills its place with blanks.
void appendText(const File& file, const Column& column, std::string_view text, std::string& out) {
    if (!column.fixed || column.isLong()) {
        return appendForStorage(file.version(), column.compressible, text, out);
    }
    const std::size_t end = out.size() + column.length;
    appendForStorage(file.version(), false, text, out);
    const std::string_view blank = file.version() == Version::kJet4 ? std::string_view(" \0", 2) : " ";
    while (out.size() < end)
        out += blank;
    out.resize(end);  // a damaged length can be odd
}

void appendBytes(const Column& column, std::string_view bytes, std::string& out) {
    const std::size_t end = out.size() + column.length;
    out += bytes;
    if (column.fixed && !column.isLong()) out.resize(end);
}

}  // namespace

KeyValue columnValue(const File& file, const Column& column, const KeyValue& cell, std::string& buffer) {
    if (column.type == ColumnType::kBoolean) return std::int64_t{isTrue(cell) ? -1 : 0};
    if (std::holds_alternative<std::monostate>(cell)) return cell;
    switch (column.type) {
        case ColumnType::kByte: return wholeNumber(cell, 0, 255);
        case ColumnType::kInteger: return wholeNumber(cell, INT16_MIN, INT16_MAX);
        case ColumnType::kLong: return wholeNumber(cell, INT32_MIN, INT32_MAX);
        case ColumnType::kCurrency: return valueOf<KeyCurrency>(cell);
        case ColumnType::kSingle: return singleValue(cell);
        case ColumnType::kDouble: return floating(cell);
        case ColumnType::kDate: return dayNumber(cell);
        case ColumnType::kDecimal: return decimalValue(column, cell);
        case ColumnType::kText:
        case ColumnType::kMemo: return textValue(file, column, cell, buffer);
        case ColumnType::kBinary:
        case ColumnType::kOle: return bytesValue(column, cell);
        case ColumnType::kGuid: return valueOf<Guid>(cell);
        default: throwWriteError(jetfehler::kWrongValue);
    }
}

void appendValue(const File& file, const Column& column, const KeyValue& value, std::string& out) {
    if (std::holds_alternative<std::monostate>(value)) return;
    switch (column.type) {
        case ColumnType::kByte: return appendLittle(out, static_cast<std::uint64_t>(std::get<1>(value)), 1);
        case ColumnType::kInteger:
            return appendLittle(out, static_cast<std::uint64_t>(std::get<1>(value)), 2);
        case ColumnType::kLong: return appendLittle(out, static_cast<std::uint64_t>(std::get<1>(value)), 4);
        case ColumnType::kCurrency:
            return appendLittle(out, static_cast<std::uint64_t>(std::get<KeyCurrency>(value).tenThousandths),
                                8);
        case ColumnType::kSingle:
            return appendLittle(out,
                                std::bit_cast<std::uint32_t>(static_cast<float>(std::get<double>(value))), 4);
        case ColumnType::kDouble:
        case ColumnType::kDate:
            return appendLittle(out, std::bit_cast<std::uint64_t>(std::get<double>(value)), 8);
        case ColumnType::kDecimal: return appendDecimal(std::get<Decimal>(value), out);
        case ColumnType::kGuid: return appendGuid(std::get<Guid>(value), out);
        case ColumnType::kText:
        case ColumnType::kMemo: return appendText(file, column, std::get<std::string_view>(value), out);
        case ColumnType::kBinary:
        case ColumnType::kOle: return appendBytes(column, std::get<KeyBytes>(value).bytes, out);
        default: return;
    }
}

}  // namespace wendel::jet
