#include "tvdb/Einstellungen.h"

#include "tvdb/Probe.h"
#include "tvdb/Variantdatei.h"

namespace wendel {
namespace {

constexpr const char* kPfad = "\\suite\\fennow.cfg";
constexpr const char* kPfadNeu = "\\suite\\fennow.cfg.neu";
constexpr const char* kPfadDefekt = "\\suite\\fennow.cfg.defekt";
constexpr const char* kFremd = "Das ist keine Einstellungsdatei";

// A path, a number, and a table inside the array, with one element changed.
Array beispiel(std::int32_t untergrenze = 0, std::int32_t anzahl = 30, std::int32_t index = 7,
               const Variant& wert = Variant::integer(24)) {
    Array tabelle;
    tabelle.grenzen = {{4, 1}, {1, 1}};
    tabelle.elemente = {Variant::datumRoh(41267.84375), Variant::text("Tee"), Variant::integer(0),
                        Variant::boolesch(true)};
    Array array = Array::eindimensional(untergrenze, anzahl);
    array.at({1}) = Variant::text("C:\\TV\\tvdaten.mdb");
    array.at({7}) = Variant::integer(24);
    array.at({20}) = Variant::array(tabelle);
    array.at({index}) = wert;
    return array;
}

std::string bytes(const Array& array) { return Variantdatei::geschrieben(Variant::array(array)); }

std::function<bool(const std::string&, const std::string&)> alle(const std::string& gestoert) {
    return [gestoert](const std::string& vorgang, const std::string&) { return vorgang == gestoert; };
}

class EinstellungenTest : public testing::Test {
  protected:
    void lege(const std::string& inhalt) { dateien.lege(kPfad, inhalt); }
    std::string datei() const { return dateien.inhalt(kPfad).value_or("(fehlt)"); }
    Gemeldet setze(std::int32_t index, const Variant& wert) {
        return fehlerVon([&] { einstellungen.setzeEinstellung(index, wert); });
    }

