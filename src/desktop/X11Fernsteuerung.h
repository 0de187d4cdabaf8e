#pragma once
// The Fernsteuerung port for X sessions: other programs' windows through the window manager, keys through the
// XTEST extension. Own windows are never found: a script is not to type into the program that runs it.

#include <string>

#include "platform/ports/Fernsteuerung.h"

namespace wendel {

// What a session offers, as far as scripts need it.
struct Steuerbarkeit {
    std::string plattform;  // the toolkit's name for it
    bool tasten = false;
    bool fensterliste = false;
};

// The German sentence for the user about the first thing that is missing; "" when nothing is.
std::string hindernistext(const Steuerbarkeit& sitzung);

class X11Fernsteuerung final : public Fernsteuerung {
  public:
    std::string hindernis() override;
    [[nodiscard]] bool starteBefehlszeile(const std::string& befehlszeile) override;
    Fensterhandle fensterNachTitel(const std::string& titel) override;
    void zeigeNormal(Fensterhandle fenster) override;
    // Waits up to 300 ms for the window manager. A dialog that belongs to the window counts as the window.
    bool aktivieren(const std::string& titel) override;
    [[nodiscard]] bool sendeTasten(std::span<const Tastenereignis> ereignisse) override;
    void signalton() override;
};

}  // namespace wendel
