#pragma once
// What the window and tray adapters need from the X server beyond Qt: other programs' windows and messages to
// the window manager, over Qt's own connection. Windows of other programs vanish at any moment; a failed
// request is no error.

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "desktop/X11Server.h"

namespace wendel {

class X11 : public X11Server {
  public:
    // Nothing where the toolkit does not run on X.
    static std::optional<X11> verbindung();

    // The title as the window manager shows it, UTF-8.
    std::string titel(xcb_window_t fenster) const;
    // The last active window that the manager knows of, 0 for none.
    xcb_window_t aktivesFenster() const;
    // Asks the window manager to activate a window as a pager would: restored, raised, focused.
    void aktiviere(xcb_window_t fenster) const;
    // Equal for all windows that one client of the server has made.
    std::uint32_t klient(xcb_window_t fenster) const;

    enum class Titelvergleich { Genau, AuchAnfang };
    // Another program's top-level window with this title, else, where that will do, the first whose title
    // begins with it; case ignored. 0 when there is none or the title is empty.
    xcb_window_t fremdesFenster(const std::string& titel, Titelvergleich vergleich) const;
    // Keys go to the window or to a dialog that belongs to it.
    bool hatEingabe(xcb_window_t fenster) const;
    // Asks for the window neither minimised nor maximised.
    void zeigeNormal(xcb_window_t fenster) const;

  private:
    X11(xcb_connection_t* verbindung, int bildschirm) : X11Server(verbindung, bildschirm) {}
    // What a pager tells the window manager about a window.
    void melde(xcb_window_t fenster, const char* nachricht, const std::array<std::uint32_t, 5>& werte) const;
    std::string textwert(xcb_window_t fenster, const char* name, const char* typ) const;
};

}  // namespace wendel
