#pragma once
#include <cstdint>
#include <string>

namespace wendel {

// A top-level window; 0 is none.
using Fensterhandle = std::uintptr_t;

// Pixels; right and bottom are exclusive.
struct Arbeitsbereich {
    int oben = 0, links = 0, rechts = 0, unten = 0;
};

// A place of the screen in logical pixels.
struct Punkt {
    int x = 0, y = 0;
    friend bool operator==(const Punkt&, const Punkt&) = default;
};

// The platform operations under the window helpers. They fail silently: false, 0, nothing.
class Fenstersystem {
  public:
    virtual ~Fenstersystem() = default;

    // The screen of the pointer without panels.
    virtual Arbeitsbereich arbeitsbereich() = 0;
    // Where the pointer is.
    virtual Punkt zeiger() = 0;

    virtual Fensterhandle vordergrundfenster() = 0;
    // Identifies who handles the window's input; equal for all windows of one program.
    virtual std::uint64_t fensterThread(Fensterhandle fenster) = 0;
    virtual void eingabeVerbinden(std::uint64_t vonThread, std::uint64_t zuThread, bool verbinden) = 0;
    // Activates the window where the desktop grants it (it does not while the user works in another program),
    // else raises it and asks for attention, and returns false.
    virtual bool vordergrundSetzen(Fensterhandle fenster) = 0;
    virtual bool istMinimiert(Fensterhandle fenster) = 0;
    virtual void wiederherstellen(Fensterhandle fenster) = 0;
    virtual void zeigen(Fensterhandle fenster) = 0;

    // Another program's window: exact title first, else the first that begins with it, case ignored. An empty
    // title is never found.
    virtual bool aktivierenNachTitel(const std::string& titel) = 0;

    virtual void sanduhr(bool an) = 0;
};

}  // namespace wendel
