#include "tvdb/Markierungspflege.h"

#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "platform/ports/Datenbankmaschine.h"
#include "tvdb/Feldwerte.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/Optionen.h"
#include "tvdb/cSendung.h"

// The blanks of the statements, one, two or three, are those that the suite's programs send.

namespace wendel {

namespace {

using ModulGrundbefehle::SqlBool;
using ModulGrundbefehle::SqlDatum;
using ModulGrundbefehle::SqlDatumZeit;
using ModulGrundbefehle::SqlText;

constexpr const char* kErinnerungszeit = "Erinnerungszeit";
constexpr std::size_t kMomentstellen = 12;  // yyyymmddhhnn
constexpr const char* kNichtWiederkehrend = "  and  Optionen not Like '*Wiederkehrend=1*'";

// The columns of a mark that new marks are made from, or that tell duplicates.
struct Markierung {
    std::int32_t pos = 0;
    std::string benutzer, titel, kennung, dauer, optionen;
    Datum beginn;
    bool favorit = false, erinnerung = false, aufzeichnung = false;
};

// Datum+Uhrzeit; day zero for a sum that no calendar holds.
Datum beginnAus(Recordset& rs) {
    const Datum summe = Feldwerte::alsDatum(rs.feld("Datum")) + Feldwerte::alsDatum(rs.feld("Uhrzeit"));
    return Feldwerte::alsDatum(Variant::datum(summe));
}

// The columns that both selects of whole marks have.
Markierung markierungAus(Recordset& rs) {
    Markierung markierung;
    markierung.titel = Feldwerte::alsText(rs.feld("Sendung"));
    markierung.kennung = Feldwerte::alsText(rs.feld("Senderkennung"));
    markierung.beginn = beginnAus(rs);
    markierung.erinnerung = Feldwerte::alsBool(rs.feld("Erinnerung"));
    return markierung;
}

Markierung favoritAus(Recordset& rs) {
    Markierung markierung = markierungAus(rs);
    markierung.pos = Feldwerte::alsLong(rs.feld("Pos"));
    markierung.optionen = Feldwerte::alsText(rs.feld("Optionen"));
    markierung.aufzeichnung = Feldwerte::alsBool(rs.feld("Aufzeichnung"));
    return markierung;
}

Markierung doppelteAus(Recordset& rs) {
    Markierung markierung = markierungAus(rs);
    markierung.benutzer = Feldwerte::alsText(rs.feld("User"));
    markierung.dauer = Feldwerte::alsText(rs.feld("Dauer"));
    markierung.favorit = Feldwerte::alsBool(rs.feld("Favorit"));
    return markierung;
}

cSendung sendungAus(Recordset& rs) {
    cSendung sendung;
    sendung.LeseVonDatensatz1(rs);
    return sendung;
}

void aufnehmen(Markierungslisten& listen, std::int32_t pos, const Markierung& markierung) {
    const std::string eintrag = std::to_string(pos) + ";";
    listen.favoriten += eintrag;
    if (markierung.erinnerung) listen.erinnerungen += eintrag;
    if (markierung.aufzeichnung) listen.aufzeichnungen += eintrag;
}

bool istGesetzt(const Markierung& markierung, std::string_view schluessel) {
    return Optionen::GetOption(markierung.optionen, schluessel, "0") == "1";
}

// False for a title with a "[" that no pattern may have: unclosed, or with a range, which may run backwards
// as in "[SAT-1]". The search would fail, in a box, in each run.
bool istMuster(std::string_view titel) {
    while (true) {
        const std::size_t auf = titel.find('[');
        if (auf == std::string_view::npos) return true;
        const std::size_t zu = titel.find(']', auf);
        if (zu == std::string_view::npos || titel.substr(auf, zu - auf).find('-') != std::string_view::npos)
            return false;
        titel.remove_prefix(zu);
    }
}

// A title with a subtitle or an episode stands for all titles that begin like it.
std::string titelbedingung(const std::string& titel) {
    if (titel.find_first_of(":/") == std::string::npos || !istMuster(titel))
        return " and Titel=" + SqlText(titel);
    return " and Titel like '" + ersetzt(titel, "'", "''") + "*'";
}

// Nothing when the option holds no moment of the calendar.
std::optional<Datum> erinnerungsmoment(const std::string& optionen) {
    const std::string ziffern = Left(Optionen::GetOption(optionen, kErinnerungszeit), kMomentstellen);
    try {
        const Datum moment = ModulGrundbefehle::DatumAusText(ziffern + "00");
        if (Left(datumKompakt(moment), kMomentstellen) == ziffern) return moment;
    } catch (const Fehler&) {
        // Not written by any program of the suite.
    }
    return std::nullopt;
}

// As long before the new broadcast as the mark's own reminder before its own. Nothing for a mark without
// both.
std::optional<Datum> verschobenerMoment(const Markierung& markierung, Datum beginn) {
    const std::optional<Datum> moment = erinnerungsmoment(markierung.optionen);
    if (!moment || markierung.beginn == Datum()) return std::nullopt;
    try {
        return DateAdd(Einheit::Minute, DateDiff(Einheit::Minute, markierung.beginn, *moment), beginn);
    } catch (const Fehler&) {
        return std::nullopt;  // the mark's own start is far out of the calendar
    }
}

// One run: the open database and what all statements share.
class Lauf {
  public:
    Lauf(ModulDatenbankzugriff& zugriff, const std::string& benutzer, Datum jetzt, std::int16_t loeschtage,
         Markierungslisten& listen)
        : zugriff_(zugriff),
          db_(zugriff.OpenDatenbank(zugriff.datenbankdatei())),
          benutzer_(benutzer),
          sqlBenutzer_(SqlText(benutzer)),
          jetzt_(jetzt),
          grenztag_(DateAdd(Einheit::Tag, -loeschtage, jetzt.datumsteil())),
          listen_(listen) {}
    ~Lauf() { zugriff_.SafeCloseDatenbank(db_); }
    Lauf(const Lauf&) = delete;
    Lauf& operator=(const Lauf&) = delete;

