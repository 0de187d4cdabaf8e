#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace wendel {

class Rechner {
  public:
    virtual ~Rechner() = default;
    // GetComputerName into a buffer of 16 characters: true on success; the text ends at its first NUL.
    [[nodiscard]] virtual bool rechnername(std::string& puffer) = 0;
    // Available physical memory in bytes, at most 2147483647.
    virtual std::int32_t freierSpeicher() = 0;
    // The path of a numbered special folder of the platform (36 system, 37 its libraries, 38 programs);
    // nothing for one it does not know.
    virtual std::optional<std::string> spezialordner(int nummer) = 0;
    // Uniform in [0,1), seeded from the system.
    virtual double zufall() = 0;
};

}  // namespace wendel
