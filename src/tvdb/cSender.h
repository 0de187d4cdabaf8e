#pragma once
// One channel: a row of the table Sender. Which channels there are and in which order is left to Senderliste.

#include <string>
#include <string_view>

#include "platform/Datum.h"
#include "platform/ports/Datenbankmaschine.h"

namespace wendel {

class cSender {
  public:
    // The logo of a channel that names none.
    static constexpr std::string_view kUnbekanntesZeichen = "kestrin_sender32x32_unbekannt.gif";

    std::string Bezeichnung;
    std::string BezeichnungKurz;
    bool KzBezeichnungSchützen = false;
    std::string Senderkennung;  // the key
    std::string DatenNr;
    std::string Zeichen;  // file name of the logo, never blank once read
    std::string Webseite;
    Datum GueltigAb;
    Datum GueltigBis;
    bool Favorit = false;
    std::string Gruppe;

    // The recordset's current row.
    void LeseVonDatensatz(Recordset& rs);
};

}  // namespace wendel
