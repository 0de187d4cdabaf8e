// The windows that accompany recordings and failures, and their forms: what they say and for how long, the
// wires from their controls, their sizes.

#include <gtest/gtest.h>

#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include "desktop/Fensterhilfe.h"
#include "desktop/FormAufzeichnungsHinweisFenster.h"
#include "desktop/FormAufzeichnungsskriptFenster.h"
#include "desktop/FormAufzeichnungsverlaufFenster.h"
#include "desktop/FormSysFehlerFenster.h"
#include "desktop/Meldungsfenster.h"
#include "recording/Aufzeichnungsprotokoll.h"
#include "support/Fakes.h"

namespace wendel {
namespace {

class SysFehlerFensterTest : public testing::Test {
  protected:
    SysFehlerFensterTest() {
        fenster.setzeForm(form);
        fenster.setzeSperre([this](bool an) { gesperrt += an ? 1 : -1; });
    }
    QWidget& teil(const char* name) { return kind<QWidget>(fenster, name); }
    QPushButton& knopf(const char* name) { return kind<QPushButton>(fenster, name); }
    int links(const char* name) { return teil(name).mapTo(&fenster, QPoint()).x(); }

    FormSysFehlerFenster fenster;
    FormSysFehler form{fenster};
    int gesperrt = 0;
};

TEST_F(SysFehlerFensterTest, WaitsUnfoldsAndAnswers) {
    QTimer::singleShot(0, [&] {
        EXPECT_EQ(kind<QLabel>(fenster, "LabelText").text(), "Text");
        EXPECT_TRUE(gesperrt == 1 && fenster.isModal() && fenster.windowTitle() == "Titel");
        EXPECT_TRUE(links("cmdWiederholen") < links("cmdDetails") && links("cmdDetails") < links("cmdOK"));
        EXPECT_TRUE(links("PictureAnimation") < links("LabelText"));
        const QSize klein = fenster.size();
        EXPECT_FALSE(teil("TextDetails").isVisible());
        knopf("cmdDetails").click();
        auto& details = kind<QPlainTextEdit>(fenster, "TextDetails");
        EXPECT_TRUE(details.isVisible() &&
                    fenster.rect().contains(details.mapTo(&fenster, details.rect().bottomRight())));
        EXPECT_GT(details.verticalScrollBar()->maximum(), 0) << "long details scroll";
        EXPECT_EQ(knopf("cmdDetails").text(), "&Details <<");
        knopf("cmdDetails").click();
        EXPECT_TRUE(fenster.size() == klein && !details.isVisible());
        knopf("cmdWiederholen").click();
    });
    std::string lang;
    for (int i = 0; i < 100; ++i)
        lang += "Zeile\r\n";
    const SysFehler fehler{
        .Fehlertext = " Text ", .DetailText = lang, .FensterCaption = " Titel ", .ButtonWiederholen = true};
    EXPECT_EQ(form.ShowFehler(fehler), SysFehlerErgebnis::Wiederholen);
    const std::function<void()> wege[] = {[&] { QTest::keyClick(&fenster, Qt::Key_Escape); },
                                          [&] { knopf("cmdOK").click(); }, [&] { fenster.close(); }};
    for (const auto& weg : wege) {
        QTimer::singleShot(0, weg);
        EXPECT_EQ(form.ShowFehler(fehler), SysFehlerErgebnis::Ok);
    }
    EXPECT_TRUE(gesperrt == 0 && !fenster.isVisible());
}

TEST_F(SysFehlerFensterTest, BuildsItsDetailsFromWhatIsThereAndFoldsThemAsItIsAskedTo) {
    const std::pair<SysFehler, const char*> faelle[] = {
        {{.Fehlertext = "x", .ErrSource = "ohne Nummer", .ErrDescription = "ungezeigt"}, ""},
        {{.ErrNumber = -7, .ErrSource = " Ort ", .ErrDescription = " Was "}, "(-7) Was\nFehlerort: Ort"},
        {{.DetailText = " mehr ", .DetailsAufklappen = true}, "mehr"},
        {{.ErrNumber = 1, .ErrSource = "Ort", .DetailText = "a\r\nb"}, "(1) \nFehlerort: Ort\na\nb"}};
    const auto& details = kind<QPlainTextEdit>(fenster, "TextDetails");
    for (const auto& fall : faelle) {
        QTimer::singleShot(0, [&] {
            EXPECT_EQ(details.toPlainText(), fall.second);
            EXPECT_EQ(details.isVisible(), fall.first.DetailsAufklappen);
            knopf("cmdDetails").click();
            EXPECT_NE(details.isVisible(), fall.first.DetailsAufklappen);
            knopf("cmdOK").click();
        });
        form.ShowFehler(fall.first);
    }
    const SysFehler stehend{.ButtonWiederholen = true, .NurAnzeigenUndStehenLassen = true};
    EXPECT_EQ(form.ShowFehler(stehend), SysFehlerErgebnis::Keines);
    knopf("cmdDetails").click();
    form.ShowFehler(stehend);
    EXPECT_TRUE(details.isVisible()) << "the user was reading";
    fenster.close();
    form.ShowFehler(stehend);
    EXPECT_TRUE(fenster.isVisible() && !details.isVisible());
}

TEST_F(SysFehlerFensterTest, LetsNoWordOfTheMessageRunOutOfTheWindow) {
    const std::string pfad = "C:\\Programme\\" + std::string(200, 'x') + "\\tv.exe";
    form.ShowFehler({.Fehlertext = pfad, .NurAnzeigenUndStehenLassen = true});
    auto& text = kind<QLabel>(fenster, "LabelText");
    EXPECT_EQ(text.accessibleName(), QString::fromStdString(pfad));
    EXPECT_LE(text.minimumSizeHint().width(), text.width());
    EXPECT_FALSE(teil("cmdWiederholen").isVisible());
    form.ShowFehler({.Fehlertext = std::string(20000, 'x'), .NurAnzeigenUndStehenLassen = true});
    EXPECT_LT(fenster.height(), fenster.screen()->availableGeometry().height());
}

TEST(FehlerfensterTest, OneModelessWindowWhoseTextIsReplaced) {
    FakeFenstersystem system;
    Meldungsfenster meldungen(system);
    const auto offene = [] {
        QWidgetList fenster = QApplication::topLevelWidgets();
        fenster.removeIf([](QWidget* w) { return w->objectName() != "FormSysFehler" || !w->isVisible(); });
        return fenster;
    };
    for (const char* text : {"Erster", "Zweiter", "Dritter"}) {
        meldungen.zeigeFehlerOhneWarten(text, 76, "Anderswo", "Pfad nicht gefunden", "Fehler");
        ASSERT_EQ(offene().size(), 1);
        const QWidget& fenster = *offene()[0];
        EXPECT_EQ(kind<QLabel>(fenster, "LabelText").text(), text);
        EXPECT_EQ(kind<QPlainTextEdit>(fenster, "TextDetails").toPlainText(),
                  "(76) Pfad nicht gefunden\nFehlerort: Anderswo");
        EXPECT_TRUE(!fenster.isModal() && fenster.testAttribute(Qt::WA_ShowWithoutActivating));
        if (text == std::string("Zweiter")) kind<QPushButton>(fenster, "cmdOK").click();  // needed again
    }
}

TEST(AufzeichnungsHinweisFensterTest, GrowsWithItsTextAndIsReadByAnyKeyOfTheSort) {
    FakeFenstersystem system;
    FormAufzeichnungsHinweisFenster fenster;
    FormAufzeichnungsHinweis form(system, fenster);
    fenster.setzeForm(form);
    form.zeigen("");
    const std::string text =
        "In einer Minute startet die Aufzeichnung einer Sendung mit den Kestrin Pirrow. Bitte achten Sie "
        "darauf, dass keine anderen Programme Ihre TV-Karte verwenden, oder den Computer auslasten. "
        "Dieser Hinweis wird automatisch zu Beginn der Aufzeichnung ausgeblendet.";
    auto& label = kind<QLabel>(fenster, "Label");
    EXPECT_EQ(label.text().toStdString(), text);
    EXPECT_EQ(system.vordergrund, fenster.hwnd());
    const int hoehe = fenster.height();
    const std::string konflikt =
        "\"Süßer Schnee\" (ZDF, 20:15 bis 22:00) überschneidet sich mit \"Das Übermorgen-Magazin\".";
    const std::function<void()> wege[] = {[&] { kind<QPushButton>(fenster, "cmdOK").click(); },
                                          [&] { QTest::keyClick(&fenster, Qt::Key_Escape); },
                                          [&] { QTest::keyClick(&fenster, Qt::Key_Return); },
                                          [&] { fenster.close(); }};
    for (const auto& weg : wege) {
        form.zeigen(konflikt);
        EXPECT_EQ(label.text().toStdString(), text + "\n\n" + konflikt);
        EXPECT_TRUE(fenster.isVisible() && fenster.height() > hoehe);
        EXPECT_EQ(fenster.focusWidget(), &fenster) << "a key meant for another program presses nothing";
        weg();
        EXPECT_FALSE(form.offen() || fenster.isVisible());
    }
}

TEST(AufzeichnungsskriptFensterTest, ShowsTheStepAndTheWholeOfTheTwentyBeforeUntilItIsClosed) {
    FakeUhr uhr;
    FormAufzeichnungsskriptFenster fenster;
    FormAufzeichnungsskript form(uhr, fenster);
    fenster.setzeForm(form);
    form.ShowDebugInfoAddOk();
    auto& label = kind<QPushButton>(fenster, "LabelAktuelleAktion");
    EXPECT_TRUE(label.accessibleName() == " ..Ok" && !fenster.isVisible()) << "of no step";
    for (int i = 1; i < 6; ++i)
        form.ShowDebugInfo("Schritt " + std::to_string(i));
    const std::string lang = "Starte \"tv\" && " + std::string(300, 'x');
    form.ShowDebugInfo(lang);
    const QRect frei = fenster.screen()->availableGeometry();
    EXPECT_TRUE(frei.contains(fenster.geometry()) && fenster.width() < 500);
    EXPECT_LT((frei.bottomRight() - fenster.geometry().bottomRight()).manhattanLength(), 40) << "lower right";
    for (int i = 7; i < 26; ++i)
        form.ShowDebugInfo("Schritt " + std::to_string(i));
    const auto vorher = uhr.laufzeitMs();
    form.ShowDebugInfoAddOk();
    EXPECT_EQ(uhr.laufzeitMs() - vorher, 200);
    EXPECT_EQ(label.accessibleName(), "Schritt 25 ..Ok");
    EXPECT_EQ(label.toolTip(),
              "Zeigt aktuelle Steuerung der verknüpften TV-Anwendung an. Klicken für mehr Informationen.");
    label.click();
    auto& menue = kind<QMenu>(fenster, "mnuPopupVerlauf");
    ASSERT_TRUE(menue.isVisible() && menue.actions().size() == 22);
    EXPECT_EQ(menue.actions()[0]->toolTip(), QString::fromStdString(lang));
    EXPECT_LT(menue.width(), frei.width());
    EXPECT_EQ(menue.actions()[1]->text() + menue.actions()[19]->text(), "Schritt 7Schritt 25 ..Ok");
    EXPECT_TRUE(menue.actions()[20]->isSeparator());
    menue.actions()[21]->trigger();
    form.ShowDebugInfo("of the same recording");
    EXPECT_FALSE(fenster.isVisible() || menue.isVisible());
    form.schliessen();
    form.ShowDebugInfo("of the next one");
    EXPECT_TRUE(fenster.isVisible() && form.verlauf().size() == 20u);
}

TEST(AufzeichnungsverlaufFensterTest, ShowsTheRowsAndTheWholeOfTheChosenOne) {
    FakeDateisystem dateien;
    dateien.legeOrdner(kTestordner);
    Aufzeichnungsprotokoll protokoll(dateien, kTestordner);
    QWidget liste;
    FormAufzeichnungsverlaufFenster fenster(liste);
    FormAufzeichnungsverlauf form(protokoll, fenster);
    fenster.setzeForm(form);
    const std::string grund = "fehlgeschlagen in Zeile 3: " + std::string(100, 'x');
    int tag = 23;
    const auto trageEin = [&](const char* sender, const char* titel, const std::string& ergebnis) {
        EXPECT_TRUE(protokoll.eintragen({DateSerial(2012, 12, ++tag), sender, titel, ergebnis}));
        form.auffrischen();
    };
    trageEin("ZDF", "Schnee", "aufgezeichnet");
    form.oeffnen();
    auto& reihen = kind<QTreeView>(fenster, "ListViewAufzeichnungen");
    EXPECT_TRUE(fenster.isVisible());
    trageEin("3sat", "Kurz", "aufgezeichnet; keine wachsende Datei im Aufzeichnungsordner");
    trageEin("3sat", "Lang", "aufgezeichnet, 3 min verspätet begonnen; Wecken vom System nicht erlaubt");
    trageEin("ARD", "Magazin", grund);
    const auto bild = [&](int zeile) {
        return reihen.model()->index(zeile, 0).data(Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
    };
    EXPECT_TRUE(bild(3) == bild(1) && bild(1) != bild(0) && bild(0) == bild(2)) << "came about or not";
    QStringList texte;
    for (int spalte = 0; spalte < 4; ++spalte)
        texte << reihen.model()->headerData(spalte, Qt::Horizontal).toString() + "=" +
                     reihen.model()->index(3, spalte).data().toString();
    EXPECT_EQ(texte.join("|"), "Zeit=24.12.2012 00:00|Sender=ZDF|Sendung=Schnee|Ergebnis=aufgezeichnet");
    EXPECT_EQ(kind<QLabel>(fenster, "LabelErgebnis").text(), QString::fromStdString("Magazin: " + grund));
    QTest::keyClick(&reihen, Qt::Key_End);
    EXPECT_EQ(kind<QLabel>(fenster, "LabelErgebnis").text(), "Schnee: aufgezeichnet");
    QTest::keyClick(&reihen, Qt::Key_Escape);
    EXPECT_FALSE(fenster.isVisible() || form.offen());
}

}  // namespace
}  // namespace wendel
