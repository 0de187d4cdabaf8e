#pragma once
// Keeps the machine awake for recordings and has it woken up for them. Passes on what has changed only, so
// that a tick may say every second what is wanted.

#include <optional>
#include <string>

#include "platform/Datum.h"
#include "platform/ports/Energie.h"

namespace wendel {

class Wachdienst {
  public:
    explicit Wachdienst(Energie& energie) : energie_(energie) {}

    // grund is shown by the desktop; used when the machine has not been kept awake so far.
    void halteWach(bool wach, const std::string& grund);
    // The moment of the alarm, or none. False when it is a new one and the system refuses it.
    bool wecke(std::optional<Datum> moment);

  private:
    Energie& energie_;
    bool wach_ = false;
    std::optional<Datum> weckzeit_;
};

}  // namespace wendel
