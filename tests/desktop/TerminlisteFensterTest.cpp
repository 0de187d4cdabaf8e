// The list window over the real forms, without a window manager: rows, keys, clicks and the popup menu, a
// rebuild between two user actions, many rows, the remembered place.

#include <gtest/gtest.h>

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>
#include <algorithm>

#include "core/Programm.h"
#include "desktop/Fensterhilfe.h"
#include "desktop/FormWendelFenster.h"
#include "desktop/QtText.h"

namespace wendel {
namespace {

std::vector<Terminzeile> viele(int anzahl) {
    std::vector<Terminzeile> zeilen;
    for (int i = 0; i < anzahl; ++i)
        zeilen.push_back({"terminuhr2", "24.12.12 20:15", "Eintrag Nummer " + std::to_string(i), "9 min"});
    return zeilen;
}

class TerminlisteFensterTest : public testing::Test {
  protected:
    TerminlisteFensterTest() {
        fenster.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&fenster));
        anwendung.tick();
    }
    // The list of the window that is shown; there is none before.
    QTreeView& gestartet() {
        welt.tvDaten.markierungen = {{um(20, 10), um(20, 15), 90, "Süßer Schnee", false}};
        welt.setzeTermine({{um(21, 0), "Oma anrufen\r\nund Opa", intervall::kEinmal, true},
                           {um(22, 0), "Müll", intervall::kTaeglich, true},
                           {um(19, 0), "Zahnarzt", intervall::kEinmal, false}});
        fenster.setzeForm(anwendung.formWendel());
        EXPECT_EQ(anwendung.starten(), Startergebnis::Laeuft);
        fenster.zeigen();
        return kind<QTreeView>(fenster, "ListViewTermineListe");
    }
    QString zelle(int zeile, int spalte) { return liste.model()->index(zeile, spalte).data().toString(); }
    QStringList texte() {
        QStringList alle;
        for (int i = 0; i < liste.model()->rowCount(); ++i)
            alle << zelle(i, 1);
        return alle;
    }
    QPoint mitte(int zeile) { return liste.visualRect(liste.model()->index(zeile, 1)).center(); }
    QPoint leer() { return {50, liste.viewport()->height() - 5}; }
    void klicke(Qt::MouseButton knopf, const QPoint& ort) {
        QTest::mouseClick(liste.viewport(), knopf, {}, ort);
    }
    void taste(Qt::Key code, Qt::KeyboardModifiers dazu = {}) { QTest::keyClick(&liste, code, dazu); }
    std::int32_t gewaehlt() { return anwendung.formWendel().GetSelektierterIndex(); }
    // The menu's entries that are enabled; the default one with a star.
    QString menue() {
        QString alle;
        for (const QAction* eintrag : popup.actions()) {
            if (!eintrag->isEnabled() || eintrag->isSeparator()) continue;
            alle += eintrag->objectName() + (eintrag == popup.defaultAction() ? "* " : " ");
        }
        return popup.isVisible() ? alle : "closed";
    }
    QString status() { return kind<QLabel>(fenster, "LabelStatus").text(); }

    QTemporaryDir ordner;
    Programm welt;  // 24 December 2012, 20:00
    FakeHinweisView hinweis{welt.ports.aufrufe};
    FakeTerminView editor;
    FormWendelFenster fenster{ordner.filePath("noch/nicht/da.ini")};
    Anwendung anwendung{
        welt.ports.ports(),
        Systemdienste{welt.ports.registrierung, welt.ports.einwahl, welt.ports.statusverbindung},
        Ansichten{fenster, hinweis, editor, welt.aufzeichnungsHinweis, welt.aufzeichnungsskript,
                  welt.verlauf},
        welt.menues,
        {"wendel", "/m", kTestordner, [] { return true; }}};
    QTreeView& liste = gestartet();
    QMenu& popup = kind<QMenu>(fenster, "PopupTerminliste");
};

