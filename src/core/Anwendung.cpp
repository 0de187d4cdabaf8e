#include "core/Anwendung.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/Aufzeichnungsablauf.h"
#include "core/Autostart.h"
#include "core/Datenbestand.h"
#include "core/FormAufzeichnungsverlauf.h"
#include "core/FormWendel.h"
#include "core/Hinweisausgabe.h"
#include "core/Liveupdate.h"
#include "core/ModulInterneKommunikation.h"
#include "core/Start.h"
#include "core/Traymenue.h"
#include "core/WeckTimer.h"
#include "recording/Aufzeichnungsprotokoll.h"
#include "recording/FormAufzeichnungsHinweis.h"
#include "recording/FormAufzeichnungsskript.h"
#include "reminders/FormHinweis.h"
#include "reminders/FormTermin.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel {

namespace {

// What comes of an answered notice, between the form that asks and the form that acts: the first is needed to
// make the second.
class Hinweisempfaenger : public FormHinweisEmpfaenger {
  public:
    explicit Hinweisempfaenger(Datenbestand& bestand) : bestand_(bestand) {}
    void verbinde(FormWendel& form) { form_ = &form; }

    void erneutErinnern(const TerminZeiger& termin) override { form_->terminHinzufuegen(termin); }
    void hinweisBeantwortet(const std::vector<Hinweisschluessel>& schluessel) override {
        // The journal holds what it could not write and writes it with the next store.
        static_cast<void>(bestand_.journal().beantworten(schluessel));
    }

  private:
    Datenbestand& bestand_;
    FormWendel* form_ = nullptr;
};

// What the tray menu sets going. The form is made after the menu, which it shows.
class Menueausfuehrung : public Menueaktionen {
  public:
    explicit Menueausfuehrung(const Aufzeichnungsablauf& aufzeichnungen) : aufzeichnungen_(aufzeichnungen) {}
    void verbinde(FormWendel& form) { form_ = &form; }

    void kurzzeitWecker(std::int16_t minuten) override { form_->KurzZeitWeckerAktivieren(minuten); }
    void wendelAnzeigen() override { form_->zeigenUndNachVorn(); }
    void hauptanwendung(const std::string& befehlstext) override { form_->hauptanwendungRufen(befehlstext); }
    void beenden() override { form_->mnuBeenden_Click(); }
    void nachErinnern() override { form_->nachErinnern(); }
    bool kannImTVZeigen() override { return aufzeichnungen_.kannImTVZeigen(); }
    void imTVZeigen(const std::string& senderkennung) override { form_->imTVZeigen(senderkennung); }

  private:
    const Aufzeichnungsablauf& aufzeichnungen_;
    FormWendel* form_ = nullptr;
};

Prozesswerte anfangswerte(const Startumgebung& umgebung) {
    Prozesswerte werte;
    werte.programmdatei = umgebung.programmdatei;
    werte.befehlszeile = umgebung.befehlszeile;
    werte.programmordner = ModulGrundbefehle::PfadMitBackslash(umgebung.programmordner);
    return werte;
}

}  // namespace

struct Anwendung::Teile {
    Teile(const Ports& p, const Systemdienste& dienste, const Ansichten& ansichten,
          Menueumgebung& menueumgebung, Startumgebung umgebung)
        : ports(p),
          werte(anfangswerte(umgebung)),
          bestand(ports, werte),
          empfaenger(bestand),
          protokoll(ports.dateien, werte.programmordner),
          aufzeichnungsHinweis(ports.fenster, ansichten.aufzeichnungsHinweis),
          aufzeichnungsskript(ports.uhr, ansichten.aufzeichnungsskript),
          verlauf(protokoll, ansichten.verlauf),
          hinweis(ports.uhr, ansichten.hinweis, empfaenger),
          termin(ports.uhr, ports.meldungen, ansichten.termin),
          aufzeichnungen(ports, bestand, protokoll, {aufzeichnungsHinweis, aufzeichnungsskript, verlauf}),
          liveupdate(ports, dienste.einwahl, dienste.statusverbindung, bestand),
          autostart(ports.meldungen, dienste.registrierung, werte),
          hauptanwendung(ports, werte),
          menueausfuehrung(aufzeichnungen),
          menue(ports.fenster, bestand, menueumgebung, menueausfuehrung),
          wendel(ports, bestand, {aufzeichnungen, liveupdate, autostart}, {hinweis, termin, verlauf},
                 hauptanwendung, menue, ansichten.wendel),
          ausgabe(ports, bestand, hinweis),
          weckTimer(ports, bestand, wendel, ausgabe, aufzeichnungen, liveupdate),
          start(ports, werte, bestand, wendel, ausgabe, aufzeichnungen, std::move(umgebung.einzigeKopie)) {
        empfaenger.verbinde(wendel);
        menueausfuehrung.verbinde(wendel);
        aufzeichnungen.verbinde(wendel);
        liveupdate.verbinde(wendel);
    }

