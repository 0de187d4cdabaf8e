#pragma once
#include <cstdint>

#include "platform/Datum.h"

namespace wendel {

// The only reader of clocks. Everything that is compared with a stored moment asks jetzt(); every wait that
// counts seconds asks laufzeitMs(), which no clock step moves.
class Uhr {
  public:
    virtual ~Uhr() = default;
    // Local wall-clock time, truncated to whole seconds.
    virtual Datum jetzt() = 0;
    // Milliseconds on a clock that never jumps; its zero is arbitrary.
    virtual std::int64_t laufzeitMs() = 0;
    // Blocks the calling thread; no window message is processed meanwhile.
    virtual void schlafe(int ms) = 0;
    // Lets pending window messages, timers and control lines run once; they may call back into the logic.
    virtual void nachrichtenVerarbeiten() = 0;
};

}  // namespace wendel
