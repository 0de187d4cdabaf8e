#pragma once
// Keeps the table of marks in step with the programme data: new broadcasts of recurring marks are added,
// expired marks deleted, marks whose broadcast has vanished detached, the favourites flag of the broadcasts
// and the duplicates put right. When a run is due is left to the caller, who shows nothing either: the access
// layer has told the user what failed.

#include <cstdint>
#include <string>

#include "platform/Datum.h"

namespace wendel {

class ModulDatenbankzugriff;

// Keys of marked broadcasts as texts ";12;15;", ";" when there are none: a broadcast is marked when ";", its
// key and ";" are found in the text.
struct Markierungslisten {
    std::string favoriten = ";";
    std::string erinnerungen = ";";    // those with a reminder
    std::string aufzeichnungen = ";";  // those with a recording
};

class Markierungspflege {
  public:
    // benutzer owns the marks that are looked after; loeschtage is the number of days, at least 1, after
    // which marks are deleted whatever their length says. The access layer outlives this.
    Markierungspflege(ModulDatenbankzugriff& zugriff, std::string benutzer, std::int16_t loeschtage);

    struct Ergebnis {
        // A mark was added whose reminder should have come before the present minute.
        bool erinnerungVersaeumt = false;
    };

    // One run over the database, opened and closed for it. A recurring mark whose title has ":" or "/" stands
    // for all titles that begin like it, as far as the title can be a pattern; every other for its title
    // only. Titles are stored whole: in the suite's databases those of marks are as long as those of
    // broadcasts. listen is replaced once the favourites are read, and gets each mark that is added. The
    // first statement that fails ends the run: what came before it stays done, and its Fehler is thrown.
    Ergebnis laufen(Datum jetzt, Markierungslisten& listen);

  private:
    ModulDatenbankzugriff& zugriff_;
    std::string benutzer_;
    std::int16_t loeschtage_;
};

}  // namespace wendel
