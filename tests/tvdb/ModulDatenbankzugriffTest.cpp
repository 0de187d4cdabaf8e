#include "tvdb/ModulDatenbankzugriff.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Text.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

using Kasten = FakeMeldungen::Kasten;

constexpr const char* kDb = "\\tv\\tvdaten.mdb";
constexpr const char* kArbeit = "\\tv\\tvdaten.mdb.cmp";
constexpr const char* kLog = "\\suite\\tvdbaccess.log";
constexpr const char* kSql = " Select * from Markierungen ";

const Kasten kKollision = {
    "Eine andere Funktion verhindert gerade die Datenfreigabe aufgrund eines längeres Zugriffs.\r\n"
    "Bitte warten Sie einen Augenblick und klicken Sie dann auf [Wiederholen].",
    65589, "Datenzugriffskollision"};
const Kasten kKeinZugriff = {
    "Es kann nicht auf die TV-Datenbank zugegriffen werden.\r\nDer genaue Fehler lautet:\r\n\r\n(3024) "
    "Gesperrt.",
    53, "Lomrick"};
const Kasten kReparieren = {
    "Die Datenbank scheint defekt zu sein.\r\nMöchten Sie versuchen sie zu reparieren?", 52, "Lomrick"};
const Kasten kNichtGeoeffnet = {
    "Die Datenbankdatei kann nicht geöffnet werden.\r\nDer genaue Fehler lautet:\r\n\r\n(3024) Nicht "
    "gefunden.",
    53, "Lomrick"};

class ModulDatenbankzugriffTest : public testing::Test {
  protected:
    ModulDatenbankzugriffTest() {
        werte.programmdatei = "wendel";
        werte.programmordner = kTestordner;
        fakes.dateien.lege(kDb, "alt");
        zustand->antworten.insert_or_assign(kSql, FakeTabelle{{"ID"}, {}});
    }

    void oeffne() {
        db = zugriff.OpenDatenbank(kDb);
        zustand->vorgaenge.clear();
    }
    std::unique_ptr<Recordset> oeffneRs() { return zugriff.SafeOpenRs(db, kSql, 4, 256); }

    template <class F>
    static int fehlerVon(F aufruf) {
        try {
            aufruf();
            return 0;
        } catch (const Fehler& fehler) {
            return fehler.nummer();
        }
    }

    std::string log() const { return fakes.dateien.inhalt(kLog).value_or("(fehlt)"); }
    std::vector<std::string> vorgangsarten() const {
        std::vector<std::string> arten;
        for (const FakeVorgang& v : zustand->vorgaenge)
            arten.push_back(v.art);
        return arten;
    }
    void setzeWiederholungen(std::int32_t n) { einstellungen.setzeEinstellung(127, Variant::lang(n)); }
    void sperre(int mal, int nummer = 3260) {
        zustand->naechsteFehler.assign(static_cast<std::size_t>(mal), nummer);
    }

    FakePorts fakes;
    FakeDatenbankzustand* zustand = &*fakes.datenbanken;
    Prozesswerte werte;
    Einstellungen einstellungen{fakes.dateien, kTestordner};
    ModulDatenbankzugriff zugriff{fakes.ports(), einstellungen, werte};
    std::unique_ptr<Datenbank> db;
};

TEST_F(ModulDatenbankzugriffTest, SperrfehlerSindGanzeNummernDerListe) {
    for (const int nummer : {3186, 3187, 3188, 3260, 3261, 3167, 3050}) {
        EXPECT_TRUE(ModulDatenbankzugriff::IstSperrfehler(nummer)) << nummer;
    }
    for (const int nummer : {318, 86, 0, 3189, 3024, 31863187}) {
        EXPECT_FALSE(ModulDatenbankzugriff::IstSperrfehler(nummer)) << nummer;
    }
}

// ---- engine ----

TEST_F(ModulDatenbankzugriffTest, MaschineWirdEinmalGemacht) {
    oeffne();
    oeffne();
    EXPECT_THAT(fakes.datenbanken.versuche, ElementsAre(""));
}

