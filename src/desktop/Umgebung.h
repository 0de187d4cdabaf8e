#pragma once
// Small questions that several adapters of this folder ask the environment. Header only: the display check
// links nothing else of ours.

#include <sys/socket.h>
#include <sys/un.h>

#include <cstdlib>
#include <string>

#include "desktop/Dateideskriptor.h"

namespace wendel {

// The variable's value, "" when it is not set.
inline std::string ausUmgebung(const char* name) {
    const char* wert = std::getenv(name);
    return wert ? wert : "";
}

// True when somebody listens on the socket. Connected, not only looked at: a server that crashed leaves its
// socket behind. Absolute paths only; never waits.
inline bool antwortet(const std::string& socketpfad) {
    sockaddr_un adresse{};
    adresse.sun_family = AF_UNIX;
    if (!socketpfad.starts_with('/') || socketpfad.size() >= sizeof adresse.sun_path) return false;
    socketpfad.copy(adresse.sun_path, socketpfad.size());
    const Dateideskriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return fd && ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&adresse), sizeof adresse) == 0;
}

}  // namespace wendel
