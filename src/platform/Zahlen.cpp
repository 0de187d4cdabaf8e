#include "platform/Zahlen.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <system_error>
#include <utility>

#include "platform/Fehler.h"

namespace wendel {

namespace {

[[noreturn]] void ueberlauf(const char* quelle) {
    throw Fehler(fehlernummer::kUeberlauf, quelle, "Überlauf");
}

bool istZiffer(char zeichen) { return zeichen >= '0' && zeichen <= '9'; }
bool istUeberlesbar(char zeichen) { return zeichen == ' ' || zeichen == '\t' || zeichen == '\n'; }
char gross(char zeichen) {
    return zeichen >= 'a' && zeichen <= 'z' ? static_cast<char>(zeichen - 32) : zeichen;
}

// The digits of a prefixed number. Numbers of 16 bits are signed 16-bit integers, longer ones signed 32-bit
// ones.
double mitPraefix(std::string_view ziffern, std::size_t basis) {
    std::uint64_t wert = 0;
    for (const char zeichen : ziffern) {
        const std::size_t ziffer = std::string_view("0123456789ABCDEF").substr(0, basis).find(gross(zeichen));
        if (ziffer == std::string_view::npos) break;
        wert = wert * basis + ziffer;
        if (wert > 0xFFFFFFFFu) ueberlauf("Val");
    }
    if (wert <= 0xFFFF) return static_cast<std::int16_t>(static_cast<std::uint16_t>(wert));
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(wert));
}

// The part of s from stelle that is a run of digits.
std::size_t ziffernEnde(std::string_view s, std::size_t stelle) {
    while (stelle < s.size() && istZiffer(s[stelle]))
        ++stelle;
    return stelle;
}

// Length of the longest unsigned decimal number at the start of s, 0 when there is none. The exponent sign is
// set to 'e' in place, the only one that from_chars knows.
std::size_t zahllaenge(std::string& s) {
    const std::size_t ganze = ziffernEnde(s, 0);
    std::size_t ende = ganze;
    if (ende < s.size() && s[ende] == '.') ende = ziffernEnde(s, ende + 1);
    if (ende - ganze <= 1 && ganze == 0) return 0;
    if (ende >= s.size() || (gross(s[ende]) != 'E' && gross(s[ende]) != 'D')) return ende;
    std::size_t exponent = ende + 1;
    if (exponent < s.size() && (s[exponent] == '+' || s[exponent] == '-')) ++exponent;
    const std::size_t exponentEnde = ziffernEnde(s, exponent);
    if (exponentEnde == exponent) return ende;
    s[ende] = 'e';
    return exponentEnde;
}

// Tells the two kinds of out-of-range numbers apart: only those far below 1 have a negative exponent here.
bool istWinzig(std::string_view zahl) {
    const std::size_t e = zahl.find('e');
    if (e != std::string_view::npos) return zahl[e + 1] == '-';
    return zahl.find_first_not_of("0.") > zahl.find('.');
}

double dezimalzahl(std::string text) {
    const std::size_t laenge = zahllaenge(text);
    if (laenge == 0) return 0;
    double wert = 0;
    if (std::from_chars(text.data(), text.data() + laenge, wert).ec == std::errc::result_out_of_range) {
        if (!istWinzig(std::string_view(text).substr(0, laenge))) ueberlauf("Val");
        return 0;
    }
    return wert;
}

template <class Zahl>
std::string alsText(Zahl wert) {
    if (wert == Zahl{0}) return "0";
    const Zahl betrag = std::fabs(wert);
    const bool ausgeschrieben = betrag >= Zahl(1e-5) && betrag < Zahl(1e15);
    std::array<char, 64> puffer;
    const auto format = ausgeschrieben ? std::chars_format::fixed : std::chars_format::scientific;
    const auto ende = std::to_chars(puffer.data(), puffer.data() + puffer.size(), wert, format).ptr;
    return std::string(puffer.data(), ende);
}

template <class Ganzzahl>
Ganzzahl gerundet(double wert, const char* quelle) {
    // The default rounding mode is the wanted one, half to even.
    const double ganz = std::nearbyint(wert);
    if (!(ganz >= static_cast<double>(std::numeric_limits<Ganzzahl>::min()) &&
          ganz <= static_cast<double>(std::numeric_limits<Ganzzahl>::max()))) {
        ueberlauf(quelle);
    }
    return static_cast<Ganzzahl>(ganz);
}

}  // namespace

double Val(std::string_view text) {
    std::string s;
    s.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(s), [](char z) { return !istUeberlesbar(z); });
    if (s.size() >= 2 && s[0] == '&') {
        if (gross(s[1]) == 'H') return mitPraefix(std::string_view(s).substr(2), 16);
        if (gross(s[1]) == 'O') return mitPraefix(std::string_view(s).substr(2), 8);
    }
    if (s.empty() || (s[0] != '-' && s[0] != '+')) return dezimalzahl(std::move(s));
    const double betrag = dezimalzahl(s.substr(1));
    return s[0] == '-' && betrag != 0 ? -betrag : betrag;
}

std::int16_t CInt(double wert) { return gerundet<std::int16_t>(wert, "CInt"); }
std::int32_t CLng(double wert) { return gerundet<std::int32_t>(wert, "CLng"); }

std::string zahlAlsText(double wert) { return alsText(wert); }
std::string einfachAlsText(float wert) { return alsText(wert); }

std::string mitNullen(std::int64_t wert, int stellen) {
    std::array<char, 24> puffer;
    char* const beginn = puffer.data();
    char* const ende = std::to_chars(beginn, beginn + puffer.size(), wert).ptr;
    char* const ziffern = beginn + (wert < 0 ? 1 : 0);
    std::string ergebnis(beginn, ziffern);
    const auto vorhanden = static_cast<int>(ende - ziffern);
    if (vorhanden < stellen) ergebnis.append(static_cast<std::size_t>(stellen - vorhanden), '0');
    return ergebnis.append(ziffern, ende);
}

}  // namespace wendel
