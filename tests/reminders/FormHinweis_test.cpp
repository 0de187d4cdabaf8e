// The notice without a screen: what the window is told, the lock of OK, snoozing, and several notices in one.

#include "reminders/FormHinweis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "reminders/Zeitpunkt.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

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

    FakeUhr uhr;
    AufzeichnendeView view;
    AufzeichnenderEmpfaenger empfaenger;
    FormHinweis form{uhr, view, empfaenger};
};

TEST_F(Notice, ComesUpFittedOnItsFirstRowOfTwelveWithOkLocked) {
    // clang-format off
    EXPECT_THAT(view.funktionen, ElementsAre("Termin schließen",
        "Erneut erinnern in 2 Minuten", "Erneut erinnern in 5 Minuten", "Erneut erinnern in 10 Minuten",
        "Erneut erinnern in 15 Minuten", "Erneut erinnern in 30 Minuten", "Erneut erinnern in 45 Minuten",
        "Erneut erinnern in 60 Minuten", "Erneut erinnern in 2 Stunden", "Erneut erinnern in 3 Stunden",
        "Erneut erinnern in 4 Stunden", "Erneut erinnern in 5 Stunden"));
    // clang-format on
    EXPECT_EQ(form.LabelHinweisTitel(), "Achtung !");
    EXPECT_EQ(form.LabelHinweisText(), "Der Zeitpunkt für die TV-Erinnerung ist erreicht.");
    form.ComboFunktion_Click(5);
    zeige("Text");
    EXPECT_THAT(view.rufe,
                ElementsAre("Auswahl 0", "Titel Termin", "Text Text", "anpassen", "zeigen", "OKTimer 200"));
}

TEST_F(Notice, IgnoresEveryConfirmationUntilTheLockIsOver) {
    zeige("Text");
    view.rufe.clear();
    form.cmdOK_Click();
    form.ComboFunktion_KeyPress(32);
    form.Schliessen();
    EXPECT_THAT(view.rufe, IsEmpty());
    EXPECT_THAT(empfaenger.rufe, IsEmpty());
    EXPECT_TRUE(form.offen());

    form.TimerOKErlaubt_Timer();
    form.ComboFunktion_KeyPress(13);
    EXPECT_TRUE(form.offen());
    form.ComboFunktion_KeyPress(32);
    EXPECT_FALSE(form.offen());
    EXPECT_THAT(view.rufe, ElementsAre("verbergen"));
    EXPECT_THAT(empfaenger.rufe, ElementsAre("beantwortet A"));
}

TEST_F(Notice, ClosedByItsCloseBoxSchedulesNothingWhateverRowIsChosen) {
    zeigeEntsperrt("Text");
    form.ComboFunktion_Click(3);
    form.Schliessen();
    EXPECT_THAT(empfaenger.rufe, ElementsAre("beantwortet A"));
    form.TimerOKErlaubt_Timer();
    form.cmdOK_Click();
    EXPECT_THAT(empfaenger.rufe, ElementsAre("beantwortet A")) << "a closed notice answers nothing";
}

TEST_F(Notice, SnoozesFromTheFullMinute) {
    const std::map<int, int> minuten = {{-1, 0}, {0, 0},  {1, 2},   {2, 5},   {3, 10},   {4, 15},   {5, 30},
                                        {6, 45}, {7, 60}, {8, 120}, {9, 180}, {10, 240}, {11, 300}, {12, 0}};
    for (const auto& [zeile, dauer] : minuten) {
        SCOPED_TRACE(zeile);
        empfaenger.rufe.clear();
        zeigeEntsperrt("Text");
        form.ComboFunktion_Click(zeile);
        form.cmdOK_Click();
        std::vector<std::string> erwartet = {"beantwortet A"};
        const Datum moment = zeit("2012-12-24 20:14:00").plusSekunden(60 * dauer);
        if (dauer > 0) erwartet.insert(erwartet.begin(), alsZeit(moment) + " Text");
        EXPECT_EQ(empfaenger.rufe, erwartet);
    }
    const TerminZeiger& letzter = empfaenger.termine.back();
    EXPECT_TRUE(letzter->Aktiv);
    EXPECT_EQ(letzter->Intervall, 0);
    EXPECT_EQ(letzter->Art, Terminart::Eigener);
}

TEST_F(Notice, SnoozedLosesItsPrefixOnceAndAtTheStartOnly) {
    const std::string vorsatz = "Sie wollten sich erinnern lassen.";
    const std::pair<std::string, std::string> faelle[] = {
        {vorsatz + "\r\nZahnarzt", "Zahnarzt"},
        {vorsatz, ""},
        {vorsatz + " Zahnarzt", " Zahnarzt"},
        {vorsatz + "\r\n" + vorsatz + "\r\nB", vorsatz + "\r\nB"},
        {"A\r\n" + vorsatz + "\r\nB", "A\r\n" + vorsatz + "\r\nB"},
        {"sie wollten sich erinnern lassen.\r\nB", "sie wollten sich erinnern lassen.\r\nB"},
        {std::string(65540, 'x'), std::string(65535, 'x')},  // what the settings file can hold
    };
    for (const auto& [text, erwartet] : faelle) {
        zeigeEntsperrt(text);
        form.ComboFunktion_Click(1);
        form.cmdOK_Click();
        EXPECT_EQ(empfaenger.termine.back()->WeckText, erwartet);
    }
}

TEST_F(Notice, TakesFurtherTextWhileOpen) {
    zeigeEntsperrt("Eins");
    form.ComboFunktion_Click(2);
    view.rufe.clear();
    zeige("Zwei", "B");
    EXPECT_THAT(view.rufe,
                ElementsAre("Titel Termin", "Text Eins\r\nZwei", "anpassen", "zeigen", "OKTimer 200"));
    form.cmdOK_Click();
    EXPECT_TRUE(form.offen()) << "the lock has started anew";
    form.TimerOKErlaubt_Timer();
    form.cmdOK_Click();
    EXPECT_THAT(empfaenger.rufe,
                ElementsAre("2012-12-24 20:19:00 Eins\r\nZwei", "beantwortet A", "beantwortet B"));
}

TEST_F(Notice, IsClosedBeforeTheNewEntryIsHandedUp) {
    zeigeEntsperrt("Eins");
    form.ComboFunktion_Click(1);
    empfaenger.beimErinnern = [&] {
        EXPECT_FALSE(form.offen());
        form.cmdOK_Click();  // a second click while a box about the failed store is open
        zeige("Zwei", "B");  // and a notice that falls due meanwhile
    };
    form.cmdOK_Click();
    EXPECT_THAT(empfaenger.rufe, ElementsAre("2012-12-24 20:16:00 Eins", "beantwortet A"));
    EXPECT_TRUE(form.offen());
    EXPECT_EQ(form.LabelHinweisText(), "Zwei");
    EXPECT_EQ(form.ComboFunktionListIndex(), 0);
}

}  // namespace
}  // namespace wendel
