#pragma once
// What the year of SimulationTest expects of recordings, seen from the TV application that the script drives:
// every command of the script reaches it with the moment, and it objects to the first one that must not come.
// It also says which results the log may name for each recording.

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "SimulationModell.h"
#include "platform/Text.h"

namespace wendel {

// The commands start programs that stand for what the TV application is told: word and title.
inline constexpr const char* kAufnahmeskript =
    "<Kestrin Pirrow Aufzeichnungsskript 1.0>\n"
    "befehlanwendungstarten=anwendungstarten,tv [Titel]\n"
    "befehlanwendungstarten=warten,1\n"
    "befehlkanalwechseln=anwendungstarten,kanal [Titel]\n"
    "befehlaufnahmestarten=anwendungstarten,rec [Titel]\n"
    "befehlaufnahmestarten=warten,2\n"
    "befehlaufnahmestarten=anwendungstarten,auf [Titel]\n"
    "befehlaufnahmebeenden=anwendungstarten,stop [Titel]\n"
    "befehlaufnahmebeenden=warten,1\n"
    "befehlanwendungbeenden=anwendungstarten,quit [Titel]\n";

struct Augenblick {
    Datum tickbeginn, jetzt;
    std::int64_t laufzeitMs = 0;

    // So many seconds have passed since then; clock steps leave it open. True if that has never been.
    bool liegtNach(const std::optional<Augenblick>& a, int sekunden) const {
        return !a || laufzeitMs - a->laufzeitMs > sekunden * 1000 ||
               jetzt >= a->jetzt.plusSekunden(sekunden) || jetzt < a->jetzt;
    }
};

struct Aufnahme {
    Datum von, bis, sendungsende;
    bool zurueckgezogen = false;
    bool bekannt = false, vorbei = false;  // to the program
    bool bestaetigt = false;               // the start commands have run to their end
    bool unklar = false;                   // a kill hit a run for it, and the program has not come back yet
    bool warUnklar = false;
    int faelligeTicks = 0;
    std::optional<Augenblick> gescheitert;      // the last time
    std::optional<Augenblick> bekanntSeit;      // the program has made up its mind about it
    std::string fehlschlag;                     // of the first start that failed
    std::set<std::string> ergebnisse, gruende;  // of a recording that began; why it did not
    int hoechstens = 1;
};

class Aufzeichnungsmodell {
  public:
    std::map<int, Aufnahme> offene;  // by number
    std::map<std::string, int> anzahl;

    void plane(int nummer, Datum beginn, int dauer) {
        Aufnahme& neu = offene[nummer];
        neu.sendungsende = beginn.plusSekunden(kMinute * dauer);
        neu.von = beginn.plusSekunden(-5 * kMinute), neu.bis = neu.sendungsende.plusSekunden(10 * kMinute);
    }
    // Also when the clock was set back since.
    bool istVorbei(int nummer) const { return !offene.contains(nummer) || offene.at(nummer).vorbei; }
    // Number of the one that is being recorded, or 0.
    int laufende() const { return offen_; }

    // What runs keeps those from starting whose windows have come.
    void andereLaufen(Datum jetzt) {
        if (!offen_) return;
        for (auto& [nummer, n] : offene) {
            if (nummer != offen_ && n.von <= jetzt && jetzt < n.bis) n.gruende.insert(andereLief());
        }
    }

    // The tick that is at work has begun a script.
    bool imSkript() const { return !beruehrt_.empty(); }

    // A command has reached the application. scheitert: it will not obey.
    void befehl(const std::string& zeile, const Augenblick& a, bool scheitert) {
        const int nummer = std::atoi(zeile.c_str() + zeile.find('[') + 1);
        if (!offene.contains(nummer)) throw Abweichung{"over, and still " + zeile};
        beruehrt_.insert(nummer);
        andereLaufen(a.jetzt);
        const std::string wort = zeile.substr(0, zeile.find(' '));
        const bool schluss = wort == "stop" || wort == "quit";
        const std::string falsch = schluss ? beende(nummer, wort, a) : starte(nummer, wort, a, scheitert);
        if (!falsch.empty()) throw Abweichung{falsch + ": " + zeile};
        if (scheitert && !schluss) abgelehnt(offene.at(nummer), zeile);
        andereLaufen(a.jetzt);
    }

    void neustart(Datum jetzt) { neustart_ = jetzt; }

    // The program was not there, or slept, in that time.
    void luecke(Datum von, Datum bis, const std::string& grund) {
        for (auto& [nummer, n] : offene) {
            if (n.von >= std::max(von, bis) || std::min(von, bis) > n.bis) continue;
            n.gruende.insert(grund);
            // Nobody watched when it should have ended. The tick that follows may show a notice first.
            if (n.bestaetigt && n.bis <= std::max(von, bis).plusSekunden(kMinute))
                n.ergebnisse.insert("unterbrochen");
        }
    }

