#include "jet/storage/TextCoding.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "jet/storage/Bytes.h"
#include "platform/Text.h"

namespace wendel::jet {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// How many bytes from here on are plain ASCII without NUL: the bulk of all text, copied at once.
std::size_t asciiRun(const std::uint8_t* p, std::size_t size) {
    constexpr std::uint64_t kOnes = 0x0101010101010101, kTops = 0x8080808080808080;
    std::size_t n = 0;
    for (; n + 8 <= size; n += 8) {
        std::uint64_t word;
        std::memcpy(&word, p + n, 8);
        if (((word | (word - kOnes)) & kTops) != 0) break;  // a byte from 0x80 on, or (perhaps) a zero
    }
    while (n < size && p[n] != 0 && p[n] < 0x80)
        ++n;
    return n;
}

// Appends one code point; a surrogate becomes U+FFFD.
void appendUtf8(char32_t c, std::string& out) {
    if (c >= 0xD800 && c < 0xE000) c = kReplacement;
    const auto byte = [&out](char32_t value) { out.push_back(static_cast<char>(value)); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

// One byte per character from U+0001 to U+00FF; 00 switches to two bytes per character, another 00 back.
void appendCompressed(std::span<const std::uint8_t> bytes, std::string& out) {
    std::size_t i = 0;
    while (i < bytes.size()) {
        const std::size_t run = asciiRun(&bytes[i], bytes.size() - i);
        out.append(reinterpret_cast<const char*>(&bytes[i]), run);
        i += run;
        for (; i < bytes.size() && bytes[i] >= 0x80; ++i)
            appendUtf8(bytes[i], out);
        if (i == bytes.size() || bytes[i] != 0) continue;
        const std::size_t wide = ++i;
        while (i + 1 < bytes.size() && bytes[i] != 0)
            i += 2;
        // The end mark is a zero where a character would begin; U+xx00 cannot be stored in this mode.
        if (i + 1 == bytes.size() && bytes[i] != 0) i += 1;
        appendUtf16(bytes.subspan(wide, i - wide), out);
        if (i < bytes.size()) ++i;
    }
}

bool isAscii(std::string_view text) {
    return asciiRun(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()) == text.size();
}

void appendUnit(char32_t unit, std::string& out) {
    out.push_back(static_cast<char>(unit & 0xFF));
    out.push_back(static_cast<char>(unit >> 8));
}

// Appends plain little-endian UTF-16.
void appendAsUtf16(std::string_view utf8, std::string& out) {
    out.reserve(out.size() + 2 * utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const char32_t c = decodeUtf8(utf8, i);
        if (c < 0x10000) {
            appendUnit(c, out);
        } else {
            appendUnit(0xD800 + ((c - 0x10000) >> 10), out);
            appendUnit(0xDC00 + ((c - 0x10000) & 0x3FF), out);
        }
    }
}

// Other writers compress neither the shortest texts nor long ones.
constexpr std::size_t kLongestUncompressed = 2, kLongestCompressed = 1024;

// Appends the compressed form; false, and nothing appended, where the text has none.
bool appendAsCompressed(std::string_view utf8, std::string& out) {
    if (utf8.size() <= kLongestUncompressed || utf8.size() > 2 * kLongestCompressed) return false;
    const std::size_t before = out.size();
    out += "\xFF\xFE";
    const std::size_t start = out.size();
    if (isAscii(utf8)) {
        out += utf8;
    } else {
        for (std::size_t i = 0; i < utf8.size();) {
            const char32_t c = decodeUtf8(utf8, i);
            // Anything else ends the attempt at once.
            if (c == 0 || c > 0xFF) {
                out.resize(before);
                return false;
            }
            out.push_back(static_cast<char>(c));
        }
    }
    const std::size_t characters = out.size() - start;
    if (characters > kLongestUncompressed && characters <= kLongestCompressed) return true;
    out.resize(before);
    return false;
}

}  // namespace

char32_t decodeUtf8(std::string_view text, std::size_t& position) {
    const auto first = static_cast<std::uint8_t>(text[position]);
    ++position;
    if (first < 0x80) return first;
    const std::size_t more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || text.size() - position < more) return kReplacement;
    char32_t c = first & (0x3Fu >> more);
    for (std::size_t i = 0; i < more; ++i) {
        const auto byte = static_cast<std::uint8_t>(text[position + i]);
        if ((byte & 0xC0) != 0x80) return kReplacement;
        c = c << 6 | (byte & 0x3Fu);
    }
    constexpr char32_t kSmallest[] = {0x80, 0x800, 0x10000};
    if (c < kSmallest[more - 1] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return kReplacement;
    position += more;
    return c;
}

std::size_t utf16Length(std::string_view utf8) {
    if (isAscii(utf8)) return utf8.size();
    std::size_t units = 0;
    for (std::size_t i = 0; i < utf8.size();)
        units += decodeUtf8(utf8, i) < 0x10000 ? 1 : 2;
    return units;
}

void appendForStorage(Version version, bool compressible, std::string_view utf8, std::string& out) {
    if (version == Version::kJet3) {
        if (isAscii(utf8)) {
            out += utf8;
        } else {
            out += nachWindows1252(utf8);
        }
    } else if (!compressible || !appendAsCompressed(utf8, out)) {
        appendAsUtf16(utf8, out);
    }
}

void appendUtf16(std::span<const std::uint8_t> bytes, std::string& out) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        char32_t c = loadU16(&bytes[i]);
        if (isHighSurrogate(c) && i + 3 < bytes.size()) {
            const char32_t low = loadU16(&bytes[i + 2]);
            if (isLowSurrogate(low)) {
                c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            }
        }
        appendUtf8(c, out);
    }
}

void appendStoredText(Version version, std::span<const std::uint8_t> bytes, std::string& out) {
    if (version == Version::kJet3) {
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        out += ausWindows1252(text);
    } else if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
        appendCompressed(bytes.subspan(2), out);
    } else {
        appendUtf16(bytes, out);
    }
}

}  // namespace wendel::jet
