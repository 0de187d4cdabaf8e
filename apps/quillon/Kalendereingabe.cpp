#include "Kalendereingabe.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <utility>

#include "Kalenderbibliothek.h"
#include "Kalenderregel.h"
#include "Kalendertext.h"
#include "Kalenderzeit.h"
#include "platform/Fehler.h"
#include "platform/Text.h"
#include "reminders/cTermin.h"

namespace wendel::quillon {

namespace {

constexpr std::int64_t kStunde = 3600;
constexpr std::int64_t kUhrzeitGanztags = 9 * kStunde;
constexpr std::size_t kLaengsterText = 65535;
constexpr std::size_t kLaengsterName = 60;

icalproperty* ersteEigenschaft(icalcomponent* in, icalproperty_kind art) {
    return icalcomponent_get_first_property(in, art);
}
bool hat(icalcomponent* in, icalproperty_kind art) { return ersteEigenschaft(in, art) != nullptr; }

std::string eigenerWert(icalcomponent* in, std::string_view name) {
    std::string wert;
    fuerJedeEigenschaft(in, ICAL_X_PROPERTY, [&](icalproperty* e) {
        if (alsText(icalproperty_get_x_name(e)) == name) wert = alsText(icalproperty_get_x(e));
    });
    return wert;
}

std::string kennungVon(icalcomponent* ereignis) { return alsText(icalcomponent_get_uid(ereignis)); }

std::string zusammenfassung(icalcomponent* ereignis) {
    icalproperty* text = ersteEigenschaft(ereignis, ICAL_SUMMARY_PROPERTY);
    return text ? alsText(icalproperty_get_summary(text)) : "";
}

// For a line on the screen: a foreign text could hold anything.
std::string einzeiligGekuerzt(const std::string& text) {
    const std::string zeile = ersetzt(ersetzt(mitErlaubtenZeichen(text), "\n", " "), "\t", " ");
    return zeichenzahl(zeile) > kLaengsterName ? Left(zeile, kLaengsterName) + "..." : zeile;
}

std::string zeitpunkt(Datum d) { return Format(d, "dd.mm.yyyy hh:nn"); }

bool istAbgesagt(icalcomponent* ereignis, icalcomponent* kalender) {
    return icalcomponent_get_status(ereignis) == ICAL_STATUS_CANCELLED ||
           icalcomponent_get_method(kalender) == ICAL_METHOD_CANCEL;
}

// The library leaves a note in place of each property that it could not read. Without that of a time the
// event would seem to be a simpler one than it is.
bool istZeitBeschaedigt(icalcomponent* ereignis) {
    constexpr std::array kZeiten{"DTSTART", "RRULE", "RDATE", "EXDATE", "EXRULE", "RECURRENCE-ID"};
    bool beschaedigt = false;
    fuerJedeEigenschaft(ereignis, ICAL_XLICERROR_PROPERTY, [&](icalproperty* e) {
        const std::string meldung = alsText(icalproperty_get_xlicerror(e));
        for (const char* name : kZeiten)
            beschaedigt = beschaedigt || meldung.find(std::string(" ") + name + " ") != std::string::npos;
    });
    return beschaedigt;
}

bool hatUnbrauchbares(icalcomponent* ereignis) {
    constexpr std::array kOhnePlatz{ICAL_DESCRIPTION_PROPERTY, ICAL_LOCATION_PROPERTY, ICAL_ATTACH_PROPERTY,
                                    ICAL_ATTENDEE_PROPERTY, ICAL_URL_PROPERTY};
    return std::any_of(kOhnePlatz.begin(), kOhnePlatz.end(), [&](auto art) { return hat(ereignis, art); });
}

std::string anzahlText(std::size_t n, const char* einzahl, const char* mehrzahl) {
    return std::to_string(n) + (n == 1 ? einzahl : mehrzahl);
}

// An event while it becomes appointments.
struct Eintrag {
    icalcomponent* ereignis;
    icalcomponent* kalender;
    std::string name;  // for the messages
    std::string text;
    Kalenderreihe reihe;
};

class Leser {
  public:
    explicit Leser(Datum jetzt) : jetzt_(jetzt) {}

