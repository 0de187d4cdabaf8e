#pragma once
// A clock whose sleep ends when the run is broken off: the pauses behind locking conflicts last seconds.

#include <algorithm>
#include <atomic>

#include "platform/ports/Uhr.h"

namespace wendel::skarvel {

class UnterbrechbareUhr : public Uhr {
  public:
    // Both outlive this.
    UnterbrechbareUhr(Uhr& uhr, const std::atomic<bool>& abbruch) : uhr_(uhr), abbruch_(abbruch) {}

    Datum jetzt() override { return uhr_.jetzt(); }
    std::int64_t laufzeitMs() override { return uhr_.laufzeitMs(); }
    void nachrichtenVerarbeiten() override { uhr_.nachrichtenVerarbeiten(); }
    void schlafe(int ms) override {
        for (constexpr int kScheibe = 50; ms > 0 && !abbruch_; ms -= kScheibe)
            uhr_.schlafe(std::min(ms, kScheibe));
    }

  private:
    Uhr& uhr_;
    const std::atomic<bool>& abbruch_;
};

}  // namespace wendel::skarvel
