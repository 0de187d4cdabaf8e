#include "core/Aufzeichnungsplan.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "core/Aufzeichnungstexte.h"
#include "core/Datenbestand.h"
#include "tvdb/cSendung.h"

namespace wendel {

namespace {

constexpr std::int64_t kKonfliktSekunden = 2 * 3600;

Aufzeichnung aufzeichnungAus(const cTermin& termin) {
    return {termin.WeckZeit, termin.Fensterende, termin.Sendungsbeginn, termin.Sendung->SenderKennung,
            termin.Sendung->Titel};
}

// Their windows have a moment in common.
bool ueberschneiden(const Aufzeichnung& a, const Aufzeichnung& b) {
    return a.beginn < b.ende && b.beginn < a.ende;
}

TerminZeiger terminAus(const Aufzeichnung& a) {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = a.beginn;
    termin->Fensterende = a.ende;
    termin->Sendungsbeginn = a.sendungsbeginn;
    termin->WeckText = Format(a.sendungsbeginn, "hh\\:nn") + " " + a.titel + " (" + a.senderkennung + ")";
    termin->Aktiv = true;
    termin->Art = Terminart::Aufzeichnung;
    termin->Sendung = std::make_shared<cSendung>();
    termin->Sendung->SenderKennung = a.senderkennung;
    termin->Sendung->Titel = a.titel;
    return termin;
}

}  // namespace

Aufzeichnungsplan::Aufzeichnungsplan(const Datenbestand& bestand, Aufzeichnungsstand& stand)
    : bestand_(bestand), stand_(stand) {}

bool Aufzeichnungsplan::istAktuell() const { return abgeglichen_ == bestand_.aufzeichnungenGelesen(); }

bool Aufzeichnungsplan::abgleichen(Datum jetzt) {
    abgeglichen_ = bestand_.aufzeichnungenGelesen();
    bool zurueckgezogen = false;
    const std::vector<Aufzeichnungseintrag> bekannte = stand_.eintraege();
    for (const Aufzeichnungseintrag& eintrag : bekannte) {
        if (!istZurueckgezogen(eintrag, jetzt)) continue;
        stand_.vergiss(eintrag.aufzeichnung);
        zurueckgezogen = true;
    }
    for (const TerminZeiger& termin : bestand_.aufzeichnungen()) {
        const Aufzeichnung gelesen = aufzeichnungAus(*termin);
        // What can't be recorded any more when it becomes known was not planned.
        if (stand_.finde(gelesen) || gelesen.ende > std::max(jetzt, gelesen.beginn)) stand_.merke(gelesen);
    }
    erneuern();
    return zurueckgezogen;
}

// The query leaves out what is over but for its follow-up time; else one that is missing is not wanted any
// more. What has begun runs to its end.
bool Aufzeichnungsplan::istZurueckgezogen(const Aufzeichnungseintrag& eintrag, Datum jetzt) const {
    const Aufzeichnung& a = eintrag.aufzeichnung;
    if (eintrag.phase != Aufzeichnungsphase::Geplant) return false;
    const auto istGemeint = [&](const TerminZeiger& t) { return istDieselbe(aufzeichnungAus(*t), a); };
    if (std::ranges::any_of(bestand_.aufzeichnungen(), istGemeint)) return false;
    const Datum sendungsende = DateAdd(Einheit::Minute, -bestand_.konfiguration().nachlaufMinuten, a.ende);
    return jetzt < a.beginn || (jetzt < a.ende && jetzt < sendungsende);
}

void Aufzeichnungsplan::nachlesen(Datum jetzt) {
    const bool markierungenBekannt = abgeglichen_ != 0;
    markierungenBekannt ? static_cast<void>(abgleichen(jetzt)) : erneuern();
}

void Aufzeichnungsplan::erneuern() {
    std::vector<Vorhaben> neu;
    for (const Aufzeichnungseintrag& eintrag : stand_.eintraege()) {
        if (eintrag.vorbei()) continue;
        Vorhaben& vorhaben = neu.emplace_back(Vorhaben{eintrag.aufzeichnung, termin(eintrag.aufzeichnung)});
        const auto alt = std::ranges::find_if(
            vorhaben_, [&](const Vorhaben& v) { return istDieselbe(v.aufzeichnung, eintrag.aufzeichnung); });
        if (alt == vorhaben_.end()) continue;
        vorhaben.angekuendigt = alt->angekuendigt;
        vorhaben.vertroestet = alt->vertroestet;
        // A record that has not changed stays the same, so that the list keeps its selection.
        if (alt->aufzeichnung == vorhaben.aufzeichnung) vorhaben.termin = alt->termin;
    }
    std::ranges::stable_sort(neu, {}, [](const Vorhaben& v) { return v.aufzeichnung.beginn; });
    vorhaben_ = std::move(neu);
    termine_.clear();
    for (const Vorhaben& vorhaben : vorhaben_)
        termine_.push_back(vorhaben.termin);
}

TerminZeiger Aufzeichnungsplan::termin(const Aufzeichnung& aufzeichnung) const {
    for (const TerminZeiger& termin : bestand_.aufzeichnungen()) {
        if (aufzeichnungAus(*termin) == aufzeichnung) return termin;
    }
    return terminAus(aufzeichnung);
}

bool Aufzeichnungsplan::wartet(const Vorhaben& vorhaben) const {
    const Aufzeichnungseintrag* eintrag = stand_.finde(vorhaben.aufzeichnung);
    return eintrag && eintrag->phase == Aufzeichnungsphase::Geplant;
}

std::string Aufzeichnungsplan::ueberschneidung(const cTermin& termin,
                                               const std::optional<Aufzeichnung>& laufende) const {
    const Aufzeichnung a = aufzeichnungAus(termin);
    if (laufende && istDieselbe(*laufende, a)) return {};
    if (laufende && ueberschneiden(*laufende, a)) return Aufzeichnungstexte::ueberschneidung(*laufende);
    for (const Vorhaben& andere : vorhaben_) {
        if (istDieselbe(andere.aufzeichnung, a)) break;
        if (ueberschneiden(andere.aufzeichnung, a))
            return Aufzeichnungstexte::ueberschneidung(andere.aufzeichnung);
    }
    return {};
}

// Only those of the same evening, so to speak: the others are named in the list.
std::string Aufzeichnungsplan::konflikte(const Aufzeichnung& aufzeichnung) const {
    std::string text;
    bool istSpaeter = true;
    for (const Vorhaben& vorhaben : vorhaben_) {
        const Aufzeichnung& andere = vorhaben.aufzeichnung;
        if (istDieselbe(andere, aufzeichnung)) {
            istSpaeter = false;
            continue;
        }
        const std::int64_t abstand = andere.beginn.sekunden() - aufzeichnung.beginn.sekunden();
        if (!ueberschneiden(andere, aufzeichnung) || abstand > kKonfliktSekunden ||
            abstand < -kKonfliktSekunden)
            continue;
        text +=
            (text.empty() ? "" : "\r\n") + (istSpaeter ? Aufzeichnungstexte::konflikt(aufzeichnung, andere)
                                                       : Aufzeichnungstexte::konflikt(andere, aufzeichnung));
    }
    return text;
}

}  // namespace wendel