    // What runs goes on beyond the hours that are left out.
    void uhrsprung(Datum von, Datum bis) {
        luecke(von, bis, "Rechner schlief");
        if (offen_) luecke(von, bis, andereLief());
    }

    void tot(Datum jetzt) {
        andereLaufen(jetzt);
        for (const int nummer : std::exchange(beruehrt_, {})) {
            Aufnahme& n = offene.at(nummer);
            if (!n.vorbei) n.unklar = n.warUnklar = true;
        }
        for (auto& [nummer, n] : offene)  // whatever kept it, nobody has noted it
            if (n.bis <= jetzt) n.gruende.insert("Programm lief nicht");
    }

    // A tick has done all it had to. liest: it knew all marks; markiert says which there are.
    void nachTick(const Augenblick& a, bool liest, const auto& markiert) {
        for (const int nummer : std::exchange(beruehrt_, {}))
            offene.at(nummer).bekanntSeit = a;
        andereLaufen(a.jetzt);
        for (auto i = offene.begin(); i != offene.end();) {
            const auto dieser = i++;
            auto& [nummer, n] = *dieser;
            const bool sendet = liest && a.jetzt < n.sendungsende;
            tickVon(nummer, n, a, sendet && markiert(nummer));
            const bool begann = offen_ == nummer || n.bestaetigt || n.warUnklar || !n.fehlschlag.empty();
            const bool fehlt = sendet && n.bekannt && !begann && !n.vorbei && !markiert(nummer);
            if (fehlt && n.zurueckgezogen) n.hoechstens = 0;
            // Deleted when the clock was ahead.
            if (fehlt) n.zurueckgezogen = true;
            n.vorbei = n.vorbei || (offen_ != nummer && grenzen(kMinute, a.tickbeginn, n.bis) <= 0);
            // The clock may be set back by days.
            if (n.vorbei && n.bis.plusSekunden(4 * kTag) < a.jetzt) erledigte_.insert(offene.extract(dieser));
        }
        neustart_.reset();
    }

    // At the end: the log, to its last line.
    void pruefeProtokoll(const std::string& inhalt) {
        erledigte_.merge(offene);
        std::map<int, int> zeilen;
        for (const std::string& zeile : Split(inhalt, "\n")) {
            if (zeile.empty()) continue;
            const int nummer = std::atoi(zeile.c_str() + zeile.find('[') + 1);
            const std::string ergebnis = zeile.substr(zeile.rfind(" | ") + 3);
            Aufnahme& n = erledigte_.at(nummer);
            ++zeilen[nummer];
            ++anzahl[ergebnis.substr(0, ergebnis.find_first_of(" ,"))];
            if (!moeglich(n, ergebnis)) throw Abweichung{"log: " + zeile};
        }
        for (const auto& [nummer, n] : erledigte_) {
            const int mindestens = n.bekannt && (!n.zurueckgezogen || n.bestaetigt) ? 1 : 0;
            if (zeilen[nummer] < mindestens || zeilen[nummer] > n.hoechstens)
                throw Abweichung{std::to_string(zeilen[nummer]) + " log lines of " + std::to_string(nummer)};
        }
    }

  private:
    // Both say what is wrong, if something is.

    std::string starte(int nummer, const std::string& wort, const Augenblick& a, bool scheitert) {
        Aufnahme& n = offene.at(nummer);
        const auto schritt = std::ranges::find(kSchritte, wort) - kSchritte.begin();
        if (schritt == 0) {
            if (offen_) return "another one is open";
            if (a.jetzt < n.von || n.bis <= a.jetzt) return "outside its window";
            if (n.vorbei || n.bestaetigt) return "again";
            if (n.hoechstens == 0) return "withdrawn";
            if (!a.liegtNach(n.gescheitert, 59)) return "at once after a failure";
            for (const auto& [andere, m] : offene)
                if (m.faelligeTicks && m.von < n.von && wartetNichtMehr(m, a)) return "out of order";
            offen_ = nummer, start_ = a, schritt_ = 0, stop_ = abgelehnt_ = false;
            return "";
        }
        if (offen_ != nummer || n.bestaetigt || schritt != schritt_ + 1) return "in no order";
        schritt_ = schritt;
        n.bestaetigt = wort == "auf" && !scheitert;
        if (n.bestaetigt) begonnen(n);
        return "";
    }

    std::string beende(int nummer, const std::string& wort, const Augenblick& a) {
        Aufnahme& n = offene.at(nummer);
        const bool quit = wort == "quit", zuEnde = grenzen(kMinute, a.jetzt, n.bis) <= 0;
        // A kill may hit when the start is noted and nothing is done yet.
        if (neustart_ && !n.bestaetigt && !n.vorbei) n.unklar = n.warUnklar = true;
        if (offen_ != nummer && (!n.unklar || offen_)) return "was never opened";
        if (!n.unklar) {
            if (!quit && (schritt_ == 0 || stop_)) return "not recording";
            if (quit && !stop_ && schritt_ > 1) return "still recording";
            if (!stop_ && n.bestaetigt && !zuEnde) return "too early";
        }
        stop_ = true;
        if (quit) beendet(n, a, zuEnde);
        return "";
    }

