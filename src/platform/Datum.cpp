#include "platform/Datum.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <initializer_list>

#include "platform/Fehler.h"
#include "platform/Zahlen.h"

namespace wendel {

namespace {

constexpr std::int64_t kTag = 86400;
// 1 January 100 and the day after 31 December 9999.
constexpr std::int64_t kErsterTag = -657434;
constexpr std::int64_t kEndeTag = 2958466;

// 30 December 1899 as the calendar types count: days since 1 January 1970.
constexpr std::int64_t kNulltag =
    std::chrono::sys_days(std::chrono::year{1899} / 12 / 30).time_since_epoch().count();

constexpr std::int64_t abgerundet(std::int64_t zaehler, std::int64_t nenner) {
    const std::int64_t quotient = zaehler / nenner;
    return quotient - (zaehler % nenner < 0 ? 1 : 0);
}

std::int64_t tagVon(Datum d) { return abgerundet(d.sekunden(), kTag); }

constexpr std::array<std::string_view, 7> kTagesnamen = {"Sonntag",    "Montag",  "Dienstag", "Mittwoch",
                                                         "Donnerstag", "Freitag", "Samstag"};
constexpr std::array<std::string_view, 12> kMonatsnamen = {"Januar",    "Februar", "März",     "April",
                                                           "Mai",       "Juni",    "Juli",     "August",
                                                           "September", "Oktober", "November", "Dezember"};
constexpr std::array<std::string_view, 12> kKurzmonate = {"Jan", "Feb", "Mrz", "Apr", "Mai", "Jun",
                                                          "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"};

int ziffern(std::string_view text, std::size_t stelle, std::size_t anzahl) {
    int wert = 0;
    std::from_chars(text.data() + stelle, text.data() + stelle + anzahl, wert);
    return wert;
}

void pruefe16Bit(const char* quelle, std::initializer_list<std::int64_t> werte) {
    const auto passt = [](std::int64_t w) { return w >= -32768 && w <= 32767; };
    if (!std::all_of(werte.begin(), werte.end(), passt)) {
        throw Fehler(fehlernummer::kUeberlauf, quelle, "Überlauf");
    }
}

[[noreturn]] void ungueltig(const char* quelle) {
    throw Fehler(fehlernummer::kUngueltigesArgument, quelle,
                 "Ungültiger Prozeduraufruf oder ungültiges Argument");
}

constexpr std::int64_t einheitInSekunden(Einheit einheit) {
    switch (einheit) {
        case Einheit::Sekunde: return 1;
        case Einheit::Minute: return 60;
        case Einheit::Stunde: return 3600;
        case Einheit::Tag: return kTag;
    }
    return 1;
}

// Two digits for the values of a date, without the cost of a general number format.
void haengeZweistelligAn(std::string& ziel, int wert) {
    ziel += static_cast<char>('0' + wert / 10);
    ziel += static_cast<char>('0' + wert % 10);
}

void haengeAn(std::string& ziel, int wert, std::size_t stellen) {
    if (stellen == 2) {
        haengeZweistelligAn(ziel, wert);
    } else {
        ziel += mitNullen(wert, static_cast<int>(stellen));
    }
}

constexpr char klein(char zeichen) {
    return zeichen >= 'A' && zeichen <= 'Z' ? static_cast<char>(zeichen + 32) : zeichen;
}

// Length of the token at stelle: the run of its letter, as far as the letter has such a token; 0 when it has
// none.
std::size_t tokenlaenge(std::string_view muster, std::size_t stelle) {
    const char art = klein(muster[stelle]);
    std::size_t hoechstens = 0;
    switch (art) {
        case 'd':
        case 'm':
        case 'y': hoechstens = 4; break;
        case 'h':
        case 'n':
        case 's': hoechstens = 2; break;
        default: return 0;
    }
    std::size_t laenge = 1;
    while (laenge < hoechstens && stelle + laenge < muster.size() && klein(muster[stelle + laenge]) == art) {
        ++laenge;
    }
    if (art == 'y' && laenge < 4) return laenge >= 2 ? 2 : 0;
    return laenge;
}

void haengeTagAn(std::string& ziel, const Datumsteile& teile, std::size_t laenge) {
    const std::string_view name = kTagesnamen[static_cast<std::size_t>(teile.wochentag - 1)];
    if (laenge <= 2) return haengeAn(ziel, teile.tag, laenge);
    ziel += laenge == 3 ? name.substr(0, 2) : name;
}

void haengeMonatAn(std::string& ziel, const Datumsteile& teile, std::size_t laenge) {
    const auto stelle = static_cast<std::size_t>(teile.monat - 1);
    if (laenge <= 2) return haengeAn(ziel, teile.monat, laenge);
    ziel += laenge == 3 ? kKurzmonate[stelle] : kMonatsnamen[stelle];
}

void haengeTokenAn(std::string& ziel, const Datumsteile& teile, char art, std::size_t laenge,
                   bool nachStunde) {
    switch (art) {
        case 'd': return haengeTagAn(ziel, teile, laenge);
        case 'm':
            if (nachStunde && laenge <= 2) return haengeAn(ziel, teile.minute, laenge);
            return haengeMonatAn(ziel, teile, laenge);
        case 'y': return haengeAn(ziel, laenge == 2 ? teile.jahr % 100 : teile.jahr, laenge);
        case 'h': return haengeAn(ziel, teile.stunde, laenge);
        case 'n': return haengeAn(ziel, teile.minute, laenge);
        default: return haengeAn(ziel, teile.sekunde, laenge);
    }
}

}  // namespace

Datum Datum::ausTageszahl(double tage) {
    // Written so that NaN fails it too.
    if (!(tage > static_cast<double>(kErsterTag - 1) && tage < static_cast<double>(kEndeTag))) {
        throw Fehler(fehlernummer::kUeberlauf, "Datum", "Überlauf");
    }
    const double ganze = std::trunc(tage);
    const std::int64_t sekunden = static_cast<std::int64_t>(ganze) * kTag +
                                  std::llround(std::fabs(tage - ganze) * static_cast<double>(kTag));
    if (sekunden >= kEndeTag * kTag) throw Fehler(fehlernummer::kUeberlauf, "Datum", "Überlauf");
    return Datum(sekunden);
}

double Datum::tageszahl() const {
    const std::int64_t tag = abgerundet(sekunden_, kTag);
    const double bruch = static_cast<double>(sekunden_ - tag * kTag) / 86400.0;
    return tag < 0 ? static_cast<double>(tag) - bruch : static_cast<double>(tag) + bruch;
}

Datum Datum::datumsteil() const { return Datum(tagVon(*this) * kTag); }
Datum Datum::uhrzeitteil() const { return Datum(sekunden_ - tagVon(*this) * kTag); }
Datum Datum::aufMinute() const { return Datum(abgerundet(sekunden_, 60) * 60); }

Datumsteile zerlegt(Datum d) {
    const std::int64_t tag = tagVon(d);
    const auto sekunde = static_cast<int>(d.sekunden() - tag * kTag);
    const std::chrono::sys_days tagImKalender{std::chrono::days{tag + kNulltag}};
    const std::chrono::year_month_day ymd{tagImKalender};
    return {static_cast<int>(ymd.year()),
            static_cast<int>(static_cast<unsigned>(ymd.month())),
            static_cast<int>(static_cast<unsigned>(ymd.day())),
            sekunde / 3600,
            sekunde / 60 % 60,
            sekunde % 60,
            Weekday(d)};
}

int Weekday(Datum d) {
    // Day zero was a Saturday.
    const std::int64_t tag = tagVon(d);
    return static_cast<int>(tag - abgerundet(tag + 6, 7) * 7 + 6) + 1;
}

int wochentagAbMontag(Datum d) { return (Weekday(d) + 5) % 7 + 1; }

std::int64_t DateDiff(Einheit einheit, Datum a, Datum b) {
    const std::int64_t laenge = einheitInSekunden(einheit);
    return abgerundet(b.sekunden(), laenge) - abgerundet(a.sekunden(), laenge);
}

Datum DateAdd(Einheit einheit, std::int64_t anzahl, Datum d) {
    // More than the whole calendar in either direction; also keeps the product inside 64 bits.
    constexpr std::int64_t kGrenze = (kEndeTag - kErsterTag) * kTag;
    if (anzahl > kGrenze || anzahl < -kGrenze) ungueltig("DateAdd");
    const Datum summe = d.plusSekunden(anzahl * einheitInSekunden(einheit));
    if (summe.sekunden() < kErsterTag * kTag || summe.sekunden() >= kEndeTag * kTag) ungueltig("DateAdd");
    return summe;
}

Datum DateSerial(std::int64_t jahr, std::int64_t monat, std::int64_t tag) {
    pruefe16Bit("DateSerial", {jahr, monat, tag});
    if (jahr >= 0 && jahr <= 29) jahr += 2000;
    if (jahr >= 30 && jahr <= 99) jahr += 1900;
    const std::int64_t monate = jahr * 12 + monat - 1;
    const std::int64_t jahrNachUebertrag = abgerundet(monate, 12);
    // A 16-bit number of days is less than 90 years: from further away no day comes back into the calendar.
    if (jahrNachUebertrag < 10 || jahrNachUebertrag > 10090) ungueltig("DateSerial");
    const std::chrono::year_month_day erster{
        std::chrono::year{static_cast<int>(jahrNachUebertrag)},
        std::chrono::month{static_cast<unsigned>(monate - jahrNachUebertrag * 12 + 1)}, std::chrono::day{1}};
    const std::int64_t tageszahl =
        std::chrono::sys_days{erster}.time_since_epoch().count() - kNulltag + tag - 1;
    if (tageszahl < kErsterTag || tageszahl >= kEndeTag) ungueltig("DateSerial");
    return Datum::ausSekunden(tageszahl * kTag);
}

Datum TimeSerial(std::int64_t stunde, std::int64_t minute, std::int64_t sekunde) {
    pruefe16Bit("TimeSerial", {stunde, minute, sekunde});
    return Datum::ausSekunden(stunde * 3600 + minute * 60 + sekunde);
}

bool istKalendertag(int jahr, int monat, int tag) {
    if (jahr < 100 || jahr > 9999 || monat < 1 || monat > 12 || tag < 1 || tag > 31) return false;
    return (std::chrono::year{jahr} / monat / tag).ok();
}

std::string Format(Datum d, std::string_view muster) {
    const Datumsteile teile = zerlegt(d);
    std::string ergebnis;
    ergebnis.reserve(muster.size() + 8);
    bool nachStunde = false;
    for (std::size_t i = 0; i < muster.size();) {
        if (const std::size_t laenge = tokenlaenge(muster, i); laenge > 0) {
            const char art = klein(muster[i]);
            haengeTokenAn(ergebnis, teile, art, laenge, nachStunde);
            nachStunde = art == 'h';
            i += laenge;
            continue;
        }
        const bool literal = muster[i] == '\\' && i + 1 < muster.size();
        if (literal) ++i;
        ergebnis += muster[i] == '/' && !literal ? '.' : muster[i];
        ++i;
    }
    return ergebnis;
}

std::string datumAlsText(Datum d) {
    if (d.datumsteil() == Datum()) return Format(d, "hh:nn:ss");
    return Format(d, d.uhrzeitteil() == Datum() ? "dd.mm.yyyy" : "dd.mm.yyyy hh:nn:ss");
}

std::string datumKompakt(Datum d) { return Format(d, "yyyymmddhhnnss"); }

std::optional<Datum> datumAusKompakt(std::string_view text) {
    constexpr std::size_t kStellen = 14;
    const auto istZiffer = [](char c) { return c >= '0' && c <= '9'; };
    if (text.size() != kStellen || !std::all_of(text.begin(), text.end(), istZiffer)) return std::nullopt;
    const int jahr = ziffern(text, 0, 4), monat = ziffern(text, 4, 2), tag = ziffern(text, 6, 2);
    const int stunde = ziffern(text, 8, 2), minute = ziffern(text, 10, 2), sekunde = ziffern(text, 12, 2);
    if (!istKalendertag(jahr, monat, tag)) return std::nullopt;
    if (stunde > 23 || minute > 59 || sekunde > 59) return std::nullopt;
    return DateSerial(jahr, monat, tag) + TimeSerial(stunde, minute, sekunde);
}

}  // namespace wendel
