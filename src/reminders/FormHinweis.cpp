#include "reminders/FormHinweis.h"

#include <memory>
#include <utility>

#include "platform/Text.h"

namespace wendel {
namespace {

constexpr std::string_view kErlaubt = "ok";
constexpr int kLeertaste = 32;
constexpr std::size_t kLaengsterWeckText = 65535;  // characters, as the settings file counts them

std::vector<std::string> funktionszeilen() {
    std::vector<std::string> zeilen;
    for (const Hinweisfunktion& funktion : kHinweisfunktionen)
        zeilen.emplace_back(funktion.text);
    return zeilen;
}

// No row chosen, or one that the list does not have, closes the reminder like the first one.
int minutenDerZeile(int index) {
    if (index < 0 || index >= static_cast<int>(kHinweisfunktionen.size())) return 0;
    return kHinweisfunktionen[static_cast<std::size_t>(index)].minuten;
}

// The alarm loop puts the prefix in front again when the new entry is due; left in, the text would grow with
// every snooze.
std::string ohneVorsatz(std::string_view text) {
    if (!text.starts_with(kHinweisvorsatz)) return std::string(text);
    text.remove_prefix(kHinweisvorsatz.size());
    if (text.starts_with(kCrLf)) text.remove_prefix(kCrLf.size());
    return std::string(text);
}

}  // namespace

FormHinweis::FormHinweis(Uhr& uhr, FormHinweisView& view, FormHinweisEmpfaenger& empfaenger)
    : uhr_(uhr), view_(view), empfaenger_(empfaenger) {}

void FormHinweis::hinweisen(const std::string& titel, const std::string& text,
                            const std::vector<Hinweisschluessel>& schluessel) {
    sperren();
    if (offen_) {
        anhaengen(text);
    } else {
        oeffnen(text);
    }
    schluessel_.insert(schluessel_.end(), schluessel.begin(), schluessel.end());
    labelHinweisTitel_ = titel;
    view_.setzeTitel(labelHinweisTitel_);
    view_.setzeText(labelHinweisText_);
    Fit();
    view_.zeigen();
    view_.starteOKTimer(timerOKErlaubtInterval_);
}

void FormHinweis::Fit() { view_.anpassen(); }

void FormHinweis::sperren() {
    timerOKErlaubtTag_.clear();
    timerOKErlaubtInterval_ = kSperrzeitMs;
}

void FormHinweis::oeffnen(const std::string& text) {
    offen_ = true;
    labelHinweisText_ = text;
    comboFunktionListIndex_ = 0;
    view_.setzeFunktionen(funktionszeilen());
    view_.setzeAuswahl(comboFunktionListIndex_);
}

// Replacing the text would lose the reminder that has not been answered yet.
void FormHinweis::anhaengen(const std::string& text) {
    labelHinweisText_ += kCrLf;
    labelHinweisText_ += text;
}

void FormHinweis::ComboFunktion_Click(int index) { comboFunktionListIndex_ = index; }

void FormHinweis::ComboFunktion_KeyPress(int zeichencode) {
    if (zeichencode == kLeertaste) cmdOK_Click();
}

void FormHinweis::cmdOK_Click() { abschliessen(comboFunktionListIndex_); }

void FormHinweis::Schliessen() { abschliessen(0); }

void FormHinweis::TimerOKErlaubt_Timer() {
    timerOKErlaubtInterval_ = 0;
    timerOKErlaubtTag_ = kErlaubt;
}

// The notice is closed and its state taken out first: what the receiver does may show a box, and a second
// click or a new notice that comes in meanwhile must find a closed form.
void FormHinweis::abschliessen(int index) {
    if (!offen_ || timerOKErlaubtTag_ != kErlaubt) return;
    const int minuten = minutenDerZeile(index);
    const TerminZeiger termin = minuten > 0 ? neuerTermin(minuten) : nullptr;
    const std::vector<Hinweisschluessel> beantwortet = std::exchange(schluessel_, {});
    timerOKErlaubtTag_.clear();
    offen_ = false;
    view_.verbergen();
    if (termin) empfaenger_.erneutErinnern(termin);
    empfaenger_.hinweisBeantwortet(beantwortet);
}

TerminZeiger FormHinweis::neuerTermin(int minuten) const {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = DateAdd(Einheit::Minute, minuten, uhr_.jetzt().aufMinute());
    // A notice left open for long takes up many entries; one text that can't be stored would keep all
    // appointments from being stored.
    termin->WeckText = Left(ohneVorsatz(labelHinweisText_), kLaengsterWeckText);
    termin->Aktiv = true;
    return termin;
}

}  // namespace wendel
