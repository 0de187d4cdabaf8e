#include "jet/storage/TestFiles.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "platform/Datum.h"

namespace wendel::jet::test {
namespace {

std::string printed(const char* format, double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string dateText(double days) {
    const Datumsteile t = zerlegt(Datum::ausTageszahl(days));
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", t.jahr, t.monat, t.tag, t.stunde,
                  t.minute, t.sekunde);
    return text.data();
}

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        switch (c) {
            case '\\': out += "\\\\"; break;
            case '\t': out += "\\t"; break;
            case '\r': out += "\\r"; break;
            case '\n': out += "\\n"; break;
            case '\0': out += "\\0"; break;
            default: out += c;
        }
    }
    return out;
}

constexpr std::array<std::uint32_t, 64> roundConstants() {
    // The first 32 bits of the fractional parts of the cube roots of the first 64 primes, by integer search.
    std::array<std::uint32_t, 64> k{};
    std::size_t n = 0;
    for (std::uint64_t p = 2; n < k.size(); ++p) {
        bool prime = true;
        for (std::uint64_t d = 2; d * d <= p; ++d)
            prime = prime && p % d != 0;
        if (!prime) continue;
        // Largest r with (r / 2^32)^3 <= p, in 128-bit steps that stay exact.
        std::uint64_t r = 0;
        for (int bit = 35; bit >= 0; --bit) {
            const std::uint64_t t = r | std::uint64_t{1} << bit;
            __extension__ using Wide = unsigned __int128;
            const Wide square = static_cast<Wide>(t) * t;
            // t^3 <= p * 2^96, compared without overflow: square <= p * 2^96 / t.
            if (square <= (static_cast<Wide>(p) << 96) / t) r = t;
        }
        k[n++] = static_cast<std::uint32_t>(r);
    }
    return k;
}

}  // namespace

std::string dataPath(const std::string& name) {
    return std::string(WENDEL_SOURCE_DIR) + "/../shared/data/" + name;
}

bool haveData() { return std::filesystem::exists(dataPath("typen.mdb")); }

std::vector<std::vector<std::string>> expectations(const std::string& jsonName, const std::string& member) {
    const std::string command = "python3 '" WENDEL_SOURCE_DIR "/tests/jet/storage/expectations.py' '" +
                                dataPath(jsonName) + "' " + member;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::vector<std::vector<std::string>> lines(1, std::vector<std::string>(1));
    for (int c; (c = std::fgetc(pipe.get())) != EOF;) {
        if (c == '\n') {
            lines.push_back({""});
        } else if (c == '\t') {
            lines.back().emplace_back();
        } else {
            lines.back().back() += static_cast<char>(c);
        }
    }
    lines.pop_back();
    if (lines.empty()) throw std::runtime_error("no expectations from " + command);
    return lines;
}

std::string sha256(std::string_view text) {
    static constexpr std::array<std::uint32_t, 64> kRound = roundConstants();
    std::array<std::uint32_t, 8> h = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                      0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::string data(text);
    data += '\x80';
    while (data.size() % 64 != 56)
        data += '\0';
    for (int shift = 56; shift >= 0; shift -= 8)
        data += static_cast<char>(text.size() * 8 >> shift & 0xFF);
    for (std::size_t at = 0; at < data.size(); at += 64) {
        std::array<std::uint32_t, 64> w{};
        for (std::size_t i = 0; i < 64; ++i) {
            w[i / 4] |= std::uint32_t{static_cast<std::uint8_t>(data[at + i])} << (24 - 8 * (i % 4));
        }
        for (std::size_t i = 16; i < 64; ++i) {
            const auto small = [](std::uint32_t x, int a, int b, int c) {
                return std::rotr(x, a) ^ std::rotr(x, b) ^ x >> c;
            };
            w[i] = w[i - 16] + small(w[i - 15], 7, 18, 3) + w[i - 7] + small(w[i - 2], 17, 19, 10);
        }
        std::array<std::uint32_t, 8> s = h;
        for (std::size_t i = 0; i < 64; ++i) {
            const auto big = [](std::uint32_t x, int a, int b, int c) {
                return std::rotr(x, a) ^ std::rotr(x, b) ^ std::rotr(x, c);
            };
            const std::uint32_t t1 =
                s[7] + big(s[4], 6, 11, 25) + ((s[4] & s[5]) ^ (~s[4] & s[6])) + kRound[i] + w[i];
            const std::uint32_t t2 = big(s[0], 2, 13, 22) + ((s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]));
            s = {t1 + t2, s[0], s[1], s[2], s[3] + t1, s[4], s[5], s[6]};
        }
        for (std::size_t i = 0; i < 8; ++i)
            h[i] += s[i];
    }
    std::string bytes;
    for (const std::uint32_t word : h) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>(word >> shift & 0xFF);
    }
    return hex(bytes);
}

