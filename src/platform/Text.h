#pragma once
// Text inside the program is UTF-8 in std::string. Wherever a length or a position is meant in characters,
// these functions count code points; a malformed byte counts as one character. Positions start at 1.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wendel {

// Code points; each byte that belongs to no valid sequence counts as one.
std::size_t zeichenzahl(std::string_view text);
// The same characters by their numbers; a malformed byte is U+FFFD.
std::u32string codepunkte(std::string_view text);

// Throw Fehler kUngueltigesArgument for a start below 1; reach at most to the end of the text.
std::string Mid(std::string_view text, std::size_t start);
std::string Mid(std::string_view text, std::size_t start, std::size_t laenge);
std::string Left(std::string_view text, std::size_t laenge);
std::string Right(std::string_view text, std::size_t laenge);

// Position of the first occurrence at or after start, 0 when there is none; case counts. An empty gesucht is
// found at start, unless text is empty.
std::size_t InStr(std::string_view text, std::string_view gesucht, std::size_t start = 1);

// Cuts blanks (U+0020, nothing else) at both ends.
std::string Trim(std::string_view text);
// Cuts blanks, TABs, CR, LF and NUL at both ends: for configuration lines and received status texts.
std::string trimAlleLeerraeume(std::string_view text);

// One code point to one code point: ASCII, Latin-1 and Latin Extended-A; the sharp s stays.
std::string LCase(std::string_view text);
std::string UCase(std::string_view text);
bool gleichOhneGrossKlein(std::string_view a, std::string_view b);

// "" gives no items. With hoechstens > 0 the last item keeps the remaining separators.
std::vector<std::string> Split(std::string_view text, std::string_view trenner, std::size_t hoechstens = 0);
std::string Join(const std::vector<std::string>& teile, std::string_view trenner);

// One pass from left to right; an inserted text is not searched again, an empty gesucht changes nothing.
std::string ersetzt(std::string_view text, std::string_view gesucht, std::string_view neu);

bool istUtf8(std::string_view bytes);

// Windows-1252 to UTF-8 and back. The five bytes without a character (81 8D 8F 90 9D) stand for U+0081 and so
// on, so that every byte string survives the round trip; a character that the code page lacks becomes "?".
std::string ausWindows1252(std::string_view bytes);
std::string nachWindows1252(std::string_view utf8);

// The content of a text file that a user may have edited: UTF-8 with a byte order mark, or valid UTF-8 with a
// character beyond ASCII, else Windows-1252; lines end at CR LF, LF or CR. A last line end opens no further
// line.
std::vector<std::string> textzeilen(std::string_view dateiinhalt);

// Text in one field of a line: \\ \t \r \n stand for backslash, TAB, CR and LF. Backwards nothing for a
// backslash with anything else behind it.
std::string maskiert(std::string_view text);
std::optional<std::string> demaskiert(std::string_view text);

inline constexpr std::string_view kCrLf = "\r\n";

}  // namespace wendel
