#include "tvdb/Einstellungen.h"

#include <gtest/gtest.h>

#include "platform/Fehler.h"
#include "support/Fakes.h"
#include "tvdb/Variantdatei.h"

namespace wendel {
namespace {

constexpr const char* kPfad = "\\suite\\fennow.cfg";
constexpr const char* kPfadNeu = "\\suite\\fennow.cfg.neu";
constexpr const char* kPfadDefekt = "\\suite\\fennow.cfg.defekt";

Array beispiel(std::int32_t untergrenze = 0, std::int32_t anzahl = 30) {
    Array tabelle;
    tabelle.grenzen = {{4, 1}, {1, 1}};
    tabelle.elemente = {Variant::datumRoh(41267.84375), Variant::text("Tee"), Variant::integer(0),
                        Variant::boolesch(true)};
    Array array = Array::eindimensional(untergrenze, anzahl);
    array.at({1}) = Variant::text("C:\\TV\\tvdaten.mdb");
    array.at({7}) = Variant::integer(24);
    array.at({20}) = Variant::array(tabelle);
    return array;
}

std::string bytes(const Array& array) { return Variantdatei::geschrieben(Variant::array(array)); }

class EinstellungenTest : public testing::Test {
  protected:
    void lege(const std::string& inhalt) { dateien.lege(kPfad, inhalt); }
    std::string datei() const { return dateien.inhalt(kPfad).value_or("(fehlt)"); }

    // Number and source of the error that the call throws; 0 for none.
    template <class F>
    static std::pair<int, std::string> fehlerVon(F aufruf) {
        try {
            aufruf();
            return {0, ""};
        } catch (const Fehler& fehler) {
            return {fehler.nummer(), fehler.quelle()};
        }
    }

    FakePorts fakes;
    FakeDateisystem& dateien = fakes.dateien;
    Einstellungen einstellungen{dateien, "\\suite"};
};

using Ergebnis = std::pair<int, std::string>;

TEST_F(EinstellungenTest, VorhandenAbElfBytes) {
    EXPECT_FALSE(einstellungen.EinstellungsdateiVorhanden());
    lege(std::string(10, 'x'));
    EXPECT_FALSE(einstellungen.EinstellungsdateiVorhanden());
    lege(std::string(11, 'x'));
    EXPECT_TRUE(einstellungen.EinstellungsdateiVorhanden());
    dateien.scheitert = [](const std::string& vorgang, const std::string&) { return vorgang == "groesse"; };
    EXPECT_FALSE(einstellungen.EinstellungsdateiVorhanden());
}

TEST_F(EinstellungenTest, FehlendeDateiMeldetSichUndLaesstEineLeereZurueck) {
    try {
        einstellungen.GetEinstellungsarray();
        FAIL() << "no error";
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.nummer(), 1);
        EXPECT_EQ(fehler.quelle(), "GetEinstellungsarray");
        EXPECT_EQ(
            fehler.beschreibung(),
            "Der Pirrow ist nicht initialisiert. Die Datei \"fennow.cfg\" exisitiert nicht. Starten Sie "
            "das Hilfsprogramm \"quillon.exe\", um dieses Problem zu korrigieren.");
    }
    EXPECT_EQ(datei(), "");
}

TEST_F(EinstellungenTest, LesefehlerHabenIhreNummern) {
    const auto lies = [&] { einstellungen.GetEinstellungsarray(); };
    const std::string quelle = "GetEinstellungsarray";
    lege(std::string(12, '\0'));
    EXPECT_EQ(fehlerVon(lies), Ergebnis(1, quelle)) << "an empty value";
    lege("Das ist keine Einstellungsdatei");
    EXPECT_EQ(fehlerVon(lies), Ergebnis(13, quelle));
    lege(bytes(beispiel()));
    dateien.scheitert = [](const std::string& vorgang, const std::string&) { return vorgang == "lesen"; };
    EXPECT_EQ(fehlerVon(lies), Ergebnis(75, quelle));
}

TEST_F(EinstellungenTest, EinzelnerWertKommtRohUndImmerFrischAusDerDatei) {
    lege(bytes(beispiel(1, 30)));
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(24));
    EXPECT_EQ(einstellungen.GetEinstellung(2), Variant());
    EXPECT_EQ(fehlerVon([&] { einstellungen.GetEinstellung(0); }).first, 9);
    EXPECT_EQ(fehlerVon([&] { einstellungen.GetEinstellung(31); }).first, 9);
    Array anders = beispiel(1, 30);
    anders.at({7}) = Variant::integer(48);
    lege(bytes(anders));
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(48));
}

