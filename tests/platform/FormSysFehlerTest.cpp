// The technical-error dialog: what its details say, its heights, how long it stands. Which result each way
// out has is tested over its window.
#include <gtest/gtest.h>

#include <functional>

#include "platform/FormSysFehler.h"

namespace wendel {
namespace {

// A window whose title bar is 300 twips high; the user acts while it waits.
struct FakeSysFehlerView : FormSysFehlerView {
    std::string caption, text, details, knopf;
    bool wiederholen = false, sichtbar = false;
    int hoehe = 0;
    std::function<void()> benutzer = [] {};

    void setzeCaption(const std::string& neu) override { caption = neu; }
    void setzeLabelText(const std::string& neu) override { text = neu; }
    void setzeTextDetails(const std::string& neu) override { details = neu; }
    void setzeCmdDetailsCaption(const std::string& neu) override { knopf = neu; }
    void setzeCmdWiederholenSichtbar(bool an) override { wiederholen = an; }
    SysFehlerMasse masse() override { return {{1, 2300, 2000, 15}, 1500, 4000}; }
    void setzeHoehe(int twips) override { hoehe = twips; }
    void zeigenModal() override { sichtbar = true, benutzer(); }
    void zeigen() override { sichtbar = true; }
    void verbergen() override { sichtbar = false; }
};

struct SystemErrorDialog : testing::Test {
    std::string klappzustand() const {
        return fenster.knopf + "|" + form.cmdDetailsTag() + "|" + std::to_string(fenster.hoehe);
    }
    const std::string zu = "&Details ..||1800", offen = "&Details <<|ausgeklappt|4300";
    FakeSysFehlerView fenster;
    FormSysFehler form{fenster};
};

TEST_F(SystemErrorDialog, BuildsItsDetailsFromWhatIsThere) {
    const struct {
        SysFehler fehler;
        const char* details;
    } faelle[] = {
        {{.Fehlertext = "x", .ErrSource = "ohne Nummer", .ErrDescription = "ungezeigt"}, ""},
        {{.ErrNumber = -7, .ErrSource = " Ort ", .ErrDescription = " Was "}, "(-7) Was\r\nFehlerort: Ort"},
        {{.DetailText = " mehr "}, "mehr"},
        {{.ErrNumber = 1, .ErrSource = "Ort", .DetailText = "a\r\nb"}, "(1) \r\nFehlerort: Ort\r\na\r\nb"},
    };
    for (const auto& fall : faelle) {
        form.ShowFehler(fall.fehler);
        EXPECT_EQ(fenster.details, fall.details);
    }
}

TEST_F(SystemErrorDialog, StartsAsItIsAskedToAndFolds) {
    for (const bool aufgeklappt : {false, true, false}) {
        fenster.benutzer = [&] {
            EXPECT_EQ(klappzustand(), aufgeklappt ? offen : zu);
            form.cmdDetails_Click();
            EXPECT_EQ(klappzustand(), aufgeklappt ? zu : offen);
        };
        form.ShowFehler({.DetailsAufklappen = aufgeklappt});
    }
}

TEST_F(SystemErrorDialog, LeftStandingAnswersAtOnceAndKeepsItsDetailsUnfolded) {
    const SysFehler fehler{.ButtonWiederholen = true, .NurAnzeigenUndStehenLassen = true};
    EXPECT_EQ(form.ShowFehler(fehler), SysFehlerErgebnis::Keines);
    form.cmdDetails_Click();
    EXPECT_EQ(form.ShowFehler(fehler), SysFehlerErgebnis::Keines);
    EXPECT_EQ(klappzustand(), offen) << "the user was reading";
    form.Schliessen();
    EXPECT_FALSE(fenster.sichtbar);
    form.ShowFehler(fehler);
    EXPECT_EQ(klappzustand(), zu);
}

}  // namespace
}  // namespace wendel