    void wiederkehrendeErgaenzen();
    void abgelaufeneLoeschen();
    void wiederkehrendeAufraeumen();
    void verwaisteLoesen();
    void favoritenkennzeichenAbgleichen();
    void doppelteLoeschen();

    bool erinnerungVersaeumt() const { return erinnerungVersaeumt_; }

  private:
    // The rows are taken over at once, so that no recordset is open while later statements write.
    template <class Zeilenleser>
    auto gelesen(const std::string& sql, Zeilenleser leser) {
        std::vector<decltype(leser(std::declval<Recordset&>()))> zeilen;
        std::unique_ptr<Recordset> rs = zugriff_.SafeOpenRs(db_, sql, kSnapshot, kForwardOnly);
        for (; !rs->eof(); rs->moveNext())
            zeilen.push_back(leser(*rs));
        zugriff_.SafeCloseRs(rs);
        return zeilen;
    }
    void ausfuehren(const std::string& sql) { zugriff_.SafeExecute(db_, sql); }

    std::string schluesselliste(const std::string& sql, const char* spalte);
    const std::string& markierteSchluessel();
    std::vector<Markierung> favoritenLesen();
    std::string suchbedingung(const Markierung& markierung);
    bool istMarkiert(std::int32_t pos);
    void markieren(const Markierung& vorbild, const cSendung& sendung);
    std::string optionenFuer(const Markierung& vorbild, Datum beginn);

