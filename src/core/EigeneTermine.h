#pragma once
// The user's own appointments, short-time alarms included: the only entries that are stored. Keeps the
// collection and the settings file in step, other programs' changes included, and takes care that no change
// here is mistaken for an entry that has been shown. When to store, and what the user hears of a failure, is
// left to the main form.

#include <string>

#include "core/Terminablage.h"
#include "platform/ports/Uhr.h"
#include "reminders/Hinweisjournal.h"
#include "reminders/cTermin.h"
#include "tvdb/Einstellungen.h"

namespace wendel {

class EigeneTermine {
  public:
    // All outlive the object.
    EigeneTermine(Uhr& uhr, Einstellungen& einstellungen, Hinweisjournal& journal);

    // In the order in which they came into being; never reordered.
    const Terminliste& liste() const { return liste_; }

    // Takes what the file holds in place of what is held; a record that is in both stays the same one. A file
    // that cannot be read changes nothing. Entries that the journal knows as shown are moved on, so that a
    // crash between notice and storing repeats nothing.
    void laden();

    // A new entry at the end.
    void anhaengen(const TerminZeiger& termin);
    // Carries an edit over: vorher is what the editor was given of the record, nachher what came back. The
    // edited entry is the record itself, else the first one with the old moment and text, else a new one at
    // the end; it is returned.
    TerminZeiger uebernehmen(const TerminZeiger& termin, const cTermin& vorher, const cTermin& nachher);
    // Removes the first entry of this moment and text and returns it; null when there is none.
    TerminZeiger entfernen(const cTermin& gesucht);
    // The catch-up pass over all entries, read before it if no file could be read so far. What it makes
    // active again is to be stored.
    void nachholen();
    // An entry was changed in place.
    void geaendert() { ungespeichert_ = true; }

    // Writes what has changed; what another program has changed in the file is taken over first. False when
    // writing failed: the next call tries again.
    [[nodiscard]] bool speichernWennNoetig();
    bool ungespeichert() const { return ungespeichert_; }
    // Why the last storing failed, German; empty when it did not.
    const std::string& speicherfehler() const { return speicherfehler_; }

  private:
    TerminZeiger suche(const cTermin& gesucht) const;
    void vorJournalSchuetzen(cTermin& termin);
    void fremdeAenderungenUebernehmen();
    void speichern();

    Uhr& uhr_;
    Einstellungen& einstellungen_;
    Hinweisjournal& journal_;

    Terminliste liste_;
    // What the file held when it was last read or written here, and what a failed write may have put there:
    // it can come true later, when the file is repaired.
    Ablage abgelegt_;
    Ablage versucht_;
    bool gelesen_ = false;
    bool ungespeichert_ = false;
    std::string speicherfehler_;
};

}  // namespace wendel
