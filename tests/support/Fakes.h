#pragma once
// Stand-ins for every port, for tests of the logic. Each keeps a list of what was asked, can be told to fail,
// and has hooks through which a test does something at that very moment (a tick inside a message box, a slow
// statement). FakePorts holds one of each on one common journal of calls; time stands still unless a test
// moves it.

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/Fehler.h"
#include "platform/Ports.h"
#include "platform/ports/Einwahl.h"
#include "platform/ports/Registrierung.h"
#include "platform/ports/Statusverbindung.h"

namespace wendel {

// The common journal: numbers of calls by the port's name, and while mitschreiben is set one line per call in
// their order, "Fenstersystem.zeigen(7)". Clock readings are only counted; openings and statements count as
// "Datenbank".
class Aufrufe {
  public:
    bool mitschreiben = true;
    std::vector<std::string> zeilen;

    // Stays where it is.
    std::int64_t& zaehler(const std::string& port) { return anzahl_[port]; }
    // Of a port that has a fake here.
    std::int64_t anzahl(const std::string& port) const { return anzahl_.at(port); }
    // All calls but those to the clock.
    std::int64_t anzahlOhneUhr() const;
    void leeren();

  private:
    std::map<std::string, std::int64_t> anzahl_;
};

// Base of the fakes: writes into the common journal, or into its own when it stands alone.
class FakeBasis {
  public:
    FakeBasis(const char* port, Aufrufe* gemeinsam)
        : port_(port), aufrufe_(gemeinsam ? *gemeinsam : eigene_), zaehler_(aufrufe_.zaehler(port)) {}
    FakeBasis(const FakeBasis&) = delete;
    FakeBasis& operator=(const FakeBasis&) = delete;
    Aufrufe& aufrufe() { return aufrufe_; }

    void zaehle() { ++zaehler_; }
    void notiere(std::string_view vorgang, std::string_view argumente = {});
    void notiere(std::string_view vorgang, std::uintptr_t argument) {
        notiere(vorgang, std::to_string(argument));
    }

  private:
    const char* port_;
    Aufrufe eigene_;
    Aufrufe& aufrufe_;
    std::int64_t& zaehler_;
};

// Begins on 24 December 2012, 20:00:00.
class FakeUhr : public FakeBasis, public Uhr {
  public:
    explicit FakeUhr(Aufrufe* gemeinsam = nullptr) : FakeBasis("Uhr", gemeinsam) {}

    // A clock step: wall-clock time jumps, the running time does not notice.
    void stelle(Datum wanduhr) { wanduhrMs_ = wanduhr.sekunden() * 1000; }
    // Both go on; a suspended machine is a large step.
    void vor(std::int64_t sekunden) { vorMs(sekunden * 1000); }
    void vorMs(std::int64_t ms) { wanduhrMs_ += ms, laufzeitMs_ += ms; }

    std::vector<int> schlafdauern;  // every schlafe(), in ms
    int nachrichtenlaeufe = 0;
    std::function<void(int ms)> beimSchlafen;
    std::function<void()> beiNachrichten;

    Datum jetzt() override { return zaehle(), Datum::ausSekunden(wanduhrMs_ / 1000); }
    std::int64_t laufzeitMs() override { return zaehle(), laufzeitMs_; }
    void schlafe(int ms) override;
    void nachrichtenVerarbeiten() override;

  private:
    std::int64_t wanduhrMs_ = 41267LL * 86400000 + 20LL * 3600000;
    std::int64_t laufzeitMs_ = 1000;
};

// Thrown by a simulated kill. No std::exception, so that no handler for errors takes it for one.
struct Absturz {};

// Files in memory. A path is absolute when it begins with "\" or a drive letter, else it counts from the
// current folder; case counts, also in reading. Folders must exist for their files to be written.
class FakeDateisystem : public FakeBasis, public Dateisystem {
  public:
    // What a kill leaves of the write it hits: nothing, its first half, all of it. A replacing write and the
    // other single steps are done or not done, never half.
    enum class Rest { Nichts, Haelfte, Alles };

    explicit FakeDateisystem(Aufrufe* gemeinsam = nullptr) : FakeBasis("Dateisystem", gemeinsam) {}

    // For setting up and looking: not counted, never failing.
    void lege(const std::string& pfad, std::string inhalt);  // makes the folders too
    void legeOrdner(const std::string& pfad);
    void entferne(const std::string& pfad) { dateien_.erase(absolut(pfad)); }
    std::optional<std::string> inhalt(const std::string& pfad) const;
    std::vector<std::string> dateien() const;                        // absolute paths in order
    const std::string& aktuellerOrdner() const { return aktuell_; }  // ends in "\"

