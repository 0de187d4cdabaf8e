#pragma once
// The appointment editor: date, time, text and repetition of one appointment of the user's own. Here are its
// checks and what comes of them; the window that shows it implements FormTerminView and forwards what the
// user does. Who keeps and stores the appointment is the main form's affair.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/ports/Meldungen.h"
#include "platform/ports/Uhr.h"
#include "reminders/cTermin.h"

namespace wendel {

// What stands in the controls.
struct Termineingabe {
    std::string TextDatum;
    std::string TextUhrzeit;
    std::string TextInhalt;
    std::int16_t Intervall = intervall::kEinmal;  // the selected one of the four options

    friend bool operator==(const Termineingabe&, const Termineingabe&) = default;
};

enum class Terminfeld { Datum, Uhrzeit, Inhalt };

// What the window does for the form. Calls come on the user-interface thread.
class FormTerminView {
  public:
    virtual ~FormTerminView() = default;

    virtual void setzeEingabe(const Termineingabe& eingabe) = 0;
    virtual Termineingabe eingabe() const = 0;

    // Shows the dialog in front, modal to the list window, the cursor in the given field, and returns when
    // verbergen() was called or the program ends. Messages run meanwhile: timers and control lines come in.
    virtual void zeigenModal(Terminfeld anfang) = 0;
    virtual void verbergen() = 0;
    virtual void nachVorn() = 0;
    // After a message about that field: the cursor goes there, its text selected, ready to be typed over.
    virtual void zumFeld(Terminfeld feld) = 0;
};

class FormTermin {
  public:
    static constexpr std::string_view kFenstertitel = "Erinnerung";

    // All outlive the form.
    FormTermin(Uhr& uhr, Meldungen& meldungen, FormTerminView& view);

    // Null: a new entry, which starts with the present minute; the user's confirmation makes it, active. Else
    // the given record is edited: WeckZeit, WeckText and Intervall change when the user confirms, nothing
    // else and not before. True when confirmed; false leaves the argument as it was. Not while offen().
    // With the confirmation itself, when the argument has changed already, bestaetigt is called: this call
    // may return much later, when the editor was answered in the midst of a timer's work.
    bool ShowAndGetTermin(TerminZeiger& termin, const std::function<void()>& bestaetigt = {});

    // Until the user has confirmed or cancelled.
    bool offen() const { return vorgang_ != nullptr; }
    void nachVorn() { view_.nachVorn(); }

    // What the user does, forwarded by the window. Closing the window and Esc are cmdCancel.
    void cmdOK_Click();
    void cmdCancel_Click();

    // "ok" after a valid confirmation, else empty.
    const std::string& Tag() const { return tag_; }

  private:
    struct Vorgang {
        TerminZeiger& termin;
        const std::function<void()>& bestaetigt;
        bool ok = false;
    };

    void beanstanden(const std::string& text, const std::string& titel, Terminfeld feld);

    Uhr& uhr_;
    Meldungen& meldungen_;
    FormTerminView& view_;
    std::string tag_;
    Vorgang* vorgang_ = nullptr;  // the one that waits for the user
};

}  // namespace wendel
