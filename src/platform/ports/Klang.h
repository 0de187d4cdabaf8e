#pragma once
#include <string>

namespace wendel {

class Klang {
  public:
    virtual ~Klang() = default;
    // Number of wave output devices.
    virtual int ausgabegeraete() = 0;
    // Starts playing a wave file and returns; silent when it can't be played. "" plays nothing.
    virtual void spieleAsynchron(const std::string& pfad) = 0;
};

}  // namespace wendel
