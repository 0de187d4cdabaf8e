#include "Kalenderausgabe.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <map>

#include "Kalenderbibliothek.h"
#include "Kalendertext.h"
#include "Kalenderzeit.h"
#include "Sendeplan.h"
#include "reminders/cTermin.h"

namespace wendel::quillon {

namespace {

void fuegeAn(const Kalenderkomponente& an, icalproperty* eigenschaft) {
    icalcomponent_add_property(an.get(), vorhanden(eigenschaft));
}

void fuegeEigeneAn(const Kalenderkomponente& an, const char* name, const std::string& wert) {
    Kalendereigenschaft eigenschaft(vorhanden(icalproperty_new_x(wert.c_str())));
    icalproperty_set_x_name(eigenschaft.get(), name);
    icalcomponent_add_property(an.get(), eigenschaft.release());
}

std::int16_t bekanntesIntervall(const GespeicherterTermin& termin) {
    const bool wiederholt =
        termin.intervall >= intervall::kTaeglich && termin.intervall <= intervall::kWoechentlich;
    return wiederholt ? termin.intervall : intervall::kEinmal;
}

// What stays the same while a repeating appointment moves on.
std::string wesen(const GespeicherterTermin& termin) {
    const std::int16_t art = bekanntesIntervall(termin);
    const std::string_view muster = art == intervall::kEinmal         ? "yyyymmddhhnnss"
                                    : art == intervall::kWoechentlich ? "dddhhnnss"
                                                                      : "hhnnss";
    return std::to_string(art) + "|" + Format(termin.weckZeit, muster) + "|" +
           mitErlaubtenZeichen(termin.weckText);
}

std::string hexziffern(std::uint64_t wert) {
    std::array<char, 16> ziffern{};
    const auto ende = std::to_chars(ziffern.data(), ziffern.data() + ziffern.size(), wert, 16).ptr;
    const std::string text(ziffern.data(), ende);
    return std::string(ziffern.size() - text.size(), '0') + text;
}

const char* regelFuer(std::int16_t art) {
    switch (art) {
        case intervall::kTaeglich: return "FREQ=DAILY";
        case intervall::kWerktags: return "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR";
        case intervall::kWoechentlich: return "FREQ=WEEKLY";
        default: return nullptr;
    }
}

Kalenderkomponente alarm(const std::string& text) {
    Kalenderkomponente alarm(vorhanden(icalcomponent_new(ICAL_VALARM_COMPONENT)));
    fuegeAn(alarm, icalproperty_new_action(ICAL_ACTION_DISPLAY));
    icaltriggertype ausloeser{};
    ausloeser.time = icaltime_null_time();
    ausloeser.duration = icaldurationtype_from_int(0);
    fuegeAn(alarm, icalproperty_new_trigger(ausloeser));
    // Must not be missing here, so that an empty one would be an alarm without a word.
    fuegeAn(alarm, icalproperty_new_description(text.empty() ? kHinweisvorsatz.data() : text.c_str()));
    return alarm;
}

class Schreiber {
  public:
    explicit Schreiber(Datum weltzeit) : stempel_(kalenderzeit(weltzeit)) {
        stempel_.zone = icaltimezone_get_utc_timezone();
        fuegeAn(kalender_, icalproperty_new_prodid("-//Lomrick//quillon//DE"));
        fuegeAn(kalender_, icalproperty_new_version("2.0"));
        fuegeAn(kalender_, icalproperty_new_calscale("GREGORIAN"));
    }

    void schreibe(const GespeicherterTermin& termin) {
        const std::string kern = wesen(termin);
        const std::string kennung = hexziffern(streuwert(kern)) + "-" + std::to_string(++gleiche_[kern]);
        const std::int16_t art = bekanntesIntervall(termin);
        const std::string uid = kennung + "@lomrick";
        if (art == intervall::kWerktags && wochentagAbMontag(termin.weckZeit) > 5) {
            auto reihe = ereignis(termin, naechsterTermin(termin.weckZeit, art), uid, art);
            fuegeEigeneAn(reihe, kalendername::kBeginn, Format(termin.weckZeit, "yyyymmdd\\Thhnnss"));
            fuegeEin(std::move(reihe));
            auto einzeln = ereignis(termin, termin.weckZeit, kennung + "-0@lomrick", intervall::kEinmal);
            fuegeEigeneAn(einzeln, kalendername::kReihe, uid);
            fuegeEin(std::move(einzeln));
        } else {
            fuegeEin(ereignis(termin, termin.weckZeit, uid, art));
        }
    }

    std::string text() const {
        const std::unique_ptr<char, decltype(&icalmemory_free_buffer)> zeichen(
            vorhanden(icalcomponent_as_ical_string_r(kalender_.get())), &icalmemory_free_buffer);
        return zeichen.get();
    }

  private:
    Kalenderkomponente ereignis(const GespeicherterTermin& termin, Datum beginn, const std::string& uid,
                                std::int16_t art) const {
        Kalenderkomponente ereignis(vorhanden(icalcomponent_new(ICAL_VEVENT_COMPONENT)));
        const std::string text = mitErlaubtenZeichen(termin.weckText);
        fuegeAn(ereignis, icalproperty_new_uid(uid.c_str()));
        fuegeAn(ereignis, icalproperty_new_dtstamp(stempel_));
        fuegeAn(ereignis, icalproperty_new_dtstart(kalenderzeit(beginn)));
        fuegeAn(ereignis, icalproperty_new_summary(text.c_str()));
        if (const char* regel = regelFuer(art)) {
            fuegeAn(ereignis, icalproperty_new_rrule(icalrecurrencetype_from_string(regel)));
        }
        if (termin.aktiv)
            icalcomponent_add_component(ereignis.get(), alarm(text).release());
        else
            fuegeEigeneAn(ereignis, kalendername::kAktiv, "FALSE");
        return ereignis;
    }
    void fuegeEin(Kalenderkomponente ereignis) {
        icalcomponent_add_component(kalender_.get(), ereignis.release());
    }

    icaltimetype stempel_;
    Kalenderkomponente kalender_{vorhanden(icalcomponent_new(ICAL_VCALENDAR_COMPONENT))};
    std::map<std::string, int> gleiche_;
};

}  // namespace

bool passtInKalender(const GespeicherterTermin& termin) {
    return istSchreibbar(termin.weckZeit) &&
           istSchreibbar(naechsterTermin(termin.weckZeit, intervall::kWerktags));
}

std::string kalenderdatei(std::span<const GespeicherterTermin> termine, Datum weltzeit) {
    Schreiber schreiber(weltzeit);
    for (const GespeicherterTermin& termin : termine)
        schreiber.schreibe(termin);
    return schreiber.text();
}

}  // namespace wendel::quillon