    ModulDatenbankzugriff& zugriff_;
    std::unique_ptr<Datenbank> db_;
    const std::string& benutzer_;
    std::string sqlBenutzer_;
    Datum jetzt_;
    Datum grenztag_;
    Markierungslisten& listen_;
    std::optional<std::string> markierte_;
    bool erinnerungVersaeumt_ = false;
};

// Joined with commas, "" for no rows; Null is no key.
std::string Lauf::schluesselliste(const std::string& sql, const char* spalte) {
    std::string liste;
    for (const Variant& schluessel : gelesen(sql, [&](Recordset& rs) { return rs.feld(spalte); })) {
        if (schluessel.istNull()) continue;
        if (!liste.empty()) liste += ",";
        liste += std::to_string(Feldwerte::alsLong(schluessel));
    }
    return liste;
}

// Read once and only when asked for: most users have no recurring marks. "0" stands in an empty list, since a
// statement must not hold "()".
const std::string& Lauf::markierteSchluessel() {
    if (!markierte_) {
        markierte_ = schluesselliste("Select Pos from Markierungen", "Pos");
        if (markierte_->empty()) markierte_ = "0";
    }
    return *markierte_;
}

// ---- new broadcasts of recurring marks ----

std::vector<Markierung> Lauf::favoritenLesen() {
    std::vector<Markierung> favoriten =
        gelesen(" Select *  from Markierungen  Where User=" + sqlBenutzer_ +
                    " and Favorit=true  Order by Sendung asc, Datum+Uhrzeit asc ;",
                favoritAus);
    Markierungslisten neue;
    for (const Markierung& favorit : favoriten)
        aufnehmen(neue, favorit.pos, favorit);
    listen_ = std::move(neue);
    return favoriten;
}

void Lauf::wiederkehrendeErgaenzen() {
    const auto hoechste =
        gelesen("Select Max(Pos) as MaxPos from Sendungen", [](Recordset& rs) { return rs.feld("MaxPos"); });
    const std::vector<Markierung> favoriten = favoritenLesen();
    if (hoechste.empty() || hoechste.front().istNull()) return;  // no broadcasts at all
    // What is added is a recurring mark itself, so that a title has one for each of its broadcasts: the
    // search that the first has made finds nothing new for the others.
    std::set<std::string> gesucht;
    for (const Markierung& favorit : favoriten) {
        if (!istGesetzt(favorit, "Wiederkehrend")) continue;
        const std::string bedingung = suchbedingung(favorit);
        if (!gesucht.insert(bedingung).second) continue;
        // From key 0 on: new data may come with any key, and the list keeps out what is marked already.
        const std::string suche =
            " Select * from Sendungen  Where Pos>0 and Pos not in(" + markierteSchluessel() + ")" + bedingung;
        for (const cSendung& sendung : gelesen(suche, sendungAus)) {
            if (!istMarkiert(sendung.Pos)) markieren(favorit, sendung);
        }
    }
}

// The rest of the statement, which tells one search of a run from another.
std::string Lauf::suchbedingung(const Markierung& markierung) {
    std::string sql = " and Beginn>=date()" + titelbedingung(markierung.titel);
    if (Optionen::GetOption(markierung.optionen, "SenderEgal", "0") == "0")
        sql += " and Senderkennung=" + SqlText(markierung.kennung);
    sql += " and Beginn>=" + SqlDatumZeit(jetzt_);
    if (istGesetzt(markierung, "OhneWiederholung")) sql += " and KzWiederholung=false";
    return sql + " Order by Beginn;";
}

// Another recurring mark of this run may have found the same broadcast.
bool Lauf::istMarkiert(std::int32_t pos) {
    const std::string sql =
        " Select * from Markierungen Where User=" + sqlBenutzer_ + " and   Pos=" + std::to_string(pos);
    return !gelesen(sql, [](Recordset&) { return true; }).empty();
}

void Lauf::markieren(const Markierung& vorbild, const cSendung& sendung) {
    const std::string werte[] = {sqlBenutzer_,
                                 std::to_string(sendung.Pos),
                                 SqlText(sendung.Titel),
                                 SqlText(sendung.SenderKennung),
                                 SqlDatum(sendung.Datum()),
                                 SqlDatumZeit(sendung.Uhrzeit()),
                                 SqlText(sendung.Dauer),
                                 "true",
                                 SqlBool(vorbild.erinnerung),
                                 SqlText(optionenFuer(vorbild, sendung.Beginn)),
                                 SqlBool(vorbild.aufzeichnung),
                                 SqlText(sendung.SendungID),
                                 SqlText(sendung.InhaltID),
                                 "0",
                                 "0"};
    ausfuehren(
        "Insert Into Markierungen (User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,"
        "Optionen,Aufzeichnung,SendungID,InhaltID,Aktualisierung,KzAusblenden) Values (" +
        Join({std::begin(werte), std::end(werte)}, ",") + ")");
    aufnehmen(listen_, sendung.Pos, vorbild);
}

// A mark that names no moment but wants a reminder gets one at the start of the broadcast.
std::string Lauf::optionenFuer(const Markierung& vorbild, Datum beginn) {
    std::optional<Datum> moment = verschobenerMoment(vorbild, beginn);
    if (!moment && vorbild.erinnerung) moment = beginn;
    if (!moment) return vorbild.optionen;
    if (vorbild.erinnerung && *moment < jetzt_.aufMinute()) erinnerungVersaeumt_ = true;
    return Optionen::SetOption(vorbild.optionen, kErinnerungszeit,
                               Left(datumKompakt(*moment), kMomentstellen));
}

// ---- old marks ----

void Lauf::abgelaufeneLoeschen() {
    const std::string anfang = " Delete from Markierungen Where User=" + sqlBenutzer_;
    ausfuehren(anfang + "  and  Dateadd('n',val(Dauer),Datum+Uhrzeit)<" + SqlDatumZeit(jetzt_) +
               kNichtWiederkehrend);
    ausfuehren(anfang + "  and  Datum<" + SqlDatum(grenztag_) + kNichtWiederkehrend);
}

// The latest mark of each title stays: it is what makes the next broadcasts marks as well.
void Lauf::wiederkehrendeAufraeumen() {
    const auto gruppen = gelesen(
        " Select Sendung,Max(Datum+Uhrzeit) as MaxDatumUhrzeit From Markierungen Where User=" + sqlBenutzer_ +
            "  and  Optionen Like '*Wiederkehrend=1*' Group by Sendung",
        [](Recordset& rs) {
            return std::pair(Feldwerte::alsText(rs.feld("Sendung")),
                             Feldwerte::alsDatum(rs.feld("MaxDatumUhrzeit")));
        });
    std::string bleiben;
    for (const auto& [titel, letzter] : gruppen) {
        const std::string kennungen = schluesselliste(
            " Select ID From Markierungen Where User=" + sqlBenutzer_ + " and Sendung=" + SqlText(titel) +
                " and Datum+Uhrzeit=" + SqlDatumZeit(letzter) + " and Optionen Like '*Wiederkehrend=1*'",
            "ID");
        if (!bleiben.empty() && !kennungen.empty()) bleiben += ",";
        bleiben += kennungen;
    }
    if (bleiben.empty()) return;
    ausfuehren(" Delete from Markierungen Where User=" + sqlBenutzer_ + "  and  Datum<" +
               SqlDatum(grenztag_) + "  and  Optionen Like '*Wiederkehrend=1*'  and  ID not in(" + bleiben +
               ")");
}

// ---- agreement with the broadcasts ----

void Lauf::verwaisteLoesen() {
    ausfuehren(
        "Update Sendungen right join Markierungen on Sendungen.Pos = Markierungen.Pos "
        "Set Markierungen.Pos = 0 Where Sendungen.Pos Is Null");
}

void Lauf::favoritenkennzeichenAbgleichen() {
    const std::string liste = schluesselliste("Select Pos from Markierungen Where Pos>0", "Pos");
    const std::string setzen = "Update Sendungen Set KzInFavoritenListe=" + SqlBool(true) +
                               " Where KzInFavoritenListe=" + SqlBool(false);
    const std::string loeschen = "Update Sendungen Set KzInFavoritenListe=" + SqlBool(false) +
                                 " Where KzInFavoritenListe=" + SqlBool(true);
    if (liste.empty()) return ausfuehren(loeschen + ";");
    ausfuehren(setzen + " and Pos in (" + liste + ");");
    ausfuehren(loeschen + " and not Pos in (" + liste + ");");
}

// A detached mark goes when its twin has a broadcast. Groups of other users are theirs to look after: the
// statement would hit a detached mark of this user.
void Lauf::doppelteLoeschen() {
    const auto gruppen = gelesen(
        " Select User,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung from Markierungen"
        " group by User,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung"
        " having min(pos) = 0 and max(pos)<>0",
        doppelteAus);
    for (const Markierung& m : gruppen) {
        if (!gleichOhneGrossKlein(m.benutzer, benutzer_)) continue;
        ausfuehren(" Delete from Markierungen Where User=" + sqlBenutzer_ +
                   "  and  Sendung=" + SqlText(m.titel) + "  and  Senderkennung=" + SqlText(m.kennung) +
                   "  and  Datum+Uhrzeit=" + SqlDatumZeit(m.beginn) + "  and  Dauer=" + SqlText(m.dauer) +
                   "  and  Favorit=" + SqlBool(m.favorit) + "  and  Erinnerung=" + SqlBool(m.erinnerung) +
                   "  and  Pos=0");
    }
}

}  // namespace

Markierungspflege::Markierungspflege(ModulDatenbankzugriff& zugriff, std::string benutzer,
                                     std::int16_t loeschtage)
    : zugriff_(zugriff), benutzer_(std::move(benutzer)), loeschtage_(loeschtage) {}

Markierungspflege::Ergebnis Markierungspflege::laufen(Datum jetzt, Markierungslisten& listen) {
    Lauf lauf(zugriff_, benutzer_, jetzt, loeschtage_, listen);
    lauf.wiederkehrendeErgaenzen();
    lauf.abgelaufeneLoeschen();
    lauf.wiederkehrendeAufraeumen();
    lauf.verwaisteLoesen();
    lauf.favoritenkennzeichenAbgleichen();
    lauf.doppelteLoeschen();
    return {lauf.erinnerungVersaeumt()};
}

}  // namespace wendel
