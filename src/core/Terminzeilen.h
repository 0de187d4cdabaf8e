#pragma once
// What the list window and the icon's tooltip say about entries: rows with their texts, the time left, the
// order of the rows. Pure functions of the entries and the present moment; FormWendel hands the results on.

#include <string>

#include "platform/Datum.h"
#include "reminders/cTermin.h"

namespace wendel {

// One row of the list: the three columns, the name of the picture before the first one.
struct Terminzeile {
    std::string symbol;  // "terminuhr2", "terminuhr1" or "terminaufz"
    std::string zeit;    // "24.12.12 20:15" or, for repeating entries, "Mo 20:15"
    std::string text;
    std::string rest;  // time left; empty for an entry that is switched off

    friend bool operator==(const Terminzeile&, const Terminzeile&) = default;
};

// "läuft" once the moment is reached, else whole minutes, hours or days by boundaries: "59 min", "23 h", "2
// Tage".
std::string restzeitText(Datum weckZeit, Datum jetzt);

// zusatz follows the text after a comma, if there is one.
Terminzeile terminzeile(const cTermin& termin, Datum jetzt, const std::string& zusatz = {});

// The entries of the three collections in the order of the rows: by time, those switched off last; equal
// times keep the order of the collections. The collections themselves stay as they are.
Terminliste zeilenreihenfolge(const Terminliste& eigene, const Terminliste& erinnerungen,
                              const Terminliste& aufzeichnungen);

// "Lomrick: heute 20:15 Text" for the nearest active entry that is not past, "Lomrick" when there is none.
// Cut to the 63 characters that the icon can show.
std::string tooltipText(const Terminliste& eigene, const Terminliste& erinnerungen,
                        const Terminliste& aufzeichnungen, Datum jetzt);

}  // namespace wendel
