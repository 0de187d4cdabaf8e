#pragma once
#include <cstdint>
#include <span>

namespace wendel {

// The notification area, in terms of the 88-byte icon record (core/TaskbarIcon.h builds it). Failures are not
// reported: where there is no area, nothing is shown, and the icon appears when one comes.
class TaskleistenSymbol {
  public:
    virtual ~TaskleistenSymbol() = default;
    virtual void hinzufuegen(std::span<const std::uint8_t, 88> datensatz) = 0;
    virtual void aendern(std::span<const std::uint8_t, 88> datensatz) = 0;
    virtual void entfernen(std::uint32_t kennung) = 0;
};

}  // namespace wendel
