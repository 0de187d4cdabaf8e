#include "platform/Datumstext.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"

namespace wendel {

namespace {

[[noreturn]] void unbekanntesFormat(std::string_view text) {
    throw Fehler(fehlernummer::kEigener, "DatumAusText",
                 "Der Datumsausdruck \"" + std::string(text) +
                     "\" wurde gefunden. Das Format kann nicht erkannt werden.");
}

bool enthaelt(std::string_view text, char zeichen) { return text.find(zeichen) != std::string_view::npos; }

// ---- fixed positions ----

// What does not fit into 16 bits counts as 0 like anything else that is no number.
int feld(std::string_view text, std::size_t start, std::size_t laenge) {
    try {
        return CInt(Val(Mid(text, start, laenge)));
    } catch (const Fehler&) {
        return 0;
    }
}

Datum deutschesDatum(std::string_view text) {
    return DateSerial(feld(text, 7, 4), feld(text, 4, 2), feld(text, 1, 2));
}

Datum kompaktesDatum(std::string_view text) {
    return DateSerial(feld(text, 1, 4), feld(text, 5, 2), feld(text, 7, 2)) +
           TimeSerial(feld(text, 9, 2), feld(text, 11, 2), feld(text, 13, 2));
}

Datum uhrzeitNachLeerzeichen(std::string_view text) {
    const std::size_t leerzeichen = InStr(text, " ");
    if (leerzeichen == 0) return Datum();
    return TimeSerial(feld(text, leerzeichen + 1, 2), feld(text, leerzeichen + 4, 2),
                      feld(text, leerzeichen + 7, 2));
}

// Nothing when the text is none of the forms that are recognised by their characters alone.
std::optional<Datum> nachFestenStellen(std::string_view text) {
    const bool punkt = enthaelt(text, '.');
    const bool doppelpunkt = enthaelt(text, ':');
    if (!punkt && !doppelpunkt && !enthaelt(text, '/') && zeichenzahl(text) == 14)
        return kompaktesDatum(text);
    if (punkt && !doppelpunkt) return deutschesDatum(text);
    if (punkt) return deutschesDatum(text) + uhrzeitNachLeerzeichen(text);
    return std::nullopt;
}

// ---- general conversion, as a German system does it ----

// One to hoechstens digits and nothing else.
std::optional<int> ziffern(std::string_view text, std::size_t hoechstens) {
    if (text.empty() || text.size() > hoechstens) return std::nullopt;
    int wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (text[0] == '-' || fehler != std::errc() || ende != text.data() + text.size()) return std::nullopt;
    return wert;
}

std::optional<Datum> allgemeineUhrzeit(std::string_view text) {
    const std::vector<std::string> teile = Split(text, ":");
    if (teile.size() < 2 || teile.size() > 3) return std::nullopt;
    const auto stunde = ziffern(teile[0], 2);
    const auto minute = ziffern(teile[1], 2);
    const auto sekunde = teile.size() == 3 ? ziffern(teile[2], 2) : 0;
    if (!stunde || !minute || !sekunde || *stunde > 23 || *minute > 59 || *sekunde > 59) return std::nullopt;
    return TimeSerial(*stunde, *minute, *sekunde);
}

std::optional<int> jahreszahl(std::string_view text) {
    const auto jahr = ziffern(text, 4);
    if (!jahr) return std::nullopt;
    if (text.size() <= 2) return *jahr + (*jahr < 30 ? 2000 : 1900);
    return *jahr >= 100 ? jahr : std::nullopt;
}

std::optional<Datum> kalendertag(int jahr, int monat, int tag) {
    if (!istKalendertag(jahr, monat, tag)) return std::nullopt;
    return DateSerial(jahr, monat, tag);
}

std::optional<Datum> datumAusZahlen(const std::vector<std::string>& teile) {
    if (teile.size() != 3) return std::nullopt;
    const bool jahrZuerst = teile[0].size() >= 3;
    const auto jahr = jahreszahl(jahrZuerst ? teile[0] : teile[2]);
    const auto erste = ziffern(teile[jahrZuerst ? 1 : 0], 2);
    const auto zweite = ziffern(teile[jahrZuerst ? 2 : 1], 2);
    if (!jahr || !erste || !zweite) return std::nullopt;
    if (jahrZuerst) return kalendertag(*jahr, *erste, *zweite);
    const auto tagZuerst = kalendertag(*jahr, *zweite, *erste);
    return tagZuerst ? tagZuerst : kalendertag(*jahr, *erste, *zweite);
}

std::optional<int> monatsnummer(std::string_view name) {
    static constexpr std::array<std::string_view, 12> kMonate = {
        "Januar", "Februar", "März",      "April",   "Mai",      "Juni",
        "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
    static constexpr std::array<std::string_view, 12> kKurz = {"Jan", "Feb", "Mrz", "Apr", "Mai", "Jun",
                                                               "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"};
    for (std::size_t i = 0; i < kMonate.size(); ++i) {
        if (gleichOhneGrossKlein(name, kMonate[i]) || gleichOhneGrossKlein(name, kKurz[i])) {
            return static_cast<int>(i) + 1;
        }
    }
    return std::nullopt;
}

std::optional<Datum> datumMitMonatsnamen(std::string_view text) {
    const std::vector<std::string> teile = Split(text, " ");
    if (teile.size() != 3) return std::nullopt;
    const auto tag = ziffern(teile[0], 2);
    const auto monat = monatsnummer(teile[1]);
    const auto jahr = jahreszahl(teile[2]);
    if (!tag || !monat || !jahr) return std::nullopt;
    return kalendertag(*jahr, *monat, *tag);
}

std::optional<Datum> allgemeinesDatum(std::string_view text) {
    if (enthaelt(text, '/')) return datumAusZahlen(Split(text, "/"));
    if (enthaelt(text, '-')) return datumAusZahlen(Split(text, "-"));
    return datumMitMonatsnamen(text);
}

std::optional<Datum> allgemeineUmwandlung(std::string_view text) {
    const std::string getrimmt = Trim(text);
    const std::size_t doppelpunkt = getrimmt.find(':');
    if (doppelpunkt == std::string::npos) return allgemeinesDatum(getrimmt);
    const std::size_t luecke = getrimmt.rfind(' ', doppelpunkt);
    if (luecke == std::string::npos) return allgemeineUhrzeit(getrimmt);
    const auto uhrzeit = allgemeineUhrzeit(getrimmt.substr(luecke + 1));
    const auto tag = allgemeinesDatum(Trim(getrimmt.substr(0, luecke)));
    if (!uhrzeit || !tag) return std::nullopt;
    return *tag + *uhrzeit;
}

Datum bisEndeDesKalenders(Datum d) {
    const Datum letzter = DateSerial(9999, 12, 31) + TimeSerial(23, 59, 59);
    if (d > letzter) throw Fehler(fehlernummer::kUngueltigesArgument, "DatumAusText", "Datum zu groß.");
    return d;
}

}  // namespace

Datum datumAusText(std::string_view text) {
    try {
        if (const auto fest = nachFestenStellen(text)) return bisEndeDesKalenders(*fest);
        if (const auto allgemein = allgemeineUmwandlung(text)) return *allgemein;
    } catch (const Fehler&) {
        // The calendar has no such day; the user is told which text it was, as for any other that is no date.
    }
    unbekanntesFormat(text);
}

}  // namespace wendel
