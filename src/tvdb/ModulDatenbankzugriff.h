#pragma once
// The one gate to the database that the suite's programs share. It retries locking conflicts, asks the user
// about every other failure, offers a repair, and logs what failed or was slow. Statements and what they mean
// are left to the callers.
//
//     auto db = zugriff.OpenDatenbank(zugriff.datenbankdatei());
//     auto rs = zugriff.SafeOpenRs(db, sql, kSnapshot, kForwardOnly);
//     while (!rs->eof()) ...
//     zugriff.SafeCloseRs(rs);
//     zugriff.SafeCloseDatenbank(db);
//
// Calls block while they wait, and boxes run the message loop: a tick may come in meanwhile.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Fehler.h"
#include "platform/Ports.h"
#include "platform/Prozesswerte.h"
#include "tvdb/Einstellungen.h"

namespace wendel {

class ModulDatenbankzugriff {
  public:
    // All three must outlive this object. Nothing is opened before the first use.
    ModulDatenbankzugriff(const Ports& ports, Einstellungen& einstellungen, const Prozesswerte& werte);

    // A new engine. Throws Fehler 1 when no version of it can be made.
    std::unique_ptr<Datenbankmaschine> SafeCreateDBObject();

    // Asks Retry/Cancel at every failure; Cancel throws the engine's error.
    std::unique_ptr<Datenbank> OpenDatenbank(const std::string& pfad);

    // The opened recordset, or null for typ 0 or less with optionen above 0 (part of the contract). Throws
    // the engine's error once the user has given up. db may be a new object afterwards, also after a throw;
    // it is null when reopening it failed, and calls with a null db throw 91.
    std::unique_ptr<Recordset> SafeOpenRs(std::unique_ptr<Datenbank>& db, const std::string& sql, int typ = 0,
                                          int optionen = 0);

    // The same for a statement without rows. With fehlerIgnorieren any failure of the statement counts as
    // success.
    void SafeExecute(std::unique_ptr<Datenbank>& db, const std::string& sql, bool fehlerIgnorieren = false);

    // Saves the record that rs is adding or editing, with the same silent retries.
    void SafeUpdate(Recordset& rs);

    // Closes and drops it; nothing to do for null. Never throw: what can't be closed is let go all the same.
    void SafeCloseRs(std::unique_ptr<Recordset>& rs);
    void SafeCloseDatenbank(std::unique_ptr<Datenbank>& db);

    // True for the engine's locking conflicts, which pass by themselves.
    static bool IstSperrfehler(int nummer);

    // Closes and drops db, then repairs and compacts the file; what fails is passed over quietly.
    void DatenbankReparieren(std::unique_ptr<Datenbank>& db, const std::string& pfad);

    // Appends to "tvdbaccess.log" in the programme folder, begun anew beyond 1 MiB.
    void ZugriffProtokollieren(const std::string& text, bool neueZeile);
    // Appends a line to a file of the current folder, with date and time and the free memory before it if
    // wanted.
    void LogSchreiben(const std::string& datei, const std::string& text, bool mitZeit, bool mitSpeicher);

    // Bytes.
    std::int32_t FreierSpeicher();

    // The path that start-up has settled.
    const std::string& datenbankdatei() const { return werte_.datenbankdatei; }

    // Log every statement to "drumlet.log"; give up at once and without a box on all but locking conflicts.
    // Nothing in this program switches them on.
    bool sqlProtokoll = false;
    bool stillerModus = false;
    // No silent retries after locking conflicts: their pauses, half a minute in all, block the thread that
    // the reminders come from.
    bool ohneWarten = false;

  private:
    class Sperrwiederholung;
    using Zugriff = std::function<void(Datenbank&)>;

    Datenbankmaschine& maschine();
    void mitWiederholung(std::unique_ptr<Datenbank>& db, const std::string& sql, bool fehlerIgnorieren,
                         const Zugriff& zugriff);
    std::optional<Fehler> versuche(Datenbank& db, const std::string& sql, bool fehlerIgnorieren,
                                   const Zugriff& zugriff);
    void zugriffFesthalten(const std::optional<Fehler>& fehler, std::int64_t sekunden,
                           const std::string& sql);
    bool nochmalNachBox(const Fehler& fehler, std::unique_ptr<Datenbank>& db, const std::string& pfad);
    bool nochmalNachZugriffsfehler(const Fehler& fehler, std::unique_ptr<Datenbank>& db,
                                   const std::string& pfad);
    void repariereUndKomprimiere(const std::string& pfad);
    bool wiederholenGewuenscht(const std::string& text, int stil, const std::string& titel);
    std::string programmTitel() const;
    std::string zeitstempel() const;

    Ports ports_;
    Einstellungen& einstellungen_;
    const Prozesswerte& werte_;
    std::unique_ptr<Datenbankmaschine> maschine_;
};

}  // namespace wendel
