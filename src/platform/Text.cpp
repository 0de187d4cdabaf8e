#include "platform/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "platform/Fehler.h"

namespace wendel {

namespace {

// Characters that a field of a line can't hold, and what stands behind the backslash for each.
constexpr std::string_view kMaskiert = "\\\t\r\n", kKennungen = "\\trn";

struct Zeichen {
    char32_t punkt = 0;
    std::size_t laenge = 1;
    bool gueltig = false;
};

std::uint8_t byteAn(std::string_view text, std::size_t stelle) {
    return static_cast<std::uint8_t>(text[stelle]);
}

// The lead byte decides about the length and the range of the second byte (The Unicode Standard, table 3-7,
// well-formed UTF-8 byte sequences): no overlong forms, no surrogates, nothing beyond U+10FFFF.
Zeichen zeichenAn(std::string_view text, std::size_t stelle) {
    const std::uint8_t erstes = byteAn(text, stelle);
    if (erstes < 0x80) return {erstes, 1, true};
    const std::size_t laenge = erstes >= 0xF0 ? 4 : erstes >= 0xE0 ? 3 : 2;
    if (erstes < 0xC2 || erstes > 0xF4 || stelle + laenge > text.size()) return {erstes, 1, false};
    std::uint8_t mindestens = 0x80, hoechstens = 0xBF;
    if (erstes == 0xE0) mindestens = 0xA0;
    if (erstes == 0xED) hoechstens = 0x9F;
    if (erstes == 0xF0) mindestens = 0x90;
    if (erstes == 0xF4) hoechstens = 0x8F;
    char32_t punkt = erstes & (0x7Fu >> laenge);
    for (std::size_t i = 1; i < laenge; ++i) {
        const std::uint8_t folgendes = byteAn(text, stelle + i);
        if (folgendes < mindestens || folgendes > hoechstens) return {erstes, 1, false};
        mindestens = 0x80;
        hoechstens = 0xBF;
        punkt = punkt << 6 | (folgendes & 0x3Fu);
    }
    return {punkt, laenge, true};
}

// Byte offset after anzahl characters from offset on, at most the end.
std::size_t nachZeichen(std::string_view text, std::size_t offset, std::size_t anzahl) {
    while (anzahl-- > 0 && offset < text.size())
        offset += zeichenAn(text, offset).laenge;
    return offset;
}

void haengeAn(std::string& ziel, char32_t punkt) {
    const auto byte = [&](char32_t wert) { ziel += static_cast<char>(wert); };
    if (punkt < 0x80) return byte(punkt);
    if (punkt < 0x800) {
        byte(0xC0 | punkt >> 6);
    } else {
        byte(0xE0 | punkt >> 12);
        byte(0x80 | (punkt >> 6 & 0x3F));
    }
    byte(0x80 | (punkt & 0x3F));
}

void pruefeStart(const char* quelle, std::size_t start) {
    if (start >= 1) return;
    throw Fehler(fehlernummer::kUngueltigesArgument, quelle,
                 "Ungültiger Prozeduraufruf oder ungültiges Argument");
}

std::string_view beschnitten(std::string_view text, std::string_view zeichen) {
    const std::size_t von = text.find_first_not_of(zeichen);
    if (von == std::string_view::npos) return {};
    return text.substr(von, text.find_last_not_of(zeichen) + 1 - von);
}

// In Latin Extended-A a capital stands beside its small letter: at even places in some stretches, at odd in
// others.
bool istGrossbuchstabeInExtendedA(char32_t punkt) {
    const bool ungeradeIstGross = (punkt >= 0x139 && punkt <= 0x148) || (punkt >= 0x179 && punkt <= 0x17E);
    const bool geradeIstGross = (punkt >= 0x100 && punkt <= 0x12F) || (punkt >= 0x132 && punkt <= 0x137) ||
                                (punkt >= 0x14A && punkt <= 0x177);
    return (ungeradeIstGross && punkt % 2 == 1) || (geradeIstGross && punkt % 2 == 0);
}

bool istKleinbuchstabeInExtendedA(char32_t punkt) {
    return punkt > 0x100 && istGrossbuchstabeInExtendedA(punkt - 1);
}

char32_t klein(char32_t punkt) {
    if (punkt < 0x80) return punkt >= 'A' && punkt <= 'Z' ? punkt + 0x20 : punkt;
    if (punkt >= 0xC0 && punkt <= 0xDE && punkt != 0xD7) return punkt + 0x20;
    if (punkt == 0x178) return 0xFF;
    return istGrossbuchstabeInExtendedA(punkt) ? punkt + 1 : punkt;
}

char32_t gross(char32_t punkt) {
    if (punkt < 0x80) return punkt >= 'a' && punkt <= 'z' ? punkt - 0x20 : punkt;
    if (punkt >= 0xE0 && punkt <= 0xFE && punkt != 0xF7) return punkt - 0x20;
    if (punkt == 0xFF) return 0x178;
    return istKleinbuchstabeInExtendedA(punkt) ? punkt - 1 : punkt;
}

// All letters with a partner lie below U+0180 and have partners of the same length in UTF-8, so that the text
// can be changed in place; bytes of longer sequences are never lead bytes of these.
template <class Abbildung>
std::string umgewandelt(std::string_view text, Abbildung abbildung) {
    std::string ergebnis(text);
    for (std::size_t i = 0; i < ergebnis.size(); ++i) {
        const std::uint8_t erstes = byteAn(ergebnis, i);
        if (erstes < 0x80) {
            ergebnis[i] = static_cast<char>(abbildung(erstes));
        } else if (erstes >= 0xC3 && erstes <= 0xC5) {
            const Zeichen zeichen = zeichenAn(ergebnis, i);
            if (!zeichen.gueltig) continue;
            const char32_t neu = abbildung(zeichen.punkt);
            ergebnis[i] = static_cast<char>(0xC0 | neu >> 6);
            ergebnis[++i] = static_cast<char>(0x80 | (neu & 0x3F));
        }
    }
    return ergebnis;
}

// Windows-1252, 80 to 9F (the table of the Unicode Consortium, CP1252.TXT); the five free places map to
// themselves.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char windows1252Byte(const Zeichen& zeichen) {
    if (!zeichen.gueltig) return '?';
    if (zeichen.punkt < 0x80 || (zeichen.punkt >= 0xA0 && zeichen.punkt <= 0xFF)) {
        return static_cast<char>(zeichen.punkt);
    }
    const auto treffer = std::find(kWindows1252.begin(), kWindows1252.end(), zeichen.punkt);
    if (treffer == kWindows1252.end()) return '?';
    return static_cast<char>(0x80 + (treffer - kWindows1252.begin()));
}

bool nurAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char z) { return static_cast<std::uint8_t>(z) < 0x80; });
}

}  // namespace