std::string hex(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char c : bytes) {
        text += kDigits[static_cast<std::uint8_t>(c) >> 4];
        text += kDigits[static_cast<std::uint8_t>(c) & 15];
    }
    return text;
}

std::string unhex(std::string_view digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16));
    }
    return bytes;
}

std::string cellText(const RowView& row, std::size_t column) {
    if (row.isNull(column)) return "\\N";
    std::string text;
    switch (row.table().columns[column].type) {
        case ColumnType::kBoolean: return row.asBool(column) ? "1" : "0";
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong: return std::to_string(row.asInteger(column));
        case ColumnType::kCurrency: {
            const std::int64_t money = row.asCurrency(column);
            std::array<char, 32> digits{};
            const std::uint64_t size =
                money < 0 ? 0 - static_cast<std::uint64_t>(money) : static_cast<std::uint64_t>(money);
            std::snprintf(digits.data(), digits.size(), "%s%llu.%04llu", money < 0 ? "-" : "",
                          static_cast<unsigned long long>(size / 10000),
                          static_cast<unsigned long long>(size % 10000));
            return digits.data();
        }
        case ColumnType::kSingle: return printed("%.9g", row.asDouble(column));
        case ColumnType::kDouble: return printed("%.17g", row.asDouble(column));
        case ColumnType::kDate: return dateText(row.asDouble(column));
        case ColumnType::kDecimal: return row.asDecimal(column).toText();
        case ColumnType::kGuid: return guidText(row.asGuid(column));
        case ColumnType::kText:
        case ColumnType::kMemo: row.appendText(column, text); return escaped(text);
        default: row.appendBytes(column, text); return hex(text);
    }
}

KeyValue keyValue(const RowView& row, std::size_t column, std::string& buffer) {
    if (row.isNull(column)) return std::monostate();
    switch (row.table().columns[column].type) {
        case ColumnType::kBoolean: return std::int64_t{row.asBool(column) ? -1 : 0};
        case ColumnType::kByte:
        case ColumnType::kInteger:
        case ColumnType::kLong: return std::int64_t{row.asInteger(column)};
        case ColumnType::kCurrency: return KeyCurrency{row.asCurrency(column)};
        case ColumnType::kDecimal: return row.asDecimal(column);
        case ColumnType::kGuid: return row.asGuid(column);
        case ColumnType::kText:
        case ColumnType::kMemo: row.appendText(column, buffer); return std::string_view(buffer);
        case ColumnType::kBinary: row.appendBytes(column, buffer); return KeyBytes{buffer};
        default: return row.asDouble(column);
    }
}

TemporaryCopy::TemporaryCopy() {
    std::string pattern = (std::filesystem::temp_directory_path() / "wendel-storage-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = pattern;
    path_ = folder_ + "/probe.mdb";
}

TemporaryCopy::TemporaryCopy(const std::string& source) : TemporaryCopy() { write(readFile(source)); }

TemporaryCopy::~TemporaryCopy() {
    std::error_code ignored;
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(folder_, ignored);
}

void TemporaryCopy::write(std::string_view bytes) const {
    std::ofstream(path_, std::ios::binary | std::ios::trunc)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace wendel::jet::test
