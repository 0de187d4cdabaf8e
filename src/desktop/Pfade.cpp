#include "desktop/Pfade.h"

#include <algorithm>

namespace wendel {

std::string nativerPfad(std::string_view pfad) {
    std::string nativ;
    nativ.reserve(pfad.size());
    for (const char c : pfad) {
        const char zeichen = c == '\\' ? '/' : c;
        if (zeichen == '/' && nativ.ends_with('/')) continue;
        nativ += zeichen;
    }
    return nativ;
}

std::string logischerPfad(std::string_view nativ) {
    std::string pfad(nativ);
    std::replace(pfad.begin(), pfad.end(), '/', '\\');
    return pfad;
}

std::string pfadAnzeige(std::string_view pfad) {
    std::string anzeige(pfad);
    std::replace(anzeige.begin(), anzeige.end(), '\\', '/');
    return anzeige;
}

std::string_view letzterTeil(std::string_view nativ) {
    const std::size_t strich = nativ.rfind('/');
    return strich == std::string_view::npos ? nativ : nativ.substr(strich + 1);
}

std::string elternordner(std::string_view nativ) {
    const std::size_t strich = nativ.rfind('/');
    if (strich == std::string_view::npos) return ".";
    return strich == 0 ? "/" : std::string(nativ.substr(0, strich));
}

}  // namespace wendel
