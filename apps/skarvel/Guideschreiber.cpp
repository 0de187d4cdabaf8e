#include "Guideschreiber.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "tvdb/Feldwerte.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/Optionen.h"

namespace wendel::skarvel {

namespace {

using namespace ModulGrundbefehle;

constexpr std::size_t kPortion = 40;  // rows that one statement names
// Whoever waits for the file looks again every 16 ms at most: a breath is long enough to be found.
constexpr std::int64_t kArbeitMs = 40;
constexpr int kPauseMs = 20;
constexpr int kZeileGeaendert = 3197;
constexpr int kVersuche = 5;
constexpr std::int64_t kTag = 86400;
// A reminder that moved into the past comes as soon as the resident program has read it.
constexpr std::int64_t kGleich = 120;
constexpr std::size_t kMomentstellen = 12;
constexpr const char* kErinnerungszeit = "Erinnerungszeit";

std::string liste(std::span<const std::int32_t> schluessel) {
    std::string text;
    for (const std::int32_t pos : schluessel)
        text += (text.empty() ? "" : ",") + std::to_string(pos);
    return text;
}

std::optional<Datum> moment(const std::string& optionen) {
    try {
        const std::string ziffern = Left(Optionen::GetOption(optionen, kErinnerungszeit), kMomentstellen);
        const Datum zeit = DatumAusText(ziffern + "00");
        if (Left(datumKompakt(zeit), kMomentstellen) == ziffern) return zeit;
    } catch (const Fehler&) {
        // No program of the suite has written this.
    }
    return std::nullopt;
}

void uebernimm(cSendung& ziel, const cSendung& quelle) {
    for (const Guidespalte& spalte : guidespalten())
        std::visit([&](auto feld) { ziel.*feld = quelle.*feld; }, spalte.feld);
    ziel.Temp_DetailsGeladen = true;
}

// Whether one of the two rows has other values in the columns of the guide.
bool unterscheidetSich(const cSendung& alt, const cSendung& neu, bool inDetails) {
    return std::any_of(guidespalten().begin(), guidespalten().end(), [&](const Guidespalte& spalte) {
        return spalte.inDetails == inDetails && !gleich(alt, neu, spalte);
    });
}

}  // namespace

// Work in small bites.
class Guideschreiber::Atem {
  public:
    Atem(Uhr& uhr, std::function<void()> weiter) : uhr_(uhr), weiter_(std::move(weiter)) {}
    void hole() {
        weiter_();
        if (uhr_.laufzeitMs() - seit_ < kArbeitMs) return;
        uhr_.schlafe(kPauseMs);
        seit_ = uhr_.laufzeitMs();
    }

