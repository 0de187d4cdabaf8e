#pragma once
// Facts about this machine: its name, its free memory, chance.

#include <random>
#include <string>
#include <string_view>

#include "platform/ports/Rechner.h"

namespace wendel {

// The host name up to its first ".", in upper case, at most 15 characters.
std::string rechnernameAusHostname(std::string_view hostname);

// Bytes from the text of /proc/meminfo, clamped to 2147483647; 0 when it has no usable line.
std::int32_t freierSpeicherAus(std::string_view meminfo);

class LinuxRechner : public Rechner {
  public:
    LinuxRechner();

    // WENDEL_RECHNER, when set and not empty, stands in for the host name; the same rule applies to it. The
    // rest of the buffer behind the closing NUL stays as it was.
    [[nodiscard]] bool rechnername(std::string& puffer) override;
    std::int32_t freierSpeicher() override;
    std::optional<std::string> spezialordner(int nummer) override;
    double zufall() override;

  private:
    std::mt19937_64 zufall_;
};

}  // namespace wendel
