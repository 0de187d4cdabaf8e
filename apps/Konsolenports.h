#pragma once
// The doors to the outside for a program without windows: this machine's clock, files and name, and nobody to
// ask. A question of the database access is answered as by someone who gives up; its error then comes out as
// Fehler, and the program ends with it.

#include "desktop/LinuxDateistarter.h"
#include "desktop/LinuxDateisystem.h"
#include "desktop/LinuxKlang.h"
#include "desktop/LinuxProzesse.h"
#include "desktop/LinuxRechner.h"
#include "desktop/Pfade.h"
#include "jet/JetDatenbankmaschinen.h"
#include "platform/Ports.h"

namespace wendel {

class Konsolenports {
  public:
    // uhr outlives this.
    explicit Konsolenports(Uhr& uhr)
        : datenbanken_(uhr, [](const std::string& pfad) { return nativerPfad(pfad); }),
          ports_{uhr,         dateien_, meldungen_, fenster_,     klang_,         prozesse_, starter_,
                 automation_, symbol_,  rechner_,   datenbanken_, fernsteuerung_, energie_} {}
    Konsolenports(const Konsolenports&) = delete;
    Konsolenports& operator=(const Konsolenports&) = delete;

    const Ports& ports() const { return ports_; }

  private:
    class NiemandDa : public Meldungen {
      public:
        Antwort meldung(const std::string& /*text*/, int stil, const std::string& /*titel*/) override {
            return stil == meldungsstil::kJaNeinAusrufezeichen ? Antwort::Nein : Antwort::Abbrechen;
        }
        void zeigeFehlerOhneWarten(const std::string& /*text*/, int /*nummer*/, const std::string& /*quelle*/,
                                   const std::string& /*beschreibung*/,
                                   const std::string& /*titel*/) override {}
    };
    class KeineFenster : public Fenstersystem {
      public:
        Arbeitsbereich arbeitsbereich() override { return {}; }
        Punkt zeiger() override { return {}; }
        Fensterhandle vordergrundfenster() override { return 0; }
        std::uint64_t fensterThread(Fensterhandle /*fenster*/) override { return 0; }
        void eingabeVerbinden(std::uint64_t /*von*/, std::uint64_t /*zu*/, bool /*verbinden*/) override {}
        bool vordergrundSetzen(Fensterhandle /*fenster*/) override { return false; }
        bool istMinimiert(Fensterhandle /*fenster*/) override { return false; }
        void wiederherstellen(Fensterhandle /*fenster*/) override {}
        void zeigen(Fensterhandle /*fenster*/) override {}
        bool aktivierenNachTitel(const std::string& /*titel*/) override { return false; }
        void sanduhr(bool /*an*/) override {}
    };
    class KeineAutomation : public Automation {
      public:
        bool rufeDoThis(const std::string& /*klasse*/, const std::string& /*text*/) override { return false; }
        void setzeWartemeldung(const std::string& /*titel*/, const std::string& /*text*/,
                               int /*zeitMs*/) override {}
    };
    class KeinSymbol : public TaskleistenSymbol {
      public:
        void hinzufuegen(std::span<const std::uint8_t, 88> /*datensatz*/) override {}
        void aendern(std::span<const std::uint8_t, 88> /*datensatz*/) override {}
        void entfernen(std::uint32_t /*kennung*/) override {}
    };

    class KeineFernsteuerung : public Fernsteuerung {
      public:
        std::string hindernis() override { return "Dieses Programm steuert keine anderen."; }
        bool starteBefehlszeile(const std::string& /*befehlszeile*/) override { return false; }
        Fensterhandle fensterNachTitel(const std::string& /*titel*/) override { return 0; }
        void zeigeNormal(Fensterhandle /*fenster*/) override {}
        bool aktivieren(const std::string& /*titel*/) override { return false; }
        bool sendeTasten(std::span<const Tastenereignis> /*ereignisse*/) override { return false; }
        void signalton() override {}
    };
    class KeineEnergie : public Energie {
      public:
        void wachhalten(const std::string& /*grund*/) override {}
        void schlafErlauben() override {}
        bool weckenUm(std::optional<Datum> /*moment*/) override { return false; }
    };

    LinuxDateisystem dateien_;
    LinuxKlang klang_;
    LinuxProzesse prozesse_;
    LinuxDateistarter starter_;
    LinuxRechner rechner_;
    NiemandDa meldungen_;
    KeineFenster fenster_;
    KeineAutomation automation_;
    KeinSymbol symbol_;
    KeineFernsteuerung fernsteuerung_;
    KeineEnergie energie_;
    jet::JetDatenbankmaschinen datenbanken_;
    Ports ports_;
};

}  // namespace wendel
