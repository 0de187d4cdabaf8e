#include "tvdb/ModulDatenbankzugriff.h"

#include <gmock/gmock.h>

#include "tvdb/Probe.h"

namespace wendel {
namespace {

using testing::ElementsAre;

constexpr const char* kDb = "\\tv\\tvdaten.mdb";
constexpr const char* kArbeit = "\\tv\\tvdaten.mdb.cmp";
constexpr const char* kLog = "\\suite\\tvdbaccess.log";
constexpr const char* kSql = " Select * from Markierungen ";

std::string mitFehler(const std::string& text, int nummer) {
    return "53 Lomrick: " + text + "\r\nDer genaue Fehler lautet:\r\n\r\n(" + std::to_string(nummer) +
           ") Gesperrt.";
}

// Every box of this module, style and title first, and a letter for it.
const std::map<std::string, char> kKaesten = {
    {mitFehler("Die Datenbankdatei kann nicht geöffnet werden.", 3024), 'O'},
    {mitFehler("Es kann nicht auf die TV-Datenbank zugegriffen werden.", 3024), 'Z'},
    {"52 Lomrick: Die Datenbank scheint defekt zu sein.\r\nMöchten Sie versuchen sie zu reparieren?", 'D'},
    {"65589 Datenzugriffskollision: Eine andere Funktion verhindert gerade die Datenfreigabe aufgrund eines "
     "längeres Zugriffs.\r\nBitte warten Sie einen Augenblick und klicken Sie dann auf [Wiederholen].",
     'K'}};

class ModulDatenbankzugriffTest : public Datenbankprobe {
  protected:
    ModulDatenbankzugriffTest() {
        fakes.dateien.lege(kDb, "alt");
        antworte(kSql, {{"ID"}, {}});
        db = zugriff.OpenDatenbank(kDb);
        zustand->vorgaenge.clear();
    }