TEST_F(ModulDatenbankzugriffTest, ProgrammkennungenInIhrerReihenfolge) {
    fakes.datenbanken.direktVorhanden = false;
    fakes.datenbanken.kennungenVorhanden = {"DAO.DBEngine.4", "DAO.DBEngine"};
    EXPECT_TRUE(zugriff.SafeCreateDBObject());
    EXPECT_THAT(fakes.datenbanken.versuche,
                ElementsAre("", "DAO.DBEngine.35", "DAO.DBEngine.36", "DAO.DBEngine.351", "DAO.DBEngine.4"));
}

TEST_F(ModulDatenbankzugriffTest, OhneMaschineFehltEineSystemkomponente) {
    fakes.datenbanken.direktVorhanden = false;
    try {
        zugriff.SafeCreateDBObject();
        FAIL() << "no error";
    } catch (const Fehler& fehler) {
        EXPECT_EQ(fehler.nummer(), 1);
        EXPECT_EQ(fehler.quelle(), "SafeCreateDBObject");
        EXPECT_EQ(fehler.beschreibung(),
                  "Es fehlen Systemkomponenten. Die DAO-Datenbankengine konnte in keiner kompatiblen Version "
                  "geöffnet werden. Bitte installieren Sie diese Anwendung neu.");
    }
    EXPECT_THAT(fakes.datenbanken.versuche,
                ElementsAre("", "DAO.DBEngine.35", "DAO.DBEngine.36", "DAO.DBEngine.351", "DAO.DBEngine.4",
                            "DAO.DBEngine.40", "DAO.DBEngine35", "DAO.DBEngine"));
}

// ---- opening ----

TEST_F(ModulDatenbankzugriffTest, OeffnenFragtBisEsGelingt) {
    int rest = 2;
    zustand->beimOeffnen = [&](const std::string&) {
        if (rest-- > 0) throw Fehler(3024, "Maschine", "Nicht gefunden.");
    };
    fakes.meldungen.antworten = {Antwort::Wiederholen, Antwort::Wiederholen};
    EXPECT_TRUE(zugriff.OpenDatenbank(kDb));
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kNichtGeoeffnet, kNichtGeoeffnet));
}

TEST_F(ModulDatenbankzugriffTest, AbgebrochenesOeffnenWirftDenFehlerDerMaschine) {
    zustand->beimOeffnen = [](const std::string&) { throw Fehler(3024, "Maschine", "Nicht gefunden."); };
    EXPECT_EQ(fehlerVon([&] { zugriff.OpenDatenbank(kDb); }), 3024);
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kNichtGeoeffnet));
}

// ---- recordsets ----

TEST_F(ModulDatenbankzugriffTest, TypUndOptionenNurWennGesetzt) {
    oeffne();
    EXPECT_TRUE(zugriff.SafeOpenRs(db, kSql, 0, -1));
    EXPECT_TRUE(zugriff.SafeOpenRs(db, kSql, 4, 0));
    EXPECT_TRUE(zugriff.SafeOpenRs(db, kSql, 4, 256));
    EXPECT_EQ(zustand->vorgaenge, (std::vector<FakeVorgang>{{"openRecordset", kSql, {}, {}},
                                                            {"openRecordset", kSql, 4, {}},
                                                            {"openRecordset", kSql, 4, 256}}));
}

TEST_F(ModulDatenbankzugriffTest, OptionenOhneTypOeffnenNichtsUndMeldenNichts) {
    oeffne();
    EXPECT_FALSE(zugriff.SafeOpenRs(db, kSql, 0, 256));
    EXPECT_FALSE(zugriff.SafeOpenRs(db, kSql, -1, 128));
    EXPECT_THAT(zustand->vorgaenge, IsEmpty());
    EXPECT_THAT(fakes.meldungen.gezeigt, IsEmpty());
    EXPECT_EQ(log(), "(fehlt)");
}

