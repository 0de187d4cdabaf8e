#include "reminders/Termineingabefelder.h"

#include <algorithm>
#include <vector>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel {
namespace {

constexpr std::int64_t kTag = 86400;

bool nurZiffern(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char z) { return z >= '0' && z <= '9'; });
}

struct Stellen {
    std::size_t mindestens, hoechstens;
};

// The numbers of a text that consists of exactly these groups of digits and the separator between them.
std::optional<std::vector<int>> zahlen(std::string_view text, std::string_view trenner,
                                       const std::vector<Stellen>& gruppen) {
    const std::vector<std::string> teile = Split(text, trenner);
    if (teile.size() != gruppen.size()) return std::nullopt;
    std::vector<int> werte;
    for (std::size_t i = 0; i < teile.size(); ++i) {
        const std::size_t stellen = teile[i].size();
        if (stellen < gruppen[i].mindestens || stellen > gruppen[i].hoechstens || !nurZiffern(teile[i]))
            return std::nullopt;
        werte.push_back(std::stoi(teile[i]));
    }
    return werte;
}

// The date parser reads fixed positions and carries 31.02. on into March: it gets only texts of its own
// layout and days that the calendar has. Four digits below 100 are no year, since it would read a century
// into them.
std::optional<Datum> tag(int jahr, int monat, int tagImMonat) {
    if (jahr < 100 || !istKalendertag(jahr, monat, tagImMonat)) return std::nullopt;
    return ModulGrundbefehle::DatumAusText(mitNullen(tagImMonat, 2) + "." + mitNullen(monat, 2) + "." +
                                           mitNullen(jahr, 4));
}

int vollesJahr(int zweistellig) { return zweistellig + (zweistellig < 30 ? 2000 : 1900); }

std::optional<Datum> vierzehnStellen(std::string_view text) {
    if (text.size() != 14 || !nurZiffern(text)) return std::nullopt;
    return tag(std::stoi(Mid(text, 1, 4)), std::stoi(Mid(text, 5, 2)), std::stoi(Mid(text, 7, 2)));
}

}  // namespace

std::optional<Datum> tagAusEingabe(std::string_view text) {
    const std::string eingabe = Trim(text);
    if (const auto t = zahlen(eingabe, ".", {{1, 2}, {1, 2}, {4, 4}})) return tag((*t)[2], (*t)[1], (*t)[0]);
    if (const auto t = zahlen(eingabe, ".", {{1, 2}, {1, 2}, {2, 2}}))
        return tag(vollesJahr((*t)[2]), (*t)[1], (*t)[0]);
    if (const auto t = zahlen(eingabe, "-", {{4, 4}, {2, 2}, {2, 2}})) return tag((*t)[0], (*t)[1], (*t)[2]);
    return vierzehnStellen(eingabe);
}

std::optional<Datum> uhrzeitAusEingabe(std::string_view text) {
    const std::string eingabe = Trim(text);
    const bool form =
        zahlen(eingabe, ":", {{1, 2}, {2, 2}}) || zahlen(eingabe, ":", {{1, 2}, {2, 2}, {2, 2}});
    if (!form || !ModulGrundbefehle::IstDatumsausdruck(eingabe)) return std::nullopt;
    return ModulGrundbefehle::DatumAusText(eingabe);
}

std::string tagAlsEingabe(Datum tag) { return Format(tag, "dd\\.mm\\.yyyy"); }

std::string uhrzeitAlsEingabe(Datum uhrzeit) { return Format(uhrzeit, "hh\\:nn"); }

std::string tagVervollstaendigt(std::string_view text) {
    const auto tag = tagAusEingabe(text);
    return tag ? tagAlsEingabe(*tag) : std::string(text);
}

std::string uhrzeitVervollstaendigt(std::string_view text) {
    const auto uhrzeit = uhrzeitAusEingabe(text);
    if (!uhrzeit) return std::string(text);
    return *uhrzeit == uhrzeit->aufMinute() ? uhrzeitAlsEingabe(*uhrzeit) : Format(*uhrzeit, "hh\\:nn\\:ss");
}

std::optional<std::string> tagVerschoben(std::string_view text, int tage) {
    const auto tag = tagAusEingabe(text);
    if (!tag) return std::nullopt;
    try {
        return tagAlsEingabe(DateAdd(Einheit::Tag, tage, *tag));
    } catch (const Fehler&) {
        return std::nullopt;  // where the calendar ends
    }
}

std::optional<std::string> uhrzeitVerschoben(std::string_view text, int minuten) {
    const auto uhrzeit = uhrzeitAusEingabe(text);
    if (!uhrzeit) return std::nullopt;
    const std::int64_t sekunden = uhrzeit->aufMinute().sekunden() + std::int64_t{60} * minuten;
    return uhrzeitAlsEingabe(Datum::ausSekunden((sekunden % kTag + kTag) % kTag));
}

}  // namespace wendel
