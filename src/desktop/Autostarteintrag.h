#pragma once
// The program's entry among those that the desktop starts at log-on: a file of the XDG autostart rules that
// also keeps the text the suite gave for it, so that reading it back compares equal. The user may delete or
// disable it with the desktop's own settings; it is gone then.

#include <functional>
#include <optional>
#include <string>

namespace wendel {

class Autostarteintrag {
  public:
    // Native path of the .desktop file. eigenesProgramm is what the entry starts when the launcher that the
    // text names is not there or another system's.
    Autostarteintrag(std::string datei, std::string eigenesProgramm);

    // zeile is a command line in the suite's form, "\" between folders: "C:\Suite\tessaly.exe" wendel
    // pcstart.
    [[nodiscard]] bool setze(const std::string& zeile);
    std::optional<std::string> zeile() const;
    // False when there is none.
    [[nodiscard]] bool loesche();

  private:
    std::string datei_;
    std::string eigenesProgramm_;
};

}  // namespace wendel
