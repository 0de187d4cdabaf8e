// Control lines as any program on the session bus may send them, to the whole logic on fakes: several a run,
// one per line of the input, with ticks in between.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/Programm.h"
#include "platform/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    using namespace wendel;
    Programm programm;
    programm.ports.aufrufe.mitschreiben = false;
    programm.setzeTermine({{um(20, 0, 2), "Tee", intervall::kTaeglich, true}});
    programm.tvDaten.markierungen = {{um(20, 1), um(20, 15), 90, "Tatort", true}};
    programm.starte();
    const std::string eingabe(reinterpret_cast<const char*>(daten), laenge);
    for (const std::string& zeile : Split(eingabe, "\n")) {
        programm.anwendung->DoThis(zeile);
        programm.sekunde();
    }
    return 0;
}
