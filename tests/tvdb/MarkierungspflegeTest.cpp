// The statements of a maintenance run to the blank, and what becomes of their answers. The expected texts are
// those that the suite's programs send; the run happens on 24 December 2012 at 20:00.
#include "tvdb/Markierungspflege.h"

#include <gmock/gmock.h>

#include "platform/Text.h"
#include "tvdb/Probe.h"
#include "tvdb/cSendung.h"

namespace wendel {
namespace {

using testing::ElementsAre;

Variant tag(int monat, int tagImMonat) { return Variant::datum(DateSerial(2012, monat, tagImMonat)); }
Variant zeit(int stunde, int minute) { return Variant::datum(TimeSerial(stunde, minute, 0)); }
Variant t(const char* text) { return Variant::text(text); }
Variant ja(bool wert) { return Variant::boolesch(wert); }
Variant n(std::int32_t zahl) { return Variant::lang(zahl); }

constexpr const char* kMax = "Select Max(Pos) as MaxPos from Sendungen";
constexpr const char* kFavoriten =
    " Select *  from Markierungen  Where User='KAI''S' and Favorit=true  Order by Sendung asc, Datum+Uhrzeit "
    "asc ;";
constexpr const char* kSuche =
    " Select * from Sendungen  Where Pos>0 and Pos not in(7,0,8) and Beginn>=date()";
constexpr const char* kJetzt = "#12/24/2012 20:00:00#";
constexpr const char* kKennzeichen = "Select Pos from Markierungen Where Pos>0";
constexpr const char* kDoppelte =
    " Select User,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung from Markierungen group by "
    "User,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung having min(pos) = 0 and max(pos)<>0";
constexpr const char* kEinfuegen =
    "Insert Into Markierungen "
    "(User,Pos,Sendung,Senderkennung,Datum,Uhrzeit,Dauer,Favorit,Erinnerung,Optionen,"
    "Aufzeichnung,SendungID,InhaltID,Aktualisierung,KzAusblenden) Values ('KAI''S',";

class MarkierungspflegeTest : public Datenbankprobe {
  protected:
    MarkierungspflegeTest() {
        antworte(kMax, {{"MaxPos"}, {{n(900)}}});
        antworte("Select Pos from Markierungen", {{"Pos"}, {{n(7)}, {Variant::null()}, {n(0)}, {n(8)}}});
        favoriten();
        zustand->dynamisch = [this](const std::string& sql) -> std::optional<FakeAntwort> {
            if (zustand->antworten.contains(sql)) return {};
            return FakeTabelle{};  // nothing found
        };
    }

    void favoriten(std::vector<std::vector<Variant>> zeilen = {}) {
        antworte(kFavoriten, {{"Pos", "Sendung", "Senderkennung", "Datum", "Uhrzeit", "Erinnerung",
                               "Optionen", "Aufzeichnung"},
                              std::move(zeilen)});
    }
    // A broadcast that a search finds.
    void gefunden(const std::string& sql, std::int32_t pos, const char* titel, Datum beginn) {
        FakeTabelle tabelle{Split("Pos," + cSendung::GetFelderNamenSendungen(), ","), {{}}};
        auto& zeile = tabelle.zeilen[0];
        zeile.resize(tabelle.spalten.size(), Variant::null());
        zeile[0] = n(pos), zeile[1] = t("ARD"), zeile[2] = Variant::datum(beginn), zeile[4] = t(titel);
        zeile[5] = t("S1"), zeile[15] = t("45");
        antworte(sql, std::move(tabelle));
    }
    bool laufen() {
        return Markierungspflege(zugriff, "KAI'S", 7).laufen(fakes.uhr.jetzt(), listen).erinnerungVersaeumt;
    }

