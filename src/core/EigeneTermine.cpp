#include "core/EigeneTermine.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/Fehler.h"
#include "reminders/Terminspeicher.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel {

namespace {

// A settings file that was made anew has lost its content; nothing was deleted from it on purpose.
bool istNeu(const Variant& array) {
    const auto& elemente = array.alsArray().elemente;
    return std::all_of(elemente.begin(), elemente.end(),
                       [](const Variant& element) { return element.istLeer(); });
}

std::vector<GespeicherterTermin> termineAusArray(const Variant& array) {
    return termineAusVariant(elementOderErsatz(array, einstellung::kTermin, Variant()));
}

// The editor shows minutes: what it returns has lost the seconds.
bool istGleicheMinute(Datum a, Datum b) { return a.aufMinute() == b.aufMinute(); }

void setzeMoment(cTermin& termin, Datum moment) {
    const bool erledigt = termin.GefeuertFuer == termin.WeckZeit && istGleicheMinute(moment, termin.WeckZeit);
    termin.WeckZeit = moment;
    if (erledigt) termin.GefeuertFuer = moment;
}

}  // namespace

EigeneTermine::EigeneTermine(Uhr& uhr, Einstellungen& einstellungen, Hinweisjournal& journal)
    : uhr_(uhr), einstellungen_(einstellungen), journal_(journal) {}

void EigeneTermine::laden() {
    const std::optional<Variant> array = einstellungen_.arrayOderNichts();
    if (!array) return;
    gelesen_ = true;
    const Datum jetzt = uhr_.jetzt();
    abgelegt_ = neuGelesen(abgelegt_, termineAusArray(*array), jetzt);
    liste_.clear();
    for (const AbgelegterTermin& abgelegter : abgelegt_) {
        if (abgelegter.termin) liste_.push_back(abgelegter.termin);
    }
    if (!gezeigteWeiterstellen(liste_, journal_, jetzt)) return;
    ungespeichert_ = true;
    static_cast<void>(speichernWennNoetig());
}

void EigeneTermine::anhaengen(const TerminZeiger& termin) {
    vorJournalSchuetzen(*termin);
    liste_.push_back(termin);
    ungespeichert_ = true;
}

// While an entry of this moment and text is known as shown, the next start would take this one for that.
void EigeneTermine::vorJournalSchuetzen(cTermin& termin) {
    while (journal_.kennt(termin))
        termin.WeckZeit = termin.WeckZeit.plusSekunden(1);
}

TerminZeiger EigeneTermine::uebernehmen(const TerminZeiger& termin, const cTermin& vorher,
                                        const cTermin& nachher) {
    ungespeichert_ = true;
    const bool stehtNoch = std::find(liste_.begin(), liste_.end(), termin) != liste_.end();
    TerminZeiger ziel = stehtNoch ? termin : suche(vorher);
    if (!ziel) liste_.push_back(ziel = termin);
    const Datum jetzt = uhr_.jetzt();
    const bool momentBleibt = istGleicheMinute(nachher.WeckZeit, vorher.WeckZeit);
    const bool erledigt = !ziel->Aktiv && !wiederholtSich(*ziel);
    // It fired while the editor was open: the user has seen the moment for which it did, not the next one.
    if (!momentBleibt || ziel->WeckZeit == vorher.WeckZeit) setzeMoment(*ziel, nachher.WeckZeit);
    ziel->WeckText = nachher.WeckText;
    ziel->Intervall = nachher.Intervall;
    if (wiederholtSich(*ziel) || ziel->WeckZeit > jetzt) ziel->Aktiv = true;
    // A moment that has been shown begins the repetition and is not shown once more.
    if (wiederholtSich(*ziel) && erledigt && momentBleibt && ziel->WeckZeit <= jetzt)
        nachFeuernWeiterstellen(*ziel, jetzt);
    if (ziel->Aktiv) vorJournalSchuetzen(*ziel);
    return ziel;
}

TerminZeiger EigeneTermine::suche(const cTermin& gesucht) const {
    const auto gefunden = std::find_if(liste_.begin(), liste_.end(), [&](const TerminZeiger& termin) {
        return termin->WeckZeit == gesucht.WeckZeit && termin->WeckText == gesucht.WeckText;
    });
    return gefunden == liste_.end() ? nullptr : *gefunden;
}

TerminZeiger EigeneTermine::entfernen(const cTermin& gesucht) {
    ungespeichert_ = true;
    const TerminZeiger termin = suche(gesucht);
    std::erase(liste_, termin);
    return termin;
}

void EigeneTermine::nachholen() {
    if (!gelesen_ && !ungespeichert_) laden();  // the start could not
    if (wendel::nachholen(liste_, uhr_.jetzt())) ungespeichert_ = true;
}

bool EigeneTermine::speichernWennNoetig() {
    if (!ungespeichert_) return true;
    try {
        speichern();
        ungespeichert_ = false;
        speicherfehler_.clear();
        return true;
    } catch (const Fehler& fehler) {
        // Still marked as unstored: the next minute tries again.
        speicherfehler_ = fehler.beschreibung();
        return false;
    }
}

void EigeneTermine::speichern() {
    fremdeAenderungenUebernehmen();
    versucht_ = ablageVon(liste_);
    einstellungen_.setzeEinstellung(einstellung::kTermin,
                                    termineAlsVariant(termineFuerEinstellungen(liste_)));
    abgelegt_ = std::exchange(versucht_, {});
}

// Between a change here and its storing another program may have written the file: its new appointments would
// be lost, those it deleted would come back.
void EigeneTermine::fremdeAenderungenUebernehmen() {
    const std::optional<Variant> array = einstellungen_.arrayOderNichts();
    if (!array || istNeu(*array)) return;
    const auto datei = termineAusArray(*array);
    const bool istVersuch = unveraenderte(versucht_, datei) > unveraenderte(abgelegt_, datei);
    const Datum jetzt = uhr_.jetzt();
    abgelegt_ = fremdesUebernehmen(liste_, istVersuch ? versucht_ : abgelegt_, datei, jetzt);
    // A program that writes what it read before an entry fired brings it back as active.
    gezeigteWeiterstellen(liste_, journal_, jetzt);
}

}  // namespace wendel