// By the mouse: liste.py.
TEST_F(TerminlisteFensterTest, ThePopupsEntriesFollowTheSelectionAndItGoesWhenABoxComes) {
    klicke(Qt::RightButton, leer());
    EXPECT_EQ(menue(), "mnuNeuTermin mnuAufzeichnungen mnuBeenden ");
    popup.close();
    klicke(Qt::LeftButton, mitte(2));
    QTest::keyClick(&liste, Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(menue(), "mnuNeuTermin mnuEditieren* mnuLöschen mnuAufzeichnungen mnuBeenden ");
    EXPECT_EQ(popup.activeAction()->objectName(), "mnuEditieren");
    fenster.setEnabled(false);
    EXPECT_EQ(menue(), "closed");
}

// The other keys and clicks: liste.py, editor.py.
TEST_F(TerminlisteFensterTest, KeysAndTheLinkReachTheForm) {
    klicke(Qt::LeftButton, mitte(0));
    taste(Qt::Key_Return);
    EXPECT_TRUE(status().startsWith("Ändern in der Favoritenliste"));
    taste(Qt::Key_Down);
    welt.ports.meldungen.antworten = {Antwort::Ja};
    taste(Qt::Key_Delete);
    EXPECT_EQ(texte(), QStringList({"20:15 Süßer Schnee (ARD)", "Müll", "Zahnarzt"}));
    EXPECT_EQ(gewaehlt(), 2) << "the row that took the place of the deleted one";
    int offen = 0;
    editor.imDialog = [&] { ++offen; };
    QTest::mouseDClick(liste.viewport(), Qt::RightButton, {}, mitte(1));
    EXPECT_EQ(offen, 0);
    popup.close();
    taste(Qt::Key_Insert);
    taste(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(offen, 2);
    kind<QPushButton>(fenster, "LabelAnzLiveUpdateEinstellungenStartLink").click();
    EXPECT_EQ(welt.ports.starter.gestartet.size(), 1u);
    QTest::keyClick(&fenster, Qt::Key_Escape);
    EXPECT_FALSE(fenster.isVisible());
}

TEST_F(TerminlisteFensterTest, RowsHavePicturesAndTheStatusFollowsTheSelectionButNotOverAMessage) {
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(liste.model()->index(i, 0).data(Qt::DecorationRole).value<QIcon>().isNull()) << i;
    liste.setCurrentIndex(liste.model()->index(0, 0));
    klicke(Qt::LeftButton, leer());
    EXPECT_EQ(status(), "Neuer Termin: Rechtsklick oder Einfg");
    taste(Qt::Key_Down);
    EXPECT_EQ(gewaehlt(), 1) << "the row with the focus frame";
    taste(Qt::Key_Down);
    EXPECT_TRUE(status().startsWith("Bearbeiten: "));
    fenster.setzeStatustext("Die Termine sind noch nicht gespeichert.");
    taste(Qt::Key_Down);
    EXPECT_EQ(status(), "Die Termine sind noch nicht gespeichert.");
}

TEST_F(TerminlisteFensterTest, LongListsStayWhereTheyAreReadAndAreSearchedByTyping) {
    auto zeilen = viele(10'000);
    fenster.setzeZeilen(zeilen, 3);
    const auto oberste = [&] { return liste.indexAt(QPoint(0, 0)); };
    EXPECT_EQ(oberste().row(), 0);
    liste.verticalScrollBar()->setValue(liste.verticalScrollBar()->maximum() / 2 + 7);
    const QString gelesen = zelle(oberste().row(), 1);
    const int versatz = liste.visualRect(oberste()).top();

    std::rotate(zeilen.begin(), zeilen.begin() + 1, zeilen.end());  // the first one has gone to the end
    for (Terminzeile& zeile : zeilen)
        zeile.rest = "8 min";
    fenster.setzeZeilen(zeilen, 2);
    EXPECT_EQ(zelle(oberste().row(), 1), gelesen);
    EXPECT_EQ(liste.visualRect(oberste()).top(), versatz);
    zeilen.erase(zeilen.begin(), zeilen.begin() + 5);
    fenster.setzeZeilen(zeilen, std::nullopt);
    EXPECT_EQ(zelle(oberste().row(), 1), gelesen);
    fenster.setzeZeilen(zeilen, 20);
    EXPECT_TRUE(liste.viewport()->rect().contains(mitte(20)))
        << "another entry was chosen: it comes into sight";

    QTest::keyClicks(&liste, "nummer 9992");
    EXPECT_EQ(zelle(liste.currentIndex().row(), 1), "Eintrag Nummer 9992");
    taste(Qt::Key_Home);
    EXPECT_EQ(liste.currentIndex().row(), 0);
    fenster.setzeZeilen({}, std::nullopt);
    EXPECT_EQ(liste.model()->rowCount(), 0);
}

TEST(WendelFensterTest, ComesBackWhereAndAsLargeAsItWasLeftAndOntoAScreenThatIsThere) {
    const QTemporaryDir ordner;
    const QString datei = ordner.filePath("noch/nicht/da.ini");
    const QRect frei = QGuiApplication::primaryScreen()->availableGeometry();
    const std::pair<QRect, QRect> faelle[] = {
        // left at, comes back at
        {{30, 40, 600, 350}, {30, 40, 600, 350}},
        {{-200, 40, 600, 350}, {-200, 40, 600, 350}},  // enough of it is seen
        {{frei.right() - 20, 40, 600, 350}, {frei.right() + 1 - 600, 40, 600, 350}},
        {{5000, 4000, 600, 350}, {frei.right() + 1 - 600, frei.bottom() + 1 - 350, 600, 350}}};
    for (const auto& [gelassen, erwartet] : faelle) {
        {
            FormWendelFenster fenster(datei);
            fenster.zeigen();
            fenster.setGeometry(gelassen);
            fenster.verstecken();
        }
        FormWendelFenster wieder(datei);
        wieder.zeigen();
        EXPECT_EQ(wieder.geometry(), erwartet) << gelassen.x();
    }
}

}  // namespace
}  // namespace wendel
