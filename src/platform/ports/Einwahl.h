#pragma once
#include <optional>
#include <string>
#include <vector>

namespace wendel {

// The remote access service: which dial-up connections are up. A desktop tells of its modem, point-to-point
// or primary internet connection in its place.
class Einwahl {
  public:
    virtual ~Einwahl() = default;
    // The names of the active connections as bytes of the 8-bit code page, each perhaps with a zero and
    // something behind it; nothing when there is no such service. Quick enough for every second.
    virtual std::optional<std::vector<std::string>> aktiveVerbindungen() = 0;
};

}  // namespace wendel