    // The n-th write from now (1 is the next) fails.
    void scheitereBeimSchreiben(int n) { schreibfehlerIn_ = n; }
    // The n-th durable operation from now throws Absturz; afterwards nothing works any more, as in a dead
    // process, until neustart().
    void stuerzeAbBei(int n, Rest rest = Rest::Nichts) { absturzIn_ = n, rest_ = rest; }
    void neustart();
    // Asked first by every operation with its name and the path as given; true makes it fail.
    std::function<bool(const std::string& vorgang, const std::string& pfad)> scheitert;
    // Exact paths whose content cannot be changed.
    std::set<std::string> nurLesen;
    // By exact path, for stand(): when a file was changed; 0 unless a test says more.
    std::map<std::string, std::int64_t> geaendertNs;

    bool existiert(const std::string& pfad) override;
    std::optional<std::uint64_t> groesse(const std::string& pfad) override;
    std::optional<Dateistand> stand(const std::string& pfad) override;
    std::optional<std::string> lesen(const std::string& pfad) override;
    bool anlegen(const std::string& pfad) override;
    bool ueberschreibenAmAnfang(const std::string& pfad, std::string_view inhalt) override;
    bool schreiben(const std::string& pfad, std::string_view inhalt) override;
    bool ersetzen(const std::string& pfad, std::string_view inhalt) override;
    bool anhaengen(const std::string& pfad, std::string_view inhalt) override;
    bool loeschen(const std::string& pfad) override;
    bool umbenennen(const std::string& von, const std::string& nach) override;
    std::optional<std::vector<Ordnereintrag>> ordnerinhalt(const std::string& pfad) override;
    bool ordnerAnlegen(const std::string& pfad) override;
    bool ordnerWechseln(const std::string& pfad) override;
    std::string pfadAnzeige(const std::string& pfad) override { return pfad; }

  private:
    bool vorgang(std::string_view name, const std::string& pfad);
    // Does as much of a durable operation as the plan of failures allows: the whole, or half when it has one.
    bool dauerhaft(const std::function<void()>& ganz, const std::function<void()>& halb = {});
    bool schreibbar(std::string_view name, const std::string& pfad);
    bool schreibe(std::string_view name, const std::string& pfad, std::string_view inhalt,
                  const std::function<void(std::string& datei, std::string_view teil)>& tue);
    std::string absolut(const std::string& pfad) const;
    std::string ordnerpfad(const std::string& pfad) const;

    std::map<std::string, std::string> dateien_;
    std::set<std::string> ordner_ = {"\\"};
    std::string aktuell_ = "\\";
    int schreibfehlerIn_ = 0;
    int absturzIn_ = 0;
    Rest rest_ = Rest::Nichts;
    bool tot_ = false;
};

class FakeMeldungen : public FakeBasis, public Meldungen {
  public:
    struct Kasten {
        std::string text;
        int stil = 0;
        std::string titel;
        friend bool operator==(const Kasten&, const Kasten&) = default;
    };

    explicit FakeMeldungen(Aufrufe* gemeinsam = nullptr) : FakeBasis("Meldungen", gemeinsam) {}

    // Answers in their order; after the last one every box is declined: cancel, no, or plain OK.
    std::deque<Antwort> antworten;
    std::vector<Kasten> gezeigt;
    std::vector<std::string> fehler;  // texts shown without waiting
    // Runs while the box is open, before its answer is taken.
    std::function<void(const Kasten&)> imKasten;

    Antwort meldung(const std::string& text, int stil, const std::string& titel) override;
    void zeigeFehlerOhneWarten(const std::string& text, int nummer, const std::string& quelle,
                               const std::string& beschreibung, const std::string& titel) override;
};

class FakeFenstersystem : public FakeBasis, public Fenstersystem {
  public:
    struct Fenster {
        std::string titel;
        std::uint64_t thread = 1;
        bool minimiert = false;
    };

    explicit FakeFenstersystem(Aufrufe* gemeinsam = nullptr) : FakeBasis("Fenstersystem", gemeinsam) {}

    std::map<Fensterhandle, Fenster> fenster;  // others come into being when they are asked about
    Fensterhandle vordergrund = 0;
    bool vordergrundErlaubt = true;
    bool sanduhrAn = false;

