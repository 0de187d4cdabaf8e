#include "desktop/Registrierungsdatei.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "desktop/Dateideskriptor.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/Pfade.h"
#include "platform/Text.h"

namespace wendel {

namespace {

constexpr std::string_view kRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::string_view kAutostartwert = "Wendel";
constexpr std::string_view kKopfzeile = "# Einstellungen der Programme dieses Benutzers\n";
constexpr int kSperrfristMs = 10'000, kSperrtaktMs = 5;

// The file: "[key]" lines, below each its values as "name"=type:"data". Names and data are shown as the code
// page reads them, with control characters, quotes and backslashes as \xNN, so that every byte comes back.

std::string fuerDatei(std::string_view text) {
    static constexpr std::string_view kHex = "0123456789abcdef";
    std::string zeile;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || c == '"' || c == '\\' || c == ']') {
            zeile.append("\\x").append(1, kHex[byte >> 4]).append(1, kHex[byte & 15U]);
        } else {
            zeile += c;
        }
    }
    return zeile;
}

int hexziffer(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string ausDatei(std::string_view zeile) {
    std::string text;
    for (std::size_t i = 0; i < zeile.size(); ++i) {
        const bool flucht = zeile.substr(i, 2) == "\\x" && i + 3 < zeile.size();
        const int oben = flucht ? hexziffer(zeile[i + 2]) : -1;
        const int unten = flucht ? hexziffer(zeile[i + 3]) : -1;
        if (oben < 0 || unten < 0) {
            text += zeile[i];
        } else {
            text += static_cast<char>(oben * 16 + unten);
            i += 3;
        }
    }
    return text;
}

std::string alsText(const Registrierungsdatei::Inhalt& inhalt) {
    std::string text;
    for (const auto& [pfad, abschnitt] : inhalt) {
        if (!pfad.empty()) text += "\n[" + fuerDatei(pfad) + "]\n";
        for (const std::string& zeile : abschnitt.uebrigeZeilen)
            text += zeile + '\n';
        for (const auto& [name, wert] : abschnitt.werte) {
            text += '"' + fuerDatei(name) + "\"=" + std::to_string(wert.typ) + ":\"" +
                    fuerDatei(ausWindows1252(wert.daten)) + "\"\n";
        }
    }
    return text;
}

// "name"=type:"data"; nothing for a line that is none.
std::optional<std::pair<std::string, Registrierungswert>> wertzeile(std::string_view zeile) {
    const std::size_t nachName = zeile.find("\"=", 1);
    const std::size_t vorDaten = zeile.find(":\"", nachName == std::string_view::npos ? 0 : nachName);
    if (!zeile.starts_with('"') || !zeile.ends_with('"') || nachName == std::string_view::npos ||
        vorDaten == std::string_view::npos || vorDaten + 2 >= zeile.size())
        return std::nullopt;
    std::uint32_t typ = 0;
    for (const char c : zeile.substr(nachName + 2, vorDaten - nachName - 2)) {
        if (c < '0' || c > '9' || typ > 99) return std::nullopt;
        typ = typ * 10 + static_cast<std::uint32_t>(c - '0');
    }
    const std::string_view daten = zeile.substr(vorDaten + 2, zeile.size() - vorDaten - 3);
    return std::pair(ausDatei(zeile.substr(1, nachName - 1)),
                     Registrierungswert{typ, nachWindows1252(ausDatei(daten))});
}

Registrierungsdatei::Inhalt ausText(std::string_view text) {
    Registrierungsdatei::Inhalt inhalt;
    Registrierungsdatei::Abschnitt* abschnitt = &inhalt[""];
    for (const std::string& eine : Split(text, "\n")) {
        std::string_view zeile = eine;
        if (zeile.ends_with('\r')) zeile.remove_suffix(1);  // an editor of another system
        if (zeile.starts_with('[') && zeile.ends_with(']')) {
            abschnitt = &inhalt[ausDatei(zeile.substr(1, zeile.size() - 2))];
        } else if (auto wert = wertzeile(zeile)) {
            abschnitt->werte[wert->first] = std::move(wert->second);
        } else if (!zeile.empty()) {
            abschnitt->uebrigeZeilen.emplace_back(zeile);
        }
    }
    return inhalt;
}

// Held for one change; who can't lock must not write.
Dateideskriptor sperre(const std::string& datei) {
    Dateideskriptor fd(::open((datei + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600));
    for (int gewartet = 0; fd && gewartet <= kSperrfristMs; gewartet += kSperrtaktMs) {
        if (::flock(fd.get(), LOCK_EX | LOCK_NB) == 0) return fd;
        if (errno != EWOULDBLOCK && errno != EINTR) break;
        ::poll(nullptr, 0, kSperrtaktMs);
    }
    return {};
}

std::string ohneRandtrenner(std::string_view pfad) {
    while (pfad.starts_with('\\'))
        pfad.remove_prefix(1);
    while (pfad.ends_with('\\'))
        pfad.remove_suffix(1);
    return std::string(pfad);
}

bool istAutostart(const std::string& pfad, const std::string& name) {
    return gleichOhneGrossKlein(pfad, kRun) && gleichOhneGrossKlein(name, kAutostartwert);
}

std::string ohneNull(const std::string& daten) {
    return ausWindows1252(daten.ends_with('\0') ? daten.substr(0, daten.size() - 1) : daten);
}

}  // namespace

bool Registrierungsdatei::OhneGrossKlein::operator()(std::string_view a, std::string_view b) const {
    return LCase(a) < LCase(b);
}

Registrierungsdatei::Registrierungsdatei(std::string datei, Autostarteintrag autostart)
    : datei_(std::move(datei)), autostart_(std::move(autostart)) {}

Registrierungsdatei::Inhalt Registrierungsdatei::lesen() const {
    return ausText(LinuxDateisystem().lesen(datei_).value_or(""));
}

// A file that is there but can't be read is not replaced by an empty one.
template <class Aenderung>
bool Registrierungsdatei::aendern(Aenderung aenderung) {
    LinuxDateisystem dateien;
    if (!dateien.ordnerAnlegen(logischerPfad(elternordner(datei_)))) return false;
    const Dateideskriptor gesperrt = sperre(datei_);
    if (!gesperrt) return false;
    const std::optional<std::string> text = dateien.lesen(datei_);
    if (!text && dateien.existiert(datei_)) return false;
    Inhalt inhalt = ausText(text ? *text : kKopfzeile);
    return aenderung(inhalt) && dateien.ersetzen(datei_, alsText(inhalt));
}

Registrierung::Schluessel Registrierungsdatei::merke(const std::string& pfad, std::uint32_t rechte) {
    offene_[naechster_] = {pfad, rechte};
    return naechster_++;
}

const Registrierungsdatei::Offen* Registrierungsdatei::offen(Schluessel schluessel,
                                                             std::uint32_t recht) const {
    const auto gefunden = offene_.find(schluessel);
    const bool erlaubt = gefunden != offene_.end() && (gefunden->second.rechte & recht) == recht;
    return erlaubt ? &gefunden->second : nullptr;
}

Registrierung::Schluessel Registrierungsdatei::oeffnen(Registrierungswurzel wurzel, const std::string& pfad,
                                                       std::uint32_t rechte) {
    const std::string schluessel = ohneRandtrenner(pfad);
    const bool vorhanden = wurzel == Registrierungswurzel::AktuellerBenutzer &&
                           (gleichOhneGrossKlein(schluessel, kRun) || lesen().contains(schluessel));
    return vorhanden ? merke(schluessel, rechte) : 0;
}

Registrierung::Schluessel Registrierungsdatei::anlegen(Registrierungswurzel wurzel, const std::string& pfad,
                                                       std::uint32_t rechte) {
    const std::string schluessel = ohneRandtrenner(pfad);
    if (wurzel != Registrierungswurzel::AktuellerBenutzer || schluessel.empty()) return 0;
    const bool angelegt = aendern([&](Inhalt& inhalt) {
        for (std::size_t ende = schluessel.find('\\'); ende != std::string::npos;
             ende = schluessel.find('\\', ende + 1))
            inhalt.try_emplace(schluessel.substr(0, ende));
        inhalt.try_emplace(schluessel);
        return true;
    });
    return angelegt ? merke(schluessel, rechte) : 0;
}

bool Registrierungsdatei::setzeWert(Schluessel schluessel, const std::string& name,
                                    const Registrierungswert& wert) {
    const Offen* key = offen(schluessel, registrierungsrecht::kSetzen);
    if (!key) return false;
    if (istAutostart(key->pfad, name)) return autostart_.setze(ohneNull(wert.daten));
    return aendern([&](Inhalt& inhalt) {
        inhalt[key->pfad].werte[name] = wert;
        return true;
    });
}

std::optional<Registrierungswert> Registrierungsdatei::frageWert(Schluessel schluessel,
                                                                 const std::string& name) {
    const Offen* key = offen(schluessel, registrierungsrecht::kAbfragen);
    if (!key) return std::nullopt;
    if (istAutostart(key->pfad, name)) {
        const auto zeile = autostart_.zeile();
        if (!zeile) return std::nullopt;
        return Registrierungswert{registrierungstyp::kText, nachWindows1252(*zeile) + '\0'};
    }
    const Inhalt inhalt = lesen();
    const auto abschnitt = inhalt.find(key->pfad);
    if (abschnitt == inhalt.end()) return std::nullopt;
    const auto wert = abschnitt->second.werte.find(name);
    return wert == abschnitt->second.werte.end() ? std::nullopt : std::optional(wert->second);
}

bool Registrierungsdatei::loescheWert(Schluessel schluessel, const std::string& name) {
    const Offen* key = offen(schluessel, registrierungsrecht::kSetzen);
    if (!key) return false;
    if (istAutostart(key->pfad, name)) return autostart_.loesche();
    return aendern([&](Inhalt& inhalt) {
        const auto abschnitt = inhalt.find(key->pfad);
        return abschnitt != inhalt.end() && abschnitt->second.werte.erase(name) > 0;
    });
}

bool Registrierungsdatei::sichern(Schluessel schluessel) { return offene_.contains(schluessel); }

void Registrierungsdatei::schliessen(Schluessel schluessel) { offene_.erase(schluessel); }

}  // namespace wendel
