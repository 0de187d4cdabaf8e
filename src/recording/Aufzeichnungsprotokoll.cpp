#include "recording/Aufzeichnungsprotokoll.h"

#include <algorithm>
#include <utility>

#include "platform/Text.h"

namespace wendel {
namespace {

constexpr std::string_view kDateiname = "aufzeichnungen.log";
constexpr std::string_view kTrenner = " | ";
constexpr std::size_t kMomentlaenge = 16;
// A failure names the whole line of its script, which may be of any length.
constexpr std::size_t kErgebnislaenge = 500;

// In one line, whatever it holds.
std::string einzeilig(std::string_view text) {
    std::string ergebnis = ersetzt(text, kCrLf, " ");
    for (char& c : ergebnis) {
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    }
    return ergebnis;
}

std::string ohneTrenner(std::string_view text) { return ersetzt(einzeilig(text), "|", "¦"); }

std::optional<Datum> momentAusText(std::string_view text) {
    if (text.size() != kMomentlaenge) return std::nullopt;
    const std::string kompakt = std::string(text.substr(6, 4)) + std::string(text.substr(3, 2)) +
                                std::string(text.substr(0, 2)) + std::string(text.substr(11, 2)) +
                                std::string(text.substr(14, 2)) + "00";
    return datumAusKompakt(kompakt);
}

// As it reads once it is written.
Protokolleintrag geschrieben(const Protokolleintrag& eintrag) {
    return {eintrag.moment.aufMinute(), ohneTrenner(eintrag.senderkennung), einzeilig(eintrag.titel),
            Left(ohneTrenner(eintrag.ergebnis), kErgebnislaenge)};
}

bool gehoertZu(const Protokolleintrag& eintrag, const Protokolleintrag& neu) {
    return eintrag.moment == neu.moment && eintrag.senderkennung == neu.senderkennung &&
           eintrag.titel == neu.titel;
}

// Calls fuer with the readable lines from the last to the first until it returns false.
template <typename Funktion>
void rueckwaerts(std::string_view inhalt, Funktion fuer) {
    while (!inhalt.empty()) {
        const std::size_t ende = inhalt.ends_with('\n') ? inhalt.size() - 1 : inhalt.size();
        const std::size_t umbruch = ende ? inhalt.rfind('\n', ende - 1) : std::string_view::npos;
        const std::size_t anfang = umbruch == std::string_view::npos ? 0 : umbruch + 1;
        std::optional<Protokolleintrag> eintrag =
            protokolleintragAusZeile(inhalt.substr(anfang, ende - anfang));
        if (eintrag && !fuer(*eintrag)) return;
        inhalt = inhalt.substr(0, anfang);
    }
}

// The newer half of what is allowed, from the start of a line; all of a smaller file.
std::string_view neuererTeil(std::string_view inhalt) {
    if (inhalt.size() <= Aufzeichnungsprotokoll::kHoechstgroesse) return inhalt;
    const std::string_view rest = inhalt.substr(inhalt.size() - Aufzeichnungsprotokoll::kHoechstgroesse / 2);
    const std::size_t umbruch = rest.find('\n');
    return umbruch == std::string_view::npos ? std::string_view() : rest.substr(umbruch + 1);
}

}  // namespace

std::string protokollzeile(const Protokolleintrag& eintrag) {
    const Protokolleintrag e = geschrieben(eintrag);
    return Join({Format(e.moment, "dd\\.mm\\.yyyy hh\\:nn"), e.senderkennung, e.titel, e.ergebnis}, kTrenner);
}

std::optional<Protokolleintrag> protokolleintragAusZeile(std::string_view zeile) {
    if (zeile.ends_with('\r')) zeile.remove_suffix(1);
    if (!istUtf8(zeile) || zeile.find(kTrenner) != kMomentlaenge) return std::nullopt;
    const std::optional<Datum> moment = momentAusText(zeile.substr(0, kMomentlaenge));
    const std::string_view rest = zeile.substr(kMomentlaenge + kTrenner.size());
    const std::size_t nachKennung = rest.find(kTrenner);
    if (!moment || nachKennung == std::string_view::npos) return std::nullopt;
    // The second separator begins after the first: the blank between them belongs to one of them only.
    const std::size_t titel = nachKennung + kTrenner.size();
    const std::size_t nachTitel = rest.rfind(kTrenner);
    if (nachTitel < titel) return std::nullopt;
    return Protokolleintrag{*moment, std::string(rest.substr(0, nachKennung)),
                            std::string(rest.substr(titel, nachTitel - titel)),
                            std::string(rest.substr(nachTitel + kTrenner.size()))};
}

Aufzeichnungsprotokoll::Aufzeichnungsprotokoll(Dateisystem& dateien, const std::string& programmordner)
    : dateien_(dateien), datei_(programmordner + std::string(kDateiname)) {}

// The whole file is written anew, not added to: after a power cut it holds the line or it does not, and no
// half of it. It is small, and lines are rare.
bool Aufzeichnungsprotokoll::eintragen(const Protokolleintrag& eintrag) {
    const std::optional<std::string> inhalt = dateien_.lesen(datei_);
    if (!inhalt && dateien_.existiert(datei_)) return false;
    const std::string_view alt = neuererTeil(inhalt ? *inhalt : std::string_view());
    const Protokolleintrag neu = geschrieben(eintrag);
    bool vorhanden = false;
    rueckwaerts(alt, [&](const Protokolleintrag& e) { return !(vorhanden = gehoertZu(e, neu)); });
    if (vorhanden) return true;
    std::string text(alt);
    if (!text.empty() && text.back() != '\n') text += '\n';
    return dateien_.ersetzen(datei_, text + protokollzeile(neu) + '\n');
}

std::vector<Protokolleintrag> Aufzeichnungsprotokoll::letzte(std::size_t hoechstens) const {
    std::vector<Protokolleintrag> ergebnis;
    const std::optional<std::string> inhalt = dateien_.lesen(datei_);
    rueckwaerts(inhalt ? *inhalt : std::string_view(), [&](Protokolleintrag& eintrag) {
        if (ergebnis.size() < hoechstens) ergebnis.push_back(std::move(eintrag));
        return ergebnis.size() < hoechstens;
    });
    return ergebnis;
}

namespace aufzeichnungsergebnis {

std::string aufgezeichnet(std::int64_t minutenVerspaetet) {
    if (minutenVerspaetet < 1) return "aufgezeichnet";
    return "aufgezeichnet, " + std::to_string(minutenVerspaetet) + " min verspätet begonnen";
}

std::string fehlgeschlagen(int zeilennummer, std::string_view meldung) {
    const std::string stelle = zeilennummer > 0 ? " in Zeile " + std::to_string(zeilennummer) : "";
    return "fehlgeschlagen" + stelle + ": " + trimAlleLeerraeume(einzeilig(meldung));
}

std::string verpasstWegen(std::string_view titelDerAnderen) {
    return "verpasst: andere Aufzeichnung lief (" + std::string(titelDerAnderen) + ")";
}

std::string mitZusatz(std::string text, std::string_view zusatz) {
    if (zusatz.empty() || text.find(zusatz) != std::string::npos) return text;
    if (!text.empty()) text += "; ";
    return text += zusatz;
}

}  // namespace aufzeichnungsergebnis

}  // namespace wendel
