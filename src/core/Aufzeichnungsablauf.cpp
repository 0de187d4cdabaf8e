#include "core/Aufzeichnungsablauf.h"

#include <algorithm>
#include <utility>

#include "core/Aufzeichnungstexte.h"
#include "core/Datenbestand.h"
#include "core/Fehlermeldung.h"
#include "core/FormAufzeichnungsverlauf.h"
#include "core/FormWendel.h"
#include "recording/FormAufzeichnungsHinweis.h"
#include "recording/FormAufzeichnungsskript.h"

namespace wendel {

namespace {

using Phase = Aufzeichnungsphase;
using Vorhaben = Aufzeichnungsplan::Vorhaben;

constexpr const char* kTitel = "Aufzeichnung";
constexpr const char* kWachgrund = "Lomrick zeichnet eine Sendung auf.";
constexpr std::string_view kZusatzSchlief = "Rechner schlief währenddessen";
constexpr std::int64_t kHinweisSekunden = 60;
constexpr std::int64_t kWeckenSekunden = 180;
constexpr std::int64_t kVersuchSekunden = 60;
// A locked database holds a tick up for minutes.
constexpr std::int64_t kSchlafMs = 5 * 60000;
constexpr int kStartMinuten = 10;
constexpr int kSchlussMinuten = 5;

bool imFenster(const Aufzeichnung& a, Datum jetzt) { return a.beginn <= jetzt && jetzt < a.ende; }

bool istZuEnde(const Aufzeichnung& a, Datum jetzt) { return DateDiff(Einheit::Minute, jetzt, a.ende) <= 0; }

// In the minute before the start.
bool stehtBevor(const Aufzeichnung& a, Datum jetzt) {
    return a.beginn.plusSekunden(-kHinweisSekunden) <= jetzt && jetzt < a.beginn;
}

// A clock that was set back must not put the next try off by more than it was.
bool istVersuchFaellig(Datum naechsterVersuch, Datum jetzt) {
    return jetzt >= naechsterVersuch || jetzt < naechsterVersuch.plusSekunden(-kVersuchSekunden);
}

}  // namespace

Aufzeichnungsablauf::Aufzeichnungsablauf(const Ports& ports, Datenbestand& bestand,
                                         Aufzeichnungsprotokoll& protokoll, const Aufzeichnungsformen& formen)
    : ports_(ports),
      bestand_(bestand),
      formen_(formen),
      skript_(ports, bestand, formen.status),
      tv_(ports, skript_),
      stand_(ports.dateien, protokoll, bestand.werte().programmordner),
      plan_(bestand, stand_),
      wachstum_(ports),
      wachdienst_(ports.energie) {}

void Aufzeichnungsablauf::verbinde(FormWendel& form) {
    form_ = &form;
    skript_.verbinde(form);
}

// ---- the plan ----

void Aufzeichnungsablauf::laden() {
    gestartet_ = ports_.uhr.jetzt();
    stand_.lesen();
    plan_.erneuern();
}

void Aufzeichnungsablauf::abgleichen() {
    if (plan_.istAktuell()) return;
    // The window may show the steps of a start that has failed.
    if (plan_.abgleichen(ports_.uhr.jetzt()) && !laufende_) formen_.status.schliessen();
    speichern();
}

// ---- the tick ----

void Aufzeichnungsablauf::Timer() {
    if (skript_.aktiv() || form_->beendet()) return;
    gestartet_ = std::min(gestartet_, ports_.uhr.jetzt());
    abgleichen();
    schlafBemerken(wachBisMs_, 0);
    nachschreiben();
    stoerungMelden();
    if (!laufende_) wiederaufnehmen();
    if (laufende_) laufendeBetreuen();
    if (form_->beendet()) return;
    verpassteAbschliessen();
    hinweisen();
    fuerStromSorgen();
    if (laufende_) {
        wartendeVertroesten();
    } else {
        faelligeStarten();
    }
    wachBisMs_ = ports_.uhr.laufzeitMs();
}

// The machine may have been at work for so many minutes since then. Measured on the clock that no step moves:
// the changes of summer time are no sleep.
void Aufzeichnungsablauf::schlafBemerken(std::int64_t seitMs, int arbeitsminuten) {
    const bool luecke = ports_.uhr.laufzeitMs() - seitMs > arbeitsminuten * 60000 + kSchlafMs;
    if (!luecke || !laufende_) return;
    unterbrochen_ = istZuEnde(*laufende_, ports_.uhr.jetzt());
    if (!unterbrochen_) ergaenze(*laufende_, kZusatzSchlief);
}

// What could not be written, once a minute.
void Aufzeichnungsablauf::nachschreiben() {
    const Datum jetzt = ports_.uhr.jetzt();
    if (std::exchange(minute_, jetzt.sekunden() / 60) == jetzt.sekunden() / 60) return;
    if (stand_.nachlesen()) plan_.nachlesen(jetzt);
    static_cast<void>(stand_.nachschreiben(jetzt));
}

// Once, until it has worked again.
void Aufzeichnungsablauf::stoerungMelden() {
    const std::string datei = stand_.gestoerteDatei();
    if (std::exchange(gestoerteDatei_, datei) == datei || datei.empty()) return;
    melde(Aufzeichnungstexte::dateiGestoert(ports_.dateien.pfadAnzeige(datei)));
}

// What ran when the program ended. In the middle of the start commands nobody knows how far they came: it
// counts as a failed start.
void Aufzeichnungsablauf::wiederaufnehmen() {
    const auto begonnen = std::ranges::find_if(stand_.eintraege(), [](const Aufzeichnungseintrag& e) {
        return e.phase == Phase::Startet || e.phase == Phase::Laeuft;
    });
    if (begonnen == stand_.eintraege().end()) return;
    const bool imStart = begonnen->phase == Phase::Startet;
    laufende_ = begonnen->aufzeichnung;
    unterbrochen_ = istZuEnde(*laufende_, ports_.uhr.jetzt());
    fuerStromSorgen();
    form_->auffrischen();
    if (!imStart || unterbrochen_) return;
    const Fehler ursache(fehlernummer::kEigener, "BefehlAusführen", "Lomrick wurde beim Start beendet.");
    startGescheitert(Skriptfehler(ursache, 0), true);
}

void Aufzeichnungsablauf::laufendeBetreuen() {
    if (istZuEnde(*laufende_, ports_.uhr.jetzt())) return laufendeBeenden();
    wachstumPruefen();
}

void Aufzeichnungsablauf::wachstumPruefen() {
    if (wachstum_.pruefen() != Dateiwachstum::Befund::KeineDatei) return;
    ergaenze(*laufende_, aufzeichnungsergebnis::kZusatzKeineDatei);
    const std::string ordner = ports_.dateien.pfadAnzeige(bestand_.konfiguration().aufzeichnungsordner);
    melde(Aufzeichnungstexte::keineDatei(*laufende_, ordner, Dateiwachstum::kFristSekunden));
}

// Those that have not started while they could. Why, was noted when it was seen; else nobody was there.
void Aufzeichnungsablauf::verpassteAbschliessen() {
    const Datum jetzt = ports_.uhr.jetzt();
    bool abgeschlossen = false;
    for (const Vorhaben& vorhaben : plan_.vorhaben()) {
        const Aufzeichnung& a = vorhaben.aufzeichnung;
        if (jetzt < a.ende || !plan_.wartet(vorhaben)) continue;
        std::string ergebnis = stand_.finde(a)->ergebnis;
        if (ergebnis.empty())
            ergebnis = a.ende <= gestartet_ ? aufzeichnungsergebnis::kVerpasstAus
                                            : aufzeichnungsergebnis::kVerpasstSchlief;
        stand_.abschliessen(a, ergebnis, jetzt);
        abgeschlossen = true;
    }
    if (!abgeschlossen) return;
    if (!laufende_) formen_.status.schliessen();
    formen_.verlauf.auffrischen();
    plan_.erneuern();
    form_->auffrischen();
}

// ---- the notice ----

void Aufzeichnungsablauf::hinweisen() {
    const Datum jetzt = ports_.uhr.jetzt();
    const auto steht = [&](const Vorhaben& v) {
        return stehtBevor(v.aufzeichnung, jetzt) && plan_.wartet(v);
    };
    const auto istAngekuendigt = [&](const Vorhaben& v) {
        return steht(v) && istDieselbe(v.aufzeichnung, *angekuendigte_);
    };
    if (angekuendigte_ && std::ranges::none_of(plan_.vorhaben(), istAngekuendigt)) {
        angekuendigte_.reset();
        formen_.hinweis.schliessen();
    }
    if (!skript_.skript().fuehrtEtwasAus()) return;
    for (Vorhaben& vorhaben : plan_.vorhaben()) {
        if (vorhaben.angekuendigt || !steht(vorhaben)) continue;
        vorhaben.angekuendigt = true;
        // Of two that start together there is one notice, which names both.
        if (angekuendigte_ && angekuendigte_->beginn == vorhaben.aufzeichnung.beginn) continue;
        angekuendigte_ = vorhaben.aufzeichnung;
        formen_.hinweis.zeigen(plan_.konflikte(vorhaben.aufzeichnung));
    }
}

// The start has come of one that is not the running one. Without this, nobody would know before its end.
void Aufzeichnungsablauf::wartendeVertroesten() {
    const Datum jetzt = ports_.uhr.jetzt();
    for (Vorhaben& vorhaben : plan_.vorhaben()) {
        const Aufzeichnung& a = vorhaben.aufzeichnung;
        if (vorhaben.vertroestet || jetzt < a.beginn || !plan_.wartet(vorhaben)) continue;
        vorhaben.vertroestet = true;
        std::string& ergebnis = stand_.finde(a)->ergebnis;
        if (ergebnis.empty()) ergebnis = aufzeichnungsergebnis::verpasstWegen(laufende_->titel);
        speichern();
        if (jetzt < a.ende && !istZuEnde(*laufende_, jetzt))
            melde(Aufzeichnungstexte::mussWarten(a, *laufende_));
    }
}

// ---- start ----

void Aufzeichnungsablauf::faelligeStarten() {
    const Datum jetzt = ports_.uhr.jetzt();
    const bool ohneSkript = !skript_.skript().fuehrtEtwasAus();
    for (const Vorhaben& vorhaben : plan_.vorhaben()) {
        if (!imFenster(vorhaben.aufzeichnung, jetzt) || !plan_.wartet(vorhaben)) continue;
        Aufzeichnungseintrag& eintrag = *stand_.finde(vorhaben.aufzeichnung);
        if (!ohneSkript) {
            if (istVersuchFaellig(eintrag.naechsterVersuch, jetzt)) return starten(vorhaben.aufzeichnung);
        } else if (eintrag.ergebnis.empty()) {
            eintrag.ergebnis = aufzeichnungsergebnis::kVerpasstKeinSkript;
            speichern();
        }
    }
}

void Aufzeichnungsablauf::starten(const Aufzeichnung& aufzeichnung) {
    laufende_ = aufzeichnung;
    unterbrochen_ = false;
    angekuendigte_.reset();
    formen_.hinweis.schliessen();
    tv_.vergissSender();
    Aufzeichnungseintrag& eintrag = laufenderEintrag();
    eintrag.phase = Phase::Startet;
    eintrag.begonnen = ports_.uhr.jetzt();
    eintrag.verspaetung = DateDiff(Einheit::Minute, laufende_->beginn, eintrag.begonnen);
    speichern();
    form_->auffrischen();
    bestand_.skriptwerteLesen();
    wachstum_.vormerken(bestand_.konfiguration().aufzeichnungsordner);
    const std::int64_t beginnMs = ports_.uhr.laufzeitMs();
    Skriptlauf::Auftrag start = auftrag(kStartMinuten);
    start.bis = laufende_->ende;
    const auto [begonnen, fehler, beendet] =
        skript_.laufe({&ModulAufzeichnungskript::AnwendungStarten, &ModulAufzeichnungskript::KanalWechseln,
                       &ModulAufzeichnungskript::AufnahmeStarten},
                      start);
    if (beendet) return;
    if (fehler) return startGescheitert(*fehler, begonnen == 3);
    laufenderEintrag().phase = Phase::Laeuft;
    speichern();
    schlafBemerken(beginnMs, kStartMinuten);
    wachstum_.beginnen();
    form_->auffrischen();
}

// Nothing of it is left half-done before the next try. The user hears of it when the script is through: what
// came to the front would take its keys.
void Aufzeichnungsablauf::startGescheitert(const Skriptfehler& fehler, bool aufnahmeBegonnen) {
    Aufzeichnungseintrag& eintrag = laufenderEintrag();
    if (eintrag.naechsterVersuch == Datum())
        eintrag.ergebnis =
            aufzeichnungsergebnis::fehlgeschlagen(fehler.zeilennummer(), fehler.beschreibung());
    eintrag.naechsterVersuch = ports_.uhr.jetzt().plusSekunden(kVersuchSekunden);
    speichern();
    wachstum_.aufhoeren();
    const Skriptlauf::Auftrag schluss = auftrag(kSchlussMinuten);
    // What fails here follows from the first failure.
    if (aufnahmeBegonnen && skript_.laufe({&ModulAufzeichnungskript::AufnahmeBeenden}, schluss).beendet)
        return;
    if (skript_.laufe({&ModulAufzeichnungskript::AnwendungBeenden}, schluss).beendet) return;
    const Aufzeichnung gescheiterte = *std::exchange(laufende_, std::nullopt);
    Aufzeichnungseintrag& wartend = stand_.merke(gescheiterte);
    wartend.phase = Phase::Geplant;
    wartend.naechsterVersuch = ports_.uhr.jetzt().plusSekunden(kVersuchSekunden);
    const Datum naechster = wartend.naechsterVersuch;
    speichern();
    melde(Aufzeichnungstexte::startGescheitert(gescheiterte, fehler, naechster), &fehler);
    form_->auffrischen();
}

// ---- end ----

void Aufzeichnungsablauf::laufendeBeenden() {
    const Skriptlauf::Auftrag schluss = auftrag(kSchlussMinuten);
    const std::int64_t beginnMs = ports_.uhr.laufzeitMs();
    wachstum_.aufhoeren();
    std::optional<Skriptfehler> ersterFehler;
    // It went away while the recording ran: nothing stops the TV application.
    if (!skript_.skript().fuehrtEtwasAus())
        ersterFehler.emplace(
            Fehler(fehlernummer::kEigener, "BefehlAusführen", "Das Aufzeichnungsskript fehlt."), 0);
    for (const Skriptlauf::Liste liste :
         {&ModulAufzeichnungskript::AufnahmeBeenden, &ModulAufzeichnungskript::AnwendungBeenden}) {
        const auto [begonnen, fehler, beendet] = skript_.laufe({liste}, schluss);
        if (beendet) return;
        if (fehler && !ersterFehler) ersterFehler.emplace(*fehler);
    }
    if (ersterFehler) {
        ergaenze(*laufende_, "Ende " + aufzeichnungsergebnis::fehlgeschlagen(ersterFehler->zeilennummer(),
                                                                             ersterFehler->beschreibung()));
        melde(Aufzeichnungstexte::endeGescheitert(*laufende_, *ersterFehler), &*ersterFehler);
    }
    // Not what the machine slept through, before or since.
    const bool wach =
        !unterbrochen_ && ports_.uhr.laufzeitMs() - beginnMs <= 2 * kSchlussMinuten * 60000 + kSchlafMs;
    if (wach) wartendeVertroesten();
    laufendeAbschliessen();
}

void Aufzeichnungsablauf::laufendeAbschliessen() {
    const std::string ergebnis = unterbrochen_
                                     ? std::string(aufzeichnungsergebnis::kUnterbrochen)
                                     : aufzeichnungsergebnis::aufgezeichnet(laufenderEintrag().verspaetung);
    stand_.abschliessen(*std::exchange(laufende_, std::nullopt), ergebnis, ports_.uhr.jetzt());
    tv_.vergissSender();
    formen_.status.schliessen();
    formen_.verlauf.auffrischen();
    plan_.erneuern();
    form_->auffrischen();
    if (form_->beendet()) return;
    // The script kept the ticks off, and the machine may have slept: what was marked meanwhile may be past.
    bestand_.verpassteVormerken();
    bestand_.abfragen();
    form_->auffrischen();
}

// ---- the machine ----

void Aufzeichnungsablauf::fuerStromSorgen() {
    const Datum jetzt = ports_.uhr.jetzt();
    const bool mitSkript = skript_.skript().fuehrtEtwasAus();
    const auto stehtAn = [&](const Vorhaben& v) {
        return (stehtBevor(v.aufzeichnung, jetzt) || imFenster(v.aufzeichnung, jetzt)) && plan_.wartet(v);
    };
    const bool noetig = laufende_ || (mitSkript && std::ranges::any_of(plan_.vorhaben(), stehtAn));
    wachdienst_.halteWach(noetig && bestand_.konfiguration().wachhalten, kWachgrund);
    wecken();
}

void Aufzeichnungsablauf::wecken() {
    const auto weckzeit = [](const Vorhaben& v) {
        return v.aufzeichnung.beginn.plusSekunden(-kWeckenSekunden);
    };
    const bool gewuenscht = bestand_.konfiguration().wecken && skript_.skript().fuehrtEtwasAus();
    const Datum jetzt = ports_.uhr.jetzt();
    const auto& vorhaben = plan_.vorhaben();
    const auto naechste =
        std::ranges::find_if(vorhaben, [&](const Vorhaben& v) { return weckzeit(v) > jetzt; });
    if (!gewuenscht || naechste == vorhaben.end()) {
        static_cast<void>(wachdienst_.wecke(std::nullopt));
    } else if (!wachdienst_.wecke(weckzeit(*naechste))) {
        ergaenze(naechste->aufzeichnung, aufzeichnungsergebnis::kZusatzWeckenVerweigert);
    }
}

// ---- others ----

void Aufzeichnungsablauf::imTVZeigen(const std::string& senderkennung) {
    if (!kannImTVZeigen()) return;
    tv_.zeige(senderkennung);
    formen_.status.schliessen();
}

std::string Aufzeichnungsablauf::beendenFrage() const {
    return laufende_ ? Aufzeichnungstexte::trotzdemBeenden(*laufende_) : "";
}

void Aufzeichnungsablauf::beenden() {
    wachdienst_.halteWach(false, "");
    formen_.hinweis.schliessen();
    formen_.status.schliessen();
    formen_.verlauf.schliessen();
}

// ---- tools ----

void Aufzeichnungsablauf::ergaenze(const Aufzeichnung& aufzeichnung, std::string_view zusatz) {
    Aufzeichnungseintrag& eintrag = stand_.merke(aufzeichnung);
    eintrag.zusatz = aufzeichnungsergebnis::mitZusatz(eintrag.zusatz, zusatz);
    speichern();
}

Skriptlauf::Auftrag Aufzeichnungsablauf::auftrag(int minuten) const {
    const std::string nummer = skript_.programmnummer(laufende_->senderkennung);
    return {.kanal = nummer.empty() ? laufende_->senderkennung : nummer,
            .titel = laufende_->titel,
            .minuten = minuten};
}

void Aufzeichnungsablauf::melde(const std::string& text, const Fehler* ursache) const {
    zeigeFehler(ports_.meldungen, text, kTitel, ursache);
}

}  // namespace wendel
