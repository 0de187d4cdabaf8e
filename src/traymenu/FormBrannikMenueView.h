#pragma once
// What a window of the tray menu is asked to do by its form, and what the menu asks of the desktop. The
// window paints plain data and decides nothing; what the user does with it goes to the operations of
// FormBrannikMenue. All lengths are logical pixels; rows and columns lie in PicPaint.

#include <memory>
#include <string>
#include <vector>

#include "platform/ports/Fenstersystem.h"
#include "traymenu/Farbverlauf.h"
#include "traymenu/Menuemasse.h"
#include "traymenu/Menueplatzierung.h"
#include "traymenu/Tagestipp.h"

namespace wendel {

class FormBrannikMenue;

// From the desktop's colours; each pair are the ends of a row's gradient.
struct Menuefarben {
    Farbe flaecheOben = 0, flaecheUnten = 0;  // button face
    Farbe schrift = 0;                        // button text
    Farbe schriftGesperrt = 0;
    Farbe hervorhebungOben = 0, hervorhebungUnten = 0;
    Farbe hervorhebungSchrift = 0;
};

// One piece of writing in a row; what is wider than its column is elided.
struct Zeilentext {
    int x = 0, breite = 0;
    std::string text;  // one line
    friend bool operator==(const Zeilentext&, const Zeilentext&) = default;
};

// One row as it is to be painted.
struct Zeilenbild {
    int index = 0;  // the entry's number in the window, from 1
    Rechteck rechteck;
    bool trenner = false;  // a line and nothing else
    bool hervorgehoben = false;
    bool freigegeben = true;    // false: a head whose sub-menu is empty
    bool gruppenlinie = false;  // two lines of pixels at the row's upper edge: kLinieDunkel, kLinieHell
    Farbe oben = 0, unten = 0, schrift = 0;
    int symbolX = 0;     // left edge of the icon, kSymbolgroesse square and centred in height
    std::string symbol;  // "favorit", "erinnerung", "bewertung1" to "bewertung5", or ""
    Zeilentext zeit, sender, text;
    bool pfeil = false;        // a sub-menu opens here; drawn at the right edge
    bool offen = false;        // the sub-menu is open
    std::string name;          // for a screen reader: "20:15 ZDF, title"
    std::string beschreibung;  // for a screen reader, may be ""
    std::string tooltip;       // lines separated by "\n", "" for none
    friend bool operator==(const Zeilenbild&, const Zeilenbild&) = default;
};

// The whole window. The panel of the tip lies above the rows; empty rectangle: no panel.
struct Menuebild {
    Groesse fenster;
    Rechteck PictureTagestipp;
    Tagestippfelder tipp;
    bool tippHervorgehoben = false;
    std::string tippName;  // for a screen reader
    Rechteck PicPaint;
    Menuefarben farben;
    std::vector<Zeilenbild> zeilen;  // those of PicPaint from top to bottom
};

// MenueMenue: MenueAnzeigen, Trennleiste1, MenueErinnern, and, when offered, Trennleiste2 and
// MenueImTVZeigen.
struct Kontextmenue {
    Punkt ort;  // its top left corner in PicPaint
    bool imTVZeigen = false;
};
inline constexpr const char* kTextAnzeigen = "&Anzeigen";
inline constexpr const char* kTextErinnern = "&Erinnern";
inline constexpr const char* kTextImTVZeigen = "&Im TV zeigen";

// The window of one form. Made hidden. May be destroyed from inside any call that it makes to its form, its
// own timers' included: whatever the toolkit still needs then has to outlive this object on its own. Its
// destructor calls nothing of the form.
class FormBrannikMenueView {
  public:
    virtual ~FormBrannikMenueView() = default;

    // Differs between windows, never 0. Asked for only from the first showing on, so that a window may wait
    // until then with all that costs time.
    virtual Fensterhandle hwnd() = 0;

    virtual void setzeSchrift(const std::string& name, int punkt) = 0;
    // Of one line in that font.
    virtual int textbreite(const std::string& text) = 0;
    virtual Menuefarben farben() = 0;

    // Everything, at the next painting.
    virtual void zeichne(const Menuebild& bild) = 0;
    // The row of that index is replaced; the others stay.
    virtual void zeichneZeile(const Zeilenbild& zeile) = 0;
    virtual void zeichneTipp(bool hervorgehoben) = 0;

    // Shows the window there, above all others, and activates it. eltern is the menu window that it belongs
    // to, 0 for the top window: where a program can't place its windows, that tells where it goes.
    virtual void zeigen(const Rechteck& fenster, Fensterhandle eltern) = 0;
    virtual void verbergen() = 0;
    // Gives a visible window the keyboard back.
    virtual void aktivieren() = 0;

    // Interval of TimerEinblendung_Timer and TimerUnload_Timer in ms; 0 stops.
    virtual void setzeTimerEinblendung(int ms) = 0;
    virtual void setzeTimerUnload(int ms) = 0;

    // Returns while the context menu is open. Its end is reported by MenueMenue_Geschlossen, before or after
    // the command that was chosen.
    virtual void zeigeMenueMenue(const Kontextmenue& menue) = 0;
};

// What the menu needs of the desktop besides its windows.
class Menueumgebung {
  public:
    virtual ~Menueumgebung() = default;

    // The form outlives its view.
    virtual std::unique_ptr<FormBrannikMenueView> neueView(FormBrannikMenue& form) = 0;
    // The active one of this program's windows, 0 while another program has the keyboard.
    virtual Fensterhandle aktivesFenster() = 0;
    // The monitor at this place without its panels; of the nearest monitor when there is none.
    virtual Arbeitsbereich freieFlaeche(Punkt ort) = 0;
};

}  // namespace wendel
