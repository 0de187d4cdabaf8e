#pragma once
// Carries out the jobs of the settings tool in one programme folder. Reading and writing the settings file is
// the work of Einstellungen; what a value looks like, that of Einstellungstabelle; what stands in a new
// database, that of Fernsehdatenbank; what a calendar file says, that of Kalendereingabe and -ausgabe.

#include <optional>
#include <ostream>
#include <string>

#include "Befehlszeile.h"
#include "Fernsehdatenbank.h"
#include "Kalendereingabe.h"
#include "platform/Ports.h"
#include "tvdb/Einstellungen.h"

namespace wendel::quillon {

class Einrichter {
  public:
    // ausgabe gets what was asked for, hinweise what the user should know besides. All outlive this object.
    Einrichter(const Ports& ports, std::string programmordner, std::ostream& ausgabe, std::ostream& hinweise);

    // Throws Fehler with a German description when the job could not be done.
    void erledige(const Auftrag& auftrag);

  private:
    void tue(const Anlegen&);
    void tue(const Erststart&);
    void tue(const Beispiel&);
    void tue(const Setze& auftrag);
    void tue(const Anfuegen& auftrag);
    void tue(const Zeige& auftrag);
    void tue(const TermineExport& auftrag);
    void tue(const TermineImport& auftrag);

    void legeEinstellungenAn();
    void legeGuidekonfigurationAn();
    void legeOrdnerAn(const std::string& name);
    void legeAllesAusserDatenbankAn();
    std::string lokaleDatenbank() const { return programmordner_ + "tvdaten.mdb"; }
    std::optional<std::string> vorhandeneDatenbank();
    std::optional<std::string> fehlendeDatenbank();
    void meldeBeispiel(const Fernsehdatenbank::Umfang& umfang);
    void setze(std::int32_t index, const Variant& wert);
    Variant gespeicherteTermine();
    Variant lesbareEinstellungen();
    void ersetzeKalender(const std::string& pfad, const std::string& kalender);
    Kalenderinhalt liesKalender(const std::string& pfad, Datum jetzt);
    void zeigeZeile(const Einstellungszeile& zeile, const Variant& array);

    Uhr& uhr_;
    Dateisystem& dateien_;
    std::string programmordner_;
    Einstellungen einstellungen_;
    Fernsehdatenbank fernsehdatenbank_;
    std::ostream& ausgabe_;
    std::ostream& hinweise_;
};

}  // namespace wendel::quillon
