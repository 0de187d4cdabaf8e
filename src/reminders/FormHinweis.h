#pragma once
// The reminder notice: a title line, the text, a list of twelve follow-up actions and OK. Here are the state
// of its controls and all behaviour; the window that shows it implements FormHinweisView and forwards what
// the user does. When a notice comes up, its sound and the foreground are the alarm loop's affair.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/Fenstersystem.h"
#include "platform/ports/Uhr.h"
#include "reminders/Hinweisjournal.h"
#include "reminders/cTermin.h"

namespace wendel {

// What the window does for the form. Calls come on the user-interface thread, in any order, also while
// hidden; but setzeFunktionen before all others.
class FormHinweisView {
  public:
    virtual ~FormHinweisView() = default;

    virtual void setzeTitel(const std::string& titel) = 0;  // LabelHinweisTitel
    virtual void setzeText(const std::string& text) = 0;    // LabelHinweisText, lines separated by CR LF
    virtual void setzeFunktionen(const std::vector<std::string>& zeilen) = 0;  // rows of ComboFunktion
    virtual void setzeAuswahl(int index) = 0;  // must not come back as a choice of the user

    // Height after the text, list and button below it.
    virtual void anpassen() = 0;
    // Centred in the free area, above all windows, no control focused, no key taken from another program. On
    // a window that is on the screen already: raise it, where it is.
    virtual void zeigen() = 0;
    virtual void verbergen() = 0;

    // Calls FormHinweis::TimerOKErlaubt_Timer once after that time; a running timer starts anew.
    virtual void starteOKTimer(int ms) = 0;

    // For ForceForeground; 0 while there is no window.
    virtual Fensterhandle fensterhandle() = 0;
};

// What comes of a notice.
class FormHinweisEmpfaenger {
  public:
    virtual ~FormHinweisEmpfaenger() = default;
    // A snoozed notice: append to the user's appointments, refresh and store. The notice is closed already.
    virtual void erneutErinnern(const TerminZeiger& termin) = 0;
    // The user has dealt with these entries; comes after erneutErinnern, so that a crash in between repeats
    // the notice rather than losing the new entry.
    virtual void hinweisBeantwortet(const std::vector<Hinweisschluessel>& schluessel) = 0;
};

struct Hinweisfunktion {
    std::string_view text;
    int minuten;  // 0: the reminder is closed
};
inline constexpr std::array<Hinweisfunktion, 12> kHinweisfunktionen = {{
    {"Termin schließen", 0},
    {"Erneut erinnern in 2 Minuten", 2},
    {"Erneut erinnern in 5 Minuten", 5},
    {"Erneut erinnern in 10 Minuten", 10},
    {"Erneut erinnern in 15 Minuten", 15},
    {"Erneut erinnern in 30 Minuten", 30},
    {"Erneut erinnern in 45 Minuten", 45},
    {"Erneut erinnern in 60 Minuten", 60},
    {"Erneut erinnern in 2 Stunden", 120},
    {"Erneut erinnern in 3 Stunden", 180},
    {"Erneut erinnern in 4 Stunden", 240},
    {"Erneut erinnern in 5 Stunden", 300},
}};

class FormHinweis {
  public:
    static constexpr std::string_view kFenstertitel = "Lomrick - Hinweis";
    static constexpr int kSperrzeitMs = 200;

    // All outlive the form.
    FormHinweis(Uhr& uhr, FormHinweisView& view, FormHinweisEmpfaenger& empfaenger);

    // Brings the notice up. While one is open the text is appended to it and the chosen row is kept; OK is
    // locked again for 200 ms in any case. schluessel are the entries that the text stands for.
    void hinweisen(const std::string& titel, const std::string& text,
                   const std::vector<Hinweisschluessel>& schluessel);

    // Arranges the window around its text.
    void Fit();

    bool offen() const { return offen_; }
    Fensterhandle fensterhandle() { return view_.fensterhandle(); }

    // What the user does, forwarded by the window.
    void ComboFunktion_Click(int index);           // a row was chosen
    void ComboFunktion_KeyPress(int zeichencode);  // a character typed while the list has the focus
    void cmdOK_Click();
    void TimerOKErlaubt_Timer();
    // Close box or Esc: like OK on the first row, and like it without effect during the lock. The window
    // itself never closes on its own.
    void Schliessen();

    // The state of the controls.
    const std::string& LabelHinweisTitel() const { return labelHinweisTitel_; }
    const std::string& LabelHinweisText() const { return labelHinweisText_; }
    int ComboFunktionListIndex() const { return comboFunktionListIndex_; }
    const std::string& TimerOKErlaubtTag() const { return timerOKErlaubtTag_; }
    int TimerOKErlaubtInterval() const { return timerOKErlaubtInterval_; }

  private:
    void sperren();
    void oeffnen(const std::string& text);
    void anhaengen(const std::string& text);
    void abschliessen(int index);
    TerminZeiger neuerTermin(int minuten) const;

    Uhr& uhr_;
    FormHinweisView& view_;
    FormHinweisEmpfaenger& empfaenger_;
    std::string labelHinweisTitel_ = "Achtung !";
    std::string labelHinweisText_ = "Der Zeitpunkt für die TV-Erinnerung ist erreicht.";
    int comboFunktionListIndex_ = 0;
    std::string timerOKErlaubtTag_;
    int timerOKErlaubtInterval_ = 0;
    bool offen_ = false;
    std::vector<Hinweisschluessel> schluessel_;
};

}  // namespace wendel
