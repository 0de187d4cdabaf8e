#include "tvdb/cSendung.h"

#include <cassert>
#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "tvdb/Feldwerte.h"
#include "tvdb/ModulDatenbankzugriff.h"

namespace wendel {

namespace {

constexpr std::size_t kHtmlSeiteLaenge = 255;

using Spalte = cSendung::Spalte;

constexpr std::array<Spalte, cSendung::kSpalten1> kSpaltenSendungen = {{
    {"Pos", &cSendung::Pos},
    {"SenderKennung", &cSendung::SenderKennung},
    {"Beginn", &cSendung::Beginn},
    {"Ende", &cSendung::Ende},
    {"Titel", &cSendung::Titel},
    {"SendungID", &cSendung::SendungID},
    {"InhaltID", &cSendung::InhaltID},
    {"Aktualisierung", &cSendung::Aktualisierung},
    {"Showview", &cSendung::Showview},
    {"ShowviewVPS", &cSendung::ShowviewVPS},
    {"VPS", &cSendung::VPS},
    {"Kategorietext", &cSendung::Kategorietext},
    {"KurzBeschreibung", &cSendung::Kurzbeschreibung},
    {"Bewertung", &cSendung::Bewertung},
    {"Bilddateiname", &cSendung::Bilddateiname},
    {"Dauer", &cSendung::Dauer},
    {"Genre", &cSendung::Genre},
    {"Herstellungsjahr", &cSendung::Herstellungsjahr},
    {"Herstellungsland", &cSendung::Herstellungsland},
    {"Originaltitel", &cSendung::Originaltitel},
    {"Regie", &cSendung::Regie},
    {"Bewertungen", &cSendung::Bewertungen},
    {"Kurzkritik", &cSendung::Kurzkritik},
    {"FSK", &cSendung::FSK},
    {"Keywords", &cSendung::Keywords},
    {"KzFilm", &cSendung::KzFilm},
    {"Kz16zu9", &cSendung::Kz16zu9},
    {"KzDolby", &cSendung::KzDolby},
    {"KzDolbyDigital", &cSendung::KzDolbyDigital},
    {"KzDolbySurround", &cSendung::KzDolbySurround},
    {"KzLive", &cSendung::KzLive},
    {"KzStereo", &cSendung::KzStereo},
    {"KzSchwarzweis", &cSendung::KzSchwarzweis},
    {"KzTelefon", &cSendung::KzTelefon},
    {"KzUncoded", &cSendung::KzUncoded},
    {"KzUntertitel", &cSendung::KzUntertitel},
    {"KzZweikanalton", &cSendung::KzZweikanalton},
    {"KzAudiodescription", &cSendung::KzAudiodescription},
    {"KzBilddateiHeruntergeladen", &cSendung::KzBilddateiHeruntergeladen},
    {"KzInFavoritenliste", &cSendung::KzInFavoritenliste},
    {"KzImArchiv", &cSendung::KzImArchiv},
    {"KzWiederholung", &cSendung::KzWiederholung},
    {"KzHDTV", &cSendung::KzHDTV},
}};

constexpr std::array<Spalte, cSendung::kSpalten2> kSpaltenDetails = {{
    {"Beschreibung", &cSendung::Temp_Beschreibung},
    {"Darsteller", &cSendung::Temp_Darsteller},
    {"HTMLSeite", &cSendung::Temp_HTMLSeite},
}};

// One overload per kind of column.
struct Zuweisung {
    cSendung& sendung;
    const Variant& wert;
    void operator()(std::int32_t cSendung::*m) const { sendung.*m = Feldwerte::alsLong(wert); }
    void operator()(std::int16_t cSendung::*m) const { sendung.*m = Feldwerte::alsInteger(wert); }
    void operator()(std::string cSendung::*m) const { sendung.*m = Feldwerte::alsText(wert); }
    void operator()(wendel::Datum cSendung::*m) const { sendung.*m = Feldwerte::alsDatum(wert); }
    void operator()(bool cSendung::*m) const { sendung.*m = Feldwerte::alsBool(wert); }
};

Variant feldwert(std::int32_t wert) { return Variant::lang(wert); }
Variant feldwert(std::int16_t wert) { return Variant::integer(wert); }
Variant feldwert(const std::string& wert) { return Variant::text(wert); }
Variant feldwert(wendel::Datum wert) { return Variant::datum(wert); }
Variant feldwert(bool wert) { return Variant::boolesch(wert); }

template <std::size_t N>
std::string namenAb(const std::array<Spalte, N>& spalten, std::size_t erste) {
    std::string namen;
    for (std::size_t i = erste; i < N; ++i) {
        if (i > erste) namen += ",";
        namen += spalten[i].name;
    }
    return namen;
}

template <std::size_t N>
std::array<std::size_t, N> feldnummern(Recordset& rs, const std::array<Spalte, N>& spalten) {
    std::array<std::size_t, N> nummern{};
    for (std::size_t i = 0; i < N; ++i)
        nummern[i] = rs.feldnummer(spalten[i].name);
    return nummern;
}

template <std::size_t N>
void leseSpalten(cSendung& sendung, Recordset& rs, const std::array<Spalte, N>& spalten,
                 const std::array<std::size_t, N>& nummern) {
    for (std::size_t i = 0; i < N; ++i) {
        const Variant wert = rs.feld(nummern[i]);
        std::visit(Zuweisung{sendung, wert}, spalten[i].ziel);
    }
}

// All columns from the first on; those before it are the database's own.
template <std::size_t N>
void schreibeSpalten(const cSendung& sendung, Recordset& rs, const std::array<Spalte, N>& spalten,
                     const std::array<std::size_t, N>& nummern, std::size_t erste) {
    for (std::size_t i = erste; i < N; ++i) {
        std::visit([&](auto member) { rs.setzeFeld(nummern[i], feldwert(sendung.*member)); },
                   spalten[i].ziel);
    }
}

// Opens the database, hands the first row to lies if there is one, closes everything.
template <class Lesen>
void leseZeile(ModulDatenbankzugriff* zugriffOderNull, const std::string& sql, Lesen lies) {
    assert(zugriffOderNull && "a record without a database was asked to load itself");
    ModulDatenbankzugriff& zugriff = *zugriffOderNull;
    auto db = zugriff.OpenDatenbank(zugriff.datenbankdatei());
    auto rs = zugriff.SafeOpenRs(db, sql, kSnapshot, kForwardOnly);
    if (!rs->eof()) lies(*rs);
    zugriff.SafeCloseRs(rs);
    zugriff.SafeCloseDatenbank(db);
}

}  // namespace

cSendung cSendung::GenerateCopy() const {
    cSendung kopie;
    kopie.zugriff_ = zugriff_;
    for (const Spalte& spalte : kSpaltenSendungen) {
        std::visit([&](auto member) { kopie.*member = this->*member; }, spalte.ziel);
    }
    kopie.setzeBeschreibung(Temp_Beschreibung);
    kopie.setzeDarsteller(Temp_Darsteller);
    kopie.setzeHTMLSeite(Temp_HTMLSeite);
    return kopie;
}

void cSendung::LeseVonDatensatz1(Recordset& rs) {
    leseSpalten(*this, rs, kSpaltenSendungen, feldnummern(rs, kSpaltenSendungen));
}

void cSendung::LeseVonDatensatz2(Recordset& rs) {
    leseSpalten(*this, rs, kSpaltenDetails, feldnummern(rs, kSpaltenDetails));
    Temp_DetailsGeladen = true;
}

void cSendung::SetRsFields1(Recordset& rs) { bindung1_ = {&rs, feldnummern(rs, kSpaltenSendungen)}; }
void cSendung::SetRsFields2(Recordset& rs) { bindung2_ = {&rs, feldnummern(rs, kSpaltenDetails)}; }

void cSendung::LeseVonRsFields1() {
    leseSpalten(*this, *bindung1_.rs, kSpaltenSendungen, bindung1_.feldnummern);
}

void cSendung::LeseVonRsFields2() {
    leseSpalten(*this, *bindung2_.rs, kSpaltenDetails, bindung2_.feldnummern);
    Temp_DetailsGeladen = true;
}

void cSendung::SpeichernInDatensatzAlles(Datenbank&, Recordset& rsSendungen, Recordset& rsDetails) {
    assert(zugriff_ && "a record without a database was asked to store itself");
    const auto nummern1 =
        bindung1_.rs == &rsSendungen ? bindung1_.feldnummern : feldnummern(rsSendungen, kSpaltenSendungen);
    rsSendungen.addNew();
    Pos = Feldwerte::alsLong(rsSendungen.feld(nummern1[0]));
    schreibeSpalten(*this, rsSendungen, kSpaltenSendungen, nummern1, 1);
    zugriff_->SafeUpdate(rsSendungen);
    if (!Temp_DetailsGeladen) {
        throw Fehler(fehlernummer::kEigener, "SpeichernInDatensatzAlles",
                     "Ein Programmfehler ist aufgetreten. Die Detailsfelder sollen gespeichert werden sind "
                     "jedoch noch nicht initialisiert.");
    }
    detailsSpeichern(rsDetails);
}

void cSendung::detailsSpeichern(Recordset& rs) {
    const auto nummern = bindung2_.rs == &rs ? bindung2_.feldnummern : feldnummern(rs, kSpaltenDetails);
    rs.addNew();
    rs.setzeFeld("Pos", Variant::lang(Pos));
    rs.setzeFeld(nummern[0], Variant::text(Temp_Beschreibung));
    rs.setzeFeld(nummern[1], Variant::text(Temp_Darsteller));
    rs.setzeFeld(nummern[2], Variant::text(Left(Temp_HTMLSeite, kHtmlSeiteLaenge)));
    zugriff_->SafeUpdate(rs);
}

void cSendung::FillAusDatenbank1(std::int32_t pos) {
    leseZeile(zugriff_, "Select * from Sendungen where Pos=" + std::to_string(pos) + ";",
              [this](Recordset& rs) { LeseVonDatensatz1(rs); });
}

void cSendung::FillAusDatenbank2(std::int32_t pos) {
    leseZeile(zugriff_, "Select * from SendungenDetails where Pos=" + std::to_string(pos) + ";",
              [this](Recordset& rs) { LeseVonDatensatz2(rs); });
}

void cSendung::detailsLaden() {
    if (!Temp_DetailsGeladen && zugriff_) FillAusDatenbank2(Pos);
}

std::string cSendung::Beschreibung() {
    detailsLaden();
    return Temp_Beschreibung;
}

std::string cSendung::Darsteller() {
    detailsLaden();
    return Temp_Darsteller;
}

std::string cSendung::HTMLSeite() {
    detailsLaden();
    return Temp_HTMLSeite;
}

void cSendung::setzeBeschreibung(std::string text) {
    Temp_Beschreibung = std::move(text);
    Temp_DetailsGeladen = true;
}

void cSendung::setzeDarsteller(std::string text) {
    Temp_Darsteller = std::move(text);
    Temp_DetailsGeladen = true;
}

void cSendung::setzeHTMLSeite(std::string text) {
    Temp_HTMLSeite = std::move(text);
    Temp_DetailsGeladen = true;
}

std::span<const cSendung::Spalte> cSendung::spaltenSendungen() { return kSpaltenSendungen; }
std::span<const cSendung::Spalte> cSendung::spaltenDetails() { return kSpaltenDetails; }

std::string cSendung::GetFelderNamenSendungen() { return namenAb(kSpaltenSendungen, 1); }
std::string cSendung::GetFelderNamenSendungenDetails() { return namenAb(kSpaltenDetails, 0); }

}  // namespace wendel
