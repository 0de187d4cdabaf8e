#pragma once
// The database engine behind the port, over Jet files: the dialect of sql/ on the pages of storage/.
// The composition root makes one JetDatenbankmaschinen and hands it to the logic; nothing else of this folder
// is needed there. A closed database gives back its connection, page cache and prepared statements.

#include <functional>
#include <memory>
#include <string>

#include "platform/ports/Datenbankmaschine.h"
#include "platform/ports/Uhr.h"

namespace wendel::jet {

// Turns a path of the logic ("\" between folders) into one that the system's file calls take.
using Pfadumsetzung = std::function<std::string(const std::string& logischerPfad)>;

// Errors of all objects made here are Fehler with the engine's numbers: 3024, 3044, 3051, 3343 from opening;
// 3061, 3075, 3078, 3131 and relatives from statements; 3049 for damaged pages, 3050 and 3260 while others
// keep the file locked; 3022, 3163, 3349 and relatives for values that cannot be stored; 3026 for a full
// disk; 3265 for unknown fields; 3420 for closed objects; 3027 for writing what cannot be written.
class JetDatenbankmaschinen : public Datenbankmaschinen {
  public:
    // uhr answers date() and now() in statements. Both arguments outlive the engines made here.
    JetDatenbankmaschinen(Uhr& uhr, Pfadumsetzung nativerPfad);

    std::unique_ptr<Datenbankmaschine> direkt() override;
    // There is one engine; every identifier of the suite's list names it.
    std::unique_ptr<Datenbankmaschine> nachProgrammkennung(const std::string& kennung) override;

  private:
    Uhr& uhr_;
    Pfadumsetzung nativerPfad_;
};

}  // namespace wendel::jet
