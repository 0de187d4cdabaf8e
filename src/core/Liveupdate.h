#pragma once
// When the live update of the TV data starts, and what becomes of a running one: the schedule's triggers, the
// countdown, the link to the update program, its end. The update itself is another program's work; whatever
// that does, missing, crashing, hanging, the state comes back to idle and the status text says why.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Datum.h"
#include "platform/Ports.h"
#include "platform/ports/Einwahl.h"
#include "platform/ports/Statusverbindung.h"

namespace wendel {

class Datenbestand;

// The main form's part.
class Liveupdateanzeige {
  public:
    virtual ~Liveupdateanzeige() = default;
    virtual void liveupdateStatusGeaendert() = 0;  // statustext() is another one
    virtual void liveupdateIconAuffrischen() = 0;
    // The update has ended; with neueDaten the broadcasts have changed.
    virtual void liveupdateBeendet(bool neueDaten) = 0;
};

// The last moment of the weekly schedule (seven "0"/"1" characters, Sunday first, then the time of day) that
// lies in (von, bis] and at most a week before bis; nothing without one or without a readable time.
std::optional<Datum> letzterPlanmoment(std::string_view zeitplan, Datum von, Datum bis);

class Liveupdate {
  public:
    enum class Schritt { Ruhe = 0, Countdown = 1, Laeuft = 2, Beendet = 4, Abgebrochen = 5 };

    // All outlive the object.
    Liveupdate(const Ports& ports, Einwahl& einwahl, Statusverbindung& verbindung, Datenbestand& bestand);
    // Before the first tick.
    void verbinde(Liveupdateanzeige& anzeige) { anzeige_ = &anzeige; }

    // The end of start-up: what was missed before is made up for five minutes from here, if wanted.
    void starten(Datum jetzt);
    // One call a tick.
    void Timer(Datum jetzt);
    // The program ends; a running update goes on without it.
    void beenden() { verbindung_.trennen(); }

    // The two fields that the link fills.
    void ReceivedDrumletStatuslabel_Change(const std::string& text);
    void ReceivedDrumletStatusCode_Change(const std::string& text);

    Schritt schritt() const { return schritt_; }
    // For the status bar: while the update program is linked what it says of itself, else what has become of
    // the update. Empty before the first one, and a day after the last.
    const std::string& statustext() const { return verbunden_ ? statuslabel_ : statustext_; }

  private:
    void ausloesen(std::int16_t modus, Datum letzterTick, Datum jetzt);
    void verbindungPruefen(std::int16_t modus);
    void beiVerbindung(Datum jetzt, bool jedesMal);
    void nachZeitplan(Datum letzterTick, Datum jetzt);
    void nachStunden(Datum jetzt);
    void programmStarten(Datum jetzt);
    void ueberwachen();
    void abbrechen(const std::string& grund);
    void abschliessen(Datum jetzt);
    std::string abschlusstext(bool gelungen) const;
    Datum letztesUpdate(Datum jetzt) const;
    void zeige(std::string text);

    const Ports& ports_;
    Einwahl& einwahl_;
    Statusverbindung& verbindung_;
    Datenbestand& bestand_;
    Liveupdateanzeige* anzeige_ = nullptr;

    Schritt schritt_ = Schritt::Ruhe;
    int countdown_ = 60;              // ticks
    bool verbindungBesteht_ = false;  // the dial-up connection; asked for in the modes that wait for it
    bool verbindungGesehen_ = false;
    bool verbunden_ = false;  // with the update program
    std::string statustext_;
    std::int64_t statustextBisMs_ = 0;
    std::string statuslabel_;
    std::string abbruchgrund_;
    Datum letzterTick_;
    Datum letzterStart_;  // in this run of the program; never: none
    std::optional<Datum> gestarteterPlanmoment_;
    std::optional<std::int64_t> nachholenAbMs_;
    std::optional<std::int64_t> letzterVersuchMs_;
    // Ticks of a running update: a machine that sleeps makes no program mute.
    int weg_ = 0;
    int stumm_ = 0;
};

}  // namespace wendel
