#include "recording/ModulAufzeichnungskript.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <variant>

#include "platform/ModulProzessliste.h"
#include "recording/ModulJokerErsetzen.h"
#include "recording/Skriptbefehl.h"

namespace wendel {

namespace {

using Abbruchfrage = ModulAufzeichnungskript::Abbruchfrage;

constexpr int kScheibeMs = 100;
constexpr std::int64_t kAktivierenMs = 15000;
constexpr std::size_t kStueckEreignisse = 200;

[[noreturn]] void scheitere(const std::string& beschreibung) {
    throw Fehler(fehlernummer::kEigener, "BefehlAusführen", beschreibung);
}

void pruefeAbbruch(const Abbruchfrage& abbruch) {
    if (!abbruch) return;
    if (const auto grund = abbruch()) scheitere(*grund);
}

// Where windows and keys are out of reach for good, 15 seconds of looking for the window would not help.
void pruefeHindernis(Fernsteuerung& fernsteuerung, const Skriptbefehl& befehl, const std::string& zeile) {
    if (!std::holds_alternative<FensterAktivierenBefehl>(befehl.aktion) &&
        !std::holds_alternative<TastenSendenBefehl>(befehl.aktion)) {
        return;
    }
    const std::string hindernis = fernsteuerung.hindernis();
    if (hindernis.empty()) return;
    scheitere("Der Befehl \"" + zeile + "\" kann hier nicht ausgeführt werden. " + hindernis);
}

// How many of the events are sent at once: a long string goes in pieces that end where no key is down.
std::size_t stuecklaenge(std::span<const Tastenereignis> ereignisse) {
    int unten = 0;
    for (std::size_t i = 0; i < ereignisse.size(); ++i) {
        unten += ereignisse[i].gedrueckt ? 1 : -1;
        if (unten == 0 && i + 1 >= kStueckEreignisse) return i + 1;
    }
    return ereignisse.size();
}

// Carries out one command on the ports; false when it failed.
class Ausfuehrung {
  public:
    Ausfuehrung(const Ports& ports, const Abbruchfrage& abbruch) : ports_(ports), abbruch_(abbruch) {}

    bool operator()(const AnwendungStartenBefehl& befehl) const {
        return undEreignisse(ports_.fernsteuerung.starteBefehlszeile(befehl.befehlszeile));
    }

    bool operator()(const FensterAktivierenBefehl& befehl) const {
        if (befehl.titel.empty()) return false;
        if (const Fensterhandle fenster = ports_.fernsteuerung.fensterNachTitel(befehl.titel)) {
            ports_.fernsteuerung.zeigeNormal(fenster);
        }
        return wirdAktiv(befehl.titel);
    }

    bool operator()(const TastenSendenBefehl& befehl) const {
        std::span<const Tastenereignis> rest = befehl.ereignisse;
        for (;;) {
            const std::size_t laenge = stuecklaenge(rest);
            const bool gesendet = undEreignisse(ports_.fernsteuerung.sendeTasten(rest.first(laenge)));
            rest = rest.subspan(laenge);
            if (!gesendet || rest.empty()) return gesendet;
            pruefeAbbruch(abbruch_);
        }
    }

    bool operator()(const UngueltigeTastenBefehl&) const { return false; }

    // Each slice ends at its moment of the running time, so that slow window events between them make the
    // wait no longer.
    bool operator()(const WartenBefehl& befehl) const {
        const std::int64_t beginn = ports_.uhr.laufzeitMs();
        for (std::int64_t i = 1; i <= befehl.zehntelsekunden; ++i) {
            pruefeAbbruch(abbruch_);
            const std::int64_t bisEnde = beginn + i * kScheibeMs - ports_.uhr.laufzeitMs();
            if (bisEnde > 0)
                ports_.uhr.schlafe(static_cast<int>(std::min<std::int64_t>(bisEnde, kScheibeMs)));
            ports_.uhr.nachrichtenVerarbeiten();
        }
        return true;
    }

    bool operator()(const TerminierenBefehl& befehl) const {
        // None of that name was running: that is what the command is for.
        ModulProzessliste::EndProcessByName(ports_.prozesse, befehl.programmdatei);
        return undEreignisse(true);
    }

    bool operator()(const BeepBefehl&) const {
        ports_.fernsteuerung.signalton();
        return undEreignisse(true);
    }

