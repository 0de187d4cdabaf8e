#include "Einrichter.h"

#include <functional>
#include <string_view>
#include <utility>

#include "Kalenderausgabe.h"
#include "Kalendereingabe.h"
#include "Kalendertext.h"
#include "Kalenderzeit.h"
#include "Terminabgleich.h"
#include "desktop/Pfade.h"
#include "platform/Fehler.h"
#include "platform/Text.h"
#include "tvdb/Einstellungstabelle.h"
#include "tvdb/Guidekonfiguration.h"
#include "tvdb/ModulGrundbefehle.h"

namespace wendel::quillon {

namespace {

constexpr std::string_view kEinstellungsdatei = "fennow.cfg";
constexpr std::int32_t kNeueElemente = 200;

[[noreturn]] void misslungen(const std::string& beschreibung) {
    throw Fehler(fehlernummer::kEigener, "quillon", beschreibung);
}

// The texts of the settings file are Windows-1252; a user should hear that a character did not fit.
bool verliertZeichen(const Variant& wert) {
    if (!wert.istText()) return false;
    const std::string text = wert.alsText();
    return ausWindows1252(nachWindows1252(text)) != text;
}

// One line each on the screen, whatever the value holds.
std::string einzeilig(std::string_view text) {
    return ersetzt(ersetzt(ersetzt(text, kCrLf, " "), "\n", " "), "\r", " ");
}

// The element as it stands in the file; Empty outside the bounds.
Variant unveraendert(const Array& array, std::int32_t index) {
    const std::int64_t stelle = std::int64_t{index} - array.grenzen.at(0).untergrenze;
    if (stelle < 0 || stelle >= array.grenzen[0].anzahl) return Variant();
    return array.at({index});
}

// The stored table with more columns. What is there is kept bit for bit, also what this version can't use.
Variant mitSpalten(const Variant& bisher, std::span<const GespeicherterTermin> termine) {
    const Variant neu = termineAlsVariant(termine);
    if (!bisher.istArray()) {
        if (bisher.istNull() || (!bisher.istText() && bisher.alsDouble() == 0)) return neu;
        misslungen("Die gespeicherten Termine können nicht gelesen werden. Es wurde nichts geändert.");
    }
    Array tabelle = bisher.alsArray();
    const Array& spalten = neu.alsArray();
    const std::int32_t zeilen = spalten.grenzen[0].anzahl;
    if (tabelle.elementtyp != Varianttyp::Variant || tabelle.grenzen.size() != 2 ||
        tabelle.grenzen[0].anzahl < zeilen) {
        misslungen("Die gespeicherten Termine haben eine unbekannte Form. Es wurde nichts geändert.");
    }
    const auto weitereZeilen = static_cast<std::size_t>(tabelle.grenzen[0].anzahl - zeilen);
    for (auto von = spalten.elemente.begin(); von != spalten.elemente.end(); von += zeilen) {
        tabelle.elemente.insert(tabelle.elemente.end(), von, von + zeilen);
        tabelle.elemente.resize(tabelle.elemente.size() + weitereZeilen);
    }
    tabelle.grenzen[1].anzahl += static_cast<std::int32_t>(termine.size());
    return Variant::array(std::move(tabelle));
}

std::size_t spaltenzahl(const Variant& tabelle) {
    if (!tabelle.istArray() || tabelle.alsArray().grenzen.size() != 2) return 0;
    return static_cast<std::size_t>(tabelle.alsArray().grenzen[1].anzahl);
}

std::string anzahlText(std::size_t n, std::string_view einzahl, std::string_view mehrzahl) {
    return std::to_string(n) + std::string(n == 1 ? einzahl : mehrzahl);
}

std::string importzeile(std::size_t neue, std::size_t bekannte, std::size_t abgelehnte) {
    std::string zeile = anzahlText(neue, " Termin übernommen", " Termine übernommen");
    if (bekannte > 0) zeile += ", " + anzahlText(bekannte, " war schon da", " waren schon da");
    if (abgelehnte > 0) zeile += ", " + std::to_string(abgelehnte) + " nicht übernommen";
    return zeile + ".\n";
}

}  // namespace

Einrichter::Einrichter(const Ports& ports, std::string programmordner, std::ostream& ausgabe,
                       std::ostream& hinweise)
    : uhr_(ports.uhr),
      dateien_(ports.dateien),
      programmordner_(ModulGrundbefehle::PfadMitBackslash(programmordner)),
      einstellungen_(ports.dateien, programmordner_),
      fernsehdatenbank_(ports, einstellungen_, programmordner_),
      ausgabe_(ausgabe),
      hinweise_(hinweise) {}

void Einrichter::erledige(const Auftrag& auftrag) {
    std::visit([this](const auto& a) { tue(a); }, auftrag);
}

// ---- --anlegen, --erststart, --beispiel ----

void Einrichter::tue(const Anlegen&) {
    legeAllesAusserDatenbankAn();
    const auto pfad = fehlendeDatenbank();
    if (pfad && fernsehdatenbank_.anlegen(*pfad))
        ausgabe_ << "Angelegt: " << dateien_.pfadAnzeige(*pfad) << "\n";
}

// A database that was set up elsewhere may only be out of reach for now, and nobody who has one wants to see
// an invented guide: the program asks for it.
void Einrichter::tue(const Erststart&) {
    legeAllesAusserDatenbankAn();
    const auto pfad = fehlendeDatenbank();
    Fernsehdatenbank::Umfang umfang;
    if (pfad != lokaleDatenbank() || !fernsehdatenbank_.anlegenMitBeispiel(*pfad, umfang)) return;
    ausgabe_
        << "Es gab noch keine TV-Datenbank. Die neue enthält ein erfundenes Programm zum Ausprobieren:\n  "
        << dateien_.pfadAnzeige(*pfad) << "\n";
    meldeBeispiel(umfang);
}

void Einrichter::tue(const Beispiel&) {
    const auto pfad = vorhandeneDatenbank();
    if (!pfad) misslungen("Es gibt noch keine TV-Datenbank. \"quillon --anlegen\" legt eine an.");
    meldeBeispiel(fernsehdatenbank_.beispielEintragen(*pfad));
}

void Einrichter::meldeBeispiel(const Fernsehdatenbank::Umfang& umfang) {
    ausgabe_ << "Beispielprogramm: " << umfang.sender << " Sender, " << umfang.sendungen << " Sendungen vom "
             << Format(umfang.erste, "dd.mm.yyyy") << " bis zum " << Format(umfang.letzte, "dd.mm.yyyy")
             << ".\n";
}

// The one that the program would open; it asks before it takes the local one in place of another.
std::optional<std::string> Einrichter::vorhandeneDatenbank() {
    for (const std::string& pfad :
         {liesKonfiguration(einstellungen_, programmordner_).datenbank, lokaleDatenbank()}) {
        if (ModulGrundbefehle::DateiExistiert(dateien_, pfad)) return pfad;
    }
    return std::nullopt;
}

// Where a database is to be made; nothing when there is one, or when settings that can't be read might name
// it.
std::optional<std::string> Einrichter::fehlendeDatenbank() {
    const bool unlesbar = einstellungen_.EinstellungsdateiVorhanden() && !einstellungen_.arrayOderNichts();
    if (unlesbar || vorhandeneDatenbank()) return std::nullopt;
    return liesKonfiguration(einstellungen_, programmordner_).datenbank;
}

void Einrichter::legeAllesAusserDatenbankAn() {
    legeEinstellungenAn();
    legeGuidekonfigurationAn();
    legeOrdnerAn("Hyperlinks");
    legeOrdnerAn("Sender");
}

void Einrichter::legeEinstellungenAn() {
    const std::string pfad = programmordner_ + std::string(kEinstellungsdatei);
    if (einstellungen_.EinstellungsdateiVorhanden()) {
        if (einstellungen_.arrayOderNichts()) return;
        hinweise_ << "Die Einstellungen in \"" << dateien_.pfadAnzeige(pfad)
                  << "\" können nicht gelesen werden. Die Datei bleibt, wie sie ist.\n";
        return;
    }
    einstellungen_.SetEinstellungsarray(Variant::array(Array::eindimensional(0, kNeueElemente)));
    ausgabe_ << "Angelegt: " << dateien_.pfadAnzeige(pfad) << "\n";
}

void Einrichter::legeGuidekonfigurationAn() {
    const std::string pfad = programmordner_ + std::string(Guidekonfiguration::kDateiname);
    if (dateien_.existiert(pfad)) return;
    const std::string inhalt =
        "appname=" + std::string(Guidekonfiguration::kStandardAppname) + std::string(kCrLf);
    if (!dateien_.ersetzen(pfad, nachWindows1252(inhalt))) {
        misslungen("Die Datei \"" + dateien_.pfadAnzeige(pfad) + "\" kann nicht angelegt werden.");
    }
    ausgabe_ << "Angelegt: " << dateien_.pfadAnzeige(pfad) << "\n";
}

void Einrichter::legeOrdnerAn(const std::string& name) {
    const std::string pfad = programmordner_ + name;
    if (ModulGrundbefehle::OrdnerExistiert(dateien_, programmordner_, pfad)) return;
    if (!dateien_.ordnerAnlegen(pfad)) {
        misslungen("Der Ordner \"" + dateien_.pfadAnzeige(pfad) + "\" kann nicht angelegt werden.");
    }
    ausgabe_ << "Angelegt: " << dateien_.pfadAnzeige(pfad) << "\n";
}

// ---- --setze ----

void Einrichter::tue(const Setze& auftrag) {
    setze(auftrag.zeile->index, auftrag.wert);
    if (verliertZeichen(auftrag.wert)) {
        hinweise_ << "In \"" << auftrag.zeile->name
                  << "\" sind Zeichen, die die Datei nicht kennt, durch \"?\" "
                  << "ersetzt worden.\n";
    }
}

void Einrichter::tue(const Anfuegen& auftrag) {
    setze(einstellung::kTermin, mitSpalten(gespeicherteTermine(), std::span(&auftrag.termin, 1)));
}

Variant Einrichter::gespeicherteTermine() {
    const auto array = einstellungen_.arrayOderNichts();
    return array ? unveraendert(array->alsArray(), einstellung::kTermin) : Variant();
}

void Einrichter::setze(std::int32_t index, const Variant& wert) {
    const bool unlesbar = einstellungen_.EinstellungsdateiVorhanden() && !einstellungen_.arrayOderNichts();
    einstellungen_.setzeEinstellung(index, wert);
    if (unlesbar) {
        hinweise_ << "Die Datei \"fennow.cfg\" war nicht lesbar. Sie heißt jetzt \"fennow.cfg.defekt\".\n";
    }
}

// ---- --zeige ----

void Einrichter::tue(const Zeige& auftrag) {
    const Variant array = lesbareEinstellungen();
    if (auftrag.zeile) return zeigeZeile(*auftrag.zeile, array);
    for (const Einstellungszeile& zeile : einstellungstabelle())
        zeigeZeile(zeile, array);
}

// Says why the file can't be read; only a missing one gives the defaults.
Variant Einrichter::lesbareEinstellungen() {
    if (const auto array = einstellungen_.arrayOderNichts()) return *array;
    if (einstellungen_.EinstellungsdateiVorhanden()) return einstellungen_.GetEinstellungsarray();
    return Variant::array(Array());
}

void Einrichter::zeigeZeile(const Einstellungszeile& zeile, const Variant& array) {
    const Variant standard = standardwert(zeile, programmordner_);
    const Variant wert = elementOderErsatz(array, zeile.index, standard);
    if (zeile.index == einstellung::kTermin) {
        for (const GespeicherterTermin& termin : termineAusVariant(wert)) {
            ausgabe_ << zeile.name << "=" << einzeilig(terminAlsText(termin)) << "\n";
        }
        return;
    }
    std::string text = einstellungAlsText(zeile, wert);
    // A default that is a path is ours to show; what the user typed stays as it is.
    if (zeile.unterProgrammordner && wert == standard) text = dateien_.pfadAnzeige(text);
    ausgabe_ << zeile.name << "=" << einzeilig(text) << "\n";
}

// ---- --termine-export, --termine-import ----

void Einrichter::tue(const TermineExport& auftrag) {
    const Variant gespeichert = elementOderErsatz(lesbareEinstellungen(), einstellung::kTermin, Variant());
    std::vector<GespeicherterTermin> termine = termineAusVariant(gespeichert);
    std::erase_if(termine, std::not_fn(passtInKalender));
    const std::string kalender = kalenderdatei(termine, weltzeitAus(uhr_.jetzt()));
    const bool aufAusgabe = auftrag.datei == "-";
    if (aufAusgabe)
        ausgabe_ << kalender;
    else
        ersetzeKalender(logischerPfad(auftrag.datei), kalender);
    (aufAusgabe ? hinweise_ : ausgabe_)
        << anzahlText(termine.size(), " Termin exportiert.\n", " Termine exportiert.\n");
    const std::size_t spalten = spaltenzahl(gespeichert);
    if (spalten > termine.size())
        hinweise_ << anzahlText(spalten - termine.size(), " Eintrag fehlt", " Einträge fehlen")
                  << " im Kalender: ohne lesbaren Zeitpunkt bis zum Jahr 3000.\n";
}

// A mistyped name must not cost a file that is something else.
void Einrichter::ersetzeKalender(const std::string& pfad, const std::string& kalender) {
    const std::string name = "\"" + dateien_.pfadAnzeige(pfad) + "\"";
    const auto groesse = dateien_.groesse(pfad);
    if (groesse.value_or(0) > 0) {
        const auto vorher = *groesse > kGroessteKalenderdatei ? std::nullopt : dateien_.lesen(pfad);
        if (!vorher || !beginntKalender(*vorher))
            misslungen(name + " ist schon da und keine Kalenderdatei. Es wurde nichts geschrieben.");
    }
    if (!dateien_.ersetzen(pfad, kalender)) misslungen(name + " kann nicht geschrieben werden.");
}

void Einrichter::tue(const TermineImport& auftrag) {
    const Datum jetzt = uhr_.jetzt();
    const Kalenderinhalt inhalt = liesKalender(logischerPfad(auftrag.datei), jetzt);
    const Variant bisher = gespeicherteTermine();
    const auto neue = neueTermine(inhalt.termine, termineAusVariant(bisher), jetzt);
    if (!neue.empty()) setze(einstellung::kTermin, mitSpalten(bisher, neue));
    for (const std::string& hinweis : inhalt.hinweise)
        hinweise_ << hinweis << "\n";
    ausgabe_ << importzeile(neue.size(), inhalt.termine.size() - neue.size(), inhalt.nichtUebernommen);
    if (!neue.empty()) {
        hinweise_ << "Läuft Lomrick gerade, liest es die Änderung beim nächsten Start oder nach dem "
                     "Steuerbefehl \"refreshkonfig\".\n";
    }
}

Kalenderinhalt Einrichter::liesKalender(const std::string& pfad, Datum jetzt) {
    const std::string name = "\"" + dateien_.pfadAnzeige(pfad) + "\"";
    const auto groesse = dateien_.groesse(pfad);
    if (!groesse) misslungen("Die Datei " + name + " gibt es nicht.");
    if (*groesse > kGroessteKalenderdatei) misslungen(name + ": Die Datei ist größer als 32 MB.");
    const auto datei = dateien_.lesen(pfad);
    if (!datei) misslungen("Die Datei " + name + " kann nicht gelesen werden.");
    try {
        return kalenderinhalt(*datei, jetzt);
    } catch (const Fehler& fehler) {
        misslungen(name + ": " + fehler.beschreibung() + " Es wurde nichts übernommen.");
    }
}

}  // namespace wendel::quillon
