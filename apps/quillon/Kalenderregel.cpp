#include "Kalenderregel.h"

#include <algorithm>
#include <array>

#include "reminders/cTermin.h"

namespace wendel::quillon {

namespace {

constexpr std::int64_t kTag = 86400;
constexpr std::int64_t kWoche = 7 * kTag;
constexpr Wochentage kAlleTage = 0x7F;
constexpr Wochentage kMontagBisFreitag = 0x1F;

Wochentage bitVon(Datum tag) { return 1U << (wochentagAbMontag(tag) - 1); }

// The library counts from Sunday 1.
Wochentage bitVon(icalrecurrencetype_weekday tag) { return 1U << ((static_cast<int>(tag) + 5) % 7); }

template <std::size_t N>
bool istGesetzt(const short (&liste)[N]) {
    return liste[0] != ICAL_RECURRENCE_ARRAY_MAX;
}

bool hatTeileOhneWochentag(const icalrecurrencetype& r) {
    return istGesetzt(r.by_second) || istGesetzt(r.by_minute) || istGesetzt(r.by_hour) ||
           istGesetzt(r.by_month_day) || istGesetzt(r.by_year_day) || istGesetzt(r.by_week_no) ||
           istGesetzt(r.by_month) || istGesetzt(r.by_set_pos) || r.rscale;
}

bool hatEnde(const icalrecurrencetype& r) { return r.count != 0 || !icaltime_is_null_time(r.until); }

Kalenderzeit am(const Kalenderreihe& reihe, Datum wand) {
    return {wand, reihe.beginn.ganztags, reihe.beginn.zone};
}

Datum erinnerung(const Kalenderreihe& reihe, const Kalenderzeit& beginn) {
    return beginn.ortszeit().plusSekunden(reihe.versatz);
}

// The beginnings on each of the days, Monday first, of the first reminder that is not before jetzt.
using Ersteraller = std::array<std::optional<Kalenderzeit>, 7>;
Ersteraller ersteJeWochentag(const Kalenderreihe& reihe, Wochentage tage, Datum jetzt) {
    // Two days earlier: the zone may lie on the other side of the date line.
    const Datum frueh = jetzt.plusSekunden(-reihe.versatz - 2 * kTag).datumsteil();
    Datum tag = std::max(frueh, reihe.beginn.wand.datumsteil());
    Ersteraller erste;
    for (Wochentage offen = tage; offen != 0; tag = tag.plusSekunden(kTag)) {
        if ((offen & bitVon(tag)) == 0) continue;
        const Kalenderzeit beginn = am(reihe, tag + reihe.beginn.wand.uhrzeitteil());
        if (erinnerung(reihe, beginn) < jetzt || reihe.ausnahmen.enthaelt(beginn)) continue;
        erste.at(static_cast<std::size_t>(wochentagAbMontag(tag) - 1)) = beginn;
        offen &= ~bitVon(tag);
    }
    return erste;
}

// The first week in which the series is no longer a whole number of weeks away. Where its clock is that of
// the reader, a single such week is the hour that the change of the clocks leaves out.
std::optional<Datum> abweichungNach(const Kalenderreihe& reihe, const Kalenderzeit& erster) {
    constexpr int kWochenImJahr = 53;
    const bool gleicheUhr = erster.wand == erster.ortszeit();
    const auto weicht = [&](int woche) {
        const Kalenderzeit spaeter = am(reihe, erster.wand.plusSekunden(woche * kWoche));
        return spaeter.ortszeit() != erster.ortszeit().plusSekunden(woche * kWoche);
    };
    for (int woche = 1; woche <= kWochenImJahr; ++woche) {
        if (weicht(woche) && (!gleicheUhr || weicht(woche + 1)))
            return erinnerung(reihe, am(reihe, erster.wand.plusSekunden(woche * kWoche)));
    }
    return std::nullopt;
}

// Whether the beginning is not after the rule's end, which may be a day, wall time or UTC.
bool vorEnde(const icaltimetype& ende, const Kalenderzeit& beginn) {
    if (icaltime_is_null_time(ende)) return true;
    const Datum grenze = datumAus(ende);
    if (ende.is_date) return beginn.wand.datumsteil() <= grenze;
    if (icaltime_is_utc(ende)) return beginn.ortszeit() <= Kalenderzone::weltzeit().ortszeit(grenze);
    return beginn.wand <= grenze;
}

}  // namespace

bool Kalenderausnahmen::enthaelt(const Kalenderzeit& beginn) const {
    return tage.contains(beginn.wand.datumsteil()) || momente.contains(beginn.ortszeit());
}

std::optional<Wochentage> wochentageAus(const icalrecurrencetype& regel, Datum beginn) {
    const bool taeglich = regel.freq == ICAL_DAILY_RECURRENCE;
    if ((!taeglich && regel.freq != ICAL_WEEKLY_RECURRENCE) || regel.interval != 1 || hatEnde(regel) ||
        hatTeileOhneWochentag(regel))
        return std::nullopt;
    if (!istGesetzt(regel.by_day)) return taeglich ? kAlleTage : bitVon(beginn);
    Wochentage tage = 0;
    for (const short tag : regel.by_day) {
        if (tag == ICAL_RECURRENCE_ARRAY_MAX) break;
        if (icalrecurrencetype_day_position(tag) != 0) return std::nullopt;
        tage |= bitVon(icalrecurrencetype_day_day_of_week(tag));
    }
    return tage;
}

std::vector<Wiederholung> wiederholungen(const Kalenderreihe& reihe, Wochentage tage, Datum jetzt) {
    std::vector<Wiederholung> einzelne;
    Wochentage hier = 0;
    for (const auto& beginn : ersteJeWochentag(reihe, tage, jetzt)) {
        if (!beginn) continue;
        einzelne.push_back({erinnerung(reihe, *beginn), intervall::kWoechentlich});
        hier |= bitVon(einzelne.back().erster);
    }
    const auto frueher = [](const auto& a, const auto& b) { return a.erster < b.erster; };
    std::sort(einzelne.begin(), einzelne.end(), frueher);
    if (hier == kAlleTage) return {{einzelne.front().erster, intervall::kTaeglich}};
    if (hier == kMontagBisFreitag) return {{einzelne.front().erster, intervall::kWerktags}};
    return einzelne;
}

std::optional<Datum> ersteAbweichung(const Kalenderreihe& reihe, Wochentage tage, Datum ab) {
    if (reihe.beginn.zone.istOrtszeit()) return std::nullopt;
    std::optional<Datum> frueheste;
    for (const auto& erster : ersteJeWochentag(reihe, tage, ab)) {
        const auto wann = erster ? abweichungNach(reihe, *erster) : std::nullopt;
        if (wann && (!frueheste || *wann < *frueheste)) frueheste = wann;
    }
    return frueheste;
}

std::optional<Datum> naechsterDerRegel(const icalrecurrencetype& regel, const Kalenderreihe& reihe,
                                       Datum jetzt) {
    // What repeats within a day is no reminder, and could be asked for millions of times.
    if (regel.freq < ICAL_DAILY_RECURRENCE || regel.freq > ICAL_YEARLY_RECURRENCE) return std::nullopt;
    icalrecurrencetype ohneEnde = regel;
    ohneEnde.until = icaltime_null_time();
    icaltimetype anfang = kalenderzeit(reihe.beginn.wand);
    anfang.is_date = reihe.beginn.ganztags ? 1 : 0;
    const Regellauf lauf(icalrecur_iterator_new(ohneEnde, anfang));
    constexpr int kHoechstens = 100'000;
    for (int i = 0; lauf && i < kHoechstens; ++i) {
        const icaltimetype zeit = icalrecur_iterator_next(lauf.get());
        if (icaltime_is_null_time(zeit) || zeit.year > 9999) return std::nullopt;
        const Kalenderzeit beginn = am(reihe, datumAus(zeit));
        if (!vorEnde(regel.until, beginn)) return std::nullopt;
        const Datum moment = erinnerung(reihe, beginn);
        if (moment >= jetzt && !reihe.ausnahmen.enthaelt(beginn)) return moment;
    }
    return std::nullopt;
}

std::string_view regelgrund(const icalrecurrencetype& regel) {
    if (hatEnde(regel)) return "Die Wiederholung hat ein Ende";
    if (regel.freq == ICAL_YEARLY_RECURRENCE) return "Jährliche Wiederholung";
    if (regel.freq == ICAL_MONTHLY_RECURRENCE) return "Monatliche Wiederholung";
    if (regel.interval != 1) return "Die Wiederholung lässt Tage oder Wochen aus";
    return "Wiederholung nach besonderen Regeln";
}

}  // namespace wendel::quillon