    // The tree of one file: one calendar, or several under a common root.
    Kalenderinhalt lies(icalcomponent* wurzel) {
        std::vector<icalcomponent*> kalender;
        if (icalcomponent_isa(wurzel) == ICAL_VCALENDAR_COMPONENT)
            kalender.push_back(wurzel);
        else
            fuerJedeKomponente(wurzel, ICAL_VCALENDAR_COMPONENT,
                               [&](icalcomponent* k) { kalender.push_back(k); });
        for (icalcomponent* k : kalender)
            fuerJedeKomponente(k, ICAL_VEVENT_COMPONENT,
                               [&](icalcomponent* ereignis) { merke(ereignis, k); });
        for (icalcomponent* k : kalender) {
            fuerJedeKomponente(k, ICAL_VEVENT_COMPONENT,
                               [&](icalcomponent* ereignis) { uebernimm(ereignis, k); });
            nenneAnderes(k);
        }
        zaehleAuf();
        return std::move(inhalt_);
    }

  private:
    // ---- what other events say about a series ----

    void merke(icalcomponent* ereignis, icalcomponent* kalender) {
        const std::string kennung = kennungVon(ereignis);
        icalproperty* stelle = ersteEigenschaft(ereignis, ICAL_RECURRENCEID_PROPERTY);
        if (kennung.empty()) return;
        if (!stelle) {
            reihen_.insert(kennung);
        } else if (const auto zeit = kalenderzeit(icalproperty_get_recurrenceid(stelle), stelle, kalender)) {
            nimmAus(ausnahmen_[kennung], *zeit);
        }
    }

    static void nimmAus(Kalenderausnahmen& ausnahmen, const Kalenderzeit& zeit) {
        if (zeit.ganztags)
            ausnahmen.tage.insert(zeit.wand);
        else
            ausnahmen.momente.insert(zeit.ortszeit());
    }

    Kalenderausnahmen ausnahmenVon(const Eintrag& e) {
        Kalenderausnahmen ausnahmen;
        const auto geaenderte = ausnahmen_.find(kennungVon(e.ereignis));
        if (geaenderte != ausnahmen_.end()) ausnahmen = geaenderte->second;
        fuerJedeEigenschaft(e.ereignis, ICAL_EXDATE_PROPERTY, [&](icalproperty* eigenschaft) {
            const auto zeit = kalenderzeit(icalproperty_get_exdate(eigenschaft), eigenschaft, e.kalender);
            if (!zeit) return nenne(e, "Eine Ausnahme der Reihe ist nicht lesbar.");
            nimmAus(ausnahmen, *zeit);
        });
        return ausnahmen;
    }

    // ---- one event ----

    void uebernimm(icalcomponent* ereignis, icalcomponent* kalender) {
        if (istSchonTeilEinerReihe(ereignis, kalender)) return;
        Eintrag e{ereignis, kalender, "", "", {}};
        icalproperty* dtstart = ersteEigenschaft(ereignis, ICAL_DTSTART_PROPERTY);
        const auto beginn =
            dtstart ? kalenderzeit(icalproperty_get_dtstart(dtstart), dtstart, kalender) : std::nullopt;
        e.name = nameVon(ereignis, beginn);
        const std::string grund = hindernis(ereignis, kalender, beginn.has_value());
        if (!grund.empty()) return lehneAb(e, grund);

        e.reihe.beginn = *beginn;
        e.text = textVon(e);
        nenneVerluste(e);
        e.reihe.versatz = versatzVon(e);
        e.reihe.ausnahmen = ausnahmenVon(e);
        if (hat(ereignis, ICAL_RRULE_PROPERTY))
            uebernimmReihe(e);
        else
            uebernimmEinzelnen(e);
        uebernimmZusatztage(e);
    }

    bool istSchonTeilEinerReihe(icalcomponent* ereignis, icalcomponent* kalender) const {
        if (reihen_.contains(eigenerWert(ereignis, kalendername::kReihe))) return true;
        return hat(ereignis, ICAL_RECURRENCEID_PROPERTY) && istAbgesagt(ereignis, kalender) &&
               reihen_.contains(kennungVon(ereignis));
    }

    static std::string nameVon(icalcomponent* ereignis, const std::optional<Kalenderzeit>& beginn) {
        const std::string text = "\"" + einzeiligGekuerzt(zusammenfassung(ereignis)) + "\"";
        if (!beginn) return text;
        const Datum wann = beginn->ortszeit();
        return text + " (" + (beginn->ganztags ? Format(wann, "dd.mm.yyyy") : zeitpunkt(wann)) + ")";
    }

