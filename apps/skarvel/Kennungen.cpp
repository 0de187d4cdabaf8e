#include "Kennungen.h"

#include <algorithm>
#include <cstdint>

namespace wendel::skarvel {
namespace {

constexpr std::size_t kStreulaenge = 10;

bool istSchlicht(char zeichen) { return zeichen > ' ' && zeichen < 0x7f; }

// 64-bit FNV-1a (Fowler, Noll, Vo), its bits mixed once more, as short texts leave the upper ones alike.
std::uint64_t streuwert(std::string_view text) {
    std::uint64_t wert = 14695981039346656037U;
    for (const char zeichen : text)
        wert = (wert ^ static_cast<unsigned char>(zeichen)) * 1099511628211U;
    wert = (wert ^ wert >> 32) * 0x9E3779B97F4A7C15U;
    return wert ^ wert >> 29;
}

}  // namespace

std::string streuzeichen(std::string_view text) {
    std::string zeichen;
    std::uint64_t wert = streuwert(text);
    for (int stelle = 0; stelle < 13; ++stelle, wert >>= 5)
        zeichen += "0123456789ABCDEFGHJKLMNPQRSTUVWX"[wert & 31];
    return zeichen;
}

std::string gestreuteKennung(std::string_view kennung, std::size_t breite, int versuch) {
    std::string gestreut(kennung);
    if (versuch > 0) gestreut += "\n" + std::to_string(versuch);
    gestreut = streuzeichen(gestreut).substr(0, std::min(kStreulaenge, breite));
    if (breite <= kStreulaenge + 1) return gestreut;
    std::string anfang;
    for (const char zeichen : kennung) {
        if (anfang.size() + 1 + kStreulaenge == breite) break;
        if (istSchlicht(zeichen)) anfang += zeichen;
    }
    return anfang + "~" + gestreut;
}

std::string kennungFuer(std::string_view kennung, std::size_t breite) {
    const bool passt = !kennung.empty() && kennung.size() <= breite &&
                       std::all_of(kennung.begin(), kennung.end(), istSchlicht);
    return passt ? std::string(kennung) : gestreuteKennung(kennung, breite, 0);
}

}  // namespace wendel::skarvel
