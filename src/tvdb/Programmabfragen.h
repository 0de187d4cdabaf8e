#pragma once
// What runs on the favourite channels now, what comes next there, and what the evening brings: the queries of
// the tray menu. Which of them to ask, when, and what is shown of the rows is left to the menu.

#include <memory>
#include <vector>

#include "platform/Datum.h"
#include "platform/ports/Datenbankmaschine.h"
#include "tvdb/cSendung.h"

namespace wendel {

class ModulDatenbankzugriff;
class Sendersammlung;

using Sendungsliste = std::vector<cSendung>;

namespace Programmabfragen {

// What is asked about the reference moment t.
enum class Art {
    Laeuft = 1,  // what runs at t, by channel
    Ab = 2,      // the next broadcast of each channel, one that begins at t included
    Nach = 3,    // the same without what begins at t
    // What begins between 21:00:00 and 23:59:59 on the day of t and ends before 02:00; films first.
    Abend = 4,
};

// The rows in the order of the statement; none when there is nothing to ask: Laeuft without a favourite.
// Their details are loaded from the database when they are asked for. db is open; as with SafeOpenRs it may
// be a new object afterwards, and what that throws comes out of here, with the recordset closed.
Sendungsliste abfragen(ModulDatenbankzugriff& zugriff, std::unique_ptr<Datenbank>& db, Art art, Datum t,
                       const Sendersammlung& favoriten);

}  // namespace Programmabfragen
}  // namespace wendel
