#pragma once
// Other programs of the suite write the stored appointments too. Here the program's own ones and those that
// the file holds now become one collection: nothing of the user's is lost, nothing doubled. Appointments have
// no number, so what became of one is told by its moment and text. Reading and writing the file is left to
// EigeneTermine.

#include <vector>

#include "platform/Datum.h"
#include "reminders/cTermin.h"
#include "tvdb/Einstellungstabelle.h"

namespace wendel {

// An appointment as the file held it when it was last read or written here, and the record that stood for it;
// no record for an alarm that is over and was left out.
struct AbgelegterTermin {
    GespeicherterTermin wert;
    TerminZeiger termin;
};
using Ablage = std::vector<AbgelegterTermin>;

// What the file will hold of the records; it has fewer characters than the program.
Ablage ablageVon(const Terminliste& termine);

// How many appointments the file still holds just as they were.
std::size_t unveraenderte(const Ablage& vorher, const std::vector<GespeicherterTermin>& datei);

// The file's appointments in its order. A record that stood for one of them before stands for it again with
// the file's values, so that selection and fired mark stay.
Ablage neuGelesen(const Ablage& vorher, const std::vector<GespeicherterTermin>& datei, Datum jetzt);

// Takes what others have changed since vorher over into eigene; returns what the file holds as the new
// vorher. An entry that has merely fired here follows what was done to it there, and does not fire again. One
// that was edited on one side and deleted on the other stays as edited. One that was edited on both sides
// stays in both versions, unless there only repetition or switch were touched: then each side's edits count.
Ablage fremdesUebernehmen(Terminliste& eigene, const Ablage& vorher,
                          const std::vector<GespeicherterTermin>& datei, Datum jetzt);

}  // namespace wendel
