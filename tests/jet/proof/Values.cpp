#include "jet/proof/Values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>

#include "jet/storage/TestFiles.h"

namespace wendel::jet::proof {
namespace {

template <class... Ts>
struct Cases : Ts... {
    using Ts::operator()...;
};
template <class... Ts>
Cases(Ts...) -> Cases<Ts...>;

std::string digits(double value) {
    std::array<char, 40> buffer{};
    return {buffer.data(), std::to_chars(buffer.begin(), buffer.end(), value).ptr};
}

// 12345 -> "1.2345"
std::string fourDecimals(std::int64_t tenThousandths) {
    std::string text = std::to_string(tenThousandths);
    const std::size_t first = tenThousandths < 0 ? 1 : 0;
    if (text.size() < first + 5) text.insert(first, first + 5 - text.size(), '0');
    return text.insert(text.size() - 4, ".");
}

std::string dateText(double day, const char* separators) {
    const Datumsteile d = zerlegt(Datum::ausTageszahl(day));
    const auto two = [](int n) { return (n < 10 ? "0" : "") + std::to_string(n); };
    const std::string time = two(d.stunde) + ":" + two(d.minute) + ":" + two(d.sekunde);
    if (*separators == '/')
        return two(d.monat) + "/" + two(d.tag) + "/" + std::to_string(d.jahr) + " " + time;
    return std::to_string(d.jahr) + "-" + two(d.monat) + "-" + two(d.tag) + " " + time;
}

const char* const kAlphabets[] = {"etaoin shrdlu", "äöüß éà ÄÖÜabc", "€„“–Œxyz"};
// Only Jet 4 has these, and no sort code is known for the last.
const char* const kWide[] = {"Ωж", "łĘ", "かな", "\xE2\x84\xAB\xE4\xB8\xAD"};

std::string randomText(Random& random, std::size_t characters, Version version) {
    const bool wide = version == Version::kJet4 && oneIn(random, 4);
    const std::string_view alphabet =
        wide ? kWide[below(random, std::size(kWide))] : kAlphabets[below(random, std::size(kAlphabets))];
    std::vector<std::string> letters;
    for (std::size_t i = 0, n = 0; i < alphabet.size(); i += n) {
        const auto lead = static_cast<std::uint8_t>(alphabet[i]);
        n = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : 3;
        letters.emplace_back(alphabet.substr(i, n));
    }
    letters.push_back(oneIn(random, 4) ? "'" : "-");
    std::string text;
    for (std::size_t i = 0; i < characters; ++i)
        text += letters[below(random, letters.size())];
    return text;
}

std::string randomBytes(Random& random, std::size_t size, bool withZeros) {
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(withZeros ? random() : 1 + below(random, 255));
    return bytes;
}

std::size_t longSize(Random& random) {
    static constexpr std::size_t kLimits[] = {
        0,    1,    16,   31,   32,   56,   62,   64,   65,   511, 1024, 1025, 1800, 2018,  2030,  2034, 3631,
        4058, 4070, 4074, 4078, 6000, 8142, 8146, 2036, 2038, 255, 128,  90,   33,   12216, 12220, 17000};
    const std::size_t size = kLimits[below(random, oneIn(random, 3) ? std::size(kLimits) : 11)];
    return size + below(random, 4);
}

std::int64_t wholeNumber(Random& random, std::int64_t low, std::int64_t high, bool distinct) {
    switch (below(random, distinct ? 12 : 4)) {
        case 0: return oneIn(random, 2) ? low : high;
        case 1: return static_cast<std::int64_t>(below(random, 20));
        default:
            return low + static_cast<std::int64_t>((std::uint64_t{random()} << 32 | random()) %
                                                   static_cast<std::uint64_t>(high - low));
    }
}

double randomDay(Random& random, bool distinct, bool withOdd) {
    const bool odd = withOdd && oneIn(random, 10);
    const auto days =
        static_cast<double>(odd ? -650000 : 41200 + static_cast<std::int64_t>(below(random, 200)));
    const std::size_t seconds = distinct ? below(random, 86400) : 900 * below(random, 96);
    const double part = static_cast<double>(seconds) / 86400.0;
    return odd ? days - part : days + part;
}

}  // namespace

Cell Value::cell() const {
    return std::visit(Cases{[](std::monostate) -> Cell { return std::monostate(); },
                            [this](std::int64_t n) -> Cell {
                                return type == ColumnType::kCurrency ? Cell(KeyCurrency{n}) : Cell(n);
                            },
                            [this](const std::string& s) -> Cell {
                                const bool bytes = type == ColumnType::kBinary || type == ColumnType::kOle;
                                return bytes ? Cell(KeyBytes{s}) : Cell(std::string_view(s));
                            },
                            [](const auto& other) -> Cell { return other; }},
                      data);
}

std::optional<std::string> Value::literal() const {
    if (isNull()) return "Null";
    switch (type) {
        case ColumnType::kBoolean: return std::get<std::int64_t>(data) != 0 ? "true" : "0";
        case ColumnType::kCurrency: return fourDecimals(std::get<std::int64_t>(data));
        case ColumnType::kDate: return "#" + dateText(std::get<double>(data), "/") + "#";
        case ColumnType::kDecimal: return std::get<Decimal>(data).toText();
        case ColumnType::kGuid: return "'" + guidText(std::get<Guid>(data)) + "'";
        case ColumnType::kBinary:
        case ColumnType::kOle: return std::nullopt;
        case ColumnType::kSingle:
        case ColumnType::kDouble: return digits(std::get<double>(data));
        default: break;
    }
    if (const auto* n = std::get_if<std::int64_t>(&data)) return std::to_string(*n);
    std::string quoted = "'";
    for (const char c : std::get<std::string>(data))
        quoted += c == '\'' ? "''" : std::string(1, c);
    return quoted + "'";
}

Variant Value::variant() const {
    if (isNull()) return Variant::null();
    const auto whole = [this] { return std::get<std::int64_t>(data); };
    switch (type) {
        case ColumnType::kBoolean: return Variant::boolesch(whole() != 0);
        case ColumnType::kByte: return Variant::byte(static_cast<std::uint8_t>(whole()));
        case ColumnType::kInteger: return Variant::integer(static_cast<std::int16_t>(whole()));
        case ColumnType::kLong: return Variant::lang(static_cast<std::int32_t>(whole()));
        case ColumnType::kCurrency: return Variant::waehrung(whole());
        case ColumnType::kSingle: return Variant::einfach(static_cast<float>(std::get<double>(data)));
        case ColumnType::kDouble: return Variant::doppelt(std::get<double>(data));
        case ColumnType::kDate: return Variant::datumRoh(std::get<double>(data));
        case ColumnType::kDecimal: return Variant::text(std::get<Decimal>(data).toText());
        case ColumnType::kGuid: return Variant::text(guidText(std::get<Guid>(data)));
        default: break;
    }
    const std::string& bytes = std::get<std::string>(data);
    if (type == ColumnType::kText || type == ColumnType::kMemo) return Variant::text(bytes);
    return Variant::binaer({bytes.begin(), bytes.end()});
}

std::optional<std::string> Value::exported() const {
    if (isNull()) return "";
    switch (type) {
        case ColumnType::kBoolean: return std::get<std::int64_t>(data) != 0 ? "1" : "0";
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong: return std::to_string(std::get<std::int64_t>(data));
        case ColumnType::kCurrency: return fourDecimals(std::get<std::int64_t>(data));
        case ColumnType::kDecimal: return std::get<Decimal>(data).toText();
        case ColumnType::kDate:
            if (const double day = std::get<double>(data); day >= 1 && day < 900000)
                return dateText(day, "-");
            return std::nullopt;
        case ColumnType::kBinary:
        case ColumnType::kOle: {
            const std::string& bytes = std::get<std::string>(data);
            if (bytes.find('\0') != std::string::npos) return std::nullopt;
            std::string text = test::hex(bytes);
            std::transform(text.begin(), text.end(), text.begin(),
                           [](char c) { return static_cast<char>(c >= 'a' ? c - 32 : c); });
            return text;
        }
        case ColumnType::kText:
        case ColumnType::kMemo: {
            const std::string& text = std::get<std::string>(data);
            const bool beyond = std::any_of(text.begin(), text.end(),
                                            [](char c) { return static_cast<std::uint8_t>(c) >= 0xF0; });
            return beyond ? std::nullopt : std::optional(text);
        }
        default: return std::nullopt;
    }
}

std::string Value::shown() const {
    if (const auto* bytes = std::get_if<std::string>(&data))
        return std::to_string(bytes->size()) + " bytes: " + bytes->substr(0, 80);
    if (type == ColumnType::kDate && !isNull()) return digits(std::get<double>(data));
    return literal().value_or("?");
}

Row readRow(const RowView& row) {
    Row read;
    const RowValues values(row);
    for (const Cell& cell : values.cells()) {
        Value& value = read.emplace_back();
        value.type = row.table().columns[read.size() - 1].type;
        std::visit(Cases{[](std::monostate) {}, [&](std::string_view s) { value.data = std::string(s); },
                         [&](const KeyBytes& b) { value.data = std::string(b.bytes); },
                         [&](const KeyCurrency& c) { value.data = c.tenThousandths; },
                         [&](const auto& other) { value.data = other; }},
                   cell);
    }
    return read;
}

Value randomValue(Random& random, const Column& column, Version version, bool distinct) {
    Value value{column.type};
    if (column.type != ColumnType::kBoolean && oneIn(random, distinct ? 25 : 6)) return value;
    const auto characters = static_cast<std::size_t>(column.length / (version == Version::kJet4 ? 2 : 1));
    const auto size = [&](std::size_t most) {
        const std::size_t sizes[] = {0, 1, 2, 3, most / 2, most - 1, most, 12, below(random, most + 1)};
        return column.fixed ? most : std::min(most, sizes[below(random, std::size(sizes))]);
    };
    // Half of the columns can be compared with what other readers show, the others have what those get wrong.
    const bool odd = column.number % 2 != 0;
    switch (column.type) {
        case ColumnType::kBoolean: value.data = oneIn(random, 2) ? std::int64_t{-1} : std::int64_t{0}; break;
        case ColumnType::kByte: value.data = wholeNumber(random, 0, 255, distinct); break;
        case ColumnType::kInteger: value.data = wholeNumber(random, INT16_MIN, INT16_MAX, distinct); break;
        case ColumnType::kLong: value.data = wholeNumber(random, INT32_MIN, INT32_MAX, distinct); break;
        case ColumnType::kCurrency:
            value.data = wholeNumber(random, -99999999999, 99999999999, distinct);
            break;
        case ColumnType::kSingle:
            value.data = double{static_cast<float>(wholeNumber(random, -999999, 999999, distinct)) / 8};
            break;
        case ColumnType::kDouble:
            value.data = std::ldexp(static_cast<double>(wholeNumber(random, -99999999, 99999999, distinct)),
                                    static_cast<int>(below(random, 40)) - 20);
            break;
        case ColumnType::kDate: value.data = randomDay(random, distinct, odd); break;
        case ColumnType::kText: value.data = randomText(random, size(characters), version); break;
        case ColumnType::kMemo:
            value.data = randomText(random, longSize(random) / (1 + below(random, 2)), version);
            break;
        case ColumnType::kBinary: value.data = randomBytes(random, size(column.length), odd); break;
        case ColumnType::kOle: value.data = randomBytes(random, longSize(random), odd); break;
        case ColumnType::kGuid: {
            Guid guid;
            for (std::uint8_t& byte : guid)
                byte = static_cast<std::uint8_t>(random());
            value.data = guid;
            break;
        }
        case ColumnType::kDecimal: {
            Decimal decimal;
            decimal.scale = column.scale;
            decimal.magnitude[3] = static_cast<std::uint32_t>(below(random, distinct ? 99999999 : 20));
            decimal.negative = decimal.magnitude[3] != 0 && oneIn(random, 2);
            value.data = decimal;
            break;
        }
        case ColumnType::kUnknown: break;
    }
    return value;
}

}  // namespace wendel::jet::proof
