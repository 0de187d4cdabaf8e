#pragma once
// The notice that a recording starts in a minute. When it comes and goes is the recording flow's business.

#include <string>
#include <string_view>

#include "platform/ports/Fenstersystem.h"

namespace wendel {

class FormAufzeichnungsHinweisView {
  public:
    virtual ~FormAufzeichnungsHinweisView() = default;
    // 0 while there is no window.
    virtual Fensterhandle hwnd() = 0;
    virtual void setzeText(const std::string& text) = 0;  // Label, lines separated by CR LF
    // Centred, above all windows; no key taken from another program. One that is shown stays where it is.
    virtual void zeigen() = 0;
    virtual void verbergen() = 0;
};

class FormAufzeichnungsHinweis {
  public:
    static constexpr std::string_view kFenstertitel = "Lomrick - Aufzeichnung";

    // Both outlive the form.
    FormAufzeichnungsHinweis(Fenstersystem& fenster, FormAufzeichnungsHinweisView& view);

    // zusatz follows the fixed text as a paragraph of its own: what clashes with the recording. May be empty.
    void zeigen(const std::string& zusatz);
    // Also the close box and Esc.
    void schliessen();
    void cmdOK_Click();
    bool offen() const { return offen_; }

  private:
    Fenstersystem& fenster_;
    FormAufzeichnungsHinweisView& view_;
    bool offen_ = false;
};

}  // namespace wendel
