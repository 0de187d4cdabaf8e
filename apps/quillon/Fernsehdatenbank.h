#pragma once
// Makes the suite's database where there is none, and writes the example guide into an empty one, with the
// same access layer and records as the other programs. What is asked for, and what is said about it, is left
// to Einrichter.

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "Beispielprogramm.h"
#include "platform/Ports.h"
#include "platform/Prozesswerte.h"
#include "tvdb/Einstellungen.h"
#include "tvdb/ModulDatenbankzugriff.h"

namespace wendel::quillon {

class Fernsehdatenbank {
  public:
    // Ports and settings outlive this. programmordner as in Prozesswerte.
    Fernsehdatenbank(const Ports& ports, Einstellungen& einstellungen, const std::string& programmordner);

    struct Umfang {
        std::size_t sender = 0, sendungen = 0;
        Datum erste, letzte;  // beginning of the first, end of the last broadcast
    };

    // Makes the file at this path with the suite's tables, without or with the example guide; false when
    // there is one already, also one that another process makes meanwhile. Until it is whole and on the disk
    // it stands beside as "<pfad>.neu"; one that was left behind is made anew. Throws Fehler.
    bool anlegen(const std::string& pfad);
    bool anlegenMitBeispiel(const std::string& pfad, Umfang& umfang);

    // Writes the guide into a database that has neither broadcasts nor channels, or only what a run of this
    // that was killed has left there. Throws Fehler 1 for any other, in which nothing is changed then.
    Umfang beispielEintragen(const std::string& pfad);

  private:
    using Inhalt = std::function<void(std::unique_ptr<Datenbank>& db)>;
    bool legeAn(const std::string& pfad, const Inhalt& inhalt);
    void baue(const std::string& neu, const Inhalt& inhalt);
    [[noreturn]] void misslungen(const std::string& pfad);
    Umfang schreibe(std::unique_ptr<Datenbank>& db);
    void schreibeSender(std::unique_ptr<Datenbank>& db);
    Beispielprogramm schreibeSendungen(std::unique_ptr<Datenbank>& db);
    void schreibeMarken(std::unique_ptr<Datenbank>& db, const Beispielprogramm& programm);
    void raeumeUnfertigesWeg(std::unique_ptr<Datenbank>& db);
    double anzahl(std::unique_ptr<Datenbank>& db, const std::string& zeilen);

    const Ports& ports_;
    Prozesswerte werte_;
    ModulDatenbankzugriff zugriff_;
};

}  // namespace wendel::quillon