    Ports ports;
    Prozesswerte werte;
    Datenbestand bestand;
    Hinweisempfaenger empfaenger;
    Aufzeichnungsprotokoll protokoll;
    FormAufzeichnungsHinweis aufzeichnungsHinweis;
    FormAufzeichnungsskript aufzeichnungsskript;
    FormAufzeichnungsverlauf verlauf;
    FormHinweis hinweis;
    FormTermin termin;
    Aufzeichnungsablauf aufzeichnungen;
    Liveupdate liveupdate;
    Autostart autostart;
    ModulInterneKommunikation hauptanwendung;
    Menueausfuehrung menueausfuehrung;
    Traymenue menue;
    FormWendel wendel;
    Hinweisausgabe ausgabe;
    WeckTimer weckTimer;
    Start start;

    bool laeuft = false;
    // Control lines that came while the program was starting: it can't act on them before all is read.
    std::vector<std::string> wartendeZeilen;
};

Anwendung::Anwendung(const Ports& ports, const Systemdienste& dienste, const Ansichten& ansichten,
                     Menueumgebung& menueumgebung, Startumgebung umgebung)
    : teile_(std::make_unique<Teile>(ports, dienste, ansichten, menueumgebung, std::move(umgebung))) {}

Anwendung::~Anwendung() = default;

Startergebnis Anwendung::starten() {
    const Startergebnis ergebnis = teile_->start.Main();
    if (ergebnis != Startergebnis::Laeuft) return ergebnis;
    teile_->weckTimer.starten();
    teile_->laeuft = true;
    for (const std::string& zeile : std::exchange(teile_->wartendeZeilen, {}))
        DoThis(zeile);
    teile_->wendel.setzeBereit();
    teile_->wendel.vorgemerktesAnstossen();
    return teile_->wendel.beendet() ? Startergebnis::Beendet : Startergebnis::Laeuft;
}

void Anwendung::tick() {
    if (!teile_->laeuft) return;
    teile_->weckTimer.Timer();
    teile_->wendel.vorgemerktesAnstossen();
}

void Anwendung::DoThis(const std::string& text) {
    if (teile_->laeuft) {
        teile_->wendel.SteuerzeileEmpfangen(text);
    } else if (auto& zeilen = teile_->wartendeZeilen; std::ranges::find(zeilen, text) == zeilen.end()) {
        // Once each: a box of the start may stand for hours.
        zeilen.push_back(text);
    }
}

bool Anwendung::fensterNachricht(std::uint32_t nachricht, std::uintptr_t wParam, std::uintptr_t lParam) {
    return teile_->wendel.fensterNachricht(nachricht, wParam, lParam);
}

void Anwendung::beenden() { teile_->wendel.ExitProgram(false); }

FormWendel& Anwendung::formWendel() { return teile_->wendel; }

FormHinweis& Anwendung::formHinweis() { return teile_->hinweis; }

FormTermin& Anwendung::formTermin() { return teile_->termin; }

FormAufzeichnungsHinweis& Anwendung::formAufzeichnungsHinweis() { return teile_->aufzeichnungsHinweis; }

FormAufzeichnungsskript& Anwendung::formAufzeichnungsskript() { return teile_->aufzeichnungsskript; }

FormAufzeichnungsverlauf& Anwendung::formAufzeichnungsverlauf() { return teile_->verlauf; }

const Prozesswerte& Anwendung::werte() const { return teile_->werte; }

}  // namespace wendel
