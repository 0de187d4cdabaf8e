#include "Einrichter.h"

#include <string_view>
#include <utility>

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

// The stored table with one more column. What is there is kept bit for bit, also what this version can't use.
Variant mitSpalte(const Variant& bisher, const GespeicherterTermin& termin) {
    const Variant neu = termineAlsVariant(std::span(&termin, 1));
    if (!bisher.istArray()) {
        if (bisher.istNull() || (!bisher.istText() && bisher.alsDouble() == 0)) return neu;
        misslungen("Die gespeicherten Termine können nicht gelesen werden. Es wurde nichts geändert.");
    }
    Array tabelle = bisher.alsArray();
    const Array& spalte = neu.alsArray();
    if (tabelle.elementtyp != Varianttyp::Variant || tabelle.grenzen.size() != 2 ||
        tabelle.grenzen[0].anzahl < spalte.grenzen[0].anzahl) {
        misslungen("Die gespeicherten Termine haben eine unbekannte Form. Es wurde nichts geändert.");
    }
    tabelle.elemente.insert(tabelle.elemente.end(), spalte.elemente.begin(), spalte.elemente.end());
    const std::int32_t weitereZeilen = tabelle.grenzen[0].anzahl - spalte.grenzen[0].anzahl;
    tabelle.elemente.resize(tabelle.elemente.size() + static_cast<std::size_t>(weitereZeilen));
    ++tabelle.grenzen[1].anzahl;
    return Variant::array(std::move(tabelle));
}

}  // namespace

Einrichter::Einrichter(const Ports& ports, std::string programmordner, std::ostream& ausgabe,
                       std::ostream& hinweise)
    : dateien_(ports.dateien),
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
    Variant bisher;
    if (const auto array = einstellungen_.arrayOderNichts()) {
        bisher = unveraendert(array->alsArray(), einstellung::kTermin);
    }
    setze(einstellung::kTermin, mitSpalte(bisher, auftrag.termin));
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
    std::optional<Variant> array = einstellungen_.arrayOderNichts();
    if (!array) {
        // Says why the file can't be read; only a missing one gives the defaults.
        if (einstellungen_.EinstellungsdateiVorhanden())
            array = einstellungen_.GetEinstellungsarray();
        else
            array = Variant::array(Array());
    }
    if (auftrag.zeile) return zeigeZeile(*auftrag.zeile, *array);
    for (const Einstellungszeile& zeile : einstellungstabelle())
        zeigeZeile(zeile, *array);
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

}  // namespace wendel::quillon
