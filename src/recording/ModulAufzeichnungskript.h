#pragma once
// Carries out recording scripts on the ports, line after line, and tells the status window about each step
// while the debug display is on. When which list runs is the business of the recording flow; it also shows
// the failures, which leave here as Fehler of source "BefehlAusführen".

#include <functional>
#include <optional>
#include <string>

#include "platform/Fehler.h"
#include "platform/Ports.h"
#include "recording/Aufzeichnungsskript.h"

namespace wendel {

// What FormAufzeichnungsskript offers: a new status line, and its completion.
class Skriptanzeige {
  public:
    virtual ~Skriptanzeige() = default;
    virtual void ShowDebugInfo(const std::string& text) = 0;
    virtual void ShowDebugInfoAddOk() = 0;
};

// What the placeholders of a line stand for.
struct Skriptwerte {
    std::string tvSoftwarePfad;        // [TVSoftwarePfad]
    std::string tvAufzeichnungenPfad;  // [TVAufzeichnungenPfad]
    std::string kanal;                 // [Kanal]
    std::string titel;                 // [Titel], as it is; made safe when it is inserted
    bool debuganzeige = false;
    std::string programmordner;  // current again after the search for a special folder
};

// The line with its placeholders replaced. The search for a special folder leaves the programme folder
// current.
std::string platzhalterErsetzt(const Ports& ports, const Skriptwerte& werte,
                               const std::string& titelDerAnwendung, std::string zeile);

// A line of a list failed.
class Skriptfehler : public Fehler {
  public:
    Skriptfehler(const Fehler& ursache, int zeilennummer) : Fehler(ursache), zeilennummer_(zeilennummer) {}
    // Of the line in the script file, from 1.
    int zeilennummer() const { return zeilennummer_; }

  private:
    int zeilennummer_;
};

class ModulAufzeichnungskript {
  public:
    // Asked before each line and between the slices of one: a German reason ends it, as a failure of the
    // line.
    using Abbruchfrage = std::function<std::optional<std::string>()>;

    // All outlive the object.
    ModulAufzeichnungskript(const Ports& ports, Skriptanzeige& anzeige);

    void setzeSkript(Aufzeichnungsskript skript);
    const Aufzeichnungsskript& skript() const { return skript_; }
    void setzeWerte(Skriptwerte werte);
    void setzeAbbruch(Abbruchfrage frage);

    // One line; throws Fehler kEigener, source "BefehlAusführen". Window events run meanwhile.
    void BefehlAusfuehren(std::string zeile);

    // Each runs its list in the order of the file up to the first failure, thrown as Skriptfehler. Nothing to
    // run is no failure.
    void AnwendungStarten();
    void AnwendungBeenden();
    void AufnahmeStarten();
    void AufnahmeBeenden();
    void KanalWechseln();

  private:
    // Takes a copy: what runs during the waits of a script may load another one.
    void ausfuehren(Befehlsliste liste);

    const Ports& ports_;
    Skriptanzeige& anzeige_;
    Aufzeichnungsskript skript_;
    Skriptwerte werte_;
    Abbruchfrage abbruch_;
};

}  // namespace wendel
