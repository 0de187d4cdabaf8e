#include "reminders/Hinweisjournal.h"

#include <algorithm>
#include <memory>

#include "platform/Text.h"

namespace wendel {
namespace {

constexpr std::int64_t kBehaltenSekunden = 2 * 86400;
constexpr std::string_view kDateiname = "hinweise.txt";
constexpr std::string_view kOffen = "offen";
constexpr std::string_view kBeantwortet = "beantwortet";

std::optional<Terminart> artAusText(std::string_view text) {
    if (text == "0") return Terminart::Eigener;
    if (text == "1") return Terminart::Erinnerung;
    if (text == "2") return Terminart::Aufzeichnung;
    return std::nullopt;
}

char artAlsText(Terminart art) { return static_cast<char>('0' + static_cast<int>(art)); }

}  // namespace

bool operator==(const Hinweisschluessel& a, const Hinweisschluessel& b) {
    return a.moment == b.moment && a.art == b.art && nachWindows1252(a.text) == nachWindows1252(b.text);
}

Hinweisschluessel hinweisschluessel(const cTermin& termin) {
    return {termin.WeckZeit, termin.Art, termin.WeckText};
}

Hinweisjournal::Hinweisjournal(Dateisystem& dateien, const std::string& programmordner)
    : dateien_(dateien), datei_(programmordner + std::string(kDateiname)) {}

void Hinweisjournal::lesen() {
    eintraege_.clear();
    ungeschrieben_ = false;
    const std::optional<std::string> inhalt = dateien_.lesen(datei_);
    if (inhalt) eintraegeAusInhalt(*inhalt);
    const bool unlesbar = inhalt ? !inhalt->empty() : dateien_.existiert(datei_);
    if (eintraege_.empty() && unlesbar) beiseitelegen();
}

void Hinweisjournal::eintraegeAusInhalt(std::string_view inhalt) {
    for (const std::string& zeile : Split(inhalt, "\n")) {
        if (std::optional<Eintrag> eintrag = eintragAusZeile(zeile))
            eintraege_.push_back(std::move(*eintrag));
    }
}

// The next write would replace the file; whoever looks for the cause still finds it under the other name.
// Only the newest is kept.
void Hinweisjournal::beiseitelegen() {
    const std::string defekt = datei_ + ".defekt";
    if (dateien_.existiert(defekt) && !dateien_.loeschen(defekt)) return;
    // A file that cannot be renamed is replaced by the next write: the journal matters more than its remains.
    static_cast<void>(dateien_.umbenennen(datei_, defekt));
}

std::optional<Hinweisjournal::Eintrag> Hinweisjournal::eintragAusZeile(std::string_view zeile) {
    const std::vector<std::string> felder = Split(zeile, "\t");
    if (felder.size() != 4 || !istUtf8(zeile)) return std::nullopt;
    const std::optional<Datum> moment = datumAusKompakt(felder[0]);
    const std::optional<Terminart> art = artAusText(felder[1]);
    const bool offen = felder[2] == kOffen;
    std::optional<std::string> text = demaskiert(felder[3]);
    if (!moment || !art || !text || (!offen && felder[2] != kBeantwortet)) return std::nullopt;
    return Eintrag{{*moment, *art, std::move(*text)}, offen, moment->plusSekunden(kBehaltenSekunden)};
}

std::string Hinweisjournal::zeileAusEintrag(const Eintrag& eintrag) {
    std::string zeile = datumKompakt(eintrag.schluessel.moment);
    zeile += '\t';
    zeile += artAlsText(eintrag.schluessel.art);
    zeile += '\t';
    zeile += eintrag.offen ? kOffen : kBeantwortet;
    zeile += '\t';
    zeile += maskiert(eintrag.schluessel.text);
    zeile += '\n';
    return zeile;
}

std::vector<Hinweisschluessel> Hinweisjournal::offene() const {
    std::vector<Hinweisschluessel> ergebnis;
    for (const Eintrag& eintrag : eintraege_) {
        if (eintrag.offen) ergebnis.push_back(eintrag.schluessel);
    }
    return ergebnis;
}

bool Hinweisjournal::kennt(const cTermin& termin) {
    const Hinweisschluessel gesucht = hinweisschluessel(termin);
    bool gefunden = false;
    for (Eintrag& eintrag : eintraege_) {
        if (!(eintrag.schluessel == gesucht)) continue;
        gefunden = true;
        eintrag.behaltenBis =
            std::max(eintrag.behaltenBis, termin.Sendungsbeginn.plusSekunden(kBehaltenSekunden));
    }
    return gefunden;
}

bool Hinweisjournal::eintragen(const Terminliste& termine, Datum jetzt) {
    altesVergessen(jetzt);
    for (const TerminZeiger& termin : termine) {
        const Datum zuletztGebraucht = std::max(termin->WeckZeit, termin->Sendungsbeginn);
        eintraege_.push_back(
            {hinweisschluessel(*termin), true, zuletztGebraucht.plusSekunden(kBehaltenSekunden)});
    }
    return schreiben();
}

// An open one stays however old it is: nobody has seen it answered yet.
void Hinweisjournal::altesVergessen(Datum jetzt) {
    std::erase_if(eintraege_,
                  [&](const Eintrag& eintrag) { return !eintrag.offen && eintrag.behaltenBis < jetzt; });
}

bool Hinweisjournal::beantworten(const std::vector<Hinweisschluessel>& schluessel) {
    bool geaendert = false;
    for (Eintrag& eintrag : eintraege_) {
        if (!eintrag.offen) continue;
        if (std::find(schluessel.begin(), schluessel.end(), eintrag.schluessel) == schluessel.end()) continue;
        eintrag.offen = false;
        geaendert = true;
    }
    return geaendert ? schreiben() : true;
}

bool Hinweisjournal::nachschreiben() { return ungeschrieben_ ? schreiben() : true; }

bool Hinweisjournal::schreiben() {
    std::string inhalt;
    for (const Eintrag& eintrag : eintraege_)
        inhalt += zeileAusEintrag(eintrag);
    ungeschrieben_ = !dateien_.ersetzen(datei_, inhalt);
    return !ungeschrieben_;
}

bool gezeigteWeiterstellen(const Terminliste& termine, Hinweisjournal& journal, Datum jetzt) {
    bool geaendert = false;
    for (const TerminZeiger& termin : termine) {
        if (!journal.kennt(*termin)) continue;
        geaendert = geaendert || termin->Aktiv;
        if (termin->Aktiv || !wiederholtSich(*termin)) nachFeuernWeiterstellen(*termin, jetzt);
    }
    return geaendert;
}

Terminliste termineAusSchluesseln(const std::vector<Hinweisschluessel>& schluessel) {
    Terminliste termine;
    for (const Hinweisschluessel& eintrag : schluessel) {
        auto termin = std::make_shared<cTermin>();
        termin->WeckZeit = eintrag.moment;
        termin->WeckText = eintrag.text;
        termin->Art = eintrag.art;
        termin->Aktiv = true;
        termine.push_back(std::move(termin));
    }
    return termine;
}

}  // namespace wendel
