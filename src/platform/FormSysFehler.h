#pragma once
// The technical-error dialog: a message, details that can be unfolded, retry where the caller offers it;
// waited for, or left standing while the program goes on. State and behaviour are here, its window is a
// FormSysFehlerView. Whether something is worth such a dialog is the caller's affair.

#include <cstdint>
#include <string>

#include "platform/ModulFenster.h"

namespace wendel {

// What the height of the dialog is made of. Lower edges are in twips from the inner top and hold the margin
// below the controls already.
struct SysFehlerMasse {
    ModulFenster::Formmasse form;
    int unterkanteKnoepfe = 0;      // cmdOK, cmdDetails, cmdWiederholen
    int unterkanteTextDetails = 0;  // LabelDetails and TextDetails, below the buttons
};

class FormSysFehlerView {
  public:
    virtual ~FormSysFehlerView() = default;

    virtual void setzeCaption(const std::string& titel) = 0;
    virtual void setzeLabelText(const std::string& text) = 0;  // lines end in CR LF
    virtual void setzeTextDetails(const std::string& text) = 0;
    virtual void setzeCmdDetailsCaption(const std::string& text) = 0;
    // Hidden, or left of cmdDetails, which is left of cmdOK.
    virtual void setzeCmdWiederholenSichtbar(bool sichtbar) = 0;

    // After the texts now shown.
    virtual SysFehlerMasse masse() = 0;
    // Outer height in twips. What lies below it is cut off and out of the keyboard's reach.
    virtual void setzeHoehe(int twips) = 0;

    // Comes back after verbergen(), or when the program ends. Timers and control lines run meanwhile.
    virtual void zeigenModal() = 0;
    // Comes back at once and takes the keyboard from no other window; one that is shown already stays put.
    virtual void zeigen() = 0;
    virtual void verbergen() = 0;
};

// The names are those of the dialog's parameters.
struct SysFehler {
    std::string Fehlertext{};
    std::int32_t ErrNumber = 0;  // 0: there is none, and neither source nor description are shown
    std::string ErrSource{};
    std::string ErrDescription{};
    std::string DetailText{};
    std::string FensterCaption{};
    bool ButtonWiederholen = false;
    bool DetailsAufklappen = false;
    bool NurAnzeigenUndStehenLassen = false;
};

enum class SysFehlerErgebnis : std::int32_t { Keines = 0, Ok = 1, Wiederholen = 2 };

class FormSysFehler {
  public:
    // The view outlives the form.
    explicit FormSysFehler(FormSysFehlerView& view) : view_(view) {}

    // Ok or Wiederholen, once the user has answered (Ok when the program ends before); Keines at once with
    // NurAnzeigenUndStehenLassen. One that is left standing takes the texts of the next such call in place of
    // its own, its details as the user has left them. Not to be called while the same form waits for its
    // answer.
    SysFehlerErgebnis ShowFehler(const SysFehler& fehler);

    // What the user does, forwarded by the window.
    void cmdOK_Click();
    void cmdWiederholen_Click();
    void cmdDetails_Click();
    void Schliessen();  // close box or Esc: like OK

    SysFehlerErgebnis ergebnis() const { return ergebnis_; }
    // "ausgeklappt" while the details are shown, else "".
    const std::string& cmdDetailsTag() const { return cmdDetailsTag_; }

  private:
    void beantworte(SysFehlerErgebnis ergebnis);
    void klappe(bool aus);

    FormSysFehlerView& view_;
    SysFehlerErgebnis ergebnis_ = SysFehlerErgebnis::Keines;
    std::string cmdDetailsTag_;
    bool offen_ = false;
};

}  // namespace wendel