    Punkt zeiger() override { return zaehle(), Punkt{1900, 1030}; }
    Arbeitsbereich arbeitsbereich() override { return zaehle(), Arbeitsbereich{0, 0, 1920, 1040}; }
    Fensterhandle vordergrundfenster() override { return notiere("vordergrundfenster"), vordergrund; }
    std::uint64_t fensterThread(Fensterhandle handle) override {
        return notiere("fensterThread", handle), fenster[handle].thread;
    }
    void eingabeVerbinden(std::uint64_t vonThread, std::uint64_t zuThread, bool verbinden) override;
    bool vordergrundSetzen(Fensterhandle handle) override;
    bool istMinimiert(Fensterhandle handle) override {
        return notiere("istMinimiert", handle), fenster[handle].minimiert;
    }
    void wiederherstellen(Fensterhandle handle) override {
        notiere("wiederherstellen", handle), fenster[handle].minimiert = false;
    }
    void zeigen(Fensterhandle handle) override { notiere("zeigen", handle); }
    bool aktivierenNachTitel(const std::string& titel) override;
    void sanduhr(bool an) override { notiere("sanduhr", an ? "an" : "aus"), sanduhrAn = an; }
};

class FakeKlang : public FakeBasis, public Klang {
  public:
    explicit FakeKlang(Aufrufe* gemeinsam = nullptr) : FakeBasis("Klang", gemeinsam) {}
    std::vector<std::string> gespielt;

    int ausgabegeraete() override { return notiere("ausgabegeraete"), 1; }
    void spieleAsynchron(const std::string& pfad) override {
        notiere("spieleAsynchron", pfad), gespielt.push_back(pfad);
    }
};

class FakeProzesse : public FakeBasis, public Prozesse {
  public:
    explicit FakeProzesse(Aufrufe* gemeinsam = nullptr) : FakeBasis("Prozesse", gemeinsam) {}
    std::vector<Prozess> laufende;
    std::vector<std::uint32_t> beendet;  // successful ends; the process leaves laufende

    std::vector<Prozess> liste() override { return notiere("liste"), laufende; }
    bool beenden(std::uint32_t id) override;
};

class FakeStarter : public FakeBasis, public Dateistarter {
  public:
    struct Start {
        std::string datei, parameter, ordner;
        int fensterstil = 0;
        friend bool operator==(const Start&, const Start&) = default;
    };
    explicit FakeStarter(Aufrufe* gemeinsam = nullptr) : FakeBasis("Dateistarter", gemeinsam) {}
    int ergebnis = 33;
    std::vector<Start> gestartet;

    int ausfuehren(const std::string& datei, const std::string& parameter, const std::string& ordner,
                   int fensterstil) override;
};

class FakeAutomation : public FakeBasis, public Automation {
  public:
    struct Ruf {
        std::string klasse, text;
        friend bool operator==(const Ruf&, const Ruf&) = default;
    };
    explicit FakeAutomation(Aufrufe* gemeinsam = nullptr) : FakeBasis("Automation", gemeinsam) {}
    std::vector<Ruf> rufe;

    bool rufeDoThis(const std::string& klasse, const std::string& text) override;
    void setzeWartemeldung(const std::string& titel, const std::string& text, int zeitMs) override;
};

// Keeps the icons' last records and reads them back: identifier at byte 8, tooltip (Windows-1252) from byte
// 24.
class FakeSymbol : public FakeBasis, public TaskleistenSymbol {
  public:
    using Datensatz = std::array<std::uint8_t, 88>;
    explicit FakeSymbol(Aufrufe* gemeinsam = nullptr) : FakeBasis("TaskleistenSymbol", gemeinsam) {}

    std::map<std::uint32_t, Datensatz> symbole;  // what the tray shows now
    // Tooltip of the only icon, "" when there is none.
    std::string tooltip() const;

    void hinzufuegen(std::span<const std::uint8_t, 88> datensatz) override {
        notiere("hinzufuegen"), merke(datensatz, true);
    }
    void aendern(std::span<const std::uint8_t, 88> datensatz) override {
        notiere("aendern"), merke(datensatz, false);
    }
    void entfernen(std::uint32_t kennung) override { notiere("entfernen", kennung), symbole.erase(kennung); }

  private:
    void merke(std::span<const std::uint8_t, 88> datensatz, bool neu);
};

class FakeRechner : public FakeBasis, public Rechner {
  public:
    explicit FakeRechner(Aufrufe* gemeinsam = nullptr) : FakeBasis("Rechner", gemeinsam) {}
    std::string name = "PC-BUERO";
    bool nameBekannt = true;
    std::deque<double> zufallszahlen;  // in their order, afterwards 0.5

    bool rechnername(std::string& puffer) override;
    std::int32_t freierSpeicher() override { return zaehle(), 123456789; }
    std::optional<std::string> spezialordner(int nummer) override;
    double zufall() override;

