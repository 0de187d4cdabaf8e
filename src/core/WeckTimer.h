#pragma once
// The tick of WeckTimer, once a second on the user-interface thread: decides whether something has to happen
// now. An idle tick only compares times. A late tick fires what became due since the last one; whatever the
// clock or the machine did meanwhile, each entry fires once.

#include "platform/Datum.h"
#include "platform/Ports.h"
#include "reminders/cTermin.h"

namespace wendel {

class Aufzeichnungsablauf;
class Datenbestand;
class FormWendel;
class Hinweisausgabe;
class Liveupdate;

class WeckTimer {
  public:
    // All outlive the timer.
    WeckTimer(const Ports& ports, Datenbestand& bestand, FormWendel& form, Hinweisausgabe& ausgabe,
              Aufzeichnungsablauf& aufzeichnungen, Liveupdate& liveupdate);

    // From this moment gaps are measured: the end of the start-up.
    void starten();

    // Does nothing while a long action of an earlier tick is under way; but a box of the database that nobody
    // answers costs no recording. Errors end their step, never the timer: what is still due is due at the
    // next tick.
    void Timer();

  private:
    void schritte(Datum jetzt);
    void aufzeichnen();
    void minutenlauf();
    void hinweisenUndNachlesen(const Terminliste& faellige, Datum jetzt);
    void nachzueglerHinweisen();
    bool warten(int dauerMs);
    void tagestippNachholen(Datum jetzt);

    const Ports& ports_;
    Datenbestand& bestand_;
    FormWendel& form_;
    Hinweisausgabe& ausgabe_;
    Aufzeichnungsablauf& aufzeichnungen_;
    Liveupdate& liveupdate_;
    Datum letzterTick_;
    Datum tippZeit_;
    // Until when the program is known to have watched: the end of the last tick, as a box inside a tick is no
    // gap.
    Datum wachBis_;
};

}  // namespace wendel
