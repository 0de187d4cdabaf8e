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

}  // namespace

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