TEST_F(ModulDatenbankzugriffTest, ZehnStilleWiederholungenDannDieFrage) {
    setzeWiederholungen(0);
    sperre(11, 3050);
    fakes.rechner.zufallszahlen = {0.0, 0.9999999, 0.5, 0.001};
    oeffne();
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3050);
    EXPECT_THAT(fakes.uhr.schlafdauern,
                ElementsAre(3000, 3999, 3500, 3001, 3500, 3500, 3500, 3500, 3500, 3500));
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kKollision));
    EXPECT_EQ(fakes.uhr.nachrichtenlaeufe, 0) << "the pauses block";
    EXPECT_EQ(Split(log(), "\r\n").size(), 12U)
        << "a line for each of the eleven conflicts, and the last line end";
}

TEST_F(ModulDatenbankzugriffTest, JedePauseLiegtZwischenDreiUndVierSekunden) {
    setzeWiederholungen(500);
    sperre(501);
    for (int i = 0; i < 500; ++i)
        fakes.rechner.zufallszahlen.push_back(i / 500.0);
    oeffne();
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3260);
    EXPECT_THAT(fakes.uhr.schlafdauern, SizeIs(500));
    EXPECT_THAT(fakes.uhr.schlafdauern, Each(AllOf(Ge(3000), Le(3999))));
}

TEST_F(ModulDatenbankzugriffTest, SperreDieVergehtFragtNiemanden) {
    sperre(3);
    oeffne();
    EXPECT_TRUE(oeffneRs());
    EXPECT_THAT(fakes.meldungen.gezeigt, IsEmpty());
    EXPECT_THAT(
        vorgangsarten(),
        ElementsAre("openRecordset", "closeDatabase", "openDatabase", "openRecordset", "closeDatabase",
                    "openDatabase", "openRecordset", "closeDatabase", "openDatabase", "openRecordset"));
}

TEST_F(ModulDatenbankzugriffTest, NachWiederholenGehtDerZaehlerWeiter) {
    setzeWiederholungen(2);
    sperre(5);
    oeffne();
    fakes.meldungen.antworten = {Antwort::Wiederholen, Antwort::Wiederholen, Antwort::Wiederholen};
    EXPECT_TRUE(oeffneRs());
    EXPECT_THAT(fakes.uhr.schlafdauern, SizeIs(2));
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kKollision, kKollision, kKollision));
}

TEST_F(ModulDatenbankzugriffTest, GeaenderteZahlGiltBeimNaechstenAufruf) {
    setzeWiederholungen(1);
    sperre(2);
    oeffne();
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3260);
    setzeWiederholungen(3);
    sperre(4);
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3260);
    EXPECT_THAT(fakes.uhr.schlafdauern, SizeIs(4));
}

TEST_F(ModulDatenbankzugriffTest, OhneEinstellungsdateiZehnUndKeineNeueDatei) {
    sperre(11);
    oeffne();
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3260);
    EXPECT_THAT(fakes.uhr.schlafdauern, SizeIs(10));
    EXPECT_FALSE(fakes.dateien.inhalt("\\suite\\fennow.cfg"));
}

TEST_F(ModulDatenbankzugriffTest, BleibtOffenSolangeAndereRecordsetsOffenSind) {
    oeffne();
    const auto anderes = oeffneRs();
    Datenbank* const vorher = db.get();
    sperre(2);
    EXPECT_TRUE(oeffneRs());
    EXPECT_EQ(db.get(), vorher);
    EXPECT_THAT(vorgangsarten(), Each("openRecordset"));
}

TEST_F(ModulDatenbankzugriffTest, AndererFehlerFragtSofort) {
    sperre(1, 3024);
    oeffne();
    fakes.meldungen.antworten = {Antwort::Wiederholen};
    EXPECT_TRUE(oeffneRs());
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kKeinZugriff));
    EXPECT_THAT(fakes.uhr.schlafdauern, IsEmpty());
}

