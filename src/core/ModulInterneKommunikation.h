#pragma once
// The way from this program to the suite's main application: activates or starts it, and hands it a command
// text. Which texts there are is the callers' business.

#include <string>

#include "platform/Ports.h"
#include "platform/Prozesswerte.h"

namespace wendel {

class ModulInterneKommunikation {
  public:
    // Both outlive the object; title and programme folder are read at each call.
    ModulInterneKommunikation(const Ports& ports, const Prozesswerte& werte);

    // Brings the main application to the front and sends it the text (if any); starts it with the text when
    // its window is not there. A failing start is told in a box.
    void StartMainApplication(const std::string& commandText);

    // True when the running main application took the text.
    [[nodiscard]] bool uebermitteln(const std::string& text);

  private:
    void programmStarten(const std::string& commandText);

    const Ports& ports_;
    const Prozesswerte& werte_;
};

}  // namespace wendel
