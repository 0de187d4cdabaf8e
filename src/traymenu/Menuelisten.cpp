#include "traymenu/Menuelisten.h"

#include <algorithm>
#include <utility>

#include "platform/Fehler.h"

namespace wendel {

namespace {

using Programmabfragen::Art;

Datum fruehestes(const Sendungsliste& liste, Datum cSendung::*moment, Datum sonst) {
    for (const cSendung& sendung : liste)
        sonst = std::min(sonst, sendung.*moment);
    return sonst;
}

}  // namespace

bool Menuelisten::auffrischen() {
    const Datum jetzt = ports_.uhr.jetzt();
    // Looked at before the questions: what is written while they run makes the lists stale again.
    const Quelle quelle{ausgabe_, ports_.dateien.stand(zugriff_.datenbankdatei())};
    bool alleGelten = true;
    for (Liste* liste : {&gleich_, &aktuell_, &um2015_, &ab2200_}) {
        if (liste->quelle == quelle && liste->von <= jetzt && jetzt < liste->bis) continue;
        *liste = {};
        alleGelten = false;
    }
    return alleGelten || fragen(jetzt, quelle);
}

bool Menuelisten::fragen(Datum jetzt, const Quelle& quelle) {
    try {
        auto db = zugriff_.OpenDatenbank(zugriff_.datenbankdatei());
        frageVeraltete(db, jetzt, quelle);
        zugriff_.SafeCloseDatenbank(db);
        return true;
    } catch (const Fehler&) {
        return false;  // the user has answered its box, and the log has it; the menu opens with what there is
    }
}

Sendungsliste Menuelisten::frage(std::unique_ptr<Datenbank>& db, Art art, Datum t) {
    return Programmabfragen::abfragen(zugriff_, db, art, t, sender_.favoriten());
}

void Menuelisten::frageVeraltete(std::unique_ptr<Datenbank>& db, Datum jetzt, const Quelle& quelle) {
    const Datum heute = jetzt.datumsteil();
    const Datum morgen = DateAdd(Einheit::Tag, 1, heute);
    const auto veraltet = [](const Liste& liste) { return liste.von == liste.bis; };
    // Of its rows the first one to begin leaves it, and joins what runs.
    if (veraltet(gleich_)) {
        Sendungsliste neu = frage(db, Art::Nach, jetzt);
        const Datum bis = fruehestes(neu, &cSendung::Beginn, morgen);
        gleich_ = {std::move(neu), quelle, jetzt, bis};
    }
    if (veraltet(aktuell_)) {
        Sendungsliste neu = frage(db, Art::Laeuft, jetzt);
        const Datum bis = fruehestes(neu, &cSendung::Ende, gleich_.bis);
        aktuell_ = {std::move(neu), quelle, jetzt, bis};
    }
    // Both depend on the day alone.
    if (veraltet(um2015_)) {
        Sendungsliste neu = frage(db, Art::Ab, heute + TimeSerial(20, 15, 0));
        std::erase_if(neu, [&](const cSendung& sendung) { return sendung.Datum() != heute; });
        um2015_ = {std::move(neu), quelle, heute, morgen};
    }
    if (veraltet(ab2200_)) {
        const Datum ab = heute + TimeSerial(22, 0, 0);
        Sendungsliste neu = frage(db, Art::Abend, jetzt);
        std::erase_if(neu, [&](const cSendung& sendung) { return sendung.Beginn < ab; });
        ab2200_ = {std::move(neu), quelle, heute, morgen};
    }
}

}  // namespace wendel
