#pragma once
// Between the user's appointments as the program works with them and as the settings file stores them.
// Reading and writing the file is left to the settings; when to store is the main form's decision.

#include <vector>

#include "platform/Datum.h"
#include "reminders/cTermin.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel {

// Own appointments in the order stored. Short-time alarms that have fired (inactive, not later than jetzt)
// are left out, else they would pile up.
Terminliste termineAusEinstellungen(const std::vector<GespeicherterTermin>& gespeichert, Datum jetzt);

// Every entry as it stands; kind and fired mark are not stored.
std::vector<GespeicherterTermin> termineFuerEinstellungen(const Terminliste& termine);

}  // namespace wendel
