#include "core/Datenbestand.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "core/Laufend.h"
#include "platform/Text.h"
#include "tvdb/Guidekonfiguration.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/ModulSystem.h"

namespace wendel {

namespace {

constexpr std::int64_t kFrischeSekunden = 60;
constexpr int kNurLesbar = 3027;  // of the engine: the database or its folder cannot be written

Ports mitMeldungen(const Ports& ports, Meldungen& meldungen) {
    return {ports.uhr,         ports.dateien,       meldungen,        ports.fenster, ports.klang,
            ports.prozesse,    ports.starter,       ports.automation, ports.symbol,  ports.rechner,
            ports.datenbanken, ports.fernsteuerung, ports.energie};
}

bool localeVerwenden(const Ports& ports, const std::string& titel, const std::string& was,
                     const std::string& pfad, const std::string& ersatz) {
    const std::string text = was + " \"" + ports.dateien.pfadAnzeige(pfad) +
                             "\" kann nicht gefunden werden.\r\nMöchten Sie stattdessen " + ersatz +
                             " verwenden?";
    return ports.meldungen.meldung(text, meldungsstil::kJaNeinAusrufezeichen, titel) == Antwort::Ja;
}

TerminZeiger suche(const Terminliste& termine, const Hinweisschluessel& schluessel) {
    const auto gefunden = std::find_if(termine.begin(), termine.end(), [&](const TerminZeiger& termin) {
        return termin->WeckZeit == schluessel.moment && hinweisschluessel(*termin) == schluessel;
    });
    return gefunden == termine.end() ? nullptr : *gefunden;
}

}  // namespace

Datenbestand::Datenbestand(const Ports& ports, Prozesswerte& werte)
    : ports_(ports),
      werte_(werte),
      einstellungen_(ports.dateien, werte.programmordner),
      rueckfragen_(ports.meldungen),
      zugriff_(mitMeldungen(ports, rueckfragen_), einstellungen_, werte),
      sender_(zugriff_),
      menuelisten_(ports, zugriff_, sender_),
      tagestipp_(ports.uhr, zugriff_, sender_),
      journal_(ports.dateien, werte.programmordner),
      termine_(ports.uhr, einstellungen_, journal_) {}

void Datenbestand::einstellungenLesen() {
    const bool lesbar = einstellungen_.EinstellungsdateiVorhanden() && einstellungen_.arrayOderNichts();
    if (!lesbar && einstellungenGelesen_) return;
    const Datum letztesUpdate = konfiguration_.letztesUpdate;
    konfiguration_ = liesKonfiguration(einstellungen_, werte_.programmordner);
    if (letztesUpdateOffen_) konfiguration_.letztesUpdate = letztesUpdate;
    einstellungenGelesen_ = true;
}

void Datenbestand::letztesUpdateMerken(Datum moment) {
    konfiguration_.letztesUpdate = moment;
    letztesUpdateOffen_ = true;
    letztesUpdateSchreiben();
}

void Datenbestand::letztesUpdateSchreiben() {
    if (!letztesUpdateOffen_) return;
    try {
        einstellungen_.setzeEinstellung(einstellung::kLetztesUpdate,
                                        Variant::datum(konfiguration_.letztesUpdate));
        letztesUpdateOffen_ = false;
    } catch (const Fehler&) {
        // Only a restart would miss it, and make the update once more.
    }
}

void Datenbestand::skriptwerteLesen() {
    if (!einstellungen_.EinstellungsdateiVorhanden() || !einstellungen_.arrayOderNichts()) return;
    Konfiguration frisch = liesKonfiguration(einstellungen_, werte_.programmordner);
    konfiguration_.skript = std::move(frisch.skript);
    konfiguration_.tvOrdner = std::move(frisch.tvOrdner);
    konfiguration_.aufzeichnungsordner = std::move(frisch.aufzeichnungsordner);
    konfiguration_.debuganzeige = frisch.debuganzeige;
}

void Datenbestand::pfadeBestimmen() {
    nurLesbar_ = false;
    werte_.datenbankdatei = konfiguration_.datenbank;
    if (!ModulGrundbefehle::DateiExistiert(ports_.dateien, werte_.datenbankdatei) &&
        localeVerwenden(ports_, "Datenbankdatei", "Die Datenbankdatei", werte_.datenbankdatei,
                        "die lokale Datenbankdatei")) {
        werte_.datenbankdatei = werte_.programmordner + "tvdaten.mdb";
    }
    werte_.hyperlinksOrdner = konfiguration_.hyperlinksOrdner;
    if (!ModulGrundbefehle::OrdnerExistiert(ports_.dateien, werte_.programmordner, werte_.hyperlinksOrdner) &&
        localeVerwenden(ports_, "Hyperlinks-Ordner", "Der Hyperlinks-Ordner", werte_.hyperlinksOrdner,
                        "den lokalen Ordner")) {
        werte_.hyperlinksOrdner = werte_.programmordner + "Hyperlinks\\";
    }
    werte_.guideKonfigurationsdatei = Guidekonfiguration::kDateiname;
}

void Datenbestand::hauptanwendungTitelLesen() {
    werte_.hauptanwendungTitel = Guidekonfiguration::liesAppname(ports_.dateien, werte_.programmordner);
}

bool Datenbestand::speichernWennNoetig() {
    letztesUpdateSchreiben();
    const bool journalGeschrieben = journal_.nachschreiben();
    return termine_.speichernWennNoetig() && journalGeschrieben;
}

void Datenbestand::senderLaden() {
    const Laufend laufend(zugriffLaeuft_);
    try {
        // With the first channels come marks that no query has looked for.
        if (sender_.alle().count() == 0) verpassteVormerken();
        sender_.laden();
        senderGeladen_ = true;
    } catch (const Fehler&) {
        senderGeladen_ = sender_.alle().count() > 0;
        throw;
    }
}

// Without channels nothing is found. A list that could not be read or was empty is tried again with the next
// query: one locked moment at the start, or a database that gets its data later, would silence all reminders
// for the rest of the day.
bool Datenbestand::senderBereit() {
    if (senderGeladen_ && sender_.alle().count() > 0) return true;
    try {
        senderLaden();
    } catch (const Fehler&) {
        // The access layer has told the user.
    }
    return senderGeladen_;
}

Terminabfragen Datenbestand::terminabfragen() {
    return Terminabfragen(zugriff_, werte_.datenbankdatei, ModulSystem::GetRechnername(ports_.rechner));
}

std::vector<std::string> Datenbestand::senderkennungen() const {
    std::vector<std::string> kennungen;
    for (const auto& sender : sender_.alle())
        kennungen.push_back(sender->Senderkennung);
    return kennungen;
}

void Datenbestand::abfragen() { zugreifen(false); }

void Datenbestand::markierungenPflegenUndAbfragen() { zugreifen(true); }

// A box of the access layer may stand for hours while ticks and control lines come in: each with a query of
// its own would put another box on top, and a tick behind a box shows nothing more.
void Datenbestand::zugreifen(bool pflegen) {
    pflegeNachholen_ |= pflegen;
    if (zugriffLaeuft_) {
        abfrageNachholen_ = true;
        return;
    }
    bool gelungen = true;
    {
        const Laufend laufend(zugriffLaeuft_);
        do {
            // It asks with a later moment than the access that was under way: what lies between would be
            // neither missed nor to come.
            if (std::exchange(abfrageNachholen_, false)) verpassteVormerken();
            gelungen = durchgang(std::exchange(pflegeNachholen_, false));
        } while (abfrageNachholen_ && gelungen);
    }
    aufgeschobenesNachholen(gelungen);
}

// What ticks and control lines have put off during a box, and what has become outdated in it: nobody comes
// back to it else. When the user has declined that box, it is tried without another one.
void Datenbestand::aufgeschobenesNachholen(bool gelungen) {
    if (!abfrageNachholen_ || rueckfragen_.ablehnen) return;
    if (gelungen) return abfragen();
    const Laufend unbeaufsichtigt(rueckfragen_.ablehnen), sofort(zugriff_.ohneWarten);
    abfragen();
}

// False when something could not be done: the user has given up, and asking again would bring the next box.
bool Datenbestand::durchgang(bool pflegen) {
    const bool senderDa = senderBereit();
    Terminabfragen abfragen = terminabfragen();
    // One moment for both kinds of reminders: each mark is then either missed or still to come. And for the
    // maintenance: it deletes no mark that these queries call running.
    const Datum jetzt = ports_.uhr.jetzt();
    const bool verpassteGelesen = senderDa && verpassteLesen(abfragen, jetzt);
    const bool gepflegt = !pflegen || markierungenPflegen(jetzt);
    if (!senderDa) {
        verpassteVormerken();
        return false;
    }
    const bool erinnerungenGelesen = erinnerungenLesen(abfragen, jetzt);
    // Those that the maintenance has just made, of broadcasts that are about to begin.
    if (verpassteGelesen) verpassteLesen(abfragen, jetzt);
    // Marks that are new to us may pass before the next query succeeds.
    if (!erinnerungenGelesen) verpassteVormerken();
    return aufzeichnungenLesen(abfragen, jetzt) && erinnerungenGelesen && gepflegt;
}

bool Datenbestand::markierungenPflegen(Datum jetzt) {
    if (nurLesbar_) return true;
    const std::string benutzer = konfiguration_.benutzer.empty() ? ModulSystem::GetRechnername(ports_.rechner)
                                                                 : konfiguration_.benutzer;
    try {
        Markierungspflege pflege(zugriff_, benutzer, konfiguration_.loeschtage);
        if (pflege.laufen(jetzt, markierungslisten_).erinnerungVersaeumt) verpassteVormerken();
        return true;
    } catch (const Fehler& fehler) {
        // Told by the access layer.
        nurLesbar_ = fehler.nummer() == kNurLesbar;
        return false;
    }
}

bool Datenbestand::erinnerungenLesen(Terminabfragen& abfragen, Datum jetzt) {
    if (!konfiguration_.erinnerung) {
        erinnerungen_.clear();
        return true;
    }
    const Terminabfrage abfrage = abfragen.ErinnerungenLesen(senderkennungen(), jetzt);
    if (abfrage.gelungen && !istUeberholt(jetzt)) erinnerungen_ = vereinigt(abfrage.termine);
    return abfrage.gelungen;
}

// A box of the query may have stood for days: what it has found belongs to then, and most of it is over. It
// is asked once more.
bool Datenbestand::istUeberholt(Datum abfragemoment) {
    const bool ueberholt = ports_.uhr.jetzt() > abfragemoment.plusSekunden(kFrischeSekunden);
    abfrageNachholen_ |= ueberholt;
    return ueberholt;
}

// Entries that are due but not shown yet are kept whatever the database says now; shown ones do not come
// back. A record that is still wanted stays the same record, so that the list keeps its selection.
Terminliste Datenbestand::vereinigt(const Terminliste& gelesen) {
    const Datum jetzt = ports_.uhr.jetzt();
    Terminliste neu;
    for (const TerminZeiger& alt : erinnerungen_) {
        if (istFaellig(*alt, jetzt)) neu.push_back(alt);
    }
    for (const TerminZeiger& termin : gelesen) {
        if (journal_.kennt(*termin) || suche(neu, hinweisschluessel(*termin))) continue;
        const TerminZeiger alt = suche(erinnerungen_, hinweisschluessel(*termin));
        neu.push_back(alt && alt->Aktiv ? alt : termin);
    }
    return neu;
}

bool Datenbestand::verpassteLesen(Terminabfragen& abfragen, Datum jetzt) {
    if (!konfiguration_.erinnerung || !konfiguration_.verpassteZeigen) verpassteOffen_ = false;
    if (!verpassteOffen_) return true;
    const Terminabfrage abfrage = abfragen.VerpassteErinnerungenLesen(senderkennungen(), jetzt);
    if (!abfrage.gelungen || istUeberholt(jetzt)) return false;
    verpassteOffen_ = false;
    for (const TerminZeiger& termin : abfrage.termine) {
        if (journal_.kennt(*termin) || suche(erinnerungen_, hinweisschluessel(*termin))) continue;
        erinnerungen_.push_back(termin);
    }
    return true;
}

bool Datenbestand::aufzeichnungenLesen(Terminabfragen& abfragen, Datum jetzt) {
    Terminabfrage abfrage = abfragen.AufzeichnungenLesen(
        senderkennungen(), jetzt, konfiguration_.vorlaufMinuten, konfiguration_.nachlaufMinuten);
    if (abfrage.gelungen) {
        aufzeichnungen_ = std::move(abfrage.termine);
        ++aufzeichnungenGelesen_;
    }
    return abfrage.gelungen;
}

// ---- what the tray menu shows ----

void Datenbestand::menueLesen() {
    if (zugriffLaeuft_) return;
    bool gelungen = false;
    {
        const Laufend laufend(zugriffLaeuft_);
        // After the first box that was declined there is no second one.
        gelungen = senderBereit() && menuelisten_.auffrischen() && tippLesen();
    }
    aufgeschobenesNachholen(gelungen);
}

void Datenbestand::menueLesenOhneKaesten() {
    // Without channels there is nothing to list, and a locked database takes its time to say so.
    if (!senderGeladen_) return;
    const Laufend unbeaufsichtigt(rueckfragen_.ablehnen), sofort(zugriff_.ohneWarten);
    menueLesen();
}

void Datenbestand::tippLesenOhneKaesten() {
    if (zugriffLaeuft_) return;
    const Laufend laufend(zugriffLaeuft_), unbeaufsichtigt(rueckfragen_.ablehnen),
        sofort(zugriff_.ohneWarten);
    static_cast<void>(tippLesen());
}

bool Datenbestand::tippLesen() {
    if (!konfiguration_.tagestipp) return true;
    try {
        tagestipp_.fuellen();
        return true;
    } catch (const Fehler&) {
        return false;  // the access layer has told the user who is there, and its log has it
    }
}

void Datenbestand::menueVeraltet() {
    menuelisten_.veralten();
    tagestipp_.verwerfen();
}

const Tagestippfelder* Datenbestand::tagestipp() const {
    if (!konfiguration_.tagestipp) return nullptr;
    return tagestipp_.vonHeute() ? &tagestipp_.felder() : &keinTipp_;
}

}  // namespace wendel
