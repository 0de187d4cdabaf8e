#include "recording/FormAufzeichnungsHinweis.h"

#include "platform/ModulFenster.h"

namespace wendel {
namespace {

constexpr const char* kText =
    "In einer Minute startet die Aufzeichnung einer Sendung mit den Kestrin Pirrow. Bitte achten Sie darauf, "
    "dass keine anderen Programme Ihre TV-Karte verwenden, oder den Computer auslasten. Dieser Hinweis wird "
    "automatisch zu Beginn der Aufzeichnung ausgeblendet.";

}  // namespace

FormAufzeichnungsHinweis::FormAufzeichnungsHinweis(Fenstersystem& fenster, FormAufzeichnungsHinweisView& view)
    : fenster_(fenster), view_(view) {}

void FormAufzeichnungsHinweis::zeigen(const std::string& zusatz) {
    view_.setzeText(zusatz.empty() ? kText : kText + ("\r\n\r\n" + zusatz));
    offen_ = true;
    view_.zeigen();
    ModulFenster::ForceForeground(fenster_, view_.hwnd());
}

void FormAufzeichnungsHinweis::schliessen() {
    if (!offen_) return;
    offen_ = false;
    view_.verbergen();
}

void FormAufzeichnungsHinweis::cmdOK_Click() { schliessen(); }

}  // namespace wendel