    FakePorts fakes;
    FakeDateisystem& dateien = fakes.dateien;
    Einstellungen einstellungen{dateien, "\\suite"};
};

TEST_F(EinstellungenTest, VorhandenAbElfBytesUndFehlendMitMeldungUndLeererDatei) {
    for (const std::size_t groesse : {11U, 10U}) {
        lege(std::string(groesse, 'x'));
        EXPECT_EQ(einstellungen.EinstellungsdateiVorhanden(), groesse == 11);
    }
    dateien.entferne(kPfad);
    EXPECT_FALSE(einstellungen.EinstellungsdateiVorhanden());
    EXPECT_EQ(fehlerVon([&] { einstellungen.GetEinstellungsarray(); }).beschreibung,
              "Der Pirrow ist nicht initialisiert. Die Datei \"fennow.cfg\" exisitiert nicht. Starten Sie "
              "das Hilfsprogramm \"quillon.exe\", um dieses Problem zu korrigieren.");
    EXPECT_EQ(datei(), "");
}

TEST_F(EinstellungenTest, LesefehlerHabenIhreNummernUndErgebenDenErsatzwert) {
    const auto pruefe = [&](const std::string& inhalt, std::int32_t index, int nummer) {
        lege(inhalt);
        EXPECT_EQ(fehlerVon([&] { einstellungen.GetEinstellung(index); }).nummer, nummer);
        EXPECT_EQ(einstellungen.Einstellung(index, Variant::lang(3)), Variant::lang(3));
    };
    pruefe(std::string(12, '\0'), 7, 1);  // an empty value
    pruefe(kFremd, 7, 13);
    pruefe(bytes(beispiel(1)), 0, 9);
    pruefe(bytes(beispiel(1)), 31, 9);
    dateien.scheitert = alle("lesen");
    pruefe(bytes(beispiel()), 7, 75);
}

// Each row: stored, default, result.
TEST_F(EinstellungenTest, WerteKommenRohUndFrischOderImTypDesErsatzwerts) {
    const Variant ganz = Variant::integer(24), wahr = Variant::boolesch(true);
    const std::array<Variant, 3> faelle[] = {
        {Variant(), ganz, ganz},
        {Variant::integer(0), ganz, Variant::integer(0)},
        {Variant::lang(40000), ganz, ganz},
        {Variant::array(Array::eindimensional(0, 1)), ganz, ganz},
        {Variant::text("Falsch"), wahr, Variant::boolesch(false)},
        {Variant::text("vielleicht"), wahr, wahr},
        {Variant::text("24.12.2012"), Variant::datum(Datum()), Variant::datum(DateSerial(2012, 12, 24))}};
    for (const auto& [gespeichert, ersatz, erwartet] : faelle) {
        SCOPED_TRACE(&gespeichert - &faelle[0][0]);
        lege(bytes(beispiel(0, 30, 7, gespeichert)));
        EXPECT_EQ(einstellungen.GetEinstellung(7), gespeichert);
        EXPECT_EQ(einstellungen.Einstellung(7, ersatz), erwartet);
    }
}

TEST_F(EinstellungenTest, AendernLaesstAllesAndereWieEsInDerDateiSteht) {
    const auto pruefe = [&](const char* name, const std::string& vorher, std::int32_t index,
                            const std::string& nachher) {
        SCOPED_TRACE(name);
        lege(vorher);
        EXPECT_EQ(setze(index, Variant::lang(5)).nummer, 0);
        EXPECT_EQ(datei(), nachher);
        EXPECT_EQ(dateien.dateien(), std::vector<std::string>{kPfad});
    };
    const Variant fuenf = Variant::lang(5);
    Array neues = Array::eindimensional(0, 200);
    neues.at({127}) = fuenf;
    pruefe("one of many", bytes(beispiel()), 3, bytes(beispiel(0, 30, 3, fuenf)));
    pruefe("no file to speak of", "0123456789", 127, bytes(neues));
    pruefe("grows from its bound", bytes(beispiel(1)), 127, bytes(beispiel(1, 127, 127, fuenf)));
    // Written in place: what stood behind the longer old value stays and counts for nothing.
    pruefe("shorter", bytes(beispiel()) + "12345678", 7, bytes(beispiel(0, 30, 7, fuenf)) + "345678");
    EXPECT_EQ(einstellungen.GetEinstellung(7), fuenf);
}

TEST_F(EinstellungenTest, WasNichtGehtAendertNichts) {
    const auto pruefe = [&](const std::string& inhalt, std::int32_t index, const Variant& wert,
                            const char* gestoert, int nummer) {
        SCOPED_TRACE(testing::Message() << index << gestoert << nummer);
        lege(inhalt);
        dateien.scheitert = alle(gestoert);
        EXPECT_EQ(setze(index, wert).nummer, nummer);
        EXPECT_EQ(datei(), inhalt);
        EXPECT_EQ(dateien.dateien(), std::vector<std::string>{kPfad}) << "nothing to be replayed much later";
    };
    const std::string gut = bytes(beispiel(1));
    const Variant neu = Variant::integer(12), zuLang = Variant::text(std::string(65536, 'x'));
    pruefe(gut, 0, neu, "", 9);
    pruefe(gut, 2000000000, neu, "", 9);
    pruefe(gut, 1, zuLang, "", 1);
    pruefe(kFremd, 1, zuLang, "", 1);
    pruefe(gut, 7, neu, "lesen", 75);
    pruefe(kFremd, 7, neu, "umbenennen", 1);
    pruefe(gut, 7, neu, "schreiben", 1);
    pruefe(gut, 7, neu, "ueberschreibenAmAnfang", 1);
}

TEST_F(EinstellungenTest, BeschaedigteDateienWerdenAlleBeiseitegelegt) {
    const std::string schrott[] = {kFremd, std::string(500, '\0'), bytes(beispiel()).substr(0, 60),
                                   Variantdatei::geschrieben(Variant::text("nur ein Text"))};
    std::string ziel = kPfadDefekt;
    for (const std::string& alt : schrott) {
        SCOPED_TRACE(ziel);
        lege(alt);
        einstellungen.setzeEinstellung(7, Variant::integer(12));
        EXPECT_EQ(dateien.inhalt(ziel), alt);
        EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(12));
        ziel = kPfadDefekt + std::to_string(dateien.dateien().size());
    }
}

// ---- power cuts and full disks ----

// Also a second kill, while the reader mends what the first has left.
TEST_F(EinstellungenTest, AbsturzInJedemSchrittLaesstAltOderNeu) {
    using Rest = FakeDateisystem::Rest;
    const Variant alt = Variant::array(beispiel());
    const Variant neu =
        Variant::array(beispiel(0, 30, 1, Variant::text("D:\\ein viel längerer Pfad\\tv.mdb")));
    int altGesehen = 0, neuGesehen = 0;
    for (const auto rest : {Rest::Nichts, Rest::Haelfte, Rest::Alles}) {
        for (int schritt = 1; schritt <= 3; ++schritt) {
            for (int zweiter = 1; zweiter <= 3; ++zweiter) {
                SCOPED_TRACE(testing::Message()
                             << schritt << "/" << zweiter << "/" << static_cast<int>(rest));
                lege(bytes(beispiel()));
                dateien.stuerzeAbBei(schritt, rest);
                EXPECT_THROW(einstellungen.SetEinstellungsarray(neu), Absturz) << "envelope, file, clean-up";
                dateien.neustart();
                dateien.stuerzeAbBei(zweiter, rest);
                try {
                    einstellungen.EinstellungsdateiVorhanden();
                } catch (const Absturz&) {
                }
                dateien.neustart();
                const Variant gelesen = einstellungen.GetEinstellungsarray();
                EXPECT_TRUE(gelesen == alt || gelesen == neu);
                ++(gelesen == alt ? altGesehen : neuGesehen);
                EXPECT_FALSE(dateien.inhalt(kPfadNeu));
            }
        }
    }
    EXPECT_EQ(std::pair(altGesehen, neuGesehen), std::pair(6, 21));
}

TEST_F(EinstellungenTest, NichtGeloeschteVormerkungMachtSpaetereAenderungenNichtRueckgaengig) {
    lege(bytes(beispiel()));
    dateien.scheitert = alle("loeschen");
    einstellungen.setzeEinstellung(7, Variant::integer(12));
    lege(bytes(beispiel(0, 30, 7, Variant::integer(99))));
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(99));
}

TEST_F(EinstellungenTest, VormerkungDieNichtAnIhrenPlatzKannZaehltAlsInhalt) {
    lege(bytes(beispiel()));
    dateien.stuerzeAbBei(2);
    EXPECT_THROW(einstellungen.setzeEinstellung(7, Variant::integer(12)), Absturz);
    dateien.neustart();
    dateien.nurLesen.insert(kPfad);
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(12));
    dateien.lege(kPfadNeu, dateien.inhalt(kPfadNeu)->substr(1));
    EXPECT_EQ(einstellungen.GetEinstellung(7), Variant::integer(24)) << "a damaged one does not";
}

}  // namespace
}  // namespace wendel
