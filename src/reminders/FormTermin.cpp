#include "reminders/FormTermin.h"

#include <cassert>
#include <memory>

#include "platform/Text.h"
#include "reminders/Termineingabefelder.h"

namespace wendel {
namespace {

constexpr std::string_view kOk = "ok";
constexpr std::size_t kLaengsterWeckText = 65535;  // characters, as the settings file counts them

// The time is the field that nearly every entry changes: a new one starts with today, and an edited one is
// mostly put off. The date is one Shift+Tab away, the text one Tab.
constexpr Terminfeld kAnfang = Terminfeld::Uhrzeit;

Termineingabe alsEingabe(const cTermin& termin) {
    return {tagAlsEingabe(termin.WeckZeit), uhrzeitAlsEingabe(termin.WeckZeit), termin.WeckText,
            wiederholtSich(termin) ? termin.Intervall : intervall::kEinmal};
}

}  // namespace

FormTermin::FormTermin(Uhr& uhr, Meldungen& meldungen, FormTerminView& view)
    : uhr_(uhr), meldungen_(meldungen), view_(view) {}

bool FormTermin::ShowAndGetTermin(TerminZeiger& termin) {
    assert(!offen_);
    tag_.clear();
    cTermin neuer;
    neuer.WeckZeit = uhr_.jetzt();
    neuer.Aktiv = true;
    view_.setzeEingabe(alsEingabe(termin ? *termin : neuer));
    offen_ = true;
    view_.zeigenModal(kAnfang);
    offen_ = false;
    if (tag_ != kOk) return false;
    if (!termin) termin = std::make_shared<cTermin>(neuer);
    termin->WeckZeit = bestaetigt_.WeckZeit;
    termin->WeckText = bestaetigt_.WeckText;
    termin->Intervall = bestaetigt_.Intervall;
    return true;
}

void FormTermin::cmdOK_Click() {
    if (!offen_) return;
    const Termineingabe eingabe = view_.eingabe();
    const auto tag = tagAusEingabe(eingabe.TextDatum);
    if (!tag) {
        beanstanden("Das eingegebene Datum ist ungültig.", "Datum", Terminfeld::Datum);
        return;
    }
    const auto uhrzeit = uhrzeitAusEingabe(eingabe.TextUhrzeit);
    if (!uhrzeit) {
        beanstanden("Die eingegebene Uhrzeit ist ungültig.", "Uhrzeit", Terminfeld::Uhrzeit);
        return;
    }
    bestaetigt_.WeckZeit = *tag + *uhrzeit;
    bestaetigt_.WeckText = Left(Trim(eingabe.TextInhalt), kLaengsterWeckText);
    bestaetigt_.Intervall = eingabe.Intervall;
    tag_ = kOk;
    view_.verbergen();
}

void FormTermin::beanstanden(const std::string& text, const std::string& titel, Terminfeld feld) {
    meldungen_.meldung(text, meldungsstil::kKritisch, titel);
    if (offen_) view_.zumFeld(feld);
}

void FormTermin::cmdCancel_Click() {
    tag_.clear();
    if (offen_) view_.verbergen();
}

}  // namespace wendel