    static std::string hindernis(icalcomponent* ereignis, icalcomponent* kalender, bool hatBeginn) {
        if (istAbgesagt(ereignis, kalender)) return "Der Termin ist abgesagt.";
        if (istZeitBeschaedigt(ereignis)) return "Die Zeitangaben sind nicht lesbar.";
        if (!hatBeginn) return "Der Beginn fehlt oder ist ungültig.";
        icalproperty* stelle = ersteEigenschaft(ereignis, ICAL_RECURRENCEID_PROPERTY);
        if (stelle && icalproperty_get_first_parameter(stelle, ICAL_RANGE_PARAMETER))
            return "Die Änderung gilt für alle weiteren Termine einer Reihe.";
        if (hat(ereignis, ICAL_EXRULE_PROPERTY)) return "Die Ausnahmen folgen einer Regel.";
        return "";
    }

    std::string textVon(const Eintrag& e) {
        const std::string roh = Trim(ersetzt(mitErlaubtenZeichen(zusammenfassung(e.ereignis)), "\n", kCrLf));
        std::string text = ausWindows1252(nachWindows1252(roh));
        if (text != roh)
            nenne(e, "Zeichen, die die Einstellungen nicht kennen, sind durch \"?\" ersetzt worden.");
        if (zeichenzahl(text) > kLaengsterText) {
            text = Trim(Left(text, kLaengsterText));
            nenne(e, "Der Text ist auf 65535 Zeichen gekürzt worden.");
        }
        return text;
    }

    // ---- its moment ----

    void nenneVerluste(const Eintrag& e) {
        if (hatUnbrauchbares(e.ereignis)) ++ohnePlatz_;
        const std::string& zone = e.reihe.beginn.zone.unbekannte();
        if (!zone.empty())
            nenne(e, "Die Zeitzone \"" + einzeiligGekuerzt(zone) +
                         "\" ist unbekannt, die Uhrzeit gilt als Ortszeit.");
    }

    // Seconds from the beginning to the reminder.
    std::int64_t versatzVon(const Eintrag& e) {
        std::vector<std::int64_t> alarme;
        fuerJedeKomponente(e.ereignis, ICAL_VALARM_COMPONENT, [&](icalcomponent* alarm) {
            if (const auto versatz = alarmversatz(alarm, e)) alarme.push_back(*versatz);
        });
        if (alarme.size() > 1) ++mehrereAlarme_;
        if (!alarme.empty()) {
            if (alarme.front() != 0) ++zurAlarmzeit_;
            return alarme.front();
        }
        if (!e.reihe.beginn.ganztags) return 0;
        ++ganztaegige_;
        return kUhrzeitGanztags;
    }

    // Nothing for an alarm that is none on the screen, and for one at a fixed moment in a series.
    static std::optional<std::int64_t> alarmversatz(icalcomponent* alarm, const Eintrag& e) {
        icalproperty* art = ersteEigenschaft(alarm, ICAL_ACTION_PROPERTY);
        icalproperty* ausloeser = ersteEigenschaft(alarm, ICAL_TRIGGER_PROPERTY);
        if (!art || !ausloeser) return std::nullopt;
        const auto aktion = icalproperty_get_action(art);
        if (aktion != ICAL_ACTION_DISPLAY && aktion != ICAL_ACTION_AUDIO) return std::nullopt;
        const icaltriggertype wert = icalproperty_get_trigger(ausloeser);
        if (!icaltime_is_null_time(wert.time)) {
            const auto fest = kalenderzeit(wert.time, ausloeser, e.kalender);
            if (!fest || hat(e.ereignis, ICAL_RRULE_PROPERTY)) return std::nullopt;
            return fest->ortszeit().sekunden() - e.reihe.beginn.ortszeit().sekunden();
        }
        icalparameter* bezug = icalproperty_get_first_parameter(ausloeser, ICAL_RELATED_PARAMETER);
        const bool vomEnde = bezug && icalparameter_get_related(bezug) == ICAL_RELATED_END;
        return icaldurationtype_as_int(wert.duration) + (vomEnde ? dauerVon(e) : 0);
    }

    static std::int64_t dauerVon(const Eintrag& e) {
        if (icalproperty* dauer = ersteEigenschaft(e.ereignis, ICAL_DURATION_PROPERTY))
            return icaldurationtype_as_int(icalproperty_get_duration(dauer));
        icalproperty* dtend = ersteEigenschaft(e.ereignis, ICAL_DTEND_PROPERTY);
        const auto ende =
            dtend ? kalenderzeit(icalproperty_get_dtend(dtend), dtend, e.kalender) : std::nullopt;
        return ende ? ende->ortszeit().sekunden() - e.reihe.beginn.ortszeit().sekunden() : 0;
    }

    // ---- into appointments ----

