#include "desktop/X11.h"

#include <QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/Text.h"

namespace wendel {
namespace {

struct Freigabe {
    void operator()(void* zeiger) const { std::free(zeiger); }
};
template <class T>
using Antwortzeiger = std::unique_ptr<T, Freigabe>;

constexpr std::uint32_t kHoechstlaenge = 4096;  // in units of four bytes
constexpr std::uint32_t kQuelleSeitenleiste = 2;

// The screen part of DISPLAY, which Qt has followed when it connected.
int bildschirmDerUmgebung() {
    char* rechner = nullptr;
    int anzeige = 0;
    int bildschirm = 0;
    const bool lesbar = xcb_parse_display(nullptr, &rechner, &anzeige, &bildschirm) != 0;
    std::free(rechner);
    return lesbar ? bildschirm : 0;
}

}  // namespace

std::optional<X11> X11::verbindung() {
    auto* qt = qGuiApp != nullptr ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (qt == nullptr || qt->connection() == nullptr) return std::nullopt;
    const int nummer = bildschirmDerUmgebung();
    auto schirme = xcb_setup_roots_iterator(xcb_get_setup(qt->connection()));
    for (int i = 0; i < nummer && schirme.rem > 1; ++i)
        xcb_screen_next(&schirme);
    return X11(qt->connection(), schirme.data->root, nummer);
}

xcb_atom_t X11::atom(const char* name) const {
    const auto frage = xcb_intern_atom(verbindung_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Antwortzeiger<xcb_intern_atom_reply_t> antwort(xcb_intern_atom_reply(verbindung_, frage, nullptr));
    return antwort ? antwort->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::vector<std::uint32_t> X11::werte(xcb_window_t fenster, const char* name) const {
    const auto frage =
        xcb_get_property(verbindung_, 0, fenster, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, kHoechstlaenge);
    const Antwortzeiger<xcb_get_property_reply_t> antwort(
        xcb_get_property_reply(verbindung_, frage, nullptr));
    if (!antwort || antwort->format != 32) return {};
    const auto* anfang = static_cast<const std::uint32_t*>(xcb_get_property_value(antwort.get()));
    return {anfang, anfang + antwort->value_len};
}

std::string X11::textwert(xcb_window_t fenster, const char* name, const char* typ) const {
    const auto frage = xcb_get_property(verbindung_, 0, fenster, atom(name), atom(typ), 0, kHoechstlaenge);
    const Antwortzeiger<xcb_get_property_reply_t> antwort(
        xcb_get_property_reply(verbindung_, frage, nullptr));
    if (!antwort || antwort->format != 8) return {};
    const auto* anfang = static_cast<const char*>(xcb_get_property_value(antwort.get()));
    return {anfang, antwort->value_len};
}

std::string X11::titel(xcb_window_t fenster) const {
    std::string text = textwert(fenster, "_NET_WM_NAME", "UTF8_STRING");
    if (!text.empty()) return text;
    // Old programs write Latin-1, whose characters stand at the same places in the code page.
    return ausWindows1252(textwert(fenster, "WM_NAME", "STRING"));
}

xcb_window_t X11::aktivesFenster() const {
    const std::vector<std::uint32_t> aktiv = werte(wurzel_, "_NET_ACTIVE_WINDOW");
    return aktiv.empty() ? static_cast<xcb_window_t>(XCB_WINDOW_NONE) : aktiv[0];
}

void X11::aktiviere(xcb_window_t fenster) const {
    xcb_client_message_event_t nachricht{};
    nachricht.response_type = XCB_CLIENT_MESSAGE;
    nachricht.format = 32;
    nachricht.window = fenster;
    nachricht.type = atom("_NET_ACTIVE_WINDOW");
    nachricht.data.data32[0] = kQuelleSeitenleiste;
    nachricht.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(verbindung_, 0, wurzel_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&nachricht));
    xcb_flush(verbindung_);
}

xcb_window_t X11::auswahlBesitzer(xcb_atom_t auswahl) const {
    const auto frage = xcb_get_selection_owner(verbindung_, auswahl);
    const Antwortzeiger<xcb_get_selection_owner_reply_t> antwort(
        xcb_get_selection_owner_reply(verbindung_, frage, nullptr));
    return antwort ? antwort->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

std::uint32_t X11::klient(xcb_window_t fenster) const {
    return fenster & ~xcb_get_setup(verbindung_)->resource_id_mask;
}

}  // namespace wendel
