#include "core/Start.h"

#include <cstdint>
#include <exception>
#include <utility>

#include "core/Aufzeichnungsablauf.h"
#include "core/Datenbestand.h"
#include "core/FormWendel.h"
#include "core/Hinweisausgabe.h"
#include "platform/Text.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel {

namespace {

constexpr int kWartemeldungMs = 30000;
constexpr int kSystemstartMs = 60000;
constexpr int kSekundeMs = 1000;

constexpr const char* kHilfetext =
    "Folgende Parameter können verwendet werden:\r\n"
    "/m\t\t minimiert das Fenster\r\n"
    "/d:31.12.98\t setzt das Weckdatum\r\n"
    "/z:20:15\t\t setzt die Weckzeit\r\n"
    "/notrayreaction\t (reserviert für Programmierer)\r\n"
    "/?\t\t zeigt diese Hilfe\r\n";

}  // namespace

Start::Start(const Ports& ports, Prozesswerte& werte, Datenbestand& bestand, FormWendel& form,
             Hinweisausgabe& ausgabe, Aufzeichnungsablauf& aufzeichnungen, std::function<bool()> einzigeKopie)
    : ports_(ports),
      werte_(werte),
      bestand_(bestand),
      form_(form),
      ausgabe_(ausgabe),
      aufzeichnungen_(aufzeichnungen),
      einzigeKopie_(std::move(einzigeKopie)) {}

Startergebnis Start::Main() {
    ports_.automation.setzeWartemeldung(
        werte_.hauptanwendungTitel, "Eine Datenbankabfrage läuft bereits. Bitte warten Sie einen Augenblick.",
        kWartemeldungMs);
    if (schalter("/pcstart")) aufSystemstartWarten();
    return form_.beendet() ? Startergebnis::Beendet : formLaden();
}

// The machine settles before the database is opened. Counted on the clock that no step moves, since the
// system time is often corrected just then.
void Start::aufSystemstartWarten() {
    const std::int64_t beginn = ports_.uhr.laufzeitMs();
    do {
        ports_.uhr.nachrichtenVerarbeiten();
        ports_.uhr.schlafe(kSekundeMs);
    } while (!form_.beendet() && ports_.uhr.laufzeitMs() - beginn < kSystemstartMs);
}

Startergebnis Start::formLaden() {
    if (!einzigeKopie_()) {
        form_.ExitProgram(false);
        return Startergebnis::ZweiteKopie;
    }
    if (schalterGenau("/?")) {
        hilfeZeigen();
        return Startergebnis::Hilfe;
    }
    formEinrichten();
    if (!form_.beendet()) datenLaden();
    if (!form_.beendet()) formZeigen();
    return form_.beendet() ? Startergebnis::Beendet : Startergebnis::Laeuft;
}

void Start::hilfeZeigen() {
    ports_.meldungen.meldung(kHilfetext, meldungsstil::kInformation, "Mögliche Startparameter");
}

void Start::formEinrichten() {
    form_.setzeMausreaktion(!schalterGenau("/notrayreaction"));
    ModulGrundbefehle::ProgrammordnerAktivieren(ports_.dateien, werte_.programmordner);
    bestand_.einstellungenLesen();
    bestand_.journal().lesen();
    aufzeichnungen_.laden();
    // Before the first notice: its answer may store the appointments, and must not store them without these.
    mitFehlerfalle([this] { bestand_.termine().laden(); });
    form_.setzeGeladen();
    // Before anything that may wait for the user or the database: a notice that a crash took from the screen
    // is back at once.
    mitFehlerfalle([this] { ausgabe_.offeneZeigen(); });
    bestand_.pfadeBestimmen();
    bestand_.hauptanwendungTitelLesen();
    aufzeichnungen_.skriptLaden();
}

void Start::datenLaden() {
    mitFehlerfalle([this] { bestand_.senderLaden(); });
    mitFehlerfalle([this] { bestand_.markierungenPflegenUndAbfragen(); });
    mitFehlerfalle([this] {
        bestand_.termine().nachholen();
        static_cast<void>(bestand_.speichernWennNoetig());
        form_.Ausfüllen();
    });
    mitFehlerfalle([this] { form_.menueAufbauen(); });
}

void Start::formZeigen() {
    form_.iconHinzufuegen();
    ports_.uhr.nachrichtenVerarbeiten();
    if (form_.beendet()) return;
    if (!schalter("/m")) form_.zeigen();
    werte_.hilfedatei = werte_.programmordner + "fennow.hlp";
    form_.TaskBarIconAktualisieren();
    if (bestand_.konfiguration().autostart) form_.autostarteintragSetzen();
    if (schalter("/createtermin")) form_.TerminNeu();
}

// A cancelled database box leaves that data empty; icon and timer come all the same, as the user's own
// appointments need no database.
void Start::mitFehlerfalle(const std::function<void()>& schritt) {
    if (form_.beendet()) return;
    try {
        schritt();
    } catch (const std::exception&) {
        // Whoever failed has told the user.
    }
}

bool Start::schalter(std::string_view name) const { return InStr(LCase(werte_.befehlszeile), name) > 0; }

bool Start::schalterGenau(std::string_view name) const { return InStr(werte_.befehlszeile, name) > 0; }

}  // namespace wendel