TEST_F(ModulDatenbankzugriffTest, OhneReparaturWirdDerFehlerGeworfenUndDieDatenbankIstWiederOffen) {
    sperre(1, 3024);
    oeffne();
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3024);
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kKeinZugriff, kReparieren));
    EXPECT_THAT(vorgangsarten(), ElementsAre("openRecordset", "closeDatabase", "openDatabase"));
    ASSERT_TRUE(db);
    EXPECT_TRUE(oeffneRs());
}

TEST_F(ModulDatenbankzugriffTest, FehlerBeimWiederoeffnenErsetztDenErsten) {
    sperre(1, 3024);
    oeffne();
    zustand->beimOeffnen = [](const std::string&) { throw Fehler(3051, "Maschine", "Kein Zugriff."); };
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3051);
    EXPECT_FALSE(db);
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 91) << "no crash for a caller that goes on all the same";
}

TEST_F(ModulDatenbankzugriffTest, StillerModusGibtOhneFrageAufAberNichtBeiSperren) {
    zugriff.stillerModus = true;
    oeffne();
    sperre(1, 3024);
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3024);
    EXPECT_THAT(fakes.meldungen.gezeigt, IsEmpty());
    setzeWiederholungen(1);
    sperre(2);
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3260);
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kKollision));
}

// ---- statements ----

TEST_F(ModulDatenbankzugriffTest, AnweisungenWerdenMitFehlermeldungAusgefuehrtUndWiederholt) {
    sperre(1);
    oeffne();
    zugriff.SafeExecute(db, "Delete from Markierungen");
    EXPECT_EQ(zustand->vorgaenge,
              (std::vector<FakeVorgang>{{"execute", "Delete from Markierungen", {}, 128},
                                        {"closeDatabase", kDb, {}, {}},
                                        {"openDatabase", kDb, {}, {}},
                                        {"execute", "Delete from Markierungen", {}, 128}}));
}

TEST_F(ModulDatenbankzugriffTest, IgnorierteFehlerHinterlassenNichts) {
    sperre(1, 3024);
    oeffne();
    zugriff.SafeExecute(db, "x", true);
    EXPECT_THAT(vorgangsarten(), ElementsAre("execute"));
    EXPECT_THAT(fakes.meldungen.gezeigt, IsEmpty());
    EXPECT_EQ(log(), "(fehlt)");
}

TEST_F(ModulDatenbankzugriffTest, IgnorierterLangsamerFehlerStehtAlsOkImProtokoll) {
    sperre(1, 3024);
    oeffne();
    zustand->vorAnweisung = [&](const std::string&) { fakes.uhr.vor(2); };
    zugriff.SafeExecute(db, "x", true);
    EXPECT_EQ(log(), "24.12.2012 20:00:02: Ok: 2s: x\r\n");
}

// ---- saving ----

TEST_F(ModulDatenbankzugriffTest, SpeichernWiederholtStillOhneDieDatenbankZuSchliessen) {
    setzeWiederholungen(2);
    oeffne();
    const auto rs = oeffneRs();
    rs->addNew();
    zustand->vorgaenge.clear();
    sperre(2);
    zugriff.SafeUpdate(*rs);
    EXPECT_THAT(vorgangsarten(), ElementsAre("update", "update", "update"));
    EXPECT_THAT(fakes.uhr.schlafdauern, SizeIs(2));
    EXPECT_THAT(zustand->gespeichert, SizeIs(1));
    EXPECT_EQ(log(), "(fehlt)");
}

TEST_F(ModulDatenbankzugriffTest, GescheitertesSpeichernFragt) {
    const Kasten kKeinUpdate = {
        "Ein Update kann nicht durchgeführt werden. Möglicherweise verhindert eine andere Funktion gerade "
        "die "
        "Datenfreigabe.\r\nDer genaue Fehler lautet:\r\n\r\n(3022) Gesperrt.",
        53, "Lomrick"};
    oeffne();
    const auto rs = oeffneRs();
    rs->addNew();
    sperre(2, 3022);
    fakes.meldungen.antworten = {Antwort::Wiederholen, Antwort::Abbrechen};
    EXPECT_EQ(fehlerVon([&] { zugriff.SafeUpdate(*rs); }), 3022);
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kKeinUpdate, kKeinUpdate));
    EXPECT_THAT(fakes.uhr.schlafdauern, IsEmpty());
}

