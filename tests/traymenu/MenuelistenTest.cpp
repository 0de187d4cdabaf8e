// The lists against a trivial model: after each refresh they hold what asking for everything would give, and
// nothing was asked whose answer could not have changed. Questions are named by their mode, "1" to "4".
#include "traymenu/Menuelisten.h"

#include <map>
#include <random>

#include "platform/Text.h"
#include "tvdb/Probe.h"

namespace wendel {
namespace {

using Positionen = std::vector<std::int32_t>;

struct Programm {
    std::int32_t pos;
    Datum beginn, ende;
};

char artVon(const std::string& sql) {
    if (sql.starts_with(" Select Sendungen.*")) return '4';
    if (!sql.starts_with(" Select * from Sendungen inner join")) return '1';
    return sql.find("Where Beginn>=") != std::string::npos ? '2' : '3';
}

class MenuelistenTest : public Datenbankprobe {
  protected:
    MenuelistenTest() {
        fakes.dateien.lege(werte.datenbankdatei, "x");
        zustand->dynamisch = [this](const std::string& sql) -> FakeAntwort {
            if (sql.starts_with("Select * from Sender")) return favorit();
            gefragt += artVon(sql);
            return tabelle(modell(gefragt.back()));
        };
        sender.laden();
    }

    static FakeTabelle favorit() {
        FakeTabelle eine{Split("Senderkennung,Favorit,BezeichnungKurz,Bezeichnung,Zeichen,DatenNr,GueltigAb,"
                               "KzBezeichnungSchützen,Webseite,GueltigBis,Gruppe",
                               ","),
                         {}};
        eine.zeilen.emplace_back(eine.spalten.size(), Variant::boolesch(true));
        return eine;
    }
    static FakeTabelle tabelle(const std::vector<Programm>& programme) {
        FakeTabelle alle{Split("Pos," + cSendung::GetFelderNamenSendungen(), ","), {}};
        for (const Programm& p : programme) {
            auto& zeile = alle.zeilen.emplace_back(alle.spalten.size(), Variant::null());
            zeile[0] = Variant::lang(p.pos);
            zeile[2] = Variant::datum(p.beginn), zeile[3] = Variant::datum(p.ende);
        }
        return alle;
    }

    // The answer now, before the lists drop what they do not show.
    std::vector<Programm> modell(char art) {
        const Datum jetzt = fakes.uhr.jetzt(), tag = jetzt.datumsteil();
        const Datum ab = art == '2' ? tag + TimeSerial(20, 15, 0) : jetzt.plusSekunden(1);
        std::vector<Programm> alle;
        for (const auto& kanal : guide) {
            bool gefunden = false;
            for (const Programm& p : kanal) {
                const bool laeuft = p.beginn <= jetzt && p.ende > jetzt;
                const bool abends =
                    p.beginn.datumsteil() == tag && p.beginn.uhrzeitteil() >= TimeSerial(21, 0, 0);
                const bool naechste = !gefunden && p.beginn >= ab;
                gefunden = gefunden || naechste;
                if (art == '1' ? laeuft : art == '4' ? abends : naechste) alle.push_back(p);
            }
        }
        return alle;
    }
    Positionen erwartet(char art) {
        const Datum tag = fakes.uhr.jetzt().datumsteil();
        Positionen positionen;
        for (const Programm& p : modell(art)) {
            if (art == '2' && p.beginn.datumsteil() != tag) continue;
            if (art == '4' && p.beginn < tag + TimeSerial(22, 0, 0)) continue;
            positionen.push_back(p.pos);
        }
        return positionen;
    }
    Positionen gezeigt(char art) const {
        const Sendungsliste* alle[] = {&listen.SendungAktuell(), &listen.Sendung2015(),
                                       &listen.SendungGleich(), &listen.Sendung2200()};
        Positionen positionen;
        for (const cSendung& sendung : *alle[art - '1'])
            positionen.push_back(sendung.Pos);
        return positionen;
    }
    std::string auffrischen() {
        gefragt.clear();
        listen.auffrischen();
        return gefragt;
    }

