// The notice without a screen: what the window is told, the lock of OK, snoozing, and several notices in one.

#include "reminders/FormHinweis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/Fakes.h"
#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

using ::testing::ElementsAre;

class AufzeichnendeView : public FormHinweisView {
  public:
    std::vector<std::string> rufe;
    std::vector<std::string> funktionen;

    void setzeTitel(const std::string& titel) override { rufe.push_back("Titel " + titel); }
    void setzeText(const std::string& text) override { rufe.push_back("Text " + text); }
    void setzeFunktionen(const std::vector<std::string>& zeilen) override { funktionen = zeilen; }
    void setzeAuswahl(int index) override { rufe.push_back("Auswahl " + std::to_string(index)); }
    void anpassen() override { rufe.push_back("anpassen"); }
    void zeigen() override { rufe.push_back("zeigen"); }
    void verbergen() override { rufe.push_back("verbergen"); }
    void starteOKTimer(int ms) override { rufe.push_back("OKTimer " + std::to_string(ms)); }
    Fensterhandle fensterhandle() override { return 7; }
};

class AufzeichnenderEmpfaenger : public FormHinweisEmpfaenger {
  public:
    std::vector<std::string> rufe;
    std::vector<TerminZeiger> termine;
    std::function<void()> beimErinnern;

    void erneutErinnern(const TerminZeiger& termin) override {
        rufe.push_back(alsZeit(termin->WeckZeit) + " " + termin->WeckText);
        termine.push_back(termin);
        if (beimErinnern) beimErinnern();
    }
    void hinweisBeantwortet(const std::vector<Hinweisschluessel>& schluessel) override {
        for (const Hinweisschluessel& einer : schluessel)
            rufe.push_back("beantwortet " + einer.text);
    }
};

class Notice : public ::testing::Test {
  protected:
    Notice() { uhr.stelle(zeit("2012-12-24 20:14:50")); }

    void zeige(const std::string& text, const std::string& schluessel = "A") {
        form.hinweisen("Termin", text, {{zeit("2012-12-24 20:14:50"), Terminart::Eigener, schluessel}});
    }
    void zeigeEntsperrt(const std::string& text) {
        zeige(text);
        form.TimerOKErlaubt_Timer();
    }

    void snooze(const std::string& text, int zeile) {
        zeigeEntsperrt(text);
        form.ComboFunktion_Click(zeile);
        form.cmdOK_Click();
    }

    FakeUhr uhr;
    AufzeichnendeView view;
    AufzeichnenderEmpfaenger empfaenger;
    FormHinweis form{uhr, view, empfaenger};
};

TEST_F(Notice, ComesUpFittedOnItsFirstRowWithOkLocked) {
    EXPECT_EQ(form.LabelHinweisTitel() + " " + form.LabelHinweisText(),
              "Achtung ! Der Zeitpunkt für die TV-Erinnerung ist erreicht.");
    zeige("Text");
    EXPECT_THAT(view.rufe,
                ElementsAre("Auswahl 0", "Titel Termin", "Text Text", "anpassen", "zeigen", "OKTimer 200"));
}

TEST_F(Notice, IgnoresEveryConfirmationUntilTheLockIsOver) {
    zeige("Text");
    form.ComboFunktion_KeyPress(32);
    form.Schliessen();
    EXPECT_TRUE(form.offen());
    form.TimerOKErlaubt_Timer();
    form.ComboFunktion_KeyPress(13);
    EXPECT_TRUE(form.offen() && empfaenger.rufe.empty());
    form.ComboFunktion_KeyPress(32);
    EXPECT_EQ(view.rufe.back(), "verbergen");
    zeigeEntsperrt("Text");
    form.ComboFunktion_Click(3);
    form.Schliessen();
    EXPECT_FALSE(form.offen());
    EXPECT_THAT(empfaenger.rufe, ElementsAre("beantwortet A", "beantwortet A"))
        << "the close box snoozes nothing";
}

TEST_F(Notice, SnoozesFromTheFullMinute) {
    const int dauern[] = {2, 5, 10, 15, 30, 45, 60, 120, 180, 240, 300};
    int zeile = 0;
    for (const int minuten : dauern) {
        const std::string name =
            minuten > 60 ? std::to_string(minuten / 60) + " Stunden" : std::to_string(minuten) + " Minuten";
        empfaenger.rufe.clear();
        snooze("Text", ++zeile);
        EXPECT_EQ(view.funktionen.at(static_cast<std::size_t>(zeile)), "Erneut erinnern in " + name);
        const Datum moment = zeit("2012-12-24 20:14:00").plusSekunden(60 * minuten);
        EXPECT_THAT(empfaenger.rufe, ElementsAre(alsZeit(moment) + " Text", "beantwortet A"));
    }
    const TerminZeiger& letzter = empfaenger.termine.back();
    EXPECT_TRUE(letzter->Aktiv && letzter->Intervall == 0 && letzter->Art == Terminart::Eigener);
}

TEST_F(Notice, SnoozedLosesItsPrefixOnceAndAtTheStartOnly) {
    const std::string vorsatz = "Sie wollten sich erinnern lassen.\r\n", zweimal = "A\r\n" + vorsatz + "B";
    const std::pair<std::string, std::string> faelle[] = {
        {vorsatz + "Zahnarzt", "Zahnarzt"},
        {vorsatz + vorsatz + "B", vorsatz + "B"},
        {zweimal, zweimal},
        {std::string(65540, 'x'), std::string(65535, 'x')},  // what the settings file can hold
    };
    for (const auto& [text, erwartet] : faelle) {
        snooze(text, 1);
        EXPECT_EQ(empfaenger.termine.back()->WeckText, erwartet);
    }
}

TEST_F(Notice, TakesFurtherTextWhileOpen) {
    zeigeEntsperrt("Eins");
    form.ComboFunktion_Click(2);
    zeige("Zwei", "B");
    form.cmdOK_Click();
    EXPECT_TRUE(form.offen()) << "the lock has started anew";
    form.TimerOKErlaubt_Timer();
    form.cmdOK_Click();
    EXPECT_THAT(empfaenger.rufe,
                ElementsAre("2012-12-24 20:19:00 Eins\r\nZwei", "beantwortet A", "beantwortet B"));
}

TEST_F(Notice, IsClosedBeforeTheNewEntryIsHandedUp) {
    empfaenger.beimErinnern = [&] {
        EXPECT_FALSE(form.offen());
        form.cmdOK_Click();  // a second click while a box about the failed store is open
        zeige("Zwei", "B");  // and a notice that falls due meanwhile
    };
    snooze("Eins", 1);
    EXPECT_THAT(empfaenger.rufe, ElementsAre("2012-12-24 20:16:00 Eins", "beantwortet A"));
    EXPECT_EQ(form.LabelHinweisText(), "Zwei");
}

}  // namespace
}  // namespace wendel
