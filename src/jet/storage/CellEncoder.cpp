#include "jet/storage/CellEncoder.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "jet/storage/Bytes.h"
#include "jet/storage/TextCoding.h"
#include "jet/storage/WriteErrors.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr std::uint8_t kCurrencyScale = 4;
constexpr double kFirstDay = -657434, kBehindLastDay = 2958466;  // 1 Jan 100 to 31 Dec 9999
// More digits than any magnitude of 128 bits has.
constexpr int kManyDigits = 40;

[[noreturn]] void throwOverflow() { throwWriteError(jetfehler::kNumericOverflow); }
[[noreturn]] void throwWrongKind() { throwWriteError(jetfehler::kWrongValue); }

bool isZero(const Decimal& value) {
    return std::all_of(value.magnitude.begin(), value.magnitude.end(), [](auto word) { return word == 0; });
}

// False when the digit does not fit in any more.
bool appendDigit(Decimal& value, unsigned digit) {
    std::uint64_t carry = digit;
    for (std::size_t i = value.magnitude.size(); i-- > 0;) {
        const std::uint64_t product = std::uint64_t{value.magnitude[i]} * 10 + carry;
        value.magnitude[i] = static_cast<std::uint32_t>(product);
        carry = product >> 32;
    }
    return carry == 0;
}

unsigned dropDigit(Decimal& value) {
    std::uint64_t remainder = 0;
    for (std::uint32_t& word : value.magnitude) {
        const std::uint64_t part = remainder << 32 | word;
        word = static_cast<std::uint32_t>(part / 10);
        remainder = part % 10;
    }
    return static_cast<unsigned>(remainder);
}

void addOne(Decimal& value) {
    for (std::size_t i = value.magnitude.size(); i-- > 0;)
        if (++value.magnitude[i] != 0) return;
}

// The number with another scale, rounded, halves to even.
Decimal withScale(Decimal value, std::uint8_t scale) {
    for (; value.scale < scale; ++value.scale)
        if (!appendDigit(value, 0)) throwOverflow();
    unsigned last = 0;
    bool more = false;  // digits other than 0 behind the last one dropped
    for (; value.scale > scale; --value.scale) {
        more = more || last != 0;
        last = dropDigit(value);
    }
    const bool odd = (value.magnitude[3] & 1) != 0;
    if (last > 5 || (last == 5 && (more || odd))) addOne(value);
    if (isZero(value)) value.negative = false;
    return value;
}

Decimal decimalOf(std::int64_t units, std::uint8_t scale) {
    const auto bits = static_cast<std::uint64_t>(units);
    const std::uint64_t magnitude = units < 0 ? 0 - bits : bits;
    Decimal decimal{units < 0, {}, scale};
    decimal.magnitude[2] = static_cast<std::uint32_t>(magnitude >> 32);
    decimal.magnitude[3] = static_cast<std::uint32_t>(magnitude);
    return decimal;
}

// The shortest decimal number that stands for the double: 0.1 and not the sixty digits that the bits make.
Decimal decimalOf(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), std::abs(number), std::chars_format::scientific);
    const char* const mark = std::find(text.data(), end.ptr, 'e');
    int exponent = 0;
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end.ptr, exponent);
    if (exponent > kManyDigits) throwOverflow();
    if (exponent < -kManyDigits) return {};
    Decimal decimal{number < 0, {}, 0};
    int scale = -exponent - 1;
    for (const char* p = text.data(); p != mark; ++p) {
        if (*p == '.') continue;
        appendDigit(decimal, static_cast<unsigned>(*p - '0'));
        ++scale;
    }
    for (; scale < 0; ++scale)
        if (!appendDigit(decimal, 0)) throwOverflow();
    decimal.scale = static_cast<std::uint8_t>(scale);
    return decimal;
}

double toDouble(const Decimal& decimal) {
    double number = 0;
    for (const std::uint32_t word : decimal.magnitude)
        number = number * 0x1p32 + word;
    number /= std::pow(10.0, decimal.scale);
    return decimal.negative ? -number : number;
}

std::int64_t toInt64(const Decimal& decimal) {
    const Decimal whole = withScale(decimal, 0);
    const std::uint64_t magnitude = std::uint64_t{whole.magnitude[2]} << 32 | whole.magnitude[3];
    const std::uint64_t largest = std::uint64_t{INT64_MAX} + (whole.negative ? 1 : 0);
    if (whole.magnitude[0] != 0 || whole.magnitude[1] != 0 || magnitude > largest) throwOverflow();
    return static_cast<std::int64_t>(whole.negative ? 0 - magnitude : magnitude);
}

