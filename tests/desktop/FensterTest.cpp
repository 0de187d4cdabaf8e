// The windows without a window manager: the wires between form and window, the names by which tests find
// controls, the boxes by their style numbers. Focus, foreground and tray need the real
// desktop; the scripts beside this file test them.

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <map>

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

TEST_F(HinweisFensterTest, ShowsTitleTextAndTwelveRowsUnderTheControlsNames) {
    zeige("Sie wollten sich erinnern lassen.\r\n20:15 Süßer Schnee (ZDF)");
    EXPECT_EQ(fenster.objectName(), "FormHinweis");
    EXPECT_EQ(fenster.windowTitle(), "Lomrick - Hinweis");
    EXPECT_EQ(kind<QLabel>(fenster, "LabelHinweisTitel").text(), "Termin");
    EXPECT_EQ(kind<QLabel>(fenster, "LabelHinweisText").text(),
              QString::fromUtf8("Sie wollten sich erinnern lassen.\n20:15 Süßer Schnee (ZDF)"));
    const auto& liste = kind<QComboBox>(fenster, "ComboFunktion");
    ASSERT_EQ(liste.count(), 12);
    EXPECT_EQ(liste.itemText(0), QString::fromUtf8("Termin schließen"));
    EXPECT_EQ(liste.itemText(11), "Erneut erinnern in 5 Stunden");
    EXPECT_EQ(liste.maxVisibleItems(), 12);
    EXPECT_EQ(liste.currentIndex(), 0);
    EXPECT_EQ(kind<QPushButton>(fenster, "cmdOK").text(), "&OK");
    EXPECT_TRUE(fenster.isVisible());
}

TEST_F(HinweisFensterTest, OkAndCloseBoxDoNothingDuringTheGuardAndCloseAfterIt) {
    zeige("eins");
    kind<QPushButton>(fenster, "cmdOK").click();
    fenster.close();
    EXPECT_TRUE(fenster.isVisible());
    EXPECT_EQ(empfaenger.beantwortet, 0);

    ASSERT_TRUE(entsperrt());
    fenster.close();
    EXPECT_FALSE(fenster.isVisible());
    EXPECT_EQ(empfaenger.beantwortet, 1);

    zeige("zwei");
    kind<QPushButton>(fenster, "cmdOK").click();
    EXPECT_TRUE(fenster.isVisible()) << "a second opening is guarded again";
    ASSERT_TRUE(entsperrt());
    kind<QPushButton>(fenster, "cmdOK").click();
    EXPECT_FALSE(fenster.isVisible());
    EXPECT_EQ(empfaenger.beantwortet, 2);
}

TEST_F(HinweisFensterTest, AChosenRowReachesTheFormAndANewNoticeStartsAtTheFirstRow) {
    uhr.stelle(DateSerial(2012, 12, 24) + TimeSerial(20, 14, 50));
    zeige("eins");
    auto& liste = kind<QComboBox>(fenster, "ComboFunktion");
    liste.setCurrentIndex(2);
    Q_EMIT liste.activated(2);
    ASSERT_TRUE(entsperrt());
    kind<QPushButton>(fenster, "cmdOK").click();
    ASSERT_EQ(empfaenger.termine.size(), 1u);
    EXPECT_EQ(datumKompakt(empfaenger.termine[0]->WeckZeit), "20121224201900");

    zeige("zwei");
    EXPECT_EQ(liste.currentIndex(), 0);
}

TEST_F(HinweisFensterTest, TheHeightFollowsTheTextUpToTheScreen) {
    zeige("kurz");
    const int niedrig = fenster.height();
    const int breite = fenster.width();
    zeige("eine\r\nzwei\r\ndrei\r\nvier\r\nfünf");
    const int hoeher = fenster.height();
    EXPECT_GT(hoeher, niedrig);
    std::string lang;
    for (int i = 0; i < 500; ++i)
        lang += "noch eine Zeile\r\n";
    zeige(lang);
    EXPECT_GT(fenster.height(), hoeher);
    EXPECT_LE(fenster.height(), fenster.screen()->availableGeometry().height());
    EXPECT_EQ(fenster.width(), breite);
}

struct Boxfall {
    int stil;
    QMessageBox::Icon symbol;
    std::vector<Antwort> antworten;  // one for each button; the last one is that of a closed box
};

