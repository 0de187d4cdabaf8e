#include "core/Skriptlauf.h"

#include <algorithm>

#include "core/Datenbestand.h"
#include "core/Fehlermeldung.h"
#include "core/FormWendel.h"
#include "core/Laufend.h"
#include "platform/Text.h"
#include "recording/FormAufzeichnungsskript.h"

namespace wendel {

namespace {

constexpr const char* kTitel = "Aufzeichnung";
constexpr std::int64_t kMinuteMs = 60000;
constexpr std::size_t kMindestziffern = 2;

}  // namespace

Skriptlauf::Skriptlauf(const Ports& ports, Datenbestand& bestand, FormAufzeichnungsskript& status)
    : ports_(ports), bestand_(bestand), modul_(ports, status) {}

void Skriptlauf::laden() {
    const std::string datei = skriptdatei(bestand_.konfiguration().skript, bestand_.werte().programmordner);
    modul_.setzeSkript({});
    try {
        modul_.setzeSkript(SkriptEinladen(ports_.dateien, datei));
    } catch (const Fehler& fehler) {
        const std::string anzeige = ports_.dateien.pfadAnzeige(datei);
        zeigeFehler(ports_.meldungen,
                    "Das Aufzeichnungsskript \"" + anzeige + "\" kann nicht verwendet werden.", kTitel,
                    &fehler);
    }
}

Skriptlauf::Ergebnis Skriptlauf::laufe(std::initializer_list<Liste> listen, const Auftrag& auftrag) {
    const Laufend laufend(aktiv_);
    const Laufend waehrenddessen = form_->beschaeftigen();
    modul_.setzeWerte(werte(auftrag));
    modul_.setzeAbbruch(grenze(auftrag));
    Ergebnis ergebnis;
    try {
        for (const Liste liste : listen) {
            ++ergebnis.begonnen;
            (modul_.*liste)();
        }
    } catch (const Skriptfehler& fehler) {
        ergebnis.beendet = form_->beendet();
        ergebnis.fehler = fehler;
    }
    return ergebnis;
}

Skriptwerte Skriptlauf::werte(const Auftrag& auftrag) {
    bestand_.skriptwerteLesen();
    const Konfiguration& konfiguration = bestand_.konfiguration();
    return {.tvSoftwarePfad = konfiguration.tvOrdner,
            .tvAufzeichnungenPfad = konfiguration.aufzeichnungsordner,
            .kanal = auftrag.kanal,
            .titel = auftrag.titel,
            .debuganzeige = konfiguration.debuganzeige,
            .programmordner = bestand_.werte().programmordner};
}

// A script may wait for ever, and no reminder comes before it has ended.
ModulAufzeichnungskript::Abbruchfrage Skriptlauf::grenze(const Auftrag& auftrag) {
    const std::int64_t spaetestens = ports_.uhr.laufzeitMs() + auftrag.minuten * kMinuteMs;
    return [this, spaetestens, auftrag]() -> std::optional<std::string> {
        if (form_->beendet()) return "Lomrick wird beendet.";
        if (auftrag.bis && ports_.uhr.jetzt() >= *auftrag.bis)
            return "Die Aufzeichnung war zu Ende, bevor das Aufzeichnungsskript sie gestartet hatte.";
        if (ports_.uhr.laufzeitMs() < spaetestens) return std::nullopt;
        return "Das Aufzeichnungsskript wurde nach " + std::to_string(auftrag.minuten) +
               " Minuten abgebrochen.";
    };
}

std::string Skriptlauf::programmnummer(const std::string& senderkennung) const {
    const auto sender = bestand_.sender().suche(senderkennung);
    if (!sender) return {};
    const std::string_view bezeichnung = sender->Bezeichnung;
    const std::string_view vorn = bezeichnung.substr(0, bezeichnung.find(' '));
    const auto istZiffer = [](char c) { return c >= '0' && c <= '9'; };
    if (vorn.empty() || !std::all_of(vorn.begin(), vorn.end(), istZiffer)) return {};
    const std::string_view zahl = vorn.substr(std::min(vorn.find_first_not_of('0'), vorn.size()));
    return std::string(kMindestziffern - std::min(kMindestziffern, zahl.size()), '0') + std::string(zahl);
}

}  // namespace wendel
