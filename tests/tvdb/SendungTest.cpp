#include "tvdb/cSendung.h"

#include "platform/Text.h"
#include "tvdb/Probe.h"

namespace wendel {
namespace {

constexpr const char* kFelder1 =
    "SenderKennung,Beginn,Ende,Titel,SendungID,InhaltID,Aktualisierung,Showview,ShowviewVPS,VPS,"
    "Kategorietext,KurzBeschreibung,Bewertung,Bilddateiname,Dauer,Genre,Herstellungsjahr,Herstellungsland,"
    "Originaltitel,Regie,Bewertungen,Kurzkritik,FSK,Keywords,KzFilm,Kz16zu9,KzDolby,KzDolbyDigital,"
    "KzDolbySurround,KzLive,KzStereo,KzSchwarzweis,KzTelefon,KzUncoded,KzUntertitel,KzZweikanalton,"
    "KzAudiodescription,KzBilddateiHeruntergeladen,KzInFavoritenliste,KzImArchiv,KzWiederholung,KzHDTV";
std::string alleFelder(const cSendung& s) {
    return verbunden(s.SenderKennung, s.Beginn.sekunden() / 86400, s.Ende.sekunden() / 86400, s.Titel,
                     s.SendungID, s.InhaltID, s.Aktualisierung, s.Showview, s.ShowviewVPS, s.VPS,
                     s.Kategorietext, s.Kurzbeschreibung, s.Bewertung, s.Bilddateiname, s.Dauer, s.Genre,
                     s.Herstellungsjahr, s.Herstellungsland, s.Originaltitel, s.Regie, s.Bewertungen,
                     s.Kurzkritik, s.FSK, s.Keywords, s.KzFilm, s.Kz16zu9, s.KzDolby, s.KzDolbyDigital,
                     s.KzDolbySurround, s.KzLive, s.KzStereo, s.KzSchwarzweis, s.KzTelefon, s.KzUncoded,
                     s.KzUntertitel, s.KzZweikanalton, s.KzAudiodescription, s.KzBilddateiHeruntergeladen,
                     s.KzInFavoritenliste, s.KzImArchiv, s.KzWiederholung, s.KzHDTV, s.Pos);
}

using SendungTest = Datenbankprobe;

// Texts and numbers hold the number of their column, flags a bit of theirs, another bit in each round: a
// member that reads its neighbour is found.
TEST_F(SendungTest, JedesFeldKommtAusSeinerSpalte) {
    cSendung sendung{zugriff};
    EXPECT_EQ(cSendung::GetFelderNamenSendungen(), kFelder1);
    for (unsigned bit = 0; bit < 6; ++bit) {
        SCOPED_TRACE(bit);
        FakeTabelle tabelle{Split(kFelder1 + std::string(",Pos"), ","), {{}}};
        std::string erwartet;
        for (unsigned i = 0; i < 42; ++i) {
            const bool kennzeichen = i >= 24;
            tabelle.zeilen[0].push_back(kennzeichen ? Variant::boolesch(i >> bit & 1)
                                                    : Variant::integer(static_cast<std::int16_t>(i)));
            erwartet += std::to_string(kennzeichen ? i >> bit & 1 : i) + "|";
        }
        tabelle.zeilen[0].push_back(Variant::lang(4711));
        antworte("Select * from Sendungen where Pos=4711;", tabelle);
        sendung.FillAusDatenbank1(4711);
        EXPECT_EQ(alleFelder(sendung), erwartet + "4711|");
    }
    antworte("Select * from SendungenDetails where Pos=4711;",
             {{"Darsteller", "Beschreibung", "HTMLSeite"},
              {{Variant::text("D"), Variant::text("B"), Variant::null()}}});
    EXPECT_EQ(sendung.Darsteller() + sendung.Beschreibung() + sendung.HTMLSeite(), "DB");
    EXPECT_EQ(zustand->anweisungen().size(), 7U) << "the details once";
    EXPECT_EQ(zustand->offen() + zustand->recordsetsOffen(), 0);
}

// A conflict is retried, and a long page cut to what its column takes.
TEST_F(SendungTest, AnhaengenSchreibtAlleSpaltenInIhrerReihenfolge) {
    antworte("S", {Split("Pos," + std::string(kFelder1), ","), {}});
    antworte("D", {{"Pos", "HTMLSeite", "Darsteller", "Beschreibung"}, {}});
    db = zugriff.OpenDatenbank("\\suite\\tvdaten.mdb");
    const auto sendungen = zugriff.SafeOpenRs(db, "S"), details = zugriff.SafeOpenRs(db, "D");
    zustand->naechsterSchluessel = 4711;
    zustand->naechsteFehler = {3260};
    cSendung sendung{zugriff};
    const auto speichern = [&] { sendung.SpeichernInDatensatzAlles(*db, *sendungen, *details); };
    EXPECT_EQ(
        fehlerVon(speichern).beschreibung,
        "Ein Programmfehler ist aufgetreten. Die Detailsfelder sollen gespeichert werden sind jedoch noch "
        "nicht initialisiert.");
    EXPECT_EQ(fakes.uhr.schlafdauern.size(), 1U);
    sendung.setzeBeschreibung("B");
    sendung.setzeHTMLSeite(ersetzt(std::string(300, 'x'), "x", "ü"));
    speichern();
    std::vector<std::string> saetze;
    for (const auto& satz : zustand->gespeichert) {
        saetze.emplace_back();
        for (const auto& [name, wert] : satz)
            saetze.back() += (saetze.back().empty() ? "" : ",") + name;
    }
    EXPECT_EQ(saetze,
              (std::vector<std::string>{kFelder1, kFelder1, "Pos,Beschreibung,Darsteller,HTMLSeite"}));
    EXPECT_EQ(zustand->gespeichert.back()[0].second, Variant::lang(4712));
    EXPECT_EQ(zustand->gespeichert.back()[1].second, Variant::text("B"));
    EXPECT_EQ(zustand->gespeichert.back()[3].second.alsText(), ersetzt(std::string(255, 'x'), "x", "ü"));
}

}  // namespace
}  // namespace wendel