TEST_F(EinstellungenTest, ErsatzwertOhneDateiOhneSieAnzulegen) {
    EXPECT_EQ(einstellungen.Einstellung(7, Variant::integer(24)), Variant::integer(24));
    lege("Das ist keine Einstellungsdatei");
    EXPECT_EQ(einstellungen.Einstellung(7, Variant::integer(24)), Variant::integer(24));
    dateien.entferne(kPfad);
    einstellungen.Einstellung(7, Variant::integer(24));
    EXPECT_FALSE(dateien.inhalt(kPfad));
}

TEST_F(EinstellungenTest, WerteKommenImTypDesErsatzwerts) {
    struct Fall {
        const char* name;
        Variant gespeichert, ersatz, erwartet;
    };
    const Variant ganz = Variant::integer(24), wahr = Variant::boolesch(true), text = Variant::text("ja"),
                  nie = Variant::datum(Datum());
    const Datum heiligabend = DateSerial(2012, 12, 24);
    const Fall faelle[] = {
        {"empty", Variant(), ganz, ganz},
        {"null", Variant::null(), ganz, ganz},
        {"stored zero", Variant::integer(0), ganz, Variant::integer(0)},
        {"long as integer", Variant::lang(48), ganz, Variant::integer(48)},
        {"long beyond integer", Variant::lang(40000), ganz, ganz},
        {"text with number", Variant::text(" 48"), ganz, Variant::integer(48)},
        {"text without number", Variant::text("abc"), ganz, ganz},
        {"array", Variant::array(Array::eindimensional(0, 1)), ganz, ganz},
        {"zero as false", Variant::lang(0), wahr, Variant::boolesch(false)},
        {"any number as true", Variant::integer(5), Variant::boolesch(false), wahr},
        {"word as boolean", Variant::text("Falsch"), wahr, Variant::boolesch(false)},
        {"unknown word", Variant::text("vielleicht"), wahr, wahr},
        {"number as text", Variant::integer(5), text, Variant::text("5")},
        {"empty text", Variant::text(""), text, Variant::text("")},
        {"date as stored", Variant::datumRoh(41267.0), nie, Variant::datum(heiligabend)},
        {"number as date", Variant::doppelt(41267), nie, Variant::datum(heiligabend)},
        {"text as date", Variant::text("24.12.2012"), nie, Variant::datum(heiligabend)},
        {"no date", Variant::doppelt(1e300), nie, nie},
    };
    for (const Fall& fall : faelle) {
        SCOPED_TRACE(fall.name);
        Array array = Array::eindimensional(0, 10);
        array.at({7}) = fall.gespeichert;
        lege(bytes(array));
        EXPECT_EQ(einstellungen.Einstellung(7, fall.ersatz), fall.erwartet);
        EXPECT_EQ(einstellungen.Einstellung(10, fall.ersatz), fall.ersatz) << "outside the bounds";
    }
}

TEST_F(EinstellungenTest, AendernLaesstAlleAnderenWerteWieSieInDerDateiStehen) {
    lege(bytes(beispiel()));
    Array erwartet = beispiel();
    erwartet.at({7}) = Variant::integer(12);
    einstellungen.setzeEinstellung(7, Variant::integer(12));
    EXPECT_EQ(datei(), bytes(erwartet));
    EXPECT_EQ(dateien.dateien(), std::vector<std::string>{kPfad});
}

TEST_F(EinstellungenTest, AendernSchreibtInDieDateiOhneSieZuKuerzen) {
    lege(bytes(beispiel()) + "alter Rest");
    einstellungen.setzeEinstellung(1, Variant::text("x"));
    Array erwartet = beispiel();
    erwartet.at({1}) = Variant::text("x");
    const std::string neu = bytes(erwartet);
    EXPECT_EQ(datei().substr(0, neu.size()), neu);
    EXPECT_EQ(datei().size(), (bytes(beispiel()) + "alter Rest").size());
    EXPECT_EQ(einstellungen.GetEinstellungsarray(), Variant::array(erwartet));
}

TEST_F(EinstellungenTest, NeueDateiHatZweihundertLeereElemente) {
    for (const char* alt : {"", "0123456789"}) {
        lege(alt);
        einstellungen.setzeEinstellung(127, Variant::lang(5));
        Array erwartet = Array::eindimensional(0, 200);
        erwartet.at({127}) = Variant::lang(5);
        EXPECT_EQ(datei(), bytes(erwartet));
        EXPECT_EQ(dateien.dateien(), std::vector<std::string>{kPfad});
    }
}

