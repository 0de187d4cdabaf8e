#pragma once
// What the tray menu can set going. The main program implements it; the menu knows no more of it.

#include <cstdint>
#include <string>

namespace wendel {

// Called on the user-interface thread from inside an event of a menu window. Any of these may discard all
// menu windows, that one included; none throws.
class Menueaktionen {
  public:
    virtual ~Menueaktionen() = default;

    virtual void kurzzeitWecker(std::int16_t minuten) = 0;
    // The list of appointments, in front.
    virtual void wendelAnzeigen() = 0;
    // A command text for the main programme guide, which is started if need be.
    virtual void hauptanwendung(const std::string& befehlstext) = 0;
    // The end of the program, after its questions; the user may cancel.
    virtual void beenden() = 0;
    // The guide was told to mark a broadcast: queries and main form are to follow.
    virtual void nachErinnern() = 0;
    // Whether imTVZeigen can do anything; the menu does not offer it otherwise.
    virtual bool kannImTVZeigen() = 0;
    virtual void imTVZeigen(const std::string& senderkennung) = 0;
};

}  // namespace wendel
