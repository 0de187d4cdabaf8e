#include "core/Autostart.h"

#include "platform/ModulRegistrierung.h"
#include "platform/Text.h"

namespace wendel {

namespace {

constexpr auto kBenutzer = Registrierungswurzel::AktuellerBenutzer;
constexpr auto kRechner = Registrierungswurzel::Rechner;
constexpr const char* kRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kName = "Wendel";

}  // namespace

Autostart::Autostart(Meldungen& meldungen, Registrierung& registrierung, const Prozesswerte& werte)
    : meldungen_(meldungen), registrierung_(registrierung), werte_(werte) {}

void Autostart::SetAutostartEntry(std::int16_t keep) {
    if (keep != kVbTrue && keep != kVbFalse) return;
    if (keep == kVbTrue) {
        if (!eintragSetzen())
            meldungen_.meldung("Der Run-Eintrag konnte nicht gesetzt werden.", meldungsstil::kAusrufezeichen,
                               "Start bei Systemstart");
    } else {
        ModulRegistrierung::DeleteValue(registrierung_, kBenutzer, kRun, kName);
    }
    // An older entry for the whole machine would start the program a second time.
    ModulRegistrierung::DeleteValue(registrierung_, kRechner, kRun, kName);
}

// False when it does not read back as written. Of a folder whose name the registry's code page lacks, that is
// what the registry can hold of it.
bool Autostart::eintragSetzen() {
    const std::string text = "\"" + werte_.programmordner + "tessaly.exe\" wendel pcstart";
    const Variant zeile = Variant::text(ausWindows1252(nachWindows1252(text)));
    if (!ModulRegistrierung::KeyExists(registrierung_, kBenutzer, kRun))
        ModulRegistrierung::CreateKey(registrierung_, kBenutzer, kRun);
    ModulRegistrierung::WriteValue(registrierung_, kBenutzer, kRun, kName, zeile);
    Variant gelesen;
    ModulRegistrierung::ReadValue(registrierung_, kBenutzer, kRun, kName, gelesen, true);
    return gelesen == zeile;
}

bool Autostart::fragt(bool eingeschaltet) const {
    return eingeschaltet && InStr(LCase(werte_.befehlszeile), "/differentuser") == 0;
}

bool Autostart::AskAutostartOnClose(bool eingeschaltet) {
    std::int16_t keep = kVbFalse;
    if (fragt(eingeschaltet)) {
        const Antwort antwort =
            meldungen_.meldung("Möchten Sie, dass der Lomrick beim nächsten Booten\r\nwieder gestartet wird?",
                               meldungsstil::kJaNeinAbbrechenFrage, "Lomrick schließen");
        if (antwort == Antwort::Abbrechen) return false;
        if (antwort == Antwort::Ja) keep = kVbTrue;
    }
    SetAutostartEntry(keep);
    return true;
}

}  // namespace wendel
