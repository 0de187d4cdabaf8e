#pragma once
#include <span>
#include <string>

#include "platform/Tastenereignis.h"
#include "platform/ports/Fenstersystem.h"

namespace wendel {

// What a recording script does to another program: starts it, finds its window, types into it. Nothing here
// throws; why something can't be done at all in this session, hindernis() says.
class Fernsteuerung {
  public:
    virtual ~Fernsteuerung() = default;

    // Why windows and keys of other programs are out of reach here, a German sentence for the user; empty
    // where they can be reached.
    virtual std::string hindernis() = 0;

    // Starts a program as the shell would: its path (in quotes where it holds blanks) and its arguments, in a
    // normal window with the focus. False when it could not be started.
    [[nodiscard]] virtual bool starteBefehlszeile(const std::string& befehlszeile) = 0;

    // The top-level window of exactly this title, case ignored; 0 when there is none or the title is empty.
    virtual Fensterhandle fensterNachTitel(const std::string& titel) = 0;
    // Shows it in its normal state: neither minimised nor maximised.
    virtual void zeigeNormal(Fensterhandle fenster) = 0;
    // Activates the window of this title, else one whose title begins with it. True when it has the input.
    virtual bool aktivieren(const std::string& titel) = 0;

    // Types into the window that has the input and returns when all has been sent. Keys still down at the end
    // are released. False when the session takes no keys from us.
    [[nodiscard]] virtual bool sendeTasten(std::span<const Tastenereignis> ereignisse) = 0;

    virtual void signalton() = 0;
};

}  // namespace wendel
