#pragma once
// Text as the pages hold it, turned into UTF-8: plain or compressed UTF-16 in Jet 4, code page text in Jet 3.

#include <cstdint>
#include <span>
#include <string>

#include "jet/storage/Format.h"

namespace wendel::jet {

// Appends the UTF-8 of plain little-endian UTF-16; an odd last byte is dropped, half a surrogate pair becomes
// U+FFFD.
void appendUtf16(std::span<const std::uint8_t> bytes, std::string& out);

// Appends the UTF-8 of a stored text of this version: Jet 4 text may be compressed; Jet 3 text is
// Windows-1252.
void appendStoredText(Version version, std::span<const std::uint8_t> bytes, std::string& out);

// Appends one code point; a surrogate becomes U+FFFD.
void appendUtf8(char32_t codePoint, std::string& out);

}  // namespace wendel::jet
