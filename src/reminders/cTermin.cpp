#include "reminders/cTermin.h"

#include "platform/Text.h"

namespace wendel {
namespace {

constexpr std::int64_t kTag = 86400;
constexpr std::int64_t kWoche = 7 * kTag;

// Days to the next working day; a week counts from Monday 1 to Sunday 7.
int tageBisWerktag(Datum d) {
    constexpr int kFreitag = 5;
    const int wochentag = wochentagAbMontag(d);
    return wochentag < kFreitag ? 1 : 8 - wochentag;
}

// At least one step, then on while the moment lies before grenze. Every interval repeats with the week, so
// whole weeks are skipped at once and an entry decades old costs no more than one of yesterday. The first
// step comes before that, since it takes a working-day entry off the weekend.
Datum weitergestellt(Datum weckZeit, std::int16_t intervallwert, Datum grenze) {
    Datum neu = naechsterTermin(weckZeit, intervallwert);
    if (neu < grenze) {
        const std::int64_t rueckstand = grenze.sekunden() - neu.sekunden();
        neu = neu.plusSekunden(rueckstand / kWoche * kWoche);
    }
    while (neu < grenze)
        neu = naechsterTermin(neu, intervallwert);
    return neu;
}

}  // namespace

bool istKurzzeiterinnerung(const cTermin& termin) { return LCase(termin.WeckText) == LCase(kKurzzeittext); }

bool wiederholtSich(std::int16_t intervallwert) {
    return intervallwert >= intervall::kTaeglich && intervallwert <= intervall::kWoechentlich;
}

bool wiederholtSich(const cTermin& termin) { return wiederholtSich(termin.Intervall); }

bool istFaellig(const cTermin& termin, Datum jetzt) { return termin.Aktiv && termin.WeckZeit <= jetzt; }

Datum naechsterTermin(Datum weckZeit, std::int16_t intervallwert) {
    switch (intervallwert) {
        case intervall::kTaeglich: return weckZeit.plusSekunden(kTag);
        case intervall::kWerktags: return weckZeit.plusSekunden(tageBisWerktag(weckZeit) * kTag);
        case intervall::kWoechentlich: return weckZeit.plusSekunden(kWoche);
        default: return weckZeit;
    }
}

void nachFeuernWeiterstellen(cTermin& termin, Datum jetzt) {
    if (wiederholtSich(termin)) {
        termin.WeckZeit = weitergestellt(termin.WeckZeit, termin.Intervall, jetzt.plusSekunden(1));
        return;
    }
    termin.Aktiv = false;
    termin.GefeuertFuer = termin.WeckZeit;
}

bool nachholen(cTermin& termin, Datum jetzt) {
    if (termin.Aktiv) return false;
    if (!wiederholtSich(termin)) {
        termin.Aktiv = jetzt < termin.WeckZeit && termin.GefeuertFuer != termin.WeckZeit;
    } else if (termin.WeckZeit < jetzt) {
        termin.WeckZeit = weitergestellt(termin.WeckZeit, termin.Intervall, jetzt);
    }
    return termin.Aktiv;
}

bool nachholen(const Terminliste& termine, Datum jetzt) {
    bool aktiviert = false;
    for (const TerminZeiger& termin : termine)
        aktiviert |= nachholen(*termin, jetzt);
    return aktiviert;
}

std::string hinweiszeilen(const cTermin& termin) {
    std::string zeilen(kHinweisvorsatz);
    zeilen += kCrLf;
    if (istKurzzeiterinnerung(termin)) return zeilen;
    zeilen += termin.WeckText;
    zeilen += kCrLf;
    return zeilen;
}

std::string hinweistext(const Terminliste& termine) {
    std::string text;
    for (const TerminZeiger& termin : termine)
        text += hinweiszeilen(*termin);
    if (text.ends_with(kCrLf)) text.resize(text.size() - kCrLf.size());
    return text;
}

}  // namespace wendel
