#include "Kalenderzeit.h"

#include <cstdint>
#include <ctime>

namespace wendel::quillon {

namespace {

constexpr Datum kUnixNull = Datum::ausSekunden(std::int64_t{25569} * 86400);  // 1 January 1970

Datum alsDatum(std::tm teile) { return kUnixNull.plusSekunden(::timegm(&teile)); }

Datum ausWeltzeit(Datum weltzeit) {
    const std::time_t sekunde = weltzeit.sekunden() - kUnixNull.sekunden();
    std::tm lokal{};
    if (!::localtime_r(&sekunde, &lokal)) return weltzeit;
    return alsDatum(lokal);
}

// A zone changes its clocks once or twice a year. A rule that does so each second would fill the memory.
bool istBrauchbar(icalcomponent* zone) {
    bool gut = true;
    const auto pruefe = [&gut](icalcomponent* teil) {
        fuerJedeEigenschaft(teil, ICAL_RRULE_PROPERTY, [&gut](icalproperty* regel) {
            gut = gut && icalproperty_get_rrule(regel).freq >= ICAL_MONTHLY_RECURRENCE;
        });
    };
    fuerJedeKomponente(zone, ICAL_XSTANDARD_COMPONENT, pruefe);
    fuerJedeKomponente(zone, ICAL_XDAYLIGHT_COMPONENT, pruefe);
    return gut;
}

icaltimezone* zoneDerDatei(const std::string& name, icalcomponent* kalender) {
    icaltimezone* zone = kalender ? icalcomponent_get_timezone(kalender, name.c_str()) : nullptr;
    icalcomponent* beschreibung = zone ? icaltimezone_get_component(zone) : nullptr;
    return beschreibung && istBrauchbar(beschreibung) ? zone : nullptr;
}

// Some programs write a path before the usual name: "/example.org/2012/Europe/Berlin".
icaltimezone* zoneDesSystems(const std::string& name) {
    std::string rest = name;
    while (true) {
        if (icaltimezone* zone = icaltimezone_get_builtin_timezone(rest.c_str())) return zone;
        const std::size_t strich = rest.find('/', 1);
        if (!name.starts_with('/') || strich == std::string::npos) return nullptr;
        rest = rest.substr(rest.starts_with('/') ? 1 : strich + 1);
    }
}

bool istGueltig(const icaltimetype& t) {
    if (t.year < 100 || t.year > 9999 || !istKalendertag(t.year, t.month, t.day)) return false;
    constexpr int kSchaltsekunde = 60;
    return t.is_date || (t.hour >= 0 && t.hour < 24 && t.minute >= 0 && t.minute < 60 && t.second >= 0 &&
                         t.second <= kSchaltsekunde);
}

// The library knows the changes of the clocks until 2582, and unrolls them all again with each later
// question. The calendar repeats itself after 400 years.
Datum inBekannterZeit(Datum wand) {
    constexpr std::int64_t kVierJahrhunderte = std::int64_t{146097} * 86400;
    while (wand >= DateSerial(2500, 1, 1))
        wand = wand.plusSekunden(-kVierJahrhunderte);
    return wand;
}

}  // namespace

bool istSchreibbar(Datum d) { return d >= DateSerial(100, 1, 1) && d < DateSerial(3001, 1, 1); }

Kalenderzone Kalenderzone::namens(const std::string& name, icalcomponent* kalender) {
    icaltimezone* zone = zoneDerDatei(name, kalender);
    if (!zone) zone = zoneDesSystems(name);
    if (!zone) return Kalenderzone(Art::Ort, nullptr, name);
    if (zone == icaltimezone_get_utc_timezone()) return weltzeit();
    return Kalenderzone(Art::Benannt, zone, "");
}

Datum Kalenderzone::ortszeit(Datum wand) const {
    if (art_ == Art::Ort) return wand;
    if (art_ == Art::Welt) return ausWeltzeit(wand);
    icaltimetype zeit = kalenderzeit(inBekannterZeit(wand));
    return ausWeltzeit(wand.plusSekunden(-icaltimezone_get_utc_offset(zone_, &zeit, nullptr)));
}

std::optional<Kalenderzeit> kalenderzeit(const icaltimetype& wert, icalproperty* eigenschaft,
                                         icalcomponent* kalender) {
    if (!istGueltig(wert)) return std::nullopt;
    Kalenderzeit zeit{datumAus(wert), wert.is_date != 0, Kalenderzone()};
    if (zeit.ganztags) return zeit;
    if (icaltime_is_utc(wert)) {
        zeit.zone = Kalenderzone::weltzeit();
    } else if (icalparameter* zone = icalproperty_get_first_parameter(eigenschaft, ICAL_TZID_PARAMETER)) {
        zeit.zone = Kalenderzone::namens(alsText(icalparameter_get_tzid(zone)), kalender);
    }
    return zeit;
}

icaltimetype kalenderzeit(Datum d) {
    const Datumsteile t = zerlegt(d);
    icaltimetype zeit = icaltime_null_time();
    zeit.year = t.jahr;
    zeit.month = t.monat;
    zeit.day = t.tag;
    zeit.hour = t.stunde;
    zeit.minute = t.minute;
    zeit.second = t.sekunde;
    return zeit;
}

Datum datumAus(const icaltimetype& zeit) {
    const Datum tag = DateSerial(zeit.year, zeit.month, zeit.day);
    return zeit.is_date ? tag : tag.plusSekunden((zeit.hour * 60 + zeit.minute) * 60 + zeit.second);
}

Datum weltzeitAus(Datum ortszeit) {
    const Datumsteile t = zerlegt(ortszeit);
    std::tm teile{};
    teile.tm_year = t.jahr - 1900;
    teile.tm_mon = t.monat - 1;
    teile.tm_mday = t.tag;
    teile.tm_hour = t.stunde;
    teile.tm_min = t.minute;
    teile.tm_sec = t.sekunde;
    teile.tm_isdst = -1;
    return kUnixNull.plusSekunden(std::mktime(&teile));
}

}  // namespace wendel::quillon
