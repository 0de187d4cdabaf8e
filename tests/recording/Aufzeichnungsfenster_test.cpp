// The two windows of a recording as forms: the history of steps, who closes the status window for how long,
// the notice's text and its way to the front.
#include <gtest/gtest.h>

#include "recording/FormAufzeichnungsHinweis.h"
#include "recording/FormAufzeichnungsskript.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

using Texte = std::vector<std::string>;

struct FakeSkriptView : FormAufzeichnungsskriptView {
    bool sichtbar = false;
    std::string aktion;
    Texte menue;
    void zeigen() override { sichtbar = true; }
    void verbergen() override { sichtbar = false; }
    void setzeAktuelleAktion(const std::string& text) override { aktion = text; }
    void zeigePopupVerlauf(const Texte& verlauf) override { menue = verlauf; }
};

struct ScriptStatus : testing::Test {
    FakeUhr uhr;
    FakeSkriptView fenster;
    FormAufzeichnungsskript form{uhr, fenster};
};

TEST_F(ScriptStatus, KeepsTheLastTwentySteps) {
    Texte erwartet;
    for (int i = 1; i <= 25; ++i) {
        form.ShowDebugInfo("Schritt " + std::to_string(i));
        if (i > 5) erwartet.push_back("Schritt " + std::to_string(i));
    }
    const auto vorher = uhr.laufzeitMs();
    form.ShowDebugInfoAddOk();
    erwartet.back() += " ..Ok";
    EXPECT_EQ(fenster.aktion, "Schritt 25 ..Ok");
    EXPECT_EQ(uhr.laufzeitMs() - vorher, 200);
    form.LabelAktuelleAktion_Click();
    EXPECT_EQ(fenster.menue, erwartet);
}

TEST_F(ScriptStatus, AnOkWithoutAStepChangesTheLabelOnly) {
    form.ShowDebugInfoAddOk();
    EXPECT_EQ(fenster.aktion, " ..Ok");
    EXPECT_TRUE(form.verlauf().empty() && !fenster.sichtbar);
}

TEST_F(ScriptStatus, ClosedByTheUserItStaysAwayUntilTheRecordingIsOver) {
    form.ShowDebugInfo("a");
    EXPECT_TRUE(fenster.sichtbar);
    form.mnuSchließen_Click();
    form.ShowDebugInfo("b");
    EXPECT_FALSE(fenster.sichtbar);
    form.schliessen();
    form.ShowDebugInfo("c");
    EXPECT_TRUE(fenster.sichtbar);
    EXPECT_EQ(form.verlauf(), (Texte{"a", "b", "c"}));
}

struct FakeHinweisView : FormAufzeichnungsHinweisView {
    bool sichtbar = false;
    std::string text;
    Fensterhandle hwnd() override { return sichtbar ? 7 : 0; }
    void setzeText(const std::string& neu) override { text = neu; }
    void zeigen() override { sichtbar = true; }
    void verbergen() override { sichtbar = false; }
};

TEST(RecordingNotice, SaysWhatIsComingInFrontOfAll) {
    FakeFenstersystem system;
    FakeHinweisView fenster;
    FormAufzeichnungsHinweis form(system, fenster);
    form.zeigen("");
    EXPECT_EQ(
        fenster.text,
        "In einer Minute startet die Aufzeichnung einer Sendung mit den Kestrin Pirrow. Bitte achten Sie "
        "darauf, dass keine anderen Programme Ihre TV-Karte verwenden, oder den Computer auslasten. "
        "Dieser Hinweis wird automatisch zu Beginn der Aufzeichnung ausgeblendet.");
    EXPECT_EQ(system.vordergrund, 7u);
    form.cmdOK_Click();
    EXPECT_FALSE(form.offen() || fenster.sichtbar);
    form.zeigen("Zwei zugleich.");
    EXPECT_TRUE(fenster.sichtbar && fenster.text.ends_with("ausgeblendet.\r\n\r\nZwei zugleich."));
}

}  // namespace
}  // namespace wendel