TEST_F(EinstellungenTest, KurzesFeldWaechstMitSeinerUntergrenze) {
    lege(bytes(beispiel(1, 30)));
    einstellungen.setzeEinstellung(127, Variant::lang(5));
    Array erwartet = beispiel(1, 127);
    erwartet.at({127}) = Variant::lang(5);
    EXPECT_EQ(datei(), bytes(erwartet));
}

TEST_F(EinstellungenTest, UnmoeglicheIndizesAendernNichts) {
    lege(bytes(beispiel(1, 30)));
    for (const std::int32_t index : {0, -1, 2000000000}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(fehlerVon([&] { einstellungen.setzeEinstellung(index, Variant()); }).first, 9);
    }
    EXPECT_EQ(datei(), bytes(beispiel(1, 30)));
}

TEST_F(EinstellungenTest, BeschaedigteDateiWirdBeiseitegelegt) {
    const std::string schrott[] = {"Das ist keine Einstellungsdatei", std::string(500, '\0'),
                                   bytes(beispiel()).substr(0, 60),
                                   Variantdatei::geschrieben(Variant::text("nur ein Text"))};
    for (const std::string& alt : schrott) {
        SCOPED_TRACE(alt);
        dateien.entferne(kPfadDefekt);
        lege(alt);
        einstellungen.setzeEinstellung(7, Variant::integer(12));
        EXPECT_EQ(dateien.inhalt(kPfadDefekt), alt);
        EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(12));
    }
}

TEST_F(EinstellungenTest, AuchEineZweiteBeschaedigteDateiGehtNichtVerloren) {
    dateien.lege(kPfadDefekt, "die erste");
    lege("die zweite beschädigte");
    einstellungen.setzeEinstellung(7, Variant::integer(12));
    EXPECT_EQ(dateien.inhalt(kPfadDefekt), "die erste");
    EXPECT_EQ(dateien.inhalt(std::string(kPfadDefekt) + "2"), "die zweite beschädigte");
}

TEST_F(EinstellungenTest, WasSichNichtBeiseitelegenLaesstBleibtUnberuehrt) {
    lege("Das ist keine Einstellungsdatei");
    dateien.scheitert = [](const std::string& vorgang, const std::string&) {
        return vorgang == "umbenennen";
    };
    EXPECT_EQ(fehlerVon([&] { einstellungen.setzeEinstellung(7, Variant::integer(12)); }),
              Ergebnis(1, "SetEinstellungsarray"));
    EXPECT_EQ(datei(), "Das ist keine Einstellungsdatei");
}

TEST_F(EinstellungenTest, NichtLesbareDateiWirdNichtUeberschrieben) {
    lege(bytes(beispiel()));
    dateien.scheitert = [](const std::string& vorgang, const std::string&) { return vorgang == "lesen"; };
    EXPECT_EQ(fehlerVon([&] { einstellungen.setzeEinstellung(7, Variant::integer(12)); }).first, 75);
    EXPECT_EQ(datei(), bytes(beispiel()));
}

TEST_F(EinstellungenTest, ZuLangerTextSchreibtNichts) {
    for (const std::string& alt : {bytes(beispiel()), std::string("Das ist keine Einstellungsdatei")}) {
        lege(alt);
        const Variant lang = Variant::text(std::string(65536, 'x'));
        EXPECT_EQ(fehlerVon([&] { einstellungen.setzeEinstellung(1, lang); }),
                  Ergebnis(1, "SetEinstellungsarray"));
        EXPECT_EQ(datei(), alt);
        EXPECT_EQ(dateien.dateien(), std::vector<std::string>{kPfad});
    }
    EXPECT_EQ(fehlerVon([&] { einstellungen.SetEinstellungsarray(Variant::integer(1)); }).first, 13);
}

// ---- power cuts and full disks ----

