#pragma once
// The recordings that are to come, wait or run: what the marks in the database say, joined with what
// Aufzeichnungsstand knows of them already; their rows in the list, and which of them are in each other's
// way. What happens to them when is decided by Aufzeichnungsablauf.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Datum.h"
#include "recording/Aufzeichnungsstand.h"
#include "reminders/cTermin.h"

namespace wendel {

class Datenbestand;

class Aufzeichnungsplan {
  public:
    // What one run of the program knows about a recording; the rest is in Aufzeichnungsstand.
    struct Vorhaben {
        Aufzeichnung aufzeichnung;
        TerminZeiger termin;
        bool angekuendigt = false, vertroestet = false;
    };

    // Both outlive the object.
    Aufzeichnungsplan(const Datenbestand& bestand, Aufzeichnungsstand& stand);

    // The last reading of the database has been taken over.
    bool istAktuell() const;
    // Takes it over; the state is to be stored then. True when one that was planned is not wanted any more.
    bool abgleichen(Datum jetzt);
    // To be called when the state has been read anew: it may bring back what was withdrawn before.
    void nachlesen(Datum jetzt);
    // To be called when the state has other entries than before, or other phases.
    void erneuern();

    // Those that are not over, in the order of their starts. Valid until the next abgleichen or erneuern.
    std::vector<Vorhaben>& vorhaben() { return vorhaben_; }
    // Their entries. One that has not changed stays the same over all of that.
    const Terminliste& termine() const { return termine_; }
    // It has neither begun nor ended.
    bool wartet(const Vorhaben& vorhaben) const;

    // "überschneidet sich mit ...": what keeps this one of them from starting in time; empty for nothing.
    std::string ueberschneidung(const cTermin& termin, const std::optional<Aufzeichnung>& laufende) const;
    // A sentence for each that overlaps with this one and starts within two hours of it, a line each.
    std::string konflikte(const Aufzeichnung& aufzeichnung) const;

  private:
    bool istZurueckgezogen(const Aufzeichnungseintrag& eintrag, Datum jetzt) const;
    TerminZeiger termin(const Aufzeichnung& aufzeichnung) const;

    const Datenbestand& bestand_;
    Aufzeichnungsstand& stand_;
    std::uint64_t abgeglichen_ = 0;  // the reading of the database that the plan follows
    std::vector<Vorhaben> vorhaben_;
    Terminliste termine_;
};

}  // namespace wendel
