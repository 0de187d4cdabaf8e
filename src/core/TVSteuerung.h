#pragma once
// "Im TV zeigen" of the tray menu: the TV application runs and shows a channel. Whether this is a moment for
// it (no recording, nothing else under way) is known by the caller.

#include <string>

#include "platform/Ports.h"

namespace wendel {

class Fehler;
class Skriptlauf;

class TVSteuerung {
  public:
    // All outlive the object.
    TVSteuerung(const Ports& ports, Skriptlauf& skript) : ports_(ports), skript_(skript) {}

    // The script has commands for it.
    bool kann() const;
    // Starts the application unless it runs, and switches unless it is on that channel already. Failures are
    // shown without waiting.
    void zeige(const std::string& senderkennung);
    // The application was used for something else: nobody knows its channel any more.
    void vergissSender() { sender_.clear(); }

  private:
    bool starte(const std::string& programmnummer);
    bool laeuftAnwendung() const;
    void schalteUm(const std::string& senderkennung, const std::string& programmnummer);
    void melde(const std::string& text, const Fehler* ursache = nullptr) const;

    const Ports& ports_;
    Skriptlauf& skript_;
    bool gestartet_ = false;  // in this run of the program
    std::string sender_;      // that it shows because of us
};

}  // namespace wendel