TEST_F(ModulDatenbankzugriffTest, StillerModusSpeichertOhneFrage) {
    zugriff.stillerModus = true;
    oeffne();
    const auto rs = oeffneRs();
    sperre(1, 3022);
    EXPECT_EQ(fehlerVon([&] { zugriff.SafeUpdate(*rs); }), 3022);
    EXPECT_THAT(fakes.meldungen.gezeigt, IsEmpty());
}

// ---- repair ----

TEST_F(ModulDatenbankzugriffTest, ReparaturLaeuftInIhrerReihenfolgeUndDieAnweisungWirdWiederholt) {
    fakes.dateien.lege(kArbeit, "Rest von früher");
    zustand->beimReparieren = [](const std::string&) { throw Fehler(3343, "Maschine", "Unlesbar."); };
    zustand->beimKomprimieren = [&](const std::string&, const std::string& ziel) {
        EXPECT_FALSE(fakes.dateien.inhalt(ziel)) << "the left-over work file goes first";
        EXPECT_TRUE(fakes.fenster.sanduhrAn);
        fakes.dateien.lege(ziel, "neu");
    };
    sperre(1, 3024);
    fakes.meldungen.antworten = {Antwort::Abbrechen, Antwort::Ja};
    oeffne();
    EXPECT_TRUE(oeffneRs());
    EXPECT_THAT(fakes.meldungen.gezeigt, ElementsAre(kKeinZugriff, kReparieren));
    EXPECT_EQ(zustand->vorgaenge,
              (std::vector<FakeVorgang>{{"openRecordset", kSql, 4, 256},
                                        {"closeDatabase", kDb, {}, {}},
                                        {"repairDatabase", kDb, {}, {}},
                                        {"compactDatabase", std::string(kDb) + " -> " + kArbeit, {}, {}},
                                        {"openDatabase", kDb, {}, {}},
                                        {"openRecordset", kSql, 4, 256}}));
    EXPECT_FALSE(fakes.fenster.sanduhrAn);
    EXPECT_EQ(fakes.dateien.inhalt(kDb), "neu");
    EXPECT_FALSE(fakes.dateien.inhalt(kArbeit));
}

TEST_F(ModulDatenbankzugriffTest, ReparaturSchliesstAuchEineDatenbankMitOffenenRecordsets) {
    oeffne();
    const auto anderes = oeffneRs();
    sperre(1, 3024);
    fakes.meldungen.antworten = {Antwort::Abbrechen, Antwort::Ja};
    zustand->vorgaenge.clear();
    EXPECT_TRUE(oeffneRs());
    EXPECT_THAT(vorgangsarten(), ElementsAre("openRecordset", "closeDatabase", "repairDatabase",
                                             "compactDatabase", "openDatabase", "openRecordset"));
}

TEST_F(ModulDatenbankzugriffTest, MisslungeneKomprimierungLaesstDieDatei) {
    zustand->beimKomprimieren = [](const std::string&, const std::string&) {
        throw Fehler(3343, "Maschine", "Unlesbar.");
    };
    oeffne();
    zugriff.DatenbankReparieren(db, kDb);
    EXPECT_EQ(fakes.dateien.inhalt(kDb), "alt");
    EXPECT_FALSE(db);
}

TEST_F(ModulDatenbankzugriffTest, NichtLoeschbareDateiBleibtNebenDerArbeitsdatei) {
    fakes.dateien.nurLesen.insert(kDb);
    zustand->beimKomprimieren = [&](const std::string&, const std::string& z) {
        fakes.dateien.lege(z, "neu");
    };
    oeffne();
    zugriff.DatenbankReparieren(db, kDb);
    EXPECT_EQ(fakes.dateien.inhalt(kDb), "alt");
    EXPECT_EQ(fakes.dateien.inhalt(kArbeit), "neu");
}

