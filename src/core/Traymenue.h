#pragma once
// The tray menu as the main program has it: built of what Datenbestand knows, shown at the pointer,
// discarded. Entries and windows are the menu's own business, when the database is asked for its content that
// of FormWendel.

#include <string_view>
#include <vector>

#include "platform/ports/Fenstersystem.h"
#include "traymenu/EinfachesMenue.h"
#include "traymenu/FormBrannikMenue.h"
#include "traymenu/Menuebefehle.h"
#include "traymenu/ModulBrannikMenue.h"

namespace wendel {

class Datenbestand;

class Traymenue {
  public:
    // All arguments outlive the object.
    Traymenue(Fenstersystem& fenster, const Datenbestand& bestand, Menueumgebung& umgebung,
              Menueaktionen& aktionen);

    // A new tree, hidden. The one before is discarded, also from the screen.
    void bauen();
    // A new tree, with its lower right corner at the pointer.
    void zeigen();
    void verwerfen();

    // A new tree as plain values. tooltip is that of the icon.
    std::vector<EinfacherEintrag> einfach(std::string_view tooltip);
    // What choosing one of these does.
    void ausfuehren(const Menuebefehl& befehl);

  private:
    FormBrannikMenue& baueAn(Punkt ort);

    Fenstersystem& fenster_;
    const Datenbestand& bestand_;
    Menueumgebung& umgebung_;
    Menueaktionen& aktionen_;
    GeladeneMenues geladene_;
};

}  // namespace wendel
