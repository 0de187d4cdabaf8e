#include "recording/Aufzeichnungsstand.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/Text.h"

namespace wendel {
namespace {

constexpr std::int64_t kBehaltenSekunden = 2 * 86400;
constexpr std::string_view kDateiname = "aufzeichnung.txt";
// In the order of Aufzeichnungsphase.
constexpr std::array<std::string_view, 5> kPhasen = {"geplant", "startet", "laeuft", "beendet",
                                                     "protokolliert"};

std::optional<Aufzeichnungsphase> phaseAusText(std::string_view text) {
    const auto gefunden = std::find(kPhasen.begin(), kPhasen.end(), text);
    if (gefunden == kPhasen.end()) return std::nullopt;
    return static_cast<Aufzeichnungsphase>(gefunden - kPhasen.begin());
}

std::optional<std::int64_t> zahlAusText(std::string_view text) {
    std::int64_t wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (fehler != std::errc() || ende != text.data() + text.size()) return std::nullopt;
    return wert;
}

std::string aufzeichnungstext(const Aufzeichnung& a) {
    return Join({datumKompakt(a.beginn), datumKompakt(a.ende), a.senderkennung, a.titel}, "|");
}

std::optional<Aufzeichnung> aufzeichnungAusText(std::string_view text, Datum sendungsbeginn) {
    const std::vector<std::string> teile = Split(text, "|", 4);
    if (teile.size() != 4) return std::nullopt;
    const std::optional<Datum> beginn = datumAusKompakt(teile[0]), ende = datumAusKompakt(teile[1]);
    if (!beginn || !ende) return std::nullopt;
    return Aufzeichnung{*beginn, *ende, sendungsbeginn, teile[2], teile[3]};
}

std::string zeileAusEintrag(const Aufzeichnungseintrag& e) {
    return Join({std::string(kPhasen[static_cast<std::size_t>(e.phase)]),
                 datumKompakt(e.aufzeichnung.sendungsbeginn), datumKompakt(e.begonnen),
                 std::to_string(e.verspaetung), datumKompakt(e.naechsterVersuch), maskiert(e.ergebnis),
                 maskiert(e.zusatz), maskiert(aufzeichnungstext(e.aufzeichnung))},
                "\t") +
           '\n';
}

std::optional<Aufzeichnungseintrag> eintragAusZeile(std::string_view zeile) {
    const std::vector<std::string> felder = Split(zeile, "\t");
    if (felder.size() != 8 || !istUtf8(zeile)) return std::nullopt;
    const std::optional<Aufzeichnungsphase> phase = phaseAusText(felder[0]);
    const std::optional<Datum> sendungsbeginn = datumAusKompakt(felder[1]);
    const std::optional<Datum> begonnen = datumAusKompakt(felder[2]);
    const std::optional<std::int64_t> verspaetung = zahlAusText(felder[3]);
    const std::optional<Datum> naechsterVersuch = datumAusKompakt(felder[4]);
    const std::optional<std::string> ergebnis = demaskiert(felder[5]), zusatz = demaskiert(felder[6]);
    const std::optional<std::string> text = demaskiert(felder[7]);
    if (!phase || !sendungsbeginn || !begonnen || !verspaetung || !naechsterVersuch) return std::nullopt;
    if (!ergebnis || !zusatz || !text) return std::nullopt;
    const std::optional<Aufzeichnung> aufzeichnung = aufzeichnungAusText(*text, *sendungsbeginn);
    if (!aufzeichnung) return std::nullopt;
    return Aufzeichnungseintrag{*aufzeichnung,     *phase,    *begonnen, *verspaetung,
                                *naechsterVersuch, *ergebnis, *zusatz};
}

}  // namespace

bool istDieselbe(const Aufzeichnung& a, const Aufzeichnung& b) {
    return a.sendungsbeginn == b.sendungsbeginn && a.senderkennung == b.senderkennung && a.titel == b.titel;
}

Aufzeichnungsstand::Aufzeichnungsstand(Dateisystem& dateien, Aufzeichnungsprotokoll& protokoll,
                                       const std::string& programmordner)
    : dateien_(dateien), protokoll_(protokoll), datei_(programmordner + std::string(kDateiname)) {}

void Aufzeichnungsstand::lesen() {
    eintraege_.clear();
    unlesbar_ = true;
    nachlesen();
}

// The file knows what the last run of the program did with a recording; one that has begun again since goes
// on as what it is now.
bool Aufzeichnungsstand::nachlesen() {
    if (!unlesbar_) return false;
    const std::optional<std::string> inhalt = dateien_.lesen(datei_);
    unlesbar_ = !inhalt && dateien_.existiert(datei_);
    if (unlesbar_) return false;
    geschrieben_ = inhalt.value_or("");
    for (const std::string& zeile : Split(geschrieben_, "\n")) {
        const std::optional<Aufzeichnungseintrag> eintrag = eintragAusZeile(zeile);
        if (!eintrag) continue;
        Aufzeichnungseintrag* gehalten = finde(eintrag->aufzeichnung);
        if (!gehalten) {
            eintraege_.push_back(*eintrag);
        } else if (gehalten->phase == Aufzeichnungsphase::Geplant) {
            *gehalten = *eintrag;
        }
    }
    return true;
}

Aufzeichnungseintrag* Aufzeichnungsstand::finde(const Aufzeichnung& aufzeichnung) {
    const auto gefunden = std::find_if(eintraege_.begin(), eintraege_.end(), [&](const auto& eintrag) {
        return istDieselbe(eintrag.aufzeichnung, aufzeichnung);
    });
    return gefunden == eintraege_.end() ? nullptr : &*gefunden;
}

Aufzeichnungseintrag& Aufzeichnungsstand::merke(const Aufzeichnung& aufzeichnung) {
    Aufzeichnungseintrag* eintrag = finde(aufzeichnung);
    if (!eintrag) eintrag = &eintraege_.emplace_back();
    if (eintrag->phase == Aufzeichnungsphase::Geplant) eintrag->aufzeichnung = aufzeichnung;
    return *eintrag;
}

// A copy, as the argument is often part of the entry that goes.
void Aufzeichnungsstand::vergiss(const Aufzeichnung aufzeichnung) {
    std::erase_if(eintraege_, [&](const Aufzeichnungseintrag& eintrag) {
        return istDieselbe(eintrag.aufzeichnung, aufzeichnung);
    });
}

bool Aufzeichnungsstand::speichern(Datum jetzt) {
    if (unlesbar_) return false;
    std::erase_if(eintraege_, [&](const Aufzeichnungseintrag& eintrag) {
        return eintrag.phase == Aufzeichnungsphase::Protokolliert &&
               eintrag.aufzeichnung.ende.plusSekunden(kBehaltenSekunden) < jetzt;
    });
    std::string inhalt;
    for (const Aufzeichnungseintrag& eintrag : eintraege_)
        inhalt += zeileAusEintrag(eintrag);
    ungespeichert_ = inhalt != geschrieben_ && !dateien_.ersetzen(datei_, inhalt);
    if (!ungespeichert_) geschrieben_ = std::move(inhalt);
    return !ungespeichert_;
}

void Aufzeichnungsstand::abschliessen(const Aufzeichnung& aufzeichnung, std::string ergebnis, Datum jetzt) {
    Aufzeichnungseintrag& eintrag = merke(aufzeichnung);
    if (eintrag.vorbei()) return;
    eintrag.phase = Aufzeichnungsphase::Beendet;
    eintrag.ergebnis = std::move(ergebnis);
    // Both files are tried whatever becomes of the other; a line that is there already is not written twice.
    static_cast<void>(speichern(jetzt));
    static_cast<void>(nachschreiben(jetzt));
}

bool Aufzeichnungsstand::nachschreiben(Datum jetzt) {
    protokolliereBeendete();
    return speichern(jetzt) && !stehtProtokollAus();
}

bool Aufzeichnungsstand::stehtProtokollAus() const {
    return std::any_of(eintraege_.begin(), eintraege_.end(), [](const Aufzeichnungseintrag& eintrag) {
        return eintrag.phase == Aufzeichnungsphase::Beendet;
    });
}

std::string Aufzeichnungsstand::gestoerteDatei() const {
    if (unlesbar_ || ungespeichert_) return datei_;
    return stehtProtokollAus() ? protokoll_.datei() : "";
}

void Aufzeichnungsstand::protokolliereBeendete() {
    for (Aufzeichnungseintrag& eintrag : eintraege_) {
        if (eintrag.phase != Aufzeichnungsphase::Beendet) continue;
        const Aufzeichnung& a = eintrag.aufzeichnung;
        const std::string ergebnis = aufzeichnungsergebnis::mitZusatz(eintrag.ergebnis, eintrag.zusatz);
        if (protokoll_.eintragen({a.beginn, a.senderkennung, a.titel, ergebnis}))
            eintrag.phase = Aufzeichnungsphase::Protokolliert;
    }
}

}  // namespace wendel
