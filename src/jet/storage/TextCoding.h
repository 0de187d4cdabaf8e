#pragma once
// Text as the pages hold it, turned into UTF-8 and back: plain or compressed UTF-16 in Jet 4, code page text
// in Jet 3.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "jet/storage/Format.h"

namespace wendel::jet {

// Appends the UTF-8 of plain little-endian UTF-16; an odd last byte is dropped, half a surrogate pair becomes
// U+FFFD.
void appendUtf16(std::span<const std::uint8_t> bytes, std::string& out);

// Appends the UTF-8 of a stored text of this version: Jet 4 text may be compressed; Jet 3 text is
// Windows-1252.
void appendStoredText(Version version, std::span<const std::uint8_t> bytes, std::string& out);

// The code point at this position, which is moved behind it. A byte that belongs to no UTF-8 sequence and a
// surrogate give U+FFFD. Needs position < text.size().
char32_t decodeUtf8(std::string_view text, std::size_t& position);

// Length in UTF-16 units, by which the lengths of text columns count.
std::size_t utf16Length(std::string_view utf8);

// Appends the stored form of a text: what appendStoredText() reads. Jet 4: where allowed and of use, one byte
// per character. Jet 3: Windows-1252, with "?" for what it lacks. A text that begins with U+FEFF has no
// unambiguous stored form in Jet 4; the caller drops that mark.
void appendForStorage(Version version, bool compressible, std::string_view utf8, std::string& out);

}  // namespace wendel::jet
