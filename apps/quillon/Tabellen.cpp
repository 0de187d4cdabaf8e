#include "Tabellen.h"

#include <array>

namespace wendel::quillon {

namespace {

constexpr auto kBefehle = std::to_array<std::string_view>({
    "Create Table Sender (Bezeichnung Text(50), BezeichnungKurz Text(20), KzBezeichnungSchützen YesNo,"
    " Senderkennung Text(20), DatenNr Text(20), Zeichen Text(100), Webseite Text(255), GueltigAb DateTime,"
    " GueltigBis DateTime, Favorit YesNo, Gruppe Text(50), SortNr Long, SortNrKestrin Long)",
    "Create Unique Index Senderkennung On Sender (Senderkennung)",

    "Create Table Sendungen (Pos Counter Constraint PrimaryKey Primary Key, SenderKennung Text(20),"
    " Beginn DateTime, Ende DateTime, Titel Text(100), SendungID Text(20), InhaltID Text(20),"
    " Aktualisierung Short, Showview Text(20), ShowviewVPS Text(20), VPS Text(10), Kategorietext Text(50),"
    " Kurzbeschreibung Memo, Bewertung Short, Bilddateiname Text(100), Dauer Text(10), Genre Text(50),"
    " Herstellungsjahr Text(10), Herstellungsland Text(50), Originaltitel Text(100), Regie Text(100),"
    " Bewertungen Text(100), Kurzkritik Text(255), FSK Short, Keywords Text(255), KzFilm YesNo, Kz16zu9 "
    "YesNo,"
    " KzDolby YesNo, KzDolbyDigital YesNo, KzDolbySurround YesNo, KzLive YesNo, KzStereo YesNo,"
    " KzSchwarzweis YesNo, KzTelefon YesNo, KzUncoded YesNo, KzUntertitel YesNo, KzZweikanalton YesNo,"
    " KzAudiodescription YesNo, KzBilddateiHeruntergeladen YesNo, KzInFavoritenliste YesNo, KzImArchiv YesNo,"
    " KzWiederholung YesNo, KzHDTV YesNo)",
    "Create Index SenderKennung On Sendungen (SenderKennung)",
    "Create Index Beginn On Sendungen (Beginn)",

    "Create Table SendungenDetails (Pos Long Constraint PrimaryKey Primary Key, Beschreibung Memo,"
    " Darsteller Memo, HTMLSeite Text(255))",

    "Create Table Markierungen (User Text(50), Pos Long, Sendung Text(100), Senderkennung Text(20),"
    " Datum DateTime, Uhrzeit DateTime, Dauer Text(10), Favorit YesNo, Erinnerung YesNo, Optionen Text(255),"
    " Aufzeichnung YesNo, SendungID Text(20), InhaltID Text(20), Aktualisierung Short, KzAusblenden YesNo,"
    " ID Counter Constraint PrimaryKey Primary Key)",
    "Create Index Pos On Markierungen (Pos)",
});

}  // namespace

std::span<const std::string_view> tabellenbefehle() { return kBefehle; }

}  // namespace wendel::quillon
