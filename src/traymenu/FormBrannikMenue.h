#pragma once
// One window of the tray menu, the top one or a sub-menu: its entries, the highlighted one, the hover
// countdown, keyboard, placement and the rule that closes the whole tree. Knows no toolkit: its window is a
// FormBrannikMenueView. Which entries there are is left to Menueinhalt, what they do to Menuebefehle.
//
//     auto& menue = BuildTrayMenu(...);       // the tree, hidden
//     menue.ShowObermenue(pointer);           // to be called again without building anew

#include <memory>
#include <string>
#include <vector>

#include "traymenu/FormBrannikMenueView.h"
#include "traymenu/Menueaktionen.h"
#include "traymenu/Menuebefehle.h"
#include "traymenu/Menuespalten.h"
#include "traymenu/ModulBrannikMenue.h"
#include "traymenu/Tagestipp.h"
#include "traymenu/cMenuePunkt.h"
#include "tvdb/Markierungspflege.h"
#include "tvdb/Senderliste.h"

namespace wendel {

// What all windows of the menu share, and what outlives them all.
struct Menuekontext {
    Menueumgebung& umgebung;
    Menueaktionen& aktionen;
    GeladeneMenues& geladene;
    const Sendersammlung& sender;  // all channels
    const Markierungslisten& markierungen;
};

// Keys that the menu knows. Space counts as Enter, Shift+F10 as the menu key.
enum class Menuetaste { Hoch, Runter, Links, Rechts, Pos1, Ende, Enter, Esc, Menue, Zeichen };

inline constexpr int kTwipsJePixel = 15;

class FormBrannikMenue {
  public:
    static constexpr int kZeitgeberMs = 100;
    static constexpr int kEinblendungsticks = 3;
    static constexpr int kMausLinks = 1, kMausRechts = 2;

    // kopf is the entry that owns this window as its sub-menu, null for the top window. The window is made
    // now, hidden.
    explicit FormBrannikMenue(const Menuekontext& kontext, cMenuePunkt* kopf = nullptr);
    ~FormBrannikMenue();
    FormBrannikMenue(const FormBrannikMenue&) = delete;
    FormBrannikMenue& operator=(const FormBrannikMenue&) = delete;

    // --- the model ---

    // Appends; the window owns the entry and becomes its ParentForm.
    cMenuePunkt& anhaengen(std::unique_ptr<cMenuePunkt> punkt);
    // In the order of the rows; entry n of the window is element n - 1.
    const std::vector<std::unique_ptr<cMenuePunkt>>& MenuePunkte() const { return menuePunkte_; }
    // No entry that could be shown: as a sub-menu it never opens.
    bool leer() const { return tastenziele().empty(); }
    FormBrannikMenue* eltern() const { return kopf_ ? kopf_->ParentForm : nullptr; }

    // The panel of the tip, for the top window: shown when TagesTippAnzeigen is set.
    bool TagesTippAnzeigen = false;
    Tagestippfelder tagestipp;

    // --- showing ---

    // Lays out, paints, starts both timers, shows and activates the window with its lower right corner at
    // that place of the screen, inside the free area there. Opens with nothing highlighted.
    void ShowObermenue(Punkt zeiger);
    // The same beside the parent window, y pixels below its top; for cMenuePunkt::ShowUnterMenue.
    void ShowNebenEltern(int y);
    // Invisible, timers stopped, its sub-menus with it; the entries stay.
    void verbergen();

    void PaintMenue();
    // index from 1; others are ignored.
    void PaintMenueItem(int index);
    // The mouse is in the sub-menu with that handle: its head stays highlighted here, so that no countdown
    // closes it.
    void ActivateParent(Fensterhandle hwnd);

    // --- what the user does, forwarded by the window; places in PicPaint ---

    void PicPaint_MouseMove(int x, int y);
    void PicPaint_MouseUp(int knopf, int x, int y);
    // Acts on the window of the tree that has the highlighted entry, whichever has the keyboard. zeichen is
    // the character typed, for Menuetaste::Zeichen.
    void PicPaint_KeyDown(Menuetaste taste, const std::string& zeichen = {});
    void PictureTagestipp_MouseMove();
    void PictureTagestipp_Click();
    void TimerEinblendung_Timer();
    void TimerUnload_Timer();
    // The commands of the context menu, for the entry that it was opened on.
    void MenueAnzeigen_Click();
    void MenueErinnern_Click();
    void MenueImTVZeigen_Click();
    void MenueMenue_Geschlossen();
    // The entry as if clicked with the left button, also a screen reader's press: an action is done and the
    // menu hidden, a head opens at once. Other indices than those of entries are ignored.
    void waehlen(int index);

    // --- the state ---

    bool Visible() const { return sichtbar_; }
    Fensterhandle hwnd() const { return view_->hwnd(); }
    Fensterhandle ChildHwnd() const { return childHwnd_; }
    int EinblendungsCounter() const { return einblendungsCounter_; }
    int IsSelected() const { return isSelected_; }
    int MausX() const { return mausX_; }
    int MausY() const { return mausY_; }
    int MenueItemX() const { return spalten_.textX; }
    int StartPosY() const { return Menuemasse::kInnenrand; }
    int SenderSpaltenbreite() const { return spalten_.senderbreite; }
    int TimerEinblendungInterval() const { return timerEinblendungInterval_; }
    int TimerUnloadInterval() const { return timerUnloadInterval_; }
    bool MenueMenueOffen() const { return menueMenueOffen_; }
    // Where the window was shown last.
    const Rechteck& fenster() const { return fenster_; }

  private:
    void ausmessen(const Arbeitsbereich& frei);
    void zeige(Punkt linksOben);
    void setzeZeitgeber(int ms);
    Groesse fenstergroesse() const;
    Rechteck picPaint() const;

    cMenuePunkt* punkt(int index) const;
    bool waehlbar(int index) const;
    Rechteck zeilenrechteck(int index) const;
    int indexBei(int x, int y) const;
    int indexVon(const FormBrannikMenue& untermenue) const;
    Zeilenbild zeilenbild(int index) const;

    bool hatTipp() const { return TagesTippAnzeigen && tagestipp.TagesTippPos != 0; }
    void hervorheben(int index, bool tipp = false);
    FormBrannikMenue* offenesKind() const;
    void verbirgUntermenue();
    void schliesseUntermenue();
    void folgeDerAuswahl();
    void oeffneMenueMenue(int index, Punkt ort);

    FormBrannikMenue& tastenziel();
    void taste(Menuetaste taste, const std::string& zeichen);
    std::vector<int> tastenziele() const;
    void tastenwahl(int ziel);
    void schritt(int richtung);
    void springeZu(const std::string& zeichen);
    void hinein();
    void zurueck();
    void abbrechen();
    void bestaetigen();
    void kontextmenueDerZeile();

    const Menuekontext kontext_;
    cMenuePunkt* const kopf_;
    std::vector<std::unique_ptr<cMenuePunkt>> menuePunkte_;
    std::unique_ptr<FormBrannikMenueView> view_;

    bool sichtbar_ = false;
    Rechteck fenster_;
    Menuespalten spalten_;
    Fensterhandle childHwnd_ = 0;
    int einblendungsCounter_ = 0;
    int isSelected_ = 0;
    bool tippGewaehlt_ = false;
    int mausX_ = -1, mausY_ = -1;
    int timerEinblendungInterval_ = 0, timerUnloadInterval_ = 0;
    bool menueMenueOffen_ = false;
    Menuebefehl kontextbefehl_;
};

}  // namespace wendel
