#include "traymenu/Farbverlauf.h"

#include <charconv>
#include <cstddef>

#include "platform/Text.h"
#include "platform/Zahlen.h"

namespace wendel::Farbverlauf {

namespace {

constexpr std::size_t kStellen = 6;

std::string hexadezimal(Farbe farbe) {
    std::array<char, 8> ziffern;
    const auto ende = std::to_chars(ziffern.data(), ziffern.data() + ziffern.size(), farbe, 16);
    return UCase(std::string(ziffern.data(), ende.ptr));
}

// The share of line i on the way from one part to the other, to the nearest number.
int zwischen(int von, int bis, int i, int letzte) {
    return letzte == 0 ? von : CInt(von + static_cast<double>(bis - von) * i / letzte);
}

}  // namespace

std::string sechsstellig(Farbe farbe) { return Right("000000" + hexadezimal(farbe), kStellen); }

std::array<int, 3> anteile(Farbe farbe) {
    const std::string text = sechsstellig(farbe);
    std::array<int, 3> teile{};
    for (std::size_t i = 0; i < teile.size(); ++i)
        teile[i] = CInt(Val("&H" + Mid(text, 2 * i + 1, 2)));
    return teile;
}

std::vector<Farbe> verlauf(Farbe von, Farbe bis, int zeilen) {
    const auto anfang = anteile(von), ende = anteile(bis);
    std::vector<Farbe> farben;
    for (int i = 0; i < zeilen; ++i) {
        Farbe farbe = 0;
        for (std::size_t teil = 0; teil < anfang.size(); ++teil)
            farbe = farbe << 8 | static_cast<Farbe>(zwischen(anfang[teil], ende[teil], i, zeilen - 1));
        farben.push_back(farbe);
    }
    return farben;
}

}  // namespace wendel::Farbverlauf