TEST_F(EinstellungenTest, AbsturzInJedemSchrittLaesstAltOderNeu) {
    const Array alt = beispiel();
    Array neu = beispiel();
    neu.at({1}) = Variant::text("D:\\ein ganz anderer und viel längerer Pfad\\tvdaten.mdb");
    int schritte = 0, altGesehen = 0, neuGesehen = 0;
    for (const auto rest :
         {FakeDateisystem::Rest::Nichts, FakeDateisystem::Rest::Haelfte, FakeDateisystem::Rest::Alles}) {
        for (int n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "step " << n << ", rest " << static_cast<int>(rest));
            FakePorts eigene;
            eigene.dateien.lege(kPfad, bytes(alt));
            Einstellungen schreiber(eigene.dateien, kTestordner);
            eigene.dateien.stuerzeAbBei(n, rest);
            bool abgestuerzt = false;
            try {
                schreiber.SetEinstellungsarray(Variant::array(neu));
            } catch (const Absturz&) {
                abgestuerzt = true;
            }
            eigene.dateien.neustart();
            if (!abgestuerzt) break;
            ++schritte;
            Einstellungen leser(eigene.dateien, kTestordner);
            ASSERT_TRUE(leser.EinstellungsdateiVorhanden());
            const Variant gelesen = leser.GetEinstellungsarray();
            altGesehen += gelesen == Variant::array(alt);
            neuGesehen += gelesen == Variant::array(neu);
            EXPECT_EQ(altGesehen + neuGesehen, schritte) << "neither the old nor the new settings";
            EXPECT_FALSE(eigene.dateien.inhalt(kPfadNeu));
        }
    }
    EXPECT_EQ(schritte, 9) << "envelope, file, clean-up, three ways each";
    EXPECT_GT(altGesehen, 0);
    EXPECT_GT(neuGesehen, 0);
}

TEST_F(EinstellungenTest, NachgeholtesSchreibenUeberlebtWeitereAbstuerze) {
    Array neu = beispiel();
    neu.at({1}) = Variant::text("D:\\ein ganz anderer und viel längerer Pfad\\tvdaten.mdb");
    for (int n = 1; n <= 2; ++n) {
        SCOPED_TRACE(n);
        lege(bytes(beispiel()));
        dateien.stuerzeAbBei(2, FakeDateisystem::Rest::Haelfte);
        EXPECT_THROW(einstellungen.SetEinstellungsarray(Variant::array(neu)), Absturz);
        dateien.neustart();
        dateien.stuerzeAbBei(n, FakeDateisystem::Rest::Haelfte);
        EXPECT_THROW(einstellungen.GetEinstellungsarray(), Absturz);
        dateien.neustart();
        EXPECT_EQ(einstellungen.GetEinstellungsarray(), Variant::array(neu));
        EXPECT_FALSE(dateien.inhalt(kPfadNeu));
    }
}

TEST_F(EinstellungenTest, SchreibfehlerMeldenSichUndLassenAltOderNeu) {
    Array neu = beispiel();
    neu.at({7}) = Variant::integer(12);
    for (const int n : {1, 2}) {
        for (const bool teilweise : {false, true}) {
            SCOPED_TRACE(testing::Message() << "write " << n << ", partly " << teilweise);
            lege(bytes(beispiel()));
            dateien.scheitereBeimSchreiben(n, teilweise);
            EXPECT_EQ(fehlerVon([&] { einstellungen.SetEinstellungsarray(Variant::array(neu)); }),
                      Ergebnis(1, "SetEinstellungsarray"));
            const Variant gelesen = einstellungen.GetEinstellungsarray();
            EXPECT_TRUE(gelesen == Variant::array(beispiel()) || gelesen == Variant::array(neu));
            EXPECT_FALSE(dateien.inhalt(kPfadNeu));
        }
    }
}

TEST_F(EinstellungenTest, NichtGeloeschteVormerkungMachtSpaetereAenderungenNichtRueckgaengig) {
    lege(bytes(beispiel()));
    dateien.scheitert = [](const std::string& vorgang, const std::string&) { return vorgang == "loeschen"; };
    einstellungen.setzeEinstellung(7, Variant::integer(12));
    Array fremd = beispiel();
    fremd.at({7}) = Variant::integer(99);
    lege(bytes(fremd));
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(99));
}

TEST_F(EinstellungenTest, SchreibgeschuetzteDateiWirdGelesen) {
    lege(bytes(beispiel()));
    dateien.nurLesen.insert(kPfad);
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(24));
    EXPECT_EQ(fehlerVon([&] { einstellungen.setzeEinstellung(7, Variant::integer(12)); }).first, 1);
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(24));
    EXPECT_FALSE(dateien.inhalt(kPfadNeu)) << "nothing that would be replayed much later";
}

TEST_F(EinstellungenTest, UnvollstaendigeVormerkungZaehltNicht) {
    lege(bytes(beispiel()));
    for (const char* rest : {"", "\x05", "\x02\x00\x00\x00\x00\x00\x00\x00xy"}) {
        dateien.lege(kPfadNeu, rest);
        EXPECT_EQ(einstellungen.GetEinstellungsarray(), Variant::array(beispiel()));
        EXPECT_FALSE(dateien.inhalt(kPfadNeu));
    }
}

}  // namespace
}  // namespace wendel
