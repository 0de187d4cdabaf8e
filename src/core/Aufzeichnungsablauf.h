#pragma once
// The recordings, from the mark in the database to their line in the log: notice a minute before, start,
// follow-up, end, one at a time in the order of their starts. Each step is noted in Aufzeichnungsstand before
// it is done, so that after a crash nothing runs twice and nothing is left half-done. Which recordings there
// are is known by Aufzeichnungsplan, the lists of the script are run by Skriptlauf.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/Aufzeichnungsplan.h"
#include "core/Dateiwachstum.h"
#include "core/Skriptlauf.h"
#include "core/TVSteuerung.h"
#include "core/Wachdienst.h"
#include "platform/Ports.h"
#include "recording/Aufzeichnungsprotokoll.h"
#include "recording/Aufzeichnungsstand.h"
#include "reminders/cTermin.h"

namespace wendel {

class Datenbestand;
class FormAufzeichnungsHinweis;
class FormAufzeichnungsskript;
class FormAufzeichnungsverlauf;
class FormWendel;

// The windows that accompany a recording.
struct Aufzeichnungsformen {
    FormAufzeichnungsHinweis& hinweis;
    FormAufzeichnungsskript& status;
    FormAufzeichnungsverlauf& verlauf;
};

class Aufzeichnungsablauf {
  public:
    // All outlive the object.
    Aufzeichnungsablauf(const Ports& ports, Datenbestand& bestand, Aufzeichnungsprotokoll& protokoll,
                        const Aufzeichnungsformen& formen);
    void verbinde(FormWendel& form);

    // What the last run of the program has left; before the first query.
    void laden();
    // Not to be called while a script runs.
    void skriptLaden() { skript_.laden(); }
    bool skriptLaeuft() const { return skript_.aktiv(); }

    // With every tick. An idle one only compares times. May run a script, which takes minutes; what comes in
    // meanwhile returns at once.
    void Timer();

    // Takes over what the database was last found to hold; does nothing when that is done.
    void abgleichen();
    // The recordings that are to come, wait or run: the third collection of entries.
    const Terminliste& termine() const { return plan_.termine(); }
    // "überschneidet sich mit ...": what keeps this one of them from starting in time; empty for nothing.
    std::string ueberschneidung(const cTermin& termin) const {
        return plan_.ueberschneidung(termin, laufende_);
    }

    // The script can do it, and neither a recording nor another run has the TV application.
    bool kannImTVZeigen() const { return !laufende_ && !skript_.aktiv() && tv_.kann(); }
    void imTVZeigen(const std::string& senderkennung);
    // What the user is to be asked before the program ends; empty: nothing.
    std::string beendenFrage() const;
    // The program ends: no script is run, the file says what goes on.
    void beenden();

  private:
    // --- the steps of a tick ---
    void schlafBemerken(std::int64_t seitMs, int arbeitsminuten);
    void nachschreiben();
    void stoerungMelden();
    void wiederaufnehmen();
    void laufendeBetreuen();
    void verpassteAbschliessen();
    void hinweisen();
    void wartendeVertroesten();
    void faelligeStarten();
    void fuerStromSorgen();

    void starten(const Aufzeichnung& aufzeichnung);
    void startGescheitert(const Skriptfehler& fehler, bool aufnahmeBegonnen);
    void laufendeBeenden();
    void laufendeAbschliessen();
    void wachstumPruefen();
    void wecken();

    // --- tools ---
    Aufzeichnungseintrag& laufenderEintrag() { return stand_.merke(*laufende_); }
    void ergaenze(const Aufzeichnung& aufzeichnung, std::string_view zusatz);
    void speichern() { static_cast<void>(stand_.speichern(ports_.uhr.jetzt())); }
    Skriptlauf::Auftrag auftrag(int minuten) const;
    void melde(const std::string& text, const Fehler* ursache = nullptr) const;

    const Ports& ports_;
    Datenbestand& bestand_;
    Aufzeichnungsformen formen_;
    FormWendel* form_ = nullptr;
    Skriptlauf skript_;
    TVSteuerung tv_;
    Aufzeichnungsstand stand_;
    Aufzeichnungsplan plan_;
    Dateiwachstum wachstum_;
    Wachdienst wachdienst_;

    std::optional<Aufzeichnung> laufende_;  // "InAufnahme", or on the way there or back
    std::optional<Aufzeichnung> angekuendigte_;
    // Nobody watched when the running one should have ended.
    bool unterbrochen_ = false;
    // When the program started; as early as the present moment where the clock was set back since.
    Datum gestartet_;
    std::int64_t wachBisMs_ = 0;  // of the running time: the end of the last tick
    std::int64_t minute_ = 0;     // of the last time that what is owed was written
    std::string gestoerteDatei_;  // the user has been told of
};

}  // namespace wendel
