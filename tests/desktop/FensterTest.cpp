// The windows without a window manager: the wires between form and window, the names by which tests find
// controls, the boxes by their style numbers. Focus, foreground and tray need the real
// desktop; the scripts beside this file test them.

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <algorithm>

#include "desktop/Fensterhilfe.h"
#include "desktop/FormHinweisFenster.h"
#include "desktop/Meldungsfenster.h"
#include "desktop/QtText.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

struct Empfaenger : FormHinweisEmpfaenger {
    void erneutErinnern(const TerminZeiger& termin) override { termine.push_back(termin); }
    void hinweisBeantwortet(const std::vector<Hinweisschluessel>&) override { ++beantwortet; }
    std::vector<TerminZeiger> termine;
    int beantwortet = 0;
};

class HinweisFensterTest : public testing::Test {
  protected:
    HinweisFensterTest() { fenster.setzeForm(form); }
    void zeige(const std::string& text) { form.hinweisen("Termin", text, {}); }
    bool entsperrt() {
        return warte([this] { return form.TimerOKErlaubtTag() == "ok"; });
    }

    FakeUhr uhr;
    Empfaenger empfaenger;
    FormHinweisFenster fenster;
    FormHinweis form{uhr, fenster, empfaenger};
};

TEST_F(HinweisFensterTest, ShowsTheNoticeAndForwardsTheAnswerOnceTheGuardIsOver) {
    uhr.stelle(DateSerial(2012, 12, 24) + TimeSerial(20, 14, 50));
    zeige("Sie wollten sich erinnern lassen.\r\n20:15 Süßer Schnee (ZDF)");
    EXPECT_EQ(fenster.windowTitle(), "Lomrick - Hinweis");
    EXPECT_EQ(kind<QLabel>(fenster, "LabelHinweisTitel").text(), "Termin");
    EXPECT_EQ(kind<QLabel>(fenster, "LabelHinweisText").text(),
              QString::fromUtf8("Sie wollten sich erinnern lassen.\n20:15 Süßer Schnee (ZDF)"));
    auto& liste = kind<QComboBox>(fenster, "ComboFunktion");
    EXPECT_TRUE(liste.count() == 12 && liste.maxVisibleItems() == 12 && liste.currentIndex() == 0);
    liste.setCurrentIndex(2);
    Q_EMIT liste.activated(2);
    auto& cmdOK = kind<QPushButton>(fenster, "cmdOK");
    cmdOK.click();
    fenster.close();
    EXPECT_TRUE(fenster.isVisible() && empfaenger.beantwortet == 0);
    ASSERT_TRUE(entsperrt());
    cmdOK.click();
    EXPECT_TRUE(!fenster.isVisible() && empfaenger.beantwortet == 1);
    ASSERT_EQ(empfaenger.termine.size(), 1u);
    EXPECT_EQ(datumKompakt(empfaenger.termine[0]->WeckZeit), "20121224201900");

    zeige("zwei");
    EXPECT_EQ(liste.currentIndex(), 0);
    cmdOK.click();
    EXPECT_TRUE(fenster.isVisible()) << "a second opening is guarded again";
    ASSERT_TRUE(entsperrt());
    fenster.close();
    EXPECT_TRUE(!fenster.isVisible() && empfaenger.beantwortet == 2);
}

struct Boxfall {
    int stil;
    QMessageBox::Icon symbol;
    std::vector<std::pair<const char*, Antwort>>
        knoepfe;  // the first is the default, the last closes the box
};
const std::pair<const char*, Antwort> kOk{"&OK", Antwort::Ok}, kAbbrechen{"&Abbrechen", Antwort::Abbrechen},
    kWiederholen{"&Wiederholen", Antwort::Wiederholen}, kJa{"&Ja", Antwort::Ja},
    kNein{"&Nein", Antwort::Nein};
const Boxfall kBoxen[] = {
    {48, QMessageBox::Warning, {kOk}},
    {64, QMessageBox::Information, {kOk}},
    {52, QMessageBox::Warning, {kJa, kNein}},
    {65589, QMessageBox::Warning, {kWiederholen, kAbbrechen}},  // in front of all
    {35, QMessageBox::Question, {kJa, kNein, kAbbrechen}},
};

TEST(BoxTest, HasTheIconAndButtonsOfItsStyleAndGivesTheirAnswers) {
    FakeFenstersystem fenster;
    Meldungsfenster meldungen(fenster);
    for (const Boxfall& fall : kBoxen) {
        SCOPED_TRACE(fall.stil);
        const auto beantworte = [&](const std::function<void(QMessageBox&)>& handlung) {
            QTimer::singleShot(0, [&] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(box, nullptr);
                handlung(*box);
            });
            return meldungen.meldung("Zeile 1\r\nZeile <2>", fall.stil, "Titel");
        };
        for (const auto& [aufschrift, erwartet] : fall.knoepfe) {
            const Antwort antwort = beantworte([&, text = aufschrift](QMessageBox& box) {
                EXPECT_EQ(box.windowTitle() + box.text(), "TitelZeile 1\nZeile <2>");
                EXPECT_TRUE(box.textFormat() == Qt::PlainText && box.icon() == fall.symbol);
                const auto knoepfe = box.buttons();
                EXPECT_EQ(knoepfe.size(), static_cast<qsizetype>(fall.knoepfe.size()));
                const auto knopf = std::ranges::find(knoepfe, text, &QAbstractButton::text);
                if (knopf != knoepfe.end()) return (*knopf)->click();
                ADD_FAILURE() << text;
                box.done(0);
            });
            EXPECT_EQ(antwort, erwartet) << aufschrift;
        }
        const auto vorgabe = beantworte([](QMessageBox& box) { box.defaultButton()->click(); });
        EXPECT_EQ(vorgabe, fall.knoepfe.front().second);
        EXPECT_EQ(beantworte([](QMessageBox& box) { box.done(0); }), fall.knoepfe.back().second);
    }
}

}  // namespace
}  // namespace wendel

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication anwendung(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
