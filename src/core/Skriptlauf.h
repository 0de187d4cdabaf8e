#pragma once
// Runs lists of the recording script for the recording flow and for the channel switch: one run at a time,
// with a limit, and over at once when the program ends. Meanwhile ticks do nothing, since whatever came to
// the front would take the keys that are meant for the TV application. What runs when, and what a failure
// means, is decided there.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>

#include "platform/Datum.h"
#include "platform/Ports.h"
#include "recording/ModulAufzeichnungskript.h"

namespace wendel {

class Datenbestand;
class FormAufzeichnungsskript;
class FormWendel;

class Skriptlauf {
  public:
    using Liste = void (ModulAufzeichnungskript::*)();

    struct Auftrag {
        std::string kanal = {}, titel = {};  // [Kanal], [Titel]
        int minuten = 0;                     // the run is given up after as many
        std::optional<Datum> bis = {};       // and at this moment
    };
    struct Ergebnis {
        // Of the lists that were asked for; the last one is the one that failed, if one did.
        std::size_t begonnen = 0;
        std::optional<Skriptfehler> fehler;
        // The program was told to end: the lists are not through, and nobody is to hear of it.
        bool beendet = false;
    };

    // All outlive the object.
    Skriptlauf(const Ports& ports, Datenbestand& bestand, FormAufzeichnungsskript& status);
    void verbinde(FormWendel& form) { form_ = &form; }

    // Reads the script of the settings; a file that is none is shown without waiting, and nothing is known
    // then. Not to be called while a run is under way.
    void laden();
    const Aufzeichnungsskript& skript() const { return modul_.skript(); }
    bool aktiv() const { return aktiv_; }

    // In their order up to the first failure. Not to be called while a run is under way.
    Ergebnis laufe(std::initializer_list<Liste> listen, const Auftrag& auftrag);

    // "12" of a channel named "12 ARD": what stands before the first blank, at least two digits; empty unless
    // it is a number, and for a channel that is not in the list.
    std::string programmnummer(const std::string& senderkennung) const;

  private:
    Skriptwerte werte(const Auftrag& auftrag);
    ModulAufzeichnungskript::Abbruchfrage grenze(const Auftrag& auftrag);

    const Ports& ports_;
    Datenbestand& bestand_;
    ModulAufzeichnungskript modul_;
    FormWendel* form_ = nullptr;
    bool aktiv_ = false;
};

}  // namespace wendel