TEST_F(ModulDatenbankzugriffTest, FehlendeDateiWirdNichtRepariert) {
    fakes.dateien.entferne(kDb);
    std::unique_ptr<Datenbank> keine;
    zugriff.DatenbankReparieren(keine, kDb);
    EXPECT_THAT(zustand->vorgaenge, IsEmpty());
}

// ---- logs ----

TEST_F(ModulDatenbankzugriffTest, FehlerStehenImZugriffsprotokoll) {
    zustand->vorAnweisung = [&](const std::string&) { fakes.uhr.vor(31); };
    zugriff.stillerModus = true;
    sperre(1, 3024);
    oeffne();
    fakes.uhr.stelle(DateSerial(2012, 12, 24) + TimeSerial(20, 14, 32));
    EXPECT_EQ(fehlerVon([&] { oeffneRs(); }), 3024);
    EXPECT_EQ(log(), "24.12.2012 20:15:03: Fehler3024: 31s: Select * from Markierungen\r\n");
}

TEST_F(ModulDatenbankzugriffTest, ProtokolliertWirdAbZweiSekunden) {
    std::int64_t dauerMs = 0;
    zustand->vorAnweisung = [&](const std::string&) { fakes.uhr.vorMs(dauerMs); };
    oeffne();
    dauerMs = 1999;
    oeffneRs();
    EXPECT_EQ(log(), "(fehlt)");
    dauerMs = 2001;
    fakes.uhr.stelle(DateSerial(2012, 12, 24) + TimeSerial(23, 59, 58));
    oeffneRs();
    EXPECT_EQ(log(), "25.12.2012 00:00:00: Ok: 2s: Select * from Markierungen\r\n");
}

TEST_F(ModulDatenbankzugriffTest, ZeilenumbruecheWerdenLeerzeichenUndUmlauteEinByte) {
    zugriff.ZugriffProtokollieren(" a\r\nb\r\n\r\nc\nÄ\r\n", true);
    zugriff.ZugriffProtokollieren("ohne Ende", false);
    EXPECT_EQ(log(), "a b  c\n\xC4\r\nohne Ende");
}

TEST_F(ModulDatenbankzugriffTest, ProtokollBeginntUeberEinemMegabyteNeu) {
    for (const auto& [groesse, bleibt] : {std::pair{1048576, true}, std::pair{1048577, false}}) {
        SCOPED_TRACE(groesse);
        const std::string alt(static_cast<std::size_t>(groesse), 'x');
        fakes.dateien.lege(kLog, alt);
        zugriff.ZugriffProtokollieren("neu", true);
        EXPECT_TRUE(log() == (bleibt ? alt : "") + "neu\r\n");
    }
}

TEST_F(ModulDatenbankzugriffTest, SqlProtokollStehtImAktuellenOrdner) {
    zugriff.sqlProtokoll = true;
    oeffne();
    oeffneRs();
    zugriff.SafeExecute(db, "x");
    EXPECT_EQ(fakes.dateien.inhalt("\\suite\\drumlet.log"),
              "24.12.2012 20:00:00 | 123456789 Bytes frei | SQL: Select * from Markierungen \r\n"
              "24.12.2012 20:00:00 | 123456789 Bytes frei | SQL:x\r\n");
    zugriff.LogSchreiben("a.log", "Text", false, false);
    EXPECT_EQ(fakes.dateien.inhalt("\\suite\\a.log"), "Text\r\n");
}

TEST_F(ModulDatenbankzugriffTest, UnbeschreibbaresProtokollHaeltNichtsAuf) {
    fakes.dateien.scheitert = [](const std::string& vorgang, const std::string&) {
        return vorgang == "anhaengen";
    };
    sperre(1);
    oeffne();
    EXPECT_TRUE(oeffneRs());
}

}  // namespace
}  // namespace wendel