// A style's name and what its box has.
const std::map<std::string, Boxfall> kBoxen = {
    {"Exclamation", {48, QMessageBox::Warning, {Antwort::Ok}}},
    {"Information", {64, QMessageBox::Information, {Antwort::Ok}}},
    {"YesNo", {52, QMessageBox::Warning, {Antwort::Ja, Antwort::Nein}}},
    {"RetryCancelInFront", {65589, QMessageBox::Warning, {Antwort::Wiederholen, Antwort::Abbrechen}}},
    {"YesNoCancel", {35, QMessageBox::Question, {Antwort::Ja, Antwort::Nein, Antwort::Abbrechen}}},
};
const std::map<Antwort, QString> kAufschriften = {{Antwort::Ok, "&OK"},
                                                  {Antwort::Abbrechen, "&Abbrechen"},
                                                  {Antwort::Wiederholen, "&Wiederholen"},
                                                  {Antwort::Ja, "&Ja"},
                                                  {Antwort::Nein, "&Nein"}};

TEST(BoxTest, HasTheIconAndButtonsOfItsStyleAndGivesTheirAnswers) {
    FakeFenstersystem fenster;
    Meldungsfenster meldungen(fenster);
    for (const auto& [name, fall] : kBoxen) {
        SCOPED_TRACE(name);
        // Runs a box in which `handlung` is done as soon as it is on the screen.
        const auto beantworte = [&, stil = fall.stil](const std::function<void(QMessageBox&)>& handlung) {
            QTimer::singleShot(0, [&] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(box, nullptr);
                handlung(*box);
            });
            return meldungen.meldung("Zeile 1\r\nZeile <2>", stil, "Titel");
        };
        for (const Antwort erwartet : fall.antworten) {
            const Antwort antwort = beantworte([&, &fall = fall](QMessageBox& box) {
                EXPECT_EQ(box.windowTitle(), "Titel");
                EXPECT_EQ(box.text(), "Zeile 1\nZeile <2>");
                EXPECT_EQ(box.textFormat(), Qt::PlainText);
                EXPECT_EQ(box.icon(), fall.symbol);
                const auto knoepfe = box.buttons();
                EXPECT_EQ(knoepfe.size(), static_cast<qsizetype>(fall.antworten.size()));
                for (QAbstractButton* knopf : knoepfe) {
                    if (knopf->text() == kAufschriften.at(erwartet)) return knopf->click();
                }
                ADD_FAILURE() << "no button " << kAufschriften.at(erwartet).toStdString();
                box.done(0);
            });
            EXPECT_EQ(antwort, erwartet);
        }
        EXPECT_EQ(beantworte([](QMessageBox& box) { box.defaultButton()->click(); }), fall.antworten.front());
        EXPECT_EQ(beantworte([](QMessageBox& box) { box.done(0); }), fall.antworten.back());
    }
}

TEST(FehlerfensterTest, OneModelessWindowWhoseTextIsReplaced) {
    FakeFenstersystem fenster;
    Meldungsfenster meldungen(fenster);
    const auto offene = [] {
        QList<QMessageBox*> boxen;
        for (QWidget* w : QApplication::topLevelWidgets()) {
            if (auto* box = qobject_cast<QMessageBox*>(w); box != nullptr && box->isVisible()) boxen << box;
        }
        return boxen;
    };
    meldungen.zeigeFehlerOhneWarten("Erster", 53, "Quelle", "Datei nicht gefunden", "Fehler");
    meldungen.zeigeFehlerOhneWarten("Zweiter", 76, "Anderswo", "Pfad nicht gefunden", "Fehler");
    ASSERT_EQ(offene().size(), 1);
    EXPECT_EQ(offene()[0]->text(), "Zweiter");
    EXPECT_EQ(offene()[0]->informativeText(), "(76) Pfad nicht gefunden\nFehlerort: Anderswo");
    EXPECT_FALSE(offene()[0]->isModal());
    kind<QPushButton>(*offene()[0], "cmdOK").click();
    EXPECT_TRUE(offene().isEmpty());
    meldungen.zeigeFehlerOhneWarten("Dritter", 1, "Quelle", "eigener", "Fehler");
    EXPECT_EQ(offene().size(), 1) << "closed and needed again";
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
