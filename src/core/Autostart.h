#pragma once
// The program's entry among those started at log-on: written, removed, asked about when the user ends the
// program. Where the registry keeps it is the port's affair.

#include <cstdint>

#include "platform/Ports.h"
#include "platform/Prozesswerte.h"
#include "platform/ports/Registrierung.h"

namespace wendel {

// The two values of the suite's booleans; anything else is neither.
inline constexpr std::int16_t kVbTrue = -1;
inline constexpr std::int16_t kVbFalse = 0;

class Autostart {
  public:
    // All outlive the object. werte is read at each call.
    Autostart(Meldungen& meldungen, Registrierung& registrierung, const Prozesswerte& werte);

    // Writes the entry, or removes it, for kVbTrue and kVbFalse; nothing for any other value. Tells the user
    // when the entry does not read back as written.
    void SetAutostartEntry(std::int16_t keep);

    // eingeschaltet is the autostart flag of the settings: while it is on the user is asked whether to keep
    // the entry, unless the program runs for another user.
    bool fragt(bool eingeschaltet) const;
    // The question, where it is asked, and what follows from it. False: the program goes on running, nothing
    // was written. Runs window messages while it asks.
    bool AskAutostartOnClose(bool eingeschaltet);

  private:
    bool eintragSetzen();

    Meldungen& meldungen_;
    Registrierung& registrierung_;
    const Prozesswerte& werte_;
};

}  // namespace wendel
