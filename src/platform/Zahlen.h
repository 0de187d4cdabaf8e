#pragma once
// Numbers as the suite's programs read and write them: lenient reading of text, rounding half to even,
// 16- and 32-bit ranges, and output that never passes through the process's locale.

#include <cstdint>
#include <string>
#include <string_view>

namespace wendel {

// The longest number at the start of the text; blanks, TABs and line feeds are skipped anywhere, only "." is
// the decimal sign, exponents are e E d D, prefixes &H and &O give 16- or 32-bit integers ("&HFFFF" is -1).
// No number: 0. Throws Fehler kUeberlauf when the number is too large for a double.
double Val(std::string_view text);

// Rounds half to even; throws Fehler kUeberlauf outside 16 and 32 bits.
std::int16_t CInt(double wert);
std::int32_t CLng(double wert);

// Shortest decimal text that reads back as the same number, "." as decimal sign; written out from 0.00001 to
// 15 places before the decimal sign, else with an exponent ("1.5e+20"). einfachAlsText: shortest for single
// precision.
std::string zahlAlsText(double wert);
std::string einfachAlsText(float wert);

// Format "00" and the like: decimal digits padded on the left with zeros to at least that many places; a
// minus sign stands before them and is not counted.
std::string mitNullen(std::int64_t wert, int stellen);

}  // namespace wendel
