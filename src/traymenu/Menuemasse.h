#pragma once
// The measures of the painted menu in logical pixels, shared by the forms that lay it out, the windows that
// paint it and the builder that fits it to the screen.

#include "traymenu/Farbverlauf.h"

namespace wendel::Menuemasse {

inline constexpr int kZeilenhoehe = 20;
inline constexpr int kRand = 1;       // the window's frame, around panel and rows
inline constexpr int kInnenrand = 2;  // in PicPaint above the first row and below the last one
inline constexpr int kSymbolgroesse = 16;
inline constexpr int kAbstand = 6;  // between columns, and before and after them
inline constexpr int kHoechsteSenderbreite = 110;
inline constexpr int kPfeilbreite = 16;
inline constexpr int kMindestbreite = 150;
inline constexpr int kTippHoehe = 80;
// A window with the panel is at least that wide inside, so that "Kein Tagestipp .." fits.
inline constexpr int kTippBreite = 300;
inline constexpr Farbe kLinieDunkel = 0x808080;
inline constexpr Farbe kLinieHell = 0xE0E0E0;
inline constexpr const char* kSchrift = "Verdana";
inline constexpr int kSchriftgrad = 8;  // points

}  // namespace wendel::Menuemasse
