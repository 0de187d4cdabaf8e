#pragma once
// The whole program above its ports: owns every object of the logic and joins them. The composition root
// makes the adapters and windows, hands them in, calls starten() once and then ticks, control lines and icon
// messages as they come. Tests do the same with fakes; a second Anwendung over the same files is a restart.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/FormWendelView.h"
#include "platform/Ports.h"
#include "platform/Prozesswerte.h"
#include "platform/ports/Einwahl.h"
#include "platform/ports/Registrierung.h"
#include "platform/ports/Statusverbindung.h"
#include "traymenu/FormBrannikMenueView.h"

namespace wendel {

class FormAufzeichnungsHinweis;
class FormAufzeichnungsHinweisView;
class FormAufzeichnungsskript;
class FormAufzeichnungsskriptView;
class FormAufzeichnungsverlauf;
class FormAufzeichnungsverlaufView;
class FormHinweis;
class FormHinweisView;
class FormTermin;
class FormTerminView;
class FormWendel;

// The doors that only the resident program has.
struct Systemdienste {
    Registrierung& registrierung;
    Einwahl& einwahl;
    Statusverbindung& statusverbindung;
};

// The windows behind the forms.
struct Ansichten {
    FormWendelView& wendel;
    FormHinweisView& hinweis;
    FormTerminView& termin;
    FormAufzeichnungsHinweisView& aufzeichnungsHinweis;
    FormAufzeichnungsskriptView& aufzeichnungsskript;
    FormAufzeichnungsverlaufView& verlauf;
};

struct Startumgebung {
    std::string programmdatei;   // as started, without folder: "wendel"
    std::string befehlszeile;    // the arguments joined with one blank
    std::string programmordner;  // "\" or "/" between folders
    // Asked once, before anything is opened: false when another copy of the program runs. Whoever answers
    // true may publish the automation object from then on.
    std::function<bool()> einzigeKopie;
};

enum class Startergebnis {
    Laeuft,       // start the one-second timer, enter the event loop
    ZweiteKopie,  // end without a word
    Hilfe,        // the help box has been answered: end
    Beendet,      // the program was told to end while it started
};

class Anwendung {
  public:
    // Ports, services, views and menueumgebung outlive the object. The views may be called from starten() on.
    Anwendung(const Ports& ports, const Systemdienste& dienste, const Ansichten& ansichten,
              Menueumgebung& menueumgebung, Startumgebung umgebung);
    ~Anwendung();
    Anwendung(const Anwendung&) = delete;
    Anwendung& operator=(const Anwendung&) = delete;

    // The start routine: runs to the moment at which the timer may tick. Shows boxes and processes messages.
    Startergebnis starten();

    // WeckTimer: once a second, aligned to the full second, and once more right after a resume.
    void tick();
    // Open.DoThis of "Wendel.Open".
    void DoThis(const std::string& text);
    // Messages of the icon: (1025, 1, 515) is a double click, (1025, 1, 517) the right button's
    // release. True when taken.
    bool fensterNachricht(std::uint32_t nachricht, std::uintptr_t wParam, std::uintptr_t lParam);
    // The system asks the program to end (SIGTERM, end of session).
    void beenden();

    FormWendel& formWendel();
    FormHinweis& formHinweis();
    FormTermin& formTermin();
    FormAufzeichnungsHinweis& formAufzeichnungsHinweis();
    FormAufzeichnungsskript& formAufzeichnungsskript();
    FormAufzeichnungsverlauf& formAufzeichnungsverlauf();
    const Prozesswerte& werte() const;

  private:
    struct Teile;
    std::unique_ptr<Teile> teile_;
};

}  // namespace wendel
