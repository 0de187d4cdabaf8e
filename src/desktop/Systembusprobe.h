#pragma once
// Whether the system bus is alive. The toolkit's connecting waits without a limit for a bus that does not
// answer, and every tick of ours would wait with it: so the bus is asked first, from the event loop.

#include <QSocketNotifier>
#include <functional>
#include <memory>

#include "desktop/Dateideskriptor.h"

namespace wendel {

class Systembusprobe {
  public:
    Systembusprobe() = default;
    ~Systembusprobe() { verwerfen(); }
    Systembusprobe(const Systembusprobe&) = delete;
    Systembusprobe& operator=(const Systembusprobe&) = delete;

    // Calls back once the bus has answered, from the event loop; at once for a bus that is not on this
    // machine's file system. Never where there is none; does nothing while it is asking.
    void wennErreichbar(std::function<void()> dann);
    bool fragt() const { return antwortet_ != nullptr; }
    // No call back any more.
    void verwerfen();

  private:
    // Open until the bus has shown that it is alive.
    Dateideskriptor klopfzeichen_;
    std::unique_ptr<QSocketNotifier> antwortet_;
};

}  // namespace wendel
