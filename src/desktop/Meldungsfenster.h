#pragma once
// Message boxes as real windows: modal ones with German buttons, and the one modeless window for failures
// inside the tick. Which text is shown when is the logic's business.

#include <QMessageBox>
#include <functional>
#include <memory>
#include <utility>

#include "desktop/FormSysFehlerFenster.h"
#include "platform/ports/Fenstersystem.h"
#include "platform/ports/Meldungen.h"

namespace wendel {

class Meldungsfenster final : public Meldungen {
  public:
    // fenster tells whether another program is being worked in; it must outlive this object.
    explicit Meldungsfenster(Fenstersystem& fenster) : fenster_(fenster) {}

    // Called with true when a box opens and with false when it has its answer, in pairs that may enclose each
    // other: whoever owns windows that must not be used meanwhile locks them. Notices stay usable, or one
    // that comes up in front of a box would lock the screen.
    void setzeSperre(std::function<void(bool)> sperre) { sperre_ = std::move(sperre); }

    // Runs an event loop of its own until the answer. When the program ends meanwhile, the answer is the one
    // that changes nothing: Abbrechen, else Nein, else Ok.
    Antwort meldung(const std::string& text, int stil, const std::string& titel) override;

    void zeigeFehlerOhneWarten(const std::string& text, int nummer, const std::string& quelle,
                               const std::string& beschreibung, const std::string& titel) override;

  private:
    // Comes into being with the first failure.
    struct Fehleranzeige {
        Fehleranzeige() { fenster.setzeForm(form); }
        FormSysFehlerFenster fenster;
        FormSysFehler form{fenster};
    };

    void frage(QMessageBox& box);

    Fenstersystem& fenster_;
    std::function<void(bool)> sperre_ = [](bool) {};
    std::unique_ptr<Fehleranzeige> fehleranzeige_;
};

}  // namespace wendel
