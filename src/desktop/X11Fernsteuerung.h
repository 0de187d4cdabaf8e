#pragma once
// The Fernsteuerung port for X sessions: other programs' windows through the window manager, keys through the
// XTEST extension. Own windows are never found: a script is not to type into the program that runs it.

#include <string>

#include "desktop/Steuerbarkeit.h"
#include "platform/ports/Fernsteuerung.h"

namespace wendel {

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
