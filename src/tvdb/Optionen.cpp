#include "tvdb/Optionen.h"

#include <algorithm>
#include <optional>

#include "platform/Text.h"

namespace wendel::Optionen {

namespace {

constexpr std::string_view kTrenner = ";|,\r\n";

struct Eintrag {
    std::size_t anfang = 0, ende = 0;
};

bool hatSchluessel(std::string_view eintrag, std::string_view schluessel) {
    const std::size_t gleich = eintrag.find('=');
    return gleich != std::string_view::npos &&
           gleichOhneGrossKlein(Trim(eintrag.substr(0, gleich)), Trim(schluessel));
}

std::optional<Eintrag> suche(std::string_view optionen, std::string_view schluessel) {
    std::size_t anfang = 0;
    while (anfang <= optionen.size()) {
        const std::size_t ende = std::min(optionen.find_first_of(kTrenner, anfang), optionen.size());
        if (hatSchluessel(optionen.substr(anfang, ende - anfang), schluessel)) return Eintrag{anfang, ende};
        anfang = ende + 1;
    }
    return std::nullopt;
}

// The first separator of the text, CR LF counting as one.
std::string_view verwendeterTrenner(std::string_view optionen) {
    const std::size_t stelle = optionen.find_first_of(kTrenner);
    if (stelle == std::string_view::npos) return ";";
    return optionen.substr(stelle, optionen.substr(stelle).starts_with(kCrLf) ? 2 : 1);
}

}  // namespace

std::string GetOption(std::string_view optionen, std::string_view schluessel, std::string_view ersatz) {
    const auto stelle = suche(optionen, schluessel);
    if (!stelle) return std::string(ersatz);
    const std::string_view eintrag = optionen.substr(stelle->anfang, stelle->ende - stelle->anfang);
    return std::string(eintrag.substr(eintrag.find('=') + 1));
}

std::string SetOption(std::string_view optionen, std::string_view schluessel, std::string_view wert) {
    const std::string neu = std::string(schluessel) + "=" + std::string(wert);
    std::string ergebnis(optionen);
    if (const auto stelle = suche(optionen, schluessel)) {
        return ergebnis.replace(stelle->anfang, stelle->ende - stelle->anfang, neu);
    }
    const bool trennerNoetig = !ergebnis.empty() && kTrenner.find(ergebnis.back()) == std::string_view::npos;
    if (trennerNoetig) ergebnis += verwendeterTrenner(optionen);
    return ergebnis + neu;
}

}  // namespace wendel::Optionen
