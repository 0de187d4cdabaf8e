#include "recording/FormAufzeichnungsskript.h"

#include <utility>

namespace wendel {
namespace {

constexpr const char* kOk = " ..Ok";
constexpr int kLesezeitMs = 200;

}  // namespace

FormAufzeichnungsskript::FormAufzeichnungsskript(Uhr& uhr, FormAufzeichnungsskriptView& view)
    : uhr_(uhr), view_(view) {}

void FormAufzeichnungsskript::ShowDebugInfo(const std::string& text) {
    setzeAktuelleAktion(text);
    if (verlauf_.size() == kHoechstzahlVerlauf) verlauf_.erase(verlauf_.begin());
    verlauf_.push_back(text);
    if (offen_ || unerwuenscht_) return;
    offen_ = true;
    view_.zeigen();
}

void FormAufzeichnungsskript::ShowDebugInfoAddOk() {
    setzeAktuelleAktion(aktuelleAktion_ + kOk);
    if (!verlauf_.empty()) verlauf_.back() += kOk;
    uhr_.nachrichtenVerarbeiten();  // a window that has just come up is painted by its messages
    uhr_.schlafe(kLesezeitMs);
}

void FormAufzeichnungsskript::setzeAktuelleAktion(std::string text) {
    aktuelleAktion_ = std::move(text);
    view_.setzeAktuelleAktion(aktuelleAktion_);
}

void FormAufzeichnungsskript::LabelAktuelleAktion_Click() { view_.zeigePopupVerlauf(verlauf_); }

void FormAufzeichnungsskript::mnuSchließen_Click() {
    schliessen();
    unerwuenscht_ = true;
}

void FormAufzeichnungsskript::schliessen() {
    unerwuenscht_ = false;
    if (!offen_) return;
    offen_ = false;
    view_.verbergen();
}

}  // namespace wendel
