#pragma once
// From process start to the moment at which the timer may tick: the switches of the command line, the check
// for a second copy, the help box, settings, paths, database, icon, window, each in its place.

#include <functional>
#include <string>
#include <string_view>

#include "core/Anwendung.h"
#include "platform/Ports.h"
#include "platform/Prozesswerte.h"

namespace wendel {

class Aufzeichnungsablauf;
class Datenbestand;
class Hinweisausgabe;

class Start {
  public:
    // All outlive the object. werte holds command line and programme folder.
    Start(const Ports& ports, Prozesswerte& werte, Datenbestand& bestand, FormWendel& form,
          Hinweisausgabe& ausgabe, Aufzeichnungsablauf& aufzeichnungen, std::function<bool()> einzigeKopie);

    Startergebnis Main();

  private:
    Startergebnis formLaden();
    void formEinrichten();
    void datenLaden();
    void formZeigen();
    void hilfeZeigen();
    void aufSystemstartWarten();
    void mitFehlerfalle(const std::function<void()>& schritt);
    bool schalter(std::string_view name) const;
    bool schalterGenau(std::string_view name) const;

    const Ports& ports_;
    Prozesswerte& werte_;
    Datenbestand& bestand_;
    FormWendel& form_;
    Hinweisausgabe& ausgabe_;
    Aufzeichnungsablauf& aufzeichnungen_;
    std::function<bool()> einzigeKopie_;
};

}  // namespace wendel