  private:
    Uhr& uhr_;
    std::function<void()> weiter_;
    std::int64_t seit_ = 0;
};

struct Guideschreiber::Marke {
    std::int32_t id = 0, pos = 0;
    std::string benutzer, titel, optionen, dauer;
    Datum beginn;
};

struct Guideschreiber::Zeilenpaar {
    const cSendung* alt;
    const cSendung* neu;  // with the row's key
};

struct Guideschreiber::Bestand {
    std::vector<cSendung> zeilen;  // by their beginning, with details
    std::vector<Marke> marken;
};

Guideschreiber::Guideschreiber(const Ports& ports, ModulDatenbankzugriff& zugriff,
                               std::function<void()> weiter)
    : ports_(ports),
      zugriff_(zugriff),
      atem_(std::make_unique<Atem>(ports.uhr, std::move(weiter))),
      db_(zugriff.OpenDatenbank(zugriff.datenbankdatei())),
      vorlage_(zugriff) {}

Guideschreiber::~Guideschreiber() {
    zugriff_.SafeCloseRs(anhaengenDetails_);
    zugriff_.SafeCloseRs(anhaengenSendungen_);
    zugriff_.SafeCloseDatenbank(db_);
}

std::unique_ptr<Recordset> Guideschreiber::oeffne(const std::string& sql) {
    atem_->hole();
    return zugriff_.SafeOpenRs(db_, sql, kSnapshot, kForwardOnly);
}

void Guideschreiber::fuehreAus(const std::string& sql) {
    atem_->hole();
    zugriff_.SafeExecute(db_, sql);
}

// ---- channels ----

std::vector<Senderzeile> Guideschreiber::liesSender() {
    std::vector<Senderzeile> zeilen;
    auto rs = oeffne("Select * from Sender");
    for (; !rs->eof(); rs->moveNext()) {
        zeilen.push_back({.kennung = Feldwerte::alsText(rs->feld("Senderkennung")),
                          .bezeichnung = Feldwerte::alsText(rs->feld("Bezeichnung")),
                          .kurz = Feldwerte::alsText(rs->feld("BezeichnungKurz")),
                          .webseite = Feldwerte::alsText(rs->feld("Webseite")),
                          .geschuetzt = Feldwerte::alsBool(rs->feld("KzBezeichnungSchützen")),
                          .favorit = Feldwerte::alsBool(rs->feld("Favorit")),
                          .sortNr = Feldwerte::alsLong(rs->feld("SortNr")),
                          .sortNrKestrin = Feldwerte::alsLong(rs->feld("SortNrKestrin"))});
    }
    zugriff_.SafeCloseRs(rs);
    return zeilen;
}

bool Guideschreiber::istErstesMal() {
    auto rs = oeffne("Select Max(Pos) as MaxPos from Sendungen");
    const bool leer = rs->eof() || rs->feld("MaxPos").istNull();
    zugriff_.SafeCloseRs(rs);
    return leer;
}

void Guideschreiber::schreibeSender(const Senderplan& plan) {
    for (const Senderzeile& zeile : plan.umzubenennen) {
        fuehreAus("Update Sender Set Bezeichnung=" + SqlText(zeile.bezeichnung) +
                  ",BezeichnungKurz=" + SqlText(zeile.kurz) + ",Webseite=" + SqlText(zeile.webseite) +
                  " Where Senderkennung=" + SqlText(zeile.kennung));
        ++bilanz_.sender;
    }
    if (plan.neue.empty()) return;
    auto rs = zugriff_.SafeOpenRs(db_, "Select * from Sender", kDynaset, kAppendOnly);
    for (const Senderzeile& zeile : plan.neue) {
        atem_->hole();
        rs->addNew();
        rs->setzeFeld("Senderkennung", Variant::text(zeile.kennung));
        rs->setzeFeld("Bezeichnung", Variant::text(zeile.bezeichnung));
        rs->setzeFeld("BezeichnungKurz", Variant::text(zeile.kurz));
        rs->setzeFeld("Webseite", Variant::text(zeile.webseite));
        rs->setzeFeld("GueltigAb", Variant::datum(ports_.uhr.jetzt().datumsteil()));
        rs->setzeFeld("SortNr", Variant::lang(zeile.sortNr));
        rs->setzeFeld("SortNrKestrin", Variant::lang(zeile.sortNrKestrin));
        zugriff_.SafeUpdate(*rs);
        ++bilanz_.sender;
    }
    zugriff_.SafeCloseRs(rs);
}

void Guideschreiber::setzeFavoriten(std::span<const std::string> kennungen) {
    std::vector<std::string> texte;
    for (const std::string& kennung : kennungen)
        texte.push_back(SqlText(kennung));
    if (!texte.empty())
        fuehreAus("Update Sender Set Favorit=" + SqlBool(true) + " Where Senderkennung in (" +
                  Join(texte, ",") + ")");
}

// ---- what is there ----

Guideschreiber::Bestand Guideschreiber::liesBestand(const std::string& kennung, const Sendeablauf& ablauf) {
    Bestand bestand;
    // A broadcast that began a day before is over when the guide begins.
    const std::string bedingung =
        "SenderKennung=" + SqlText(kennung) +
        " and Beginn>=" + SqlDatumZeit(ablauf.abgedeckt.front().von.plusSekunden(-kTag)) + " and Beginn<" +
        SqlDatumZeit(ablauf.abgedeckt.back().bis);
    auto rs = oeffne("Select * from Sendungen Where " + bedingung + " Order by Beginn,Pos");
    cSendung zeile(zugriff_);
    zeile.SetRsFields1(*rs);
    for (; !rs->eof(); rs->moveNext()) {
        zeile.LeseVonRsFields1();
        bestand.zeilen.push_back(zeile);
    }
    zugriff_.SafeCloseRs(rs);
    liesDetails(bestand.zeilen);
    bestand.marken = liesMarken(kennung);
    return bestand;
}

void Guideschreiber::liesDetails(std::vector<cSendung>& zeilen) {
    std::map<std::int32_t, cSendung*> nachPos;
    for (cSendung& zeile : zeilen)
        nachPos[zeile.Pos] = &zeile;
    for (auto naechste = nachPos.begin(); naechste != nachPos.end();) {
        std::vector<std::int32_t> schluessel;
        for (; naechste != nachPos.end() && schluessel.size() < kPortion; ++naechste)
            schluessel.push_back(naechste->first);
        auto rs = oeffne("Select * from SendungenDetails Where Pos in (" + liste(schluessel) + ")");
        for (; !rs->eof(); rs->moveNext())
            nachPos.at(Feldwerte::alsLong(rs->feld("Pos")))->LeseVonDatensatz2(*rs);
        zugriff_.SafeCloseRs(rs);
    }
}

std::vector<Guideschreiber::Marke> Guideschreiber::liesMarken(const std::string& kennung) {
    std::vector<Marke> marken;
    auto rs = oeffne(
        "Select ID,User,Pos,Sendung,Datum,Uhrzeit,Dauer,Optionen from Markierungen Where Senderkennung=" +
        SqlText(kennung));
    for (; !rs->eof(); rs->moveNext()) {
        Marke marke;
        marke.id = Feldwerte::alsLong(rs->feld("ID"));
        marke.pos = Feldwerte::alsLong(rs->feld("Pos"));
        marke.benutzer = Feldwerte::alsText(rs->feld("User"));
        marke.titel = Feldwerte::alsText(rs->feld("Sendung"));
        marke.optionen = Feldwerte::alsText(rs->feld("Optionen"));
        marke.dauer = Feldwerte::alsText(rs->feld("Dauer"));
        marke.beginn = Feldwerte::alsDatum(rs->feld("Datum")) + Feldwerte::alsDatum(rs->feld("Uhrzeit"));
        marken.push_back(std::move(marke));
    }
    zugriff_.SafeCloseRs(rs);
    return marken;
}

// ---- one channel ----

void Guideschreiber::schreibeSendungen(const std::string& kennung, Sendeablauf ablauf) {
    if (ablauf.sendungen.empty()) return;
    const Bestand bestand = liesBestand(kennung, ablauf);
    const Sendungsabgleich abgleich = gleicheAb(bestand.zeilen, ablauf);

    std::vector<std::int32_t> entfallen;
    for (const std::size_t zeile : abgleich.entfallen) {
        if (!bestand.zeilen[zeile].KzImArchiv) entfallen.push_back(bestand.zeilen[zeile].Pos);
    }
    std::vector<Zeilenpaar> paare;
    std::vector<cSendung*> neue;
    std::vector<const cSendung*> alle;
    for (std::size_t n = 0; n < ablauf.sendungen.size(); ++n) {
        cSendung& sendung = ablauf.sendungen[n];
        alle.push_back(&sendung);
        if (const auto zeile = abgleich.zeilen[n]) {
            sendung.Pos = bestand.zeilen[*zeile].Pos;
            paare.push_back({&bestand.zeilen[*zeile], &sendung});
        } else {
            neue.push_back(&sendung);
        }
    }
    // First, so that the run after one that ended behind it finds the mark at the new time already.
    verschiebeMarken(bestand, paare);
    loesche(entfallen);
    bilanz_.entfallen += entfallen.size();
    aendere(paare);
    fuegeHinzu(neue);
    findeMarkenWieder(bestand, alle);
}

// The details first: a broadcast without them is whole enough, details without a broadcast stay for ever.
void Guideschreiber::loesche(const std::vector<std::int32_t>& schluessel) {
    for (std::size_t i = 0; i < schluessel.size(); i += kPortion) {
        const std::string portion =
            liste(std::span(schluessel).subspan(i, std::min(kPortion, schluessel.size() - i)));
        fuehreAus("Delete from SendungenDetails Where Pos in (" + portion + ")");
        fuehreAus("Delete from Sendungen Where Pos in (" + portion + ")");
    }
}

void Guideschreiber::loescheAbgelaufene(Datum grenze) {
    std::vector<std::int32_t> schluessel;
    auto rs =
        oeffne("Select Pos from Sendungen Where Ende<" + SqlDatumZeit(grenze) + " and KzImArchiv=false");
    for (; !rs->eof(); rs->moveNext())
        schluessel.push_back(Feldwerte::alsLong(rs->feld("Pos")));
    zugriff_.SafeCloseRs(rs);
    loesche(schluessel);
    bilanz_.abgelaufen += schluessel.size();
}

void Guideschreiber::aendere(std::span<const Zeilenpaar> paare) {
    std::map<std::int32_t, const cSendung*> sendungen, details;
    for (const auto& [alt, neu] : paare) {
        if (unterscheidetSich(*alt, *neu, false)) sendungen[neu->Pos] = neu;
        if (!alt->Temp_DetailsGeladen)
            fuegeDetailsHinzu(*neu);
        else if (unterscheidetSich(*alt, *neu, true))
            details[neu->Pos] = neu;
        else if (!sendungen.contains(neu->Pos))
            continue;
        ++bilanz_.geaendert;
    }
    for (const bool inDetails : {false, true}) {
        const auto& alle = inDetails ? details : sendungen;
        for (auto naechste = alle.begin(); naechste != alle.end();) {
            std::map<std::int32_t, const cSendung*> portion;
            for (; naechste != alle.end() && portion.size() < kPortion; ++naechste)
                portion.insert(*naechste);
            aenderePortion(portion, inDetails);
        }
    }
}

// Another program may change a row between the reading and the writing; it is read again then.
void Guideschreiber::aenderePortion(const std::map<std::int32_t, const cSendung*>& neue, bool inDetails) {
    std::vector<std::int32_t> schluessel;
    for (const auto& [pos, sendung] : neue)
        schluessel.push_back(pos);
    for (int versuch = 1;; ++versuch) {
        atem_->hole();
        auto rs = zugriff_.SafeOpenRs(db_,
                                      std::string("Select * from ") +
                                          (inDetails ? "SendungenDetails" : "Sendungen") + " Where Pos in (" +
                                          liste(schluessel) + ")",
                                      kDynaset);
        try {
            for (; !rs->eof(); rs->moveNext()) {
                const cSendung& neu = *neue.at(Feldwerte::alsLong(rs->feld("Pos")));
                atem_->hole();
                rs->edit();
                for (const Guidespalte& spalte : guidespalten()) {
                    if (spalte.inDetails == inDetails) rs->setzeFeld(spalte.name, wertVon(neu, spalte));
                }
                zugriff_.SafeUpdate(*rs);
            }
            zugriff_.SafeCloseRs(rs);
            return;
        } catch (const Fehler& fehler) {
            zugriff_.SafeCloseRs(rs);
            if (fehler.nummer() != kZeileGeaendert || versuch == kVersuche) throw;
        }
    }
}

void Guideschreiber::fuegeHinzu(std::span<cSendung* const> neue) {
    if (neue.empty()) return;
    if (!anhaengenSendungen_) {
        anhaengenSendungen_ = zugriff_.SafeOpenRs(db_, "Select * from Sendungen", kDynaset, kAppendOnly);
        anhaengenDetails_ = zugriff_.SafeOpenRs(db_, "Select * from SendungenDetails", kDynaset, kAppendOnly);
        vorlage_.SetRsFields1(*anhaengenSendungen_);
        vorlage_.SetRsFields2(*anhaengenDetails_);
    }
    for (cSendung* sendung : neue) {
        atem_->hole();
        uebernimm(vorlage_, *sendung);
        vorlage_.SpeichernInDatensatzAlles(*db_, *anhaengenSendungen_, *anhaengenDetails_);
        sendung->Pos = vorlage_.Pos;
        ++bilanz_.neu;
    }
}

void Guideschreiber::fuegeDetailsHinzu(const cSendung& sendung) {
    atem_->hole();
    auto rs = zugriff_.SafeOpenRs(db_, "Select * from SendungenDetails", kDynaset, kAppendOnly);
    rs->addNew();
    rs->setzeFeld("Pos", Variant::lang(sendung.Pos));
    for (const Guidespalte& spalte : guidespalten()) {
        if (spalte.inDetails) rs->setzeFeld(spalte.name, wertVon(sendung, spalte));
    }
    zugriff_.SafeUpdate(*rs);
    zugriff_.SafeCloseRs(rs);
}

// ---- marks ----

void Guideschreiber::verschiebeMarken(const Bestand& bestand, std::span<const Zeilenpaar> paare) {
    if (bestand.marken.empty()) return;
    for (const auto& [alt, neu] : paare) {
        const bool verschoben = alt->Beginn != neu->Beginn;
        if (!verschoben && alt->Dauer == neu->Dauer) continue;
        for (const Marke& marke : bestand.marken) {
            // A length of the user's own stays while the beginning does.
            const bool veraltet = verschoben ? marke.beginn != neu->Beginn : marke.dauer == alt->Dauer;
            if (marke.pos == alt->Pos && veraltet) verschiebe(marke, *neu);
        }
    }
}

void Guideschreiber::verschiebe(const Marke& marke, const cSendung& sendung) {
    std::string optionen = marke.optionen;
    if (const auto bisher = moment(marke.optionen)) {
        const Datum jetzt = ports_.uhr.jetzt();
        Datum neu = sendung.Beginn.plusSekunden(bisher->sekunden() - marke.beginn.sekunden());
        if (*bisher > jetzt && neu <= jetzt && sendung.Ende > jetzt) neu = jetzt.plusSekunden(kGleich);
        optionen = Optionen::SetOption(optionen, kErinnerungszeit, Left(datumKompakt(neu), kMomentstellen));
    }
    fuehreAus("Update Markierungen Set Datum=" + SqlDatum(sendung.Datum()) +
              ",Uhrzeit=" + SqlDatumZeit(sendung.Uhrzeit()) + ",Dauer=" + SqlText(sendung.Dauer) +
              ",SendungID=" + SqlText(sendung.SendungID) + ",Optionen=" + SqlText(optionen) +
              " Where ID=" + std::to_string(marke.id));
    ++bilanz_.marken;
}

// Also to one that was there before: the run that should have found it may have been ended.
void Guideschreiber::findeMarkenWieder(const Bestand& bestand,
                                       const std::vector<const cSendung*>& sendungen) {
    std::set<std::int32_t> vorhanden;
    std::set<std::pair<std::string, std::int32_t>> markiert;
    for (const cSendung& zeile : bestand.zeilen)
        vorhanden.insert(zeile.Pos);
    for (const Marke& marke : bestand.marken)
        markiert.emplace(LCase(marke.benutzer), marke.pos);
    for (const Marke& marke : bestand.marken) {
        if (marke.pos != 0 && vorhanden.contains(marke.pos)) continue;
        for (const cSendung* sendung : sendungen) {
            if (marke.beginn != sendung->Beginn || !gleichOhneGrossKlein(marke.titel, sendung->Titel) ||
                !markiert.emplace(LCase(marke.benutzer), sendung->Pos).second)
                continue;
            fuehreAus("Update Markierungen Set Pos=" + std::to_string(sendung->Pos) +
                      " Where ID=" + std::to_string(marke.id));
            ++bilanz_.marken;
        }
    }
}

}  // namespace wendel::skarvel
