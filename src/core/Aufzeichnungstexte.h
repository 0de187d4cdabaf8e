#pragma once
// What the recording flow says to the user: pure functions of recordings and moments.

#include <string>

#include "recording/Aufzeichnungsstand.h"
#include "recording/ModulAufzeichnungskript.h"

namespace wendel::Aufzeichnungstexte {

// "\"Tatort\" (ARD, 20:10 bis 21:55)"
std::string bezeichnung(const Aufzeichnung& aufzeichnung);

// "überschneidet sich mit ..."
std::string ueberschneidung(const Aufzeichnung& frueher);
// A sentence: the later one can start only when the earlier one ends.
std::string konflikt(const Aufzeichnung& spaeter, const Aufzeichnung& frueher);
// The later one's start has come, and the other one runs.
std::string mussWarten(const Aufzeichnung& spaeter, const Aufzeichnung& laufende);

std::string startGescheitert(const Aufzeichnung& aufzeichnung, const Skriptfehler& fehler,
                             Datum naechsterVersuch);
std::string endeGescheitert(const Aufzeichnung& aufzeichnung, const Skriptfehler& fehler);
std::string keineDatei(const Aufzeichnung& aufzeichnung, const std::string& ordneranzeige, int sekunden);
// State or log of the recordings can't be read or written.
std::string dateiGestoert(const std::string& dateianzeige);

// The question before the program is ended.
std::string trotzdemBeenden(const Aufzeichnung& laufende);

}  // namespace wendel::Aufzeichnungstexte