std::size_t zeichenzahl(std::string_view text) {
    std::size_t anzahl = 0;
    for (std::size_t i = 0; i < text.size(); ++anzahl)
        i += zeichenAn(text, i).laenge;
    return anzahl;
}

std::u32string codepunkte(std::string_view text) {
    constexpr char32_t kErsatzzeichen = 0xFFFD;
    std::u32string punkte;
    for (std::size_t i = 0; i < text.size();) {
        const Zeichen zeichen = zeichenAn(text, i);
        punkte += zeichen.gueltig ? zeichen.punkt : kErsatzzeichen;
        i += zeichen.laenge;
    }
    return punkte;
}

std::string Mid(std::string_view text, std::size_t start) {
    pruefeStart("Mid", start);
    return std::string(text.substr(nachZeichen(text, 0, start - 1)));
}

std::string Mid(std::string_view text, std::size_t start, std::size_t laenge) {
    pruefeStart("Mid", start);
    const std::size_t von = nachZeichen(text, 0, start - 1);
    return std::string(text.substr(von, nachZeichen(text, von, laenge) - von));
}

std::string Left(std::string_view text, std::size_t laenge) {
    return std::string(text.substr(0, nachZeichen(text, 0, laenge)));
}

std::string Right(std::string_view text, std::size_t laenge) {
    const std::size_t gesamt = zeichenzahl(text);
    return std::string(text.substr(nachZeichen(text, 0, gesamt - std::min(gesamt, laenge))));
}

std::size_t InStr(std::string_view text, std::string_view gesucht, std::size_t start) {
    pruefeStart("InStr", start);
    std::size_t offset = nachZeichen(text, 0, start - 1);
    // Goes from character to character, so that no match begins inside one.
    for (std::size_t position = start; offset < text.size(); ++position) {
        if (text.substr(offset, gesucht.size()) == gesucht) return position;
        offset += zeichenAn(text, offset).laenge;
    }
    return 0;
}

