#include "Fernsehdatenbank.h"

#include <fcntl.h>
#include <sys/file.h>

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "Beispielplan.h"
#include "Tabellen.h"
#include "desktop/Dateideskriptor.h"
#include "desktop/Pfade.h"
#include "jet/storage/Schema.h"
#include "platform/Fehler.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/ModulSystem.h"

namespace wendel::quillon {

namespace {

using namespace ModulGrundbefehle;

// Two copies that find no database at the same moment would work on the same unfinished file. The lock is on
// the folder, so that nothing is left behind; where the file system has no such locks, there is none.
class Ordnersperre {
  public:
    explicit Ordnersperre(const std::string& pfad)
        : ordner_(::open(elternordner(nativerPfad(pfad)).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (ordner_) static_cast<void>(::flock(ordner_.get(), LOCK_EX));
    }

  private:
    Dateideskriptor ordner_;
};

// Columns by name; what is not named stays Null.
void fuege(ModulDatenbankzugriff& zugriff, Recordset& rs,
           std::initializer_list<std::pair<const char*, Variant>> werte) {
    rs.addNew();
    for (const auto& [name, wert] : werte)
        rs.setzeFeld(rs.feldnummer(name), wert);
    zugriff.SafeUpdate(rs);
}

std::string journal(const std::string& pfad) { return pfad + "-journal"; }

// Removes what a run that was killed has left of a file: itself, its journal, and what it was written under
// before it had its name.
void raeumeWeg(const std::string& pfad) {
    const std::string nativ = nativerPfad(pfad);
    const std::string name(letzterTeil(nativ));
    // What can't be deleted is reported when the new file is made over it.
    std::error_code fehler;
    for (const auto& eintrag : std::filesystem::directory_iterator(elternordner(nativ), fehler)) {
        const std::string gefunden = eintrag.path().filename().string();
        if (gefunden == name || gefunden == journal(name) || gefunden.starts_with(name + "."))
            std::filesystem::remove(eintrag.path(), fehler);
    }
}

Variant text(std::string_view wert) { return Variant::text(std::string(wert)); }

// As a list of SQL literals.
std::string eigeneKennungen() {
    std::string liste;
    for (const Beispielsender& sender : beispielsender())
        liste += (liste.empty() ? "" : ",") + SqlText(std::string(sender.kennung));
    return liste;
}

// The order of the columns is that of the marks maintenance.
std::string markenbefehl(const std::string& benutzer, const cSendung& sendung, const Beispielmarke& marke) {
    return "Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,"
           "Optionen,Aufzeichnung,SendungID,InhaltID,Aktualisierung,KzAusblenden) Values (" +
           SqlText(benutzer) + "," + std::to_string(sendung.Pos) + "," + SqlText(sendung.Titel) + "," +
           SqlText(sendung.SenderKennung) + "," + SqlDatum(sendung.Datum()) + "," +
           SqlDatumZeit(sendung.Uhrzeit()) + "," + SqlText(sendung.Dauer) + ",true," +
           SqlBool(marke.erinnerung) + "," + SqlText(marke.optionen) + "," + SqlBool(false) + "," +
           SqlText(sendung.SendungID) + "," + SqlText(sendung.InhaltID) + ",0,0)";
}

}  // namespace

Fernsehdatenbank::Fernsehdatenbank(const Ports& ports, Einstellungen& einstellungen,
                                   const std::string& programmordner)
    : ports_(ports), zugriff_(ports, einstellungen, werte_) {
    werte_.programmdatei = "quillon";
    werte_.programmordner = programmordner;
}

// ---- the file ----

bool Fernsehdatenbank::anlegen(const std::string& pfad) {
    return legeAn(pfad, [](std::unique_ptr<Datenbank>&) {});
}

bool Fernsehdatenbank::anlegenMitBeispiel(const std::string& pfad, Umfang& umfang) {
    return legeAn(pfad, [&](std::unique_ptr<Datenbank>& db) { umfang = schreibe(db); });
}

bool Fernsehdatenbank::legeAn(const std::string& pfad, const Inhalt& inhalt) {
    const Ordnersperre sperre(pfad);
    if (DateiExistiert(ports_.dateien, pfad)) return false;
    const std::string neu = pfad + ".neu";
    raeumeWeg(neu);
    try {
        baue(neu, inhalt);
    } catch (...) {
        // On a full disk the half of a database would keep the place that is missing.
        raeumeWeg(neu);
        throw;
    }
    if (ports_.dateien.umbenennen(neu, pfad)) return true;
    if (DateiExistiert(ports_.dateien, pfad)) return false;
    misslungen(pfad);
}

void Fernsehdatenbank::baue(const std::string& neu, const Inhalt& inhalt) {
    jet::createDatabaseFile(nativerPfad(neu), jet::Version::kJet4);
    auto db = zugriff_.OpenDatenbank(neu);
    for (const std::string_view befehl : tabellenbefehle())
        zugriff_.SafeExecute(db, std::string(befehl));
    inhalt(db);
    zugriff_.SafeCloseDatenbank(db);
    // What is still in a journal would stay behind when the file gets its name.
    if (ports_.dateien.existiert(journal(neu))) misslungen(neu);
}

void Fernsehdatenbank::misslungen(const std::string& pfad) {
    throw Fehler(fehlernummer::kEigener, "quillon",
                 "Die Datei \"" + ports_.dateien.pfadAnzeige(pfad) + "\" kann nicht angelegt werden.");
}

Fernsehdatenbank::Umfang Fernsehdatenbank::beispielEintragen(const std::string& pfad) {
    const Ordnersperre sperre(pfad);
    auto db = zugriff_.OpenDatenbank(pfad);
    raeumeUnfertigesWeg(db);
    if (anzahl(db, "Sendungen") + anzahl(db, "Sender") > 0) {
        throw Fehler(fehlernummer::kEigener, "quillon",
                     "In \"" + ports_.dateien.pfadAnzeige(pfad) +
                         "\" stehen schon Sender oder Sendungen. Das Beispielprogramm wird nur in eine leere "
                         "Datenbank geschrieben. Es ist nichts geändert worden.");
    }
    const Umfang umfang = schreibe(db);
    zugriff_.SafeCloseDatenbank(db);
    return umfang;
}

// The channels are written last: invented broadcasts without any channel are what a run that was killed has
// left. Nobody else can have marked them, as no programme shows them.
void Fernsehdatenbank::raeumeUnfertigesWeg(std::unique_ptr<Datenbank>& db) {
    const double sendungen = anzahl(db, "Sendungen");
    const std::string eigene = " Where Senderkennung in (" + eigeneKennungen() + ")";
    if (sendungen == 0 || anzahl(db, "Sender") > 0 || anzahl(db, "Sendungen" + eigene) != sendungen) return;
    for (const std::string& unfertig : {"Markierungen" + eigene, std::string("SendungenDetails"),
                                        // The last, so that a further kill is recognised again.
                                        "Sendungen" + eigene})
        zugriff_.SafeExecute(db, "Delete from " + unfertig);
}

double Fernsehdatenbank::anzahl(std::unique_ptr<Datenbank>& db, const std::string& zeilen) {
    auto rs = zugriff_.SafeOpenRs(db, "Select Count(*) as Anzahl from " + zeilen, kSnapshot, kForwardOnly);
    const double wert = rs->feld("Anzahl").alsDouble();
    zugriff_.SafeCloseRs(rs);
    return wert;
}

// ---- the guide ----

Fernsehdatenbank::Umfang Fernsehdatenbank::schreibe(std::unique_ptr<Datenbank>& db) {
    const Beispielprogramm programm = schreibeSendungen(db);
    schreibeMarken(db, programm);
    schreibeSender(db);
    return {beispielsender().size(), programm.sendungen.size(), programm.sendungen.front().Beginn,
            programm.sendungen.back().Ende};
}

void Fernsehdatenbank::schreibeSender(std::unique_ptr<Datenbank>& db) {
    auto rs = zugriff_.SafeOpenRs(db, "Select * from Sender", kDynaset, kAppendOnly);
    std::int32_t nummer = 0;
    for (const Beispielsender& sender : beispielsender()) {
        ++nummer;
        fuege(zugriff_, *rs,
              {{"Bezeichnung", text(sender.bezeichnung)},
               {"BezeichnungKurz", text(sender.kurz)},
               {"Senderkennung", text(sender.kennung)},
               {"DatenNr", text(std::to_string(1000 + nummer))},
               {"Webseite", text(sender.webseite)},
               {"GueltigAb", Variant::datum(DateSerial(2010, 1, 1))},
               {"Favorit", Variant::boolesch(sender.favorit)},
               {"Gruppe", text(sender.gruppe)},
               {"SortNr", Variant::lang(nummer)},
               {"SortNrKestrin", Variant::lang(nummer)}});
    }
    zugriff_.SafeCloseRs(rs);
}

Beispielprogramm Fernsehdatenbank::schreibeSendungen(std::unique_ptr<Datenbank>& db) {
    auto rsSendungen = zugriff_.SafeOpenRs(db, "Select * from Sendungen", kDynaset, kAppendOnly);
    auto rsDetails = zugriff_.SafeOpenRs(db, "Select * from SendungenDetails", kDynaset, kAppendOnly);
    cSendung vorlage(zugriff_);
    vorlage.SetRsFields1(*rsSendungen);
    vorlage.SetRsFields2(*rsDetails);
    Beispielprogramm programm = beispielprogramm(ports_.uhr.jetzt(), vorlage);
    for (cSendung& sendung : programm.sendungen)
        sendung.SpeichernInDatensatzAlles(*db, *rsSendungen, *rsDetails);
    zugriff_.SafeCloseRs(rsDetails);
    zugriff_.SafeCloseRs(rsSendungen);
    return programm;
}

void Fernsehdatenbank::schreibeMarken(std::unique_ptr<Datenbank>& db, const Beispielprogramm& programm) {
    const std::string benutzer = ModulSystem::GetRechnername(ports_.rechner);
    for (const Beispielmarke& marke : programm.marken)
        zugriff_.SafeExecute(db, markenbefehl(benutzer, programm.sendungen[marke.sendung], marke));
}

}  // namespace wendel::quillon
