#include "tvdb/Programmabfragen.h"

#include "platform/Text.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/Senderliste.h"

namespace wendel::Programmabfragen {

namespace {

using ModulGrundbefehle::SqlDatumZeit;
using ModulGrundbefehle::SqlText;

constexpr std::int64_t kTageUmher = 2;  // how far from t the next broadcast is looked for

// In the statements every blank counts, and so do the square brackets with the full stop behind them: they
// are sent as other programs of the suite send them.

std::string laeuft(Datum t, const Sendersammlung& favoriten) {
    std::vector<std::string> kennungen;
    for (const auto& sender : favoriten)
        kennungen.push_back(SqlText(sender->Senderkennung));
    if (kennungen.empty()) return {};
    return " Select * from Sendungen Where Senderkennung in(" + Join(kennungen, ",") +
           ")  and  Beginn<=" + SqlDatumZeit(t) + "  and  Ende>" + SqlDatumZeit(t) +
           " Order by Senderkennung,Beginn";
}

std::string naechste(const char* nach, Datum t) {
    const std::string frueh = SqlDatumZeit(DateAdd(Einheit::Tag, -kTageUmher, t));
    const std::string spaet = SqlDatumZeit(DateAdd(Einheit::Tag, kTageUmher, t));
    return " Select * from Sendungen inner join ["
           "            Select Sendungen.SenderKennung as MinSender, Min(Beginn) AS MinDatumUhrzeit"
           "            from Sendungen inner join Sender on Sendungen.SenderKennung = Sender.SenderKennung"
           "            Where Beginn" +
           (nach + SqlDatumZeit(t)) + "             and  Beginn<=" + spaet +
           "            and Sender.Favorit=true"
           "            group by Sendungen.SenderKennung"
           "            ]. as t1"
           " on  Sendungen.SenderKennung = t1.MinSender"
           " and Sendungen.Beginn = t1.MinDatumUhrzeit"
           " Where Sendungen.Beginn>=" +
           frueh + " and Sendungen.Beginn<=" + spaet + " Order by SenderKennung,Sendungen.Beginn;";
}

std::string abend(Datum t) {
    const Datum tag = t.datumsteil();
    return " Select Sendungen.* "
           " from Sendungen inner join Sender on Sendungen.SenderKennung = Sender.SenderKennung"
           " Where Beginn>=" +
           SqlDatumZeit(tag + TimeSerial(21, 0, 0)) +
           " and   Beginn<=" + SqlDatumZeit(tag + TimeSerial(23, 59, 59)) + " and   Ende<" +
           SqlDatumZeit(DateAdd(Einheit::Tag, 1, tag) + TimeSerial(2, 0, 0)) +
           " and Sender.Favorit=true"
           " Order by Sendungen.SenderKennung,Sendungen.KzFilm asc,Sendungen.Dauer;";
}

// Empty when there is nothing to ask.
std::string anweisung(Art art, Datum t, const Sendersammlung& favoriten) {
    switch (art) {
        case Art::Laeuft: return laeuft(t, favoriten);
        case Art::Ab: return naechste(">=", t);
        case Art::Nach: return naechste(">", t);
        case Art::Abend: return abend(t);
    }
    return {};
}

}  // namespace

Sendungsliste abfragen(ModulDatenbankzugriff& zugriff, std::unique_ptr<Datenbank>& db, Art art, Datum t,
                       const Sendersammlung& favoriten) {
    Sendungsliste liste;
    const std::string sql = anweisung(art, t, favoriten);
    if (sql.empty()) return liste;
    auto rs = zugriff.SafeOpenRs(db, sql, kSnapshot, kForwardOnly);
    cSendung zeile(zugriff);
    zeile.SetRsFields1(*rs);
    for (; !rs->eof(); rs->moveNext()) {
        zeile.LeseVonRsFields1();
        liste.push_back(zeile.GenerateCopy());
        liste.back().Temp_DetailsGeladen = false;  // a copy counts as complete; these rows are not
    }
    zugriff.SafeCloseRs(rs);
    return liste;
}

}  // namespace wendel::Programmabfragen
