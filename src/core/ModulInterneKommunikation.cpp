#include "core/ModulInterneKommunikation.h"

#include "platform/Fehler.h"
#include "platform/ModulProzessliste.h"
#include "recording/ModulDateiStarten.h"

namespace wendel {

namespace {

constexpr const char* kProgramm = "fennow.exe";
constexpr const char* kAutomationsklasse = "Fennow.Open";
constexpr int kFensterNormal = 1;

}  // namespace

ModulInterneKommunikation::ModulInterneKommunikation(const Ports& ports, const Prozesswerte& werte)
    : ports_(ports), werte_(werte) {}

void ModulInterneKommunikation::StartMainApplication(const std::string& commandText) {
    // Before the title is known no window may be hit by chance.
    const bool aktiviert =
        !werte_.hauptanwendungTitel.empty() && ports_.fenster.aktivierenNachTitel(werte_.hauptanwendungTitel);
    if (!aktiviert) {
        programmStarten(commandText);
    } else if (!commandText.empty()) {
        // The window is in front; a text that got lost on the way shows by itself.
        static_cast<void>(uebermitteln(commandText));
    }
}

bool ModulInterneKommunikation::uebermitteln(const std::string& text) {
    return ModulProzessliste::IsProcessRunning(ports_.prozesse, kProgramm) &&
           ports_.automation.rufeDoThis(kAutomationsklasse, text);
}

void ModulInterneKommunikation::programmStarten(const std::string& commandText) {
    const std::string datei = werte_.programmordner + kProgramm;
    try {
        ModulDateiStarten::DateiStarten(ports_.starter, datei, "/commandtext=\"" + commandText + "\"",
                                        kFensterNormal);
    } catch (const Fehler&) {
        ports_.meldungen.meldung("Die folgende Datei kann nicht gestartet werden:\r\n\"" +
                                     ports_.dateien.pfadAnzeige(datei) + " /commandtext=\"" + commandText +
                                     "\"",
                                 meldungsstil::kAusrufezeichen, "Fehler");
    }
}

}  // namespace wendel
