#pragma once
// One check in a process of its own, with a limit: a server that is stuck, a disk that does not answer or a
// file that makes a reader crash costs the report this part only, and what a check changes in itself (the
// current folder, libraries) stays there.

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "Pruefbericht.h"
#include "desktop/Dateideskriptor.h"

namespace wendel::quillon {

// What a busy machine needs, and someone who waits still bears.
constexpr std::chrono::seconds kPrueffrist{10};

struct Pruefteil {
    std::string titel;
    std::function<void(Pruefmelder&)> arbeit;
    Pruefzeile beiFristende = {Pruefstand::Fehler, "Dieser Teil der Prüfung kam nicht zu Ende",
                               "Etwas antwortet seit Sekunden nicht: den Rechner neu starten und noch "
                               "einmal prüfen."};
};

class Pruefprozess {
  public:
    // Begins at once. teil outlives this; no other thread may run.
    explicit Pruefprozess(const Pruefteil& teil);
    // Ends the process if it still runs.
    ~Pruefprozess();
    Pruefprozess(const Pruefprozess&) = delete;
    Pruefprozess& operator=(const Pruefprozess&) = delete;

    // Waits for the end or the limit, which counts from the beginning. What the process did not get to is
    // told by a line of its own.
    std::vector<Pruefzeile> zeilen();

  private:
    // False when the limit came first.
    bool liesBisEnde();

    const Pruefteil& teil_;
    std::chrono::steady_clock::time_point ende_;
    pid_t kind_ = 0;
    Dateideskriptor rohr_;
    std::string gelesen_;
};

}  // namespace wendel::quillon
