#pragma once
#include <cstdint>
#include <string>

namespace wendel {

class Rechner {
  public:
    virtual ~Rechner() = default;
    // GetComputerName into a buffer of 16 characters: true on success; the text ends at its first NUL.
    [[nodiscard]] virtual bool rechnername(std::string& puffer) = 0;
    // Available physical memory in bytes, at most 2147483647.
    virtual std::int32_t freierSpeicher() = 0;
    // Uniform in [0,1), seeded from the system.
    virtual double zufall() = 0;
};

}  // namespace wendel