    std::map<int, std::string> spezialordnerpfade = {{36, "\\usr"}, {37, "\\usr\\lib"}, {38, "\\usr\\bin"}};
};

// Windows open when they are put into fenster, or when the running time has reached the one that a started
// program is given by oeffnetNachMs.
class FakeFernsteuerung : public FakeBasis, public Fernsteuerung {
  public:
    explicit FakeFernsteuerung(Aufrufe* gemeinsam = nullptr, FakeUhr* uhr = nullptr)
        : FakeBasis("Fernsteuerung", gemeinsam), uhr_(uhr) {}

    std::string hindernisText;
    std::set<std::string> fehlendeProgramme;                         // by whole command line
    std::function<bool(const std::string& befehlszeile)> beimStart;  // sees each start and decides about it
    std::vector<std::string> fenster;                                // titles
    std::map<std::string, std::int64_t> oeffnetUm;                   // titles, running time in ms
    bool nimmtTasten = true;
    std::vector<std::vector<Tastenereignis>> gesendet;

    std::string hindernis() override { return hindernisText; }
    bool starteBefehlszeile(const std::string& befehlszeile) override;
    Fensterhandle fensterNachTitel(const std::string& titel) override;
    void zeigeNormal(Fensterhandle handle) override { notiere("zeigeNormal", handle); }
    bool aktivieren(const std::string& titel) override {
        return notiere("aktivieren", titel), fensterNachTitel(titel) != 0;
    }
    bool sendeTasten(std::span<const Tastenereignis> ereignisse) override;
    void signalton() override { notiere("signalton"); }

  private:
    FakeUhr* uhr_;
};

class FakeEnergie : public FakeBasis, public Energie {
  public:
    explicit FakeEnergie(Aufrufe* gemeinsam = nullptr) : FakeBasis("Energie", gemeinsam) {}
    bool wach = false;
    bool weckenErlaubt = true;
    std::optional<Datum> weckzeit;

    void wachhalten(const std::string& grund) override { notiere("wachhalten", grund), wach = true; }
    void schlafErlauben() override { notiere("schlafErlauben"), wach = false; }
    bool weckenUm(std::optional<Datum> moment) override;
};

// Keys and values by their whole names, "HKCU\\Software\\Test" and "HKCU\\Software\\Test\\Name".
class FakeRegistrierung : public FakeBasis, public Registrierung {
  public:
    explicit FakeRegistrierung(Aufrufe* gemeinsam = nullptr) : FakeBasis("Registrierung", gemeinsam) {}
    std::set<std::string> schluessel;
    std::map<std::string, Registrierungswert> werte;
    bool vergesslich = false;  // writes succeed, and nothing is kept
    bool anlegbar = true;

    Schluessel oeffnen(Registrierungswurzel wurzel, const std::string& pfad, std::uint32_t rechte) override;
    Schluessel anlegen(Registrierungswurzel wurzel, const std::string& pfad, std::uint32_t rechte) override;
    bool setzeWert(Schluessel offen, const std::string& name, const Registrierungswert& wert) override;
    std::optional<Registrierungswert> frageWert(Schluessel offen, const std::string& name) override;
    bool loescheWert(Schluessel offen, const std::string& name) override {
        return werte.erase(offene_.at(offen) + "\\" + name) > 0;
    }
    bool sichern(Schluessel) override { return true; }
    void schliessen(Schluessel offen) override { offene_.erase(offen); }

  private:
    std::map<Schluessel, std::string> offene_;
};

class FakeEinwahl : public FakeBasis, public Einwahl {
  public:
    explicit FakeEinwahl(Aufrufe* gemeinsam = nullptr) : FakeBasis("Einwahl", gemeinsam) {}
    std::optional<std::vector<std::string>> verbindungen;
    std::optional<std::vector<std::string>> aktiveVerbindungen() override { return zaehle(), verbindungen; }
};

// The update program's side of the link: it serves while `bedient` is set, and speaks with sage().
class FakeStatusverbindung : public FakeBasis, public Statusverbindung {
  public:
    explicit FakeStatusverbindung(Aufrufe* gemeinsam = nullptr) : FakeBasis("Statusverbindung", gemeinsam) {}
    bool bedient = false, verbunden = false;

    // Nobody hears it without a link.
    void sage(const std::string& label, const std::string& code);
    bool verbinden(const Empfaenger& empfaenger) override;
    void trennen() override { verbunden = false; }