std::string Trim(std::string_view text) { return std::string(beschnitten(text, " ")); }

std::string trimAlleLeerraeume(std::string_view text) {
    return std::string(beschnitten(text, std::string_view(" \t\r\n\0", 5)));
}

std::string LCase(std::string_view text) { return umgewandelt(text, klein); }
std::string UCase(std::string_view text) { return umgewandelt(text, gross); }

bool gleichOhneGrossKlein(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    return a == b || LCase(a) == LCase(b);
}

std::vector<std::string> Split(std::string_view text, std::string_view trenner, std::size_t hoechstens) {
    std::vector<std::string> teile;
    if (text.empty()) return teile;
    while (hoechstens == 0 || teile.size() + 1 < hoechstens) {
        const std::size_t stelle = trenner.empty() ? std::string_view::npos : text.find(trenner);
        if (stelle == std::string_view::npos) break;
        teile.emplace_back(text.substr(0, stelle));
        text.remove_prefix(stelle + trenner.size());
    }
    teile.emplace_back(text);
    return teile;
}

std::string Join(const std::vector<std::string>& teile, std::string_view trenner) {
    std::string ergebnis;
    for (std::size_t i = 0; i < teile.size(); ++i) {
        if (i > 0) ergebnis += trenner;
        ergebnis += teile[i];
    }
    return ergebnis;
}

std::string ersetzt(std::string_view text, std::string_view gesucht, std::string_view neu) {
    if (gesucht.empty()) return std::string(text);
    std::string ergebnis;
    for (;;) {
        const std::size_t stelle = text.find(gesucht);
        ergebnis += text.substr(0, stelle);
        if (stelle == std::string_view::npos) return ergebnis;
        ergebnis += neu;
        text.remove_prefix(stelle + gesucht.size());
    }
}

bool istUtf8(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        const Zeichen zeichen = zeichenAn(bytes, i);
        if (!zeichen.gueltig) return false;
        i += zeichen.laenge;
    }
    return true;
}

std::string ausWindows1252(std::string_view bytes) {
    std::string ergebnis;
    ergebnis.reserve(bytes.size());
    for (const char zeichen : bytes) {
        const auto byte = static_cast<std::uint8_t>(zeichen);
        haengeAn(ergebnis, byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80u] : byte);
    }
    return ergebnis;
}

std::string nachWindows1252(std::string_view utf8) {
    std::string ergebnis;
    ergebnis.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const Zeichen zeichen = zeichenAn(utf8, i);
        ergebnis += windows1252Byte(zeichen);
        i += zeichen.laenge;
    }
    return ergebnis;
}

std::vector<std::string> textzeilen(std::string_view dateiinhalt) {
    constexpr std::string_view kBom = "\xEF\xBB\xBF";
    const bool mitBom = dateiinhalt.starts_with(kBom);
    if (mitBom) dateiinhalt.remove_prefix(kBom.size());
    const bool bleibt = mitBom || nurAscii(dateiinhalt) || istUtf8(dateiinhalt);
    const std::string text = bleibt ? std::string(dateiinhalt) : ausWindows1252(dateiinhalt);
    std::vector<std::string> zeilen;
    for (std::size_t von = 0; von < text.size();) {
        const std::size_t bis = std::min(text.find_first_of("\r\n", von), text.size());
        zeilen.push_back(text.substr(von, bis - von));
        von = bis + (text.compare(bis, kCrLf.size(), kCrLf) == 0 ? 2 : 1);
    }
    return zeilen;
}

std::string maskiert(std::string_view text) {
    std::string ergebnis;
    for (const char c : text) {
        const std::size_t stelle = kMaskiert.find(c);
        if (stelle == std::string_view::npos) {
            ergebnis += c;
        } else {
            ergebnis += {'\\', kKennungen[stelle]};
        }
    }
    return ergebnis;
}

std::optional<std::string> demaskiert(std::string_view text) {
    std::string ergebnis;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            ergebnis += text[i];
            continue;
        }
        if (++i == text.size()) return std::nullopt;
        const std::size_t stelle = kKennungen.find(text[i]);
        if (stelle == std::string_view::npos) return std::nullopt;
        ergebnis += kMaskiert[stelle];
    }
    return ergebnis;
}

}  // namespace wendel
