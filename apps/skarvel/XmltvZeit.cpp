#include "XmltvZeit.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <ctime>
#include <optional>
#include <string>

#include "platform/Fehler.h"
#include "platform/Text.h"

namespace wendel::skarvel {
namespace {

constexpr std::int64_t kTag = 86400;
constexpr std::int64_t kTage1899bis1970 = 25569;
// The database's calendar ends with this year; some write its last day for an end that is not known.
constexpr std::int64_t kLetzterMoment =
    std::chrono::sys_days(std::chrono::year(9999) / 12 / 28).time_since_epoch().count() * kTag;
constexpr int kGroessterAbstand = 14 * 60;  // minutes; no zone is farther from universal time

struct Zonenname {
    std::string_view name;
    int minuten;
};
constexpr auto kZonennamen = std::to_array<Zonenname>({
    {"Z", 0},
    {"UT", 0},
    {"UTC", 0},
    {"GMT", 0},
    {"WET", 0},
    {"WEST", 60},
    {"BST", 60},
    {"CET", 60},
    {"MEZ", 60},
    {"CEST", 120},
    {"MESZ", 120},
    {"EET", 120},
    {"EEST", 180},
});

// The next `stellen` digits; nothing when there are fewer.
std::optional<int> ziffern(std::string_view& text, std::size_t stellen) {
    if (text.size() < stellen) return std::nullopt;
    int zahl = 0;
    for (const char zeichen : text.substr(0, stellen)) {
        if (zeichen < '0' || zeichen > '9') return std::nullopt;
        zahl = zahl * 10 + (zeichen - '0');
    }
    text.remove_prefix(stellen);
    return zahl;
}

// Minutes to add to universal time.
std::optional<int> zone(std::string_view text) {
    if (text.empty()) return 0;
    if (text.front() != '+' && text.front() != '-') {
        for (const Zonenname& bekannt : kZonennamen) {
            if (bekannt.name == text) return bekannt.minuten;
        }
        return std::nullopt;
    }
    const int vorzeichen = text.front() == '-' ? -1 : 1;
    text.remove_prefix(1);
    const auto stunden = ziffern(text, 2);
    if (text.starts_with(':')) text.remove_prefix(1);
    const auto minuten = ziffern(text, 2);
    if (!stunden || !minuten || !text.empty() || *minuten > 59) return std::nullopt;
    const int abstand = *stunden * 60 + *minuten;
    if (abstand > kGroessterAbstand) return std::nullopt;
    return vorzeichen * abstand;
}

std::optional<Weltzeit> gelesen(std::string_view text) {
    const auto jahr = ziffern(text, 4), monat = ziffern(text, 2), tag = ziffern(text, 2);
    if (!jahr || !monat || !tag) return std::nullopt;
    const std::chrono::year_month_day datum(std::chrono::year(*jahr),
                                            std::chrono::month(static_cast<unsigned>(*monat)),
                                            std::chrono::day(static_cast<unsigned>(*tag)));
    if (!datum.ok() || *jahr < 1970) return std::nullopt;
    std::array<int, 3> uhrzeit{};
    for (int& teil : uhrzeit) {
        if (text.empty() || !std::isdigit(static_cast<unsigned char>(text.front()))) break;
        const auto zahl = ziffern(text, 2);
        if (!zahl) return std::nullopt;
        teil = *zahl;
    }
    if (uhrzeit[0] > 23 || uhrzeit[1] > 59 || uhrzeit[2] > 59) return std::nullopt;
    const auto abstand = zone(Trim(text));
    if (!abstand) return std::nullopt;
    const auto tage = std::chrono::sys_days(datum).time_since_epoch().count();
    const std::int64_t moment =
        tage * kTag + uhrzeit[0] * 3600 + uhrzeit[1] * 60 + uhrzeit[2] - *abstand * 60;
    return std::min(moment, kLetzterMoment);
}

}  // namespace

Weltzeit weltzeitAus(std::string_view text) {
    const std::string bereinigt = trimAlleLeerraeume(text);
    if (const auto moment = gelesen(bereinigt)) return *moment;
    throw Fehler(fehlernummer::kEigener, "XMLTV",
                 "Die Zeitangabe \"" + Left(bereinigt, 40) + "\" ist nicht lesbar.");
}

Datum ortszeit(Weltzeit moment) {
    const std::time_t zeit = moment;
    std::tm teile{};
    if (!::localtime_r(&zeit, &teile)) return {};
    return Datum::ausSekunden(kTage1899bis1970 * kTag + moment + teile.tm_gmtoff);
}

}  // namespace wendel::skarvel
