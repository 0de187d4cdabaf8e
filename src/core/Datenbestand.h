#pragma once
// What the program knows and how each part of it is read again: settings, paths, channels, the three
// collections of entries, what the tray menu shows. Start-up reads everything once, a control line some of
// it, the tick what a fired entry has changed. A reading that fails keeps what was known before. Shows
// nothing but the boxes of the two path questions and of the database access.

#include <cstdint>
#include <string>
#include <vector>

#include "core/EigeneTermine.h"
#include "platform/Ports.h"
#include "platform/Prozesswerte.h"
#include "reminders/ErinnerungenLesen.h"
#include "reminders/Hinweisjournal.h"
#include "reminders/cTermin.h"
#include "traymenu/Menuelisten.h"
#include "traymenu/Tagestipp.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/Einstellungstabelle.h"
#include "tvdb/Markierungspflege.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/Senderliste.h"

namespace wendel {

class Datenbestand {
  public:
    // All arguments outlive the object. werte holds the programme folder already; paths and title are written
    // into it.
    Datenbestand(const Ports& ports, Prozesswerte& werte);

    // --- settings, paths, title ---

    // All settings. While the file is absent or unreadable, those known before stay, at first the defaults.
    void einstellungenLesen();
    const Konfiguration& konfiguration() const { return konfiguration_; }
    // Those that scripts use, afresh: script, both folders, debug display.
    void skriptwerteLesen();
    // The live update has succeeded. A failed write is tried again with speichernWennNoetig(); until then the
    // moment is not taken from the file.
    void letztesUpdateMerken(Datum moment);

    // Database file and Hyperlinks folder from the settings; asks whether to take the local one for each that
    // is not there.
    void pfadeBestimmen();
    void hauptanwendungTitelLesen();

    // --- the user's own appointments ---

    EigeneTermine& termine() { return termine_; }
    // Writes changed appointments and notices that could not be written; does nothing when all is stored.
    // False when writing failed: the next call tries again.
    bool speichernWennNoetig();

    // --- what comes from the database ---

    // Channels; throws what the access layer throws, the old ones stay.
    void senderLaden();
    // Reminders and recordings; also missed reminders where they are owed, which then stand in the collection
    // of reminders, due. Failures keep the old collections. Called from inside a box of this, of
    // markierungenPflegenUndAbfragen() or of senderLaden() it returns at once; the access that is under way
    // is followed by one more if it succeeds.
    void abfragen();
    // The same, with the table of marks brought up to date before. What of that fails, the access layer has
    // shown; the queries are made all the same. A database that refuses to be written is not tried again
    // before the next pfadeBestimmen(): its boxes would come with every notice.
    void markierungenPflegenUndAbfragen();
    // The program did not watch for a while: the next abfragen() that succeeds also looks for what was
    // missed.
    void verpassteVormerken() { verpassteOffen_ = true; }
    // An access is under way; its boxes let the user, ticks and control lines act meanwhile.
    bool zugriffLaeuft() const { return zugriffLaeuft_; }

    // --- what the tray menu shows ---

    // The lists of broadcasts and the day's tip, each asked for only when the answer can be another one. For
    // the user who waits for the menu: what fails brings a box. Does nothing while an access is under way.
    void menueLesen();
    // The same, and the tip alone, when nobody has asked: what fails is tried again at the next occasion. A
    // box would stand there for hours and keep back whatever comes after this call.
    void menueLesenOhneKaesten();
    void tippLesenOhneKaesten();
    // The panel of the tip is wanted, and no tip of today is known.
    bool tippFehlt() const { return konfiguration_.tagestipp && !tagestipp_.vonHeute(); }
    // The data have changed: all of it is asked for anew at the next reading.
    void menueVeraltet();
    const Menuelisten& menuelisten() const { return menuelisten_; }
    // Null while the panel is not wanted.
    const Tagestippfelder* tagestipp() const;
    const Sendersammlung& sender() const { return sender_.alle(); }

    // --- the entries ---

    const Terminliste& eigene() const { return termine_.liste(); }
    const Terminliste& erinnerungen() const { return erinnerungen_; }
    const Terminliste& aufzeichnungen() const { return aufzeichnungen_; }
    // How often they have been read; another number: they may be others.
    std::uint64_t aufzeichnungenGelesen() const { return aufzeichnungenGelesen_; }
    // Keys of the user's marks as the last maintenance has read them.
    const Markierungslisten& markierungslisten() const { return markierungslisten_; }
    Hinweisjournal& journal() { return journal_; }
    const Prozesswerte& werte() const { return werte_; }

  private:
    // The boxes of the database access, or none of them: then each is declined at once.
    struct Rueckfragen : Meldungen {
        explicit Rueckfragen(Meldungen& gezeigte) : gezeigte_(gezeigte) {}
        Antwort meldung(const std::string& text, int stil, const std::string& titel) override {
            return ablehnen ? Antwort::Abbrechen : gezeigte_.meldung(text, stil, titel);
        }
        void zeigeFehlerOhneWarten(const std::string& text, int nummer, const std::string& quelle,
                                   const std::string& beschreibung, const std::string& titel) override {
            gezeigte_.zeigeFehlerOhneWarten(text, nummer, quelle, beschreibung, titel);
        }
        bool ablehnen = false;

      private:
        Meldungen& gezeigte_;
    };

    void letztesUpdateSchreiben();
    bool senderBereit();
    bool tippLesen();
    Terminabfragen terminabfragen();
    std::vector<std::string> senderkennungen() const;
    void zugreifen(bool pflegen);
    bool durchgang(bool pflegen);
    void aufgeschobenesNachholen(bool gelungen);
    bool markierungenPflegen(Datum jetzt);
    bool istUeberholt(Datum abfragemoment);
    bool erinnerungenLesen(Terminabfragen& abfragen, Datum jetzt);
    bool verpassteLesen(Terminabfragen& abfragen, Datum jetzt);
    bool aufzeichnungenLesen(Terminabfragen& abfragen, Datum jetzt);
    Terminliste vereinigt(const Terminliste& gelesen);

    const Ports& ports_;
    Prozesswerte& werte_;
    Einstellungen einstellungen_;
    Rueckfragen rueckfragen_;
    ModulDatenbankzugriff zugriff_;
    Senderliste sender_;
    Menuelisten menuelisten_;
    Tagestipp tagestipp_;
    const Tagestippfelder keinTipp_;
    Hinweisjournal journal_;
    EigeneTermine termine_;
    Konfiguration konfiguration_;

    Terminliste erinnerungen_;
    Terminliste aufzeichnungen_;
    std::uint64_t aufzeichnungenGelesen_ = 0;
    Markierungslisten markierungslisten_;
    bool einstellungenGelesen_ = false;
    bool letztesUpdateOffen_ = false;  // not in the file yet
    bool verpassteOffen_ = true;
    bool senderGeladen_ = false;
    bool zugriffLaeuft_ = false;
    bool abfrageNachholen_ = false;
    bool pflegeNachholen_ = false;
    bool nurLesbar_ = false;
};

}  // namespace wendel
