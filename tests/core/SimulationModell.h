#pragma once
// What the year of SimulationTest expects of the user's appointments, worked out the plain way, one step
// after the other, with no helper of the program's: how often each has to be shown, and what file, rows and
// tooltip must hold.

#include <algorithm>
#include <ctime>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/Datum.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel {

// The program says something else than the model. No std::exception, so that no handler for errors takes it.
struct Abweichung {
    std::string was;
};

// By the number that each entry carries in its text. All short-time alarms have one text; they are counted
// together under number 0.
using Zaehlung = std::map<int, int>;
inline constexpr const char* kWeckertext = "(Kurzzeiterinnerung)";
inline constexpr int kMinute = 60, kStunde = 3600, kTag = 86400;

inline std::tm kalender(Datum d) {
    const std::time_t sekunden = d.sekunden() - std::int64_t{25569} * kTag;
    return *std::gmtime(&sekunden);
}
// "%a" in front is the German day.
inline std::string gedruckt(Datum d, std::string muster) {
    constexpr const char* kTage[] = {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"};
    const std::tm teile = kalender(d);
    if (muster.starts_with("%a")) muster.replace(0, 2, kTage[teile.tm_wday]);
    char text[40];
    return {text, std::strftime(text, sizeof text, muster.c_str(), &teile)};
}
// How many whole minutes, hours or days begin between the two.
inline auto grenzen(int einheit, Datum von, Datum bis) {
    return bis.sekunden() / einheit - von.sekunden() / einheit;
}

struct Eintrag {
    std::string text;
    Zaehlung inhalt;
    Datum moment;
    std::int16_t wert = 0;
    bool aktiv = true;
    int id = 0;
    std::optional<Datum> gefeuertFuer = {}, ungespeichertSeit = {};
    bool imTick = false;                   // fired in the tick that is at work
    bool vielleichtNichtGefeuert = false;  // a kill hit the tick at which it was due
    Datum unklarBis = {};                  // until then the program may show another moment

    bool wiederholt() const { return wert >= 1 && wert <= 3; }
    bool istWie(const GespeicherterTermin& t) const { return t.weckZeit == moment && t.weckText == text; }
    operator GespeicherterTermin() const { return {moment, text, wert, aktiv}; }

    // At least one step, then on to the first moment that is not before grenze.
    void weiter(Datum grenze) {
        do {
            moment = moment.plusSekunden((wert == 3 ? 7 : 1) * kTag);
        } while (moment < grenze || (wert == 2 && kalender(moment).tm_wday % 6 == 0));
    }
};

// How often an entry has to be answered, and how often it was. A kill in the middle of an answer leaves open
// whether the answer still counted.
struct Konto {
    int mindestens = 0, hoechstens = 0, beantwortet = 0;
    std::string was;
};

// What the program is about to store: a new entry, one in place of the one with the number, or its deletion.
struct Vorhaben {
    int id = 0;
    std::optional<Eintrag> neu;
};

class Terminmodell {
  public:
    std::map<int, Konto> konten;
    std::vector<Eintrag> eintraege;
    std::optional<Vorhaben> vorhaben;

    Eintrag* finde(const auto& passt) {
        const auto e = std::ranges::find_if(eintraege, passt);
        return e == eintraege.end() ? nullptr : &*e;
    }
    Eintrag* mitId(int id) {
        return finde([&](const Eintrag& e) { return e.id == id; });
    }
    void dazu(Eintrag neu) {
        neu.id = ++letzteId_;
        eintraege.push_back(std::move(neu));
    }
    void weg(int id) {
        if (const Eintrag* e = mitId(id)) entfernte_[id] = *e;
        std::erase_if(eintraege, [&](const Eintrag& e) { return e.id == id; });
    }
    // As it stands, or as it was when it went.
    Eintrag zuletzt(int id) {
        const Eintrag* e = mitId(id);
        return e ? *e : entfernte_.at(id);
    }
    // The program has come back from it.
    void ausgefuehrt() {
        if (!vorhaben) return;
        const auto [id, neu] = *std::exchange(vorhaben, std::nullopt);
        if (!neu) return weg(id);
        if (Eintrag* alt = mitId(id)) {
            *alt = *neu;
        } else {
            dazu(*neu);
        }
    }

    // Others have given it a moment that lies ahead; the program makes it active. By a text that many share
    // it can't tell which one that was, and takes it for another.
    void verschoben(int id, Datum moment, Datum jetzt) {
        Eintrag neu = *mitId(id);
        neu.moment = moment, neu.ungespeichertSeit = jetzt;
        if (!neu.text.empty() && neu.text != kWeckertext) {
            *mitId(id) = neu;
        } else {
            weg(id), dazu(neu);
        }
    }

    // While an entry of this moment and text counts as shown, a new one gives way.
    Eintrag ausgewichen(Eintrag e) const {
        while (gezeigt_.contains({e.moment, e.text}))
            e.moment = e.moment.plusSekunden(1);
        return e;
    }

    // What becomes of alt, which stood at geoeffnet when the editor was opened, when the user confirms.
    Eintrag bearbeitet(const Eintrag& alt, Datum geoeffnet, const Eintrag& getippt, Datum jetzt) const {
        Eintrag neu = alt;
        const bool selbeMinute = grenzen(kMinute, geoeffnet, getippt.moment) == 0;
        if (!selbeMinute || alt.moment == geoeffnet) neu.moment = getippt.moment;
        if (selbeMinute && alt.gefeuertFuer == alt.moment) neu.gefeuertFuer = neu.moment;
        neu.text = getippt.text, neu.inhalt = getippt.inhalt, neu.wert = getippt.wert;
        neu.aktiv = alt.aktiv || neu.wiederholt() || neu.moment > jetzt;
        const bool vorbei = !alt.aktiv && !alt.wiederholt() && selbeMinute && neu.moment <= jetzt;
        if (vorbei && neu.wiederholt()) neu.weiter(jetzt.plusSekunden(1));
        return neu.aktiv ? ausgewichen(neu) : neu;
    }

    // Once a minute: what is switched off.
    void nachholen(Datum jetzt) {
        for (Eintrag& e : eintraege) {
            if (e.aktiv) continue;
            if (!e.wiederholt() && e.moment > jetzt && e.gefeuertFuer != e.moment) {
                e.aktiv = true, e.ungespeichertSeit = jetzt;
            } else if (e.wiederholt() && e.moment < jetzt) {
                e.weiter(jetzt), e.unklarBis = jetzt.plusSekunden(90);
            }
        }
    }

    // True when something was due.
    bool feuern(Datum jetzt) {
        bool gefeuert = false;
        for (Eintrag& e : eintraege) {
            if (!e.aktiv || e.moment > jetzt) continue;
            for (const auto& [nummer, anzahl] : e.inhalt) {
                // The earlier firing may only come now: then both are one.
                if (!e.vielleichtNichtGefeuert) konten[nummer].mindestens += anzahl;
                konten[nummer].hoechstens += anzahl;
            }
            gezeigt_.emplace(e.moment, e.text);
            e.imTick = gefeuert = true;
            e.aktiv = e.wiederholt();
            if (e.aktiv) {
                e.weiter(jetzt.plusSekunden(1));
            } else {
                e.gefeuertFuer = e.moment;
            }
        }
        return gefeuert;
    }

    void nachTick(Datum gespeichertBis) {
        for (Eintrag& e : eintraege) {
            e.imTick = e.vielleichtNichtGefeuert = false;
            if (e.ungespeichertSeit < gespeichertBis) e.ungespeichertSeit.reset();
        }
    }

    // Loading leaves out alarms that are over, unless the clock was set back or the file still has them as
    // active.
    void geladen(Datum jetzt) {
        std::erase_if(eintraege, [&](const Eintrag& e) {
            const bool bekannt = e.gefeuertFuer == e.moment;
            return !e.aktiv && !e.vielleichtNichtGefeuert && e.text == kWeckertext &&
                   e.moment.plusSekunden(bekannt ? 4 * kTag : 0) < jetzt;
        });
        nachholen(jetzt);
    }

    // What was under way has come to pass or not, and an alarm of the last minute may be lost.
    void nachAbsturz(const std::vector<GespeicherterTermin>& datei) {
        const auto zuviel = [&](const Eintrag& e) {  // in the file, against here
            return std::ranges::count_if(datei, [&](const auto& t) { return e.istWie(t); }) -
                   std::ranges::count_if(eintraege, [&](const auto& x) { return e.istWie(x); });
        };
        if (vorhaben) {
            const Eintrag* alt = mitId(vorhaben->id);
            const auto& neu = vorhaben->neu;
            const bool geschehen = !neu ? alt && zuviel(*alt) < 0
                                   : alt && alt->istWie(*neu)
                                       ? std::ranges::count(datei, GespeicherterTermin(*neu)) > 0
                                       : zuviel(*neu) > 0;
            if (!geschehen) vorhaben.reset();
        }
        ausgefuehrt();
        const auto verloren = [&](const Eintrag& e) {
            return e.ungespeichertSeit && (e.aktiv || e.imTick) && zuviel(e) < 0;
        };
        while (const Eintrag* e = finde(verloren)) {
            if (e->imTick) konten[0].mindestens--;
            weg(e->id);
        }
        for (Eintrag& e : eintraege) {
            e.vielleichtNichtGefeuert |= e.imTick;
            e.imTick = false;
            // It remembers what it has shown, not what it has made of the file.
            if (!gezeigt_.contains({e.moment, e.text})) e.gefeuertFuer.reset();
            if (!e.ungespeichertSeit || e.gefeuertFuer == e.moment) continue;
            e.aktiv = true;
            e.aktiv = std::ranges::count(datei, GespeicherterTermin(e)) > 0;
        }
    }

    // ---- what must be there: lines without order ----

    using Zeilen = std::multiset<std::string>;

    // Alarms that are over may be left out; a repetition that is switched off steps on in memory only.
    static Zeilen inDatei(const auto& termine) {
        Zeilen zeilen;
        for (const auto& termin : termine) {
            const auto& [weckZeit, text, wert, aktiv] = GespeicherterTermin(termin);
            if (!aktiv && text == kWeckertext) continue;
            zeilen.insert((aktiv || !wert ? gedruckt(weckZeit, "%F %T") : "?") + "|" + text + "|" +
                          std::to_string(wert) + (aktiv ? "|an" : "|aus"));
        }
        return zeilen;
    }

    static std::string zeittext(const Eintrag& e) {
        return gedruckt(e.moment, e.wiederholt() ? "%a %H:%M" : "%d.%m.%y %H:%M");
    }
    static std::string rest(Datum wann, Datum jetzt) {
        const auto n = grenzen(kMinute, jetzt, wann), h = grenzen(kStunde, jetzt, wann);
        if (wann <= jetzt) return "läuft";
        if (n < 60) return std::to_string(n) + " min";
        return h < 24 ? std::to_string(h) + " h" : std::to_string(grenzen(kTag, jetzt, wann)) + " Tage";
    }
    Zeilen inListe(Datum jetzt) const {
        Zeilen zeilen;
        for (const Eintrag& e : eintraege) {
            if (e.aktiv || e.text != kWeckertext)
                zeilen.insert(zeittext(e) + "|" + e.text + "|" + (e.aktiv ? rest(e.moment, jetzt) : ""));
        }
        return zeilen;
    }

    static std::string tipp(Datum wann, const std::string& text, Datum jetzt) {
        const auto tage = grenzen(kTag, jetzt, wann);
        std::string tag = tage == 0 ? "heute" : "morgen";
        if (tage > 1) tag = gedruckt(wann, tage < 7 ? "%a" : "%d.%m.");
        const std::string name = text == kWeckertext ? "Kurzzeiterinnerung" : text;
        return ("Lomrick: " + tag + gedruckt(wann, " %H:%M ") + name).substr(0, 63);
    }

  private:
    std::set<std::pair<Datum, std::string>> gezeigt_;
    std::map<int, Eintrag> entfernte_;
    int letzteId_ = 0;
};

}  // namespace wendel
