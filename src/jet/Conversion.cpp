#include "jet/Conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "jet/sql/Errors.h"
#include "jet/sql/Lexer.h"
#include "jet/storage/File.h"
#include "jet/storage/WriteErrors.h"
#include "platform/Datum.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"

namespace wendel::jet {
namespace {

using sql::JetType;
using sql::sqlError;

constexpr double kPerUnit = 10000.0;  // currency counts ten thousandths
constexpr std::uint8_t kMostDecimals = 28;

[[noreturn]] void throwTooLarge() { throwWriteError(jetfehler::kNumericOverflow); }

std::string_view trimmed(std::string_view text) {
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

// The whole text as a number, with "." or "," before the decimals.
std::optional<double> numberIn(std::string_view text) {
    std::string digits(trimmed(text));
    std::replace(digits.begin(), digits.end(), ',', '.');
    const char* first = digits.data() + (digits.starts_with('+') ? 1 : 0);
    const char* last = digits.data() + digits.size();
    double value = 0;
    const auto result = std::from_chars(first, last, value);
    return result.ec == std::errc() && result.ptr == last && std::isfinite(value) ? std::optional(value)
                                                                                  : std::nullopt;
}

// A date as users write it ("24.12.2012 20:15"), or as between "#".
std::optional<double> momentIn(std::string_view given) {
    const std::string_view text = trimmed(given);
    const std::size_t first = text.find('.');
    const std::size_t second = first < text.size() ? text.find('.', first + 1) : first;
    std::optional<Datum> moment;
    if (second == std::string_view::npos) {
        moment = sql::parseDateLiteral(text);
    } else {
        const std::size_t end = std::min(text.find(' ', second), text.size());
        std::string year(text.substr(second + 1, end - second - 1));
        if (year.size() == 2) {
            year.insert(0, year < "30" ? "20" : "19");
        }
        moment =
            sql::parseDateLiteral(year + "-" + std::string(text.substr(first + 1, second - first - 1)) + "-" +
                                  std::string(text.substr(0, first)) + std::string(text.substr(end)));
    }
    return moment ? std::optional(moment->tageszahl()) : std::nullopt;
}

std::optional<double> truthIn(std::string_view given) {
    const std::string text = LCase(trimmed(given));
    if (text == "true" || text == "wahr" || text == "ja" || text == "yes" || text == "on") {
        return -1;
    }
    if (text == "false" || text == "falsch" || text == "nein" || text == "no" || text == "off") {
        return 0;
    }
    return numberIn(text);
}

std::string currencyText(std::int64_t tenThousandths) {
    std::string text = Decimal::of(tenThousandths, 4).toText();
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

// Digits with at most one "." as a decimal number; nothing when it is none or too long.
std::optional<Decimal> decimalIn(std::string_view given) {
    std::string_view text = trimmed(given);
    Decimal result;
    result.negative = text.starts_with('-');
    if (result.negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    bool point = false, digits = false;
    for (const char c : text) {
        if ((c == '.' || c == ',') && !point) {
            point = true;
            continue;
        }
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        digits = true;
        if (point && result.scale == kMostDecimals) {
            continue;
        }
        if (!result.appendDigit(static_cast<unsigned>(c - '0'))) {
            throwTooLarge();
        }
        result.scale = static_cast<std::uint8_t>(result.scale + (point ? 1 : 0));
    }
    return digits ? std::optional(result) : std::nullopt;
}

std::optional<Guid> guidIn(std::string_view text) {
    std::string hex;
    for (const char c : trimmed(text)) {
        if (c != '{' && c != '}' && c != '-') {
            hex += c;
        }
    }
    Guid guid{};
    if (hex.size() != 2 * guid.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < guid.size(); ++i) {
        const char* at = hex.data() + 2 * i;
        if (std::from_chars(at, at + 2, guid[i], 16).ptr != at + 2) {
            return std::nullopt;
        }
    }
    return guid;
}

std::int64_t roundedWhole(double value) {
    const double whole = std::nearbyint(value);
    if (!(std::abs(whole) < 9e18)) {
        throwTooLarge();
    }
    return static_cast<std::int64_t>(whole);
}

// A number of any kind; a text as the column's kind of numbers reads it.
std::optional<double> numberOf(const Given& given, std::optional<double> (*fromText)(std::string_view)) {
    if (const auto* whole = std::get_if<std::int64_t>(&given.value)) return static_cast<double>(*whole);
    if (const auto* real = std::get_if<double>(&given.value)) return *real;
    if (const auto* currency = std::get_if<KeyCurrency>(&given.value))
        return static_cast<double>(currency->tenThousandths) / kPerUnit;
    if (const auto* decimal = std::get_if<Decimal>(&given.value)) return numberIn(decimal->toText());
    if (const auto* text = std::get_if<std::string_view>(&given.value)) return fromText(*text);
    return std::nullopt;
}

// As text into `out`; false for what has no text.
bool writeText(const Given& given, std::string& out) {
    if (const auto* text = std::get_if<std::string_view>(&given.value)) {
        out.assign(*text);
    } else if (const auto* whole = std::get_if<std::int64_t>(&given.value)) {
        out = std::to_string(*whole);
    } else if (const auto* real = std::get_if<double>(&given.value)) {
        out = given.moment ? datumAlsText(Datum::ausTageszahl(*real)) : zahlAlsText(*real);
    } else if (const auto* currency = std::get_if<KeyCurrency>(&given.value)) {
        out = currencyText(currency->tenThousandths);
    } else if (const auto* decimal = std::get_if<Decimal>(&given.value)) {
        out = decimal->toText();
    } else if (const auto* guid = std::get_if<Guid>(&given.value)) {
        out = guidText(*guid);
    } else {
        return false;
    }
    return true;
}

// Into a number column; nothing when the value is no number.
std::optional<KeyValue> numberFor(ColumnType type, const Given& given) {
    const bool isReal =
        type == ColumnType::kSingle || type == ColumnType::kDouble || type == ColumnType::kDate;
    const auto* whole = std::get_if<std::int64_t>(&given.value);
    if (whole && !isReal && type != ColumnType::kBoolean && type != ColumnType::kCurrency) {
        return *whole;
    }
    if (const auto* currency = std::get_if<KeyCurrency>(&given.value);
        currency && type == ColumnType::kCurrency) {
        return *currency;
    }
    const auto number = numberOf(given, type == ColumnType::kDate      ? momentIn
                                        : type == ColumnType::kBoolean ? truthIn
                                                                       : numberIn);
    if (!number) {
        return std::nullopt;
    }
    switch (type) {
        case ColumnType::kBoolean: return std::int64_t{*number != 0 ? -1 : 0};
        case ColumnType::kCurrency: return KeyCurrency{roundedWhole(*number * kPerUnit)};
        case ColumnType::kSingle:
        case ColumnType::kDouble:
        case ColumnType::kDate: return *number;
        default: return roundedWhole(*number);
    }
}

std::optional<KeyValue> decimalFor(const Given& given) {
    std::string text;
    if (std::holds_alternative<Decimal>(given.value)) return given.value;
    if (!writeText(given, text)) return std::nullopt;
    if (const auto decimal = decimalIn(text)) return *decimal;
    const auto number = numberIn(text);  // with an exponent
    if (!number) return std::nullopt;
    if (!(std::abs(*number) < 1e28)) throwTooLarge();
    std::array<char, 80> digits;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), *number, std::chars_format::fixed).ptr;
    const auto decimal = decimalIn({digits.data(), static_cast<std::size_t>(end - digits.data())});
    return decimal ? std::optional<KeyValue>(*decimal) : std::nullopt;
}

// The value as the column takes it, texts in `storage`; nothing when it cannot.
std::optional<KeyValue> converted(ColumnType type, const Given& given, std::string& storage) {
    switch (type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            if (writeText(given, storage)) return std::string_view(storage);
            return std::nullopt;
        case ColumnType::kBinary:
        case ColumnType::kOle:
            if (const auto* bytes = std::get_if<KeyBytes>(&given.value)) {
                storage.assign(bytes->bytes);
                return KeyBytes{storage};
            }
            return std::nullopt;
        case ColumnType::kGuid:
            if (const auto* text = std::get_if<std::string_view>(&given.value)) {
                const auto guid = guidIn(*text);
                return guid ? std::optional<KeyValue>(*guid) : std::nullopt;
            }
            return std::holds_alternative<Guid>(given.value) ? std::optional(given.value) : std::nullopt;
        case ColumnType::kDecimal: return decimalFor(given);
        case ColumnType::kUnknown: return std::nullopt;
        default: return numberFor(type, given);
    }
}

// A whole number in the smallest of the column's own type, Long and Double that holds it.
Variant wholeVariant(std::int64_t value, JetType type) {
    if (type == JetType::Boolean) {
        return Variant::boolesch(value != 0);
    }
    if (type == JetType::Currency) {
        return Variant::waehrung(value);
    }
    if (type == JetType::Byte && value >= 0 && value <= 255) {
        return Variant::byte(static_cast<std::uint8_t>(value));
    }
    if (type == JetType::Integer && value >= INT16_MIN && value <= INT16_MAX) {
        return Variant::integer(static_cast<std::int16_t>(value));
    }
    if (value >= INT32_MIN && value <= INT32_MAX) {
        return Variant::lang(static_cast<std::int32_t>(value));
    }
    return Variant::doppelt(static_cast<double>(value));
}

Variant realVariant(double value, JetType type) {
    if (type == JetType::Single) {
        return Variant::einfach(static_cast<float>(value));
    }
    return type == JetType::Date ? Variant::datumRoh(value) : Variant::doppelt(value);
}

}  // namespace

Given given(const KeyValue& value, JetType type) {
    if (const auto* whole = std::get_if<std::int64_t>(&value); whole && type == JetType::Currency) {
        return {KeyCurrency{*whole}};
    }
    return {value, sql::isMoment(type)};
}

Given given(const Variant& value) {
    return std::visit(
        [](const auto& v) -> Given {
            using Value = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<Value, bool>) {
                return {std::int64_t{v ? -1 : 0}};
            } else if constexpr (std::is_integral_v<Value>) {
                return {std::int64_t{v}};
            } else if constexpr (std::is_floating_point_v<Value>) {
                return {static_cast<double>(v)};
            } else if constexpr (std::is_same_v<Value, Variant::Waehrung>) {
                return {KeyCurrency{v.zehntausendstel}};
            } else if constexpr (std::is_same_v<Value, Variant::Tageszahl>) {
                return {v.tage, true};
            } else if constexpr (std::is_same_v<Value, std::string>) {
                return {std::string_view(v)};
            } else if constexpr (std::is_same_v<Value, std::vector<std::uint8_t>>) {
                return {KeyBytes{{reinterpret_cast<const char*>(v.data()), v.size()}}};
            } else if constexpr (std::is_same_v<Value, std::shared_ptr<const Array>>) {
                throw sqlError(sql::kConversion);
            } else {
                return {};  // Empty and Null
            }
        },
        value.wert());
}

Variant variantOf(const KeyValue& value, JetType type) {
    return std::visit(
        [&](const auto& v) -> Variant {
            using Value = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<Value, std::int64_t>) {
                return wholeVariant(v, type);
            } else if constexpr (std::is_same_v<Value, double>) {
                return realVariant(v, type);
            } else if constexpr (std::is_same_v<Value, std::string_view>) {
                return Variant::text(std::string(v));
            } else if constexpr (std::is_same_v<Value, KeyBytes>) {
                return Variant::binaer({v.bytes.begin(), v.bytes.end()});
            } else if constexpr (std::is_same_v<Value, KeyCurrency>) {
                return Variant::waehrung(v.tenThousandths);
            } else if constexpr (std::is_same_v<Value, Decimal>) {
                return Variant::text(v.toText());
            } else if constexpr (std::is_same_v<Value, Guid>) {
                return Variant::text(guidText(v));
            } else {
                return Variant::null();
            }
        },
        value);
}

void CellBuffer::clear() { std::fill(cells_.begin(), cells_.end(), KeyValue()); }

void CellBuffer::set(std::size_t place, const Column& column, const Given& value, int mismatch) {
    if (std::holds_alternative<std::monostate>(value.value)) {
        cells_[place] = std::monostate();
        return;
    }
    const auto cell = converted(column.type, value, texts_[place]);
    if (!cell) {
        throw sqlError(mismatch);
    }
    cells_[place] = *cell;
}

}  // namespace wendel::jet
