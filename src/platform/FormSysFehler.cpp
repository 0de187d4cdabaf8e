#include "platform/FormSysFehler.h"

#include "platform/Text.h"

namespace wendel {
namespace {

constexpr const char* kAusgeklappt = "ausgeklappt";

std::string detailtext(const SysFehler& fehler) {
    std::string text;
    if (fehler.ErrNumber != 0)
        text = "(" + std::to_string(fehler.ErrNumber) + ") " + Trim(fehler.ErrDescription) +
               std::string(kCrLf) + "Fehlerort: " + Trim(fehler.ErrSource);
    if (fehler.DetailText.empty()) return text;
    if (!text.empty()) text += kCrLf;
    return text + Trim(fehler.DetailText);
}

}  // namespace

SysFehlerErgebnis FormSysFehler::ShowFehler(const SysFehler& fehler) {
    view_.setzeCmdWiederholenSichtbar(fehler.ButtonWiederholen);
    view_.setzeCaption(Trim(fehler.FensterCaption));
    view_.setzeLabelText(Trim(fehler.Fehlertext));
    view_.setzeTextDetails(detailtext(fehler));
    ergebnis_ = SysFehlerErgebnis::Keines;
    const bool schonAusgeklappt = offen_ && !cmdDetailsTag_.empty();
    klappe(fehler.DetailsAufklappen || schonAusgeklappt);
    offen_ = true;
    if (fehler.NurAnzeigenUndStehenLassen) {
        view_.zeigen();
        return SysFehlerErgebnis::Keines;
    }
    view_.zeigenModal();
    offen_ = false;
    return ergebnis_ == SysFehlerErgebnis::Keines ? SysFehlerErgebnis::Ok : ergebnis_;
}

void FormSysFehler::klappe(bool aus) {
    cmdDetailsTag_ = aus ? kAusgeklappt : "";
    view_.setzeCmdDetailsCaption(aus ? "&Details <<" : "&Details ..");
    const SysFehlerMasse masse = view_.masse();
    const int unterkante = aus ? masse.unterkanteTextDetails : masse.unterkanteKnoepfe;
    view_.setzeHoehe(unterkante + ModulFenster::GetFensterTitelHoeheInTwips(masse.form));
}

void FormSysFehler::cmdDetails_Click() { klappe(cmdDetailsTag_.empty()); }

void FormSysFehler::cmdOK_Click() { beantworte(SysFehlerErgebnis::Ok); }

void FormSysFehler::cmdWiederholen_Click() { beantworte(SysFehlerErgebnis::Wiederholen); }

void FormSysFehler::Schliessen() { beantworte(SysFehlerErgebnis::Ok); }

void FormSysFehler::beantworte(SysFehlerErgebnis ergebnis) {
    ergebnis_ = ergebnis;
    offen_ = false;
    view_.verbergen();
}

}  // namespace wendel
