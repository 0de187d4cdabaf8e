#include "core/WeckTimer.h"

#include <cstdint>
#include <exception>

#include "core/Aufzeichnungsablauf.h"
#include "core/Datenbestand.h"
#include "core/FormWendel.h"
#include "core/Hinweisausgabe.h"
#include "core/Laufend.h"
#include "core/Liveupdate.h"
#include "core/Liveupdatetext.h"
#include "platform/ModulProzessliste.h"

namespace wendel {

namespace {

constexpr std::int64_t kLueckeSekunden = 60;
constexpr int kWartezeitMs = 1200;
constexpr int kZeichenzeitMs = 200;
constexpr int kScheibeMs = 100;
constexpr std::int64_t kTippAbstandSekunden = 300;

void sammleFaellige(const Terminliste& termine, Datum jetzt, Terminliste& faellige) {
    for (const TerminZeiger& termin : termine) {
        if (istFaellig(*termin, jetzt)) faellige.push_back(termin);
    }
}

bool istLuecke(Datum von, Datum bis) { return bis.sekunden() - von.sekunden() > kLueckeSekunden; }

// Nobody may be there to read a box, and one a second would bury the screen. What is still due comes with the
// next tick; one step keeps back no other.
template <typename Schritt>
void geschuetzt(const Schritt& schritt) {
    try {
        schritt();
    } catch (const std::exception&) {
    }
}

bool neueMinute(Datum letzter, Datum jetzt) {
    const bool volleMinute = jetzt.sekunden() % 60 == 0 && jetzt != letzter;
    return volleMinute || jetzt.sekunden() / 60 != letzter.sekunden() / 60;
}

}  // namespace

WeckTimer::WeckTimer(const Ports& ports, Datenbestand& bestand, FormWendel& form, Hinweisausgabe& ausgabe,
                     Aufzeichnungsablauf& aufzeichnungen, Liveupdate& liveupdate)
    : ports_(ports),
      bestand_(bestand),
      form_(form),
      ausgabe_(ausgabe),
      aufzeichnungen_(aufzeichnungen),
      liveupdate_(liveupdate) {}

void WeckTimer::starten() {
    letzterTick_ = wachBis_ = tippZeit_ = ports_.uhr.jetzt();
    liveupdate_.starten(letzterTick_);
}

void WeckTimer::Timer() {
    if (form_.beendet()) return;
    if (form_.beschaeftigt()) {
        // The access that a tick waits for shows a box, which may stand all night.
        if (bestand_.zugriffLaeuft()) aufzeichnen();
        return;
    }
    const Datum beginn = ports_.uhr.jetzt();
    geschuetzt([&] { schritte(beginn); });
    aufzeichnen();
    geschuetzt([&] { tagestippNachholen(beginn); });
    if (form_.beendet()) return;
    geschuetzt([this] { liveupdate_.Timer(ports_.uhr.jetzt()); });
    wachBis_ = ports_.uhr.jetzt();
    // A box stood: asking at once might bring the next one, so that is left to the next query.
    if (istLuecke(beginn, wachBis_)) bestand_.verpassteVormerken();
}

void WeckTimer::schritte(Datum jetzt) {
    const bool luecke = istLuecke(wachBis_, jetzt);
    const bool minutenwechsel = neueMinute(letzterTick_, jetzt);
    letzterTick_ = wachBis_ = jetzt;
    if (minutenwechsel) minutenlauf();
    if (luecke) bestand_.verpassteVormerken();
    Terminliste faellige;
    sammleFaellige(bestand_.eigene(), jetzt, faellige);
    sammleFaellige(bestand_.erinnerungen(), jetzt, faellige);
    if (faellige.empty() && !luecke) return;
    if (!faellige.empty()) {
        hinweisenUndNachlesen(faellige, jetzt);
    } else {
        bestand_.abfragen();
        form_.auffrischen();
    }
    if (!form_.beendet()) nachzueglerHinweisen();
}

void WeckTimer::aufzeichnen() {
    geschuetzt([this] { aufzeichnungen_.Timer(); });
}

void WeckTimer::minutenlauf() {
    bestand_.termine().nachholen();
    // Short-time alarms and appointments whose last storing failed; a failure is tried again in a minute.
    static_cast<void>(bestand_.speichernWennNoetig());
    form_.auffrischen();
}

void WeckTimer::hinweisenUndNachlesen(const Terminliste& faellige, Datum jetzt) {
    const Laufend waehrenddessen = form_.beschaeftigen();
    const Hinweis hinweis = ausgabe_.feuern(faellige, jetzt);
    // Long enough for a start-up of the screen or the sound to settle.
    if (!warten(kWartezeitMs)) return;
    ausgabe_.zeigen(hinweis);
    static_cast<void>(bestand_.speichernWennNoetig());
    // What follows blocks for as long as the database is busy: the notice is on the screen before.
    if (!warten(kZeichenzeitMs)) return;
    // The machine slept meanwhile: for this query what others have marked since may be past already.
    if (istLuecke(jetzt, ports_.uhr.jetzt())) bestand_.verpassteVormerken();
    bestand_.markierungenPflegenUndAbfragen();
    form_.auffrischen();
}

// In slices, so that the windows stay alive. False when the program was told to end meanwhile: the journal
// keeps the notice for the next start.
bool WeckTimer::warten(int dauerMs) {
    for (int gewartet = 0; gewartet < dauerMs; gewartet += kScheibeMs) {
        ports_.uhr.nachrichtenVerarbeiten();
        if (form_.beendet()) return false;
        ports_.uhr.schlafe(kScheibeMs);
    }
    return true;
}

// Reminders that became due while this tick was at work, or were found to have been missed.
void WeckTimer::nachzueglerHinweisen() {
    const Datum jetzt = ports_.uhr.jetzt();
    Terminliste faellige;
    sammleFaellige(bestand_.erinnerungen(), jetzt, faellige);
    if (faellige.empty()) return;
    const Laufend waehrenddessen = form_.beschaeftigen();
    ausgabe_.zeigen(ausgabe_.feuern(faellige, jetzt));
    // A box of the query would keep back own appointments that are due as well: the next tick shows them and
    // then asks.
    Terminliste eigene;
    sammleFaellige(bestand_.eigene(), jetzt, eigene);
    if (eigene.empty()) bestand_.abfragen();
    form_.auffrischen();
}

// Every five minutes while there is none, once a day therefore: the menu is to have it at once. After what
// was due, which must not wait for a query. The updater is left alone while it writes.
void WeckTimer::tagestippNachholen(Datum jetzt) {
    const bool faellig = jetzt.sekunden() % kTippAbstandSekunden == 0 ||
                         DateDiff(Einheit::Minute, tippZeit_, jetzt) > kTippAbstandSekunden / 60;
    if (!faellig || form_.beendet() || !bestand_.tippFehlt() ||
        ModulProzessliste::IsProcessRunning(ports_.prozesse, kLiveUpdateProgramm))
        return;
    const Laufend waehrenddessen = form_.beschaeftigen();
    tippZeit_ = jetzt;
    bestand_.tippLesenOhneKaesten();
}

}  // namespace wendel
