// The windows without a window manager: the wires between form and window, the names by which tests and
// screen readers find controls, the boxes by their style numbers. Focus, foreground and tray need the real
// desktop; the scripts beside this file test them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QTreeWidget>
#include <functional>
#include <ostream>

#include "desktop/FormHinweisFenster.h"
#include "desktop/FormWendelFenster.h"
#include "desktop/Meldungsfenster.h"
#include "desktop/QtText.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

// Runs the event loop until the condition holds, at most five seconds.
bool warte(const std::function<bool()>& bedingung) {
    QElapsedTimer uhr;
    uhr.start();
    while (!bedingung()) {
        if (uhr.elapsed() > 5000) return false;
        QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
    }
    return true;
}

template <class T>
T& kind(QWidget& fenster, const char* name) {
    T* gefunden = fenster.findChild<T*>(QString::fromUtf8(name));
    EXPECT_NE(gefunden, nullptr) << name;
    return *gefunden;
}

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

TEST(WendelFensterTest, ShowsRowsOfThreeColumnsWithPicturesAndTheSelection) {
    FormWendelFenster fenster;
    fenster.setzeZeilen({{"terminuhr2", "24.12.12 20:15", "Oma anrufen", "59 min"},
                         {"terminuhr1", "Mo 20:15", "Süßer Schnee\r\n(ZDF)", "2 Tage"},
                         {"terminaufz", "24.12.12 20:10", "Öland", "läuft"}},
                        1);
    fenster.setzeLiveUpdateEinstellungen("Das Live-Update ist momentan deaktiviert.");
    auto& liste = kind<QTreeWidget>(fenster, "ListViewTermineListe");
    ASSERT_EQ(liste.topLevelItemCount(), 3);
    EXPECT_EQ(liste.topLevelItem(0)->text(0), "24.12.12 20:15");
    EXPECT_EQ(liste.topLevelItem(1)->text(1), QString::fromUtf8("Süßer Schnee (ZDF)"));
    EXPECT_EQ(liste.topLevelItem(2)->text(2), QString::fromUtf8("läuft"));
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(liste.topLevelItem(i)->icon(0).isNull()) << i;
    EXPECT_EQ(liste.currentItem(), liste.topLevelItem(1));
    EXPECT_EQ(kind<QLabel>(fenster, "LabelAnzLiveUpdateEinstellungen").text(),
              "Das Live-Update ist momentan deaktiviert.");
    EXPECT_EQ(fenster.windowTitle(), "Lomrick");
    EXPECT_EQ(fenster.findChild<QAction*>("mnuBeenden")->text(), "&Beenden ..");
}

TEST(WindowsTest, EveryNamedControlHasAnAccessibleName) {
    FormHinweisFenster hinweis;
    hinweis.setzeTitel("Termin");
    hinweis.setzeText("Text");
    FormWendelFenster wendel;
    wendel.setzeLiveUpdateEinstellungen("aus");
    const std::vector<std::pair<QWidget*, std::vector<const char*>>> fenster = {
        {&hinweis, {"HinweisPicture", "LabelHinweisTitel", "LabelHinweisText", "ComboFunktion", "cmdOK"}},
        {&wendel,
         {"ListViewTermineListe", "LabelAnzLiveUpdateEinstellungen", "PictureInfoBanner", "cmdAusblenden",
          "PopupTerminliste"}}};
    for (const auto& [eines, namen] : fenster) {
        EXPECT_FALSE(eines->accessibleName().isEmpty());
        for (const char* name : namen)
            EXPECT_FALSE(kind<QWidget>(*eines, name).accessibleName().isEmpty()) << name;
    }
}

struct Boxfall {
    const char* name;
    int stil;
    QMessageBox::Icon symbol;
    std::vector<std::string> aufschriften;
    std::vector<Antwort> antworten;
    Antwort geschlossen;
};

void PrintTo(const Boxfall& fall, std::ostream* ziel) { *ziel << fall.name; }

class BoxTest : public testing::TestWithParam<Boxfall> {
  protected:
    // Runs a box in which `handlung` is done as soon as it is on the screen.
    Antwort beantworte(const std::function<void(QMessageBox&)>& handlung) {
        QTimer::singleShot(0, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            handlung(*box);
        });
        return meldungen.meldung("Zeile 1\r\nZeile <2>", GetParam().stil, "Titel");
    }
    FakeFenstersystem fenster;
    Meldungsfenster meldungen{fenster};
};

TEST_P(BoxTest, HasTheButtonsOfItsStyleAndGivesTheirAnswers) {
    const Boxfall& fall = GetParam();
    for (std::size_t i = 0; i < fall.antworten.size(); ++i) {
        const Antwort antwort = beantworte([&](QMessageBox& box) {
            EXPECT_EQ(box.windowTitle(), "Titel");
            EXPECT_EQ(box.text(), "Zeile 1\nZeile <2>");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.icon(), fall.symbol);
            ASSERT_EQ(box.buttons().size(), static_cast<qsizetype>(fall.aufschriften.size()));
            for (const std::string& aufschrift : fall.aufschriften) {
                const auto knoepfe = box.buttons();
                EXPECT_TRUE(std::any_of(knoepfe.begin(), knoepfe.end(), [&](const QAbstractButton* knopf) {
                    return knopf->text() == qtText(aufschrift);
                })) << aufschrift;
            }
            for (QAbstractButton* knopf : box.buttons()) {
                if (knopf->text() == qtText(fall.aufschriften[i])) {
                    knopf->click();
                    return;
                }
            }
        });
        EXPECT_EQ(antwort, fall.antworten[i]) << fall.aufschriften[i];
    }
}

TEST_P(BoxTest, ReturnPressesTheFirstButton) {
    const Antwort antwort = beantworte([](QMessageBox& box) { box.defaultButton()->click(); });
    EXPECT_EQ(antwort, GetParam().antworten[0]);
}

TEST_P(BoxTest, AnEndingProgramGetsTheAnswerThatChangesNothing) {
    const Antwort antwort = beantworte([](QMessageBox& box) { box.done(0); });
    EXPECT_EQ(antwort, GetParam().geschlossen);
}

INSTANTIATE_TEST_SUITE_P(
    Styles, BoxTest,
    testing::Values(
        Boxfall{"Exclamation", 48, QMessageBox::Warning, {"&OK"}, {Antwort::Ok}, Antwort::Ok},
        Boxfall{"Information", 64, QMessageBox::Information, {"&OK"}, {Antwort::Ok}, Antwort::Ok},
        Boxfall{
            "YesNo", 52, QMessageBox::Warning, {"&Ja", "&Nein"}, {Antwort::Ja, Antwort::Nein}, Antwort::Nein},
        Boxfall{"RetryCancel",
                53,
                QMessageBox::Warning,
                {"&Wiederholen", "&Abbrechen"},
                {Antwort::Wiederholen, Antwort::Abbrechen},
                Antwort::Abbrechen},
        Boxfall{"RetryCancelInFront",
                65589,
                QMessageBox::Warning,
                {"&Wiederholen", "&Abbrechen"},
                {Antwort::Wiederholen, Antwort::Abbrechen},
                Antwort::Abbrechen},
        Boxfall{"YesNoCancelQuestion",
                51 - 48 + 32,
                QMessageBox::Question,
                {"&Ja", "&Nein", "&Abbrechen"},
                {Antwort::Ja, Antwort::Nein, Antwort::Abbrechen},
                Antwort::Abbrechen}),
    [](const auto& fall) { return std::string(fall.param.name); });

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
