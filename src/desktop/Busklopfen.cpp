#include "desktop/Busklopfen.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <charconv>
#include <string_view>

namespace wendel {
namespace {

// "%2f" and its like, as addresses escape characters.
std::string entschluesselt(std::string_view text) {
    std::string ergebnis;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char zeichen = 0;
        const char* ziffern = text.data() + i + 1;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(ziffern, ziffern + 2, zeichen, 16).ptr == ziffern + 2) {
            ergebnis += static_cast<char>(zeichen);
            i += 2;
        } else {
            ergebnis += text[i];
        }
    }
    return ergebnis;
}

std::string hexziffern(const std::string& text) {
    constexpr std::string_view kZiffern = "0123456789abcdef";
    std::string ergebnis;
    for (const char zeichen : text) {
        ergebnis += kZiffern[static_cast<unsigned char>(zeichen) >> 4];
        ergebnis += kZiffern[static_cast<unsigned char>(zeichen) & 15];
    }
    return ergebnis;
}

}  // namespace

std::string bussocket(const std::string& adresse) {
    constexpr std::string_view kPfad = "unix:path=";
    if (!adresse.starts_with(kPfad)) return {};
    const std::string_view rest = std::string_view(adresse).substr(kPfad.size());
    return entschluesselt(rest.substr(0, rest.find_first_of(";,")));
}

Dateideskriptor klopfeAn(const std::string& socketpfad) {
    sockaddr_un ziel{};
    ziel.sun_family = AF_UNIX;
    if (socketpfad.size() >= sizeof ziel.sun_path) return {};
    socketpfad.copy(ziel.sun_path, socketpfad.size());
    Dateideskriptor fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const std::string zeile =
        std::string(1, '\0') + "AUTH EXTERNAL " + hexziffern(std::to_string(::geteuid())) + "\r\n";
    if (!fd || ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&ziel), sizeof ziel) != 0 ||
        ::send(fd.get(), zeile.data(), zeile.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(zeile.size()))
        return {};
    return fd;
}

bool istStumm(const std::string& socketpfad, int ms) {
    const Dateideskriptor fd = klopfeAn(socketpfad);
    pollfd antwort{fd.get(), POLLIN, 0};
    return fd && ::poll(&antwort, 1, ms) == 0;
}

}  // namespace wendel
