#pragma once
// Notices that the wall clock was set or that the machine slept, without polling: a descriptor becomes
// readable. What is to be done then (one extra tick) is the caller's matter.

#include <cstdint>

namespace wendel {

class AufwachMelder {
  public:
    enum class Anlass { Nichts, UhrGestellt, Aufgewacht };

    AufwachMelder();
    ~AufwachMelder();
    AufwachMelder(const AufwachMelder&) = delete;
    AufwachMelder& operator=(const AufwachMelder&) = delete;

    // For the event loop (readable); -1 when the system has none. Owned by this object.
    int fd() const { return fd_; }

    // Call when fd() is readable: says why, and waits for the next time. Never blocks.
    Anlass lesen();

    // The reason, by how long the machine had slept since boot before and after (milliseconds).
    static Anlass deute(bool uhrGesprungen, std::int64_t schlafVorherMs, std::int64_t schlafNachherMs);

  private:
    void spannen();

    int fd_ = -1;
    std::int64_t schlafMs_ = 0;
};

}  // namespace wendel