  private:
    Empfaenger empfaenger_;
};

// ---- the database engine ----

struct FakeTabelle {
    std::vector<std::string> spalten;
    std::vector<std::vector<Variant>> zeilen;
};
using FakeAntwort = std::variant<FakeTabelle, Fehler>;

// What reached the engine, in order: art is the operation's name in lower camel case ("openDatabase",
// "openRecordset", "execute", "update", "repairDatabase", "compactDatabase", "closeDatabase",
// "closeRecordset"). text holds the statement or the path.
struct FakeVorgang {
    std::string art, text;
    std::optional<int> typ, optionen;
    friend bool operator==(const FakeVorgang&, const FakeVorgang&) = default;
};

// The script and the records of a fake engine. It outlives its databases and recordsets through shared
// ownership.
struct FakeDatenbankzustand {
    FakeBasis* journal = nullptr;

    // Asked first for each statement; nothing means: go on with the tables below.
    std::function<std::optional<FakeAntwort>(const std::string& sql)> dynamisch;
    // Failures that the next openRecordset/execute/update calls meet, in their order, whatever the statement;
    // number 0 lets that call pass.
    std::deque<int> naechsteFehler;
    // Answers by statement text, exact. Statements to execute need none.
    std::map<std::string, FakeAntwort> antworten;
    // May throw a Fehler; runs before the operation.
    std::function<void(const std::string& pfad)> beimOeffnen;
    std::function<void(const std::string& pfad)> beimReparieren;
    std::function<void(const std::string& quelle, const std::string& ziel)> beimKomprimieren;
    // The key that the next new record is given in its first column.
    std::int32_t naechsterSchluessel = 1;
    // Records that update() has saved: the columns in the order in which they were set.
    std::vector<std::vector<std::pair<std::string, Variant>>> gespeichert;
    // Runs before each statement and update: the place to let time pass.
    std::function<void(const std::string& sql)> vorAnweisung;

    bool mitschreiben = true;
    std::vector<FakeVorgang> vorgaenge;
    int geoeffnet = 0, geschlossen = 0;  // databases
    int recordsets = 0;                  // that are open, of all databases

    int offen() const { return geoeffnet - geschlossen; }
    int recordsetsOffen() const { return recordsets; }
    // Statement texts alone, of openRecordset and execute.
    std::vector<std::string> anweisungen() const;
};

class FakeDatenbankmaschinen : public FakeBasis, public Datenbankmaschinen {
  public:
    explicit FakeDatenbankmaschinen(Aufrufe* gemeinsam = nullptr) : FakeBasis("Datenbank", gemeinsam) {
        zustand_->journal = this;
    }

    // The script; also the access to the records.
    FakeDatenbankzustand& operator*() { return *zustand_; }
    FakeDatenbankzustand* operator->() { return zustand_.get(); }

    bool direktVorhanden = true;
    std::set<std::string> kennungenVorhanden;  // of those, nachProgrammkennung makes an engine
    std::vector<std::string> versuche;         // "" for direkt(), else the identifier, in order

    std::unique_ptr<Datenbankmaschine> direkt() override { return maschine("", direktVorhanden); }
    std::unique_ptr<Datenbankmaschine> nachProgrammkennung(const std::string& kennung) override {
        return maschine(kennung, kennungenVorhanden.contains(kennung));
    }

  private:
    std::unique_ptr<Datenbankmaschine> maschine(const std::string& kennung, bool vorhanden);
    std::shared_ptr<FakeDatenbankzustand> zustand_ = std::make_shared<FakeDatenbankzustand>();
};

// One of each on one journal. The folder "\suite\" exists and is current.
struct FakePorts {
    FakePorts();
    Ports ports();

    Aufrufe aufrufe;
    FakeUhr uhr{&aufrufe};
    FakeDateisystem dateien{&aufrufe};
    FakeMeldungen meldungen{&aufrufe};
    FakeFenstersystem fenster{&aufrufe};
    FakeKlang klang{&aufrufe};
    FakeProzesse prozesse{&aufrufe};
    FakeStarter starter{&aufrufe};
    FakeAutomation automation{&aufrufe};
    FakeSymbol symbol{&aufrufe};
    FakeRechner rechner{&aufrufe};
    FakeDatenbankmaschinen datenbanken{&aufrufe};
    FakeFernsteuerung fernsteuerung{&aufrufe, &uhr};
    FakeEnergie energie{&aufrufe};
    FakeRegistrierung registrierung{&aufrufe};
    FakeEinwahl einwahl{&aufrufe};
    FakeStatusverbindung statusverbindung{&aufrufe};
    // A real engine in place of datenbanken; outlives what is made of the ports.
    Datenbankmaschinen* echteDatenbanken = nullptr;
};
inline constexpr const char* kTestordner = "\\suite\\";

}  // namespace wendel
