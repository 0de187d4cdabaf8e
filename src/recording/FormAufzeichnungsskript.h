#pragma once
// The status window of a script run: the current step and a short history of the steps. Its window is a
// FormAufzeichnungsskriptView; which steps there are is told by the interpreter.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ports/Uhr.h"
#include "recording/ModulAufzeichnungskript.h"

namespace wendel {

class FormAufzeichnungsskriptView {
  public:
    virtual ~FormAufzeichnungsskriptView() = default;
    // Visible without being activated: the keys of the script belong to the TV application.
    virtual void zeigen() = 0;
    virtual void verbergen() = 0;
    virtual void setzeAktuelleAktion(const std::string& text) = 0;  // LabelAktuelleAktion
    // mnuPopupVerlauf at the label: mnuVerlauf entries, trenn1, mnuSchließen. Comes back while it is open.
    virtual void zeigePopupVerlauf(const std::vector<std::string>& verlauf) = 0;
};

class FormAufzeichnungsskript : public Skriptanzeige {
  public:
    static constexpr std::string_view kFenstertitel = "Lomrick - Aufzeichnungsskript";
    static constexpr std::string_view kTooltip =
        "Zeigt aktuelle Steuerung der verknüpften TV-Anwendung an. Klicken für mehr Informationen.";
    static constexpr std::size_t kHoechstzahlVerlauf = 20;

    // Both outlive the form.
    FormAufzeichnungsskript(Uhr& uhr, FormAufzeichnungsskriptView& view);

    // A new line in label and history; also brings the window up, unless the user has closed it.
    void ShowDebugInfo(const std::string& text) override;
    // " ..Ok" behind the line, left on the screen long enough to be read. Window messages run before that.
    void ShowDebugInfoAddOk() override;

    void LabelAktuelleAktion_Click();
    // The user does not want to see it: closed until schliessen() has ended the recording.
    void mnuSchließen_Click();
    // The recording is over: closes the window; the history stays for the next one.
    void schliessen();

    const std::vector<std::string>& verlauf() const { return verlauf_; }

  private:
    void setzeAktuelleAktion(std::string text);

    Uhr& uhr_;
    FormAufzeichnungsskriptView& view_;
    std::string aktuelleAktion_;
    std::vector<std::string> verlauf_;
    bool offen_ = false;
    bool unerwuenscht_ = false;
};

}  // namespace wendel
