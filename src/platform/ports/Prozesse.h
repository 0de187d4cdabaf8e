#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace wendel {

struct Prozess {
    std::string pfad;  // with "\" between folders; programs of the suite by their short names with ".exe"
    std::uint32_t id = 0;
};

class Prozesse {
  public:
    virtual ~Prozesse() = default;
    // All running processes that can be looked at; empty on failure. Zombies do not run.
    virtual std::vector<Prozess> liste() = 0;
    // Asks a process of this user to end (and makes it, seconds later); does not wait. False for the calling
    // process, which is never ended this way.
    [[nodiscard]] virtual bool beenden(std::uint32_t id) = 0;
    // 2 where processes are listed with their full paths; anything else where only names are known.
    virtual int plattformkennung() { return 2; }
};

}  // namespace wendel