    Markierungslisten listen;
};

TEST_F(MarkierungspflegeTest, AlleAnweisungenInIhrerReihenfolge) {
    favoriten({{n(7), t("Krimi: O'Hara"), t("ARD"), tag(12, 20), zeit(0, 5), ja(true),
                t("Wiederkehrend=1;SenderEgal=1;OhneWiederholung=1;Erinnerungszeit=201212192355"), ja(false)},
               {n(8), t("Film"), t("ZDF"), tag(12, 24), zeit(21, 0), ja(false), Variant::null(), ja(true)}});
    const std::string suche = std::string(kSuche) +
                              " and Titel like 'Krimi: O''Hara*' and Beginn>=" + kJetzt +
                              " and KzWiederholung=false Order by Beginn;";
    gefunden(suche, 70, "Krimi: O'Hara II", DateSerial(2012, 12, 25) + TimeSerial(0, 5, 0));
    const std::string gruppen =
        " Select Sendung,Max(Datum+Uhrzeit) as MaxDatumUhrzeit From Markierungen Where User='KAI''S'  and  "
        "Optionen Like '*Wiederkehrend=1*' Group by Sendung";
    const std::string ids =
        " Select ID From Markierungen Where User='KAI''S' and Sendung='Krimi: O''Hara' and "
        "Datum+Uhrzeit=#12/20/2012 0:05:00# and Optionen Like '*Wiederkehrend=1*'";
    antworte(gruppen,
             {{"Sendung", "MaxDatumUhrzeit"},
              {{t("Krimi: O'Hara"), Variant::datum(DateSerial(2012, 12, 20) + TimeSerial(0, 5, 0))}}});
    antworte(ids, {{"ID"}, {{n(3)}, {n(5)}}});
    antworte(kKennzeichen, {{"Pos"}, {{n(7)}, {n(8)}}});
    antworte(kDoppelte,
             {{"User", "Sendung", "Senderkennung", "Datum", "Uhrzeit", "Dauer", "Favorit", "Erinnerung"},
              {{t("ANDERER"), t("Film"), t("ZDF"), tag(12, 24), zeit(21, 0), t("90"), ja(true), ja(true)},
               {t("kai's"), t("Film"), t("ZDF"), tag(12, 24), zeit(21, 0), t("90"), ja(true), ja(false)}}});
    EXPECT_FALSE(laufen());
    EXPECT_THAT(
        zustand->anweisungen(),
        ElementsAre(
            kMax, kFavoriten, "Select Pos from Markierungen", suche,
            " Select * from Markierungen Where User='KAI''S' and   Pos=70",
            std::string(kEinfuegen) +
                "70,'Krimi: O''Hara II','ARD',#12/25/2012#,#12/30/1899 "
                "0:05:00#,'45',true,-1,'Wiederkehrend=1;"
                "SenderEgal=1;OhneWiederholung=1;Erinnerungszeit=201212242355',0,'S1','',0,0)",
            " Delete from Markierungen Where User='KAI''S'  and  Dateadd('n',val(Dauer),Datum+Uhrzeit)<"
            "#12/24/2012 20:00:00#  and  Optionen not Like '*Wiederkehrend=1*'",
            " Delete from Markierungen Where User='KAI''S'  and  Datum<#12/17/2012#  and  Optionen not Like "
            "'*Wiederkehrend=1*'",
            gruppen, ids,
            " Delete from Markierungen Where User='KAI''S'  and  Datum<#12/17/2012#  and  Optionen Like "
            "'*Wiederkehrend=1*'  and  ID not in(3,5)",
            "Update Sendungen right join Markierungen on Sendungen.Pos = Markierungen.Pos "
            "Set Markierungen.Pos = 0 Where Sendungen.Pos Is Null",
            kKennzeichen,
            "Update Sendungen Set KzInFavoritenListe=-1 Where KzInFavoritenListe=0 and Pos in (7,8);",
            "Update Sendungen Set KzInFavoritenListe=0 Where KzInFavoritenListe=-1 and not Pos in (7,8);",
            kDoppelte,
            " Delete from Markierungen Where User='KAI''S'  and  Sendung='Film'  and  Senderkennung='ZDF'"
            "  and  Datum+Uhrzeit=#12/24/2012 21:00:00#  and  Dauer='90'  and  Favorit=-1  and  Erinnerung=0"
            "  and  Pos=0"));
    EXPECT_EQ(listen.favoriten + listen.erinnerungen + listen.aufzeichnungen, ";7;8;70;;7;70;;8;");
    EXPECT_EQ(zustand->offen() + zustand->recordsetsOffen(), 0);
}

// What is left out without marks, without broadcasts, and after a failure.
TEST_F(MarkierungspflegeTest, LeereTabellenUndFehlerKuerzenDenLauf) {
    listen.favoriten = ";99;";
    EXPECT_FALSE(laufen());
    const std::vector<std::string> ohneMarken = zustand->anweisungen();
    EXPECT_EQ(ohneMarken.size(), 9U);
    EXPECT_EQ(ohneMarken[7], "Update Sendungen Set KzInFavoritenListe=0 Where KzInFavoritenListe=-1;");
    EXPECT_EQ(listen.favoriten, ";");
    favoriten(
        {{n(7), t("Film"), t("ZDF"), tag(12, 24), zeit(21, 0), ja(true), t("Wiederkehrend=1"), ja(true)}});
    antworte(kMax, {{"MaxPos"}, {{Variant::null()}}});
    zustand->vorgaenge.clear();
    zustand->naechsteFehler = {0, 0, 3078};
    EXPECT_EQ(fehlerVon([&] { laufen(); }).nummer, 3078);
    EXPECT_EQ(zustand->anweisungen().size(), 3U) << "no search, and nothing after the failure";
    EXPECT_EQ(listen.favoriten + listen.erinnerungen + listen.aufzeichnungen, ";7;;7;;7;");
    EXPECT_EQ(zustand->offen(), 0);
}

// Titles that no pattern may be: the failing search would end each run.
TEST_F(MarkierungspflegeTest, TitelSindMusterWoSieKoennen) {
    const std::pair<const char*, const char*> faelle[] = {
        {"a/b [Wdh.]", " and Titel like 'a/b [Wdh.]*'"},
        {"a: [b", " and Titel='a: [b'"},
        {"a: [b] [SAT-1]", " and Titel='a: [b] [SAT-1]'"},
    };
    for (const auto& [titel, bedingung] : faelle) {
        zustand->vorgaenge.clear();
        favoriten(
            {{n(7), t(titel), t("ZDF"), tag(12, 24), zeit(21, 0), ja(true), t("Wiederkehrend=1"), ja(true)}});
        laufen();
        EXPECT_EQ(zustand->anweisungen().at(3), std::string(kSuche) + bedingung +
                                                    " and Senderkennung='ZDF' and Beginn>=" + kJetzt +
                                                    " Order by Beginn;");
    }
}

// The new mark's options after the old one's, which began on 20 December at 20:15 as the broadcast does on
// the 24th. Plain cases are those of the example database.
TEST_F(MarkierungspflegeTest, ErinnerungRuecktMitDerSendung) {
    const std::array<const char*, 2> faelle[] = {
        {"SenderEgal=1|wiederkehrend=1|Erinnerungszeit=201212202015",
         "SenderEgal=1|wiederkehrend=1|Erinnerungszeit=201212242015"},
        {"SenderEgal=1;Wiederkehrend=1", "SenderEgal=1;Wiederkehrend=1;Erinnerungszeit=201212242015"},
        {"Erinnerungszeit=201213;Wiederkehrend=1;SenderEgal=1",
         "Erinnerungszeit=201212242015;Wiederkehrend=1;SenderEgal=1"},
        {"SenderEgal=1;Wiederkehrend=1;Erinnerungszeit=201212201959",
         "SenderEgal=1;Wiederkehrend=1;Erinnerungszeit=201212241959"},
    };
    gefunden(std::string(kSuche) + " and Titel like 'Uhr/Zeit*' and Beginn>=" + kJetzt + " Order by Beginn;",
             70, "Uhr/Zeit", DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0));
    for (const auto& [optionen, neue] : faelle) {
        zustand->vorgaenge.clear();
        const std::vector<Variant> zeile = {n(7),         t("Uhr/Zeit"), t("ZDF"),    tag(12, 20),
                                            zeit(20, 15), ja(true),      t(optionen), ja(false)};
        favoriten({zeile, zeile});
        EXPECT_EQ(laufen(), std::string(neue).ends_with("1959")) << "before now";
        const std::string erwartet = std::string(",'") + neue + "',";
        EXPECT_THAT(zustand->anweisungen(), testing::Contains(testing::HasSubstr(erwartet)).Times(1));
    }
}

}  // namespace
}  // namespace wendel
