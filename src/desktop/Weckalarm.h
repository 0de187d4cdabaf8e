#pragma once
// The one wake-up alarm of the machine's real-time clock, shared with whoever else uses it: the device holds
// the earlier of our alarm and the one found there, and the other one as soon as the earlier has passed. An
// alarm stays when the process ends: it may wake a machine that was switched off.

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

#include "desktop/Dateideskriptor.h"

namespace wendel {

class Weckalarm {
  public:
    static constexpr const char* kOrdner = "/sys/class/rtc/rtc0";

    // The folder of the clock in the kernel's file tree, native.
    explicit Weckalarm(std::string ordner = kOrdner);

    // Our alarm (seconds since 1970, world time by the system's clock) in place of our last one; nothing
    // takes ours back. A moment that has passed needs no alarm. False when the device refuses or is missing.
    [[nodiscard]] bool stelle(std::optional<std::time_t> weltzeit);

    // For the event loop: readable when the device's alarm has passed while another one waits, then call
    // naechster(). Owned by this object.
    int fd() const { return zeitgeber_.get(); }
    void naechster();

  private:
    std::optional<std::int64_t> zahlAus(const char* datei) const;
    bool schreibe(std::int64_t wert) const;
    void beachteFremde(std::int64_t jetzt);
    bool richteEin(std::int64_t jetzt);
    void warteAuf(std::int64_t abJetzt) const;
    std::int64_t geraetezeit() const;

    std::string ordner_;
    Dateideskriptor zeitgeber_;
    // All in seconds of the device, whose clock may show local time.
    std::optional<std::int64_t> unserer_, fremder_, imGeraet_;
};

}  // namespace wendel
