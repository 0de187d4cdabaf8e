#pragma once
// The text of a calendar file before its meaning: whether it is one at all and whole. The library reads on
// over missing ends and foreign bytes; half a file would then look like a short one.

#include <cstddef>
#include <string>
#include <string_view>

namespace wendel::quillon {

// Larger files are refused before they are read.
inline constexpr std::size_t kGroessteKalenderdatei = std::size_t{32} * 1024 * 1024;

// The first line, after a byte order mark and empty lines, begins a calendar.
bool beginntKalender(std::string_view datei);

// The logical lines, each closed by LF, folded ones joined. Throws Fehler 1 with a German sentence when the
// file is empty, no calendar, not UTF-8, or its parts are not closed one inside the other.
std::string kalendertext(std::string_view datei);

// A text as a calendar can hold it: lines end at LF, other control characters than TAB are blanks.
std::string mitErlaubtenZeichen(std::string_view text);

}  // namespace wendel::quillon
