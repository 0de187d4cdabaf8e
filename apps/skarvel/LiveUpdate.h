#pragma once
// One live update from the source to the last row. Everything is read and found sound before the first row is
// written, so that a broken source leaves the database as it was.

#include <cstdint>
#include <string>

#include "Guideschreiber.h"
#include "platform/Ports.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel::skarvel {

// Who watches a run. Called on the thread that runs it.
class Verlauf {
  public:
    virtual ~Verlauf() = default;
    // German; percent from 0 to 100.
    virtual void melde(const std::string& text, int prozent) = 0;
    // Asked often.
    virtual bool abgebrochen() = 0;
};

class LiveUpdate {
  public:
    // All outlive this. programmordner as in Prozesswerte.
    LiveUpdate(const Ports& ports, Einstellungen& einstellungen, const std::string& programmordner,
               Verlauf& verlauf);

    // Throws Fehler with a German description when it did not come to its end, also when it was broken off.
    void laufe();
    // What has been written, up to the end or to the failure.
    const Schreibbilanz& bilanz() const { return bilanz_; }

  private:
    class Fuellung;
    void lies(Fuellung& fuellung);
    void schreibe(Fuellung& fuellung);
    void schreibeGuide(Guideschreiber& schreiber, Fuellung& fuellung);
    void schreibeKanaele(Guideschreiber& schreiber, Fuellung& fuellung, const Spaltenbreiten& breiten);
    void pruefeAbbruch();
    void melde(const std::string& text, int prozent, bool sofort);
    Datum grenze() const;

    const Ports& ports_;
    Einstellungen& einstellungen_;
    Prozesswerte werte_;
    Konfiguration konfiguration_;
    Verlauf& verlauf_;
    Schreibbilanz bilanz_;
    std::int64_t gemeldet_ = 0;
};

}  // namespace wendel::skarvel
