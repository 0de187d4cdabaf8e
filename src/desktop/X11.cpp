#include "desktop/X11.h"

#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "desktop/QtText.h"
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
constexpr std::uint32_t kEntfernen = 0;
constexpr int kHoechsteTiefe = 8;  // of dialogs that belong to dialogs, should they go in a circle

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

void X11::melde(xcb_window_t fenster, const char* nachricht,
                const std::array<std::uint32_t, 5>& werte) const {
    xcb_client_message_event_t ereignis{};
    ereignis.response_type = XCB_CLIENT_MESSAGE;
    ereignis.format = 32;
    ereignis.window = fenster;
    ereignis.type = atom(nachricht);
    std::copy(werte.begin(), werte.end(), ereignis.data.data32);
    xcb_send_event(verbindung_, 0, wurzel_,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&ereignis));
    xcb_flush(verbindung_);
}

void X11::aktiviere(xcb_window_t fenster) const {
    melde(fenster, "_NET_ACTIVE_WINDOW", {kQuelleSeitenleiste, XCB_CURRENT_TIME});
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

xcb_window_t X11::fremdesFenster(const std::string& titelteil, Titelvergleich vergleich) const {
    const QString gesucht = qtText(titelteil).toCaseFolded();
    if (gesucht.isEmpty()) return XCB_WINDOW_NONE;
    xcb_window_t beginntDamit = XCB_WINDOW_NONE;
    for (const std::uint32_t fenster : werte(wurzel_, "_NET_CLIENT_LIST")) {
        if (klient(fenster) == xcb_get_setup(verbindung_)->resource_id_base) continue;
        const QString name = qtText(titel(fenster)).toCaseFolded();
        if (name == gesucht) return fenster;
        if (beginntDamit == 0 && name.startsWith(gesucht)) beginntDamit = fenster;
    }
    return vergleich == Titelvergleich::AuchAnfang ? beginntDamit
                                                   : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

bool X11::hatEingabe(xcb_window_t fenster) const {
    // What is active the manager may say late, about a window that had the same number before: keys go where
    // the server says.
    const Antwortzeiger<xcb_get_input_focus_reply_t> antwort(
        xcb_get_input_focus_reply(verbindung_, xcb_get_input_focus(verbindung_), nullptr));
    if (!antwort || klient(antwort->focus) != klient(fenster)) return false;
    xcb_window_t aktiv = aktivesFenster();
    for (int tiefe = 0; aktiv != 0 && tiefe < kHoechsteTiefe; ++tiefe) {
        if (aktiv == fenster) return true;
        const std::vector<std::uint32_t> gehoertZu = werte(aktiv, "WM_TRANSIENT_FOR");
        aktiv = gehoertZu.empty() ? static_cast<xcb_window_t>(XCB_WINDOW_NONE) : gehoertZu[0];
    }
    return false;
}

void X11::zeigeNormal(xcb_window_t fenster) const {
    // Minimised windows are not mapped, and mapping is how they come back; to others it means nothing.
    xcb_map_window(verbindung_, fenster);
    melde(fenster, "_NET_WM_STATE",
          {kEntfernen, atom("_NET_WM_STATE_MAXIMIZED_VERT"), atom("_NET_WM_STATE_MAXIMIZED_HORZ"),
           kQuelleSeitenleiste});
}

bool X11::hatFenstermanager() const {
    // The property outlives a manager that has crashed; its window does not.
    const std::vector<std::uint32_t> kennung = werte(wurzel_, "_NET_SUPPORTING_WM_CHECK");
    if (kennung.size() != 1 || werte(kennung[0], "_NET_SUPPORTING_WM_CHECK") != kennung) return false;
    const std::vector<std::uint32_t> kann = werte(wurzel_, "_NET_SUPPORTED");
    const auto hat = [&](const char* name) {
        return std::find(kann.begin(), kann.end(), atom(name)) != kann.end();
    };
    return hat("_NET_CLIENT_LIST") && hat("_NET_ACTIVE_WINDOW");
}

bool X11::hatErweiterung(const char* name) const {
    const auto frage = xcb_query_extension(verbindung_, static_cast<std::uint16_t>(std::strlen(name)), name);
    const Antwortzeiger<xcb_query_extension_reply_t> antwort(
        xcb_query_extension_reply(verbindung_, frage, nullptr));
    return antwort && antwort->present != 0;
}

}  // namespace wendel