    static bool wartetNichtMehr(const Aufnahme& n, const Augenblick& a) {
        return a.liegtNach(n.gescheitert, 62) && a.liegtNach(n.bekanntSeit, 62);
    }

    void begonnen(Aufnahme& n) {
        const auto [frueher, spaeter] = std::minmax(start_.tickbeginn, start_.jetzt);
        for (auto spaet = grenzen(kMinute, n.von, frueher); spaet <= grenzen(kMinute, n.von, spaeter);
             ++spaet)
            n.ergebnisse.insert(spaet < 1
                                    ? "aufgezeichnet"
                                    : "aufgezeichnet, " + std::to_string(spaet) + " min verspätet begonnen");
    }

    void abgelehnt(Aufnahme& n, const std::string& zeile) {
        abgelehnt_ = true;
        const auto stelle =
            std::string_view(kAufnahmeskript).find("," + zeile.substr(0, zeile.find(' ')) + " ");
        const auto nummer = std::count(kAufnahmeskript, kAufnahmeskript + stelle, '\n') + 1;
        if (n.fehlschlag.empty())
            n.fehlschlag = "fehlgeschlagen in Zeile " + std::to_string(nummer) + ": Die Anwendung \"" +
                           zeile + "\" konnte nicht gestartet werden.";
    }

    // The last command of the closing part.
    void beendet(Aufnahme& n, const Augenblick& a, bool zuEnde) {
        offen_ = 0;
        if (n.unklar) {
            n.bestaetigt = n.bestaetigt && zuEnde;
            n.gescheitert = a;
            return;
        }
        if (n.bestaetigt) {
            // Over before the first tick came to it.
            if (neustart_ && grenzen(kMinute, *neustart_, n.bis) <= 0) n.ergebnisse.clear();
            if (neustart_) n.ergebnisse.insert("unterbrochen");
            return;
        }
        const bool zuLang = a.laufzeitMs - start_.laufzeitMs >= 600000 || zuEnde;
        if (!abgelehnt_ && !zuLang) throw Abweichung{"given up for no reason"};
        if (n.fehlschlag.empty()) n.fehlschlag = "fehlgeschlagen";
        n.gescheitert = a;
    }

    std::string andereLief() const {
        return "andere Aufzeichnung lief (Film [" + std::to_string(offen_) + "])";
    }

    void tickVon(int nummer, Aufnahme& n, const Augenblick& a, bool gelesen) {
        if (n.unklar) {
            // Resumed, or closed and to be tried again.
            n.unklar = false;
            n.bestaetigt = offen_ == nummer;
            n.bekanntSeit = a;
        }
        if (offen_ == nummer) {
            if (!n.bestaetigt) throw Abweichung{"half started: " + std::to_string(nummer)};
            if (grenzen(kMinute, a.tickbeginn, n.bis) <= 0)
                throw Abweichung{"not ended: " + std::to_string(nummer)};
        }
        const bool faellig = n.bekannt && gelesen && !n.vorbei && !n.bestaetigt && !n.zurueckgezogen &&
                             !offen_ && n.von <= a.tickbeginn && a.tickbeginn < n.bis &&
                             wartetNichtMehr(n, a);
        n.faelligeTicks = faellig ? n.faelligeTicks + 1 : 0;
        if (n.faelligeTicks > 2) throw Abweichung{"not started: " + std::to_string(nummer)};
        n.bekannt = n.bekannt || gelesen;
    }

    static bool moeglich(const Aufnahme& n, const std::string& ergebnis) {
        constexpr std::string_view kVerpasst = "verpasst: ";
        if (n.warUnklar) return !ergebnis.starts_with(kVerpasst);
        if (n.bestaetigt) return n.ergebnisse.contains(ergebnis.substr(0, ergebnis.find("; ")));
        if (!n.fehlschlag.empty()) return ergebnis.starts_with(n.fehlschlag);
        return ergebnis.starts_with(kVerpasst) && n.gruende.contains(ergebnis.substr(kVerpasst.size()));
    }

    static constexpr std::array<std::string_view, 4> kSchritte = {"tv", "kanal", "rec", "auf"};

    std::map<int, Aufnahme> erledigte_;
    int offen_ = 0;               // number of what the application is open for
    std::ptrdiff_t schritt_ = 0;  // the last of kSchritte since it was opened
    bool stop_ = false;           // it has been told to stop since
    bool abgelehnt_ = false;
    std::optional<Datum> neustart_;  // no tick since
    std::set<int> beruehrt_;         // of the tick that is at work
    Augenblick start_;
};

}  // namespace wendel