    void uebernimmEinzelnen(const Eintrag& e) {
        const Datum beginn = e.reihe.beginn.ortszeit();
        const Datum erinnerung = beginn.plusSekunden(e.reihe.versatz);
        if (erinnerung < jetzt_ && beginn >= jetzt_)
            fuegeAn(e, beginn, intervall::kEinmal, erinnerung);
        else
            fuegeAn(e, erinnerung, intervall::kEinmal);
    }

    void uebernimmReihe(const Eintrag& e) {
        std::vector<icalrecurrencetype> regeln;
        fuerJedeEigenschaft(e.ereignis, ICAL_RRULE_PROPERTY,
                            [&](icalproperty* r) { regeln.push_back(icalproperty_get_rrule(r)); });
        const auto tage = wochentageAus(regeln.front(), e.reihe.beginn.wand);
        if (regeln.size() > 1 || !tage) return uebernimmNaechsten(e, regeln);

        const auto teile = wiederholungen(e.reihe, *tage, jetzt_);
        for (const Wiederholung& teil : teile)
            fuegeAn(e, erstesWochenende(e, teil).value_or(teil.erster), teil.intervall);
        if (teile.size() > 1)
            nenne(e, "Daraus sind " + std::to_string(teile.size()) + " wöchentliche Termine geworden.");
        nenneAusnahmen(e, teile);
        if (const auto wann = ersteAbweichung(e.reihe, *tage, jetzt_))
            nenne(e, "Der Kalender folgt einer anderen Zeitumstellung: Ab dem " +
                         Format(*wann, "dd.mm.yyyy") + " erinnert er um " + Format(*wann, "hh:nn") +
                         ", dieser Termin nicht.");
    }

    // The moment before the series, if this program wrote one and it is still to come.
    std::optional<Datum> erstesWochenende(const Eintrag& e, const Wiederholung& teil) const {
        const std::string wert = eigenerWert(e.ereignis, kalendername::kBeginn);
        if (wert.empty() || teil.intervall != intervall::kWerktags) return std::nullopt;
        const auto zeit = kalenderzeit(icaltime_from_string(wert.c_str()), nullptr, nullptr);
        if (!zeit || zeit->wand < jetzt_ || naechsterTermin(zeit->wand, teil.intervall) != teil.erster)
            return std::nullopt;
        return zeit->wand;
    }

    static bool erinnertAm(const Wiederholung& teil, Datum moment) {
        if (moment <= teil.erster) return false;
        if (teil.intervall == intervall::kTaeglich) return true;
        return teil.intervall == intervall::kWerktags ? wochentagAbMontag(moment) <= 5
                                                      : Weekday(moment) == Weekday(teil.erster);
    }

    // Days on which the series does not happen, but its appointments remind.
    void nenneAusnahmen(const Eintrag& e, const std::vector<Wiederholung>& teile) {
        std::set<Datum> erinnerungen;
        for (const Datum moment : e.reihe.ausnahmen.momente)
            erinnerungen.insert(moment.plusSekunden(e.reihe.versatz));
        for (const Datum tag : e.reihe.ausnahmen.tage) {
            const Kalenderzeit beginn{tag + e.reihe.beginn.wand.uhrzeitteil(), false, e.reihe.beginn.zone};
            erinnerungen.insert(beginn.ortszeit().plusSekunden(e.reihe.versatz));
        }
        std::string liste;
        for (const Datum moment : erinnerungen) {
            if (std::any_of(teile.begin(), teile.end(), [&](const auto& t) { return erinnertAm(t, moment); }))
                liste += (liste.empty() ? "" : ", ") + Format(moment, "dd.mm.yyyy");
        }
        if (!liste.empty()) nenne(e, "Die Ausnahmen gelten nicht; er erinnert auch am " + liste + ".");
    }

    void uebernimmNaechsten(const Eintrag& e, const std::vector<icalrecurrencetype>& regeln) {
        std::optional<Datum> naechster;
        for (const icalrecurrencetype& regel : regeln) {
            const auto moment = naechsterDerRegel(regel, e.reihe, jetzt_);
            if (moment && (!naechster || *moment < *naechster)) naechster = moment;
        }
        const std::string grund(regeln.size() > 1 ? "Mehrere Wiederholungen" : regelgrund(regeln.front()));
        if (!naechster) return lehneAb(e, grund + ": Es kommt kein Termin mehr.");
        fuegeAn(e, *naechster, intervall::kEinmal);
        nenne(e, grund + ": nur der nächste, " + zeitpunkt(*naechster) + ", als einmaliger Termin.");
    }

