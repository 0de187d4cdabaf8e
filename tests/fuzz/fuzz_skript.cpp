// Arbitrary bytes as a key string, as lines of a recording script on fakes, and as its file: all of it ends
// in bounded time, with a Fehler or without, and no key stays down.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "platform/Text.h"
#include "recording/ModulAufzeichnungskript.h"
#include "recording/Tastenfolge.h"
#include "support/Fakes.h"

namespace {

using namespace wendel;

struct StummeAnzeige : Skriptanzeige {
    void ShowDebugInfo(const std::string& /*text*/) override {}
    void ShowDebugInfoAddOk() override {}
};

void verlangeLosgelassen(const std::vector<Tastenereignis>& ereignisse) {
    std::vector<Tastenereignis> unten;
    for (const Tastenereignis& ereignis : ereignisse) {
        if (ereignis.gedrueckt) {
            unten.push_back(ereignis);
        } else {
            if (unten.empty() || !(unten.back() == Tastenereignis{ereignis.taste, ereignis.zeichen}))
                std::abort();
            unten.pop_back();
        }
    }
    if (!unten.empty() || ereignisse.size() > 2U * kHoechstzahlTasten) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    const std::string eingabe(reinterpret_cast<const char*>(daten), groesse);
    verlangeLosgelassen(
        tastenereignisse(tastennamenErsetzen(eingabe)).value_or(std::vector<Tastenereignis>()));

    FakePorts fakes;
    fakes.aufrufe.mitschreiben = false;
    fakes.dateien.lege("\\a.cfs", "<kestrin pirrow aufzeichnungsskript 1.0>\n" + eingabe);
    fakes.fernsteuerung.fenster = {"TV"};
    const Ports ports = fakes.ports();
    StummeAnzeige anzeige;
    ModulAufzeichnungskript interpreter(ports, anzeige);
    interpreter.setzeWerte({"\\tv", "\\filme", "07", "[Titel] {", true, kTestordner});
    interpreter.setzeAbbruch([&]() -> std::optional<std::string> {
        return fakes.uhr.laufzeitMs() < 60000 ? std::nullopt : std::optional<std::string>("Zeit um");
    });
    interpreter.setzeSkript(SkriptEinladen(fakes.dateien, "\\a.cfs"));
    const std::vector<std::string> zeilen = textzeilen(eingabe);
    for (std::size_t i = 0; i <= zeilen.size(); ++i) {
        try {
            i == 0 ? interpreter.AufnahmeStarten() : interpreter.BefehlAusfuehren(zeilen[i - 1]);
        } catch (const Fehler&) {
            // as most inputs must end
        }
    }
    for (const auto& ereignisse : fakes.fernsteuerung.gesendet)
        verlangeLosgelassen(ereignisse);
    return 0;
}
