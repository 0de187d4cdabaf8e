#pragma once
// The colour gradient behind the rows of the tray menu, one colour for each line of pixels.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace wendel {

// 0xRRGGBB; what lies above the 24 bits is ignored, so system colours may carry their mark there.
using Farbe = std::uint32_t;

namespace Farbverlauf {

// "0A64FF": upper case, exactly six digits.
std::string sechsstellig(Farbe farbe);

// The three two-digit parts of the text as numbers.
std::array<int, 3> anteile(Farbe farbe);

// zeilen colours from von to bis, both included. A single line is von; none for zeilen < 1.
std::vector<Farbe> verlauf(Farbe von, Farbe bis, int zeilen);

}  // namespace Farbverlauf
}  // namespace wendel
