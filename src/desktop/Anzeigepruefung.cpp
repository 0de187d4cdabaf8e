#include "desktop/Anzeigepruefung.h"

#include <xcb/xcb.h>

#include <string>
#include <string_view>

#include "desktop/Umgebung.h"

namespace wendel {

bool xErreichbar() {
    if (ausUmgebung("DISPLAY").empty()) return false;
    xcb_connection_t* verbindung = xcb_connect(nullptr, nullptr);
    const bool gut = xcb_connection_has_error(verbindung) == 0;
    xcb_disconnect(verbindung);
    return gut;
}

bool waylandErreichbar() {
    std::string pfad = ausUmgebung("WAYLAND_DISPLAY");
    if (pfad.empty()) return false;
    if (pfad.front() != '/') pfad = ausUmgebung("XDG_RUNTIME_DIR") + "/" + pfad;
    return antwortet(pfad);
}

namespace {

bool plattformErreichbar(std::string_view plattform) {
    if (plattform == "xcb") return xErreichbar();
    if (plattform.starts_with("wayland")) return waylandErreichbar();
    return true;
}

}  // namespace

bool anzeigeErreichbar() {
    const std::string plattformen = ausUmgebung("QT_QPA_PLATFORM");
    if (plattformen.empty()) return xErreichbar() || waylandErreichbar();
    // "wayland;xcb" is a list of preferences; what follows a ":" are arguments of the platform.
    std::string_view rest = plattformen;
    while (!rest.empty()) {
        const std::string_view eine = rest.substr(0, rest.find(';'));
        if (plattformErreichbar(eine.substr(0, eine.find(':')))) return true;
        rest.remove_prefix(eine.size() == rest.size() ? rest.size() : eine.size() + 1);
    }
    return false;
}

}  // namespace wendel
