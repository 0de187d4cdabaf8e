#pragma once
#include <optional>
#include <string>

#include "platform/Datum.h"

namespace wendel {

// Keeping the machine awake, and waking it up. Failures are not reported but by the result.
class Energie {
  public:
    virtual ~Energie() = default;

    // From here on the machine does not go to sleep by itself; grund is what the desktop shows as the reason
    // (German). Does nothing while it is kept awake already. Ends with the process in any case.
    virtual void wachhalten(const std::string& grund) = 0;
    virtual void schlafErlauben() = 0;

    // Sets the one wake-up alarm of the machine's clock to this local moment in place of our last one;
    // nothing: takes ours back. False when the system does not permit it or has no such clock.
    [[nodiscard]] virtual bool weckenUm(std::optional<Datum> moment) = 0;
};

}  // namespace wendel
