#include "reminders/ErinnerungenLesen.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

#include "platform/Fehler.h"
#include "platform/Text.h"
#include "platform/Zahlen.h"
#include "tvdb/Feldwerte.h"
#include "tvdb/ModulDatenbankzugriff.h"
#include "tvdb/ModulGrundbefehle.h"
#include "tvdb/Optionen.h"
#include "tvdb/cSendung.h"

namespace wendel {
namespace {

using ModulGrundbefehle::SqlText;

constexpr std::size_t kMomentstellen = 12;  // yyyymmddhhnn

std::string kennungsliste(const std::vector<std::string>& kennungen) {
    std::vector<std::string> literale;
    for (const std::string& kennung : kennungen)
        literale.push_back(SqlText(kennung));
    return Join(literale, ",");
}

std::string erinnerungsstatement(std::string_view spalten, const std::string& rechnername,
                                 const std::vector<std::string>& kennungen) {
    return "Select Distinct " + std::string(spalten) +
           " from Markierungen Where User=" + SqlText(rechnername) +
           " and Erinnerung=true and KzAusblenden=0 and SenderKennung in(" + kennungsliste(kennungen) +
           ") Order by Datum,Uhrzeit;";
}

// The two double blanks belong to the statement as the suite sends it.
std::string aufzeichnungsstatement(const std::string& rechnername,
                                   const std::vector<std::string>& kennungen) {
    return "Select Distinct Datum,Uhrzeit,Dauer,Sendung,SenderKennung from Markierungen Where User=" +
           SqlText(rechnername) + " and Aufzeichnung=true  and KzAusblenden=0  and SenderKennung in(" +
           kennungsliste(kennungen) + ") Order by Datum,Uhrzeit;";
}

// Throws for moments beyond the calendar, which sums of odd values reach.
Datum imKalender(Datum d) { return Datum::ausTageszahl(d.tageszahl()); }

std::int64_t stueck(std::string_view text, std::size_t start, std::size_t laenge) {
    return CInt(Val(Mid(text, start, laenge)));
}

// By position, each piece read leniently: what has no digits counts as 0. Throws for what no calendar holds.
Datum erinnerungsmoment(std::string_view text) {
    return imKalender(DateSerial(stueck(text, 1, 4), stueck(text, 5, 2), stueck(text, 7, 2)) +
                      TimeSerial(stueck(text, 9, 2), stueck(text, 11, 2), 0));
}

// A moment as the programme guide writes it. What the lenient reading makes of anything else lies somewhere
// in the past and would count as missed for as long as the broadcast lasts.
bool istEchterMoment(const std::string& text) {
    const auto istZiffer = [](char c) { return c >= '0' && c <= '9'; };
    if (text.size() < kMomentstellen ||
        !std::all_of(text.begin(), text.begin() + kMomentstellen, istZiffer)) {
        return false;
    }
    const auto teil = [&](std::size_t start, std::size_t laenge) {
        return static_cast<int>(stueck(text, start, laenge));
    };
    return istKalendertag(teil(1, 4), teil(5, 2), teil(7, 2)) && teil(9, 2) < 24 && teil(11, 2) < 60;
}

// A row with what its statement selects; the values are taken over before anything is made of them.
struct Markierung {
    std::string optionen;
    Datum datum;
    Datum uhrzeit;
    std::string dauer;
    std::string titel;
    std::string kennung;
};

struct Zusatzspalten {
    bool optionen = false;
    bool dauer = false;
};

Markierung markierungAus(Recordset& rs, const Zusatzspalten& spalten) {
    Markierung markierung;
    if (spalten.optionen) markierung.optionen = Feldwerte::alsText(rs.feld("Optionen"));
    if (spalten.dauer) markierung.dauer = Feldwerte::alsText(rs.feld("Dauer"));
    markierung.datum = Feldwerte::alsDatum(rs.feld("Datum"));
    markierung.uhrzeit = Feldwerte::alsDatum(rs.feld("Uhrzeit"));
    markierung.titel = Feldwerte::alsText(rs.feld("Sendung"));
    markierung.kennung = Feldwerte::alsText(rs.feld("Senderkennung"));
    return markierung;
}

Datum sendungsbeginn(const Markierung& markierung) {
    return imKalender(markierung.datum + markierung.uhrzeit);
}

Datum sendungsende(const Markierung& markierung) {
    return imKalender(DateAdd(Einheit::Minute, CLng(Val(markierung.dauer)), sendungsbeginn(markierung)));
}

std::string erinnerungszeit(const Markierung& markierung) {
    return Optionen::GetOption(markierung.optionen, "Erinnerungszeit");
}

TerminZeiger neuerTermin(const Markierung& markierung, Datum weckZeit, Terminart art) {
    auto termin = std::make_shared<cTermin>();
    termin->Sendungsbeginn = sendungsbeginn(markierung);
    termin->WeckZeit = weckZeit;
    termin->WeckText =
        Format(termin->Sendungsbeginn, "hh\\:nn") + " " + markierung.titel + " (" + markierung.kennung + ")";
    termin->Aktiv = true;
    termin->Art = art;
    return termin;
}

TerminZeiger kuenftigeErinnerung(const Markierung& markierung, Datum jetzt) {
    const Datum moment = erinnerungsmoment(erinnerungszeit(markierung));
    if (moment < jetzt.aufMinute()) return nullptr;
    return neuerTermin(markierung, moment, Terminart::Erinnerung);
}

TerminZeiger verpassteErinnerung(const Markierung& markierung, Datum jetzt) {
    const std::string zeit = erinnerungszeit(markierung);
    if (!istEchterMoment(zeit)) return nullptr;
    const Datum moment = erinnerungsmoment(zeit);
    if (moment >= jetzt.aufMinute() || sendungsende(markierung) <= jetzt) return nullptr;
    return neuerTermin(markierung, moment, Terminart::Erinnerung);
}

std::shared_ptr<cSendung> sendungAus(const Markierung& markierung) {
    auto sendung = std::make_shared<cSendung>();
    sendung->SenderKennung = markierung.kennung;
    sendung->Titel = markierung.titel;
    sendung->Beginn = sendungsbeginn(markierung);
    sendung->Ende = sendungsende(markierung);
    sendung->Dauer = markierung.dauer;
    return sendung;
}

TerminZeiger aufzeichnung(const Markierung& markierung, Datum jetzt, std::int16_t vorlaufMinuten,
                          std::int16_t nachlaufMinuten) {
    auto sendung = sendungAus(markierung);
    if (sendung->Ende < jetzt) return nullptr;
    const Datum fensterbeginn = imKalender(DateAdd(Einheit::Minute, -vorlaufMinuten, sendung->Beginn));
    TerminZeiger termin = neuerTermin(markierung, fensterbeginn, Terminart::Aufzeichnung);
    termin->Fensterende = imKalender(DateAdd(Einheit::Minute, nachlaufMinuten, sendung->Ende));
    termin->Sendung = std::move(sendung);
    return termin;
}

using Terminbildner = std::function<TerminZeiger(const Markierung&)>;

// Nothing for a row that gives no entry, also when its numbers or dates fit no calendar: one such mark must
// not cost all others.
TerminZeiger terminOderNichts(const Terminbildner& bildner, const Markierung& markierung) {
    try {
        return bildner(markierung);
    } catch (const Fehler&) {
        return nullptr;
    }
}

// Marks that differ in other options, or a detached copy of a mark: the same line of a notice. Two recordings
// that look alike may differ in their end.
bool istDoppelteErinnerung(const Terminliste& termine, const cTermin& neu) {
    if (neu.Art != Terminart::Erinnerung) return false;
    return std::any_of(termine.begin(), termine.end(), [&](const TerminZeiger& termin) {
        return termin->WeckZeit == neu.WeckZeit && termin->WeckText == neu.WeckText;
    });
}

struct Abfrage {
    const std::string& datenbankdatei;
    std::string sql;
    const std::vector<std::string>& kennungen;
    Zusatzspalten spalten;
    Terminbildner bildner;
};

Terminliste alleZeilen(Recordset& rs, const Abfrage& abfrage) {
    Terminliste termine;
    for (; !rs.eof(); rs.moveNext()) {
        TerminZeiger termin = terminOderNichts(abfrage.bildner, markierungAus(rs, abfrage.spalten));
        if (termin && !istDoppelteErinnerung(termine, *termin)) termine.push_back(std::move(termin));
    }
    return termine;
}

// Without channels no mark can match. The engine would only refuse an empty list as an error of syntax, and
// the user of a new database would get two boxes before the icon.
Terminabfrage gelesen(ModulDatenbankzugriff& zugriff, const Abfrage& abfrage) {
    Terminabfrage ergebnis;
    ergebnis.gelungen = abfrage.kennungen.empty();
    if (ergebnis.gelungen) return ergebnis;
    std::unique_ptr<Datenbank> db;
    std::unique_ptr<Recordset> rs;
    try {
        db = zugriff.OpenDatenbank(abfrage.datenbankdatei);
        rs = zugriff.SafeOpenRs(db, abfrage.sql, kSnapshot, kForwardOnly);
        ergebnis.termine = alleZeilen(*rs, abfrage);
        ergebnis.gelungen = true;
    } catch (const Fehler&) {
        // The result says so; the caller keeps what it had.
    }
    zugriff.SafeCloseRs(rs);
    zugriff.SafeCloseDatenbank(db);
    return ergebnis;
}

}  // namespace

Terminabfragen::Terminabfragen(ModulDatenbankzugriff& zugriff, std::string datenbankdatei,
                               std::string rechnername)
    : zugriff_(zugriff), datenbankdatei_(std::move(datenbankdatei)), rechnername_(std::move(rechnername)) {}

Terminabfrage Terminabfragen::ErinnerungenLesen(const std::vector<std::string>& kennungen, Datum jetzt) {
    return gelesen(zugriff_, {datenbankdatei_,
                              erinnerungsstatement("Optionen,Datum,Uhrzeit,Sendung,Senderkennung",
                                                   rechnername_, kennungen),
                              kennungen,
                              {.optionen = true},
                              [&](const Markierung& m) { return kuenftigeErinnerung(m, jetzt); }});
}

Terminabfrage Terminabfragen::AufzeichnungenLesen(const std::vector<std::string>& kennungen, Datum jetzt,
                                                  std::int16_t vorlaufMinuten, std::int16_t nachlaufMinuten) {
    return gelesen(zugriff_, {datenbankdatei_,
                              aufzeichnungsstatement(rechnername_, kennungen),
                              kennungen,
                              {.dauer = true},
                              [&](const Markierung& m) {
                                  return aufzeichnung(m, jetzt, vorlaufMinuten, nachlaufMinuten);
                              }});
}

Terminabfrage Terminabfragen::VerpassteErinnerungenLesen(const std::vector<std::string>& kennungen,
                                                         Datum jetzt) {
    return gelesen(zugriff_, {datenbankdatei_,
                              erinnerungsstatement("Optionen,Datum,Uhrzeit,Dauer,Sendung,Senderkennung",
                                                   rechnername_, kennungen),
                              kennungen,
                              {.optionen = true, .dauer = true},
                              [&](const Markierung& m) { return verpassteErinnerung(m, jetzt); }});
}

}  // namespace wendel
