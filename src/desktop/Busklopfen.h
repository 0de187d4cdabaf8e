#pragma once
// Whether a message bus is alive, before anything waits for it: connecting through a toolkit or a library has
// no limit when the bus does not answer.

#include <string>

#include "desktop/Dateideskriptor.h"

namespace wendel {

// The socket of a bus address ("unix:path=..."); "" for a bus that is not on this machine's file system.
std::string bussocket(const std::string& adresse);

// Has sent the first line of the bus protocol: readable soon when the bus is alive. An empty descriptor when
// there is nobody to talk to. Never waits.
Dateideskriptor klopfeAn(const std::string& socketpfad);

// Somebody takes connections there and has said nothing for so long.
bool istStumm(const std::string& socketpfad, int ms);

}  // namespace wendel
