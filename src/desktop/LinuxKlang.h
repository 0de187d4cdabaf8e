#pragma once
// Sound through a player process of the desktop (pw-play, paplay or aplay): nothing is linked, nothing waits,
// and where nothing can be played nothing is heard.

#include <string>
#include <vector>

#include "platform/ports/Klang.h"

namespace wendel {

// The file itself, or the shipped one of its name: the settings name a sound in the programme folder that
// need not have been copied there. Native; "" when there is neither.
std::string klangdatei(const std::string& pfad);

// The players found, in the order in which they are tried.
std::vector<std::string> klangspieler();

class LinuxKlang : public Klang {
  public:
    // The folder in which the kernel lists sound cards; tests put another.
    explicit LinuxKlang(std::string kartenordner = "/proc/asound");

    // Cards that can play; at least 1 when a sound server answers on its socket.
    int ausgabegeraete() override;
    // The first player found plays; the next one takes over when it fails. A file that is not there is looked
    // for by its name among the shipped files.
    void spieleAsynchron(const std::string& pfad) override;

  private:
    std::string kartenordner_;
};

}  // namespace wendel
