#include "desktop/X11Server.h"

#include <algorithm>
#include <cstring>

namespace wendel {

int bildschirmDerUmgebung() {
    char* rechner = nullptr;
    int anzeige = 0;
    int bildschirm = 0;
    const bool lesbar = xcb_parse_display(nullptr, &rechner, &anzeige, &bildschirm) != 0;
    std::free(rechner);
    return lesbar ? bildschirm : 0;
}

X11Server::X11Server(xcb_connection_t* verbindung, int bildschirm)
    : verbindung_(verbindung), bildschirm_(bildschirm) {
    auto schirme = xcb_setup_roots_iterator(xcb_get_setup(verbindung));
    for (int i = 0; i < bildschirm && schirme.rem > 1; ++i)
        xcb_screen_next(&schirme);
    wurzel_ = schirme.data->root;
}

xcb_atom_t X11Server::atom(const char* name) const {
    const auto frage = xcb_intern_atom(verbindung_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const XAntwort<xcb_intern_atom_reply_t> antwort(xcb_intern_atom_reply(verbindung_, frage, nullptr));
    return antwort ? antwort->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::vector<std::uint32_t> X11Server::werte(xcb_window_t fenster, const char* name) const {
    const auto frage =
        xcb_get_property(verbindung_, 0, fenster, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, kHoechstlaenge);
    const XAntwort<xcb_get_property_reply_t> antwort(xcb_get_property_reply(verbindung_, frage, nullptr));
    if (!antwort || antwort->format != 32) return {};
    const auto* anfang = static_cast<const std::uint32_t*>(xcb_get_property_value(antwort.get()));
    return {anfang, anfang + antwort->value_len};
}

xcb_window_t X11Server::auswahlBesitzer(xcb_atom_t auswahl) const {
    const auto frage = xcb_get_selection_owner(verbindung_, auswahl);
    const XAntwort<xcb_get_selection_owner_reply_t> antwort(
        xcb_get_selection_owner_reply(verbindung_, frage, nullptr));
    return antwort ? antwort->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

bool X11Server::hatFenstermanager() const {
    // The property outlives a manager that has crashed; its window does not.
    const std::vector<std::uint32_t> kennung = werte(wurzel_, "_NET_SUPPORTING_WM_CHECK");
    if (kennung.size() != 1 || werte(kennung[0], "_NET_SUPPORTING_WM_CHECK") != kennung) return false;
    const std::vector<std::uint32_t> kann = werte(wurzel_, "_NET_SUPPORTED");
    const auto hat = [&](const char* name) {
        return std::find(kann.begin(), kann.end(), atom(name)) != kann.end();
    };
    return hat("_NET_CLIENT_LIST") && hat("_NET_ACTIVE_WINDOW");
}

bool X11Server::hatErweiterung(const char* name) const {
    const auto frage = xcb_query_extension(verbindung_, static_cast<std::uint16_t>(std::strlen(name)), name);
    const XAntwort<xcb_query_extension_reply_t> antwort(
        xcb_query_extension_reply(verbindung_, frage, nullptr));
    return antwort && antwort->present != 0;
}

}  // namespace wendel
