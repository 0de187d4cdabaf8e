#pragma once
// The queries that turn the marks of this computer into entries: reminders still to come, recordings, and
// reminders that were missed while the program did not run. Called whenever the lists are rebuilt; what is
// done with the entries, and what with the old ones when a query fails, is the caller's decision.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Datum.h"
#include "reminders/cTermin.h"

namespace wendel {

class ModulDatenbankzugriff;

struct Terminabfrage {
    Terminliste termine;
    // False when the database could not be read: termine is empty then, and says nothing about the marks.
    // What could not be opened the access layer has shown to the user.
    bool gelungen = false;
};

class Terminabfragen {
  public:
    // datenbankdatei and rechnername are fixed for the life of the process; the access layer outlives this.
    Terminabfragen(ModulDatenbankzugriff& zugriff, std::string datenbankdatei, std::string rechnername);

    // All take the identifiers (kennungen) of the channels in use in list order, and the present moment:
    // reminders to come and missed ones share no entry and leave none out only when they are asked with the
    // same moment. The entries come in the order of the broadcasts, active. Each call opens and closes the
    // database once.

    // Reminder moments from the present minute on. Marks that would give the same reminder (moment and text)
    // give one, also among the missed ones: it would be the same line of a notice.
    Terminabfrage ErinnerungenLesen(const std::vector<std::string>& kennungen, Datum jetzt);

    // Recordings whose broadcast has not ended. WeckZeit is the start of the window, widened by both minutes.
    Terminabfrage AufzeichnungenLesen(const std::vector<std::string>& kennungen, Datum jetzt,
                                      std::int16_t vorlaufMinuten, std::int16_t nachlaufMinuten);

    // Reminder moments before the present minute whose broadcast has not ended. The caller leaves out those
    // that the notice journal knows. A mark without a readable moment is none.
    Terminabfrage VerpassteErinnerungenLesen(const std::vector<std::string>& kennungen, Datum jetzt);

  private:
    ModulDatenbankzugriff& zugriff_;
    std::string datenbankdatei_;
    std::string rechnername_;
};

}  // namespace wendel