    std::vector<std::vector<Programm>> guide;  // by channel
    std::string gefragt;
    Senderliste sender{zugriff};
    Menuelisten listen{fakes.ports(), zugriff, sender};
};

TEST_F(MenuelistenTest, ZeigtImmerDasRichtigeUndFragtNurDanach) {
    std::mt19937 zufall(20121224);
    const auto minuten = [&](int von, int bis) {
        return 60 * std::uniform_int_distribution(von, bis)(zufall);
    };
    for (guide.resize(4); auto& kanal : guide) {
        for (Datum t = fakes.uhr.jetzt().plusSekunden(-5400); kanal.size() < 200;) {
            if (zufall() % 5 == 0) t = t.plusSekunden(minuten(10, 400));  // a gap
            kanal.push_back(
                {static_cast<std::int32_t>(zufall() % 100000), t, t.plusSekunden(minuten(11, 120))});
            t = kanal.back().ende;
        }
    }
    const std::function<void()> neueDaten[] = {
        [&] { listen.veralten(); },
        [&] { fakes.dateien.lege(werte.datenbankdatei, std::string(zufall() % 1000, 'x')); },
        [&] { ++fakes.dateien.geaendertNs[werte.datenbankdatei]; },
    };
    std::map<char, Positionen> vorher;
    Datum zuletzt;
    for (int schritt = 0; schritt < 800; ++schritt) {
        const bool neu = zufall() % 16 == 0;
        if (neu) neueDaten[zufall() % 3]();
        const std::string fragen = auffrischen();
        const Datum jetzt = fakes.uhr.jetzt();
        for (char art : std::string("1234")) {
            ASSERT_EQ(gezeigt(art), erwartet(art)) << art << " in step " << schritt;
            const bool anders =
                neu || jetzt.datumsteil() != zuletzt.datumsteil() || vorher[art] != erwartet(art);
            const bool gestellt = jetzt < zuletzt;  // then a list may be asked for without need
            const bool erfragt = fragen.find(art) != std::string::npos;
            ASSERT_TRUE(erfragt == anders || (erfragt && gestellt)) << art << " in step " << schritt;
            vorher[art] = erwartet(art);
        }
        zuletzt = jetzt;
        // Often to the very end of a broadcast, never across a whole one; now and then the clock is set back.
        fakes.uhr.stelle(jetzt.plusSekunden(zufall() % 32 == 0 ? -minuten(1, 90) : minuten(1, 10)));
    }
}

// Each list would meet the same failure: the boxes of one are enough.
TEST_F(MenuelistenTest, NachEinemAbbruchWirdNichtWeitergefragt) {
    guide = {{{1, fakes.uhr.jetzt(), fakes.uhr.jetzt().plusSekunden(600)},
              {2, fakes.uhr.jetzt().plusSekunden(600), {}}}};
    zustand->naechsteFehler = {0, 3078};  // the second question
    EXPECT_FALSE(listen.auffrischen());
    EXPECT_EQ(fakes.meldungen.gezeigt.size(), 2U) << "the failure, and the offer to repair";
    EXPECT_EQ(gezeigt('3'), Positionen{2});
    EXPECT_EQ(gezeigt('1'), Positionen{});
    zustand->vorAnweisung = [&](const std::string&) { listen.veralten(); };  // new data while asking
    EXPECT_EQ(auffrischen(), "124");
    EXPECT_EQ(gezeigt('1'), Positionen{1});
    zustand->vorAnweisung = {};
    const int geoeffnet = zustand->geoeffnet;
    EXPECT_EQ(auffrischen(), "3124");
    EXPECT_EQ(zustand->geoeffnet, geoeffnet + 1);
    EXPECT_EQ(zustand->offen() + zustand->recordsetsOffen(), 0);
}

}  // namespace
}  // namespace wendel