    // Days that a series has besides its rule.
    void uebernimmZusatztage(const Eintrag& e) {
        fuerJedeEigenschaft(e.ereignis, ICAL_RDATE_PROPERTY, [&](icalproperty* eigenschaft) {
            const icaldatetimeperiodtype wert = icalproperty_get_rdate(eigenschaft);
            const bool spanne = icaltime_is_null_time(wert.time);
            const auto zeit = kalenderzeit(spanne ? wert.period.start : wert.time, eigenschaft, e.kalender);
            if (!zeit) return nenne(e, "Ein weiterer Tag der Reihe ist nicht lesbar.");
            const Datum moment = zeit->ortszeit().plusSekunden(e.reihe.versatz);
            if (moment >= jetzt_ && !e.reihe.ausnahmen.enthaelt(*zeit))
                fuegeAn(e, moment, intervall::kEinmal);
        });
    }

    void fuegeAn(const Eintrag& e, Datum moment, std::int16_t art, std::optional<Datum> frueher = {}) {
        if (!istSchreibbar(moment)) return lehneAb(e, "Der Zeitpunkt liegt außerhalb des Kalenders.");
        const bool vorbei = moment < jetzt_;
        if (vorbei) ++vorbei_;
        const bool aktiv = !vorbei && eigenerWert(e.ereignis, kalendername::kAktiv) != "FALSE";
        inhalt_.termine.push_back({{moment, e.text, art, aktiv}, kennungVon(e.ereignis), frueher});
    }

    // ---- messages ----

    void lehneAb(const Eintrag& e, const std::string& grund) {
        ++inhalt_.nichtUebernommen;
        inhalt_.hinweise.push_back("Nicht übernommen: " + e.name + ": " + grund);
    }
    void nenne(const Eintrag& e, const std::string& unterschied) {
        inhalt_.hinweise.push_back("Anders als im Kalender: " + e.name + ": " + unterschied);
    }

    void nenneAnderes(icalcomponent* kalender) {
        const std::pair<icalcomponent_kind, const char*> arten[] = {
            {ICAL_VTODO_COMPONENT, "Das ist eine Aufgabe."},
            {ICAL_VJOURNAL_COMPONENT, "Das ist ein Tagebucheintrag."}};
        for (const auto& [art, grund] : arten) {
            fuerJedeKomponente(kalender, art, [&, text = grund](icalcomponent* k) {
                lehneAb({k, kalender, nameVon(k, std::nullopt), "", {}}, text);
            });
        }
    }

    void zaehleAuf() {
        const auto sage = [this](std::size_t n, const char* einzahl, const char* mehrzahl) {
            if (n > 0) inhalt_.hinweise.push_back(anzahlText(n, einzahl, mehrzahl));
        };
        sage(ganztaegige_, " ganztägiger Eintrag erinnert um 09:00 Uhr.",
             " ganztägige Einträge erinnern um 09:00 Uhr.");
        sage(zurAlarmzeit_, " Eintrag erinnert nicht zu seinem Beginn, sondern zu seiner Alarmzeit.",
             " Einträge erinnern nicht zu ihrem Beginn, sondern zu ihrer Alarmzeit.");
        sage(mehrereAlarme_, " Eintrag hat mehrere Alarme; es gilt der erste.",
             " Einträge haben mehrere Alarme; es gilt der erste.");
        sage(ohnePlatz_, " Eintrag verliert Ort, Beschreibung, Anhänge oder Teilnehmer.",
             " Einträge verlieren Ort, Beschreibung, Anhänge oder Teilnehmer.");
        sage(vorbei_, " Termin ist vorbei und nicht mehr aktiv.",
             " Termine sind vorbei und nicht mehr aktiv.");
    }

    Datum jetzt_;
    Kalenderinhalt inhalt_;
    std::set<std::string> reihen_;                        // UIDs of events that stand for themselves
    std::map<std::string, Kalenderausnahmen> ausnahmen_;  // by UID: occurrences with an event of their own
    std::size_t ganztaegige_ = 0, zurAlarmzeit_ = 0, mehrereAlarme_ = 0, ohnePlatz_ = 0, vorbei_ = 0;
};

}  // namespace

Kalenderinhalt kalenderinhalt(std::string_view datei, Datum jetzt) {
    const std::string text = kalendertext(datei);
    const Kalenderkomponente wurzel(icalparser_parse_string(text.c_str()));
    if (!wurzel) throw Fehler(fehlernummer::kEigener, "Kalender", "Die Datei ist beschädigt.");
    return Leser(jetzt).lies(wurzel.get());
}

}  // namespace wendel::quillon
