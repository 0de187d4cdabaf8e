#pragma once
// A small tray menu on fakes: its windows, and actions that write down what was asked of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "traymenu/FakeMenue.h"
#include "traymenu/Menueinhalt.h"

namespace wendel {

struct AufzeichnendeAktionen : Menueaktionen {
    std::string rufe;
    bool kannTV = false;
    std::function<void()> beimRuf = [] {};

    void kurzzeitWecker(std::int16_t minuten) override { rufen("Wecker " + std::to_string(minuten)); }
    void wendelAnzeigen() override { rufen("Wendel"); }
    void hauptanwendung(const std::string& befehlstext) override { rufen(befehlstext); }
    void beenden() override { rufen("beenden"); }
    void nachErinnern() override { rufen("nachErinnern"); }
    bool kannImTVZeigen() override { return kannTV; }
    void imTVZeigen(const std::string& senderkennung) override { rufen("TV " + senderkennung); }
    void rufen(const std::string& ruf) { rufe += ruf + ";", beimRuf(); }
};

class Menueprobe : public ::testing::Test {
  protected:
    Menueprobe() {
        for (const auto& [kennung, name] : {std::pair{"ard", "Das Erste"}, {"zdf", "ZDF"}, {"leer", ""}}) {
            auto neu = std::make_shared<cSender>();
            neu->Bezeichnung = name;
            sender.add(neu, kennung);
        }
    }

    static cSendung sendung(std::int32_t pos, std::string titel, std::string kennung = "zdf") {
        cSendung neu;
        neu.Pos = pos, neu.Titel = std::move(titel), neu.SenderKennung = std::move(kennung);
        neu.Beginn = DateSerial(2012, 12, 24) + TimeSerial(20, 15, 0);
        neu.Bewertung = 3;
        return neu;
    }
    static Sendungsliste liste(int anzahl, std::int32_t ab) {
        Sendungsliste neu;
        for (std::int32_t pos = ab; pos < ab + anzahl; ++pos)
            neu.push_back(sendung(pos, "Titel " + std::to_string(pos)));
        return neu;
    }

    // Entries 1 to 3 are heads, the second one empty; 4 runs now; 7 is the head of the short alarms.
    FormBrannikMenue& baue() {
        return Menueinhalt::BuildTrayMenu(
            kontext, {ab2200, um2015, gleich, aktuell, "Fennow", freieHoehe, mitTipp ? &tipp : nullptr});
    }
    FormBrannikMenue& zeige() {
        FormBrannikMenue& menue = baue();
        menue.ShowObermenue({1900, 1030});
        return menue;
    }
    FakeMenueView& view(const FormBrannikMenue& form) { return *umgebung.views.at(form.hwnd()); }
    static FormBrannikMenue& unter(const FormBrannikMenue& form, std::size_t index) {
        return *form.MenuePunkte().at(index - 1)->UnterMenue;
    }

    FakeMenueumgebung umgebung;
    AufzeichnendeAktionen aktionen;
    Sendersammlung sender;
    Markierungslisten markierungen;
    GeladeneMenues geladene;
    Menuekontext kontext{umgebung, aktionen, geladene, sender, markierungen};
    Sendungsliste ab2200 = liste(2, 10), um2015, gleich = liste(2, 20), aktuell = liste(1, 30);
    Tagestippfelder tipp{"Ein Fest", "Komödie", "ZDF", "20:15 Uhr", "", 77};
    bool mitTipp = true;
    int freieHoehe = 1040;
};

}  // namespace wendel
