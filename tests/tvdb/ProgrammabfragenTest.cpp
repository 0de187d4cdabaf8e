// The statements to the blank, as the suite's programs send them; the rows that they find: jetsql.statements.
#include "tvdb/Programmabfragen.h"

#include "tvdb/Probe.h"
#include "tvdb/Senderliste.h"

namespace wendel {
namespace {

using Programmabfragen::Art;
using ProgrammabfragenTest = Datenbankprobe;

std::string naechste(const std::string& ab) {
    return " Select * from Sendungen inner join [            Select Sendungen.SenderKennung as MinSender, "
           "Min(Beginn) "
           "AS MinDatumUhrzeit            from Sendungen inner join Sender on Sendungen.SenderKennung = "
           "Sender.SenderKennung            Where Beginn" +
           ab +
           "#12/31/2012 9:05:03#             and  Beginn<=#1/2/2013 9:05:03#            and "
           "Sender.Favorit=true"
           "            group by Sendungen.SenderKennung            ]. as t1 on  Sendungen.SenderKennung = "
           "t1.MinSender and Sendungen.Beginn = t1.MinDatumUhrzeit Where Sendungen.Beginn>=#12/29/2012 "
           "9:05:03# and "
           "Sendungen.Beginn<=#1/2/2013 9:05:03# Order by SenderKennung,Sendungen.Beginn;";
}

TEST_F(ProgrammabfragenTest, AnweisungenStimmenBisAufsLeerzeichen) {
    const Datum silvester = DateSerial(2012, 12, 31) + TimeSerial(9, 5, 3);
    Sendersammlung favoriten, keine;
    for (const char* kennung : {"ZDF", "N'24"}) {
        const auto sender = std::make_shared<cSender>();
        sender->Senderkennung = kennung;
        favoriten.add(sender, kennung);
    }
    const std::tuple<Art, Sendersammlung*, std::string> zeilen[] = {
        {Art::Laeuft, &favoriten,
         " Select * from Sendungen Where Senderkennung in('ZDF','N''24')  and  Beginn<=#12/31/2012 9:05:03#  "
         "and  "
         "Ende>#12/31/2012 9:05:03# Order by Senderkennung,Beginn"},
        {Art::Laeuft, &keine, ""},
        {Art::Ab, &keine, naechste(">=")},
        {Art::Nach, &keine, naechste(">")},
        {Art::Abend, &keine,
         " Select Sendungen.*  from Sendungen inner join Sender on Sendungen.SenderKennung = "
         "Sender.SenderKennung "
         "Where Beginn>=#12/31/2012 21:00:00# and   Beginn<=#12/31/2012 23:59:59# and   Ende<#1/1/2013 "
         "2:00:00# and "
         "Sender.Favorit=true Order by Sendungen.SenderKennung,Sendungen.KzFilm asc,Sendungen.Dauer;"}};
    db = zugriff.OpenDatenbank("\\suite\\tvdaten.mdb");
    for (const auto& [art, sender, erwartet] : zeilen) {
        zustand->vorgaenge.clear();
        zustand->naechsteFehler = {1};
        EXPECT_EQ(fehlerVon([&, art = art, &sender = sender] {
                      Programmabfragen::abfragen(zugriff, db, art, silvester, *sender);
                  }).nummer,
                  erwartet.empty() ? 0 : 1);
        const auto gesendet =
            erwartet.empty() ? FakeVorgang{} : FakeVorgang{"openRecordset", erwartet, 4, 256};
        EXPECT_EQ(zustand->vorgaenge.empty() ? FakeVorgang{} : zustand->vorgaenge[0], gesendet);
    }
}

}  // namespace
}  // namespace wendel
