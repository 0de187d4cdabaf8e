#pragma once
// The program's entry among those that the desktop starts at log-on: a file of the XDG autostart rules that
// also keeps the text the suite gave for it, so that reading it back compares equal. The user may delete or
// disable it with the desktop's own settings; it is gone then.

#include <optional>
#include <string>

namespace wendel {

class Autostarteintrag {
  public:
    // Native paths: the .desktop file, and what the entry starts when the launcher that the text names is not
    // there or another system's. programmordner is given to what is started as $WENDEL_ORDNER; empty where
    // the program finds its folder by itself.
    Autostarteintrag(std::string datei, std::string eigenesProgramm, std::string programmordner = {});

    // zeile is a command line in the suite's form, "\" between folders: "C:\Suite\tessaly.exe" wendel
    // pcstart.
    [[nodiscard]] bool setze(const std::string& zeile);
    std::optional<std::string> zeile() const;
    // The program that the desktop starts, as the file names it; nothing where no file does.
    std::optional<std::string> programm() const;
    // False when there is none.
    [[nodiscard]] bool loesche();

  private:
    std::string datei_;
    std::string eigenesProgramm_;
    std::string programmordner_;
};

}  // namespace wendel
