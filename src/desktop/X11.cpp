#include "desktop/X11.h"

#include <QGuiApplication>
#include <algorithm>

#include "desktop/QtText.h"
#include "platform/Text.h"

namespace wendel {
namespace {

constexpr std::uint32_t kQuelleSeitenleiste = 2;
constexpr std::uint32_t kEntfernen = 0;
constexpr int kHoechsteTiefe = 8;  // of dialogs that belong to dialogs, should they go in a circle

}  // namespace

std::optional<X11> X11::verbindung() {
    auto* qt = qGuiApp != nullptr ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (qt == nullptr || qt->connection() == nullptr) return std::nullopt;
    return X11(qt->connection(), bildschirmDerUmgebung());
}

std::string X11::textwert(xcb_window_t fenster, const char* name, const char* typ) const {
    const auto frage = xcb_get_property(verbindung_, 0, fenster, atom(name), atom(typ), 0, kHoechstlaenge);
    const XAntwort<xcb_get_property_reply_t> antwort(xcb_get_property_reply(verbindung_, frage, nullptr));
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
    const XAntwort<xcb_get_input_focus_reply_t> antwort(
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

}  // namespace wendel
