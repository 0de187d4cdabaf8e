#include "tvdb/cSendung.h"

#include <gmock/gmock.h>

#include "platform/Text.h"
#include "tvdb/Probe.h"

namespace wendel {
namespace {

constexpr const char* kFelder1 =
    "SenderKennung,Beginn,Ende,Titel,SendungID,InhaltID,Aktualisierung,Showview,ShowviewVPS,VPS,"
    "Kategorietext,"
    "KurzBeschreibung,Bewertung,Bilddateiname,Dauer,Genre,Herstellungsjahr,Herstellungsland,Originaltitel,"
    "Regie,"
    "Bewertungen,Kurzkritik,FSK,Keywords,KzFilm,Kz16zu9,KzDolby,KzDolbyDigital,KzDolbySurround,KzLive,"
    "KzStereo,"
    "KzSchwarzweis,KzTelefon,KzUncoded,KzUntertitel,KzZweikanalton,KzAudiodescription,"
    "KzBilddateiHeruntergeladen,KzInFavoritenliste,KzImArchiv,KzWiederholung,KzHDTV";
constexpr const char* kAnweisung1 = "Select * from Sendungen where Pos=4711;";
constexpr const char* kAnweisung2 = "Select * from SendungenDetails where Pos=4711;";

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

const FakeTabelle kDetails = {{"Darsteller", "Beschreibung", "HTMLSeite"},
                              {{Variant::text("D"), Variant::text("B"), Variant::null()}}};

class SendungTest : public Datenbankprobe {
  protected:
    // Rows of Sendungen with the same value in each column but Pos.
    static FakeTabelle zeilen(const std::vector<Variant>& werte) {
        FakeTabelle tabelle{Split(kFelder1 + std::string(",Pos"), ","), {}};
        for (const Variant& wert : werte) {
            tabelle.zeilen.emplace_back(tabelle.spalten.size(), wert);
            tabelle.zeilen.back().back() = Variant::lang(4711);
        }
        return tabelle;
    }
    std::unique_ptr<Recordset> oeffne(FakeTabelle tabelle) {
        antworte("x", std::move(tabelle));
        db = zugriff.OpenDatenbank(werte.datenbankdatei);
        return zugriff.SafeOpenRs(db, "x");
    }

    cSendung sendung{zugriff};
};

// Texts and numbers hold the number of their column, flags a bit of theirs, another bit in each round: a
// member that reads its neighbour is found.
TEST_F(SendungTest, JedesFeldKommtAusSeinerSpalte) {
    EXPECT_EQ(cSendung::GetFelderNamenSendungen(), kFelder1);
    EXPECT_EQ(cSendung::GetFelderNamenSendungenDetails(), "Beschreibung,Darsteller,HTMLSeite");
    for (unsigned bit = 0; bit < 6; ++bit) {
        SCOPED_TRACE(bit);
        FakeTabelle tabelle = zeilen({Variant::null()});
        std::string erwartet;
        for (unsigned i = 0; i < 42; ++i) {
            const bool kennzeichen = i >= 24;
            tabelle.zeilen[0][i] = kennzeichen ? Variant::boolesch(i >> bit & 1)
                                               : Variant::integer(static_cast<std::int16_t>(i));
            erwartet += std::to_string(kennzeichen ? i >> bit & 1 : i) + "|";
        }
        antworte(kAnweisung1, tabelle);
        sendung.FillAusDatenbank1(4711);
        EXPECT_EQ(alleFelder(sendung), erwartet + "4711|");
        cSendung kopie = sendung.GenerateCopy();
        EXPECT_EQ(alleFelder(kopie), erwartet + "4711|");
        EXPECT_EQ(kopie.Beschreibung(), "") << "a copy never loads";
        const auto rs = oeffne(tabelle);
        cSendung gebunden(zugriff);
        gebunden.SetRsFields1(*rs);
        gebunden.LeseVonRsFields1();
        EXPECT_EQ(alleFelder(gebunden), erwartet + "4711|");
    }
    EXPECT_FALSE(sendung.Temp_DetailsGeladen);
    EXPECT_THAT(std::vector(zustand->vorgaenge.begin(), zustand->vorgaenge.begin() + 4),
                testing::ElementsAre(FakeVorgang{"openDatabase", werte.datenbankdatei, {}, {}},
                                     FakeVorgang{"openRecordset", kAnweisung1, 4, 256},
                                     FakeVorgang{"closeRecordset", "", {}, {}},
                                     FakeVorgang{"closeDatabase", werte.datenbankdatei, {}, {}}));
}

// Null, a number that is too large, no date, binary data: "", 0, false; the next row is read all the same.
TEST_F(SendungTest, FremdeWerteHaltenDasLesenNichtAuf) {
    const auto rs =
        oeffne(zeilen({Variant::null(), Variant::binaer({1}), Variant::doppelt(1e300), Variant::text("7x")}));
    sendung.SetRsFields1(*rs);
    for (int zeile = 0; zeile < 2; ++zeile, rs->moveNext()) {
        sendung.FSK = 99;
        sendung.LeseVonRsFields1();
        EXPECT_EQ(alleFelder(sendung),
                  "|0|0||||0||||||0||||||||||0||0|0|0|0|0|0|0|0|0|0|0|0|0|0|0|0|0|0|4711|");
    }
    sendung.LeseVonRsFields1();
    EXPECT_EQ(std::pair(sendung.FSK, sendung.Beginn), std::pair(std::int16_t{0}, Datum()));
    rs->moveNext();
    sendung.LeseVonRsFields1();
    EXPECT_EQ(sendung.FSK, 7);
    sendung.Beginn = DateSerial(2012, 12, 24) + TimeSerial(23, 50, 0);
    EXPECT_EQ(sendung.Datum(), DateSerial(2012, 12, 24));
    EXPECT_EQ(sendung.Uhrzeit(), TimeSerial(23, 50, 0));
}

TEST_F(SendungTest, DetailsWerdenEinmalGeladenUndFehlendeWiederGesucht) {
    sendung.Pos = 4711;
    antworte(kAnweisung2, {kDetails.spalten, {}});
    EXPECT_EQ(sendung.Beschreibung(), "");
    antworte(kAnweisung2, kDetails);
    EXPECT_EQ(sendung.Darsteller() + sendung.Beschreibung() + sendung.HTMLSeite(), "DB");
    EXPECT_EQ(zustand->anweisungen(), (std::vector<std::string>{kAnweisung2, kAnweisung2}));

    const auto rs = oeffne(kDetails);
    cSendung gebunden(zugriff), geschrieben(zugriff);
    gebunden.SetRsFields2(*rs);
    gebunden.LeseVonRsFields2();
    EXPECT_EQ(gebunden.Darsteller() + gebunden.Beschreibung(), "DB");
    geschrieben.setzeHTMLSeite("seite.htm");
    EXPECT_EQ(geschrieben.Beschreibung() + geschrieben.HTMLSeite(), "seite.htm");
    EXPECT_EQ(zustand->anweisungen().size(), 3U) << "what is there is not asked for";

    zustand->naechsteFehler = {3078};
    EXPECT_EQ(fehlerVon([&] { sendung.FillAusDatenbank1(4711); }).nummer, 3078);
    EXPECT_EQ(zustand->offen(), 1) << "only our own";
}

}  // namespace
}  // namespace wendel