    bool operator()(const UnbekannterBefehl&) const { return false; }

  private:
    bool undEreignisse(bool ergebnis) const {
        ports_.uhr.nachrichtenVerarbeiten();
        return ergebnis;
    }

    // The last try begins when the time is up, however long the tries take.
    bool wirdAktiv(const std::string& titel) const {
        const std::int64_t ende = ports_.uhr.laufzeitMs() + kAktivierenMs;
        for (;;) {
            pruefeAbbruch(abbruch_);
            const bool letzterVersuch = ports_.uhr.laufzeitMs() >= ende;
            const bool aktiv = undEreignisse(ports_.fernsteuerung.aktivieren(titel));
            if (aktiv || letzterVersuch) return aktiv;
            ports_.uhr.schlafe(kScheibeMs);
        }
    }

    const Ports& ports_;
    const Abbruchfrage& abbruch_;
};

}  // namespace

std::string platzhalterErsetzt(const Ports& ports, const Skriptwerte& werte,
                               const std::string& titelDerAnwendung, std::string zeile) {
    using ModulJokerErsetzen::JokerErsetzen;
    const Datum jetzt = ports.uhr.jetzt();
    zeile = JokerErsetzen(zeile, "[TVSoftwarePfad]", werte.tvSoftwarePfad);
    zeile = JokerErsetzen(zeile, "[TVAufzeichnungenPfad]", werte.tvAufzeichnungenPfad);
    zeile = JokerErsetzen(zeile, "[Kanal]", werte.kanal);
    zeile = JokerErsetzen(zeile, "[TVAnwendungtitel]", titelDerAnwendung);
    zeile = JokerErsetzen(zeile, "[Datum]", Format(jetzt, "yyyymmdd"));
    zeile = JokerErsetzen(zeile, "[Zeit]", Format(jetzt, "hhnnss"));
    zeile = JokerErsetzen(zeile, "[Titel]", ModulJokerErsetzen::sichererTitel(werte.titel));
    return ModulJokerErsetzen::OrdnerJokerErsetzen(ports, werte.programmordner, zeile);
}

ModulAufzeichnungskript::ModulAufzeichnungskript(const Ports& ports, Skriptanzeige& anzeige)
    : ports_(ports), anzeige_(anzeige) {}

void ModulAufzeichnungskript::setzeSkript(Aufzeichnungsskript skript) { skript_ = std::move(skript); }
void ModulAufzeichnungskript::setzeWerte(Skriptwerte werte) { werte_ = std::move(werte); }
void ModulAufzeichnungskript::setzeAbbruch(Abbruchfrage frage) { abbruch_ = std::move(frage); }

void ModulAufzeichnungskript::BefehlAusfuehren(std::string zeile) {
    pruefeAbbruch(abbruch_);
    zeile = platzhalterErsetzt(ports_, werte_, skript_.tvAnwendungTitel, std::move(zeile));
    const Skriptbefehl befehl = skriptbefehl(zeile);
    const bool debuganzeige = werte_.debuganzeige;
    if (debuganzeige) anzeige_.ShowDebugInfo(befehl.statuszeile);
    pruefeHindernis(ports_.fernsteuerung, befehl, zeile);
    if (!std::visit(Ausfuehrung(ports_, abbruch_), befehl.aktion)) scheitere(befehl.fehlermeldung);
    if (debuganzeige) anzeige_.ShowDebugInfoAddOk();
}

void ModulAufzeichnungskript::AnwendungStarten() { ausfuehren(skript_.befehlAnwendungStarten); }
void ModulAufzeichnungskript::AnwendungBeenden() { ausfuehren(skript_.befehlAnwendungBeenden); }
void ModulAufzeichnungskript::AufnahmeStarten() { ausfuehren(skript_.befehlAufnahmeStarten); }
void ModulAufzeichnungskript::AufnahmeBeenden() { ausfuehren(skript_.befehlAufnahmeBeenden); }
void ModulAufzeichnungskript::KanalWechseln() { ausfuehren(skript_.befehlKanalWechseln); }

void ModulAufzeichnungskript::ausfuehren(Befehlsliste liste) {
    for (Skriptzeile& zeile : liste) {
        try {
            BefehlAusfuehren(std::move(zeile.text));
        } catch (const Fehler& fehler) {
            throw Skriptfehler(fehler, zeile.nummer);
        }
    }
}

}  // namespace wendel
