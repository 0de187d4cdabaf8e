#include "reminders/FormTermin.h"

#include <cassert>
#include <memory>
#include <utility>

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

bool FormTermin::ShowAndGetTermin(TerminZeiger& termin, const std::function<void()>& bestaetigt) {
    assert(!offen());
    tag_.clear();
    cTermin neuer;
    neuer.WeckZeit = uhr_.jetzt();
    view_.setzeEingabe(alsEingabe(termin ? *termin : neuer));
    Vorgang vorgang{termin, bestaetigt};
    vorgang_ = &vorgang;
    view_.zeigenModal(kAnfang);
    if (vorgang_ == &vorgang) vorgang_ = nullptr;  // the program's end
    return vorgang.ok;
}

void FormTermin::cmdOK_Click() {
    if (!offen()) return;
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
    Vorgang& vorgang = *std::exchange(vorgang_, nullptr);
    if (!vorgang.termin) {
        vorgang.termin = std::make_shared<cTermin>();
        vorgang.termin->Aktiv = true;
    }
    vorgang.termin->WeckZeit = *tag + *uhrzeit;
    vorgang.termin->WeckText = Left(Trim(eingabe.TextInhalt), kLaengsterWeckText);
    vorgang.termin->Intervall = eingabe.Intervall;
    vorgang.ok = true;
    tag_ = kOk;
    view_.verbergen();
    if (vorgang.bestaetigt) vorgang.bestaetigt();
}

void FormTermin::beanstanden(const std::string& text, const std::string& titel, Terminfeld feld) {
    meldungen_.meldung(text, meldungsstil::kKritisch, titel);
    if (offen()) view_.zumFeld(feld);
}

void FormTermin::cmdCancel_Click() {
    tag_.clear();
    if (std::exchange(vorgang_, nullptr) != nullptr) view_.verbergen();
}

}  // namespace wendel
