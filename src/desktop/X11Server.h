#pragma once
// Questions to the X server and the window manager that need no toolkit: atoms, properties, selections,
// extensions. The connection is the caller's. A failed request is no error: it gives 0, false or nothing.

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

namespace wendel {

struct XFreigabe {
    void operator()(void* zeiger) const { std::free(zeiger); }
};
template <class T>
using XAntwort = std::unique_ptr<T, XFreigabe>;

// The screen part of DISPLAY, which whoever connects follows.
int bildschirmDerUmgebung();

class X11Server {
  public:
    // An open connection, which outlives this.
    X11Server(xcb_connection_t* verbindung, int bildschirm);

    xcb_atom_t atom(const char* name) const;
    // The values of a 32-bit property of a window; empty when there is none.
    std::vector<std::uint32_t> werte(xcb_window_t fenster, const char* name) const;
    xcb_window_t auswahlBesitzer(xcb_atom_t auswahl) const;
    // A window manager runs that lists and activates windows.
    bool hatFenstermanager() const;
    bool hatErweiterung(const char* name) const;
    int bildschirmnummer() const { return bildschirm_; }
    xcb_window_t wurzel() const { return wurzel_; }

  protected:
    static constexpr std::uint32_t kHoechstlaenge = 4096;  // of a property, in units of four bytes

    xcb_connection_t* verbindung_;
    int bildschirm_;
    xcb_window_t wurzel_;
};

}  // namespace wendel
