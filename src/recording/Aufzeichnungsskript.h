#pragma once
// The recording script: a text file of "key=value" lines below a header that tells how to drive the TV
// application. Here it is read; what its lines mean is the interpreter's affair (ModulAufzeichnungskript).

#include <string>
#include <vector>

#include "platform/ports/Dateisystem.h"

namespace wendel {

struct Skriptzeile {
    std::string text;  // the value as written: "warten,2.5"
    int nummer = 0;    // of the line in the file, from 1

    friend bool operator==(const Skriptzeile&, const Skriptzeile&) = default;
};

using Befehlsliste = std::vector<Skriptzeile>;

struct Aufzeichnungsskript {
    std::string beschreibung;
    std::string tvAnwendungDatei;
    std::string tvAnwendungTitel;
    Befehlsliste befehlAnwendungStarten;
    Befehlsliste befehlAnwendungBeenden;
    Befehlsliste befehlAufnahmeStarten;
    Befehlsliste befehlAufnahmeBeenden;
    Befehlsliste befehlKanalWechseln;

    // At least one of the lists has a line: there is something to run.
    bool fuehrtEtwasAus() const;
};

// Reads the file; an absent one (or no name) gives the empty script. Throws Fehler kEigener of source
// "SkriptEinladen" when the first line is not the header, also for a file that is empty or can't be read, and
// for one of more than 8 MB.
Aufzeichnungsskript SkriptEinladen(Dateisystem& dateien, const std::string& datei);

// Where a script name of the settings points to: a bare name lies in the programme folder.
std::string skriptdatei(const std::string& name, const std::string& programmordner);

}  // namespace wendel