std::int64_t toInt64(double number) {
    const double whole = std::nearbyint(number);
    if (!(whole >= -0x1p63 && whole < 0x1p63)) throwOverflow();
    return static_cast<std::int64_t>(whole);
}

std::int64_t wholeNumber(const KeyValue& cell) {
    if (const auto* whole = std::get_if<std::int64_t>(&cell)) return *whole;
    if (const auto* number = std::get_if<double>(&cell)) return toInt64(*number);
    if (const auto* money = std::get_if<KeyCurrency>(&cell)) {
        return toInt64(decimalOf(money->tenThousandths, kCurrencyScale));
    }
    if (const auto* decimal = std::get_if<Decimal>(&cell)) return toInt64(*decimal);
    throwWrongKind();
}

std::int64_t wholeNumber(const KeyValue& cell, std::int64_t lowest, std::int64_t highest) {
    const std::int64_t whole = wholeNumber(cell);
    if (whole < lowest || whole > highest) throwOverflow();
    return whole;
}

KeyCurrency currency(const KeyValue& cell) {
    if (const auto* money = std::get_if<KeyCurrency>(&cell)) return *money;
    if (const auto* number = std::get_if<double>(&cell)) return {toInt64(*number * 10000)};
    Decimal decimal;
    if (const auto* whole = std::get_if<std::int64_t>(&cell)) {
        decimal = decimalOf(*whole, 0);
    } else if (const auto* value = std::get_if<Decimal>(&cell)) {
        decimal = *value;
    } else {
        throwWrongKind();
    }
    decimal = withScale(decimal, kCurrencyScale);
    decimal.scale = 0;
    return {toInt64(decimal)};
}

double floating(const KeyValue& cell) {
    double number = 0;
    if (const auto* whole = std::get_if<std::int64_t>(&cell)) {
        number = static_cast<double>(*whole);
    } else if (const auto* value = std::get_if<double>(&cell)) {
        number = *value;
    } else if (const auto* money = std::get_if<KeyCurrency>(&cell)) {
        number = static_cast<double>(money->tenThousandths) / 10000;
    } else if (const auto* decimal = std::get_if<Decimal>(&cell)) {
        number = toDouble(*decimal);
    } else {
        throwWrongKind();
    }
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
    Decimal value;
    if (const auto* decimal = std::get_if<Decimal>(&cell)) {
        value = *decimal;
    } else if (const auto* number = std::get_if<double>(&cell)) {
        value = decimalOf(floating(*number));
    } else if (const auto* money = std::get_if<KeyCurrency>(&cell)) {
        value = decimalOf(money->tenThousandths, kCurrencyScale);
    } else {
        value = decimalOf(wholeNumber(cell), 0);
    }
    value = withScale(value, column.scale);
    Decimal rest = value;
    for (unsigned digits = 0; !isZero(rest); ++digits) {
        if (digits == column.precision) throwOverflow();
        dropDigit(rest);
    }
    return value;
}

std::string_view textValue(const File& file, const Column& column, const KeyValue& cell,
                           std::string& buffer) {
    const auto* given = std::get_if<std::string_view>(&cell);
    if (given == nullptr) throwWrongKind();
    std::string_view text = *given;
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
    const auto* given = std::get_if<KeyBytes>(&cell);
    if (given == nullptr) throwWrongKind();
    if (column.type == ColumnType::kBinary && given->bytes.size() > column.length) {
        throwWriteError(jetfehler::kTextTooLong, column.name);
    }
    return *given;
}

bool isTrue(const KeyValue& cell) {
    if (std::holds_alternative<std::monostate>(cell)) return false;
    if (const auto* whole = std::get_if<std::int64_t>(&cell)) return *whole != 0;
    return floating(cell) != 0;
}

void appendLittle(std::string& out, std::uint64_t bits, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>(bits >> (8 * i) & 0xFF));
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
        case ColumnType::kCurrency: return currency(cell);
        case ColumnType::kSingle: return singleValue(cell);
        case ColumnType::kDouble: return floating(cell);
        case ColumnType::kDate: return dayNumber(cell);
        case ColumnType::kDecimal: return decimalValue(column, cell);
        case ColumnType::kText:
        case ColumnType::kMemo: return textValue(file, column, cell, buffer);
        case ColumnType::kBinary:
        case ColumnType::kOle: return bytesValue(column, cell);
        case ColumnType::kGuid:
            if (!std::holds_alternative<Guid>(cell)) throwWrongKind();
            return cell;
        default: throwWrongKind();
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
