// The queries of the tray menu on the real engine: what begins or ends at the very moments that they name.
#include "traymenu/Menuelisten.h"

#include "../../apps/quillon/Tabellen.h"
#include "integration/EchteDatenbank.h"
#include "jet/storage/Schema.h"

namespace wendel {
namespace {

using Programmabfragen::Art;

// "22:00", "23:59:59"; a "+" behind it means the next day.
std::string moment(std::string zeit) {
    const bool morgen = zeit.ends_with('+');
    if (morgen) zeit.pop_back();
    return std::string(morgen ? "#12/25/2012 " : "#12/24/2012 ") + zeit + "#";
}

class Menue : public EchteDatenbank {
  protected:
    void SetUp() override {
        jet::createDatabaseFile(werte.datenbankdatei, jet::Version::kJet4);
        oeffne();
        for (const std::string_view befehl : quillon::tabellenbefehle())
            db->execute(std::string(befehl), 0);
        for (const char* werteliste : {"'A',-1", "'B',-1", "'C',0", "'D',-1"})
            db->execute("Insert Into Sender (Senderkennung,Favorit) Values (" + std::string(werteliste) + ")",
                        0);
        sender.laden();
    }

    void sendung(const char* titel, const char* beginn, const char* ende, const char* dauer = "",
                 const char* film = "0") {
        db->execute("Insert Into Sendungen (Titel,SenderKennung,Beginn,Ende,Dauer,KzFilm) Values ('" +
                        std::string(titel) + "','" + titel[0] + "'," + moment(beginn) + "," + moment(ende) +
                        ",'" + dauer + "'," + film + ")",
                    0);
    }

    static std::string titel(const Sendungsliste& liste) {
        std::string alle;
        for (const cSendung& einer : liste)
            alle += einer.Titel + " ";
        return alle;
    }
    std::string titel(Art art) {
        const Datum t = DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0);
        return titel(Programmabfragen::abfragen(zugriff, db, art, t, sender.favoriten()));
    }

    Senderliste sender{zugriff};
    Menuelisten listen{ports, zugriff, sender};
};

TEST_F(Menue, GrenzenDerAbfragen) {
    sendung("a bis acht", "20:00", "20:15");
    sendung("A acht", "20:15", "21:00");
    sendung("A neun", "21:00", "21:30", "30");
    sendung("A zehn", "22:00", "22:30", "149");
    sendung("A nachts", "23:59:59", "1:59+", "120", "-1");
    sendung("B vor neun", "20:59:59", "21:30", "31");
    sendung("B elf", "22:30", "23:00", "45");
    sendung("B zwei", "23:00", "2:00+", "180");
    sendung("b film", "22:50", "23:00", "99", "-1");
    sendung("C acht", "20:15", "22:00");
    sendung("D morgen", "9:00+", "10:00+");
    EXPECT_EQ(titel(Art::Laeuft), "A acht ");
    EXPECT_EQ(titel(Art::Ab), "A acht B vor neun D morgen ");
    EXPECT_EQ(titel(Art::Nach), "A neun B vor neun D morgen ");
    EXPECT_EQ(titel(Art::Abend), "A nachts A zehn A neun b film B elf ")
        << "films first, \"149\" before \"30\"";

    fakes.uhr.stelle(DateSerial(2012, 12, 24) + TimeSerial(20, 4, 0));
    EXPECT_TRUE(listen.auffrischen());
    EXPECT_EQ(titel(listen.SendungAktuell()), "a bis acht ");
    EXPECT_EQ(titel(listen.Sendung2015()), "A acht B vor neun ");
    EXPECT_EQ(titel(listen.SendungGleich()), "A acht B vor neun D morgen ");
    EXPECT_EQ(titel(listen.Sendung2200()), "A nachts A zehn b film B elf ");

    aendere("Delete from Sendungen Where Titel='A acht'");  // through another opening of the file
    EXPECT_TRUE(listen.auffrischen());
    EXPECT_EQ(titel(listen.Sendung2015()), "A neun B vor neun ");
}

}  // namespace
}  // namespace wendel
