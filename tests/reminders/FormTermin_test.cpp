// The editor without a screen: what the fields start with, the checks in their order, what comes of the
// record.

#include "reminders/FormTermin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "support/Fakes.h"
#include "support/Zeitpunkt.h"

namespace wendel {
namespace {

using ::testing::ElementsAre;

// A dialog in which the user does one thing and which is gone then, as at the program's end.
class BenutzteView : public FormTerminView {
  public:
    std::function<void()> benutzer;
    Termineingabe felder;
    std::vector<Terminfeld> cursor;
    int verborgen = 0;

    void setzeEingabe(const Termineingabe& eingabe) override { felder = eingabe; }
    Termineingabe eingabe() const override { return felder; }
    void zeigenModal(Terminfeld anfang) override {
        cursor.push_back(anfang);
        benutzer();
    }
    void verbergen() override { ++verborgen; }
    void nachVorn() override {}
    void zumFeld(Terminfeld feld) override { cursor.push_back(feld); }
};

class Editor : public ::testing::Test {
  protected:
    Editor() { uhr.stelle(zeit("2012-12-24 20:14:50")); }

    bool bearbeite(TerminZeiger& termin, const std::function<void()>& benutzer) {
        view.benutzer = benutzer;
        return form.ShowAndGetTermin(termin);
    }
    void bestaetige(const Termineingabe& eingabe) {
        view.felder = eingabe;
        form.cmdOK_Click();
    }

    FakeUhr uhr;
    FakeMeldungen meldungen;
    BenutzteView view;
    FormTermin form{uhr, meldungen, view};
};

TEST_F(Editor, NewEntryStartsWithThePresentMinuteAndIsMadeByOk) {
    TerminZeiger neu;
    EXPECT_FALSE(bearbeite(neu, [&] { form.cmdCancel_Click(); }));
    EXPECT_FALSE(neu || form.offen());
    EXPECT_TRUE(bearbeite(neu, [&] {
        EXPECT_EQ(view.felder, (Termineingabe{"24.12.2012", "20:14", "", 0}));
        form.cmdOK_Click();
    }));
    EXPECT_EQ(alsZeit(neu->WeckZeit), "2012-12-24 20:14:00");
    EXPECT_TRUE(neu->Aktiv && neu->WeckText.empty() && neu->Art == Terminart::Eigener);
    EXPECT_EQ(view.verborgen, 2);
    EXPECT_EQ(form.Tag(), "ok");
    const std::string lang(65540, 'x');  // more than the file can hold
    bearbeite(neu, [&] { bestaetige({"24.12.2012", "20:15", "  " + lang, 1}); });
    EXPECT_EQ(neu->WeckText, lang.substr(0, 65535));
}

TEST_F(Editor, EditChangesMomentTextAndRepetitionOnly) {
    auto termin = std::make_shared<cTermin>();
    termin->WeckZeit = zeit("2013-03-01 07:05:33");
    termin->Intervall = 7;  // unknown to the options: once
    const TerminZeiger derselbe = termin;
    EXPECT_TRUE(bearbeite(termin, [&] {
        EXPECT_EQ(view.felder, (Termineingabe{"01.03.2013", "07:05", "", 0}));
        bestaetige({" 1.4.13", "7:06:07 ", "  Zahnarzt\r\n ", intervall::kWoechentlich});
    }));
    EXPECT_EQ(alsZeit(derselbe->WeckZeit), "2013-04-01 07:06:07");
    EXPECT_EQ(derselbe->WeckText, "Zahnarzt\r\n") << "only blanks are cut";
    EXPECT_TRUE(derselbe->Intervall == 3 && !derselbe->Aktiv);
}

TEST_F(Editor, ComplainsAboutTheDateThenTheTimeAndStaysOpen) {
    const FakeMeldungen::Kasten datum{"Das eingegebene Datum ist ungültig.", 16, "Datum"};
    const FakeMeldungen::Kasten uhrzeit{"Die eingegebene Uhrzeit ist ungültig.", 16, "Uhrzeit"};
    TerminZeiger neu;
    EXPECT_FALSE(bearbeite(neu, [&] {
        bestaetige({"31.02.2013", "", "Text", 0});
        bestaetige({"28.02.2013", "", "Text", 0});
        bestaetige({"28.02.2013", "20.15", "Text", 0});
        EXPECT_EQ(view.verborgen, 0);
    })) << "the program ends while the dialog is open";
    EXPECT_FALSE(neu);
    EXPECT_THAT(meldungen.gezeigt, ElementsAre(datum, uhrzeit, uhrzeit));
    EXPECT_THAT(view.cursor, ElementsAre(Terminfeld::Uhrzeit, Terminfeld::Datum, Terminfeld::Uhrzeit,
                                         Terminfeld::Uhrzeit));
}

}  // namespace
}  // namespace wendel
