#pragma once
// The process list out of /proc, and ending a process of this user. Decides nothing about names beyond what a
// process is called; comparing them is the logic's work.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/Prozesse.h"

namespace wendel {

// The logic path of a process, "" when it has none (kernel threads). `exe` is the target of its exe link;
// `argumente` its command line. An interpreter or a foreign loader gives way to the script or program it
// runs.
std::string prozesspfad(std::string_view exe, const std::vector<std::string>& argumente);

// True for the short names of the suite's programs, without extension, in any case.
bool istSuiteprogramm(std::string_view name);

class LinuxProzesse : public Prozesse {
  public:
    // Runs a function once, after so many milliseconds, on the calling thread's event loop.
    using Spaeter = std::function<void(int ms, std::function<void()>)>;

    // Without `spaeter` the end of a stubborn process is made at the next call after the 3 seconds. Tests
    // shorten them.
    explicit LinuxProzesse(Spaeter spaeter = {},
                           std::chrono::milliseconds gnadenfrist = std::chrono::milliseconds(3000));
    ~LinuxProzesse() override;
    LinuxProzesse(const LinuxProzesse&) = delete;
    LinuxProzesse& operator=(const LinuxProzesse&) = delete;

    // Processes of other users that don't let us look are left out.
    std::vector<Prozess> liste() override;
    // SIGTERM at once, SIGKILL after 3 s if it still runs then. The process is held by a descriptor
    // meanwhile, so that a later one with the same id is never hit. False for a process that is gone, of
    // another user, or this one. What is pending when this object dies is forgotten.
    [[nodiscard]] bool beenden(std::uint32_t id) override;

  private:
    struct Vormerkung;
    static void beendeFaellige(std::vector<Vormerkung>& vorgemerkt);

    Spaeter spaeter_;
    std::chrono::milliseconds gnadenfrist_;
    std::shared_ptr<std::vector<Vormerkung>>
        vorgemerkt_;  // shared with timers, which may outlive this object
};

}  // namespace wendel