    Gemeldet oeffneRs() {
        return fehlerVon([&] { zugriff.SafeOpenRs(db, kSql, 4, 256); });
    }
    std::string log() const { return fakes.dateien.inhalt(kLog).value_or(""); }
    std::string kaesten() const {
        std::string buchstaben;
        for (const auto& [text, stil, titel] : fakes.meldungen.gezeigt)
            buchstaben += kKaesten.at(std::to_string(stil) + " " + titel + ": " + text);
        return buchstaben;
    }
    // What reached the engine, a sign for each call.
    std::string verlauf() const {
        static const std::map<std::string, char> kZeichen = {
            {"openRecordset", 'R'},  {"execute", 'X'},         {"openDatabase", '+'},  {"closeDatabase", '-'},
            {"repairDatabase", 'r'}, {"compactDatabase", 'c'}, {"closeRecordset", 'q'}};
        std::string zeichen;
        for (const FakeVorgang& vorgang : zustand->vorgaenge)
            zeichen += kZeichen.at(vorgang.art);
        return zeichen;
    }
};

TEST_F(ModulDatenbankzugriffTest, MaschineWirdEinmalGemachtUndInDerReihenfolgeGesucht) {
    db = zugriff.OpenDatenbank(kDb);
    EXPECT_THAT(fakes.datenbanken.versuche, ElementsAre(""));
    fakes.datenbanken.versuche.clear();
    fakes.datenbanken.direktVorhanden = false;
    const Gemeldet fehler = fehlerVon([&] { zugriff.SafeCreateDBObject(); });
    EXPECT_EQ(fehler.nummer, 1);
    EXPECT_EQ(fehler.quelle, "SafeCreateDBObject");
    EXPECT_EQ(fehler.beschreibung,
              "Es fehlen Systemkomponenten. Die DAO-Datenbankengine konnte in keiner kompatiblen Version "
              "geöffnet werden. Bitte installieren Sie diese Anwendung neu.");
    fakes.datenbanken.kennungenVorhanden = {"DAO.DBEngine.36"};
    EXPECT_TRUE(zugriff.SafeCreateDBObject());
    EXPECT_THAT(fakes.datenbanken.versuche,
                ElementsAre("", "DAO.DBEngine.35", "DAO.DBEngine.36", "DAO.DBEngine.351", "DAO.DBEngine.4",
                            "DAO.DBEngine.40", "DAO.DBEngine35", "DAO.DBEngine", "", "DAO.DBEngine.35",
                            "DAO.DBEngine.36"));
}

TEST_F(ModulDatenbankzugriffTest, OeffnenFragtBisEsGelingtOderAbgebrochenWird) {
    int rest = 2;
    zustand->beimOeffnen = [&](const std::string&) {
        if (rest-- > 0) throw Fehler(3024, "Maschine", "Gesperrt.");
    };
    fakes.meldungen.antworten = {Antwort::Wiederholen, Antwort::Wiederholen};
    EXPECT_TRUE(zugriff.OpenDatenbank(kDb));
    rest = 1;
    EXPECT_EQ(fehlerVon([&] { zugriff.OpenDatenbank(kDb); }).nummer, 3024);
    EXPECT_EQ(kaesten(), "OOO");
}

struct Szene {
    const char* name;
    char art;  // R: recordset, X: statement
    int fehler, mal;
    std::int32_t wiederholungen;  // -1: no settings file
    const char* lage;             // still: silent mode; offen: another recordset is open
    std::deque<Antwort> antworten;
    int ergebnis;
    const char* kaesten;
    std::size_t pausen;
    const char* verlauf;
};
void PrintTo(const Szene& szene, std::ostream* ziel) { *ziel << szene.name; }
constexpr Antwort kJa = Antwort::Ja, kNochmal = Antwort::Wiederholen, kAbbruch = Antwort::Abbrechen;
const Szene kSzenen[] = {
    {"SperreVergeht", 'R', 3260, 3, -1, "", {}, 0, "", 3, "R-+R-+R-+R"},
    {"SperreBleibt", 'R', 3050, 11, 0, "", {}, 3050, "K", 10, "R-+R-+R-+R-+R-+R-+R-+R-+R-+R-+R-+"},
    {"OhneDatei", 'X', 3050, 11, -1, "", {}, 3050, "K", 10, "X-+X-+X-+X-+X-+X-+X-+X-+X-+X-+X-+"},
    {"ZaehlerLaeuftWeiter", 'R', 3260, 4, 2, "", {kNochmal, kNochmal}, 0, "KK", 2, "R-+R-+R-+R-+R"},
    {"BleibtOffen", 'R', 3260, 2, -1, "offen", {}, 0, "", 2, "RRR"},
    {"FragtSofort", 'X', 3024, 1, -1, "", {kNochmal}, 0, "Z", 0, "X-+X"},
    {"Aufgegeben", 'R', 3024, 1, -1, "", {}, 3024, "ZD", 0, "R-+"},
    {"Repariert", 'R', 3024, 1, -1, "", {kAbbruch, kJa}, 0, "ZD", 0, "R-rc+R"},
    {"RepariertOffene", 'R', 3024, 1, -1, "offen", {kAbbruch, kJa}, 0, "ZD", 0, "R-rc+R"},
    {"StillGibtAuf", 'R', 3024, 1, -1, "still", {}, 3024, "", 0, "R-+"},
    {"StillFragtBeiSperren", 'R', 3260, 2, 1, "still", {}, 3260, "K", 1, "R-+R-+"},
    {"NurGanzeSperrnummern", 'R', 318, 1, -1, "still", {}, 318, "", 0, "R-+"},
};

class Wiederholungen : public ModulDatenbankzugriffTest, public testing::WithParamInterface<Szene> {};

TEST_P(Wiederholungen, LaufenNachIhrerRegel) {
    const Szene& szene = GetParam();
    if (szene.wiederholungen >= 0) einstellungen.setzeEinstellung(127, Variant::lang(szene.wiederholungen));
    zugriff.stillerModus = szene.lage == std::string("still");
    fakes.meldungen.antworten = szene.antworten;
    const auto rs = szene.lage == std::string("offen") ? zugriff.SafeOpenRs(db, kSql) : nullptr;
    zustand->vorgaenge.clear();
    zustand->naechsteFehler.assign(static_cast<std::size_t>(szene.mal), szene.fehler);
    const Gemeldet fehler = szene.art == 'R' ? oeffneRs() : fehlerVon([&] { zugriff.SafeExecute(db, kSql); });
    EXPECT_EQ(fehler.nummer, szene.ergebnis);
    EXPECT_EQ(kaesten(), szene.kaesten);
    EXPECT_EQ(verlauf(), szene.verlauf);
    EXPECT_EQ(fakes.uhr.schlafdauern, std::vector<int>(szene.pausen, 3500));
    EXPECT_EQ(fakes.uhr.nachrichtenlaeufe, 0) << "the pauses block";
    const std::string protokoll = log();
    EXPECT_EQ(std::count(protokoll.begin(), protokoll.end(), '\n'), szene.mal);
    EXPECT_EQ(fakes.dateien.existiert("\\suite\\fennow.cfg"), szene.wiederholungen >= 0);
    EXPECT_TRUE(db && oeffneRs().nummer == 0) << "open again";
}

INSTANTIATE_TEST_SUITE_P(Szenen, Wiederholungen, testing::ValuesIn(kSzenen),
                         [](const auto& szene) { return std::string(szene.param.name); });

TEST_F(ModulDatenbankzugriffTest, PausenLiegenZwischenDreiUndVierSekundenUndDieZahlWirdJedesmalGelesen) {
    fakes.rechner.zufallszahlen = {0.0, 0.9999999};
    for (const std::int32_t wiederholungen : {1, 2}) {
        einstellungen.setzeEinstellung(127, Variant::lang(wiederholungen));
        zustand->naechsteFehler.assign(static_cast<std::size_t>(wiederholungen) + 1, 3260);
        EXPECT_EQ(oeffneRs().nummer, 3260);
    }
    EXPECT_THAT(fakes.uhr.schlafdauern, ElementsAre(3000, 3999, 3500));
}

TEST_F(ModulDatenbankzugriffTest, FehlerBeimWiederoeffnenErsetztDenErsten) {
    zustand->naechsteFehler = {3024};
    zustand->beimOeffnen = [](const std::string&) { throw Fehler(3051, "Maschine", "Kein Zugriff."); };
    EXPECT_EQ(oeffneRs().nummer, 3051);
    EXPECT_EQ(oeffneRs().nummer, 91) << "no crash for a caller that goes on all the same";
}

// ---- repair ----

TEST_F(ModulDatenbankzugriffTest, ReparaturErsetztDieDateiUndVerliertSieNie) {
    const auto repariere = [&](bool gelingt) {
        fakes.dateien.lege(kArbeit, "Rest von früher");
        zustand->beimReparieren = [](const std::string&) { throw Fehler(3343, "Maschine", "Unlesbar."); };
        zustand->beimKomprimieren = [&, gelingt](const std::string& quelle, const std::string& ziel) {
            EXPECT_EQ(quelle, kDb);
            EXPECT_FALSE(fakes.dateien.inhalt(ziel)) << "the left-over work file goes first";
            EXPECT_TRUE(fakes.fenster.sanduhrAn);
            if (!gelingt) throw Fehler(3343, "Maschine", "Unlesbar.");
            fakes.dateien.lege(ziel, "neu");
        };
        zustand->naechsteFehler = {3024};
        fakes.meldungen.antworten = {kAbbruch, kJa};
        EXPECT_EQ(oeffneRs().nummer, 0);
        EXPECT_FALSE(fakes.fenster.sanduhrAn);
        return *fakes.dateien.inhalt(kDb) + "/" + fakes.dateien.inhalt(kArbeit).value_or("");
    };
    EXPECT_EQ(repariere(false), "alt/");
    fakes.dateien.nurLesen.insert(kDb);
    EXPECT_EQ(repariere(true), "alt/neu") << "held by another program";
    fakes.dateien.nurLesen.clear();
    EXPECT_EQ(repariere(true), "neu/");
}

// ---- logs ----

TEST_F(ModulDatenbankzugriffTest, FehlerUndLangsamesStehenImZugriffsprotokoll) {
    zugriff.stillerModus = true;
    const auto laufe = [&](int stunde, int minute, int sekunde, std::int64_t dauerMs, int fehler,
                           bool ignoriert) {
        fakes.uhr.stelle(DateSerial(2012, 12, 24) + TimeSerial(stunde, minute, sekunde));
        zustand->vorAnweisung = [&, dauerMs](const std::string&) { fakes.uhr.vorMs(dauerMs); };
        zustand->naechsteFehler = {fehler};
        return fehlerVon([&] { zugriff.SafeExecute(db, kSql, ignoriert); }).nummer;
    };
    EXPECT_EQ(laufe(20, 14, 32, 31000, 3024, false), 3024);
    EXPECT_EQ(laufe(20, 0, 0, 1999, 0, false), 0);
    EXPECT_EQ(laufe(20, 0, 0, 1999, 3024, true), 0);
    EXPECT_EQ(laufe(23, 59, 58, 2001, 3024, true), 0);
    EXPECT_EQ(kaesten(), "");
    zugriff.ZugriffProtokollieren(" a\r\nb\r\n\r\nc\nÄ\r\n", true);
    zugriff.ZugriffProtokollieren("ohne Ende", false);
    EXPECT_EQ(log(),
              "24.12.2012 20:15:03: Fehler3024: 31s: Select * from Markierungen\r\n"
              "25.12.2012 00:00:00: Ok: 2s: Select * from Markierungen\r\n"
              "a b  c\n\xC4\r\nohne Ende");
    fakes.dateien.nurLesen.insert(kLog);
    EXPECT_EQ(laufe(20, 0, 0, 2000, 0, false), 0) << "a log that can't be written stops nothing";
}

TEST_F(ModulDatenbankzugriffTest, ProtokollBeginntUeberEinemMegabyteNeu) {
    for (const std::size_t groesse : {1048576U, 1048577U}) {
        fakes.dateien.lege(kLog, std::string(groesse, 'x'));
        zugriff.ZugriffProtokollieren("neu", true);
        EXPECT_EQ(log().size(), groesse == 1048576U ? groesse + 5 : 5U);
    }
}

}  // namespace
}  // namespace wendel
