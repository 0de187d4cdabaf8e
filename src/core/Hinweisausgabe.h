#pragma once
// Fires entries: notes them in the journal, moves them on, brings the notice window up with sound and
// foreground. When something is due, and what is read or stored afterwards, is WeckTimer's business.

#include <string>
#include <vector>

#include "platform/Ports.h"
#include "reminders/FormHinweis.h"
#include "reminders/Hinweisjournal.h"
#include "reminders/cTermin.h"

namespace wendel {

class Datenbestand;

// What one notice says, taken from its entries before they moved on.
struct Hinweis {
    std::string text;
    std::vector<Hinweisschluessel> schluessel;
};

class Hinweisausgabe {
  public:
    // All outlive the object.
    Hinweisausgabe(const Ports& ports, Datenbestand& bestand, FormHinweis& form);

    // The entries count as fired from here on, also for a restart: a crash before zeigen() shows them again.
    Hinweis feuern(const Terminliste& faellige, Datum jetzt);

    // The notice window with sound where there is a device, in the foreground.
    void zeigen(const Hinweis& hinweis);

    // What was open when the program last ended, in one notice.
    void offeneZeigen();

  private:
    const Ports& ports_;
    Datenbestand& bestand_;
    FormHinweis& form_;
};

}  // namespace wendel
