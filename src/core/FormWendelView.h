#pragma once
// What the main form asks of its window: a list of three columns with its popup menu, the live-update label
// and its link, a status bar. The window decides nothing; what the user does with it goes to the operations
// of FormWendel of the same name.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/Terminzeilen.h"
#include "platform/ports/Fenstersystem.h"

namespace wendel {

class FormWendelView {
  public:
    virtual ~FormWendelView() = default;

    // The window's handle, valid also while it is hidden; 0 until it is shown for the first time.
    virtual Fensterhandle hwnd() = 0;

    virtual void zeigen() = 0;      // visible, not modal
    virtual void verstecken() = 0;  // gone from the screen, still loaded
    // Raises a visible window above the others and activates it: the user has asked for it.
    virtual void nachVorn() = 0;

    // ListViewTermineListe: all rows at once, and the selected one (from 0) if any. Called when something
    // changed.
    virtual void setzeZeilen(const std::vector<Terminzeile>& zeilen, std::optional<std::size_t> auswahl) = 0;
    // mnuEditieren and mnuLöschen of PopupTerminliste: both enabled or both not.
    virtual void setzeMenuezustand(bool zeileGewaehlt) = 0;
    // Pops PopupTerminliste up where the user has just asked for it. mnuEditieren is its default item or
    // none. Returns while the menu is still open.
    virtual void zeigePopupTerminliste(bool editierenAlsVorgabe) = 0;
    // LabelAnzLiveUpdateEinstellungen.
    virtual void setzeLiveUpdateEinstellungen(const std::string& text) = 0;

    // The status bar. Empty: nothing to report, the window may show what it likes there.
    virtual void setzeStatustext(const std::string& text) = 0;

    // Calls FormWendel::VorgemerktesAusfuehren() once, as soon as nothing else is running.
    virtual void rufeVorgemerktesBald() = 0;

    // The window goes for good and with it the program's event loop. May be called from inside a nested loop.
    virtual void entladen() = 0;
};

}  // namespace wendel
